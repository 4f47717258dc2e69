#include "host/import/ImageAlpha.h"

#include <cstdint>

#include "platform/ExString.h"

namespace orv::host {
namespace {

using namespace std::string_view_literals;

uint32_t BigEndian(std::string_view bytes, size_t at) {
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

// Grey or colour with alpha; or one transparent colour, named in a chunk before the pixels.
bool PngCarriesAlpha(std::string_view bytes) {
  constexpr size_t kColourType = 25;
  if (bytes.size() <= kColourType) return false;
  if (bytes[kColourType] == 4 || bytes[kColourType] == 6) return true;
  size_t chunk = 8;
  while (chunk + 8 <= bytes.size()) {
    const std::string_view tag = bytes.substr(chunk + 4, 4);
    if (tag == "tRNS") return true;
    if (tag == "IDAT") return false;
    chunk += size_t{12} + BigEndian(bytes, chunk);
  }
  return false;
}

}  // namespace

bool ImageCarriesAlpha(std::string_view bytes, std::string_view fileName) {
  if (bytes.starts_with("\x89PNG"sv)) return PngCarriesAlpha(bytes);
  if (bytes.starts_with("\xFF\xD8\xFF"sv)) return false;  // JPEG
  constexpr size_t kTgaDepth = 16;
  if (EndsWithIgnoringCase(fileName, ".tga") && bytes.size() > kTgaDepth) {
    return bytes[kTgaDepth] == 32;
  }
  return true;
}

}  // namespace orv::host
