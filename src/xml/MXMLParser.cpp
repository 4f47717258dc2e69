#include "xml/MXMLParser.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "xml/MXMLWriter.h"

namespace orv {
namespace {

constexpr std::string_view kCDATA = "CDATA[";

bool IsWhiteSpace(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// A byte of a longer character in UTF-8 may stand anywhere in a name.
bool IsNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
         static_cast<signed char>(c) < 0;
}

bool IsNameCharacter(char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// What follows a zero byte in the text is not kept.
void AppendText(std::string& list, const std::string& text) {
  list.append(text.c_str(), std::strlen(text.c_str()) + 1);
}

size_t LastTextOf(const std::string& list) { return list.rfind('\0', list.size() - 2) + 1; }

}  // namespace

MXMLParser::Status MXMLParser::Feed(const char* buffer, size_t count, bool isFinal) {
  if (m_status != kMore) return m_status;
  for (size_t i = 0; i < count; ++i) {
    if (buffer[i] == '\n') {
      ++m_line;
      m_column = 1;
    } else {
      ++m_column;
    }
    if (!Take(buffer[i])) return m_status = kError;
  }
  if (isFinal) m_status = Finish() ? kDone : kError;
  return m_status;
}

bool MXMLParser::Take(char c) {
  switch (m_state) {
    case State::kTopLevel:
      return TakeTopLevel(c);
    case State::kText:
      return TakeText(c);
    case State::kReference:
      return TakeReference(c);
    case State::kMarkup:
      return TakeMarkup(c);
    case State::kStartName:
      return TakeStartName(c);
    case State::kTagSpace:
      return TakeTagSpace(c);
    case State::kAttributeName:
      return TakeAttributeName(c);
    case State::kAttributeEquals:
      return TakeAttributeEquals(c);
    case State::kValueStart:
      return TakeValueStart(c);
    case State::kValue:
      return TakeValue(c);
    case State::kValueEnd:
      return TakeTagPartEnd(c, "unexpected char '%c'");
    case State::kEmptyTag:
      return TakeEmptyTag(c);
    case State::kEndNameStart:
      return TakeNameStart(State::kEndName, c);
    case State::kEndName:
      return TakeEndName(c);
    case State::kEndTagSpace:
      return TakeEndTagSpace(c);
    case State::kBang:
      return TakeBang(c);
    case State::kCommentStart:
      return c == '-' ? Go(State::kComment) : Fail("expecting '-'");
    case State::kComment:
      return TakeUntil(c, "--", MXMLContent::Comment);
    case State::kCDATAStart:
      return TakeCDATAStart(c);
    case State::kCDATA:
      return TakeUntil(c, "]]", MXMLContent::CDATA);
    case State::kDeclaration:
      return TakeUntil(c, "?", MXMLContent::Declaration);
  }
  std::snprintf(m_errorText, sizeof(m_errorText), "internal error");
  return false;
}

bool MXMLParser::TakeTopLevel(char c) {
  if (c == '<') return Go(State::kMarkup);
  return IsWhiteSpace(c) || Fail("expecting '<'");
}

bool MXMLParser::TakeText(char c) {
  if (c == '<') {
    // What follows a zero byte is not kept, and a text of nothing is none.
    if (*m_text.c_str()) m_callbacks.content(m_callbacks.user, MXMLContent::Text, m_text.c_str());
    return Go(State::kMarkup);
  }
  return TakeCharacterOrReference(c);
}

// Anything up to the ";" is the reference's name, even a "<" or a quote.
bool MXMLParser::TakeCharacterOrReference(char c) {
  if (c == '&') {
    m_referenceIn = m_state;
    m_reference.clear();
    m_state = State::kReference;
  } else {
    m_text += c;
  }
  return true;
}

bool MXMLParser::TakeReference(char c) {
  if (c != ';') {
    m_reference += c;
    return true;
  }
  m_state = m_referenceIn;
  return m_reference.starts_with('#') ? TakeNumber() : TakeEntity();
}

bool MXMLParser::TakeNumber() {
  const bool isHexadecimal = m_reference.starts_with("#x");
  const char* digits = m_reference.c_str() + (isHexadecimal ? 2 : 1);
  char* end = nullptr;
  const long code = std::strtol(digits, &end, isHexadecimal ? 16 : 10);
  if (end == digits || code < 0 || code > 255) return Fail("invalid character escape  sequence");
  m_text += static_cast<char>(code);
  return true;
}

bool MXMLParser::TakeEntity() {
  for (const MXMLEntity& entity : kMXMLEntities) {
    if (m_reference != entity.name) continue;
    m_text += entity.character;
    return true;
  }
  return Fail("unrecognized escape sequence");
}

bool MXMLParser::TakeMarkup(char c) {
  const bool isTopLevel = m_openNames.empty();
  if (c == '?') return Go(State::kDeclaration);
  if (c == '!') return Go(State::kBang);
  if (c == '/') return isTopLevel ? Fail("expecting element") : Go(State::kEndNameStart);
  if (IsNameStart(c) && isTopLevel && m_hasRoot) {
    return Fail("already parsed document root element");
  }
  return TakeNameStart(State::kStartName, c);
}

bool MXMLParser::TakeNameStart(State nameState, char c) {
  if (!IsNameStart(c)) return Fail("invalid name start '%c'", c);
  Go(nameState);
  m_text = c;
  return true;
}

// Start tags.

bool MXMLParser::TakeStartName(char c) {
  if (IsNameCharacter(c)) return TakeCharacter(c);
  AppendText(m_openNames, m_text);
  m_attributes.clear();
  return TakeTagPartEnd(c, "unexpected character '%c'");
}

bool MXMLParser::TakeTagPartEnd(char c, const char* message) {
  if (IsWhiteSpace(c)) return Go(State::kTagSpace);
  if (c == '/') return Go(State::kEmptyTag);
  return c == '>' ? StartElement() : Fail(message, c);
}

bool MXMLParser::TakeTagSpace(char c) {
  if (IsWhiteSpace(c) || c == '/' || c == '>') return TakeTagPartEnd(c, "");
  return TakeNameStart(State::kAttributeName, c);
}

bool MXMLParser::TakeAttributeName(char c) {
  if (IsNameCharacter(c)) return TakeCharacter(c);
  AppendText(m_attributes, m_text);
  return TakeAttributeEquals(c);
}

bool MXMLParser::TakeAttributeEquals(char c) {
  if (c == '=') return Go(State::kValueStart);
  return IsWhiteSpace(c) ? Go(State::kAttributeEquals) : Fail("expecting '='");
}

bool MXMLParser::TakeValueStart(char c) {
  if (c == '"') return Go(State::kValue);
  return IsWhiteSpace(c) || Fail("expecting '\"'");
}

bool MXMLParser::TakeValue(char c) {
  if (c != '"') return TakeCharacterOrReference(c);
  AppendText(m_attributes, m_text);
  return Go(State::kValueEnd);
}

bool MXMLParser::TakeEmptyTag(char c) {
  return c == '>' ? StartElement() && EndElement() : Fail("unexpected char '%c'", c);
}

const char* MXMLParser::OpenName() const { return m_openNames.c_str() + LastTextOf(m_openNames); }

bool MXMLParser::StartElement() {
  std::vector<const char*> attributes;
  const auto count = std::count(m_attributes.begin(), m_attributes.end(), '\0');
  attributes.reserve(static_cast<size_t>(count) + 1);
  for (size_t at = 0; at < m_attributes.size(); at += std::strlen(attributes.back()) + 1) {
    attributes.push_back(m_attributes.c_str() + at);
  }
  attributes.push_back(nullptr);
  m_callbacks.startElement(m_callbacks.user, OpenName(), attributes.data());
  return Go(State::kText);
}

// End tags.

bool MXMLParser::TakeEndName(char c) {
  if (IsNameCharacter(c)) return TakeCharacter(c);
  if (m_text != OpenName()) return Fail("end tag does not match start tag,");
  if (IsWhiteSpace(c)) return Go(State::kEndTagSpace);
  return c == '>' ? EndElement() : Fail("unexpected character '%c'", c);
}

bool MXMLParser::TakeEndTagSpace(char c) {
  if (c == '>') return EndElement();
  return IsWhiteSpace(c) || Fail("expecting '>'");
}

bool MXMLParser::EndElement() {
  m_openNames.resize(LastTextOf(m_openNames));
  m_hasRoot |= m_openNames.empty();
  m_callbacks.endElement(m_callbacks.user);
  return LeaveMarkup();
}

// Comments, CDATA sections and declarations.

bool MXMLParser::TakeBang(char c) {
  if (c == '-') return Go(State::kCommentStart);
  return c == '[' ? Go(State::kCDATAStart) : Fail("expecting '-' or '['");
}

bool MXMLParser::TakeCDATAStart(char c) {
  if (c != kCDATA[m_text.size()]) return Fail("invalid CDATA");
  m_text += c;
  if (m_text.size() < kCDATA.size()) return true;
  return m_openNames.empty() ? Fail("cant have CDATA at top level") : Go(State::kCDATA);
}

bool MXMLParser::TakeUntil(char c, std::string_view beforeEnd, MXMLContent kind) {
  if (c != '>' || !m_text.ends_with(beforeEnd)) return TakeCharacter(c);
  m_text.resize(m_text.size() - beforeEnd.size());
  m_callbacks.content(m_callbacks.user, kind, m_text.c_str());
  return LeaveMarkup();
}

bool MXMLParser::Finish() {
  if (!m_hasRoot) return Fail("expecting element");
  return m_state == State::kTopLevel || Fail("expecting '>'");
}

bool MXMLParser::TakeCharacter(char c) {
  m_text += c;
  return true;
}

bool MXMLParser::LeaveMarkup() { return Go(m_openNames.empty() ? State::kTopLevel : State::kText); }

bool MXMLParser::Go(State state) {
  m_text.clear();
  m_state = state;
  return true;
}

bool MXMLParser::Fail(const char* message, char offender) {
  const int length = std::snprintf(m_errorText, sizeof(m_errorText), message, offender);
  std::snprintf(m_errorText + length, sizeof(m_errorText) - length, " line %d, col %d",
                static_cast<int>(m_line), static_cast<int>(m_column));
  return false;
}

}  // namespace orv
