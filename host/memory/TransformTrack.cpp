#include "host/memory/TransformTrack.h"

#include <algorithm>
#include <cmath>

namespace orv::host {
namespace {

Point3 Interpolate(const Point3& a, const Point3& b, double t) {
  const auto mix = [t](double from, double to) {
    return static_cast<float>(from + (to - from) * t);
  };
  return {mix(a.x, b.x), mix(a.y, b.y), mix(a.z, b.z)};
}

Rotation Interpolate(const Rotation& a, Rotation b, double t) {
  double cosine = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
  if (cosine < 0) {
    b = {-b.x, -b.y, -b.z, -b.w};
    cosine = -cosine;
  }
  double fromA = 1 - t, fromB = t;
  if (cosine < 1 - 1e-9) {
    const double angle = std::acos(cosine);
    fromA = std::sin(fromA * angle) / std::sin(angle);
    fromB = std::sin(fromB * angle) / std::sin(angle);
  }
  return {a.x * fromA + b.x * fromB, a.y * fromA + b.y * fromB, a.z * fromA + b.z * fromB,
          a.w * fromA + b.w * fromB};
}

template <typename T>
T ValueAt(const std::vector<Key<T>>& keys, double seconds, const T& otherwise) {
  if (keys.empty()) return otherwise;
  const auto after =
      std::upper_bound(keys.begin(), keys.end(), seconds,
                       [](double time, const Key<T>& key) { return time < key.seconds; });
  if (after == keys.begin()) return keys.front().value;
  if (after == keys.end()) return keys.back().value;
  const Key<T>& before = *(after - 1);
  return Interpolate(before.value, after->value,
                     (seconds - before.seconds) / (after->seconds - before.seconds));
}

}  // namespace

Matrix3 TransformTrack::At(double seconds) const {
  return ComposeTransform(ValueAt(scales, seconds, Point3(1, 1, 1)),
                          ValueAt(rotations, seconds, Rotation()),
                          ValueAt(translations, seconds, Point3()));
}

Matrix3 ComposeTransform(const Point3& scale, const Rotation& q, const Point3& translation) {
  const double axes[3][3] = {
      {1 - 2 * (q.y * q.y + q.z * q.z), 2 * (q.x * q.y + q.w * q.z), 2 * (q.x * q.z - q.w * q.y)},
      {2 * (q.x * q.y - q.w * q.z), 1 - 2 * (q.x * q.x + q.z * q.z), 2 * (q.y * q.z + q.w * q.x)},
      {2 * (q.x * q.z + q.w * q.y), 2 * (q.y * q.z - q.w * q.x), 1 - 2 * (q.x * q.x + q.y * q.y)}};
  Matrix3 matrix;
  for (int row = 0; row < 3; ++row) {
    const double factor = scale[row];
    matrix.SetRow(
        row, {static_cast<float>(axes[row][0] * factor), static_cast<float>(axes[row][1] * factor),
              static_cast<float>(axes[row][2] * factor)});
  }
  matrix.SetTrans(translation);
  return matrix;
}

}  // namespace orv::host
