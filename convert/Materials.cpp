#include "convert/Parts.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "platform/ExString.h"

namespace orv::convert {

namespace {

constexpr uint32_t kClampToEdge = 33071, kRepeat = 10497;

float Within01(float value, bool& isGood) {
  if (std::isfinite(value)) return std::clamp(value, 0.0f, 1.0f);
  isGood = false;
  return 0;
}

Json ColourOf(Vec3 colour, bool& isGood) {
  return {Within01(colour.x, isGood), Within01(colour.y, isGood), Within01(colour.z, isGood)};
}

// Nothing would be seen of a texture on black.
Vec3 UnderTexture(Vec3 colour) { return colour == Vec3{} ? Vec3{1, 1, 1} : colour; }

// The law by which glTF's roughness becomes an exponent when scenes are opened, backwards.
float RoughnessOf(float exponent, bool& isGood) {
  return 1 - std::sqrt(Within01(exponent / 1000, isGood));
}

Json ExtrasOf(const GenericMaterial& material, bool& isGood) {
  Json extras = {{"ambient", ColourOf(material.ambient, isGood)},
                 {"specular", ColourOf(material.specular, isGood)},
                 {"shininess", std::isfinite(material.shininess) ? material.shininess : 0}};
  for (const auto& [key, value] : material.properties) {
    extras["properties"].push_back({Utf8(key), Utf8(value)});
  }
  for (const MaterialMap& map : material.maps) {
    extras["maps"].push_back({{"channel", map.channel},
                              {"name", Utf8(map.fileName)},
                              {"amount", std::isfinite(map.amount) ? map.amount : 0}});
  }
  return extras;
}

}  // namespace

Textures::Textures(const std::string& folder, GlbDocument& document, Messages& messages)
    : m_folder(folder), m_document(document), m_messages(messages) {}

std::optional<Texture> Textures::Find(const std::string& name) {
  const auto [known, isNew] = m_made.try_emplace(LowerCase(MapName(name)));
  if (isNew) known->second = Make(MapName(name));
  return known->second;
}

std::optional<Texture> Textures::Make(const std::string& name) {
  SideFile sideFile;
  sideFile.primary = name;
  sideFile.tileS = sideFile.tileT = true;
  if (IsTextureName(name)) {
    const std::optional<SideFile> read = FindSideFile(SideFileName(name));
    if (!read) return std::nullopt;
    sideFile = *read;
  }
  const std::optional<size_t> image = ImageOf(sideFile);
  if (!image) return std::nullopt;
  const size_t texture =
      m_document.Add("textures", {{"sampler", SamplerOf(sideFile)}, {"source", *image}});
  return Texture{texture, sideFile.alpha.has_value()};
}

std::optional<SideFile> Textures::FindSideFile(const std::string& name) {
  const std::filesystem::path* const path = m_folder.Find(name);
  if (!path) {
    m_messages.mended.push_back(name + ": is not beside the model, its texture is left out");
    return std::nullopt;
  }
  const SideFile sideFile = ReadSideFile(*path);
  if (!sideFile.primary.empty()) return sideFile;
  m_messages.mended.push_back(name + ": has no line \"Primary=\", its texture is left out");
  return std::nullopt;
}

std::optional<size_t> Textures::ImageOf(const SideFile& sideFile) {
  const bool isOwnAlpha = sideFile.alpha && EqualIgnoringCase(*sideFile.alpha, sideFile.primary);
  const std::string alphaName = isOwnAlpha ? "" : sideFile.alpha.value_or("");
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

size_t Textures::SamplerOf(const SideFile& sideFile) {
  const auto [known, isNew] = m_samplers.try_emplace({sideFile.tileS, sideFile.tileT});
  if (isNew) {
    known->second =
        m_document.Add("samplers", {{"wrapS", sideFile.tileS ? kRepeat : kClampToEdge},
                                    {"wrapT", sideFile.tileT ? kRepeat : kClampToEdge}});
  }
  return known->second;
}

Json MaterialOf(const GenericMaterial& material, Textures& textures, Messages& messages) {
  const auto textureOf = [&](int32_t channel) -> std::optional<Texture> {
    const MaterialMap* const map = FindMap(material, channel);
    return map ? textures.Find(map->fileName) : std::nullopt;
  };
  const std::optional<Texture> diffuse = textureOf(kDiffuse);
  const std::optional<Texture> bump = textureOf(kBump);
  const std::optional<Texture> glow = textureOf(kSelfIllumination);
  bool isGood = true;
  Json base = ColourOf(diffuse ? UnderTexture(material.diffuse) : material.diffuse, isGood);
  base.push_back(Within01(material.opacity, isGood));
  Json surface = {{"baseColorFactor", base}};
  if (diffuse) surface["baseColorTexture"] = {{"index", diffuse->number}};
  surface["metallicFactor"] = 0;
  surface["roughnessFactor"] = RoughnessOf(material.shininess, isGood);
  Json result = {{"name", Utf8(material.name)}, {"pbrMetallicRoughness", surface}};
  if (bump) {
    const float amount = FindMap(material, kBump)->amount;
    result["normalTexture"] = {{"index", bump->number}};
    if (std::isfinite(amount)) result["normalTexture"]["scale"] = amount;
  }
  if (glow) result["emissiveTexture"] = {{"index", glow->number}};
  result["emissiveFactor"] =
      ColourOf(glow ? UnderTexture(material.emissive) : material.emissive, isGood);
  const bool seeThrough = diffuse && diffuse->hasAlpha && !AlphaIsGloss(material.name);
  if (seeThrough || material.opacity < 1) result["alphaMode"] = "BLEND";
  if (material.twoSided) result["doubleSided"] = true;
  result["extras"] = ExtrasOf(material, isGood);
  if (!isGood) {
    messages.mended.push_back("material " + material.name +
                              ": values that are not finite replaced by 0");
  }
  return result;
}

}  // namespace orv::convert
