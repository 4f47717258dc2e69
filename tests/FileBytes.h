#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <sstream>
#include <string>

// The bytes that the tests expect in a file, put together without the code under test.
namespace orv {

inline std::string LittleEndian(uint32_t value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift & 0xFF);
  return bytes;
}

inline std::string Words(std::initializer_list<uint32_t> values) {
  std::string bytes;
  for (const uint32_t value : values) bytes += LittleEndian(value);
  return bytes;
}

inline std::string Shorts(std::initializer_list<uint32_t> values) {
  std::string bytes;
  for (const uint32_t value : values) bytes += LittleEndian(value).substr(0, 2);
  return bytes;
}

inline std::string Floats(std::initializer_list<float> values) {
  std::string bytes;
  for (const float value : values) {
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    bytes += LittleEndian(bits);
  }
  return bytes;
}

// A text as it stands in a chunk.
inline std::string Text(std::string text) {
  while (text.size() % 4) text += '\0';
  return LittleEndian(static_cast<uint32_t>(text.size())) + text;
}

inline std::string Chunk(const std::string& tag, uint32_t version, const std::string& body = "") {
  return tag + LittleEndian(static_cast<uint32_t>(4 + body.size())) + LittleEndian(version) + body;
}

inline std::string Root(const std::string& fileType, const std::string& chunks) {
  return "QIRF" + LittleEndian(static_cast<uint32_t>(4 + chunks.size())) + fileType + chunks;
}

// What a function writes to its stream.
template <typename Function>
std::string BytesOf(Function&& write) {
  std::ostringstream out;
  write(out);
  return out.str();
}

}  // namespace orv
