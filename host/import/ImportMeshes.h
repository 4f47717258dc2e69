// Inside of OpenScene: meshes and their skins.
#pragma once

#include "host/import/ImportContext.h"
#include "host/import/ImportMaterials.h"
#include "host/import/ImportNodes.h"

namespace orv::host {

// Gives the tree's nodes their meshes and materials. Nodes that name the same meshes share one
// object. Each of the importer's meshes is deleted as soon as it is taken over.
void ImportMeshes(ImportContext& context, const SourceTree& tree, MaterialImport& materials);

}  // namespace orv::host
