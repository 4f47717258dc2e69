#include "inspect/BoneOutline.h"

#include <algorithm>
#include <unordered_map>

#include "platform/ExString.h"

namespace orv::inspect {

namespace {

using IndexByName = std::unordered_map<std::string, size_t>;

void CountWeights(const GenericBoneInfluence& influence, uint32_t chunk, SkinBone& bone) {
  for (const VertexWeight& weight : influence.m_weights) {
    if (weight.weight > 0) ++bone.vertexCount;
  }
  if (bone.chunks.empty() || bone.chunks.back() != chunk) bone.chunks.push_back(chunk);
}

std::vector<SkinBone> DistinctBones(
    std::span<const std::unique_ptr<GenericMeshInfluence>> influencePerChunk,
    IndexByName& indices) {
  std::vector<SkinBone> bones;
  for (uint32_t chunk = 0; chunk < influencePerChunk.size(); ++chunk) {
    for (const auto& influence : influencePerChunk[chunk]->m_bones) {
      const auto [place, isNew] = indices.try_emplace(LowerCase(influence->m_name), bones.size());
      if (isNew) {
        SkinBone& bone = bones.emplace_back();
        bone.name = influence->m_name;
        bone.parentName = influence->m_parentName;
      }
      CountWeights(*influence, chunk, bones[place->second]);
    }
  }
  return bones;
}

// Puts bones into an outline, each with all that is below it.
class Outliner {
 public:
  Outliner(std::vector<SkinBone> bones, const IndexByName& indices)
      : m_bones(std::move(bones)), m_children(m_bones.size()), m_placed(m_bones.size(), false) {
    for (size_t i = 0; i < m_bones.size(); ++i) {
      const auto parent = indices.find(LowerCase(m_bones[i].parentName));
      const bool known = parent != indices.end() && !m_bones[i].parentName.empty();
      known ? m_children[parent->second].push_back(i) : m_roots.push_back(i);
    }
  }

  std::vector<SkinBone> Outline() {
    for (const size_t root : m_roots) Place(root);
    for (size_t i = 0; i < m_bones.size(); ++i) Place(i);  // circles
    return std::move(m_outline);
  }

 private:
  struct Waiting {
    size_t bone;
    int32_t parent;  // place in the outline
  };

  void Place(size_t top) {
    std::vector<Waiting> waiting{{top, -1}};
    while (!waiting.empty()) {
      const auto [bone, parent] = waiting.back();
      waiting.pop_back();
      if (m_placed[bone]) continue;
      m_placed[bone] = true;
      const auto place = static_cast<int32_t>(m_outline.size());
      m_outline.push_back(std::move(m_bones[bone]));
      m_outline.back().parent = parent;
      m_outline.back().depth = parent < 0 ? 0 : m_outline[static_cast<size_t>(parent)].depth + 1;
      const std::vector<size_t>& children = m_children[bone];
      for (size_t i = children.size(); i-- > 0;) waiting.push_back({children[i], place});
    }
  }

  std::vector<SkinBone> m_bones;
  std::vector<std::vector<size_t>> m_children;
  std::vector<size_t> m_roots;
  std::vector<bool> m_placed;
  std::vector<SkinBone> m_outline;
};

}  // namespace

std::vector<OutlinedBone> OutlineOf(std::span<const BoneNode> bones) {
  std::vector<OutlinedBone> outline;
  outline.reserve(bones.size());
  for (const BoneNode& bone : bones) {
    const size_t depth = bone.parent < 0 ? 0 : outline[static_cast<size_t>(bone.parent)].depth + 1;
    outline.push_back({bone.name, bone.parent, depth});
  }
  return outline;
}

std::vector<SkinBone> OutlineOf(
    std::span<const std::unique_ptr<GenericMeshInfluence>> influencePerChunk) {
  IndexByName indices;
  std::vector<SkinBone> bones = DistinctBones(influencePerChunk, indices);
  return Outliner(std::move(bones), indices).Outline();
}

}  // namespace orv::inspect
