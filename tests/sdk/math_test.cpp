#include <gtest/gtest.h>

#include "matrix3.h"
#include "quat.h"

namespace {

// Right-handed about a unit axis, then moved.
Matrix3 Turn(const Point3& axis, float angle, const Point3& move) {
  const auto turned = [&](const Point3& p) {
    return p * std::cos(angle) + CrossProd(axis, p) * std::sin(angle) +
           axis * (DotProd(axis, p) * (1 - std::cos(angle)));
  };
  return {turned({1, 0, 0}), turned({0, 1, 0}), turned({0, 0, 1}), move};
}

void ExpectNear(const Quat& a, const Quat& b) {
  EXPECT_LT(Length(Point3(a.x - b.x, a.y - b.y, a.z - b.z)) + std::abs(a.w - b.w), 1e-5);
}

const Point3 kAxes[] = {{1, 0, 0},       {0, 1, 0},        {0, 0, 1},
                        {0, 0.6f, 0.8f}, {0.6f, -0.8f, 0}, {0.48f, 0.6f, -0.64f}};

// The left-hand rule turns the axis round. A mirrored matrix counts as its negated rows.
TEST(Quat, IsTheRotationByTheLeftHandRule) {
  for (const Point3& axis : kAxes) {
    for (const float angle : {0.0f, 0.5f, 1.6f, 2.5f, 3.0f, -2.8f, -0.1f}) {
      const float sine = -std::sin(angle / 2), cosine = std::cos(angle / 2);
      const Quat expected(axis.x * sine, axis.y * sine, axis.z * sine, cosine);
      const Matrix3 turn = Turn(axis, angle, {5, 6, 7});
      ExpectNear(Quat(turn), expected);
      ExpectNear(Quat(Matrix3(-turn.GetRow(0), -turn.GetRow(1), -turn.GetRow(2), {})), expected);
    }
  }
  ExpectNear(Quat(Matrix3(FALSE)), Quat());
}

TEST(Matrix3, ProductsApplyTheFirstFirstAndInversesUndoThem) {
  const Point3 p(3, -1, 2);
  for (const Point3& axis : kAxes) {
    Matrix3 a = Turn(axis, 1.3f, {1, 2, 3});
    const Matrix3 b = Turn(kAxes[3], 0.7f, {-2, 0, 5});
    a.SetRow(1, a.GetRow(1) * -3);
    EXPECT_LT(Length(p * (a * b) - p * a * b), 1e-5);
    EXPECT_LT(Length(p * a * Inverse(a) - p), 1e-5);
  }
  EXPECT_EQ(Inverse(Matrix3({1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {5, 6, 7})), Matrix3(FALSE));
  EXPECT_FALSE(Turn(kAxes[0], 1, {1, 2, 3}) == Turn(kAxes[0], 1, {1, 2, 4}));
}

// Mirroring, the skew between rows and the translation stay; a row of zeros gives no NaN.
TEST(Matrix3, NoScaleTreatsEachRowOnItsOwn) {
  Matrix3 matrix({0, 0.25f, 0}, {0, 0, 0}, {0, -2, 0}, {5, 6, 7});
  matrix.NoScale();
  EXPECT_EQ(matrix, Matrix3({0, 1, 0}, {0, 0, 0}, {0, -1, 0}, {5, 6, 7}));
}

}  // namespace
