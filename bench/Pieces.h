#pragma once

#include <cstdint>
#include <vector>

#include "Models.h"
#include "meshproc/ExIndexedMesh.h"

namespace orv::bench {

// The model in chunks as they are before they are prepared for writing.
ExIndexedMesh BuildPieces(const Model& model);

// An indexed triangle list as large as one exported chunk can be, without the triangles that the
// optimiser leaves out.
struct Piece {
  std::vector<uint16_t> indices;
  uint32_t vertexCount = 0;
};

// With `shuffled`, the triangles of each piece come in an order that says nothing of the surface.
// Vertices are numbered in order of first use.
std::vector<Piece> IndexPieces(const Model& model, bool shuffled);

}  // namespace orv::bench
