#include "formats/Events.h"

#include <gtest/gtest.h>

#include "FileBytes.h"

namespace orv {
namespace {

// "frame:type:name ..." and, for a malformed file, "! line".
std::string EventsOf(const std::string& text) {
  std::istringstream in(text);
  std::vector<AnimationEvent> events;
  const std::optional<int> malformed = ReadEvents(in, events);
  std::ostringstream out;
  for (const AnimationEvent& event : events) {
    out << event.frame << ':' << event.type << ':' << event.name << ' ';
  }
  if (malformed) out << "! " << *malformed;
  return out.str();
}

TEST(Events, EveryKeywordHasItsCode) {
  const char* keywords[] = {"Sound_Event",      "Sound_Sync_Event", "Synchronisation",
                            "Sage_3D",          "Generic_Event",    "Effect_Event",
                            "Attachment_Event", "Detachment_Event", "Transfer_Event"};
  for (size_t code = 0; code < std::size(keywords); ++code) {
    EXPECT_EQ(EventsOf(std::string("1 ") + keywords[code] + " x"),
              "1:" + std::to_string(code) + ":x ");
  }
}

TEST(Events, WellFormedFiles) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"// footsteps\n12 Sound_Event step_left\n30 Sound_Event step_right",
       "12:0:step_left 30:0:step_right "},
      {"30 Sage_3D b 12 Sage_3D a\r\n12 Sage_3D c\r\n", "30:3:b 12:3:a 12:3:c "},
      {"-5\nSound_Event\n\tx +7 Sound_Event y", "-5:0:x 7:0:y "},
      {"1 sound_event x 2 Sound_Event y", "2:0:y "},
      {"1 Sound_Events x 2 Sound x", ""},
      {"12Sound_Event x", "12:0:x "},
      {"// only\n/* comments */ // here", ""},
      {"/* a */ /* b */\n// c\n1 Sage_3D x // d", "1:3:x "},
      {"/* no end", ""},
      {"1 Sage_3D //x", "1:3://x "},
  };
  for (const auto& [text, events] : cases) EXPECT_EQ(EventsOf(text), events) << text;
}

TEST(Events, BlockCommentEndsAtItsFirstStarOrSlash) {
  EXPECT_EQ(EventsOf("/* a*b */ 1 Sage_3D x"), "! 1");
  EXPECT_EQ(EventsOf("/* a/ 1 Sage_3D x"), "1:3:x ");
  EXPECT_EQ(EventsOf("/*/ 1 Sage_3D x */2 Sage_3D y"), "2:3:y ");
}

TEST(Events, LineCommentEndsAfter1024Characters) {
  const std::string slashes(1025, '/');  // the first one is not counted
  EXPECT_EQ(EventsOf(slashes + "1 Sage_3D x"), "1:3:x ");
  EXPECT_EQ(EventsOf("/" + slashes + " 1 Sage_3D x"), "! 1");
}

TEST(Events, MalformedFilesKeepWhatCameBefore) {
  const std::string name255(255, 'n');
  const std::pair<std::string, std::string> cases[] = {
      {"1 Sage_3D x\n\nfoo Sage_3D y\n3 Sage_3D z", "1:3:x ! 3"},
      {"1 Sage_3D x\n2 Sage_3D\n", "1:3:x ! 2"},
      {"1 Sage_3D x\n2 Unknown", "1:3:x ! 2"},
      {"/ 1 Sage_3D x", "! 1"},
      {"+-1 Sage_3D x", "! 1"},
      {"99999999999 Sage_3D x", "! 1"},
      {"1 Sage_3D " + name255, "1:3:" + name255 + " "},
      {"1 Sage_3D\n" + name255 + "n 2 Sage_3D y", "! 2"},
  };
  for (const auto& [text, events] : cases) EXPECT_EQ(EventsOf(text), events) << text;
}

}  // namespace
}  // namespace orv
