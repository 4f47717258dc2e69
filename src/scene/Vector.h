#pragma once

#include <array>
#include <cmath>

namespace orv {

struct Vec2 {
  float u = 0, v = 0;
};

// Of float in the records and files, of double where conversions multiply many.
template <typename Scalar>
struct BasicVec3 {
  Scalar x = 0, y = 0, z = 0;

  friend BasicVec3 operator+(BasicVec3 a, BasicVec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
  friend BasicVec3 operator-(BasicVec3 a, BasicVec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
  friend BasicVec3 operator*(BasicVec3 a, Scalar s) { return {a.x * s, a.y * s, a.z * s}; }
  bool operator==(const BasicVec3&) const = default;
};
using Vec3 = BasicVec3<float>;

// Inline: the mesh stages call them for every corner.
template <typename Scalar>
Scalar Dot(BasicVec3<Scalar> a, BasicVec3<Scalar> b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
template <typename Scalar>
BasicVec3<Scalar> Cross(BasicVec3<Scalar> a, BasicVec3<Scalar> b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
template <typename Scalar>
Scalar Length(BasicVec3<Scalar> a) {
  return std::sqrt(Dot(a, a));
}
inline bool IsFinite(Vec3 v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

using Matrix33 = std::array<Vec3, 3>;  // rows

// Row vector times matrix.
inline Vec3 operator*(Vec3 v, const Matrix33& m) { return m[0] * v.x + m[1] * v.y + m[2] * v.z; }

// Of a rotation: its inverse.
inline Matrix33 Transpose(const Matrix33& m) {
  return {Vec3{m[0].x, m[1].x, m[2].x}, Vec3{m[0].y, m[1].y, m[2].y}, Vec3{m[0].z, m[1].z, m[2].z}};
}

// Row vectors: a point p becomes p x rows 0 to 2 plus row 3.
struct Matrix43 {
  std::array<Vec3, 4> rows{Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}, Vec3{0, 0, 0}};

  Vec3 TransformPoint(Vec3 p) const { return TransformVector(p) + rows[3]; }
  // Without the translation row.
  Vec3 TransformVector(Vec3 v) const { return rows[0] * v.x + rows[1] * v.y + rows[2] * v.z; }
};

// The host's left-hand rule: the matrix with rows (0,1,0), (-1,0,0), (0,0,1) is the quaternion
// (0, 0, -0.70710678, 0.70710678), and Quat(A B) = Quat(A) Quat(B), A first.
template <typename Scalar>
struct BasicQuaternion {
  Scalar x = 0, y = 0, z = 0, w = 1;
};
using Quaternion = BasicQuaternion<float>;

template <typename Scalar>
BasicQuaternion<Scalar> Conjugate(BasicQuaternion<Scalar> q) {
  return {-q.x, -q.y, -q.z, q.w};
}
template <typename Scalar>
BasicQuaternion<Scalar> operator*(BasicQuaternion<Scalar> a,
                                  BasicQuaternion<Scalar> b) {  // a first
  return {
      a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
      a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}
template <typename Scalar>
Scalar Dot(BasicQuaternion<Scalar> a, BasicQuaternion<Scalar> b) {
  return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}
template <typename Scalar>
Scalar Length(BasicQuaternion<Scalar> q) {
  return std::sqrt(Dot(q, q));
}

// The matrix of a unit quaternion.
inline Matrix33 RotationRows(Quaternion q) {
  const float xx = q.x * q.x, yy = q.y * q.y, zz = q.z * q.z;
  const float xy = q.x * q.y, xz = q.x * q.z, yz = q.y * q.z;
  const float wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
  return {Vec3{1 - 2 * (yy + zz), 2 * (xy - wz), 2 * (xz + wy)},
          Vec3{2 * (xy + wz), 1 - 2 * (xx + zz), 2 * (yz - wx)},
          Vec3{2 * (xz - wy), 2 * (yz + wx), 1 - 2 * (xx + yy)}};
}

}  // namespace orv
