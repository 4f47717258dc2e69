#include "convert/Pose.h"

#include <algorithm>
#include <cmath>

namespace orv::convert {

namespace {

// Metres. Sums of what is nearer still fit into a float.
constexpr double kFarthest = 1e30;

Double3 Turned(Rotation q, Double3 v) {
  const Double3 t = Cross(Double3{q.x, q.y, q.z}, v) * 2;
  return {v.x + q.w * t.x + q.y * t.z - q.z * t.y, v.y + q.w * t.y + q.z * t.x - q.x * t.z,
          v.z + q.w * t.z + q.x * t.y - q.y * t.x};
}

std::optional<Rotation> Unit(Rotation q) {
  const double length = Length(q);
  if (!std::isfinite(length) || length < 1e-6) return std::nullopt;
  return Rotation{q.x / length, q.y / length, q.z / length, q.w / length};
}

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
  return Pose{*unit, Double3{p.x, p.y, p.z} * scale, mirrored};
}

// Three right-angled directions along the triangle a, b, c.
Matrix33 FrameOf(Vec3 a, Vec3 b, Vec3 c) {
  const Vec3 x = (b - a) * (1 / Length(b - a));
  const Vec3 normal = Cross(x, c - a);
  const Vec3 z = normal * (1 / Length(normal));
  return {x, Cross(z, x), z};
}

float DistanceFromLine(Vec3 p, Vec3 a, Vec3 direction) { return Length(Cross(p - a, direction)); }

template <typename Measure>
const PointPair& FarthestBy(const std::vector<PointPair>& pairs, Measure measure) {
  return *std::max_element(pairs.begin(), pairs.end(), [&](const PointPair& a, const PointPair& b) {
    return measure(a) < measure(b);
  });
}

bool Agrees(const std::vector<PointPair>& pairs, const Matrix33& rotation, Vec3 position,
            float tolerance) {
  return std::all_of(pairs.begin(), pairs.end(), [&](const PointPair& pair) {
    return Length(pair.local * rotation + position - pair.world) <= tolerance;
  });
}

}  // namespace

Pose Compose(const Pose& parent, const Pose& local) {
  const Double3 offset = Turned(parent.rotation, local.position);
  return {parent.rotation * local.rotation, parent.position + offset * (parent.mirrored ? -1 : 1),
          parent.mirrored != local.mirrored};
}

Pose Inverse(const Pose& pose) {
  const Rotation back = Conjugate(pose.rotation);
  return {back, Turned(back, pose.position) * (pose.mirrored ? 1 : -1), pose.mirrored};
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

std::optional<Pose> PoseFrom(const std::vector<PointPair>& pairs) {
  if (pairs.size() < 3) return std::nullopt;
  const PointPair& a = pairs.front();
  const PointPair& b =
      FarthestBy(pairs, [&](const PointPair& p) { return Length(p.world - a.world); });
  const float size = Length(b.world - a.world);
  const Vec3 line = (b.world - a.world) * (1 / size);
  const PointPair& c = FarthestBy(
      pairs, [&](const PointPair& p) { return DistanceFromLine(p.world, a.world, line); });
  if (!(size > 0) || !(DistanceFromLine(c.world, a.world, line) > 1e-3f * size)) {
    return std::nullopt;
  }
  const Matrix33 toFrame = Transpose(FrameOf(a.local, b.local, c.local));
  Matrix33 world = FrameOf(a.world, b.world, c.world);
  for (int attempt = 0; attempt < 2; ++attempt) {
    const Matrix33 rotation = {toFrame[0] * world, toFrame[1] * world, toFrame[2] * world};
    const Vec3 position = a.world - a.local * rotation;
    if (Agrees(pairs, rotation, position, 1e-3f * size)) return PoseFrom(position, rotation);
    world[2] = world[2] * -1;  // a mirrored bone
  }
  return std::nullopt;
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
