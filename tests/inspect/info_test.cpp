#include "inspect/Info.h"

#include <cmath>
#include <sstream>

#include "TemporaryFolder.h"
#include "inspect/GoodFiles.h"
#include "inspect/Text.h"

namespace orv::inspect {
namespace {

LoadedFile Loaded(const std::string& name, const std::string& bytes) {
  TemporaryFolder folder;
  WriteContent(folder.File(name), bytes);
  LoadedFile file = LoadFile(folder.File(name));
  file.name = name;
  return file;
}

LoadedFile LoadedSkin() {
  ExIndexedMesh mesh = GoodSkin();
  return Loaded("crane.im", Written(mesh).bytes);
}

std::string TextOf(const LoadedFile& file) {
  std::ostringstream out;
  PrintInfo(out, file);
  return "\n" + out.str();
}

TEST(Info, SkinnedModelIsShownWithAllItsParts) {
  EXPECT_EQ(TextOf(LoadedSkin()), R"(
crane.im: mesh, 1164 bytes
  size          1.000 x 1.000 x 0.000 m
  from, to      0.000 0.000 0.000, 1.000 1.000 0.000
  vertices      6
  triangles     2
  area          1.000 m2
  vertex cache  ACMR 3.000, ATVR 1.000 with 10 entries; ACMR 3.000, ATVR 1.000 with 16 entries
  influences    at most 2 bones a vertex, 2 a chunk

  chunk  material             vertices  triangles  area m2  tangents  bones  ACMR 10  ATVR 10  ACMR 16  ATVR 16  bytes  bound to
      0  skin m.onetex               3          1    0.500        no      2    3.000    1.000    3.000    1.000    306
      1  hide m.onetex.tbump         3          1    0.500       yes      1    3.000    1.000    3.000    1.000    370

  chunk  texture of  name             amount
      0  diffuse     /a/skin.texture       1
      1  diffuse     /a/skin.texture       1
      1  bump        /a/b.texture        0.5

  bone      below  vertices  in chunks
  b.hip                   3  0
    b.knee  b.hip         4  0 1

  attachment point    x m    y m    z m
  hatch             0.000  0.000  1.000
)");
}

TEST(Info, AnimationIsShownWithAllItsParts) {
  EXPECT_EQ(TextOf(Loaded("walk.kin", GoodAnimationBytes())), R"(
walk.kin: animation, 376 bytes
  name          walk
  frames        3 at 4 a second
  length        0.500 seconds
  scale         0.0254 metres per unit

  frame  seconds  event         name
      1    0.250  Sound_Event   step
      2    0.500  Effect_Event  dust

  2 bones
    b.hip
      b.knee
)");
}

TEST(Info, ColumnsLineUpBesideNamesInUtf8) {
  TextTable table({{"bone", TextTable::Align::Left}, {"vertices"}});
  table.AddRow({"b.Flügel", "7"});
  table.AddRow({"b.tail", "12"});
  std::ostringstream out;
  table.Print(out, 0);
  EXPECT_EQ(out.str(), "bone      vertices\nb.Flügel         7\nb.tail          12\n");
}

using Json = nlohmann::json;

Json DocumentOf(const LoadedFile& file) {
  return Json::parse(DocumentText(nlohmann::ordered_json::array({InfoOf(file)})));
}

// That json has every field of expected, with those values.
void ExpectFields(const Json& json, const char* expected) {
  const Json fields = Json::parse(expected);
  for (const auto& [name, value] : fields.items()) EXPECT_EQ(json[name], value) << name;
}

TEST(InfoJson, ModelHasEveryField) {
  const Json document = DocumentOf(LoadedSkin());
  EXPECT_EQ(document["schema"], 1);
  Json file = document["files"][0];
  ExpectFields(file, R"({"file": "crane.im", "kind": "mesh", "bytes": 1164, "vertices": 6,
      "triangles": 2, "area": 1.0, "maxBonesOfVertex": 2, "maxBonesOfChunk": 2,
      "boundingBox": {"minimum": [0.0, 0.0, 0.0], "maximum": [1.0, 1.0, 0.0],
                      "size": [1.0, 1.0, 0.0]},
      "vertexCache": [{"entries": 10, "acmr": 3.0, "atvr": 1.0},
                      {"entries": 16, "acmr": 3.0, "atvr": 1.0}],
      "skeleton": [], "remarks": [],
      "skin": [{"name": "b.hip", "parent": null, "depth": 0, "parentName": "", "vertices": 3,
                "chunks": [0]},
               {"name": "b.knee", "parent": 0, "depth": 1, "parentName": "b.hip", "vertices": 4,
                "chunks": [0, 1]}],
      "attachmentPoints": [{"name": "hatch", "position": [0.0, 0.0, 1.0],
          "rotation": [[1.0, 0.0, 0.0], [0.0, 1.0, 0.0], [0.0, 0.0, 1.0]]}]})");
  ASSERT_EQ(file["chunks"].size(), 2u);
  ExpectFields(file["chunks"][1], R"({"number": 1, "bytes": 370, "vertices": 3, "triangles": 1,
      "area": 0.5, "tangents": true, "boundToBone": null, "bones": 1, "maxBonesOfVertex": 1})");
  ExpectFields(file["chunks"][1]["material"], R"({"name": "hide m.onetex.tbump", "twoSided": false,
      "opacity": 1.0, "diffuse": [1.0, 1.0, 1.0], "emissive": [0.0, 0.0, 0.0], "shininess": 0.25,
      "properties": [],
      "textures": [{"channel": 1, "use": "diffuse", "name": "/a/skin.texture", "amount": 1.0},
                   {"channel": 8, "use": "bump", "name": "/a/b.texture", "amount": 0.5}]})");
}

