#include "platform/ExString.h"

#include <algorithm>

namespace orv {
namespace {

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

// A backslash anywhere wins over every "/", as in all file names the exporter has ever made.
size_t LastSeparator(std::string_view path) {
  const size_t backslash = path.rfind('\\');
  return backslash != path.npos ? backslash : path.rfind('/');
}

}  // namespace

ExString& ExString::Append(const char* text) {
  if (text) m_text.append(text);
  return *this;
}

ExString& ExString::AppendPath(const char* component, bool trailingSeparator) {
  std::string part = component ? component : "";  // a copy: it may point into this string
  if (part.empty()) return *this;
  if (m_text.empty() || !IsSeparator(m_text.back())) m_text += '/';
  m_text.append(part, IsSeparator(part.front()) ? 1 : 0);

  if (IsSeparator(m_text.back())) m_text.pop_back();
  if (trailingSeparator) m_text += '/';
  return *this;
}

ExString& ExString::NormalizeSeparators(char separator) {
  std::replace_if(m_text.begin(), m_text.end(), IsSeparator, separator);
  return *this;
}

ExString& ExString::StripExtension() {
  const size_t dot = m_text.rfind('.');
  if (dot != m_text.npos) m_text.resize(dot);
  return *this;
}

ExString& ExString::StripFileName() {
  const size_t separator = LastSeparator(m_text);
  if (separator != m_text.npos) m_text.resize(separator);
  return *this;
}

ExString& ExString::TrimWhiteSpace() {
  constexpr const char* kWhiteSpace = " \t\r\n";
  m_text.erase(m_text.find_last_not_of(kWhiteSpace) + 1);
  m_text.erase(0, m_text.find_first_not_of(kWhiteSpace));
  return *this;
}

std::string_view FileNamePart(std::string_view path) {
  return path.substr(LastSeparator(path) + 1);  // npos + 1 is 0
}

std::string_view FolderPart(std::string_view path) {
  return path.substr(0, path.size() - FileNamePart(path).size());
}

std::string_view BaseNamePart(std::string_view path) {
  const std::string_view name = FileNamePart(path);
  return name.substr(0, name.rfind('.'));
}

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = LowerCase(c);
  return lower;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerCase(x) == LowerCase(y); });
}

bool BeginsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  return EqualIgnoringCase(text.substr(0, prefix.size()), prefix);
}

bool EndsWithIgnoringCase(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() &&
         EqualIgnoringCase(text.substr(text.size() - suffix.size()), suffix);
}

}  // namespace orv
