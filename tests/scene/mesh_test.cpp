#include "scene/GenericMesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numbers>

#include "MeshBuilders.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;
using Ints = std::vector<int32_t>;

GenericMesh MeshUsing(const std::vector<bool>& used) {
  GenericMesh mesh;
  for (size_t i = 0; i < used.size(); ++i) {
    mesh.m_materials.push_back(Material(std::to_string(i), 77));
    mesh.m_materials.back().used = used[i];
    AddFace(mesh, static_cast<int32_t>(i), {0, 1, 2});
  }
  return mesh;
}

Ints FaceMaterials(const GenericMesh& mesh) {
  Ints result;
  for (size_t i = 0; i < mesh.m_faces.size(); ++i) result.push_back(mesh.m_faces[i].material);
  return result;
}

TEST(UnusedMaterials, FacesOfDroppedMaterialsFallToTheFirst) {
  const struct {
    std::vector<bool> used;
    Ints sources, faceMaterials;
  } cases[] = {
      {{true, true, true}, {0, 1, 2}, {0, 1, 2}},
      {{false, false, true}, {2}, {0, 0, 0}},
      {{false, true, false, true}, {1, 3}, {0, 0, 0, 1}},
      {{true, false, true, false}, {0, 2}, {0, 0, 1, 0}},
      {{false, false}, {}, {0, 0}},
  };
  for (const auto& c : cases) {
    GenericMesh mesh = MeshUsing(c.used);
    mesh.RemoveUnusedMaterials();
    EXPECT_EQ(Tags(mesh.m_materials), c.sources);  // the place each one had
    EXPECT_EQ(FaceMaterials(mesh), c.faceMaterials);
  }
}

TEST(MeshTransform, MirrorTestReadsThreeSigns) {
  const struct {
    Vec3 x, y, z;
    bool reversed;
  } cases[] = {
      {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, false},    {{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, true},
      {{1, 0, 0}, {0, -1, 0}, {0, 0, -1}, false},  {{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}, true},
      {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}, false},     // a mirror that the diagonal does not show
      {{0, 1, 0}, {-1, 0, 0}, {0, 0, -1}, true},    // a mirror that it does
      {{-0.0f, 1, 0}, {1, 0, 0}, {0, 0, 1}, false}  // -0 is not negative
  };
  for (const auto& c : cases) {
    GenericMesh mesh = Quad({Material("a")});
    mesh.m_faces.Add(0, std::vector<FaceCorner>{{0, 1, 2}, {1, 2, 3}, {2, 3, 0}});
    mesh.Transform({{c.x, c.y, c.z, Vec3{}}}, 1, nullptr);
    EXPECT_EQ(Faces(mesh)[1], c.reversed ? "0: 2/3/0 1/2/3 0/1/2" : "0: 0/1/2 1/2/3 2/3/0");
  }
}

TEST(MeshTransform, ReversingExchangesOnePairOfOddPolygons) {
  GenericMesh mesh;
  AddFace(mesh, 0, {0, 1, 2, 3});
  AddFace(mesh, 0, {0, 1, 2, 3, 4});
  AddFace(mesh, 0, {});
  mesh.Transform({{Vec3{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}}, 1, nullptr);
  EXPECT_EQ(Faces(mesh), (Lines{"0: 0 1 2 3", "0: 4 1 2 3 0", "0:"}));
}

TexCoordTransform Tiled(float u, float v, Vec2 offset = {}) {
  TexCoordTransform transform;
  transform.tiling = {u, v};
  transform.offset = offset;
  return transform;
}

TEST(TexCoordTransforms, OffsetCountsOnlyWithCropping) {
  TexCoordTransform turned = Tiled(2, 4);
  turned.angle = std::numbers::pi_v<float> / 2;
  std::ranges::copy(std::array<float, 4>{0, -1, 1, 0}, turned.rotation);
  TexCoordTransform cropped = Tiled(2, 4, {0.5f, 0.25f});
  cropped.cropEnabled = true;
  cropped.cropOrigin = {0.25f, 0.5f};
  cropped.cropSize = {0.5f, 0.25f};
  const std::pair<TexCoordTransform, Vec2> cases[] = {
      {Tiled(2, 4, {8, 8}), {1.5f, -0.5f}}, {turned, {1, 2.5f}}, {cropped, {1.5f, 0.625f}}};
  for (const auto& [transform, expected] : cases) {
    GenericMesh mesh;
    mesh.m_texCoords = {{1, 0.25f}};
    AddFace(mesh, 0, {0, 0, 0});
    mesh.ApplyTexCoordTransforms({&transform, 1});
    EXPECT_FLOAT_EQ(mesh.m_texCoords[0].u, expected.u);
    EXPECT_FLOAT_EQ(mesh.m_texCoords[0].v, expected.v);
  }
}

TEST(TexCoordTransforms, SharedCoordinateMovesOnceWithTheFirstMaterialMet) {
  GenericMesh mesh = Quad({Material("a"), Material("b")});
  AddFace(mesh, 1, {0, 1, 1});
  mesh.m_faces.SetMaterial(0, 1);
  AddFace(mesh, 0, {2, 3, 0});
  mesh.m_texCoords.push_back({9, 9});  // no face names it
  const TexCoordTransform transforms[] = {Tiled(100, 100), Tiled(3, 1)};
  mesh.ApplyTexCoordTransforms(transforms);
  EXPECT_EQ(mesh.m_texCoords[1].u, 2);
  EXPECT_EQ(mesh.m_texCoords[3].u, -1);
  EXPECT_EQ(mesh.m_texCoords[4].u, 9);
}

}  // namespace
}  // namespace orv
