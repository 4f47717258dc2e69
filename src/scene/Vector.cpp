#include "scene/Vector.h"

namespace orv {

Vec3 operator*(Vec3 v, const Matrix33& m) { return m[0] * v.x + m[1] * v.y + m[2] * v.z; }

Matrix33 Transpose(const Matrix33& m) {
  return {Vec3{m[0].x, m[1].x, m[2].x}, Vec3{m[0].y, m[1].y, m[2].y}, Vec3{m[0].z, m[1].z, m[2].z}};
}

Vec3 Matrix43::TransformPoint(Vec3 p) const { return TransformVector(p) + rows[3]; }

Vec3 Matrix43::TransformVector(Vec3 v) const {
  return rows[0] * v.x + rows[1] * v.y + rows[2] * v.z;
}

Matrix33 RotationRows(Quaternion q) {
  const float xx = q.x * q.x, yy = q.y * q.y, zz = q.z * q.z;
  const float xy = q.x * q.y, xz = q.x * q.z, yz = q.y * q.z;
  const float wx = q.w * q.x, wy = q.w * q.y, wz = q.w * q.z;
  return {Vec3{1 - 2 * (yy + zz), 2 * (xy - wz), 2 * (xz + wy)},
          Vec3{2 * (xy + wz), 1 - 2 * (xx + zz), 2 * (yz - wx)},
          Vec3{2 * (xz - wy), 2 * (yz + wx), 1 - 2 * (xx + yy)}};
}

}  // namespace orv
