#include "formats/AnimationFile.h"

#include <gtest/gtest.h>

#include "SampleMeshes.h"
#include "TemporaryFolder.h"

namespace orv {
namespace {

const std::string kWalk = R"(
QIRF { ANIM
  INFO { 100
    "walk" 2 30 0.0254            # name, frames, frames per second, metres per unit
  }
  EVNT { 100   3 # events
    1 5 "dust"                    # frame, type, name
    0 2 "first"
    0 3 "twin"
  }
  SKEL { 100
    BONE { 100   "b.root" 2
      BONE { 100   "b.left" 1
        BONE { 100   "b.toe" 0 }
      }
      BONE { 100   "b.right" 0 }
    }
  }
  FRAM { 100   0 # number
    10.0 1.0 0.5   0.1 0.2 0.3 1.0   # position and rotation of the root
    10.0 2.0 0.5   0.1 0.2 0.3 2.0   # left
    10.0 3.0 0.5   0.1 0.2 0.3 3.0   # toe
    10.0 4.0 0.5   0.1 0.2 0.3 4.0   # right
  }
  FRAM { 100   1 # second
    11.0 1.0 0.5   0.1 0.2 0.3 1.0
    11.0 2.0 0.5   0.1 0.2 0.3 2.0
    11.0 3.0 0.5   0.1 0.2 0.3 3.0
    11.0 4.0 0.5   0.1 0.2 0.3 4.0
  }
})";

// Each bone stands at (frame, its number, 0.5).
class Walker : public ExGenericSkeleton {
 public:
  Walker() {
    m_root = Numbered("b.root", 1);
    m_root->m_children.push_back(Numbered("b.left", 2));
    m_root->m_children[0]->m_children.push_back(Numbered("b.toe", 3));
    m_root->m_children.push_back(Numbered("b.right", 4));
  }
  void SetFrame(int frame) override {
    for (Node* bone : m_bones) bone->m_position.x = static_cast<float>(frame);
  }

