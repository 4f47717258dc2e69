#include "convert/Materials.h"

#include <algorithm>
#include <cmath>

namespace orv::convert {

namespace {

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

// In a material of this type the alpha says how much it reflects, not what is seen through it.
bool AlphaIsGloss(const std::string& name) { return name.find("m.gloss") != std::string::npos; }

}  // namespace

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
