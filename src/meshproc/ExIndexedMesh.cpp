#include "meshproc/ExIndexedMesh.h"

#include "meshproc/ChunkBuilder.h"
#include "meshproc/ChunkSplitter.h"
#include "meshproc/InfluenceExtraction.h"
#include "meshproc/NeighbourInfo.h"
#include "meshproc/Welding.h"

namespace orv {

namespace {

const GenericMeshInfluence* SkinOf(const GenericMesh& mesh) {
  const bool skinned = mesh.m_influence != nullptr && !mesh.m_influence->m_bones.empty();
  return skinned ? mesh.m_influence : nullptr;
}

std::vector<std::vector<uint32_t>> TakeCornerMaps(std::vector<ChunkDraft>& drafts) {
  std::vector<std::vector<uint32_t>> maps;
  for (ChunkDraft& draft : drafts) maps.push_back(std::move(draft.cornerMap));
  return maps;
}

}  // namespace

bool ExIndexedMesh::BuildChunks(const GenericMesh& source, bool buildNeighbourInfo,
                                bool useDefaultColors, ExportUserInterface& ui,
                                const MeshLimits& limits) {
  static_cast<IndexedMesh&>(*this) = {};
  attachmentPoints = source.m_attachmentPoints;
  skeleton = source.m_skeleton;
  m_useDefaultColors = useDefaultColors;

  const std::unique_ptr<GenericMesh> triangulated = source.Triangulate();
  const GenericMesh& mesh = triangulated ? *triangulated : source;
  const GenericMeshInfluence* skin = SkinOf(source);

  std::vector<ChunkDraft> drafts = GroupFacesByMaterial(mesh, ui);
  WeldVertices(mesh, drafts, skin != nullptr, ui);
  SplitToLimits(drafts, skin, limits, ui);
  const std::vector<std::vector<uint32_t>> cornerMaps = TakeCornerMaps(drafts);
  if (!FinishChunks(mesh, drafts, chunks, ui)) return false;
  if (buildNeighbourInfo) BuildNeighbourInfo(chunks, ui);
  for (Chunk& chunk : chunks) RemoveDegenerateTriangles(chunk);
  if (skin != nullptr) influences = ExtractInfluences(*skin, cornerMaps, ui);
  return true;
}

void ExIndexedMesh::PrepareChunk(size_t chunk, bool optimise) {
  const bool wantsTangents = chunks[chunk].material.name.find(".tbump") != std::string::npos;
  if (!wantsTangents && !optimise) return;
  if (wantsTangents) GenerateTangents(chunk);
  OptimiseIndexOrder(chunk);
  chunks[chunk].faceNormals = ComputeFaceNormals(chunks[chunk]);
}

size_t ExIndexedMesh::TotalVertexCount() const {
  size_t count = 0;
  for (const Chunk& chunk : chunks) count += chunk.vertices.size();
  return count;
}

size_t ExIndexedMesh::TotalTriangleCount() const {
  size_t count = 0;
  for (const Chunk& chunk : chunks) count += chunk.triangles.size();
  return count;
}

}  // namespace orv
