#pragma once

#include <cmath>

#include "formats/BoneTree.h"
#include "scene/IndexedMesh.h"

// Small tests that run over every number of a file.
namespace orv::inspect {

// Nothing but a finite number times 0 is 0.
inline bool IsFinite(Vec3 v) { return v.x * 0 + v.y * 0 + v.z * 0 == 0; }

inline bool IsFinite(const Matrix33& m) {
  return IsFinite(m[0]) && IsFinite(m[1]) && IsFinite(m[2]);
}

inline bool IsFinite(const IndexedVertex& v) {
  return IsFinite(v.Position()) && v.u * 0 + v.v * 0 == 0;
}

inline bool IsFinite(const BonePose& pose) {
  const Quaternion& q = pose.rotation;
  return IsFinite(pose.position) && IsFinite(Vec3{q.x, q.y, q.z}) && q.w * 0 == 0;
}

inline constexpr float kUnitTolerance = 1e-3f;

inline bool IsUnit(Vec3 v) {
  return std::abs(v.x * v.x + v.y * v.y + v.z * v.z - 1) <= 2 * kUnitTolerance;
}

inline float LengthOf(Quaternion q) {
  return std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
}

inline bool IsUnit(Quaternion q) { return std::abs(LengthOf(q) - 1) <= kUnitTolerance; }

}  // namespace orv::inspect
