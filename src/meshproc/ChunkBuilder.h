#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "report/ExportUserInterface.h"
#include "scene/IndexedMesh.h"

namespace orv {

// One chunk while it is being built. It names faces and corners of the source mesh; their values
// are copied only once its triangles are final.
struct ChunkDraft {
  uint32_t material = 0;
  std::vector<uint32_t> faces;                     // per triangle: the source face
  std::vector<std::array<uint32_t, 3>> triangles;  // into vertices
  std::vector<FaceCorner> vertices;                // the source corner whose values each one has
  std::vector<uint32_t> cornerMap;  // per vertex: the source position whose bone weights it takes;
                                    // empty unless the mesh is skinned
};

// (0, 0) where the mesh has no such texture coordinate.
inline Vec2 TexCoordOf(const GenericMesh& mesh, const FaceCorner& corner) {
  return corner.texCoord < mesh.m_texCoords.size() ? mesh.m_texCoords[corner.texCoord] : Vec2{};
}

// One draft per material, holding the faces of that material in the mesh's order. A face that
// names no entry of one of the mesh's tables is left out.
std::vector<ChunkDraft> GroupFacesByMaterial(const GenericMesh& mesh, ExportUserInterface& ui);

// Makes the chunks, emptying the drafts one by one. False, with an error logged, at the first index
// that does not fit into 16 bits.
bool FinishChunks(const GenericMesh& mesh, std::vector<ChunkDraft>& drafts,
                  std::vector<IndexedMesh::Chunk>& chunks, ExportUserInterface& ui);

// Only the indices move: the last triangle takes the place of a degenerate one, while face normals
// and neighbours stay in their rows. Pinned by ChunkBuilding.AgreesWithTheLiteralProcedure.
void RemoveDegenerateTriangles(IndexedMesh::Chunk& chunk);

// Cross(p1 - p0, p2 - p0) at unit length; (0, 0, 1) for a triangle of zero area.
std::vector<Vec3> ComputeFaceNormals(const IndexedMesh::Chunk& chunk);

// One influence per chunk with the weights that reach its vertices, which the weights then name.
// Every chunk has every bone, also those that move nothing in it.
// cornerMaps: per chunk and chunk vertex, the vertex of the mesh that it takes its weights from.
std::vector<std::unique_ptr<GenericMeshInfluence>> ExtractInfluences(
    const GenericMeshInfluence& mesh, std::span<const std::vector<uint32_t>> cornerMaps,
    ExportUserInterface& ui);

}  // namespace orv
