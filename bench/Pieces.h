#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orv::bench {

// An indexed triangle list as large as one exported chunk can be.
struct Piece {
  std::vector<uint16_t> indices;
  uint32_t vertexCount = 0;
};

struct Model {
  std::string name;
  std::vector<Piece> pieces;

  size_t TriangleCount() const;
  // Distinct vertices over triangles: no order can load fewer.
  double Floor() const;
};

Model GridModel(int columns, int rows);
Model SphereModel(int segments, int rings);

// A file that the importer reads, its vertices welded where position, texture coordinates and
// normal are bit-identical, in file order, material by material.
Model FileModel(const std::string& name, const std::string& path);

// The same triangles in an order that says nothing of the surface, with vertices numbered in order
// of first use.
Model Shuffled(const Model& model);

}  // namespace orv::bench
