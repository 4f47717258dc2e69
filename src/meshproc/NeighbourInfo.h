#pragma once

#include <vector>

#include "report/ExportUserInterface.h"
#include "scene/IndexedMesh.h"

namespace orv {

// Fills neighbours of every chunk: per triangle, the last one in the mesh, in chunk and then
// triangle order, that has the same two corner positions as its edge 0-1, 1-2 and 2-0. A triangle
// counts as its own neighbour on the edges 0-1 and 2-0; on the edge 1-2 no triangle counts that
// also has a corner where corner 0 is. Pinned by ChunkBuilding.AgreesWithTheLiteralProcedure.
void BuildNeighbourInfo(std::vector<IndexedMesh::Chunk>& chunks, ExportUserInterface& ui);

}  // namespace orv
