#pragma once

#include "report/ExportUserInterface.h"
#include "scene/GenericMaterial.h"
#include "scene/GenericMesh.h"
#include "stdmat.h"

namespace orv {

// Fills the record from a standard material as it stands at time 0, and the transform from its
// diffuse map, which leaves a new one as it is where it says nothing. Maps that cannot be used are
// reported and left out. A null material changes nothing.
void ReadMaterial(GenericMaterial& out, StdMat2* material, TexCoordTransform& transform,
                  const char* meshName, bool flipGreen, ExportUserInterface& ui);

}  // namespace orv
