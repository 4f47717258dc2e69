#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "RecordingUserInterface.h"
#include "SceneBuilders.h"
#include "readers/MaxExMaterial.h"
#include "readers/MaxExMesh.h"
#include "scene/MeshBuilders.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

struct Filled {
  MaxExGenericMesh mesh;
  std::vector<TexCoordTransform> transforms;
  RecordingUserInterface ui;
  FillResult result;

  Filled(Mesh host, Mtl* material)
      : result(mesh.Fill(host, nullptr, material, transforms, "crate", Options(), ui)) {}
};

// Vertex 0 has two normals, for groups 1 and 2 + 4; vertices 1 and 2 have one each.
TEST(Fill, SmoothingGroupsChooseTheNormal) {
  const struct {
    const char* what;
    DWORD groups;
    std::string rows;
    size_t normalCount;
  } cases[] = {
      {"the only one with it", 4, "0: 0/1/0 1/2/1 2/3/2", 4},
      {"the first of both", 3, "0: 0 1/2/1 2/3/2", 4},
      {"none has it: only where there are several", 8, "0: 0/4/0 1/2/1 2/3/2", 5},
      {"flat", 0, "0: 0/4/0 1/4/1 2/4/2", 5},
  };
  for (const auto& c : cases) {
    Mesh mesh = MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2, c.groups}});
    const uint8_t counts[] = {2, 1, 1};
    const RNormal normals[] = {{{1, 0, 0}, 1}, {{0, 1, 0}, 6}, {{0, 0, -1}, 1}, {{-1, 0, 0}, 1}};
    ASSERT_TRUE(mesh.specifyNormals(counts, normals));
    const Filled filled(std::move(mesh), nullptr);
    EXPECT_EQ(Faces(filled.mesh), Lines{c.rows}) << c.what;
    std::vector<Vec3> expected = {{1, 0, 0}, {0, 1, 0}, {0, 0, -1}, {-1, 0, 0}};
    if (c.normalCount == 5) expected.push_back({0, 0, 1});
    EXPECT_EQ(filled.mesh.m_normals, expected) << c.what;
    EXPECT_EQ(filled.mesh.m_texCoords[2].v, 0) << c.what;  // down from the host's 1
  }
}

TEST(Fill, FaceNumbersChooseSubMaterialsByRemainder) {
  host::Scene scene;
  Mtl& multi = scene.AddMultiMaterial(
      "all", {&scene.AddMaterial("a"), &scene.AddMaterial("b"), nullptr, &scene.AddMaterial("d")});
  const struct {
    const char* what;
    Mtl* material;
    MtlID first, second;  // of two faces
    Lines names, faces;
  } cases[] = {
      {"beyond the last", &multi, 7, 4, {"a", "d"}, {"1: 0 1 2", "0: 0 1 2"}},
      {"missing: a plain record", &multi, 2, 1, {"b", ""}, {"1: 0 1 2", "0: 0 1 2"}},
      {"standard", &scene.AddMaterial("S"), 5, 0, {"s"}, {"0: 0 1 2", "0: 0 1 2"}},
      {"empty", &scene.AddMultiMaterial("", {}), 5, 0, {""}, {"0: 0 1 2", "0: 0 1 2"}},
  };
  for (const auto& c : cases) {
    const Filled filled(
        MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2, 1, c.first}, {0, 1, 2, 1, c.second}}),
        c.material);
    Lines names;
    for (const GenericMaterial& material : filled.mesh.m_materials) names.push_back(material.name);
    EXPECT_EQ(names, c.names) << c.what;
    EXPECT_EQ(Faces(filled.mesh), c.faces.front().empty() ? Lines{} : c.faces) << c.what;
    EXPECT_EQ(filled.transforms.size(), c.names.size()) << c.what;
  }
}

