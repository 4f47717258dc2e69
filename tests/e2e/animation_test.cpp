#include <gtest/gtest.h>

#include <cmath>

#include "e2e/Orv.h"
#include "e2e/SceneTruth.h"

namespace orv {
namespace {

constexpr double kTolerance = 1e-5;

const std::string kMoving = DataFile("moving.gltf");
const std::string kRailcar = ExampleFile("railcar/railcar.gltf");
const std::string kBellows = ExampleFile("bellows/bellows.gltf");
const std::vector<std::string> kWithJoints = {"--joints-as-bones", "--default-material",
                                              "plain.m.notex"};

// How far the rotation and the position, for its size, are from those of the matrix.
double ErrorOf(const Matrix& actual, const Matrix& expected) {
  const Matrix rigid = Rigid(expected);
  double error = 0, size = 1;
  for (unsigned row = 0; row < 3; ++row) size = std::max(size, std::abs(rigid[row][3]));
  for (unsigned row = 0; row < 3; ++row) {
    for (unsigned column = 0; column < 4; ++column) {
      const double difference = std::abs(actual[row][column] - rigid[row][column]);
      error = std::max(error, column == 3 ? difference / size : difference);
    }
  }
  return error;
}

struct MotionCase {
  std::string path;
  uint32_t frameRate;
  std::vector<std::string> arguments = kWithJoints;
};

void PrintTo(const MotionCase& motion, std::ostream* out) { *out << motion.path; }

class BoneMotion : public testing::TestWithParam<MotionCase> {};

TEST_P(BoneMotion, IsThatOfTheFile) {
  const auto& [path, frameRate, arguments] = GetParam();
  const Workplace place;
  const Outcome run = place.Export(path, "out", arguments);
  ASSERT_LE(run.status, 1) << run.err;
  const AnimationFile file = place.Animation("out.kin");
  const SceneTruth truth(path);
  EXPECT_EQ(file.frameRate, frameRate);
  ASSERT_EQ(file.frameCount, std::floor(truth.Seconds() * frameRate + 0.5) + 1);
  std::vector<const aiNode*> nodes;
  for (const auto& [name, parent] : file.bones) {
    nodes.push_back(truth.NodeOfBone(name));
    const aiNode* above = nodes.back()->mParent;
    while (above && std::ranges::find(nodes, above) == nodes.end()) above = above->mParent;
    EXPECT_EQ(above, parent < 0 ? nullptr : nodes[static_cast<size_t>(parent)]) << name;
  }
  for (size_t frame = 0; frame < file.frameCount; ++frame) {
    for (size_t bone = 0; bone < nodes.size(); ++bone) {
      const Matrix world = truth.World(*nodes[bone], static_cast<double>(frame) / frameRate);
      ASSERT_LE(ErrorOf(MatrixOf(file.Frame(frame)[bone]), world), kTolerance)
          << file.bones[bone].name << " in frame " << frame;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Files, BoneMotion,
                         testing::Values(MotionCase{kRailcar, 30, {}}, MotionCase{kBellows, 30, {}},
                                         MotionCase{kMoving, 30, {}},
                                         MotionCase{ModelFile("FBX/animation_with_skeleton.fbx"),
                                                    24},
                                         MotionCase{ModelFile("FBX/huesitos.fbx"), 25},
                                         MotionCase{ModelFile("X/anim_test.x"), 30},
                                         MotionCase{ModelFile("X/Testwuson.X"), 30}));

class SkinMotion : public testing::TestWithParam<std::string> {};

// The bones of these files agree about where time 0 puts a vertex, which is what a file can hold.
TEST_P(SkinMotion, IsThatOfTheFile) {
  const Workplace place;
  const Outcome run = place.Export(GetParam(), "out", kWithJoints);
  ASSERT_LE(run.status, 1) << run.err;
  const IndexedMeshFile mesh = place.Mesh("out.im");
  const AnimationFile animation = place.Animation("out.kin");
  const SceneTruth truth(GetParam(),
                         {.metresPerUnit = animation.masterScale, .standInMaterials = true});
  for (size_t frame = 0; frame < animation.frameCount; frame += 7) {
    EXPECT_EQ(
        CompareTriangles(TrianglesOf(mesh, &animation, frame),
                         truth.Triangles(static_cast<double>(frame) / animation.frameRate), false),
        "")
        << frame;
  }
}

INSTANTIATE_TEST_SUITE_P(Files, SkinMotion,
                         testing::Values(kBellows, DataFile("skinned.gltf"),
                                         ModelFile("FBX/animation_with_skeleton.fbx"),
                                         ModelFile("FBX/huesitos.fbx")));

// The bone tree of a mesh file, composed from its root down, stands as the scene does at time 0.
TEST(BoneTree, ComposesToTheWorld) {
  const Workplace place;
  ASSERT_LE(place.Export(kRailcar, "out", {"--no-animation"}).status, 1);
  const IndexedMeshFile file = place.Mesh("out.im");
  const SceneTruth truth(kRailcar);
  EXPECT_GT(file.bones.size(), 1u);
  std::vector<Matrix> world;
  for (size_t i = 0; i < file.bones.size(); ++i) {
    const auto& [name, parent] = file.bones[i];
    const Matrix own = MatrixOf(file.bonePoses[i]);
    world.push_back(parent < 0 ? own : world[static_cast<size_t>(parent)] * own);
    EXPECT_LE(ErrorOf(world.back(), truth.World(*truth.Find(name), 0)), kTolerance) << name;
  }
}

TEST(Animation, TakesTheOneNamedAndTheEventsOfItsRange) {
  const Workplace place;
  EXPECT_EQ(place.Export(kMoving, "out", {"--animation", "Hop", "--fps", "25"}).status, 0);
  const AnimationFile hop = place.Animation("out.kin");
  ASSERT_EQ(hop.frameCount, 14u);  // 12.5 at 25 a second, rounded, and the first
  EXPECT_NEAR(hop.Frame(13)[0].position.z, 4, kTolerance);

  WriteContent(place.Path("steps.evt"),
               "9 Sound_Event early 10 Sound_Event left 20 Effect_Event dust "
               "21 Sound_Event late\nsoon Sound_Event right\n");
  const Outcome run =
      place.Export(kMoving, "out", {"--events", "steps.evt", "--frames", "10:20", "--unit", "0.5"});
  EXPECT_TRUE(
      run.Says("warning: Event file steps.evt is malformed at line 2, later events "
               "are ignored."))
      << run.err;
  const AnimationFile file = place.Animation("out.kin");
  EXPECT_EQ(file.masterScale, 0.5f);
  EXPECT_EQ(file.frameCount, 11u);
  ASSERT_EQ(file.events.size(), 2u);
  EXPECT_EQ(file.events[1].frame, 10);
  EXPECT_EQ(file.events[1].type, 5u);
  EXPECT_EQ(file.events[1].name, "dust");
}

}  // namespace
}  // namespace orv
