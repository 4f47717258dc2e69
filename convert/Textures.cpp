#include "convert/Textures.h"

#include <stdexcept>

#include "convert/Pictures.h"
#include "formats/ChunkReader.h"
#include "platform/ExString.h"

namespace orv::convert {

namespace {

constexpr uint32_t kClampToEdge = 33071, kRepeat = 10497;

}  // namespace

Textures::Textures(const std::string& folder, GlbDocument& document, Messages& messages)
    : m_folder(folder), m_document(document), m_messages(messages) {}

std::optional<Texture> Textures::Find(const std::string& name) {
  const std::string key = LowerCase(FileNamePart(name));
  const auto known = m_made.find(key);
  if (known != m_made.end()) return known->second;
  return m_made[key] = Make(std::string(FileNamePart(name)));
}

std::optional<Texture> Textures::Make(const std::string& name) {
  inspect::SideFile sideFile{.primary = name, .alpha = "", .tileS = true, .tileT = true};
  if (inspect::NamesSideFile(name)) {
    const std::optional<inspect::SideFile> read = ReadSideFile(name + ".txt");
    if (!read) return std::nullopt;
    sideFile = *read;
  }
  const std::optional<size_t> image = ImageOf(sideFile);
  if (!image) return std::nullopt;
  const size_t texture =
      m_document.Add("textures", {{"sampler", SamplerOf(sideFile)}, {"source", *image}});
  return Texture{texture, !sideFile.alpha.empty()};
}

std::optional<inspect::SideFile> Textures::ReadSideFile(const std::string& name) {
  const std::filesystem::path* const path = m_folder.Find(name);
  if (!path) {
    m_messages.mended.push_back(name + ": is not beside the model, its texture is left out");
    return std::nullopt;
  }
  const inspect::SideFile sideFile = inspect::ReadSideFile(*path);
  if (!sideFile.primary.empty()) return sideFile;
  m_messages.mended.push_back(name + ": has no line \"Primary=\", its texture is left out");
  return std::nullopt;
}

std::optional<size_t> Textures::ImageOf(const inspect::SideFile& sideFile) {
  const std::string alphaName =
      EqualIgnoringCase(sideFile.alpha, sideFile.primary) ? "" : sideFile.alpha;
  const auto [known, isNew] =
      m_images.try_emplace({LowerCase(sideFile.primary), LowerCase(alphaName)});
  if (!isNew) return known->second;
  const std::optional<std::string> bytes = ReadBeside(sideFile.primary);
  if (!bytes) return std::nullopt;
  std::optional<std::string> alphaBytes;
  if (!alphaName.empty()) alphaBytes = ReadBeside(alphaName);
  std::optional<Picture> picture;
  std::string reason = "is no picture that can be read";
  try {
    picture = alphaBytes ? WithAlphaOf(*bytes, sideFile.primary, *alphaBytes, alphaName)
                         : PictureFrom(*bytes, sideFile.primary);
  } catch (const std::runtime_error& error) {
    reason = error.what();
  }
  if (!picture) {
    m_messages.mended.push_back(sideFile.primary + ": " + reason + ", left out");
    return std::nullopt;
  }
  std::string name(BaseNamePart(sideFile.primary));
  if (alphaBytes) name += "-" + std::string(BaseNamePart(alphaName));
  known->second = m_document.AddImage(picture->bytes, picture->mimeType, name);
  return known->second;
}

std::optional<std::string> Textures::ReadBeside(const std::string& name) {
  const std::filesystem::path* const path = m_folder.Find(name);
  if (!path) {
    m_messages.mended.push_back(name + ": is not beside the model, left out");
    return std::nullopt;
  }
  std::string bytes;
  ReadProblem problem;
  if (ReadWholeFile(path->string(), bytes, problem)) return bytes;
  m_messages.mended.push_back(name + ": " + problem.text + ", left out");
  return std::nullopt;
}

size_t Textures::SamplerOf(const inspect::SideFile& sideFile) {
  const auto [known, isNew] = m_samplers.try_emplace({sideFile.tileS, sideFile.tileT});
  if (isNew) {
    known->second =
        m_document.Add("samplers", {{"wrapS", sideFile.tileS ? kRepeat : kClampToEdge},
                                    {"wrapT", sideFile.tileT ? kRepeat : kClampToEdge}});
  }
  return known->second;
}

}  // namespace orv::convert
