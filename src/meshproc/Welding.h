#pragma once

#include <vector>

#include "meshproc/ChunkBuilder.h"
#include "report/ExportUserInterface.h"

namespace orv {

// Fills triangles and vertices of every draft from its faces: corners whose position, texture
// coordinate and normal are exactly equal share a vertex, a corner that holds a NaN shares with
// none. Corners are numbered 3 x triangle + corner. A vertex has the values of its first corner and
// that corner's number; where that lies beyond the final vertex count, the place of the first free
// number instead, the last such vertex first.
void WeldVertices(const GenericMesh& mesh, std::vector<ChunkDraft>& drafts, bool keepCornerMaps,
                  ExportUserInterface& ui);

}  // namespace orv
