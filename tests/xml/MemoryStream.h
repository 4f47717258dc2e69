#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "xml/MXMLDocument.h"
#include "xml/MXMLStream.h"

namespace orv {

class MemoryStream : public MXMLStream {
 public:
  explicit MemoryStream(std::string readable = {}) : m_readable(std::move(readable)) {}
  size_t Read(void* buffer, size_t size) override {
    const size_t count = std::min(size, m_readable.size() - m_position);
    std::memcpy(buffer, m_readable.data() + m_position, count);
    m_position += count;
    return count;
  }
  size_t Write(const void* buffer, size_t length) override {
    length = std::min(length, room - written.size());
    written.append(static_cast<const char*>(buffer), length);
    return length;
  }

  std::string written;
  size_t room = SIZE_MAX;

 private:
  std::string m_readable;
  size_t m_position = 0;
};

inline std::string WrittenBy(const MXMLDocument& document, bool format = false) {
  MemoryStream stream;
  document.Write(stream, format);
  return stream.written;
}

inline bool ParseText(MXMLDocument& document, const std::string& text, size_t bufferSize = 4096) {
  MemoryStream stream(text);
  return document.Parse(stream, bufferSize);
}

// "" when the text parses.
inline std::string ErrorOf(const std::string& text, size_t bufferSize = 4096) {
  MXMLDocument document;
  return ParseText(document, text, bufferSize) ? "" : document.ErrorText();
}

}  // namespace orv
