#include <gtest/gtest.h>

#include "e2e/Orv.h"
#include "e2e/SceneTruth.h"
#include "scenes/GlbScenes.h"

namespace orv {
namespace {

std::vector<std::string> MaterialNames(const independent::MeshFile& file) {
  std::vector<std::string> names;
  for (const independent::MeshChunk& chunk : file.chunks) names.push_back(chunk.materialName);
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
  const SceneTruth truth = EvaluateScene(scene.path, scene.truth);
  EXPECT_GT(truth.triangles.size(), 0u);
  EXPECT_EQ(CompareWithTruth(place.Mesh("out.im"), truth), "");
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
  const Workplace place;
  WriteContent(place.Path("grid.glb"), GridGlb(12000));
  const Outcome run = place.Export("grid.glb", "grid", {"--no-animation"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(run.Says("warning: Mesh limits exceeded, 1 chunks split into 2 chunks.")) << run.err;
  const independent::MeshFile file = place.Mesh("grid.im");
  EXPECT_EQ(file.chunks.size(), 2u);
  EXPECT_EQ(CompareWithTruth(file, EvaluateScene(place.Path("grid.glb"), {})), "");
}

TEST(ExportedMaterials, AreThoseOfTheScene) {
  const Workplace place;
  const Outcome run = place.Export(kEverything, "out", {"--no-animation"});
  EXPECT_EQ(run.status, 0) << run.err;
  const independent::MeshFile file = place.Mesh("out.im");
  EXPECT_EQ(MaterialNames(file), (Names{"hull.m.onetex", "glass.m.gloss", "rivets.m.bump.tbump",
                                        "straße.m.onetex", "paint.m.notex"}));

  const independent::MeshChunk& hull = file.chunks[0];
  ASSERT_EQ(hull.maps.size(), 1u);
  EXPECT_EQ(hull.maps[0].channel, 1u);
  EXPECT_EQ(hull.maps[0].name, "./wall.texture");
  EXPECT_EQ(hull.colours[3], 0.5f);  // diffuse
  EXPECT_EQ(hull.colours[5], 0.75f);
  EXPECT_EQ(hull.twoSided, 0u);
  EXPECT_TRUE(hull.tangents.empty());

  EXPECT_EQ(file.chunks[1].twoSided, 1u);
  EXPECT_EQ(file.chunks[1].maps[0].name, "./glass-glass.texture");

  const independent::MeshChunk& rivets = file.chunks[2];
  ASSERT_EQ(rivets.maps.size(), 2u);
  EXPECT_EQ(rivets.maps[1].channel, 8u);
  EXPECT_EQ(rivets.maps[1].name, "./rivets_n.texture");
  EXPECT_EQ(rivets.tangents.size(), rivets.vertices.size());

  EXPECT_TRUE(file.chunks[4].maps.empty());
  EXPECT_EQ(file.chunks[4].colours[9], 0.25f);  // emissive
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

TEST(ExportedMistakes, AreNamedInTheLog) {
  const Workplace place;
  const Outcome run = place.Export(DataFile("mistakes.gltf"), "out", {"--no-animation"});
  EXPECT_EQ(run.status, 1);
  for (const char* line :
       {"error: Ignoring mesh - Material missing for mesh:bare",
        "warning: Ignoring mesh - no texture mapping for mesh:unmapped",
        "error: Material 'rail' name is invalid.  Materials should be named and have a 'm.' "
        "material type suffix.",
        "Export completed with 3 Errors and 1 Warnings."}) {
    EXPECT_TRUE(run.Says(line)) << line << "\n" << run.err;
  }
  EXPECT_EQ(MaterialNames(place.Mesh("out.im")), (Names{"railm.notex", "m.notex", "ok.m.notex"}));
}

}  // namespace
}  // namespace orv
