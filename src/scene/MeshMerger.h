#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "scene/GenericMesh.h"

namespace orv {

// Finds the first material that another one equals without comparing it with all of them. The
// materials stay with the caller, who tells of each in order and leaves it as it is from then on.
class MaterialIndex {
 public:
  explicit MaterialIndex(bool ignoreColours) : m_ignoreColours(ignoreColours) {}

  size_t size() const { return m_fingerprints.size(); }

  // The material at the place size().
  void Add(const GenericMaterial& material);
  // Forgets all from the place on.
  void Truncate(size_t place);

  // The first place whose material makes MaterialsEqual(material, that one) true.
  std::optional<size_t> FindFirstEqual(const GenericMaterial& material,
                                       std::span<const GenericMaterial> materials) const;

 private:
  bool m_ignoreColours;
  std::vector<uint64_t> m_fingerprints;                           // by place
  std::unordered_map<uint64_t, std::vector<uint32_t>> m_buckets;  // places, ascending
};

// Makes one mesh of many: the first, with all others appended to it. After each of them, every
// material is folded into the first one that it equals; what is left keeps its order. The time
// depends on the new mesh alone. (Only a material with like maps among its own is held against all
// that are there.)
class MeshMerger {
 public:
  MeshMerger(std::unique_ptr<GenericMesh> first, bool ignoreColours)
      : m_mesh(std::move(first)), m_index(ignoreColours) {}

  const GenericMesh& Mesh() const { return *m_mesh; }

  void Append(const GenericMesh& other);

  // The mesh; a first one without others then has its own materials merged too.
  std::unique_ptr<GenericMesh> Finish();

 private:
  void MergeNewMaterials();

  std::unique_ptr<GenericMesh> m_mesh;
  MaterialIndex m_index;     // of the materials that the last merge left
  size_t m_mergedFaces = 0;  // that name those
};

}  // namespace orv
