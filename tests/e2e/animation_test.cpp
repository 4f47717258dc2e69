#include <gtest/gtest.h>

#include "e2e/Orv.h"

namespace orv {
namespace {

using independent::AnimationFile;
using Pose = std::array<float, 7>;

const std::string kMoving = DataFile("moving.gltf");

void ExpectNear(const Pose& actual, const Pose& expected, const std::string& what) {
  for (size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], 1e-5) << what << ", value " << i;
  }
}

TEST(Animation, TakesTheOneNamed) {
  const Workplace place;
  EXPECT_EQ(place.Export(kMoving, "out", {"--animation", "Hop"}).status, 0);
  const AnimationFile file = place.Animation("out.kin");
  ASSERT_EQ(file.frames.size(), 16u);
  ExpectNear(file.frames[15][0], {1, -3, 4, 0, 0, 0, 1}, "b.root");
}

TEST(Animation, CarriesTheEventsOfItsRange) {
  const Workplace place;
  WriteContent(place.Path("steps.evt"),
               "// footsteps\n9 Sound_Event early 10 Sound_Event left\n"
               "20 Effect_Event dust /* the last */ 21 Sound_Event late\n12 Dance no\n");
  const Outcome run =
      place.Export(kMoving, "out", {"--events", "steps.evt", "--frames", "10:20", "--unit", "0.5"});
  EXPECT_EQ(run.status, 0) << run.err;
  const AnimationFile file = place.Animation("out.kin");
  EXPECT_EQ(file.masterScale, 0.5f);
  ASSERT_EQ(file.events.size(), 2u);
  EXPECT_EQ(file.events[0].frame, 0);
  EXPECT_EQ(file.events[0].type, 0u);
  EXPECT_EQ(file.events[0].name, "left");
  EXPECT_EQ(file.events[1].frame, 10);
  EXPECT_EQ(file.events[1].type, 5u);
  EXPECT_EQ(file.events[1].name, "dust");

  WriteContent(place.Path("steps.evt"), "10 Sound_Event left\n\nsoon Sound_Event right\n");
  const Outcome malformed = place.Export(kMoving, "out", {"--events", "steps.evt"});
  EXPECT_EQ(malformed.status, 0) << malformed.err;
  EXPECT_TRUE(
      malformed.Says("warning: Event file steps.evt is malformed at line 3, later events "
                     "are ignored."))
      << malformed.err;
  EXPECT_EQ(place.Animation("out.kin").events.size(), 1u);
}

}  // namespace
}  // namespace orv
