#pragma once

class Point2 {
 public:
  float x = 0, y = 0;

  constexpr Point2() = default;
  constexpr Point2(float x, float y) : x(x), y(y) {}
  constexpr bool operator==(const Point2&) const = default;
};