 private:
  std::unique_ptr<Node> Numbered(const char* name, float number) {
    auto bone = Bone(name, {-1, number, 0.5f}, {0.1f, 0.2f, 0.3f, number});
    m_bones.push_back(bone.get());
    return bone;
  }
  std::vector<Node*> m_bones;
};

AnimationHeader Walk(int lastFrame = 11) {
  return {
      .firstFrame = 10,
      .lastFrame = lastFrame,
      .frameRate = 30,
      .name = "walk",
      .masterScale = 0.0254f,
      .events = {
          {11, 5, "dust"}, {9, 0, "early"}, {10, 2, "first"}, {14, 0, "late"}, {10, 3, "twin"}}};
}

std::string RefusalOf(const std::string& bytes) {
  AnimationFile file;
  ReadProblem problem;
  return ReadAnimation(bytes, file, problem) ? "accepted" : problem.Message();
}

TEST(AnimationFile, IsWrittenAndReadAsListed) {
  Walker skeleton;
  EXPECT_EQ(BytesOf(skeleton, Walk()), FileOf(kWalk));
  AnimationFile file;
  ReadProblem problem;
  ASSERT_TRUE(ReadAnimation(FileOf(kWalk), file, problem)) << problem.Message();
  EXPECT_EQ(file.name, "walk");
  EXPECT_EQ(file.frameCount, 2u);
  EXPECT_EQ(file.frameRate, 30u);
  EXPECT_EQ(file.masterScale, 0.0254f);
  EXPECT_EQ(file.events.at(0).frame, 1);
  EXPECT_EQ(file.events[0].type, 5u);
  EXPECT_EQ(file.events[0].name, "dust");
  std::string bones;
  for (const BoneNode& bone : file.bones) bones += bone.name + std::to_string(bone.parent) + " ";
  EXPECT_EQ(bones, "b.root-1 b.left0 b.toe1 b.right0 ");
  EXPECT_EQ(file.Frame(1)[2].position, (Vec3{11, 3, 0.5f}));
  EXPECT_EQ(file.Frame(1)[2].rotation.w, 3);
  EXPECT_TRUE(file.remarks.empty());
}

// The log window takes its messages with each report.
TEST(AnimationFile, ReportsBeforeEachFrame) {
  const TemporaryFolder folder;
  RecordingUserInterface ui;
  Walker skeleton;
  EXPECT_TRUE(WriteAnimationFile(folder.File("a.kin"), skeleton, Walk(13), ui));
  EXPECT_EQ(ui.progress, (std::vector<float>{0, 0.25f, 0.5f, 0.75f}));
  AnimationFile file;
  ReadProblem problem;
  EXPECT_TRUE(ReadAnimationFile(folder.File("a.kin"), file, problem)) << problem.Message();
  EXPECT_FALSE(ReadAnimationFile(folder.File("b.kin"), file, problem));
  EXPECT_EQ(problem.Message(), "No such file or directory");
  EXPECT_FALSE(WriteAnimationFile("/dev/full", skeleton, Walk(), ui));
  EXPECT_EQ(ui.log,
            (std::vector<std::string>{"error: Geometry Exporter reported error code '16'",
                                      "info: Could not write /dev/full: No space left on device"}));
}

TEST(AnimationFile, RangeThatEndsBeforeItBeginsHasNoFrames) {
  const size_t events = kWalk.find("3 # events"), bones = kWalk.find("SKEL");
  const std::string empty =
      kWalk.substr(0, events) + "0 } " + kWalk.substr(bones, kWalk.find("FRAM") - bones) + "}";
  for (const auto& [last, count] : {std::pair(9, "\"walk\" 0 "), std::pair(7, "\"walk\" -2 ")}) {
    const std::string bytes = FileOf(Edited(empty, "\"walk\" 2 ", count));
    Walker skeleton;
    EXPECT_EQ(BytesOf(skeleton, Walk(last)), bytes);
    EXPECT_EQ(RefusalOf(bytes), "accepted");
  }
}

TEST(AnimationFile, RefusalsSayWhatAndWhere) {
  ExpectRefusals(kWalk, R"(
ANIM => @ IDXM => QIRF: found "IDXM" where "ANIM" is due
INFO { 100 => INFO { @ 101 => QIRF/INFO: version 101 is unknown
"walk" 2 => "walk" 3 => QIRF: frame count 3 exceeds the file (at byte 236)
EVNT { 100 => EVNT { @ 99 => QIRF/EVNT: version 99 is unknown
3 # events => @ 0x10000000 # => QIRF/EVNT: event count 268435456 exceeds the chunk
EVNT { => @ ELSE { } EVNT { => QIRF: found "ELSE" where "EVNT" is due
SKEL { 100 => SKEL { 100 @ } ELSE { 100 => QIRF/SKEL: a tag of 4 bytes is cut off, 0 are left
"b.root" 2 => "b.root" @ 9 => QIRF/SKEL/BONE: child count 9 exceeds the chunk
1 # second => @ 2 => QIRF/FRAM 1: frame 2 where frame 1 is due)",
                 RefusalOf);
  ExpectPrefixesRefused(FileOf(kWalk), std::string::npos, RefusalOf);
}

// So deep that a function which calls itself for each bone overruns the stack.
TEST(BoneTree, GoesThroughBothFilesAtAnyDepth) {
  constexpr size_t kDepth = 300'000;
  ExGenericSkeleton skeleton;
  skeleton.m_root = Bone("b.0");
  GenericSkeleton::Node* last = skeleton.m_root.get();
  for (size_t i = 1; i < kDepth; ++i) {
    last->m_children.push_back(Bone("b." + std::to_string(i), {0, 0, static_cast<float>(i)}));
    last = last->m_children.back().get();
  }
  ExIndexedMesh mesh;
  mesh.skeleton = &skeleton;
  AnimationFile animation;
  ReadProblem problem;
  ASSERT_TRUE(ReadAnimation(BytesOf(skeleton, AnimationHeader()), animation, problem));
  for (const std::vector<BoneNode>& bones : {ReadBack(mesh).bones, animation.bones}) {
    ASSERT_EQ(bones.size(), kDepth);
    EXPECT_EQ(bones.back().name, "b." + std::to_string(kDepth - 1));
    EXPECT_EQ(bones.back().parent, static_cast<int32_t>(kDepth) - 2);
  }
}

}  // namespace
}  // namespace orv
