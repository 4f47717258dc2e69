#pragma once

#include <cstddef>
#include <span>

#include "scene/IndexedMesh.h"

namespace orv::inspect {

// How a list of triangles meets a first-in first-out vertex cache that is empty at its start.
struct VertexCacheCount {
  size_t misses = 0;
  size_t triangles = 0;
  size_t vertices = 0;  // that triangles name

  double Acmr() const;  // misses per triangle: 0.5 is the best a large mesh can reach, 3 the worst
  double Atvr() const;  // misses per vertex: 1 is the best
  VertexCacheCount& operator+=(const VertexCacheCount& other);
};

VertexCacheCount CountCacheMisses(std::span<const Triangle> triangles, size_t vertexCount,
                                  size_t cacheSize);

}  // namespace orv::inspect
