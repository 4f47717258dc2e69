#pragma once

#include <string>

#include "color.h"
#include "matrix3.h"
#include "point3.h"
#include "scene/Vector.h"

namespace orv {

constexpr int kMetres = 5;  // unit code of GetMasterScale

// The host's plain values as the records hold them.

inline Vec3 ToVec3(const Point3& p) { return {p.x, p.y, p.z}; }

inline Vec3 ToVec3(const Color& c) { return {c.r, c.g, c.b}; }

inline Matrix33 RotationPart(const Matrix3& m) {
  return {ToVec3(m.GetRow(0)), ToVec3(m.GetRow(1)), ToVec3(m.GetRow(2))};
}

inline Matrix43 ToMatrix43(const Matrix3& m) {
  return {{ToVec3(m.GetRow(0)), ToVec3(m.GetRow(1)), ToVec3(m.GetRow(2)), ToVec3(m.GetRow(3))}};
}

inline Matrix3 WithoutScale(Matrix3 m) {
  m.NoScale();
  return m;
}

// As much of a name as the records keep.
inline std::string RecordName(const char* name) {
  constexpr size_t kMaxName = 255;
  return std::string(name ? name : "").substr(0, kMaxName);
}

}  // namespace orv
