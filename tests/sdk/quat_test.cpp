#include "quat.h"

#include <gtest/gtest.h>

namespace {

void ExpectNear(const Quat& actual, float x, float y, float z, float w) {
  EXPECT_NEAR(actual.x, x, 1e-6);
  EXPECT_NEAR(actual.y, y, 1e-6);
  EXPECT_NEAR(actual.z, z, 1e-6);
  EXPECT_NEAR(actual.w, w, 1e-6);
}

TEST(Quat, MirroredMatrixCountsAsItsNegatedRows) {
  // Mirrored in x alone: the negated rows are a half turn about x.
  ExpectNear(Quat(Matrix3({-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0})), 1, 0, 0, 0);
}

TEST(Quat, MatrixOfZerosIsNoRotation) { ExpectNear(Quat(Matrix3(FALSE)), 0, 0, 0, 1); }

}  // namespace
