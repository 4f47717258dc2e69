#pragma once

#include <vector>

#include "meshproc/ChunkBuilder.h"
#include "meshproc/MeshLimits.h"
#include "report/ExportUserInterface.h"

namespace orv {

// Replaces the drafts that exceed the vertex or index limit by pieces under all limits, behind the
// drafts that are kept whole. A triangle goes into the first piece that has room for it; one that
// has no room even in a new piece is dropped, and the piece stays.
// Pass the influence of a skinned mesh, else null.
void SplitToLimits(std::vector<ChunkDraft>& drafts, const GenericMeshInfluence* influence,
                   const MeshLimits& limits, ExportUserInterface& ui);

}  // namespace orv
