#include <gtest/gtest.h>

#include <cmath>

#include "e2e/Orv.h"
#include "e2e/SceneTruth.h"

namespace orv {
namespace {

void ExpectSameMotion(const independent::AnimationFile& a, const independent::AnimationFile& b) {
  ASSERT_EQ(a.bones.size(), b.bones.size());
  ASSERT_EQ(a.frames.size(), b.frames.size());
  for (size_t frame = 0; frame < a.frames.size(); ++frame) {
    for (size_t bone = 0; bone < a.bones.size(); ++bone) {
      const auto& p = a.frames[frame][bone];
      const auto& q = b.frames[frame][bone];
      float same = 0;
      for (size_t i = 3; i < 7; ++i) same += p[i] * q[i];
      EXPECT_NEAR(std::abs(same), 1, 1e-5) << frame << ' ' << a.bones[bone].name;
      for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(p[i] * a.masterScale, q[i] * b.masterScale, 1e-5) << frame;
    }
  }
}

TEST(ConvertedModel, IsTheSameWhenItIsExportedAgain) {
  for (const char* scene : {"moving.gltf", "skinned.gltf"}) {
    SCOPED_TRACE(scene);
    const Workplace workplace;
    workplace.Export(DataFile(scene), "a", {"--unit", "0.0254", "--joints-as-bones"});
    const Outcome converted = workplace.Orv({"convert", "a.im", "a.kin", "-o", "b.glb"});
    EXPECT_EQ(converted.status, 0) << converted.err;
    workplace.Export("b.glb", "b");
    const SceneTruth truth = EvaluateScene(DataFile(scene), {.metresPerUnit = 0.0254});
    const independent::MeshFile mesh = workplace.Mesh("b.im");
    EXPECT_EQ(CompareWithTruth(mesh, truth), "");
    EXPECT_EQ(mesh.influences.size(), workplace.Mesh("a.im").influences.size());
    ExpectSameMotion(workplace.Animation("a.kin"), workplace.Animation("b.kin"));
  }
}

TEST(ConvertCommand, LeavesNothingBehindWhenItCannotConvert) {
  const Workplace workplace;
  WriteContent(workplace.Path("cut.im"), "QIRF");
  const Outcome outcome = workplace.Orv({"convert", "cut.im"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.err.starts_with("orv: cut.im: ")) << outcome.err;
  EXPECT_EQ(workplace.Names(), std::set<std::string>{"cut.im"});
}

}  // namespace
}  // namespace orv
