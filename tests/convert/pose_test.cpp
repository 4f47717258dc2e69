#include "convert/Pose.h"

#include <gtest/gtest.h>

namespace orv::convert {
namespace {

// Where a pose takes a point, z up.
Vec3 Placed(const Pose& pose, Vec3 point) {
  const Vec3 p = YUp(point);
  const Double3 at = Compose(pose, {{}, Double3{p.x, p.y, p.z}, false}).position;
  return {static_cast<float>(at.x), static_cast<float>(-at.z), static_cast<float>(at.y)};
}

void ExpectNear(Vec3 a, Vec3 b) { EXPECT_NEAR(Length(a - b), 0, 1e-5); }

// All ways to put three axes onto three axes, half of them mirrored, and a little further.
std::vector<Matrix33> AllTurns() {
  const Matrix33 tilt = RotationRows({0.1f, -0.1f, 0.7f, 0.7f});
  std::vector<Matrix33> turns;
  const Vec3 axes[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  for (size_t first = 0; first < 3; ++first) {
    for (size_t step = 1; step < 3; ++step) {
      for (int signs = 0; signs < 8; ++signs) {
        const auto row = [&](size_t number) {
          return axes[(first + number * step) % 3] * (signs >> number & 1 ? -1.0f : 1.0f);
        };
        turns.push_back({row(0) * tilt, row(1) * tilt, row(2) * tilt});
      }
    }
  }
  return turns;
}

TEST(Pose, EveryTurnAndMirroringIsKept) {
  const std::vector<Matrix33> turns = AllTurns();
  const Vec3 point{1, 2, 3}, place{7, 8, 9};
  for (size_t i = 0; i < turns.size(); ++i) {
    const Matrix33& turn = turns[i];
    const std::optional<Pose> pose = PoseFrom(place, turn);
    ASSERT_TRUE(pose);
    EXPECT_EQ(pose->mirrored, Dot(Cross(turn[0], turn[1]), turn[2]) < 0);
    ExpectNear(Placed(*pose, point), point * turn + place);
    const Pose child = *PoseFrom(Vec3{1, -2, 4}, turns[(i + 17) % turns.size()]);
    const Pose back = Compose(Inverse(*pose), Compose(*pose, child));
    ExpectNear(Placed(back, point), point * turns[(i + 17) % turns.size()] + Vec3{1, -2, 4});
  }
}

// Where four points not in one plane are seen from, or nothing when they do not agree.
TEST(Pose, PointsTellWhereTheyAreSeenFrom) {
  for (const Matrix33& turn : AllTurns()) {
    std::vector<PointPair> pairs;
    for (const Vec3 local : {Vec3{0, 0, 0}, {1, 0, 0}, {0, 2, 0}, {0, 0, 3}}) {
      pairs.push_back({local * turn + Vec3{5, 6, 7}, local});
    }
    const std::optional<Pose> pose = PoseFrom(pairs);
    ASSERT_TRUE(pose);
    for (const PointPair& pair : pairs) ExpectNear(Placed(*pose, pair.local), pair.world);
    pairs[3].world.x += 0.1f;
    EXPECT_FALSE(PoseFrom(pairs));
    pairs.resize(2);
    EXPECT_FALSE(PoseFrom(pairs));
    pairs.push_back({(pairs[0].world + pairs[1].world) * 0.5f, {0.5f, 0, 0}});
    EXPECT_FALSE(PoseFrom(pairs));  // on one line
  }
}

}  // namespace
}  // namespace orv::convert
