#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "scene/GenericMaterial.h"

namespace orv {

// Finds the first material that another one equals without comparing it with all of them. The
// materials stay with the caller, who tells of each in order and leaves it as it is from then on.
class MaterialIndex {
 public:
  explicit MaterialIndex(bool ignoreColours) : m_ignoreColours(ignoreColours) {}

  bool IgnoresColours() const { return m_ignoreColours; }
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

}  // namespace orv
