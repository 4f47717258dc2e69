#pragma once

#include <array>
#include <cmath>

namespace orv {

struct Vec2 {
  float u = 0, v = 0;
};

struct Vec3 {
  float x = 0, y = 0, z = 0;

  friend Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
  friend Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
  friend Vec3 operator*(Vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
  bool operator==(const Vec3&) const = default;
};

// Inline: the mesh stages call them for every corner.
inline float Dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 Cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float Length(Vec3 a) { return std::sqrt(Dot(a, a)); }

using Matrix33 = std::array<Vec3, 3>;  // rows

Vec3 operator*(Vec3 v, const Matrix33& m);  // row vector times matrix
Matrix33 Transpose(const Matrix33& m);      // of a rotation: its inverse

// Row vectors: a point p becomes p x rows 0 to 2 plus row 3.
struct Matrix43 {
  std::array<Vec3, 4> rows{Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}, Vec3{0, 0, 0}};

  Vec3 TransformPoint(Vec3 p) const;
  Vec3 TransformVector(Vec3 v) const;  // without the translation row
};

// The host's left-hand rule: the matrix with rows (0,1,0), (-1,0,0), (0,0,1) is the quaternion
// (0, 0, -0.70710678, 0.70710678), and Quat(A B) = Quat(A) Quat(B), A first.
struct Quaternion {
  float x = 0, y = 0, z = 0, w = 1;
};

Quaternion Conjugate(Quaternion q);
Quaternion operator*(Quaternion a, Quaternion b);  // a first
Matrix33 RotationRows(Quaternion q);               // the matrix of a unit quaternion

}  // namespace orv
