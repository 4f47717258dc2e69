#include "matrix3.h"

#include <gtest/gtest.h>

namespace {

void ExpectNear(const Point3& actual, const Point3& expected) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-5) << "component " << i;
}

void ExpectNear(const Matrix3& actual, const Matrix3& expected) {
  for (int row = 0; row < 4; ++row) {
    SCOPED_TRACE(row);
    ExpectNear(actual.GetRow(row), expected.GetRow(row));
  }
}

TEST(Matrix3, SingularMatrixInvertsToZeros) {
  const Matrix3 flat({1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {5, 6, 7});
  EXPECT_EQ(Inverse(flat), Matrix3(FALSE));
}

TEST(Matrix3, NoScaleTreatsEachRowOnItsOwn) {
  Matrix3 matrix({3, 4, 0}, {0, -2, 0}, {0, 0, 0}, {5, 6, 7});
  matrix.NoScale();
  // Mirroring, the skew between rows and the translation stay; a row of zeros gives no NaN.
  ExpectNear(matrix, Matrix3({0.6f, 0.8f, 0}, {0, -1, 0}, {0, 0, 0}, {5, 6, 7}));
}

}  // namespace
