#include "formats/BoneTree.h"

#include <stack>

#include "formats/ChunkStream.h"

namespace orv {

namespace {

constexpr uint32_t kBoneVersion = 100;
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

// A bone whose children are being written.
struct UnfinishedBone {
  const GenericSkeleton::Node* bone;
  ChunkPosition length;
  size_t nextChild = 0;
};

UnfinishedBone BeginBone(std::ostream& out, const GenericSkeleton::Node& bone,
                         const GenericSkeleton::Node* parent, WriteBonePose writePose) {
  WriteTag(out, "BONE");
  const ChunkPosition length = BeginChunk(out);
  WriteU32(out, kBoneVersion);
  WriteString(out, bone.Name());
  if (writePose) writePose(out, bone, parent);
  WriteU32(out, static_cast<uint32_t>(bone.m_children.size()));
  return {&bone, length};
}

}  // namespace

void ReadBoneTree(ChunkReader& in, std::vector<BoneNode>& bones, std::vector<BonePose>* poses) {
  const size_t minBytesEach = kMinBoneBytes + (poses ? sizeof(BonePose) : 0);
  bones.reserve(in.BytesLeft() / minBytesEach);
  if (poses) poses->reserve(in.BytesLeft() / minBytesEach);
  std::stack<OpenBone> open;
  open.push(EnterBone(in, -1, bones, poses));
  while (!open.empty()) {
    OpenBone& bone = open.top();
    if (bone.childrenLeft == 0) {
      in.LeaveChunk();
      open.pop();
    } else {
      --bone.childrenLeft;
      open.push(EnterBone(in, bone.index, bones, poses));
    }
  }
}

void WriteBoneTree(std::ostream& out, const GenericSkeleton::Node& root, WriteBonePose writePose) {
  std::vector<UnfinishedBone> unfinished{BeginBone(out, root, nullptr, writePose)};
  while (!unfinished.empty()) {
    UnfinishedBone& last = unfinished.back();
    const GenericSkeleton::Node* bone = last.bone;
    if (last.nextChild == bone->m_children.size()) {
      EndChunk(out, last.length);
      unfinished.pop_back();
    } else {
      const auto& child = bone->m_children[last.nextChild++];
      unfinished.push_back(BeginBone(out, *child, bone, writePose));
    }
  }
}

std::vector<const GenericSkeleton::Node*> BonesInFileOrder(const GenericSkeleton::Node& root) {
  std::vector<const GenericSkeleton::Node*> bones;
  std::vector<const GenericSkeleton::Node*> waiting{&root};
  while (!waiting.empty()) {
    bones.push_back(waiting.back());
    waiting.pop_back();
    const auto& children = bones.back()->m_children;
    for (size_t i = children.size(); i-- > 0;) waiting.push_back(children[i].get());
  }
  return bones;
}

}  // namespace orv
