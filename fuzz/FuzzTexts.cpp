// The readers of the two text files: options and events.

#include <iterator>
#include <sstream>

#include "AllocationLimit.h"
#include "Require.h"
#include "Targets.h"
#include "formats/Events.h"
#include "xml/MemoryStream.h"

namespace orv {
namespace {

// "<a/>" is an element of 104 bytes, "<ab/>" with its own name one of 180, as a tree's nodes are.
constexpr size_t kXmlLiveFactor = 48;

// "1Sage_3D a " is an event of 40 bytes; the text itself is held too, in a buffer that doubles.
constexpr size_t kEventsLiveFactor = 8;

}  // namespace

// A piece of 7 bytes at a time: a text is cut at other places than by the whole.
void FuzzXml(std::string_view bytes) {
  const std::string text(bytes);
  MXMLDocument document, inPieces;
  bool parsed;
  {
    const AllocationLimit limit(bytes.size(), kXmlLiveFactor);
    parsed = ParseText(document, text);
  }
  Require(parsed == ParseText(inPieces, text, 7), "pieces parse as the whole does");
  if (!parsed) {
    Require(document.ErrorText()[0] != '\0', "a refusal says why");
    Require(std::string(document.ErrorText()) == inPieces.ErrorText(), "the same reason");
    return;
  }
  const std::string written = WrittenBy(document);
  Require(written == WrittenBy(inPieces), "pieces give the same document");
  MXMLDocument again;
  Require(ParseText(again, written), "what is written parses");
  Require(WrittenBy(again) == written, "the same tree comes back");
  again.Top().Format(true, 0);
  WrittenBy(again, true);
}

void FuzzEvents(std::string_view bytes) {
  std::istringstream in{std::string(bytes)};
  std::vector<AnimationEvent> events;
  std::optional<int> line;
  {
    const AllocationLimit limit(bytes.size(), kEventsLiveFactor);
    line = ReadEvents(in, events);
  }
  Require(!line || *line >= 1, "lines count from 1");
  for (const AnimationEvent& event : events) {
    Require(event.type < std::size(kEventKeywords), "a type that has a keyword");
    Require(!event.name.empty() && event.name.size() <= 255, "a name of 1 to 255 characters");
  }
}

}  // namespace orv
