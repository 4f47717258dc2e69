#pragma once

#include <vector>

#include "imtl.h"
#include "mesh.h"
#include "options/Options.h"
#include "report/ExportUserInterface.h"
#include "scene/GenericMesh.h"

namespace orv {

enum class FillResult {
  Filled = 0,
  NoTextureMapping = 1,
  NonStandardSubMaterial = 3,
  NonStandardMaterial = 4,
  NoFaces = 5
};

// A mesh filled from the host: in the node's space, in system units.
class MaxExGenericMesh : public ExGenericMesh {
 public:
  // Once, into an empty mesh. Builds the host mesh's normals if it has none. Every material is to
  // be attached to the bone, which can be null; so can the material. On success `transforms` holds
  // one entry for each material. Only bad materials are reported here.
  FillResult Fill(Mesh& hostMesh, const GenericSkeleton::Node* bone, Mtl* material,
                  std::vector<TexCoordTransform>& transforms, const char* nodeName,
                  const Options& options, ExportUserInterface& ui);

 private:
  FillResult ReadMaterials(Mtl* material, std::vector<TexCoordTransform>& transforms,
                           const char* nodeName, const Options& options, ExportUserInterface& ui);
};

}  // namespace orv
