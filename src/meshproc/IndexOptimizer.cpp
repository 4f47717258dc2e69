#include "meshproc/IndexOptimizer.h"

#include "meshproc/StripAdjacency.h"
#include "meshproc/StripSearch.h"

namespace orv {
namespace {

constexpr int kCacheSize = 16;

// Room for the vertices that are loaded while a strip goes round the target's cache.
constexpr uint32_t EffectiveCacheSize(int cacheSize) {
  return cacheSize > 7 ? static_cast<uint32_t>(cacheSize - 6) : 1;
}

constexpr uint32_t kUnused = 0xFFFFFFFF;

}  // namespace

std::vector<uint16_t> OptimizeTriangleOrder(std::span<const uint16_t> indices) {
  const StripAdjacency adjacency = BuildStripAdjacency(indices);
  std::vector<uint16_t> ordered;
  ordered.reserve(3 * adjacency.triangles.size());
  for (const uint32_t triangle : FindStripOrder(adjacency, EffectiveCacheSize(kCacheSize))) {
    const StripAdjacency::Triangle& corners = adjacency.triangles[triangle];
    ordered.insert(ordered.end(), corners.begin(), corners.end());
  }
  return ordered;
}

std::vector<uint32_t> RemapInOrderOfFirstUse(std::span<const uint16_t> indices,
                                             size_t vertexCount) {
  std::vector<uint32_t> newNumbers(vertexCount, kUnused);
  uint32_t next = 0;
  for (const uint16_t index : indices)
    if (newNumbers[index] == kUnused) newNumbers[index] = next++;
  return newNumbers;
}

}  // namespace orv
