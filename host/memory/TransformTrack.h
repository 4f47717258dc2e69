#pragma once

#include <vector>

#include "matrix3.h"

namespace orv::host {

// Right-handed rotation, as files count it; unit length.
struct Rotation {
  double x = 0, y = 0, z = 0, w = 1;
};

template <typename T>
struct Key {
  double seconds;
  T value;
};

// A node's movement relative to its parent: keys by rising time, each list on its own. Between keys
// values are interpolated, rotations the short way round; before the first and after the last they
// stand still.
struct TransformTrack {
  std::vector<Key<Point3>> scales;  // an empty list: no scale, no rotation, no move
  std::vector<Key<Rotation>> rotations;
  std::vector<Key<Point3>> translations;

  // Scale first, then rotation, then translation.
  Matrix3 At(double seconds) const;
};

Matrix3 ComposeTransform(const Point3& scale, const Rotation& rotation, const Point3& translation);

}  // namespace orv::host
