#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

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

// The poses of b.root, b.arm r. and b.hand in the animation "Roll", by hand: the root walks along
// x, the arm above it turns about the up axis. Quaternions by the host's left-hand rule.
std::array<Pose, 3> RollAt(double seconds) {
  const double x = 1 + 2 * seconds;
  const double angle = (90 + 30 * seconds) * std::numbers::pi / 180;
  const auto f = [](double value) { return static_cast<float>(value); };
  const float sine = f(-std::sin(angle / 2)), cosine = f(std::cos(angle / 2));
  return {Pose{f(x), -3, 2, 0, 0, 0, 1}, Pose{f(x), -3, 4, 0, 0, sine, cosine},
          Pose{f(x + std::cos(angle)), f(-3 + std::sin(angle)), 4, 0, 0, sine, cosine}};
}

void ExpectRoll(const AnimationFile& file, int firstFrame, double framesPerSecond) {
  for (size_t frame = 0; frame < file.frames.size(); ++frame) {
    const auto expected = RollAt((firstFrame + static_cast<double>(frame)) / framesPerSecond);
    ASSERT_EQ(file.frames[frame].size(), expected.size());
    for (size_t bone = 0; bone < expected.size(); ++bone) {
      ExpectNear(file.frames[frame][bone], expected[bone],
                 file.bones[bone].name + " in frame " + std::to_string(frame));
    }
  }
}

TEST(Animation, SamplesTheFirstAnimation) {
  const Workplace place;
  const Outcome run = place.Export(kMoving, "out");
  EXPECT_EQ(run.status, 0) << run.err;
  const AnimationFile file = place.Animation("out.kin");
  EXPECT_EQ(file.name, "moving");
  EXPECT_EQ(file.frameRate, 30u);
  EXPECT_EQ(file.masterScale, 1.0f);
  EXPECT_EQ(file.frameCount, 61u);
  EXPECT_EQ(file.frames.size(), 61u);
  ASSERT_EQ(file.bones.size(), 3u);
  EXPECT_EQ(file.bones[0].name, "b.root");
  EXPECT_EQ(file.bones[1].name, "b.arm r.");
  EXPECT_EQ(file.bones[2].name, "b.hand");
  EXPECT_EQ(file.bones[2].parent, 1);
  ExpectRoll(file, 0, 30);
}

TEST(Animation, TakesRangeRateAndUnit) {
  const Workplace place;
  const Outcome run =
      place.Export(kMoving, "out", {"--frames", "4:9", "--fps", "10", "--unit", "0.5"});
  EXPECT_EQ(run.status, 0) << run.err;
  const AnimationFile file = place.Animation("out.kin");
  EXPECT_EQ(file.frameRate, 10u);
  EXPECT_EQ(file.masterScale, 0.5f);
  EXPECT_EQ(file.frameCount, 6u);
  EXPECT_EQ(file.frames.size(), 6u);
  ExpectRoll(file, 4, 10);  // positions stay in the scene's units
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
  const Outcome run = place.Export(kMoving, "out", {"--events", "steps.evt", "--frames", "10:20"});
  EXPECT_EQ(run.status, 0) << run.err;
  const AnimationFile file = place.Animation("out.kin");
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

// By the same rule: a turned by its inverse is the conjugate.
Pose Composed(const Pose& parent, const Pose& own) {
  const auto [px, py, pz, x, y, z, w] = parent;
  const auto [ox, oy, oz, a, b, c, d] = own;
  // In this rule a vector v becomes conj(q) v q in Hamilton's, and A B is A first.
  const double tx = 2 * (-y * oz + z * oy), ty = 2 * (-z * ox + x * oz),
               tz = 2 * (-x * oy + y * ox);
  return {static_cast<float>(px + ox + w * tx - y * tz + z * ty),
          static_cast<float>(py + oy + w * ty - z * tx + x * tz),
          static_cast<float>(pz + oz + w * tz - x * ty + y * tx),
          d * x + a * w + b * z - c * y,
          d * y + b * w + c * x - a * z,
          d * z + c * w + a * y - b * x,
          d * w - a * x - b * y - c * z};
}

// The bone tree of the mesh file, composed from the root down, stands as the first frame does.
TEST(BoundMesh, HoldsTheBoneTree) {
  const Workplace place;
  EXPECT_EQ(place.Export(kMoving, "out").status, 0);
  const independent::MeshFile mesh = place.Mesh("out.im");
  const AnimationFile animation = place.Animation("out.kin");
  EXPECT_EQ(mesh.chunks[0].boneName, "b.arm r.");
  ASSERT_EQ(mesh.bones.size(), animation.bones.size());
  std::vector<Pose> world;
  for (size_t i = 0; i < mesh.bones.size(); ++i) {
    const independent::Bone& bone = mesh.bones[i];
    EXPECT_EQ(bone.name, animation.bones[i].name);
    EXPECT_EQ(bone.parent, animation.bones[i].parent);
    world.push_back(bone.parent < 0 ? bone.pose
                                    : Composed(world[static_cast<size_t>(bone.parent)], bone.pose));
    ExpectNear(world.back(), animation.frames[0][i], bone.name);
  }
}

TEST(SkinnedMesh, NeedsItsJointsCalledBones) {
  const Workplace place;
  const std::string scene = DataFile("skinned.gltf");
  EXPECT_EQ(place.Export(scene, "out").status, 3);
  std::filesystem::remove(place.Path("out.im"));

  const Outcome run = place.Export(scene, "out", {"--joints-as-bones"});
  EXPECT_EQ(run.status, 0) << run.err;
  const AnimationFile animation = place.Animation("out.kin");
  ASSERT_EQ(animation.bones.size(), 2u);
  EXPECT_EQ(animation.bones[0].name, "b.hip");
  EXPECT_EQ(animation.bones[1].name, "b.knee");
  EXPECT_EQ(animation.frames.size(), 31u);
  const float half = std::sqrt(0.5f);  // knee bent by 90 degrees about x
  ExpectNear(animation.frames[30][1], {0, 0, 2, -half, 0, 0, half}, "b.knee");

  const independent::MeshFile mesh = place.Mesh("out.im");
  ASSERT_EQ(mesh.chunks.size(), 1u);
  EXPECT_EQ(mesh.maxInfluences, 2u);
  EXPECT_EQ(mesh.maxBones, 2u);
  std::vector<float> sums(mesh.chunks[0].vertices.size(), 0.0f);
  ASSERT_EQ(mesh.influences.size(), 2u);
  EXPECT_EQ(mesh.influences[1].name, "b.knee");
  EXPECT_EQ(mesh.influences[1].parentName, "b.hip");
  for (const independent::Influence& bone : mesh.influences) {
    for (const independent::Match& match : bone.matches) {
      for (const independent::Weight& weight : match.weights) {
        sums.at(static_cast<size_t>(weight.vertex)) += weight.weight;
      }
    }
  }
  for (const float sum : sums) EXPECT_NEAR(sum, 1.0f, 1e-6);
}

}  // namespace
}  // namespace orv
