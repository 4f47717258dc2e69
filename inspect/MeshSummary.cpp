#include "inspect/MeshSummary.h"

#include "inspect/ChunkFacts.h"

namespace orv::inspect {

namespace {

CacheCounts CountCaches(const IndexedMesh::Chunk& chunk) {
  CacheCounts counts;
  for (size_t i = 0; i < counts.size(); ++i) {
    counts[i] = CountCacheMisses(chunk.triangles, chunk.vertices.size(), kCacheSizes[i]);
  }
  return counts;
}

}  // namespace

MeshSummary Summarise(const IndexedMeshFile& file) {
  MeshSummary summary;
  const std::vector<ChunkWeights> weights = GatherWeights(file.mesh);
  for (size_t i = 0; i < file.mesh.chunks.size(); ++i) {
    MeshSummary::Chunk& chunk = summary.chunks.emplace_back();
    chunk.cache = CountCaches(file.mesh.chunks[i]);
    if (!weights.empty()) chunk.bones = weights[i].bones;
    for (size_t k = 0; k < chunk.cache.size(); ++k) summary.cache[k] += chunk.cache[k];
    summary.surfaceArea += double{file.mesh.chunks[i].surfaceArea};
  }
  if (file.vertexCount > 0) {
    summary.box = file.boundingBox ? *file.boundingBox : ComputeBoundingBox(file.mesh);
  }
  summary.skeleton = OutlineOf(file.bones);
  summary.skin = OutlineOf(file.mesh.influences);
  return summary;
}

}  // namespace orv::inspect
