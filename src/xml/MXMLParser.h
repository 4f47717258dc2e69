#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orv {

enum class MXMLContent { Declaration = 0, Comment = 1, Text = 2, CDATA = 3 };

// What the parser calls while it reads. The texts are valid during the call only.
struct MXMLParserCallbacks {
  void* user;
  // attributes: name, value, name, value, ..., null.
  void (*startElement)(void* user, const char* name, const char* const* attributes);
  void (*endElement)(void* user);
  void (*content)(void* user, MXMLContent kind, const char* text);
};

// Takes a text in pieces that may be cut anywhere. White space outside the root element is skipped.
class MXMLParser {
 public:
  enum Status { kMore = 0, kDone = 1, kError = 2 };

  explicit MXMLParser(const MXMLParserCallbacks& callbacks) : m_callbacks(callbacks) {}

  // isFinal: nothing follows this piece, which may be empty. After an error every call returns it.
  Status Feed(const char* buffer, size_t count, bool isFinal);

  // The message of the error. Its column is one past the character at fault, as a character is
  // counted before it is looked at. Pinned by XmlParser.Messages.
  const char* ErrorText() const { return m_errorText; }

 private:
  enum class State {
    kTopLevel,
    kText,
    kReference,  // after "&" in a text or a value
    kMarkup,     // after "<"
    kStartName,
    kTagSpace,  // in a start tag, after white space
    kAttributeName,
    kAttributeEquals,  // after the name and white space
    kValueStart,
    kValue,
    kValueEnd,      // after the closing quote
    kEmptyTag,      // after the "/" of a start tag
    kEndNameStart,  // after "</"
    kEndName,
    kEndTagSpace,
    kBang,          // after "<!"
    kCommentStart,  // after "<!-"
    kComment,
    kCDATAStart,  // after "<!["
    kCDATA,
    kDeclaration,
  };

  // Each takes one character in the state it is named for, and is false after an error.
  bool Take(char c);
  bool TakeTopLevel(char c);
  bool TakeText(char c);
  bool TakeReference(char c);
  bool TakeMarkup(char c);
  bool TakeStartName(char c);
  bool TakeTagSpace(char c);
  bool TakeAttributeName(char c);
  bool TakeAttributeEquals(char c);
  bool TakeValueStart(char c);
  bool TakeValue(char c);
  bool TakeEmptyTag(char c);
  bool TakeEndName(char c);
  bool TakeEndTagSpace(char c);
  bool TakeBang(char c);
  bool TakeCDATAStart(char c);

  // What several states share.
  bool TakeCharacter(char c);
  bool TakeCharacterOrReference(char c);
  bool TakeNameStart(State nameState, char c);
  bool TakeTagPartEnd(char c, const char* message);  // message: for any other character
  bool TakeUntil(char c, std::string_view beforeEnd, MXMLContent kind);
  bool TakeNumber();
  bool TakeEntity();

  const char* OpenName() const;  // of the innermost element that is not closed
  bool StartElement();
  bool EndElement();
  bool LeaveMarkup();
  bool Finish();
  bool Go(State state);  // begins a new token
  bool Fail(const char* message, char offender = '\0');

  MXMLParserCallbacks m_callbacks;
  State m_state = State::kTopLevel;
  State m_referenceIn = State::kText;  // where a reference's character goes
  std::string m_text;                  // the token being read
  std::string m_reference;
  // Texts end to end, each with its zero byte: a string object for each would take many times the
  // memory of the document.
  std::string m_openNames;   // of the elements that are not closed, the root first
  std::string m_attributes;  // name, value, name, value, ...
  bool m_hasRoot = false;
  Status m_status = kMore;
  uint32_t m_line = 1;
  uint32_t m_column = 1;
  char m_errorText[128] = "";
};

}  // namespace orv
