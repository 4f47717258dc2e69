#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "convert/Messages.h"
#include "convert/Pose.h"
#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"

namespace orv::convert {

// A bone of the model, the animation or both. The bones of the model come first, in its order.
struct SceneBone {
  std::string name;
  int32_t parent = -1;  // number of the bone above it; -1: none. Can come later in the list
  Pose rest;            // in the world at time 0, as the model has it; never mirrored
  int32_t track = -1;   // the animation's bone; -1: it is not animated. Its parent is animated too
};

// metresPerUnit: of the positions of a rigid model's bones.
std::vector<SceneBone> RigidBones(const IndexedMeshFile& file, double metresPerUnit,
                                  Messages& messages);

// The distinct bones of a skin in the order of first mention, names compared without case. The
// animation, if any, places bones that stand below something that the model lacks.
std::vector<SceneBone> SkinBones(const IndexedMesh& mesh, const AnimationFile* animation,
                                 double metresPerUnit, Messages& messages);

// Finds each bone's track by its name, without case; several of one name in their order. Adds the
// bones that only the animation has. The tree is the animation's where the two differ.
void JoinAnimation(const AnimationFile& animation, double metresPerUnit,
                   std::vector<SceneBone>& bones, Messages& messages);

}  // namespace orv::convert
