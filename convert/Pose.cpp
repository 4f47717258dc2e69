#include "convert/Pose.h"

#include <cmath>

namespace orv::convert {

namespace {

// Metres. Sums of what is nearer still fit into a float.
constexpr double kFarthest = 1e30;

Rotation Product(const Rotation& a, const Rotation& b) {  // b first
  return {
      a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
      a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}

Double3 Turned(const Rotation& q, const Double3& v) {
  const Double3 t{2 * (q.y * v.z - q.z * v.y), 2 * (q.z * v.x - q.x * v.z),
                  2 * (q.x * v.y - q.y * v.x)};
  return {v.x + q.w * t.x + q.y * t.z - q.z * t.y, v.y + q.w * t.y + q.z * t.x - q.x * t.z,
          v.z + q.w * t.z + q.x * t.y - q.y * t.x};
}

std::optional<Rotation> Unit(Rotation q) {
  const double length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
  if (!std::isfinite(length) || length < 1e-6) return std::nullopt;
  return Rotation{q.x / length, q.y / length, q.z / length, q.w / length};
}

bool IsFinite(Vec3 v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

// From the rows of a rotation that turns row vectors; right-hand rule, z up. The largest of the
// four divides, so that none of them loses its digits.
Rotation FromRows(const std::array<Double3, 3>& m) {
  const double xx = m[0].x, yy = m[1].y, zz = m[2].z;
  if (xx + yy + zz > 0) {
    return {m[1].z - m[2].y, m[2].x - m[0].z, m[0].y - m[1].x, 1 + xx + yy + zz};
  }
  if (xx >= yy && xx >= zz) {
    return {1 + xx - yy - zz, m[0].y + m[1].x, m[0].z + m[2].x, m[1].z - m[2].y};
  }
  if (yy >= zz) return {m[0].y + m[1].x, 1 - xx + yy - zz, m[1].z + m[2].y, m[2].x - m[0].z};
  return {m[0].z + m[2].x, m[1].z + m[2].y, 1 - xx - yy + zz, m[0].y - m[1].x};
}

std::optional<Pose> MakePose(Vec3 position, const Rotation& zUp, double scale, bool mirrored) {
  const std::optional<Rotation> unit = Unit({zUp.x, zUp.z, -zUp.y, zUp.w});
  const Vec3 p = YUp(position);
  if (!unit || !(Length(p) * scale < kFarthest)) return std::nullopt;
  return Pose{*unit, {p.x * scale, p.y * scale, p.z * scale}, mirrored};
}

}  // namespace

Pose Compose(const Pose& parent, const Pose& local) {
  const double sign = parent.mirrored ? -1 : 1;
  const Double3 offset = Turned(parent.rotation, local.position);
  return {Product(parent.rotation, local.rotation),
          {parent.position.x + sign * offset.x, parent.position.y + sign * offset.y,
           parent.position.z + sign * offset.z},
          parent.mirrored != local.mirrored};
}

Pose Inverse(const Pose& pose) {
  const Rotation back{-pose.rotation.x, -pose.rotation.y, -pose.rotation.z, pose.rotation.w};
  const Double3 moved = Turned(back, pose.position);
  const double sign = pose.mirrored ? 1 : -1;
  return {back, {sign * moved.x, sign * moved.y, sign * moved.z}, pose.mirrored};
}

// The files' quaternions follow the left-hand rule.
std::optional<Pose> PoseFrom(Vec3 position, Quaternion rotation, double scale) {
  return MakePose(position, {-rotation.x, -rotation.y, -rotation.z, rotation.w}, scale, false);
}

std::optional<Pose> PoseFrom(Vec3 position, const Matrix33& rotation) {
  for (const Vec3& row : rotation) {
    if (!IsFinite(row) || Length(row) < 1e-6f) return std::nullopt;
  }
  const float determinant = Dot(Cross(rotation[0], rotation[1]), rotation[2]);
  const double sign = determinant < 0 ? -1 : 1;
  std::array<Double3, 3> rows;
  for (size_t i = 0; i < 3; ++i) {
    rows[i] = {sign * rotation[i].x, sign * rotation[i].y, sign * rotation[i].z};
  }
  return MakePose(position, FromRows(rows), 1, determinant < 0);
}

std::array<float, 16> MatrixOf(const Pose& pose) {
  const Double3 columns[] = {Turned(pose.rotation, {1, 0, 0}), Turned(pose.rotation, {0, 1, 0}),
                             Turned(pose.rotation, {0, 0, 1}), pose.position};
  std::array<float, 16> matrix{};
  for (size_t i = 0; i < 4; ++i) {
    matrix[4 * i] = static_cast<float>(columns[i].x);
    matrix[4 * i + 1] = static_cast<float>(columns[i].y);
    matrix[4 * i + 2] = static_cast<float>(columns[i].z);
  }
  matrix[15] = 1;
  return matrix;
}

}  // namespace orv::convert
