#pragma once

#include <array>
#include <optional>
#include <vector>

#include "scene/Vector.h"

namespace orv::convert {

// The files have z up, glTF has y up: a point (x, y, z) becomes (x, z, -y). As that is done in
// every node's own space, an unturned node stays unturned.
constexpr Vec3 YUp(Vec3 v) { return {v.x, v.z, -v.y}; }

using Double3 = BasicVec3<double>;
using Rotation = BasicQuaternion<double>;  // unit, of the right-hand rule, as glTF has it

// Where a node is, with y up: a point is mirrored at the origin if need be, turned, then moved.
struct Pose {
  Rotation rotation;
  Double3 position;
  bool mirrored = false;
};

// The pose in the world of something that stands at local in its parent's space.
Pose Compose(const Pose& parent, const Pose& local);
Pose Inverse(const Pose& pose);

// Nothing when a number is not finite or too large, or there is no direction in the rotation.
// scale: metres per unit of the position.
std::optional<Pose> PoseFrom(Vec3 position, Quaternion rotation, double scale);
std::optional<Pose> PoseFrom(Vec3 position, const Matrix33& rotation);

// A point, metres, z up, where it is in the world and in a bone's space.
struct PointPair {
  Vec3 world, local;
};

// Where in the world the bone is. Nothing when the points lie on one line or do not agree.
std::optional<Pose> PoseFrom(const std::vector<PointPair>& pairs);

// Column by column. Of a pose that is not mirrored.
std::array<float, 16> MatrixOf(const Pose& pose);

}  // namespace orv::convert
