#pragma once

#include "matrix3.h"
#include "maxheap.h"

// Rotation as the host counts it, by the left-hand rule: the row matrix that turns +90 degrees
// about z, rows (0,1,0), (-1,0,0), (0,0,1), is (0, 0, -0.70710678, 0.70710678).
class Quat : public MaxHeapOperators {
 public:
  float x = 0, y = 0, z = 0, w = 1;

  Quat() = default;
  Quat(float x, float y, float z, float w) : x(x), y(y), z(z), w(w) {}

  // The rotation of rows 0 to 2, which should have been freed of scale (Matrix3::NoScale). A
  // mirrored matrix counts as its negated rows. Unit length, w not negative.
  explicit Quat(const Matrix3& matrix);
};
