#include "scene/GenericInfluence.h"

#include "platform/ExString.h"

namespace orv {

size_t GenericMeshInfluence::NameHash::operator()(std::string_view name) const {
  uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : name) {
    hash = (hash ^ static_cast<unsigned char>(LowerCase(c))) * 0x100000001B3u;
  }
  return static_cast<size_t>(hash);
}

bool GenericMeshInfluence::NameEqual::operator()(std::string_view a, std::string_view b) const {
  return EqualIgnoringCase(a, b);
}

GenericBoneInfluence* GenericMeshInfluence::FindBone(std::string_view name) const {
  // Of several bones of one name the first keeps the entry.
  for (; m_indexed < m_bones.size(); ++m_indexed) {
    m_firstByName.emplace(m_bones[m_indexed]->m_name, m_indexed);
  }
  const auto found = m_firstByName.find(name);
  return found == m_firstByName.end() ? nullptr : m_bones[found->second].get();
}

void GenericMeshInfluence::AddBone(std::unique_ptr<GenericBoneInfluence> bone) {
  m_bones.push_back(std::move(bone));
}

void GenericMeshInfluence::Merge(const GenericMeshInfluence& other, uint32_t vertexOffset) {
  for (const auto& bone : other.m_bones) {
    auto copy = std::make_unique<GenericBoneInfluence>(bone->m_name, bone->m_parentName,
                                                       bone->m_position, bone->m_rotation);
    copy->m_weights = bone->m_weights;
    for (VertexWeight& weight : copy->m_weights) weight.vertex += vertexOffset;
    AddBone(std::move(copy));
  }
}

}  // namespace orv
