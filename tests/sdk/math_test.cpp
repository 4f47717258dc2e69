#include <gtest/gtest.h>

#include "matrix3.h"
#include "quat.h"

namespace {

void ExpectNear(const Quat& actual, float x, float y, float z, float w) {
  EXPECT_NEAR(std::abs(actual.x - x) + std::abs(actual.y - y), 0, 1e-6);
  EXPECT_NEAR(std::abs(actual.z - z) + std::abs(actual.w - w), 0, 1e-6);
}

TEST(Quat, MirroredMatrixCountsAsItsNegatedRows) {
  // Mirrored in x alone: the negated rows are a half turn about x.
  ExpectNear(Quat(Matrix3({-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0})), 1, 0, 0, 0);
  ExpectNear(Quat(Matrix3(FALSE)), 0, 0, 0, 1);
}

TEST(Matrix3, SingularMatrixInvertsToZeros) {
  const Matrix3 flat({1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {5, 6, 7});
  EXPECT_EQ(Inverse(flat), Matrix3(FALSE));
}

// Mirroring, the skew between rows and the translation stay; a row of zeros gives no NaN.
TEST(Matrix3, NoScaleTreatsEachRowOnItsOwn) {
  Matrix3 matrix({0, 4, 0}, {0, -2, 0}, {0, 0, 0}, {5, 6, 7});
  matrix.NoScale();
  EXPECT_EQ(matrix, Matrix3({0, 1, 0}, {0, -1, 0}, {0, 0, 0}, {5, 6, 7}));
}

}  // namespace
