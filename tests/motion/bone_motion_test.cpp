#include <gtest/gtest.h>

#include <cmath>

#include "motion/SkinTesting.h"

namespace orv {
namespace {

constexpr double kTolerance = 1e-5;

struct MotionCase {
  std::string path;
  std::vector<std::string> arguments;
  uint32_t frameRate;
};

void PrintTo(const MotionCase& motion, std::ostream* out) { *out << motion.path; }

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

class BoneMotion : public testing::TestWithParam<MotionCase> {};

TEST_P(BoneMotion, IsThatOfTheFile) {
  const auto& [path, arguments, frameRate] = GetParam();
  const Workplace place;
  const Outcome run = place.Export(path, "out", arguments);
  ASSERT_LE(run.status, 1) << run.err;
  const independent::AnimationFile file = place.Animation("out.kin");
  const SceneMotion motion(path);
  EXPECT_EQ(file.frameRate, frameRate);
  ASSERT_EQ(file.frames.size(), std::floor(motion.Seconds() * frameRate + 0.5) + 1);
  std::vector<std::string> names;
  for (const independent::Bone& bone : file.bones) names.push_back(motion.NodeNameOf(bone.name));
  for (size_t bone = 0; bone < names.size(); ++bone) {
    const int parent = file.bones[bone].parent;
    EXPECT_EQ(parent < 0 ? "" : names[static_cast<size_t>(parent)],
              motion.NearestAbove(names[bone], names));
  }
  for (size_t frame = 0; frame < file.frames.size(); ++frame) {
    const WorldMatrices world = motion.At(static_cast<double>(frame) / frameRate);
    for (size_t bone = 0; bone < names.size(); ++bone) {
      const double error = ErrorOf(MatrixOf(file.frames[frame][bone]), world.at(names[bone]));
      ASSERT_LE(error, kTolerance) << names[bone] << " in frame " << frame;
    }
  }
}

const std::string kRailcar = ExampleFile("railcar/railcar.gltf");

INSTANTIATE_TEST_SUITE_P(Files, BoneMotion,
                         testing::Values(MotionCase{kRailcar, {}, 30},
                                         MotionCase{ExampleFile("bellows/bellows.gltf"), {}, 30},
                                         MotionCase{DataFile("moving.gltf"), {}, 30},
                                         MotionCase{ModelFile("FBX/animation_with_skeleton.fbx"),
                                                    kWithJoints, 24},
                                         MotionCase{ModelFile("FBX/huesitos.fbx"), kWithJoints, 25},
                                         MotionCase{ModelFile("X/anim_test.x"), kWithJoints, 30},
                                         MotionCase{ModelFile("X/Testwuson.X"), kWithJoints, 30}));

// The bone tree of a mesh file, composed from its root down, stands as the scene does at time 0.
TEST(BoneTree, ComposesToTheWorld) {
  const Workplace place;
  ASSERT_LE(place.Export(kRailcar, "out", {"--no-animation"}).status, 1);
  const independent::MeshFile file = place.Mesh("out.im");
  const WorldMatrices expected = SceneMotion(kRailcar).At(0);
  EXPECT_GT(file.bones.size(), 1u);
  std::vector<Matrix> world;
  for (const independent::Bone& bone : file.bones) {
    const Matrix own = MatrixOf(bone.pose);
    world.push_back(bone.parent < 0 ? own : world[static_cast<size_t>(bone.parent)] * own);
    EXPECT_LE(ErrorOf(world.back(), expected.at(bone.name)), kTolerance) << bone.name;
  }
}

}  // namespace
}  // namespace orv
