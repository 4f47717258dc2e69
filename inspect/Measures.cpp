#include "inspect/Measures.h"

#include <cmath>

namespace orv::inspect {

namespace {

constexpr float kUnitTolerance = 1e-3f;

}  // namespace

bool IsFinite(const IndexedVertex& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z) && std::isfinite(v.u) &&
         std::isfinite(v.v);
}

bool IsFinite(Vec3 v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

bool IsFinite(const Matrix33& m) { return IsFinite(m[0]) && IsFinite(m[1]) && IsFinite(m[2]); }

bool IsFinite(const BonePose& pose) {
  const Quaternion& q = pose.rotation;
  return IsFinite(pose.position) && IsFinite(Vec3{q.x, q.y, q.z}) && std::isfinite(q.w);
}

bool IsUnit(Vec3 v) { return std::abs(Dot(v, v) - 1) <= 2 * kUnitTolerance; }

float LengthOf(Quaternion q) { return std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w); }

bool IsUnit(Quaternion q) { return std::abs(LengthOf(q) - 1) <= kUnitTolerance; }

}  // namespace orv::inspect
