#include "formats/Events.h"

#include <gtest/gtest.h>

#include <sstream>

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

TEST(Events, AreReadUpToTheFirstMalformedOne) {
  const std::string name255(255, 'n'), slashes1025(1025, '/');
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"// footsteps\n12 Sound_Event left\n30 Sound_Sync_Event right", "12:0:left 30:1:right "},
      {"1 Synchronisation a 2 Sage_3D b 3 Generic_Event c 4 Effect_Event d",
       "1:2:a 2:3:b 3:4:c 4:5:d "},
      {"3 Attachment_Event a\r\n2 Detachment_Event b\v1 Transfer_Event\fc", "3:6:a 2:7:b 1:8:c "},
      {"-5\nSound_Event\n\tx +7 Sound_Event y", "-5:0:x 7:0:y "},
      {"1 sound_event x 2 Sound_Event y 3 Sound_Events z", "2:0:y "},  // unknown ones are dropped
      {"12Sound_Event x", "12:0:x "},
      {"// only\n/* comments */ // here", ""},
      {"/* a */ /* b */\n// c\n1 Sage_3D x // d", "1:3:x "},
      {"/* no end", ""},
      {"1 Sage_3D //x", "1:3://x "},
      {"1 Sage_3D x /", "1:3:x ! 1"},
      {"1 Sage_3D x\n\nfoo Sage_3D y\n3 Sage_3D z", "1:3:x ! 3"},
      {"1 Sage_3D x\n2 Sage_3D\n", "1:3:x ! 2"},
      {"+-1 Sage_3D x", "! 1"},
      {"99999999999 Sage_3D x", "! 1"},
      {"1 Sage_3D " + name255, "1:3:" + name255 + " "},
      {"1 Sage_3D\n" + name255 + "n 2 Sage_3D y", "! 2"},
      {slashes1025 + "1 Sage_3D x", "1:3:x "},  // of a comment, the first slash is not counted
      {"/" + slashes1025 + " 1 Sage_3D x", "! 1"},
  };
  for (const auto& [text, events] : cases) EXPECT_EQ(EventsOf(text), events) << text;
}

TEST(Events, BlockCommentEndsAtItsFirstStarOrSlash) {
  EXPECT_EQ(EventsOf("/* a*b */ 1 Sage_3D x"), "! 1");
  EXPECT_EQ(EventsOf("/* a/ 1 Sage_3D x"), "1:3:x ");
  EXPECT_EQ(EventsOf("/*/ 1 Sage_3D x */2 Sage_3D y"), "2:3:y ");
}

}  // namespace
}  // namespace orv
