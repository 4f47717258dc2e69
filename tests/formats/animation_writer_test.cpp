#include <gtest/gtest.h>

#include "SampleMeshes.h"
#include "formats/AnimationWriter.h"

namespace orv {
namespace {

int g_frame = 0;

// Stands at (frame, number, 0).
class MovingBone : public GenericSkeleton::Node {
 public:
  MovingBone(std::string name, float number) : m_name(std::move(name)), m_number(number) {}
  const char* Name() const override { return m_name.c_str(); }
  Vec3 Position() const override { return {static_cast<float>(g_frame), m_number, 0}; }
  Quaternion Rotation() const override { return {0, 0, 0, 1}; }

 private:
  std::string m_name;
  float m_number;
};

class MovingSkeleton : public GenericSkeleton {
 public:
  MovingSkeleton() {
    m_root = std::make_unique<MovingBone>("b.root", 0.0f);
    m_root->m_children.push_back(std::make_unique<MovingBone>("b.tip", 1.0f));
  }
  void SetFrame(int frame) override { g_frame = frame; }
};

std::string Written(const AnimationHeader& header) {
  MovingSkeleton skeleton;
  return BytesOf(skeleton, header);
}

TEST(AnimationWriter, FileOfTwoBonesAndTwoFrames) {
  const AnimationHeader header{.firstFrame = 10,
                               .lastFrame = 11,
                               .frameRate = 30,
                               .name = "walk",
                               .masterScale = 0.0254f,
                               .events = {{11, 5, "dust"}}};
  const std::string bones =
      Chunk("BONE", 100,
            Text("b.root") + LittleEndian(1) + Chunk("BONE", 100, Text("b.tip") + LittleEndian(0)));
  EXPECT_EQ(
      Written(header),
      Root("ANIM",
           Chunk("INFO", 100, Text("walk") + Words({2, 30}) + Floats({0.0254f})) +
               Chunk("EVNT", 100, Words({1, 1, 5}) + Text("dust")) + Chunk("SKEL", 100, bones) +
               Chunk("FRAM", 100,
                     LittleEndian(0) + Floats({10, 0, 0, 0, 0, 0, 1, 10, 1, 0, 0, 0, 0, 1})) +
               Chunk("FRAM", 100,
                     LittleEndian(1) + Floats({11, 0, 0, 0, 0, 0, 1, 11, 1, 0, 0, 0, 0, 1}))));
}

// The log window takes its messages with each report.
TEST(AnimationWriter, ReportsBeforeEachFrame) {
  MovingSkeleton skeleton;
  RecordingUserInterface ui;
  std::ostringstream out;
  AnimationHeader header;
  header.firstFrame = 10;
  header.lastFrame = 13;
  WriteAnimation(out, skeleton, header, ui);
  EXPECT_EQ(ui.progress, (std::vector<float>{0, 0.25f, 0.5f, 0.75f}));
}

TEST(AnimationWriter, RangeThatEndsBeforeItBeginsHasNoFrames) {
  for (const auto& [last, count] : {std::pair(4, 0u), std::pair(2, 0xFFFFFFFEu)}) {
    AnimationHeader header;
    header.firstFrame = 5;
    header.lastFrame = last;
    const std::string info = Chunk("INFO", 100, Text("") + Words({count, 0}) + Floats({1}));
    const std::string bytes = Written(header);
    EXPECT_EQ(bytes.substr(12, info.size()), info);
    EXPECT_EQ(bytes.find("FRAM"), std::string::npos);
  }
}

}  // namespace
}  // namespace orv
