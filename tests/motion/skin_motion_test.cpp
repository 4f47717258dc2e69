#include <gtest/gtest.h>

#include <cmath>
#include <iostream>

#include "motion/SkinTesting.h"

namespace orv {
namespace {

constexpr double kTolerance = 1e-4;  // metres

// How far the lengths of a bone's axes are from those at time 0, as a part of them.
double ScaleChange(const Matrix& atZero, const Matrix& now) {
  double change = 0;
  for (unsigned column = 0; column < 3; ++column) {
    const auto length = [&](const Matrix& m) {
      return Point(m[0][column], m[1][column], m[2][column]).Length();
    };
    change = std::max(change, std::abs(length(now) / length(atZero) - 1));
  }
  return change;
}

// The bones take the vertex to one place at time 0, so that it moves in the file as in the scene.
bool Agree(const SourceVertex& vertex, const WorldMatrices& atZero) {
  const Point place = Posed(vertex, atZero);
  for (const SourceVertex::Pull& pull : vertex.pulls) {
    if (Distance(MovedBy(pull, atZero), place) > kTolerance / 10) return false;
  }
  return true;
}

struct Tally {
  size_t vertices = 0, single = 0, agreeing = 0, differing = 0;
  double worst = 0, worstDiffering = 0;
};

std::ostream& operator<<(std::ostream& out, const Tally& tally) {
  return out << tally.vertices << " vertices: " << tally.single << " of one bone, "
             << tally.agreeing << " of agreeing bones, off by at most " << tally.worst << "; "
             << tally.differing << " of others, by at most " << tally.worstDiffering;
}

class SkinMotion : public testing::TestWithParam<std::string> {};

TEST_P(SkinMotion, IsThatOfTheFile) {
  const Workplace place;
  const Outcome run = place.Export(GetParam(), "out", kWithJoints);
  ASSERT_LE(run.status, 1) << run.err;
  const SceneMotion scene(GetParam());
  const ExportedSkin skin(scene, place.Mesh("out.im"), place.Animation("out.kin"));
  std::vector<SourceVertex> sources;  // of one node, or the second would lose its weights
  for (const aiMesh* mesh : scene.Meshes()) {
    for (SourceVertex& vertex : scene.VerticesOf(*mesh)) sources.push_back(std::move(vertex));
  }

  std::vector<WorldMatrices> world;
  for (size_t frame = 0; frame < skin.FrameCount(); ++frame) {
    world.push_back(skin.Metres(scene.At(static_cast<double>(frame) / skin.FrameRate())));
  }
  // An exported bone has none, so a change would be lost.
  for (const std::string& bone : skin.BoneNames()) {
    for (const WorldMatrices& now : world) {
      ASSERT_LE(ScaleChange(world[0].at(bone), now.at(bone)), kTolerance) << bone;
    }
  }

  const PlaceIndex index(sources, world[0]);
  std::vector<bool> shown(sources.size());
  Tally tally;
  for (const ExportedVertex& vertex : skin.Vertices()) {
    ++tally.vertices;
    const SourceVertex* source = nullptr;
    for (const size_t candidate : index.Near(vertex.position, kTolerance)) {
      if (!SamePulls(vertex, sources[candidate])) continue;
      if (!source) source = &sources[candidate];
      shown[candidate] = true;
    }
    ASSERT_TRUE(source) << "nothing in the scene is pulled so";
    ASSERT_LE(Distance(skin.Placed(vertex, 0), Posed(*source, world[0])), kTolerance);

    const bool single = source->pulls.size() == 1, agreeing = Agree(*source, world[0]);
    ++(single ? tally.single : agreeing ? tally.agreeing : tally.differing);
    double& worst = agreeing ? tally.worst : tally.worstDiffering;
    for (size_t frame = 0; frame < world.size(); ++frame) {
      worst = std::max(worst, Distance(skin.Placed(vertex, frame), Posed(*source, world[frame])));
    }
    ASSERT_LE(tally.worst, kTolerance);
  }
  std::cout << tally << '\n';
  EXPECT_GT(tally.single + tally.agreeing, 0u);
  EXPECT_EQ(std::count(shown.begin(), shown.end(), false), 0);
}

INSTANTIATE_TEST_SUITE_P(Files, SkinMotion,
                         testing::Values(ExampleFile("bellows/bellows.gltf"),
                                         ModelFile("FBX/animation_with_skeleton.fbx"),
                                         ModelFile("FBX/huesitos.fbx"),
                                         ModelFile("X/Testwuson.X")));

}  // namespace
}  // namespace orv
