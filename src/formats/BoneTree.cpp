#include "formats/BoneTree.h"

#include "formats/FileVersions.h"

namespace orv {

namespace {

constexpr size_t kMinBoneBytes = 20;  // tag, length, version, empty name, no children

// A bone whose children are being read.
struct OpenBone {
  int32_t index;
  uint32_t childrenLeft;
};

OpenBone EnterBone(ChunkReader& in, int32_t parent, std::vector<BoneNode>& bones,
                   std::vector<BonePose>* poses) {
  in.EnterChunk("BONE", kBoneVersion, kBoneVersion);
  const auto index = static_cast<int32_t>(bones.size());
  bones.push_back({in.ReadString(), parent});
  if (poses) in.ReadBlock(&poses->emplace_back(), sizeof(BonePose), sizeof(float));
  return {index, in.ReadCount("child", kMinBoneBytes)};
}

}  // namespace

void ReadBoneTree(ChunkReader& in, std::vector<BoneNode>& bones, std::vector<BonePose>* poses) {
  std::vector<OpenBone> open{EnterBone(in, -1, bones, poses)};
  while (!open.empty()) {
    OpenBone& bone = open.back();
    if (bone.childrenLeft == 0) {
      in.LeaveChunk();
      open.pop_back();
    } else {
      --bone.childrenLeft;
      open.push_back(EnterBone(in, bone.index, bones, poses));
    }
  }
}

}  // namespace orv
