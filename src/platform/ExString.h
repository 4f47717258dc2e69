#pragma once

#include <string>
#include <string_view>

namespace orv {

// An 8-bit string with the path operations of the exporter. Paths keep the form they came in
// ("\\" and "/" mixed); only platform::NativePath turns one into what the file system wants.
class ExString {
 public:
  ExString() = default;
  ExString(const char* text) : m_text(text ? text : "") {}
  explicit ExString(std::string_view text) : m_text(text) {}

  const char* CStr() const { return m_text.c_str(); }
  bool IsEmpty() const { return m_text.empty(); }
  bool operator==(const ExString&) const = default;

  ExString& Append(const char* text);

  // Joins with "/" unless the string already ends in a separator (an empty string gets the "/"
  // too); drops one leading separator of the component. An empty component changes nothing.
  ExString& AppendPath(const char* component, bool trailingSeparator);
  ExString& NormalizeSeparators(char separator);

  // Cuts at the last "." of the whole path, also when that dot belongs to a folder's name.
  ExString& StripExtension();

  // Cuts at the last "\\", else at the last "/"; the separator goes too.
  ExString& StripFileName();

  // Removes blanks, tabs, carriage returns and line feeds from both ends.
  ExString& TrimWhiteSpace();

 private:
  std::string m_text;
};

// What stands after the last "\\", else after the last "/"; the whole path when it has neither.
std::string_view FileNamePart(std::string_view path);

// What stands before that, with its separator; "" for a path that has none.
std::string_view FolderPart(std::string_view path);

// FileNamePart without what follows the name's last ".".
std::string_view BaseNamePart(std::string_view path);

// ASCII only, whatever the locale.
constexpr char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }
std::string LowerCase(std::string_view text);
bool EqualIgnoringCase(std::string_view a, std::string_view b);
bool BeginsWithIgnoringCase(std::string_view text, std::string_view prefix);
bool EndsWithIgnoringCase(std::string_view text, std::string_view suffix);

}  // namespace orv
