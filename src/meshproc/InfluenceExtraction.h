#pragma once

#include <memory>
#include <span>
#include <vector>

#include "report/ExportUserInterface.h"
#include "scene/GenericInfluence.h"

namespace orv {

// One influence per chunk with the weights that reach its vertices, which the weights then name.
// Every chunk has every bone, also those that move nothing in it.
// cornerMaps: per chunk and chunk vertex, the vertex of the mesh that it takes its weights from.
std::vector<std::unique_ptr<GenericMeshInfluence>> ExtractInfluences(
    const GenericMeshInfluence& mesh, std::span<const std::vector<uint32_t>> cornerMaps,
    ExportUserInterface& ui);

}  // namespace orv
