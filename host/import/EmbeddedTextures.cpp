#include "host/import/EmbeddedTextures.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>

namespace orv::host {
namespace {

namespace fs = std::filesystem;

// Uncompressed, 32 bits, first row on top; the importer's texels have a TGA's order of bytes.
std::string TgaOf(const aiTexture& texture) {
  std::string bytes(18, '\0');
  bytes[2] = 2;
  bytes[12] = static_cast<char>(texture.mWidth & 0xFF);
  bytes[13] = static_cast<char>(texture.mWidth >> 8);
  bytes[14] = static_cast<char>(texture.mHeight & 0xFF);
  bytes[15] = static_cast<char>(texture.mHeight >> 8);
  bytes[16] = 32;
  bytes[17] = 0x28;
  const size_t texels = size_t{texture.mWidth} * texture.mHeight;
  bytes.append(reinterpret_cast<const char*>(texture.pcData), texels * sizeof(aiTexel));
  return bytes;
}

std::optional<std::string> ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// Of characters that every system takes in a file's name, and none that lead to another folder.
std::string CleanName(std::string name) {
  for (char& c : name) {
    const bool bad = static_cast<unsigned char>(c) < 32 ||
                     std::string("<>:\"/\\|?*").find(c) != std::string::npos;
    if (bad) c = '_';
  }
  return name;
}

std::string ExtensionOf(const aiTexture& texture) {
  if (texture.mHeight > 0) return ".tga";
  std::string hint(texture.achFormatHint, strnlen(texture.achFormatHint, HINTMAXTEXTURELEN));
  return hint.empty() ? ".bin" : "." + CleanName(hint);
}

std::string WithNumber(const std::string& name, int number) {
  const fs::path path(name);
  return path.stem().string() + "_" + std::to_string(number) + path.extension().string();
}

}  // namespace

const aiTexture* EmbeddedTextures::Find(const std::string& reference) const {
  const auto [texture, index] = m_context.source.GetEmbeddedTextureAndIndex(reference.c_str());
  return index >= 0 && texture && texture->pcData ? texture : nullptr;
}

std::string EmbeddedTextures::FileOf(const aiTexture& texture) {
  if (texture.mHeight > 0) return TgaOf(texture);
  return std::string(reinterpret_cast<const char*>(texture.pcData), texture.mWidth);
}

std::string EmbeddedTextures::BaseNameOf(const aiTexture& texture) const {
  std::string own = texture.mFilename.C_Str();
  own = own.substr(own.find_last_of("/\\") + 1);  // the whole when there is none
  if (own.empty() || own == "." || own == ".." || own[0] == '*') {
    const aiScene& source = m_context.source;
    const std::span textures(source.mTextures, source.mNumTextures);
    const auto index = std::ranges::find(textures, &texture) - textures.begin();
    own = StemOf(m_context.path) + "_" + std::to_string(index);
  }
  own = CleanName(own);
  if (fs::path(own).extension().empty() || texture.mHeight > 0) own += ExtensionOf(texture);
  return own;
}

std::string EmbeddedTextures::Write(const aiTexture& texture) {
  const auto known = m_written.find(&texture);
  if (known != m_written.end()) return known->second;
  std::string name = BaseNameOf(texture);
  if (!m_context.settings.exportFolder.empty()) name = WriteBeside(name, FileOf(texture));
  return m_written[&texture] = name;
}

std::string EmbeddedTextures::WriteBeside(const std::string& name, const std::string& bytes) {
  SceneInfo& info = m_context.scene.info;
  std::string folder = m_context.settings.exportFolder;
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