std::string Dump(const GenericMaterial& m, const TexCoordTransform& t) {
  std::ostringstream out;
  out << m.name << " " << m.twoSided << " " << m.opacity << " " << m.shininess << "\n";
  for (const Vec3& c : {m.ambient, m.diffuse, m.specular, m.emissive}) {
    out << c.x << " " << c.y << " " << c.z << "; ";
  }
  for (const MaterialMap& map : m.maps) {
    out << "\n"
        << map.channel << " " << map.fileName << " " << map.amount << " " << map.tileS << map.tileT
        << " " << map.flipGreen << map.alphaFromFile;
  }
  for (const float number : t.rotation) out << " " << number;
  for (const Vec2& v : {t.offset, t.tiling, t.cropOrigin, t.cropSize}) {
    out << "; " << v.u << " " << v.v;
  }
  out << " " << t.angle << " " << t.cropEnabled;
  return out.str();
}

// Each value is another one than any other's.
TEST(Materials, EveryFieldIsReadAndMapsThatCannotBeUsedReported) {
  host::MemoryMaterial material("OAK m.OneTex");
  host::MemoryBitmap wood("Wood.TGA"), bump("bump.tga"), plain("plain.tga"), nameless("");
  NoiseMap noise;
  material.twoSided = true;
  material.ambient = {0.125f, 0.25f, 0.375f};
  material.diffuse = {0.5f, 0.625f, 0.75f};
  material.specular = {0.8125f, 0.875f, 1};
  material.selfIllumColor = {0.0625f, 0.1875f, 0.9375f};
  material.selfIllum = 0.5f;
  material.shininess = 0.03125f;
  material.opacity = 0.6875f;
  material.maps = {&plain, &wood, nullptr, &noise, nullptr, nullptr, nullptr, &nameless, &bump};
  material.amounts = {0.1f, 0.2f, 0, 0, 0, 0, 0, 0, 0.3f};
  wood.alphaSource = ALPHA_FILE;
  host::MemoryCoordinates& coordinates = wood.coordinates;
  coordinates.tiling = U_WRAP, coordinates.angle = 0.5f;
  coordinates.uOffset = 11, coordinates.vOffset = 12;
  coordinates.uScale = 13, coordinates.vScale = 14;
  wood.crop.on = true, wood.crop.u = 15, wood.crop.v = 16;
  wood.crop.width = 17, wood.crop.height = 18;
  const auto read = [&](bool flipGreen) {
    GenericMaterial record;
    TexCoordTransform transform;
    RecordingUserInterface ui;
    ReadMaterial(record, &material, transform, "crate", flipGreen, ui);
    EXPECT_EQ(ui.log, (Lines{"warning: Ignoring material map - use of non-bitmap in material:"
                             "OAK m.OneTex,Map:shininesNs,Mesh:crate",
                             "error: Ignoring material map - missing bitmap name in material:"
                             "OAK m.OneTex,Map:filter color,Mesh:crate"}));
    return Dump(record, transform);
  };
  EXPECT_EQ(read(true),
            "oak m.onetex 1 0.6875 3.125\n"
            "0.125 0.25 0.375; 0.5 0.625 0.75; 0.8125 0.875 1; 0.25 0.3125 0.375; \n"
            "0 plain.tga 0.1 11 00\n1 Wood.TGA 0.2 10 01\n8 bump.tga 0.3 11 10"
            " 0.877583 -0.479426 0.479426 0.877583; 11 12; 13 14; 15 16; 17 18 0.5 1");
  material.twoSided = false;
  material.hasSelfIllumColor = true;
  wood.coordinates.tiling = V_WRAP;
  wood.hasCrop = bump.hasCoordinates = false;
  bump.mapName = std::string(600, 'x');
  EXPECT_EQ(read(false),
            "oak m.onetex 0 0.6875 3.125\n"
            "0.125 0.25 0.375; 0.5 0.625 0.75; 0.8125 0.875 1; 0.0625 0.1875 0.9375; \n"
            "0 plain.tga 0.1 11 00\n1 Wood.TGA 0.2 01 01\n8 " +
                std::string(514, 'x') +
                " 0.3 11 00 0.877583 -0.479426 0.479426 0.877583; 11 12; 13 14; 0 0; 1 1 0.5 0");
}

}  // namespace
}  // namespace orv
