#include "inspect/Info.h"

#include <limits>
#include <sstream>

#include "Recorded.h"
#include "inspect/GoodFiles.h"
#include "inspect/MeshFacts.h"
#include "inspect/Text.h"

namespace orv::inspect {
namespace {

// Everything that a file can hold, and what a text or JSON cannot show as it is.
LoadedFile RichSkin() {
  IndexedMeshFile file = GoodSkinFile();
  file.mesh.chunks[0].material = {};
  GenericMaterial& material = file.mesh.chunks[0].material;
  material.name = "skin\x1B[2J m.onetex";
  material.maps = {{.channel = kDiffuse, .fileName = "/a/w\xC3\xA4nd.texture", .amount = 0.75f},
                   {.channel = 12, .fileName = "odd", .amount = 1}};
  material.twoSided = 1;
  material.opacity = 0.5f;
  material.ambient = {0.01f, 0.02f, 0.03f};
  material.diffuse = {0.04f, 0.05f, 0.06f};
  material.specular = {0.07f, 0.08f, 0.09f};
  material.emissive = {0.11f, 0.12f, std::numeric_limits<float>::quiet_NaN()};
  material.shininess = 12.5f;
  material.properties = {{"sound", "metal"}};
  file.mesh.chunks[0].surfaceArea = 0.25f;
  file.mesh.chunks[0].vertices.resize(12);
  file.mesh.chunks[0].triangles = {{0, 1, 2}, {3, 4, 5}, {6, 7, 8}, {9, 10, 11}, {0, 1, 2}};
  file.chunks[0].fileSize = 123;
  file.chunks[0].maxInfluencesPerVertex = 7;
  file.mesh.influences.clear();
  GenericMeshInfluence &first = AddChunkInfluence(file.mesh),
                       &second = AddChunkInfluence(file.mesh);
  AddInfluence(first, "toe", {}, "Foot");
  AddInfluence(first, "east", {}, "west");
  AddInfluence(first, "foot", {{0, 0.5f, {}}, {1, 0, {}}}, "leg\xE9");
  AddInfluence(first, "FOOT", {{2, 0.5f, {}}});
  AddInfluence(second, "west", {}, "east");
  AddInfluence(second, "heel", {}, "foot");
  AddInfluence(second, "foot", {{7, 1, {}}}, "leg");
  file.mesh.attachmentPoints[0].rotation = {Vec3{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  file.boundingBox->minimum = {-1, -2, -3};
  file.vertexCount = 60;
  file.triangleCount = 20;
  file.maxInfluencesPerVertex = 1;
  file.maxBonesPerChunk = 5;
  file.remarks = {{ReadFault::Length, 77, "QIRF/CHNK 0", "4 bytes left\x07"}};
  return {"crane.im", 1164, std::move(file), std::nullopt};
}

LoadedFile RichRigid() {
  IndexedMeshFile file = GoodRigidFile();
  file.bonePoses[1].rotation = {0.1f, 0.2f, 0.3f, 0.4f};
  file.maxInfluencesPerVertex.reset();
  file.maxBonesPerChunk.reset();
  file.boundingBox.reset();
  return {"steel.im", 99, std::move(file), std::nullopt};
}

LoadedFile RichAnimation(uint32_t frameRate) {
  AnimationFile file = GoodAnimationFile();
  file.frameRate = frameRate;
  for (int i = 2; i < 44 && frameRate == 0; ++i) file.bones.push_back({std::to_string(i), i - 1});
  file.events.push_back({2, 9, "unheard\nof"});
  file.remarks = {{ReadFault::Version, 12, "", "odd"}};
  return {"walk.kin", 376, std::move(file), std::nullopt};
}

TEST(Info, EveryPartIsShown) {
  const ReadProblem problem{ReadFault::Count, 77, "QIRF/INFO", "too many"};
  const LoadedFile files[] = {RichSkin(),
                              RichRigid(),
                              RichAnimation(4),
                              RichAnimation(0),
                              {"empty.im", 0, IndexedMeshFile(), std::nullopt},
                              {"empty.kin", 0, AnimationFile(), std::nullopt},
                              {"cut.im", 5, IndexedMeshFile(), problem}};
  std::ostringstream text;
  nlohmann::ordered_json entries = nlohmann::ordered_json::array();
  for (const LoadedFile& file : files) {
    if (!file.problem) PrintInfo(text, file);
    entries.push_back(InfoOf(file));
  }
  ExpectRecorded(text.str(), ORV_RECORDED "/info.txt");
  ExpectRecorded(DocumentText(entries), ORV_RECORDED "/info.json");
}

TEST(MeshFacts, TrianglesMeetAVertexCache) {
  const struct {
    std::vector<Triangle> triangles;
    size_t cacheSize, misses;
    double acmr, atvr;
  } cases[] = {
      {{}, 10, 0, 0, 0},
      {{{0, 1, 2}}, 10, 3, 3, 1},
      {{{0, 1, 2}, {2, 1, 3}}, 10, 4, 2, 1},
      {{{0, 1, 2}, {3, 4, 5}, {0, 1, 2}}, 6, 6, 2, 1},
      {{{0, 1, 2}, {3, 4, 5}, {0, 1, 2}}, 5, 9, 3, 1.5},
      {{{0, 1, 2}, {0, 3, 4}, {0, 4, 3}}, 4, 6, 2, 1.2},  // being used does not keep vertex 0
  };
  for (const auto& c : cases) {
    const VertexCacheCount count = CountCacheMisses(c.triangles, 6, c.cacheSize);
    EXPECT_EQ(count.misses, c.misses);
    EXPECT_DOUBLE_EQ(count.Acmr(), c.acmr);
    EXPECT_DOUBLE_EQ(count.Atvr(), c.atvr);
  }
}

}  // namespace
}  // namespace orv::inspect
