#include "inspect/ChunkFacts.h"

#include <algorithm>
#include <unordered_set>

namespace orv::inspect {

VertexUse FindVertexUse(const IndexedMesh::Chunk& chunk) {
  VertexUse use;
  use.used.assign(chunk.vertices.size(), false);
  size_t next = 0, usedCount = 0;
  for (const Triangle& triangle : chunk.triangles) {
    for (const uint16_t vertex : triangle) {
      if (use.used[vertex]) continue;
      use.used[vertex] = true;
      ++usedCount;
      if (vertex != next++) use.inOrderOfFirstUse = false;
    }
  }
  use.unused = chunk.vertices.size() - usedCount;
  return use;
}

size_t CountRepeatedTriangles(const IndexedMesh::Chunk& chunk) {
  std::unordered_set<uint64_t> seen;
  size_t repeated = 0;
  for (const auto& [a, b, c] : chunk.triangles) {
    if (!seen.insert(uint64_t{a} << 32 | uint64_t{b} << 16 | c).second) ++repeated;
  }
  return repeated;
}

uint32_t ChunkWeights::MaxBonesOfVertex() const {
  const auto most = std::max_element(bonesOfVertex.begin(), bonesOfVertex.end());
  return most == bonesOfVertex.end() ? 0 : *most;
}

uint32_t ChunkWeights::MaxBonesOfVertex(const std::vector<bool>& used) const {
  uint32_t most = 0;
  for (size_t i = 0; i < bonesOfVertex.size(); ++i) {
    if (used[i]) most = std::max(most, bonesOfVertex[i]);
  }
  return most;
}

namespace {

ChunkWeights GatherWeights(const GenericMeshInfluence& influence, size_t vertexCount) {
  ChunkWeights weights;
  weights.bonesOfVertex.assign(vertexCount, 0);
  weights.sumOfVertex.assign(vertexCount, 0);
  std::vector<size_t> countedFor(vertexCount, SIZE_MAX);  // the bone that was counted last
  for (size_t bone = 0; bone < influence.m_bones.size(); ++bone) {
    bool moves = false;
    for (const VertexWeight& entry : influence.m_bones[bone]->m_weights) {
      if (!(entry.weight > 0)) continue;
      moves = true;
      if (entry.vertex >= vertexCount) continue;
      weights.sumOfVertex[entry.vertex] += double{entry.weight};
      if (countedFor[entry.vertex] == bone) continue;
      countedFor[entry.vertex] = bone;
      ++weights.bonesOfVertex[entry.vertex];
    }
    if (moves) ++weights.bones;
  }
  return weights;
}

}  // namespace

std::vector<ChunkWeights> GatherWeights(const IndexedMesh& mesh) {
  std::vector<ChunkWeights> weights;
  weights.reserve(mesh.influences.size());
  for (size_t i = 0; i < mesh.influences.size(); ++i) {
    weights.push_back(GatherWeights(*mesh.influences[i], mesh.chunks[i].vertices.size()));
  }
  return weights;
}

}  // namespace orv::inspect
