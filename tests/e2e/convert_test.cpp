#include <gtest/gtest.h>

#include <cmath>

#include "e2e/Orv.h"
#include "e2e/SceneTruth.h"

namespace orv {
namespace {

void ExpectSameMotion(const AnimationFile& a, const AnimationFile& b) {
  ASSERT_EQ(a.poses.size(), b.poses.size());
  for (size_t i = 0; i < a.poses.size(); ++i) {
    const Quaternion turned = a.poses[i].rotation * Conjugate(b.poses[i].rotation);
    EXPECT_NEAR(std::abs(turned.w), 1, 1e-5) << i;
    const Vec3 moved = a.poses[i].position * a.masterScale - b.poses[i].position * b.masterScale;
    EXPECT_NEAR(Length(moved), 0, 1e-5) << i;
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
    const IndexedMeshFile mesh = workplace.Mesh("b.im");
    EXPECT_EQ(CompareWithTruth(mesh, SceneTruth(DataFile(scene), {.metresPerUnit = 0.0254})), "");
    EXPECT_EQ(mesh.mesh.influences.size(), workplace.Mesh("a.im").mesh.influences.size());
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
