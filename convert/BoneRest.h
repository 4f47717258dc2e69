#pragma once

#include <optional>
#include <vector>

#include "convert/Pose.h"
#include "scene/IndexedMesh.h"

namespace orv::convert {

// The entries of one bone, one for each chunk that lists it, or more.
struct BoneEntry {
  size_t chunk = 0;
  const GenericBoneInfluence* bone = nullptr;  // not owned
};

// Where in the world a bone stands, told from the vertices that follow it: they are stored in the
// world's space and in the bone's. Nothing when they lie on one line or do not agree.
std::optional<Pose> RestFromVertices(const IndexedMesh& mesh,
                                     const std::vector<BoneEntry>& entries);

}  // namespace orv::convert
