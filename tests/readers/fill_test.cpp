#include <gtest/gtest.h>

#include "RecordingUserInterface.h"
#include "SceneBuilders.h"
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

  Filled(Mesh host, Mtl* material, const GenericSkeleton::Node* bone = nullptr)
      : result(mesh.Fill(host, bone, material, transforms, "crate", Options(), ui)) {}
};

Lines MaterialNames(const GenericMesh& mesh) {
  Lines names;
  for (const GenericMaterial& material : mesh.m_materials) names.push_back(material.name);
  return names;
}

TEST(Fill, MeshesThatCannotBeUsedSayWhy) {
  host::Scene scene;
  BlendMaterial blend("Blend");
  Mtl& standard = scene.AddMaterial("Oak");
  Mtl& multi = scene.AddMultiMaterial("Both", {&standard, &blend});
  const Mesh noFaces = MeshOf({{0, 0, 0}}, {});
  const Mesh secondSub = MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2, 1, 1}});
  const struct {
    const char* what;
    Mesh mesh;
    Mtl* material;
    FillResult result;
    Lines log;
  } cases[] = {
      {"good", TriangleMesh(), &standard, FillResult::Filled, {}},
      {"no texture",
       WithoutTextureVertices(TriangleMesh()),
       &standard,
       FillResult::NoTextureMapping,
       {}},
      {"neither", WithoutTextureVertices(noFaces), &standard, FillResult::NoFaces, {}},
      {"other class",
       TriangleMesh(),
       &blend,
       FillResult::NonStandardMaterial,
       {"error: Ignoring mesh - material other than standard or sub-material used for mesh:crate"
        ",Material:Blend"}},
      {"other class below",
       secondSub,
       &multi,
       FillResult::NonStandardSubMaterial,
       {"error: Ignoring mesh - material other than standard used in sub-material for mesh:crate"
        ",Material:Both,SubMaterial:Blend"}},
      {"other class below, unused", TriangleMesh(), &multi, FillResult::Filled, {}},
  };
  for (const auto& c : cases) {
    const Filled filled(c.mesh, c.material);
    EXPECT_EQ(filled.result, c.result) << c.what;
    EXPECT_EQ(filled.ui.log, c.log) << c.what;
  }
}

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
    ASSERT_EQ(filled.mesh.m_normals.size(), c.normalCount) << c.what;
    EXPECT_EQ(filled.mesh.m_normals[1], (Vec3{0, 1, 0})) << c.what;
    EXPECT_EQ(filled.mesh.m_normals[2], (Vec3{0, 0, -1})) << c.what;
    EXPECT_EQ(filled.mesh.m_normals.back(), c.normalCount == 5 ? (Vec3{0, 0, 1}) : (Vec3{-1, 0, 0}))
        << c.what;
  }
}

TEST(Fill, FaceNumbersChooseSubMaterialsByRemainder) {
  host::Scene scene;
  Mtl& multi = scene.AddMultiMaterial(
      "all", {&scene.AddMaterial("a"), &scene.AddMaterial("b"), nullptr, &scene.AddMaterial("d")});
  const std::vector<Point3> points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  const struct {
    const char* what;
    Mtl* material;
    std::vector<HostFace> faces;
    Lines names;
    std::vector<int32_t> perFace;
  } cases[] = {
      {"beyond the last", &multi, {{0, 1, 2, 1, 7}, {0, 1, 2, 1, 4}}, {"a", "d"}, {1, 0}},
      {"missing: a plain record", &multi, {{0, 1, 2, 1, 2}, {0, 1, 2, 1, 1}}, {"b", ""}, {1, 0}},
      {"standard", &scene.AddMaterial("S"), {{0, 1, 2, 1, 5}}, {"s"}, {0}},
      {"empty", &scene.AddMultiMaterial("empty", {}), {{0, 1, 2, 1, 5}}, {""}, {0}},
  };
  for (const auto& c : cases) {
    const Filled filled(MeshOf(points, c.faces), c.material);
    EXPECT_EQ(filled.result, FillResult::Filled) << c.what;
    EXPECT_EQ(MaterialNames(filled.mesh), c.names) << c.what;
    EXPECT_EQ(filled.transforms.size(), c.names.size()) << c.what;
    for (size_t f = 0; f < c.perFace.size(); ++f) {
      EXPECT_EQ(filled.mesh.m_faces[f].material, c.perFace[f]) << c.what;
    }
  }
}

}  // namespace
}  // namespace orv
