#pragma once

// Linear colour, each part usually 0 to 1.
class Color {
 public:
  float r = 0, g = 0, b = 0;

  constexpr Color() = default;
  constexpr Color(float r, float g, float b) : r(r), g(g), b(b) {}
  constexpr Color operator*(float f) const { return {r * f, g * f, b * f}; }
  constexpr bool operator==(const Color&) const = default;
};
