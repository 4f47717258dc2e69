#include "host/import/PictureFiles.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "platform/ExString.h"

namespace orv::host {
namespace {

namespace fs = std::filesystem;
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

std::optional<std::string> ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string WithNumber(const std::string& name, int number) {
  const fs::path path(name);
  return path.stem().string() + "_" + std::to_string(number) + path.extension().string();
}

}  // namespace

bool PictureCarriesAlpha(std::string_view bytes, std::string_view fileName) {
  if (bytes.starts_with("\x89PNG"sv)) return PngCarriesAlpha(bytes);
  if (bytes.starts_with("\xFF\xD8\xFF"sv)) return false;  // JPEG
  constexpr size_t kTgaDepth = 16;
  if (EndsWithIgnoringCase(fileName, ".tga") && bytes.size() > kTgaDepth) {
    return bytes[kTgaDepth] == 32;
  }
  return true;
}

std::string CleanFileName(std::string name) {
  for (char& c : name) {
    const bool bad = static_cast<unsigned char>(c) < 32 ||
                     std::string("<>:\"/\\|?*").find(c) != std::string::npos;
    if (bad) c = '_';
  }
  return name;
}

std::string WritePicture(const std::string& folderName, const std::string& name,
                         const std::string& bytes, SceneInfo& info) {
  std::string folder = folderName;
  if (folder.back() != '/' && folder.back() != '\\') folder += '/';
  std::string free = name;
  std::error_code error;
  int number = 1;
  while (fs::exists(folder + free, error) && ReadFile(folder + free) != bytes) {
    free = WithNumber(name, ++number);
  }
  if (!fs::exists(folder + free, error)) {
    std::ofstream out(folder + free, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) info.warnings.push_back("cannot write the embedded texture " + folder + free);
  }
  if (free != name) {
    info.warnings.push_back("the embedded texture " + name + " is written as " + free +
                            ", another file has its name");
  }
  info.ownBitmaps.push_back(folder + free);
  return folder + free;
}

}  // namespace orv::host
