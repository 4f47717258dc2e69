#pragma once

#include "scene/Vector.h"

namespace orv {

// Where a bone is: the record of both file types, 28 bytes.
struct BonePose {
  Vec3 position;
  Quaternion rotation;
};
static_assert(sizeof(BonePose) == 28);

}  // namespace orv
