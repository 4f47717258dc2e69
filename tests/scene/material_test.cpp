#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "MeshBuilders.h"
#include "scene/MeshMerger.h"

namespace orv {
namespace {

GenericMaterial Wood() {
  GenericMaterial material = Material("wood.m.onetex");
  material.maps = {Map(kDiffuse, "Wood.tga"), Map(kBump, "wood_n.tga", 0.5f)};
  material.properties = {{"friction", "0.5"}, {"sound", "Hollow"}};
  return material;
}

const ExGenericSkeleton::Node s_bone("r.arm");

enum Effect { kNone, kColoursOnly, kAlways };
const struct {
  const char* field;
  Effect effect;  // on whether it still equals the unchanged one
  void (*apply)(GenericMaterial&);
} kChanges[] = {
    {"nothing", kNone, [](auto&) {}},
    {"name", kAlways, [](auto& m) { m.name = "wood2.m.onetex"; }},
    {"case of the name", kAlways, [](auto& m) { m.name = "Wood.m.onetex"; }},
    {"name without a type", kAlways, [](auto& m) { m.name = "wood"; }},
    {"two-sided", kAlways, [](auto& m) { m.twoSided = 1; }},
    {"used", kNone, [](auto& m) { m.used = false; }},
    {"ambient", kColoursOnly, [](auto& m) { m.ambient.y = 0; }},
    {"diffuse", kColoursOnly, [](auto& m) { m.diffuse.z = 0.5f; }},
    {"specular", kColoursOnly, [](auto& m) { m.specular.x = 0; }},
    {"emissive", kColoursOnly, [](auto& m) { m.emissive.x = 1; }},
    {"emissive -0", kNone, [](auto& m) { m.emissive.x = -0.0f; }},
    {"shininess", kColoursOnly, [](auto& m) { m.shininess = 1; }},
    {"NaN", kColoursOnly, [](auto& m) { m.diffuse.x = std::numeric_limits<float>::quiet_NaN(); }},
    {"map order", kNone, [](auto& m) { std::swap(m.maps.front(), m.maps.back()); }},
    {"map missing", kAlways, [](auto& m) { m.maps.resize(1); }},
    {"map channel", kAlways, [](auto& m) { m.maps.front().channel = kAmbient; }},
    {"map file", kAlways, [](auto& m) { m.maps.front().fileName = "oak.tga"; }},
    {"case of the map file", kNone, [](auto& m) { m.maps.front().fileName = "wOOD.TGA"; }},
    {"map amount", kAlways, [](auto& m) { m.maps.back().amount = 0.25f; }},
    {"map tiling", kNone, [](auto& m) { m.maps.front().tileS = false; }},
    {"like maps: both find the same one", kNone, [](auto& m) { m.maps.back() = m.maps.front(); }},
    {"opacity", kAlways, [](auto& m) { m.opacity = 0.5f; }},
    {"property order", kNone, [](auto& m) { std::swap(m.properties[0], m.properties.back()); }},
    {"property missing", kAlways, [](auto& m) { m.properties.resize(1); }},
    {"case of a property", kAlways, [](auto& m) { m.properties.back().second = "hollow"; }},
    {"attachment bone", kAlways, [](auto& m) { m.attachmentBone = &s_bone; }},
};

TEST(MaterialEquality, EachFieldAlone) {
  for (const auto& c : kChanges) {
    GenericMaterial changed = Wood();
    c.apply(changed);
    EXPECT_EQ(MaterialsEqual(changed, Wood(), false), c.effect == kNone) << c.field;
    EXPECT_EQ(MaterialsEqual(changed, Wood(), true), c.effect != kAlways) << c.field;
  }
  GenericMaterial twice = Wood();
  twice.maps.back() = twice.maps.front();
  EXPECT_FALSE(MaterialsEqual(Wood(), twice, false));  // not the other way round
}

// As the rule says it, without regard for time.
void MergeLiterally(GenericMesh& mesh, bool ignoreColours) {
  const std::vector<GenericMaterial> materials = std::move(mesh.m_materials);
  mesh.m_materials.clear();
  std::vector<int32_t> remap;
  for (size_t i = 0; i < materials.size(); ++i) {
    size_t j = 0;
    while (j < i && !MaterialsEqual(materials[i], materials[j], ignoreColours)) ++j;
    remap.push_back(j < i ? remap[j] : int32_t(mesh.m_materials.size()));
    if (j == i) mesh.m_materials.push_back(materials[i]);
  }
  mesh.m_faces.RenumberMaterials(remap);
}

// The merger finds equal materials by fingerprint and remembers the survivors.
TEST(Merging, GivesWhatTheLiteralRuleGives) {
  size_t folded = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    std::mt19937 random(seed);
    int tag = 0;
    const auto someMesh = [&] {
      GenericMesh mesh;
      for (auto count = random() % 6; count > 0; --count) {
        GenericMaterial& material = mesh.m_materials.emplace_back(Wood());
        material.sourceSubMaterial = tag++;  // no merge looks at it
        for (auto changes = random() % 4; changes > 0; --changes) {
          kChanges[random() % std::size(kChanges)].apply(material);
        }
        AddFace(mesh, int32_t(random() % mesh.m_materials.size()), {0, 1, 2});
      }
      return mesh;
    };
    const bool ignoreColours = random() % 2;
    GenericMesh literal = someMesh();
    MeshMerger merger(std::make_unique<GenericMesh>(literal), ignoreColours);
    for (auto others = random() % 12; others > 0; --others) {
      const GenericMesh other = someMesh();
      merger.Append(other);
      literal.Append(other);
      MergeLiterally(literal, ignoreColours);
    }
    MergeLiterally(literal, ignoreColours);
    const auto mesh = merger.Finish();
    ASSERT_EQ(Tags(mesh->m_materials), Tags(literal.m_materials)) << "seed " << seed;
    ASSERT_EQ(Faces(*mesh), Faces(literal)) << "seed " << seed;
    folded += tag - literal.m_materials.size();
  }
  EXPECT_GT(folded, 1000u);  // the materials are alike enough to prove something
}

}  // namespace
}  // namespace orv
