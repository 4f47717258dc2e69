#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "scene/GenericSkeleton.h"
#include "scene/Vector.h"

namespace orv {

struct VertexWeight {
  uint32_t vertex = 0;  // position index in the mesh; chunk vertex in a chunk's influence
  float weight = 0;
  Vec3 offset;  // the vertex in the bone's space, metres
};

// One bone of a skinned mesh and the vertices it moves.
class GenericBoneInfluence {
 public:
  GenericBoneInfluence() = default;
  GenericBoneInfluence(std::string name, std::string parentName, Vec3 position,
                       const Matrix33& rotation)
      : m_name(std::move(name)),
        m_parentName(std::move(parentName)),
        m_position(position),
        m_rotation(rotation) {}
  virtual ~GenericBoneInfluence() = default;

  std::string m_name;        // at most kMaxNameLength
  std::string m_parentName;  // empty below the scene root
  Vec3 m_position;           // relative to the parent, metres
  Matrix33 m_rotation{};     // relative to the parent
  std::vector<VertexWeight> m_weights;
};

// The bones of a skinned mesh in the order they were met; without bones the mesh is not skinned.
class GenericMeshInfluence {
 public:
  virtual ~GenericMeshInfluence() = default;

  // The first bone of that name, ignoring case, or null.
  GenericBoneInfluence* FindBone(std::string_view name) const;
  void AddBone(std::unique_ptr<GenericBoneInfluence> bone);

  // Appends a copy of every bone of the other, vertices shifted by the offset. A bone that is
  // there already is appended again.
  void Merge(const GenericMeshInfluence& other, uint32_t vertexOffset);

  // Bones keep their names and places once they are here.
  std::vector<std::unique_ptr<GenericBoneInfluence>> m_bones;

 private:
  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const;
  };
  struct NameEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
  };

  // FindBone's own, brought up to date by each call.
  mutable std::unordered_map<std::string, size_t, NameHash, NameEqual> m_firstByName;
  mutable size_t m_indexed = 0;  // bones that m_firstByName knows
};

class ExGenericMeshInfluence : public GenericMeshInfluence {};

}  // namespace orv
