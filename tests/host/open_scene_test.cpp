#include "host/import/OpenScene.h"

#include <gtest/gtest.h>

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
  WriteContent(folder.File("skinned.gltf"), text);
  WriteContent(folder.File("SKINNED.GLB"), "glTF2..." + length + length + "JSON" + text);
  for (const char* name : {"skinned.gltf", "SKINNED.GLB"}) {
    try {
      OpenScene(folder.File(name), {});
      ADD_FAILURE() << "accepted";
    } catch (const SceneError& error) {
      EXPECT_TRUE(std::string(error.what())
                      .starts_with(folder.File(name) + ": skin 0 has no inverse bind matrices"));
    }
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
  }
}

}  // namespace
}  // namespace orv::host
