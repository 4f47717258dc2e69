#include <gtest/gtest.h>

#include "IndependentReader.h"
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
  MovingSkeleton() { m_root = std::make_unique<MovingBone>("b.root", 0.0f); }
  Node& Add(Node& parent, const std::string& name) {
    parent.m_children.push_back(std::make_unique<MovingBone>(name, ++m_number));
    return *parent.m_children.back();
  }
  void SetFrame(int frame) override { g_frame = frame; }

 private:
  float m_number = 0;
};

AnimationHeader Range(int32_t firstFrame, int32_t lastFrame) {
  AnimationHeader header;
  header.firstFrame = firstFrame;
  header.lastFrame = lastFrame;
  return header;
}

std::string Written(GenericSkeleton& skeleton, const AnimationHeader& header) {
  return BytesOf([&](std::ostream& out) { WriteAnimation(out, skeleton, header); });
}

TEST(AnimationWriter, FileOfTwoBonesAndTwoFrames) {
  MovingSkeleton skeleton;
  skeleton.Add(*skeleton.m_root, "b.tip");
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
      Written(skeleton, header),
      Root("ANIM",
           Chunk("INFO", 100, Text("walk") + Words({2, 30}) + Floats({0.0254f})) +
               Chunk("EVNT", 100, Words({1, 1, 5}) + Text("dust")) + Chunk("SKEL", 100, bones) +
               Chunk("FRAM", 100,
                     LittleEndian(0) + Floats({10, 0, 0, 0, 0, 0, 1, 10, 1, 0, 0, 0, 0, 1})) +
               Chunk("FRAM", 100,
                     LittleEndian(1) + Floats({11, 0, 0, 0, 0, 0, 1, 11, 1, 0, 0, 0, 0, 1}))));
}

TEST(AnimationWriter, RangeThatEndsBeforeItBeginsHasNoFrames) {
  MovingSkeleton skeleton;
  const std::tuple<int, int, uint32_t> cases[] = {{5, 4, 0}, {5, 2, 0xFFFFFFFE}};
  for (const auto& [first, last, count] : cases) {
    const auto file = independent::ParseAnimation(Written(skeleton, Range(first, last)));
    EXPECT_EQ(file.frameCount, count);
    EXPECT_TRUE(file.frames.empty());
  }
}

}  // namespace
}  // namespace orv
