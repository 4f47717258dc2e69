#include "formats/MeshStatistics.h"

#include <algorithm>

namespace orv {

namespace {

struct ChunkInfluences {
  uint32_t maxPerVertex = 0;
  uint32_t bones = 0;
};

// A bone that lists a vertex twice counts once for it.
ChunkInfluences CountInfluences(const GenericMeshInfluence& influence, size_t vertexCount) {
  ChunkInfluences counts;
  std::vector<uint32_t> bonesOfVertex(vertexCount, 0);
  std::vector<size_t> lastBoneOfVertex(vertexCount, SIZE_MAX);
  for (size_t bone = 0; bone < influence.m_bones.size(); ++bone) {
    bool moves = false;
    for (const VertexWeight& weight : influence.m_bones[bone]->m_weights) {
      if (!(weight.weight > 0)) continue;
      moves = true;
      if (weight.vertex >= vertexCount || lastBoneOfVertex[weight.vertex] == bone) continue;
      lastBoneOfVertex[weight.vertex] = bone;
      counts.maxPerVertex = std::max(counts.maxPerVertex, ++bonesOfVertex[weight.vertex]);
    }
    if (moves) ++counts.bones;
  }
  return counts;
}

}  // namespace

BoundingBox ComputeBoundingBox(const IndexedMesh& mesh) {
  BoundingBox box;
  for (const IndexedMesh::Chunk& chunk : mesh.chunks) {
    for (const IndexedVertex& vertex : chunk.vertices) {
      box.minimum.x = std::min(box.minimum.x, vertex.x);
      box.minimum.y = std::min(box.minimum.y, vertex.y);
      box.minimum.z = std::min(box.minimum.z, vertex.z);
      box.maximum.x = std::max(box.maximum.x, vertex.x);
      box.maximum.y = std::max(box.maximum.y, vertex.y);
      box.maximum.z = std::max(box.maximum.z, vertex.z);
    }
  }
  return box;
}

MeshStatistics ComputeStatistics(const IndexedMesh& mesh) {
  MeshStatistics statistics;
  statistics.maxInfluencesOfChunk.assign(mesh.chunks.size(), 0);
  const size_t influenced = std::min(mesh.chunks.size(), mesh.influences.size());
  for (size_t i = 0; i < influenced; ++i) {
    const ChunkInfluences counts =
        CountInfluences(*mesh.influences[i], mesh.chunks[i].vertices.size());
    statistics.maxInfluencesOfChunk[i] = counts.maxPerVertex;
    statistics.maxInfluencesPerVertex =
        std::max(statistics.maxInfluencesPerVertex, counts.maxPerVertex);
    statistics.maxBonesPerChunk = std::max(statistics.maxBonesPerChunk, counts.bones);
  }
  return statistics;
}

}  // namespace orv
