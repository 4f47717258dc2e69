#include "host/import/OpenScene.h"

#include <gtest/gtest.h>

#include <cmath>

#include "TemporaryFolder.h"

namespace orv::host {
namespace {

TEST(OpenScene, GltfSkinsNeedTheirInverseBindMatrices) {
  const TemporaryFolder folder;
  std::string text = ContentOf(ORV_TEST_DATA "/skinned.gltf");
  const std::string key = "inverseBindMatrices";
  text.replace(text.find(key), key.size(), "extras");
  const std::string length{static_cast<char>(text.size()), static_cast<char>(text.size() >> 8), 0,
                           0};
  WriteContent(folder.File("SKINNED.GLB"), "glTF2..." + length + length + "JSON" + text);
  try {
    OpenScene(folder.File("SKINNED.GLB"), {});
    ADD_FAILURE() << "accepted";
  } catch (const SceneError& error) {
    EXPECT_EQ(error.what(),
              folder.File("SKINNED.GLB") +
                  ": skin 0 has no inverse bind matrices; save the scene again with them");
  }
}

TEST(OpenScene, FbxSaysItsUnitAndFrameRate) {
  const TemporaryFolder folder;
  const std::string text = ContentOf(ORV_TEST_DATA "/pivot_animation.fbx");
  const std::string unit = R"("UnitScaleFactor", "double", "Number", "",)";
  const std::string mode = R"("TimeMode", "enum", "", "",)";
  const std::string custom = "\nP: \"CustomFrameRate\", \"double\", \"Number\", \"\",";
  const struct {
    std::string unit, mode;
    float metres;
    int framesPerSecond;
  } cases[] = {
      {"100", "10", 1, 25},
      {"2.54", "1", 0.0254f, 120},
      {"100", "0", 1, 30},
      {"1", "9", 0.01f, 30},
      {"1", "11", 0.01f, 24},
      {"1", "13", 0.01f, 24},
      {"1", "15", 0.01f, 30},
      {"1", "14" + custom + "23.6", 0.01f, 24},
      {"1", "14" + custom + "0.6", 0.01f, 30},
  };
  for (const auto& c : cases) {
    std::string changed = text;
    changed.replace(changed.find(unit + "100") + unit.size(), 3, c.unit);
    changed.replace(changed.find(mode + "10") + mode.size(), 2, c.mode);
    WriteContent(folder.File("door.fbx"), changed);
    const auto scene = OpenScene(folder.File("door.fbx"), {});
    const SceneInfo& info = scene->info;
    EXPECT_FLOAT_EQ(static_cast<float>(info.metresPerUnit), c.metres) << c.unit;
    EXPECT_EQ(info.framesPerSecond, c.framesPerSecond) << c.mode;
    EXPECT_EQ(info.lastFrame, c.framesPerSecond) << c.mode;
    EXPECT_EQ(scene->FindNode("group")->GetNodeTM(0).GetTrans(), Point3(1, 2, 3)) << "z is up";
    // A corner after a second, by the steps that the importer makes of the door's transform: turned
    // by 90 degrees about (2, 0.5, 0), tilted by 30 about y, moved, scaled and moved.
    const TimeValue second = info.lastFrame * scene->TicksPerFrame();
    const Point3 corner = Point3(2, 1, 0) * scene->FindNode("door")->GetNodeTM(second);
    EXPECT_LT(Length(corner - Point3(5 - std::sqrt(0.75f), 5, 3.5f)), 1e-5);
  }
}

// The ticks of these are the file's frames.
TEST(OpenScene, LengthIsRoundedAndBounded) {
  const TemporaryFolder folder;
  const struct {
    const char* frameTime;
    int framesPerSecond, lastFrame;
  } cases[] = {{"0.04", 25, 2}, {"0.016666", 60, 2}, {"0.0416", 24, 2}, {"1e9", 30, 10'000'000}};
  for (const auto& c : cases) {
    WriteContent(folder.File("nod.bvh"),
                 std::string("HIERARCHY\nROOT hip\n{\nOFFSET 0 0 0\nCHANNELS 1 Zrotation\n"
                             "End Site\n{\nOFFSET 0 1 0\n}\n}\nMOTION\nFrames: 3\nFrame Time: ") +
                     c.frameTime + "\n0\n10\n20\n");
    const auto scene = OpenScene(folder.File("nod.bvh"), {});
    EXPECT_EQ(scene->info.framesPerSecond, c.framesPerSecond) << c.frameTime;
    EXPECT_EQ(scene->info.lastFrame, c.lastFrame) << c.frameTime;
  }
}

TEST(OpenScene, NodesOfTheSamePartsShareTheirMesh) {
  const auto scene = OpenScene(ORV_TEST_DATA "/everything.gltf", {});
  Object* const first = scene->FindNode("chassis")->GetObjectRef();
  EXPECT_EQ(scene->FindNode("mirrored")->GetObjectRef(), first);
  EXPECT_NE(scene->FindNode("dome")->GetObjectRef(), first);
}

}  // namespace
}  // namespace orv::host
