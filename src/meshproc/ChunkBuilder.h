#pragma once

#include <vector>

#include "meshproc/ChunkDraft.h"
#include "report/ExportUserInterface.h"
#include "scene/IndexedMesh.h"

namespace orv {

// One draft per material, holding the faces of that material in the mesh's order. A face that
// names no entry of one of the mesh's tables is left out.
std::vector<ChunkDraft> GroupFacesByMaterial(const GenericMesh& mesh, ExportUserInterface& ui);

// Makes the chunks, emptying the drafts one by one. False, with an error logged, at the first index
// that does not fit into 16 bits.
bool FinishChunks(const GenericMesh& mesh, std::vector<ChunkDraft>& drafts,
                  std::vector<IndexedMesh::Chunk>& chunks, ExportUserInterface& ui);

// Only the indices move: the last triangle takes the place of a degenerate one, while face normals
// and neighbours stay in their rows. Pinned by ChunkBuilding.DegenerateTrianglesLeaveTheirRows.
void RemoveDegenerateTriangles(IndexedMesh::Chunk& chunk);

}  // namespace orv
