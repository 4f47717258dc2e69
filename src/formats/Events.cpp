#include "formats/Events.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>
#include <utility>

#include "platform/Platform.h"
#include "scene/GenericSkeleton.h"

namespace orv {

namespace {

constexpr size_t kMaxLineComment = 1024;  // characters, from the second slash on
constexpr size_t kMinEntry = 11;          // characters, with the white space behind it
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

// Walks over the text of an event file.
class EventText {
 public:
  explicit EventText(std::string_view text) : m_text(text) {}

  bool AtEnd() const { return m_position == m_text.size(); }

  // Of the token that was read last, or that could not be read.
  int Line() const {
    const auto start = m_text.begin();
    return 1 + static_cast<int>(
                   std::count(start, start + static_cast<std::ptrdiff_t>(m_tokenStart), '\n'));
  }

  // A slash that begins no comment stays.
  void SkipComments() {
    SkipWhiteSpace();
    while (Peek() == '/') {
      if (Peek(1) == '/') {
        SkipLineComment();
      } else if (Peek(1) == '*') {
        SkipBlockComment();
      } else {
        return;
      }
      SkipWhiteSpace();
    }
  }

  // The number ends where its digits end, also in the middle of a word.
  std::optional<int32_t> ReadNumber() {
    StartToken();
    const size_t digits = m_position + (Peek() == '+' && Peek(1) != '-' ? 1 : 0);
    int32_t value = 0;
    const char* end = m_text.data() + m_text.size();
    const auto result = std::from_chars(m_text.data() + digits, end, value);
    if (result.ec != std::errc()) return std::nullopt;
    m_position = static_cast<size_t>(result.ptr - m_text.data());
    return value;
  }

  // Empty at the end of the text, which counts to the line of the token before it.
  std::string_view ReadWord() {
    const size_t before = m_tokenStart;
    StartToken();
    if (AtEnd()) m_tokenStart = before;
    const size_t start = m_position;
    m_position = std::min(m_text.find_first_of(kWhiteSpace, start), m_text.size());
    return m_text.substr(start, m_position - start);
  }

 private:
  int Peek(size_t ahead = 0) const {
    return m_position + ahead < m_text.size() ? m_text[m_position + ahead] : -1;
  }
  void Skip(size_t count) { m_position = std::min(m_position + count, m_text.size()); }
  void SkipWhiteSpace() {
    m_position = std::min(m_text.find_first_not_of(kWhiteSpace, m_position), m_text.size());
  }
  void StartToken() {
    SkipWhiteSpace();
    m_tokenStart = m_position;
  }

  // What is left of a longer comment is read as an entry.
  void SkipLineComment() {
    Skip(1);
    const size_t lineEnd = m_text.substr(m_position, kMaxLineComment).find('\n');
    Skip(lineEnd == std::string_view::npos ? kMaxLineComment : lineEnd + 1);
  }

  // Ends at its first "*", or before a "/", and takes the character after that along: a comment
  // that holds either ends early. Pinned by Events.BlockCommentEndsAtItsFirstStarOrSlash.
  void SkipBlockComment() {
    Skip(2);
    while (!AtEnd()) {
      const bool star = Peek() == '*';
      Skip(1);
      if (star || Peek() == '/') break;
    }
    Skip(1);
  }

  std::string_view m_text;
  size_t m_position = 0;
  size_t m_tokenStart = 0;
};

std::optional<uint32_t> TypeOf(std::string_view keyword) {
  const auto found = std::find(std::begin(kEventKeywords), std::end(kEventKeywords), keyword);
  if (found == std::end(kEventKeywords)) return std::nullopt;
  return static_cast<uint32_t>(found - std::begin(kEventKeywords));
}

// False when the entry is malformed.
bool ReadEntry(EventText& text, std::vector<AnimationEvent>& events) {
  const std::optional<int32_t> frame = text.ReadNumber();
  if (!frame) return false;
  const std::optional<uint32_t> type = TypeOf(text.ReadWord());
  const std::string_view name = text.ReadWord();
  if (name.empty() || name.size() > kMaxNameLength) return false;
  if (type) events.push_back({*frame, *type, std::string(name)});
  return true;
}

}  // namespace

std::optional<int> ReadEvents(std::istream& in, std::vector<AnimationEvent>& events) {
  if (!in.good()) return std::nullopt;
  std::ostringstream copy;
  copy << in.rdbuf();  // a read that fails, as a folder's does, is just the end
  const std::string content = std::move(copy).str();
  events.reserve(events.size() + content.size() / kMinEntry + 1);
  EventText text(content);
  for (text.SkipComments(); !text.AtEnd(); text.SkipComments()) {
    if (!ReadEntry(text, events)) return text.Line();
  }
  return std::nullopt;
}

std::vector<AnimationEvent> ReadEventFile(const std::string& fileName, ExportUserInterface& ui) {
  std::vector<AnimationEvent> events;
  if (fileName.empty()) return events;
  std::ifstream in(platform::NativePath(fileName));
  if (const std::optional<int> line = ReadEvents(in, events)) {
    ui.Report("event-file-malformed", fileName, *line);
  }
  return events;
}

}  // namespace orv
