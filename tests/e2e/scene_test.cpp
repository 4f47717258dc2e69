#include <gtest/gtest.h>

#include "e2e/Orv.h"
#include "e2e/SceneTruth.h"

namespace orv {
namespace {

std::vector<std::string> MaterialNames(const IndexedMeshFile& file) {
  std::vector<std::string> names;
  for (const IndexedMesh::Chunk& chunk : file.mesh.chunks) names.push_back(chunk.material.name);
  return names;
}

using Names = std::vector<std::string>;

struct SceneCase {
  std::string path;
  TruthSettings truth = {};
  std::vector<std::string> arguments = {};
};

void PrintTo(const SceneCase& scene, std::ostream* out) { *out << scene.path; }

class ExportedScene : public testing::TestWithParam<SceneCase> {};

TEST_P(ExportedScene, HoldsWhatTheFileHolds) {
  const SceneCase& scene = GetParam();
  const Workplace place;
  std::vector<std::string> arguments = scene.arguments;
  arguments.push_back("--no-animation");
  const Outcome run = place.Export(scene.path, "out", arguments);
  ASSERT_LE(run.status, 1) << run.err;
  EXPECT_EQ(CompareWithTruth(place.Mesh("out.im"), SceneTruth(scene.path, scene.truth)), "");
}

const std::string kEverything = DataFile("everything.gltf");

INSTANTIATE_TEST_SUITE_P(
    Own, ExportedScene,
    testing::Values(SceneCase{kEverything},
                    SceneCase{kEverything, {.axes = Axes::AsItIs}, {"--up", "z"}},
                    SceneCase{kEverything, {.metresPerUnit = 0.0254}, {"--unit", "0.0254"}},
                    SceneCase{kEverything,
                              {.hidden = {"spare", "chassis", "hook.front"}},
                              {"--hide", "spare", "--hide", "chassis", "--hide", "hook.front"}},
                    SceneCase{kEverything,
                              {.selected = {"group", "chassis"}},
                              {"--select", "chassis", "--select", "group"}},
                    SceneCase{DataFile("mistakes.gltf")},
                    SceneCase{DataFile("mistakes.gltf"),
                              {.standInMaterials = true},
                              {"--default-material", "plain.m.notex"}},
                    SceneCase{DataFile("moving.gltf")},
                    SceneCase{DataFile("moving.gltf"), {.metresPerUnit = 0.5}, {"--unit", "0.5"}},
                    SceneCase{DataFile("skinned.gltf")}));

INSTANTIATE_TEST_SUITE_P(
    Real, ExportedScene,
    testing::Values(SceneCase{ModelFile("FBX/spider.fbx"), {.metresPerUnit = 0.01}},
                    SceneCase{ModelFile("FBX/cubes_with_mirroring_and_pivot.fbx")},
                    SceneCase{ModelFile("3DS/cubes_with_alpha.3DS"), {.axes = Axes::TurnedZUp}},
                    SceneCase{ModelFile("ASE/TestUVTransform/UVTransform_ScaleUV2x_Rotate45.ASE"),
                              {.axes = Axes::TurnedZUp}},
                    SceneCase{ModelFile("Collada/duck.dae")},
                    SceneCase{ModelFile("Collada/cube_with_2UVs.DAE"), {.axes = Axes::TurnedZUp}},
                    SceneCase{ModelFile("X/test_cube_text.x")},
                    SceneCase{ModelFile("OBJ/spider.obj")},
                    SceneCase{ModelFile("glTF2/BoxTextured-glTF/BoxTextured.gltf")}));

// More triangles than one chunk may hold.
TEST(ExportedGrid, IsSplitAndComplete) {
  constexpr int kSide = 80;
  std::string grid = "mtllib grid.mtl\nusemtl grid_m.notex\n", faces;
  for (int i = 0; i < kSide * kSide; ++i) {
    const std::string x = std::to_string(i % kSide), y = std::to_string(i / kSide);
    grid += "v " + x + " " + y + " " + std::to_string(i % 7) + "\nvt " + x + " " + y + "\n";
    if (i % kSide == 0 || i < kSide) continue;
    faces += "f";
    for (const int corner : {i - kSide, i - kSide + 1, i + 1, i}) {
      faces += " " + std::to_string(corner) + "/" + std::to_string(corner);
    }
    faces += "\n";
  }
  const Workplace place;
  WriteContent(place.Path("grid.obj"), grid + faces);
  WriteContent(place.Path("grid.mtl"), "newmtl grid_m.notex\n");
  const Outcome run = place.Export("grid.obj", "grid", {"--no-animation"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.Says("warning: Mesh limits exceeded, 1 chunks split into 2 chunks.")) << run.err;
  EXPECT_EQ(CompareWithTruth(place.Mesh("grid.im"), SceneTruth(place.Path("grid.obj"))), "");
}

TEST(ExportedMaterials, AreThoseOfTheScene) {
  const Workplace place;
  EXPECT_EQ(place.Export(kEverything, "out", {"--no-animation"}).status, 0);
  const IndexedMeshFile file = place.Mesh("out.im");
  EXPECT_EQ(MaterialNames(file), (Names{"hull.m.onetex", "glass.m.gloss", "rivets.m.bump.tbump",
                                        "straße.m.onetex", "paint.m.notex"}));
  const auto material = [&](size_t chunk) { return file.mesh.chunks[chunk].material; };
  EXPECT_EQ(material(0).diffuse, (Vec3{0.5f, 0.25f, 0.75f}));
  EXPECT_EQ(material(0).twoSided, 0u);
  EXPECT_NEAR(material(0).shininess, 40, 1e-3);
  EXPECT_EQ(material(1).twoSided, 1u);
  EXPECT_EQ(material(1).maps.at(0).fileName, "./glass-glass.texture");
  EXPECT_EQ(material(2).maps.at(1).channel, kBump);
  EXPECT_EQ(material(2).maps.at(1).fileName, "./rivets_n.texture");
  EXPECT_FALSE(file.mesh.chunks[2].tangents.empty());
  EXPECT_EQ(material(4).emissive.x, 0.25f);
}

TEST(ExportedTextures, AreDescribedBesideTheMesh) {
  const Workplace place;
  EXPECT_EQ(place.Export(kEverything, "out", {"--no-animation", "--flip-green"}).status, 0);
  std::map<std::string, std::string> files = place.Files();
  files.erase("out.im");
  EXPECT_EQ(files, (std::map<std::string, std::string>{
                       {"wall.texture.txt", "Primary=wall.png\nTile=t\n"},
                       {"glass-glass.texture.txt", "Primary=glass.png\nAlpha=glass.png\nTile=st\n"},
                       {"notile_rivets.texture.txt", "Primary=notile_rivets.png\n"},
                       {"rivets_n.texture.txt",
                        "Primary=rivets_n.png\nTile=st\n"
                        "NormalMapHint=normalmap\nModifyMap=flipgreen\n"},
                       {"straße.texture.txt", "Primary=straße.png\n"}}));
}

}  // namespace
}  // namespace orv
