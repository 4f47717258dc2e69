#include <string>
#include <unordered_map>
#include <vector>

#include "formats/ChunkStream.h"
#include "formats/FileVersions.h"
#include "formats/IndexedMeshWriter.h"
#include "platform/ExString.h"

namespace orv {

namespace {

struct BoneInChunk {
  uint32_t chunk;
  const GenericBoneInfluence* bone;
};

// All bones of one name. The first one's position and rotation stand for it.
using SameNamedBones = std::vector<BoneInChunk>;

// In order of first mention; names are the same when they differ in case only.
std::vector<SameNamedBones> GroupByName(
    std::span<const std::unique_ptr<GenericMeshInfluence>> perChunk) {
  std::vector<SameNamedBones> groups;
  std::unordered_map<std::string, size_t> groupOfName;
  for (size_t chunk = 0; chunk < perChunk.size(); ++chunk) {
    for (const auto& bone : perChunk[chunk]->m_bones) {
      const auto [entry, isNew] = groupOfName.try_emplace(LowerCase(bone->m_name), groups.size());
      if (isNew) groups.emplace_back();
      groups[entry->second].push_back({static_cast<uint32_t>(chunk), bone.get()});
    }
  }
  return groups;
}

void WriteBoneHeader(std::ostream& out, const GenericBoneInfluence& bone) {
  WriteString(out, bone.m_name);
  WriteString(out, bone.m_parentName);
  WriteVec3(out, bone.m_position);
  WriteRecords<float>(out, std::span<const Vec3>(bone.m_rotation));
}

void WriteWeights(std::ostream& out, const BoneInChunk& match) {
  static_assert(sizeof(VertexWeight) == 20);  // vertex, weight, offset: the record of the file
  const std::vector<VertexWeight>& weights = match.bone->m_weights;
  WriteU32(out, match.chunk);
  WriteU32(out, static_cast<uint32_t>(weights.size()));
  WriteRecords<uint32_t>(out, std::span<const VertexWeight>(weights));
}

}  // namespace

void WriteInfluences(std::ostream& out,
                     std::span<const std::unique_ptr<GenericMeshInfluence>> perChunk) {
  const std::vector<SameNamedBones> bones = GroupByName(perChunk);
  ChunkScope infl(out, "INFL", kInfluencesVersion);
  WriteU32(out, static_cast<uint32_t>(bones.size()));
  for (const SameNamedBones& bone : bones) {
    WriteBoneHeader(out, *bone.front().bone);
    WriteU32(out, static_cast<uint32_t>(bone.size()));
    for (const BoneInChunk& match : bone) WriteWeights(out, match);
  }
}

}  // namespace orv
