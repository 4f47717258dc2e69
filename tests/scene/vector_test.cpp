#include "scene/Vector.h"

#include <gtest/gtest.h>

namespace orv {
namespace {

constexpr float kHalf = 0.70710678f;

void ExpectNear(Vec3 actual, Vec3 expected) {
  EXPECT_NEAR(actual.x, expected.x, 1e-6f);
  EXPECT_NEAR(actual.y, expected.y, 1e-6f);
  EXPECT_NEAR(actual.z, expected.z, 1e-6f);
}

void ExpectNear(const Matrix33& actual, const Matrix33& expected) {
  for (int row = 0; row < 3; ++row) ExpectNear(actual[row], expected[row]);
}

TEST(Quaternions, LeftHandRuleForEachAxis) {
  ExpectNear(RotationRows({0, 0, -kHalf, kHalf}), {Vec3{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}});
  ExpectNear(RotationRows({-kHalf, 0, 0, kHalf}), {Vec3{1, 0, 0}, {0, 0, 1}, {0, -1, 0}});
  ExpectNear(RotationRows({0, -kHalf, 0, kHalf}), {Vec3{0, 0, -1}, {0, 1, 0}, {1, 0, 0}});
}

TEST(Quaternions, ProductAppliesItsFirstFactorFirst) {
  const Quaternion a{0, 0, -kHalf, kHalf};
  const Quaternion b{-0.6f, 0, 0, 0.8f};
  const Matrix33 ma = RotationRows(a), mb = RotationRows(b);
  ExpectNear(RotationRows(a * b), {ma[0] * mb, ma[1] * mb, ma[2] * mb});
}

// Parent turned +90 degrees about z at (1, 0, 0), bone unturned at (1, 2, 0).
TEST(Quaternions, ParentRelativeTransform) {
  const Quaternion parent{0, 0, -kHalf, kHalf};
  const Quaternion stored = Conjugate(parent) * Quaternion{};
  EXPECT_NEAR(stored.z, kHalf, 1e-6f);
  EXPECT_NEAR(stored.w, kHalf, 1e-6f);
  const Vec3 offset = Vec3{1, 2, 0} - Vec3{1, 0, 0};
  ExpectNear(offset * Transpose(RotationRows(parent)), {2, 0, 0});
}

TEST(Matrices, RowVectorsTakeTheTranslationOnlyAsPoints) {
  const Matrix43 tm{{Vec3{0, 2, 0}, {-1, 0, 0}, {0, 0, 3}, {10, 20, 30}}};
  ExpectNear(tm.TransformPoint({1, 2, 3}), {8, 22, 39});
  ExpectNear(tm.TransformVector({1, 2, 3}), {-2, 2, 9});
  ExpectNear(Cross({1, 0, 0}, {0, 1, 0}), {0, 0, 1});
}

}  // namespace
}  // namespace orv
