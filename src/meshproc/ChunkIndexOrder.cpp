#include "meshproc/ExIndexedMesh.h"
#include "meshproc/IndexOptimizer.h"
#include "meshproc/VertexNumbers.h"

namespace orv {

namespace {

std::vector<uint16_t> Flatten(const std::vector<Triangle>& triangles) {
  std::vector<uint16_t> indices;
  indices.reserve(3 * triangles.size());
  for (const Triangle& triangle : triangles) {
    indices.insert(indices.end(), triangle.begin(), triangle.end());
  }
  return indices;
}

// Vertices without a new number are not moved; others may overwrite them.
// Pinned by ChunkIndexOrder.UnreferencedVerticesAreNotMoved.
template <typename T>
void MoveToNewPlaces(std::vector<T>& values, std::span<const uint32_t> newNumbers) {
  const std::vector<T> old = values;
  for (size_t i = 0; i < old.size(); ++i) {
    if (newNumbers[i] < values.size()) values[newNumbers[i]] = old[i];
  }
}

// What is left of a vertex without a number is none of its own; its weights go to the last place,
// which no triangle names.
void PointToLastPlace(std::vector<uint32_t>& newNumbers) {
  for (uint32_t& number : newNumbers) {
    if (number >= newNumbers.size()) number = static_cast<uint32_t>(newNumbers.size() - 1);
  }
}

}  // namespace

void ExIndexedMesh::OptimiseIndexOrder(size_t number) {
  Chunk& chunk = chunks[number];
  const std::vector<uint16_t> order = OptimizeTriangleOrder(Flatten(chunk.triangles));
  // A list that lost degenerate or repeated triangles is not taken, nor is an empty one.
  // Pinned by ChunkIndexOrder.ChunksWithDegenerateOrRepeatedTrianglesStay.
  if (order.empty() || order.size() != 3 * chunk.triangles.size()) return;

  std::vector<uint32_t> newNumbers = RemapInOrderOfFirstUse(order, chunk.vertices.size());
  MoveToNewPlaces(chunk.vertices, newNumbers);
  MoveToNewPlaces(chunk.normals, newNumbers);
  if (!chunk.tangents.empty()) MoveToNewPlaces(chunk.tangents, newNumbers);
  for (size_t i = 0; i < order.size(); ++i) {
    chunk.triangles[i / 3][i % 3] = static_cast<uint16_t>(newNumbers[order[i]]);
  }
  if (!influences.empty()) {
    PointToLastPlace(newNumbers);
    RenumberWeights(*influences[number], newNumbers);
  }
}

}  // namespace orv
