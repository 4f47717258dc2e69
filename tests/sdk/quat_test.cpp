#include "quat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace {

// As row matrix: positive angles turn x to y, y to z, z to x.
Matrix3 Turn(int axis, double degrees) {
  const double angle = degrees * std::numbers::pi / 180;
  const float c = static_cast<float>(std::cos(angle)), s = static_cast<float>(std::sin(angle));
  const int j = (axis + 1) % 3, k = (axis + 2) % 3;
  Point3 rows[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  rows[j][j] = c, rows[j][k] = s;
  rows[k][j] = -s, rows[k][k] = c;
  return Matrix3(rows[0], rows[1], rows[2], {0, 0, 0});
}

std::vector<Matrix3> SomeTurns() {
  std::vector<Matrix3> turns;
  for (const double a : {-170.0, -90.0, 0.0, 35.0, 120.0, 180.0}) {
    for (const double b : {-100.0, 20.0, 180.0}) {
      turns.push_back(Turn(0, a) * Turn(1, b) * Turn(2, a - b));
      turns.push_back(Turn(2, b) * Turn(1, a));
    }
  }
  return turns;
}

void ExpectNear(const Quat& actual, float x, float y, float z, float w) {
  EXPECT_NEAR(actual.x, x, 1e-6);
  EXPECT_NEAR(actual.y, y, 1e-6);
  EXPECT_NEAR(actual.z, z, 1e-6);
  EXPECT_NEAR(actual.w, w, 1e-6);
}

float Dot(const Quat& a, const Quat& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
}

Matrix3 Negated(const Matrix3& m) {
  return Matrix3(-m.GetRow(0), -m.GetRow(1), -m.GetRow(2), m.GetRow(3));
}

TEST(Quat, FollowsTheLeftHandRule) {
  const float half = 0.70710678f;
  ExpectNear(Quat(Matrix3({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {1, 2, 3})), 0, 0, -half, half);
  ExpectNear(Quat(Turn(0, 90)), -half, 0, 0, half);
  ExpectNear(Quat(Turn(1, -90)), 0, half, 0, half);
  ExpectNear(Quat(Turn(2, 60)), 0, 0, -0.5f, std::sqrt(0.75f));
}

TEST(Quat, HalfTurnsKeepTheirAxis) {
  for (int axis = 0; axis < 3; ++axis) {
    const Quat q(Turn(axis, 180));
    const float parts[3] = {q.x, q.y, q.z};
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(std::abs(parts[i]), i == axis ? 1 : 0, 1e-6);
    EXPECT_NEAR(q.w, 0, 1e-6);
  }
}

TEST(Quat, ProductRunsInTheOrderOfTheMatrices) {
  for (const Matrix3& a : SomeTurns()) {
    for (const Matrix3& b : SomeTurns()) {
      EXPECT_NEAR(std::abs(Dot(Quat(a * b), Quat(a) * Quat(b))), 1, 1e-5);
    }
  }
}

TEST(Quat, IsUnitWithoutNegativeWAndWithoutMinusZero) {
  for (const Matrix3& turn : SomeTurns()) {
    const Quat q(turn);
    EXPECT_NEAR(Dot(q, q), 1, 1e-6);
    EXPECT_GE(q.w, 0);
  }
  const Quat none(Matrix3(TRUE));
  for (const float part : {none.x, none.y, none.z}) EXPECT_FALSE(std::signbit(part));
}

TEST(Quat, MirroredMatrixCountsAsItsNegatedRows) {
  for (const Matrix3& turn : SomeTurns()) {
    EXPECT_NEAR(std::abs(Dot(Quat(Negated(turn)), Quat(turn))), 1, 1e-6);
  }
  // Mirrored in x alone: the negated rows are a half turn about x.
  ExpectNear(Quat(Matrix3({-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0})), 1, 0, 0, 0);
}

TEST(Quat, MatrixOfZerosIsNoRotation) {
  ExpectNear(Quat(Matrix3(FALSE)), 0, 0, 0, 1);
}

}  // namespace
