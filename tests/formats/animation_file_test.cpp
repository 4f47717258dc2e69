#include "formats/AnimationFile.h"

#include <gtest/gtest.h>

#include "SampleMeshes.h"
#include "TemporaryFolder.h"

namespace orv {
namespace {

const std::string kEvents = R"(
    3 # events
    1 5 "dust"                    # frame, type, name
    0 2 "first"
    0 3 "twin")";

const std::string kWalk = R"(
QIRF { ANIM
  INFO { 100
    "walk" 2 30 0.0254            # name, frames, frames per second, metres per unit
  }
  EVNT { 100)" + kEvents + R"(
  }
  SKEL { 100
    BONE { 100   "b.root" 2
      BONE { 100   "b.left" 1
        BONE { 100   "b.toe" 0 }
      }
      BONE { 100   "b.right" 0 }
    } # root
  } # skeleton
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
  } # last
} # end)";

float g_frame = 0;

class MovingBone : public GenericSkeleton::Node {
 public:
  MovingBone(std::string name, float number) : m_name(std::move(name)), m_number(number) {}
  const char* Name() const override { return m_name.c_str(); }
  Vec3 Position() const override { return {g_frame, m_number, 0.5f}; }
  Quaternion Rotation() const override { return {0.1f, 0.2f, 0.3f, m_number}; }

 private:
  std::string m_name;
  float m_number;
};

class MovingSkeleton : public GenericSkeleton {
 public:
  MovingSkeleton() {
    m_root = std::make_unique<MovingBone>("b.root", 1.0f);
    auto& left = m_root->m_children.emplace_back(std::make_unique<MovingBone>("b.left", 2.0f));
    left->m_children.push_back(std::make_unique<MovingBone>("b.toe", 3.0f));
    m_root->m_children.push_back(std::make_unique<MovingBone>("b.right", 4.0f));
  }
  void SetFrame(int frame) override { g_frame = static_cast<float>(frame); }
};

AnimationHeader Walk() {
  return {
      .firstFrame = 10,
      .lastFrame = 11,
      .frameRate = 30,
      .name = "walk",
      .masterScale = 0.0254f,
      .events = {
          {11, 5, "dust"}, {9, 0, "early"}, {10, 2, "first"}, {12, 0, "late"}, {10, 3, "twin"}}};
}

std::string RefusalOf(const std::string& bytes) {
  AnimationFile file;
  ReadProblem problem;
  return ReadAnimation(bytes, file, problem) ? "accepted" : problem.Message();
}

TEST(AnimationFile, IsWrittenAndReadAsListed) {
  MovingSkeleton skeleton;
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
  EXPECT_EQ(file.Frame(1)[2].rotation.z, 0.3f);
  EXPECT_EQ(file.Frame(1)[2].rotation.w, 3);
  EXPECT_TRUE(file.remarks.empty());
}

// The log window takes its messages with each report.
TEST(AnimationFile, ReportsBeforeEachFrame) {
  MovingSkeleton skeleton;
  RecordingUserInterface ui;
  TemporaryFolder folder;
  AnimationHeader header = Walk();
  header.lastFrame = 13;
  EXPECT_TRUE(WriteAnimationFile(folder.File("a.kin"), skeleton, header, ui));
  EXPECT_EQ(ui.progress, (std::vector<float>{0, 0.25f, 0.5f, 0.75f}));
  AnimationFile file;
  ReadProblem problem;
  EXPECT_TRUE(ReadAnimationFile(folder.File("a.kin"), file, problem)) << problem.Message();
  EXPECT_FALSE(ReadAnimationFile(folder.File("b.kin"), file, problem));
  EXPECT_EQ(problem.Message(), "No such file or directory");
  EXPECT_FALSE(WriteAnimationFile("/dev/full", skeleton, header, ui));
  EXPECT_EQ(ui.log.back(), "info: Could not write /dev/full: No space left on device");
}

TEST(AnimationFile, RangeThatEndsBeforeItBeginsHasNoFrames) {
  const std::string withoutFrames = kWalk.substr(0, kWalk.find("FRAM")) + "}";
  for (const auto& [last, count] : {std::pair(9, "0"), std::pair(7, "-2")}) {
    const std::string listing =
        Edited(Edited(withoutFrames, "\"walk\" 2", std::string("\"walk\" ") + count), kEvents, " 0");
    AnimationHeader header = Walk();
    header.lastFrame = last;
    MovingSkeleton skeleton;
    EXPECT_EQ(BytesOf(skeleton, header), FileOf(listing));
    AnimationFile file;
    ReadProblem problem;
    EXPECT_TRUE(ReadAnimation(FileOf(listing), file, problem)) << problem.Message();
    EXPECT_EQ(file.frameCount, 0u);
  }
}

TEST(AnimationReader, RefusalsSayWhatAndWhere) {
  const struct {
    std::string from, to, message;  // with the place, or the "@"
  } cases[] = {
      {"ANIM", "@ IDXM", "QIRF: found \"IDXM\" where \"ANIM\" is due"},
      {"INFO { 100", "INFO { @ 101", "QIRF/INFO: version 101 is unknown"},
      {"\"walk\" 2", "\"walk\" 3", "QIRF: frame count 3 exceeds the file (at byte 236)"},
      {"EVNT { 100", "EVNT { @ 99", "QIRF/EVNT: version 99 is unknown"},
      {"3 # events", "@ 0x10000000", "QIRF/EVNT: event count 268435456 exceeds the chunk"},
      {"EVNT {", "@ ELSE { } EVNT {", "QIRF: found \"ELSE\" where \"EVNT\" is due"},
      {"SKEL { 100", "SKEL { 100 @ } ELSE { 100",
       "QIRF/SKEL: a tag of 4 bytes is cut off, 0 are left"},
      {"\"b.root\" 2", "\"b.root\" @ 9", "QIRF/SKEL/BONE: child count 9 exceeds the chunk"},
      {"\"b.toe\" 0", "0",
       "QIRF/SKEL/BONE (depth 2): child count 1 exceeds the chunk (at byte 176)"},
      {"1 # second", "@ 2", "QIRF/FRAM 1: frame 2 where frame 1 is due"},
      {"0 # number", "-1", "QIRF/FRAM 0: frame 4294967295 where frame 0 is due (at byte 248)"},
  };
  for (const auto& [from, to, message] : cases) {
    const std::string listing = Edited(kWalk, from, to);
    EXPECT_EQ(RefusalOf(FileOf(listing)), message + PlaceIn(listing)) << to;
  }
}

TEST(AnimationReader, EveryPrefixIsRefused) {
  const std::string bytes = FileOf(kWalk);
  for (size_t size = 0; size < bytes.size(); ++size) {
    std::string prefix = bytes.substr(0, size);
    EXPECT_TRUE(RefusalOf(prefix).ends_with(")")) << size;
    if (size < 12) continue;
    prefix.replace(4, 4, LittleEndian(static_cast<uint32_t>(size - 8)));
    EXPECT_TRUE(RefusalOf(prefix).starts_with("QIRF")) << size << " with its own length";
  }
}

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
    EXPECT_EQ(bones.back().name, "b." + std::to_string(kDepth - 1));
    EXPECT_EQ(bones.back().parent, static_cast<int32_t>(kDepth) - 2);
  }
  EXPECT_EQ(meshFile.bonePoses.back().position, (Vec3{0, 0, 1}));  // above its parent
  EXPECT_EQ(animation.poses.back().position, (Vec3{0, 0, kDepth - 1}));
}

}  // namespace
}  // namespace orv
