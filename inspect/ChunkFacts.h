#pragma once

#include <cstdint>
#include <vector>

#include "scene/IndexedMesh.h"

namespace orv::inspect {

// What the triangles of a chunk make of its vertices.
struct VertexUse {
  std::vector<bool> used;         // per vertex: a triangle names it
  size_t unused = 0;              // vertices that no triangle names
  bool inOrderOfFirstUse = true;  // each index is at most one above all before it
};

VertexUse FindVertexUse(const IndexedMesh::Chunk& chunk);

// How many triangles have the corners of an earlier one, in the same order.
size_t CountRepeatedTriangles(const IndexedMesh::Chunk& chunk);

// The weights of one chunk, seen from its vertices. Only weights above 0 of vertices that are there
// count; a bone that lists a vertex twice counts once for it.
struct ChunkWeights {
  std::vector<uint32_t> bonesOfVertex;
  std::vector<double> sumOfVertex;
  uint32_t bones = 0;  // with a weight above 0

  uint32_t MaxBonesOfVertex() const;
  uint32_t MaxBonesOfVertex(const std::vector<bool>& used) const;
};

// For the whole mesh; none without a skin.
std::vector<ChunkWeights> GatherWeights(const IndexedMesh& mesh);

}  // namespace orv::inspect
