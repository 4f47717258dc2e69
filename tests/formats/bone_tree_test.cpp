#include <gtest/gtest.h>

#include "SampleMeshes.h"
#include "formats/AnimationReader.h"
#include "formats/AnimationWriter.h"

namespace orv {
namespace {

// So deep that a function which calls itself for each bone overruns the stack.
TEST(BoneTree, GoesThroughBothFilesAtAnyDepth) {
  constexpr size_t kDepth = 300'000;
  ExGenericSkeleton skeleton;
  skeleton.m_root = Bone("b.0");
  GenericSkeleton::Node* last = skeleton.m_root.get();
  for (size_t i = 1; i < kDepth; ++i) {
    last->m_children.push_back(
        Bone("b." + std::to_string(i), {0, 0, static_cast<float>(i)}, {0, 0, 0, 1}));
    last = last->m_children.back().get();
  }
  ExIndexedMesh mesh;
  mesh.skeleton = &skeleton;
  const IndexedMeshFile meshFile = ReadBack(mesh);
  AnimationFile animation;
  ReadProblem problem;
  ASSERT_TRUE(ReadAnimation(BytesOf(skeleton, AnimationHeader()), animation, problem))
      << problem.Message();
  for (const std::vector<BoneNode>& bones : {meshFile.bones, animation.bones}) {
    ASSERT_EQ(bones.size(), kDepth);
    for (size_t i = 0; i < kDepth; ++i) {
      ASSERT_EQ(bones[i].name, "b." + std::to_string(i));
      ASSERT_EQ(bones[i].parent, static_cast<int32_t>(i) - 1);
    }
  }
  EXPECT_EQ(meshFile.bonePoses.back().position, (Vec3{0, 0, 1}));  // above its parent
  EXPECT_EQ(animation.poses.back().position, (Vec3{0, 0, kDepth - 1}));
}

}  // namespace
}  // namespace orv