TEST(InfoJson, WhatJsonCannotHoldIsReplaced) {
  LoadedFile file;
  IndexedMeshFile& mesh = file.content.emplace<IndexedMeshFile>(GoodRigidFile());
  mesh.bones[0].name = "b.\xE9";
  mesh.bonePoses[0].position.x = NAN;
  const Json json = DocumentOf(file)["files"][0];
  EXPECT_EQ(json["skeleton"][0]["name"], "b.\uFFFD");
  EXPECT_EQ(json["skeleton"][0]["translation"], Json::parse("[null, 0.0, 0.0]"));
  EXPECT_EQ(json["skeleton"][1]["translation"], Json::parse("[0.0, 0.0, 1.0]"));
  EXPECT_EQ(json["chunks"][0]["boundToBone"], "b.arm");

  file.content = IndexedMeshFile();
  EXPECT_EQ(DocumentOf(file)["files"][0]["boundingBox"], nullptr);
  file.content = AnimationFile();
  EXPECT_EQ(DocumentOf(file)["files"][0]["seconds"], nullptr);
}

TEST(BoneOutline, SkinBonesStandBelowTheirParents) {
  std::vector<std::unique_ptr<GenericMeshInfluence>> chunks;
  chunks.push_back(std::make_unique<ExGenericMeshInfluence>());
  chunks.push_back(std::make_unique<ExGenericMeshInfluence>());
  AddInfluence(*chunks[0], "toe", {}, "Foot");
  AddInfluence(*chunks[0], "east", {}, "west");
  AddInfluence(*chunks[0], "foot", {{0, 0.5f, {}}, {1, 0, {}}}, "leg");
  AddInfluence(*chunks[0], "FOOT", {{2, 0.5f, {}}});
  AddInfluence(*chunks[1], "west", {}, "east");
  AddInfluence(*chunks[1], "heel", {}, "foot");
  AddInfluence(*chunks[1], "foot", {{7, 1, {}}}, "leg");
  std::string outline;
  for (const SkinBone& bone : OutlineOf(chunks)) {
    outline += std::string(bone.depth, '>') + bone.name + " " + std::to_string(bone.parent) + " " +
               std::to_string(bone.vertexCount) + "/" + std::to_string(bone.chunks.size()) + "\n";
  }
  EXPECT_EQ(outline, "foot -1 3/2\n>toe 0 0/1\n>heel 0 0/1\neast -1 0/1\n>west 3 0/1\n");
}

}  // namespace
}  // namespace orv::inspect
