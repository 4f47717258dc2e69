#include <gtest/gtest.h>

#include "SampleMeshes.h"
#include "TemporaryFolder.h"
#include "formats/AnimationReader.h"
#include "formats/AnimationWriter.h"
#include "formats/IndexedMeshReader.h"

namespace orv {
namespace {

// So deep that a function which calls itself for each bone overruns the stack.
constexpr size_t kDepth = 300'000;

class DeepChain : public testing::Test {
 protected:
  // Each bone stands one unit above its parent.
  DeepChain() {
    skeleton.m_root = Bone("b.0");
    GenericSkeleton::Node* last = skeleton.m_root.get();
    for (size_t i = 1; i < kDepth; ++i) {
      last->m_children.push_back(
          Bone("b." + std::to_string(i), {0, 0, static_cast<float>(i)}, {0, 0, 0, 1}));
      last = last->m_children.back().get();
    }
  }

  // The last bone's pose too, which comes behind all others in either file.
  void ExpectChain(const std::vector<BoneNode>& bones, const BonePose& last, float height) {
    ASSERT_EQ(bones.size(), kDepth);
    for (size_t i = 0; i < kDepth; ++i) {
      ASSERT_EQ(bones[i].name, "b." + std::to_string(i));
      ASSERT_EQ(bones[i].parent, static_cast<int32_t>(i) - 1);
    }
    EXPECT_EQ(last.position, (Vec3{0, 0, height}));
  }

  TemporaryFolder folder;
  RecordingUserInterface ui;
  ReadProblem problem;
  ExGenericSkeleton skeleton;
};

TEST_F(DeepChain, GoesThroughAnAnimationFile) {
  const std::string path = folder.File("deep.kin");
  ASSERT_TRUE(WriteAnimationFile(path, skeleton, {}, ui));
  AnimationFile file;
  ASSERT_TRUE(ReadAnimationFile(path, file, problem)) << problem.Message();
  ExpectChain(file.bones, file.poses.back(), kDepth - 1);
}

TEST_F(DeepChain, GoesThroughAMeshFile) {
  const std::string path = folder.File("deep.im");
  ExIndexedMesh mesh;
  mesh.chunks.push_back(TriangleChunk());
  mesh.skeleton = &skeleton;
  bool ask = false, force = false;
  ASSERT_TRUE(WriteIndexedMeshFile(mesh, path, {.askOverwrite = ask, .forceOverwrite = force}, ui));
  IndexedMeshFile file;
  ASSERT_TRUE(ReadIndexedMeshFile(path, file, problem)) << problem.Message();
  ExpectChain(file.bones, file.bonePoses.back(), 1);
}

}  // namespace
}  // namespace orv
