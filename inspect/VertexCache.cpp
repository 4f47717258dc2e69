#include "inspect/VertexCache.h"

#include <vector>

namespace orv::inspect {

namespace {

double Ratio(size_t a, size_t b) {
  return b == 0 ? 0 : static_cast<double>(a) / static_cast<double>(b);
}

}  // namespace

double VertexCacheCount::Acmr() const { return Ratio(misses, triangles); }
double VertexCacheCount::Atvr() const { return Ratio(misses, vertices); }

VertexCacheCount& VertexCacheCount::operator+=(const VertexCacheCount& other) {
  misses += other.misses;
  triangles += other.triangles;
  vertices += other.vertices;
  return *this;
}

// A vertex is in the cache as long as fewer than cacheSize others were loaded after it.
VertexCacheCount CountCacheMisses(std::span<const Triangle> triangles, size_t vertexCount,
                                  size_t cacheSize) {
  VertexCacheCount count;
  count.triangles = triangles.size();
  std::vector<size_t> loadedAs(vertexCount, 0);  // the number of its latest miss from 1; 0: never
  for (const Triangle& triangle : triangles) {
    for (const uint16_t vertex : triangle) {
      size_t& load = loadedAs[vertex];
      if (load != 0 && count.misses - load < cacheSize) continue;
      if (load == 0) ++count.vertices;
      load = ++count.misses;
    }
  }
  return count;
}

}  // namespace orv::inspect
