#include <gtest/gtest.h>

#include "e2e/Orv.h"

namespace orv {
namespace {

using Names = std::set<std::string>;

const std::string kMoving = DataFile("moving.gltf");

TEST(ExportOptions, ChooseTheFiles) {
  for (const auto& [option, file] :
       {std::pair("--no-animation", "out.im"), std::pair("--no-geometry", "out.kin")}) {
    const Workplace place;
    const Outcome run = place.Export(kMoving, "out", {option});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(place.Names(), Names{file});
    EXPECT_EQ(run.out.find(std::string("./") + file), 0u) << run.out;
  }
}

TEST(ExportOptions, DefaultColorsStandForTheScenes) {
  const Workplace place;
  EXPECT_EQ(place.Export(DataFile("everything.gltf"), "out", {"--no-animation", "--default-colors"})
                .status,
            0);
  const std::array<float, 12> white = {1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0};
  for (const independent::MeshChunk& chunk : place.Mesh("out.im").chunks) {
    EXPECT_EQ(chunk.colours, white) << chunk.materialName;
    EXPECT_EQ(chunk.shininess, 32.0f) << chunk.materialName;
  }
}

TEST(ExportOptions, FlipGreenIsForNormalMaps) {
  const Workplace place;
  const std::string scene = DataFile("everything.gltf");
  EXPECT_EQ(place.Export(scene, "out", {"--no-animation"}).status, 0);
  EXPECT_EQ(place.Content("rivets_n.texture.txt"),
            "Primary=rivets_n.png\nTile=st\nNormalMapHint=normalmap\n");
  EXPECT_EQ(
      place.Export(scene, "out", {"--no-animation", "--flip-green", "--force-textures"}).status, 0);
  EXPECT_EQ(place.Content("rivets_n.texture.txt"),
            "Primary=rivets_n.png\nTile=st\nNormalMapHint=normalmap\nModifyMap=flipgreen\n");
  EXPECT_EQ(place.Content("wall.texture.txt"), "Primary=wall.png\nTile=t\n");
}

TEST(ExportOptions, DefaultMaterialIsForPartsWithoutOne) {
  const Workplace place;
  const Outcome run = place.Export(DataFile("mistakes.gltf"), "out",
                                   {"--no-animation", "--default-material", "Plain.m.notex"});
  EXPECT_EQ(run.status, 1);  // "Rail" is still no good name
  EXPECT_EQ(run.Count("error: "), 1) << run.err;
  Names names;
  for (const independent::MeshChunk& chunk : place.Mesh("out.im").chunks) {
    names.insert(chunk.materialName);
  }
  EXPECT_EQ(names, (Names{"plain.m.notex", "railm.notex", "ok.m.notex"}));
}

}  // namespace
}  // namespace orv
