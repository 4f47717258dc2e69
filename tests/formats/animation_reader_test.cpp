#include "formats/AnimationReader.h"

#include <gtest/gtest.h>

#include "FileBytes.h"

namespace orv {
namespace {

struct AnimationParts {
  std::string info = Chunk("INFO", 100, Text("walk") + Words({2, 30}) + Floats({0.0254f}));
  std::string evnt = Chunk("EVNT", 100, Words({1, 1, 5}) + Text("dust"));
  std::string skel = Chunk("SKEL", 100,
                           Chunk("BONE", 100,
                                 Text("b.root") + LittleEndian(2) +
                                     Chunk("BONE", 100, Text("b.left") + LittleEndian(0)) +
                                     Chunk("BONE", 100, Text("b.right") + LittleEndian(0))));
  std::string frames = Frame(0) + Frame(1);

  static std::string Frame(uint32_t number) {
    std::string poses;
    for (int bone = 0; bone < 3; ++bone) {
      poses += Floats({static_cast<float>(number), static_cast<float>(bone), 0, 0, 0, 0, 1});
    }
    return Chunk("FRAM", 100, LittleEndian(number) + poses);
  }
  std::string Bytes() const { return Root("ANIM", info + evnt + skel + frames); }
};

std::string Refusal(const std::string& bytes) {
  AnimationFile file;
  ReadProblem problem;
  return ReadAnimation(bytes, file, problem) ? "accepted" : problem.Message();
}

TEST(AnimationReader, RangeThatEndsBeforeItBeginsHasNoFrames) {
  AnimationParts parts;
  parts.info = Chunk("INFO", 100, Text("") + Words({0xFFFFFFFE, 30}) + Floats({1}));
  parts.frames.clear();
  AnimationFile file;
  ReadProblem problem;
  ASSERT_TRUE(ReadAnimation(parts.Bytes(), file, problem)) << problem.Message();
  EXPECT_EQ(file.frameCount, 0u);
}

TEST(AnimationReader, DamagedFilesAreRefusedWithTheirPlace) {
  const auto changed = [](std::string AnimationParts::*part, std::string bytes) {
    AnimationParts parts;
    parts.*part = std::move(bytes);
    return Refusal(parts.Bytes());
  };
  const AnimationParts good;
  const std::pair<std::string, const char*> cases[] = {
      {changed(&AnimationParts::info, Chunk("INFO", 101)), "QIRF/INFO: version 101 is unknown"},
      {changed(&AnimationParts::info, Chunk("INFO", 100, Text("") + Words({3, 30}) + Floats({1}))),
       "QIRF: frame count 3 exceeds the file"},
      {changed(&AnimationParts::evnt, Chunk("EVNT", 100, Words({0x10000000}))),
       "QIRF/EVNT: event count 268435456 exceeds the chunk"},
      {changed(&AnimationParts::evnt, ""), "QIRF: found \"SKEL\" where \"EVNT\" is due"},
      {changed(&AnimationParts::skel, ""), "QIRF: found \"FRAM\" where \"SKEL\" is due"},
      {changed(&AnimationParts::skel, Chunk("SKEL", 100)), "QIRF/SKEL: a tag of 4 bytes is cut"},
      {changed(&AnimationParts::frames, good.frames + good.frames), "accepted"},
      {changed(&AnimationParts::frames, AnimationParts::Frame(0) + AnimationParts::Frame(2)),
       "QIRF/FRAM 1: frame 2 where frame 1 is due"}};
  for (const auto& [message, expected] : cases) EXPECT_EQ(message.find(expected), 0u) << message;
}

TEST(AnimationReader, EveryPrefixIsRefused) {
  const std::string bytes = AnimationParts().Bytes();
  for (size_t size = 0; size < bytes.size(); ++size) {
    std::string prefix = bytes.substr(0, size);
    EXPECT_NE(Refusal(prefix).find(" (at byte "), std::string::npos) << size;
    if (size < 12) continue;
    prefix.replace(4, 4, LittleEndian(static_cast<uint32_t>(size - 8)));
    const std::string message = Refusal(prefix);
    EXPECT_NE(message.find(" (at byte "), std::string::npos) << size << " with its own length";
    EXPECT_EQ(message.find("QIRF"), 0u) << message;
  }
}

}  // namespace
}  // namespace orv
