#pragma once

#include <cmath>

// A point, direction or texture vertex.
class Point3 {
 public:
  float x = 0, y = 0, z = 0;

  constexpr Point3() = default;
  constexpr Point3(float x, float y, float z) : x(x), y(y), z(z) {}

  constexpr float& operator[](int i) { return i == 0 ? x : i == 1 ? y : z; }
  constexpr float operator[](int i) const { return i == 0 ? x : i == 1 ? y : z; }

  constexpr Point3 operator-() const { return {-x, -y, -z}; }
  constexpr Point3 operator+(const Point3& p) const { return {x + p.x, y + p.y, z + p.z}; }
  constexpr Point3 operator-(const Point3& p) const { return {x - p.x, y - p.y, z - p.z}; }
  constexpr Point3 operator*(float f) const { return {x * f, y * f, z * f}; }
  constexpr Point3 operator/(float f) const { return {x / f, y / f, z / f}; }
  constexpr Point3& operator+=(const Point3& p) { return *this = *this + p; }
  constexpr bool operator==(const Point3&) const = default;
};

constexpr Point3 operator*(float f, const Point3& p) { return p * f; }

constexpr float DotProd(const Point3& a, const Point3& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
constexpr Point3 CrossProd(const Point3& a, const Point3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline float Length(const Point3& p) { return std::sqrt(DotProd(p, p)); }

// A point of length 0 stays as it is.
inline Point3 Normalize(const Point3& p) {
  const float length = Length(p);
  return length > 0 ? p / length : p;
}
