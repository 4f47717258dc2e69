#include <gtest/gtest.h>

#include <array>

#include "MeshBuilders.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

TEST(UnusedMaterials, FacesOfDroppedMaterialsFallToTheFirst) {
  const std::tuple<std::vector<bool>, std::vector<int32_t>, Lines> cases[] = {
      {{true, true, true}, {0, 1, 2}, {"0:", "1:", "2:"}},
      {{false, true, false, true}, {1, 3}, {"0:", "0:", "0:", "1:"}},
      {{false, false}, {}, {"0:", "0:"}},
  };
  for (const auto& [used, sources, faces] : cases) {
    GenericMesh mesh;
    for (size_t i = 0; i < used.size(); ++i) {
      mesh.m_materials.push_back(Material("", 77));
      mesh.m_materials[i].used = used[i];
      AddFace(mesh, static_cast<int32_t>(i), {});
    }
    mesh.RemoveUnusedMaterials();
    EXPECT_EQ(Tags(mesh.m_materials), sources);  // the place each one had
    EXPECT_EQ(Faces(mesh), faces);
  }
}

TEST(Meshes, FacesKeepTheirRowsWhenAppendedAndTriangulated) {
  GenericMesh mesh = Quad({Material("a"), Material("b")});
  mesh.m_normals.resize(3);
  mesh.m_texCoords.resize(5);
  GenericMesh other = Quad({Material("c")});
  AddFace(other, 0, {0, 1});
  AddFace(other, 0, {4, 3, 2, 1, 0});
  mesh.Append(other);
  const auto triangles = mesh.Triangulate();
  EXPECT_EQ(Faces(*triangles),
            (Lines{"0: 0 1 2", "0: 0 2 3", "2: 4/3/5 5/4/6 6/5/7", "2: 4/3/5 6/5/7 7/6/8",
                   "2: 4/3/5 5/4/6", "2: 8/7/9 7/6/8 6/5/7", "2: 8/7/9 6/5/7 5/4/6",
                   "2: 8/7/9 5/4/6 4/3/5"}));
  EXPECT_EQ(triangles->m_positions[5], (Vec3{1, 0, 0}));
  EXPECT_EQ(triangles->Triangulate(), nullptr);
}

const Lines kReversed = {"0: 2/3/0 1/2/3 0/1/2", "0: 0 1 2 3", "0: 4 1 2 3 0", "0:"};

// Reversing exchanges one pair of odd polygons only.
TEST(MeshTransform, MirrorTestReadsThreeSigns) {
  const std::tuple<Vec3, Vec3, Vec3, bool> cases[] = {
      {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, false},    {{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, true},
      {{1, 0, 0}, {0, -1, 0}, {0, 0, -1}, false},  {{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}, true},
      {{0, 1, 0}, {1, 0, 0}, {0, 0, 1}, false},     // a mirror that the diagonal does not show
      {{0, 1, 0}, {-1, 0, 0}, {0, 0, -1}, true},    // a mirror that it does
      {{-0.0f, 1, 0}, {1, 0, 0}, {0, 0, 1}, false}  // -0 is not negative
  };
  for (const auto& [x, y, z, reversed] : cases) {
    GenericMesh mesh;
    mesh.m_faces.Add(0, std::array<FaceCorner, 3>{{{0, 1, 2}, {1, 2, 3}, {2, 3, 0}}});
    for (const auto& rows : {std::vector<uint32_t>{0, 1, 2, 3}, {0, 1, 2, 3, 4}, {}})
      AddFace(mesh, 0, rows);
    const Lines asTheyWere = Faces(mesh);
    mesh.Transform({{x, y, z, Vec3{}}}, 1, nullptr);
    EXPECT_EQ(Faces(mesh), reversed ? kReversed : asTheyWere);
  }
}

TEST(TexCoordTransforms, OffsetCountsOnlyWithCropping) {
  const TexCoordTransform tiled{{0, -1, 1, 0.5f}, 0,     false, {0.25f, 0.5f}, {0.5f, 0.25f},
                                {0.5f, 0.25f},    {2, 4}};
  TexCoordTransform cropped = tiled, turned = tiled;
  cropped.cropEnabled = true;
  turned.angle = 1;
  const std::pair<TexCoordTransform, Vec2> cases[] = {
      {tiled, {1.5f, -0.5f}}, {turned, {1, 2}}, {cropped, {1.5f, 0.625f}}};
  for (const auto& [transform, expected] : cases) {
    GenericMesh mesh;
    mesh.m_texCoords = {{1, 0.25f}, {9, 9}};
    // Once, by the first material that is met and has a transform; the other stays.
    for (const int32_t material : {1, -1, 0, 0}) AddFace(mesh, material, {0, 0, 7});
    mesh.ApplyTexCoordTransforms({&transform, 1});
    EXPECT_FLOAT_EQ(mesh.m_texCoords[0].u, expected.u);
    EXPECT_FLOAT_EQ(mesh.m_texCoords[0].v, expected.v);
    EXPECT_EQ(mesh.m_texCoords[1].v, 9);
  }
}

TEST(Influences, TheFirstBoneOfANameIsFound) {
  GenericMeshInfluence merged, other;
  other.AddBone(std::make_unique<GenericBoneInfluence>("b.arm", "", Vec3{1, 2, 3}, Matrix33{}));
  other.m_bones[0]->m_weights = {{2, 0.25f, {4, 5, 6}}};
  merged.AddBone(std::make_unique<GenericBoneInfluence>("B.Arm", "", Vec3{}, Matrix33{}));
  merged.Merge(other, 10);
  EXPECT_EQ(merged.FindBone("b.aRM"), merged.m_bones[0].get());
  EXPECT_EQ(merged.FindBone("b.ar"), nullptr);
  EXPECT_EQ(merged.m_bones[1]->m_weights[0].vertex, 12u);
  EXPECT_EQ(merged.m_bones[1]->m_weights[0].offset, (Vec3{4, 5, 6}));
}

TEST(Skeletons, ALongChainGoesWithoutALongStack) {
  auto top = std::make_unique<ExGenericSkeleton::Node>("b.tip");
  for (int i = 0; i < 300000; ++i) {
    auto parent = std::make_unique<ExGenericSkeleton::Node>("b.");
    parent->m_children.push_back(std::move(top));
    top = std::move(parent);
  }
}

}  // namespace
}  // namespace orv
