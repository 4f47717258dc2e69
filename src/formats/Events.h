#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "report/ExportUserInterface.h"

namespace orv {

// The keywords of an event file; the index is the code in the animation file.
inline constexpr const char* kEventKeywords[] = {
    "Sound_Event",  "Sound_Sync_Event", "Synchronisation",  "Sage_3D",       "Generic_Event",
    "Effect_Event", "Attachment_Event", "Detachment_Event", "Transfer_Event"};

struct AnimationEvent {
  int32_t frame = 0;  // of the scene; of the animation once read back from an animation file
  uint32_t type = 0;  // index into kEventKeywords
  std::string name;   // what the event is about: a sound, an effect; at most kMaxNameLength long
};

// Appends the events of an event file in the order in which the author wrote them; entries with an
// unknown keyword are dropped. Returns the line, from 1, at which a malformed file could not be
// read on; the entries before it are kept. A stream that is not good is left alone.
std::optional<int> ReadEvents(std::istream& in, std::vector<AnimationEvent>& events);

// The events of a file; none without a name or when it cannot be opened. A malformed file is
// warned about.
std::vector<AnimationEvent> ReadEventFile(const std::string& fileName, ExportUserInterface& ui);

}  // namespace orv
