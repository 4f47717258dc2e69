#include "scene/GenericMaterial.h"

#include <algorithm>
#include <iterator>

#include "platform/ExString.h"

namespace orv {

namespace {

bool NamesAllowMerging(const GenericMaterial& a, const GenericMaterial& b) {
  const bool typed = HasTypeSuffix(a.name) || HasTypeSuffix(b.name);
  return !typed || a.name == b.name;
}

bool ColoursEqual(const GenericMaterial& a, const GenericMaterial& b) {
  return a.ambient == b.ambient && a.diffuse == b.diffuse && a.specular == b.specular &&
         a.emissive == b.emissive && a.shininess == b.shininess;
}

// One way only: with equal counts, two like maps of a may both find the same one of b.
// Pinned by MaterialEquality.EachFieldAlone.
bool HasEveryMapOf(const GenericMaterial& a, const GenericMaterial& b) {
  return std::all_of(a.maps.begin(), a.maps.end(), [&](const MaterialMap& map) {
    return std::any_of(b.maps.begin(), b.maps.end(),
                       [&](const MaterialMap& other) { return MapsEqual(map, other); });
  });
}

bool HasEveryPropertyOf(const GenericMaterial& a, const GenericMaterial& b) {
  return std::all_of(a.properties.begin(), a.properties.end(), [&](const auto& property) {
    return std::find(b.properties.begin(), b.properties.end(), property) != b.properties.end();
  });
}

}  // namespace

const MaterialType* FindMaterialType(std::string_view word) {
  static constexpr const MaterialType* kTypes[] = {
      &kNoTexture, &kOneTexture, &kReflect, &kGloss, &kBillboard, &kTriBillboard, &kTangentBump};
  const auto found =
      std::find_if(std::begin(kTypes), std::end(kTypes),
                   [&](const MaterialType* type) { return EqualIgnoringCase(type->word, word); });
  return found == std::end(kTypes) ? nullptr : *found;
}

bool HasTypeSuffix(std::string_view name) { return TypeSuffixOf(name).has_value(); }

std::optional<std::string_view> TypeSuffixOf(std::string_view name) {
  const size_t at = name.rfind("m.");
  if (at == std::string_view::npos) return std::nullopt;
  return name.substr(at + 2);
}

bool AsksForTangents(std::string_view name) {
  return name.find(std::string(".") + kTangentBump.word) != std::string_view::npos;
}

bool AlphaIsGloss(std::string_view name) {
  return name.find(std::string("m.") + kGloss.word) != std::string_view::npos;
}

bool MapsEqual(const MaterialMap& a, const MaterialMap& b) {
  return a.channel == b.channel && a.amount == b.amount &&
         EqualIgnoringCase(a.fileName, b.fileName);
}

const MaterialMap* FindMap(const GenericMaterial& material, int32_t channel) {
  const auto found = std::find_if(material.maps.begin(), material.maps.end(),
                                  [&](const MaterialMap& map) { return map.channel == channel; });
  return found == material.maps.end() ? nullptr : &*found;
}

bool MaterialsEqual(const GenericMaterial& a, const GenericMaterial& b, bool ignoreColours) {
  return NamesAllowMerging(a, b) && a.maps.size() == b.maps.size() && a.twoSided == b.twoSided &&
         (ignoreColours || ColoursEqual(a, b)) && HasEveryMapOf(a, b) && a.opacity == b.opacity &&
         a.properties.size() == b.properties.size() && HasEveryPropertyOf(a, b) &&
         a.attachmentBone == b.attachmentBone;
}

}  // namespace orv
