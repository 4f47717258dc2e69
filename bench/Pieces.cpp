#include "Pieces.h"

#include <random>
#include <set>
#include <unordered_map>
#include <utility>

namespace orv::bench {
namespace {

void DropRepeated(std::vector<Triangle>& triangles) {
  std::set<Triangle> seen;
  std::erase_if(triangles, [&](const Triangle& triangle) { return !seen.insert(triangle).second; });
}

Piece Numbered(const std::vector<Triangle>& triangles) {
  Piece piece;
  std::unordered_map<uint16_t, uint16_t> numbers;
  for (const Triangle& triangle : triangles) {
    for (const uint16_t vertex : triangle) {
      const auto next = static_cast<uint16_t>(numbers.size());
      piece.indices.push_back(numbers.emplace(vertex, next).first->second);
    }
  }
  piece.vertexCount = static_cast<uint32_t>(numbers.size());
  return piece;
}

}  // namespace

ExIndexedMesh BuildPieces(const Model& model) {
  SilentUserInterface silent;
  ExIndexedMesh built;
  built.BuildChunks(model.mesh, false, false, silent);
  return built;
}

std::vector<Piece> IndexPieces(const Model& model, bool shuffled) {
  std::vector<Piece> pieces;
  std::mt19937 random(1);
  for (IndexedMesh::Chunk& chunk : BuildPieces(model).chunks) {
    std::vector<Triangle>& triangles = chunk.triangles;
    DropRepeated(triangles);
    for (size_t i = triangles.size(); shuffled && i > 1; --i) {
      std::swap(triangles[i - 1], triangles[random() % i]);
    }
    if (!triangles.empty()) pieces.push_back(Numbered(triangles));
  }
  return pieces;
}

}  // namespace orv::bench
