#include "ExportFixture.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

class AnimationExport : public ExportTest {};

TEST_F(AnimationExport, FramesHoldTheWorldPosesInSceneUnits) {
  scene.info.fileName = "crane.v2.gltf";
  scene.info.metresPerUnit = 0.01;
  scene.info.framesPerSecond = 25;
  host::MemoryNode& body = scene.AddNode("b.body");
  body.SetMotion([](double seconds) { return MovedBy(static_cast<float>(seconds * 25), 0, 0); });
  scene.AddNode("group", &body);
  host::MemoryNode& arm = scene.AddNode("b.arm", scene.FindNode("group"));
  arm.SetTransform(ScaledBy(5, 5, 5) * QuarterTurnAt(0, 100, 0));
  AddMesh("mesh");
  const std::string events = folder.File("steps.evt");
  WriteContent(events, "// steps\n3 Sound_Event early 4 Sound_Event left\n6 Effect_Event dust");
  options.m_eventFileName = events.c_str();

  const independent::AnimationFile file = ExportAnimation(4, 6);
  EXPECT_EQ(ui.log, Lines());
  EXPECT_EQ(file.name, "crane.v2");
  EXPECT_EQ(file.frameRate, 25u);
  EXPECT_EQ(file.masterScale, 0.01f);
  ASSERT_EQ(file.frameCount, 3u);
  ASSERT_EQ(file.events.size(), 2u);
  EXPECT_EQ(file.events[0].frame, 0);
  EXPECT_EQ(file.events[1].name, "dust");
  ASSERT_EQ(file.bones.size(), 2u);
  EXPECT_EQ(file.bones[1].parent, 0);
  for (size_t f = 0; f < 3; ++f) {
    const float x = 4 + static_cast<float>(f);
    EXPECT_EQ(file.frames[f][0], (std::array<float, 7>{x, 0, 0, 0, 0, 0, 1})) << f;
    const float arm[] = {x, 100, 0, 0, 0, -0.70710678f, 0.70710678f};
    for (size_t i = 0; i < 7; ++i) EXPECT_NEAR(file.frames[f][1][i], arm[i], 1e-6) << f;
  }
}

TEST_F(AnimationExport, SceneWithoutBonesIsAWarning) {
  AddMesh("mesh");
  scene.AddPointHelper("b.hook");
  ExportAnimation(0, 10, false);
  EXPECT_EQ(ui.log, Lines{"warning: No bones to export animation"});
  EXPECT_EQ(folder.Count(), 0u);
}

TEST_F(AnimationExport, FilesThatCannotBeWrittenAreAnError) {
  scene.AddNode("b.root");
  kinName = folder.File("missing/out.kin");
  ExportAnimation(0, 0, false);
  ASSERT_FALSE(ui.log.empty());
  EXPECT_EQ(ui.log[0], "error: Geometry Exporter reported error code '16'");
}

}  // namespace
}  // namespace orv
