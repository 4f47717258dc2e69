#include "host/import/GltfSkins.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "platform/ExString.h"

namespace orv::host {
namespace {

uint32_t ReadWord(std::istream& in) {
  unsigned char bytes[4] = {};
  in.read(reinterpret_cast<char*>(bytes), 4);
  return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

// The JSON of a file, the first chunk of a binary one; "" when it is neither.
std::string JsonOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (EndsWithIgnoringCase(path, ".gltf")) return {std::istreambuf_iterator<char>(in), {}};
  if (!EndsWithIgnoringCase(path, ".glb")) return "";
  in.seekg(0, std::ios::end);
  const std::streamoff size = in.tellg();
  in.seekg(12);  // magic, version, length
  const uint32_t length = ReadWord(in);
  ReadWord(in);  // chunk type
  if (!in || length > size) return "";
  std::string json(length, '\0');
  in.read(json.data(), length);
  return json;
}

}  // namespace

std::string FaultOfGltfSkins(const std::string& path) {
  const std::string text = JsonOf(path);
  if (text.find("\"skins\"") == std::string::npos) return "";
  const nlohmann::json file = nlohmann::json::parse(text, nullptr, false);
  if (!file.is_object() || !file.contains("skins") || !file["skins"].is_array()) return "";
  for (size_t i = 0; i < file["skins"].size(); ++i) {
    const nlohmann::json& skin = file["skins"][i];
    if (!skin.is_object() || skin.contains("inverseBindMatrices")) continue;
    return "skin " + std::to_string(i) +
           " has no inverse bind matrices; save the scene again with them";
  }
  return "";
}

}  // namespace orv::host
