#include "scene/GenericMaterial.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "MeshBuilders.h"

namespace orv {
namespace {

GenericMaterial Wood() {
  GenericMaterial material = Material("wood.m.onetex");
  material.maps = {Map(kDiffuse, "Wood.tga"), Map(kBump, "wood_n.tga", 0.5f)};
  material.properties = {{"friction", "0.5"}, {"sound", "Hollow"}};
  return material;
}

TEST(MaterialEquality, EachFieldAlone) {
  static const ExGenericSkeleton::Node bone("r.arm");
  enum Effect { kNone, kColoursOnly, kAlways };
  const struct {
    const char* field;
    Effect effect;
    std::function<void(GenericMaterial&)> change;
  } cases[] = {
      {"nothing", kNone, [](auto&) {}},
      {"name", kAlways, [](auto& m) { m.name = "wood2.m.onetex"; }},
      {"case of the name", kAlways, [](auto& m) { m.name = "Wood.m.onetex"; }},
      {"name without a type", kAlways, [](auto& m) { m.name = "wood"; }},
      {"two-sided", kAlways, [](auto& m) { m.twoSided = 1; }},
      {"used and source", kNone, [](auto& m) { m.used = false, m.sourceSubMaterial = 9; }},
      {"ambient", kColoursOnly, [](auto& m) { m.ambient.y = 0; }},
      {"diffuse", kColoursOnly, [](auto& m) { m.diffuse.z = 0.5f; }},
      {"specular", kColoursOnly, [](auto& m) { m.specular.x = 0; }},
      {"emissive", kColoursOnly, [](auto& m) { m.emissive.x = 1; }},
      {"emissive -0", kNone, [](auto& m) { m.emissive.x = -0.0f; }},
      {"shininess", kColoursOnly, [](auto& m) { m.shininess = 1; }},
      {"NaN", kColoursOnly, [](auto& m) { m.diffuse.x = std::numeric_limits<float>::quiet_NaN(); }},
      {"map order", kNone, [](auto& m) { std::swap(m.maps[0], m.maps[1]); }},
      {"map missing", kAlways, [](auto& m) { m.maps.pop_back(); }},
      {"map channel", kAlways, [](auto& m) { m.maps[0].channel = kAmbient; }},
      {"map file", kAlways, [](auto& m) { m.maps[0].fileName = "oak.tga"; }},
      {"case of the map file", kNone, [](auto& m) { m.maps[0].fileName = "wOOD.TGA"; }},
      {"map amount", kAlways, [](auto& m) { m.maps[1].amount = 0.25f; }},
      {"map tiling", kNone, [](auto& m) { m.maps[0].tileS = false; }},
      {"opacity", kAlways, [](auto& m) { m.opacity = 0.5f; }},
      {"property order", kNone, [](auto& m) { std::swap(m.properties[0], m.properties[1]); }},
      {"property missing", kAlways, [](auto& m) { m.properties.pop_back(); }},
      {"case of a property", kAlways, [](auto& m) { m.properties[1].second = "hollow"; }},
      {"attachment bone", kAlways, [](auto& m) { m.attachmentBone = &bone; }},
  };
  for (const auto& c : cases) {
    GenericMaterial changed = Wood();
    c.change(changed);
    EXPECT_EQ(MaterialsEqual(changed, Wood(), false), c.effect == kNone) << c.field;
    EXPECT_EQ(MaterialsEqual(changed, Wood(), true), c.effect != kAlways) << c.field;
  }
}

TEST(MaterialEquality, LikeMapsFindTheSamePartner) {
  GenericMaterial twice = Material(""), once = Material("");
  twice.maps = {Map(kDiffuse, "a.tga"), Map(kDiffuse, "A.tga")};
  once.maps = {Map(kDiffuse, "a.tga"), Map(kDiffuse, "b.tga")};
  EXPECT_TRUE(MaterialsEqual(twice, once, false));
  EXPECT_FALSE(MaterialsEqual(once, twice, false));
}

}  // namespace
}  // namespace orv
