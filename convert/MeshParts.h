#pragma once

#include <optional>

#include "convert/GlbDocument.h"
#include "convert/Messages.h"
#include "convert/SkinWeights.h"

namespace orv::convert {

// A chunk as a primitive of a mesh, its material left to be set. Nothing, with a message, for a
// chunk without triangles. weights: empty for a chunk that follows no bones.
std::optional<Json> AddPrimitive(GlbDocument& document, const IndexedMesh::Chunk& chunk,
                                 size_t number, const ChunkWeights& weights, Messages& messages);

}  // namespace orv::convert
