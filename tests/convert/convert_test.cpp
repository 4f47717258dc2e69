#include "convert/Convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "TemporaryFolder.h"
#include "formats/SampleMeshes.h"

namespace orv::convert {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kHalf = 0.70710678f;

using Numbers = std::vector<double>;

void ExpectNear(const Numbers& numbers, const Numbers& expected) {
  ASSERT_EQ(numbers.size(), expected.size());
  for (size_t i = 0; i < numbers.size(); ++i) EXPECT_NEAR(numbers[i], expected[i], 1e-5) << i;
}

struct Converted {
  GlbDocument document;
  Messages messages;

  const Json& Node(const std::string& name) const {
    for (const Json& node : document.Content()["nodes"])
      if (node["name"] == name) return node;
    throw std::runtime_error("no node " + name);
  }
  const Json& Attributes() const {
    return document.Content()["meshes"][0]["primitives"][0]["attributes"];
  }
  Numbers Floats(const Json& accessor) const {
    const Json& entry = document.Content()["accessors"][accessor.get<size_t>()];
    const Json& view = document.Content()["bufferViews"][entry["bufferView"].get<size_t>()];
    std::vector<float> values(view["byteLength"].get<size_t>() / 4);
    std::memcpy(values.data(), document.Binary().data() + view["byteOffset"].get<size_t>(),
                values.size() * 4);
    return {values.begin(), values.end()};
  }
};

Converted ConvertOf(const IndexedMeshFile& file, const AnimationFile* animation = nullptr,
                    const std::string& folder = "/nowhere") {
  Converted result;
  result.document = Convert({.mesh = file,
                             .animation = animation,
                             .name = "model",
                             .textureFolder = folder,
                             .metresPerUnit = 0.01},
                            result.messages);
  return result;
}

IndexedMeshFile FileOf(std::vector<IndexedMesh::Chunk> chunks) {
  IndexedMeshFile file;
  file.mesh.chunks = std::move(chunks);
  file.chunks.resize(file.mesh.chunks.size());
  return file;
}

// A quarter turn about z for the hip, whose parent is not in the file; the knee is unturned.
IndexedMeshFile SkinFile() {
  IndexedMeshFile file = FileOf({TriangleChunk()});
  GenericMeshInfluence& influence = AddChunkInfluence(file.mesh);
  const Matrix33 turn{Vec3{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}};
  influence.AddBone(std::make_unique<GenericBoneInfluence>("b.hip", "rig", Vec3{}, Matrix33{turn}));
  influence.AddBone(std::make_unique<GenericBoneInfluence>(
      "b.knee", "B.Hip", Vec3{1, 0, 0}, Matrix33{Vec3{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
  // In the world the hip is at (0, 0, 3), which only the knee's vertices can tell.
  influence.m_bones[0]->m_weights = {{1, 0.25f, {0, -1, -3}}, {2, 0.5f, {1, 0, -3}}};
  influence.m_bones[1]->m_weights = {
      {0, 1, {-1, 0, -3}}, {1, 0.75f, {-1, -1, -3}}, {2, 0.5f, {0, 0, -3}}};
  return file;
}

// At rest a skin stands as it is stored, whatever the animation's first frame says; y is up.
TEST(Convert, SkinAtRestIsTheStoredPose) {
  AnimationFile animation;
  animation.frameCount = 1;
  animation.frameRate = 4;
  animation.masterScale = 0.01f;
  animation.bones = {{"b.hip", -1}, {"b.knee", 0}};
  animation.poses.resize(2);
  animation.events = {{1, 0, "step"}};
  const IndexedMeshFile file = SkinFile();
  const Converted converted = ConvertOf(file, &animation);
  ExpectNear(converted.Node("b.hip")["translation"], {0, 3, 0});
  ExpectNear(converted.Node("b.hip")["rotation"], {0, kHalf, 0, kHalf});
  ExpectNear(converted.Node("b.knee")["translation"], {1, 0, 0});
  EXPECT_EQ(converted.document.Content()["animations"][0]["extras"]["events"],
            Json({{{"frame", 1}, {"time", 0.25}, {"type", "Sound_Event"}, {"name", "step"}}}));
  const Json& skin = converted.document.Content()["skins"][0];
  EXPECT_EQ(skin["joints"], Json({0, 1}));
  ExpectNear(converted.Floats(converted.Attributes()["WEIGHTS_0"]),
             {1, 0, 0, 0, 0.75, 0.25, 0, 0, 0.5, 0.5, 0, 0});
  EXPECT_EQ(converted.messages.mended, std::vector<std::string>());
}

auto& BonesOf(IndexedMeshFile& file) { return file.mesh.influences[0]->m_bones; }

struct DamageCase {
  void (*damage)(IndexedMeshFile&);
  const char* message;
};

TEST(Convert, WhatIsForbiddenIsMended) {
  const DamageCase cases[] = {
      {[](auto& file) { file.mesh.chunks[0].vertices[1].y = kNaN; },
       "chunk 0: 1 positions that are not finite put at the origin"},
      {[](auto& file) { file.mesh.chunks[0].normals[0].x = kNaN; },
       "chunk 0: 1 normals that were not of unit length made so"},
      {[](auto& file) {
         file.mesh.chunks[0].triangles.push_back({1, 1, 2});
       },
       "chunk 0: 1 triangles with a vertex twice left out"},
      {[](auto& file) {
         BonesOf(file)[0]->m_weights.push_back({3, 1, {}});
       },
       "chunk 0: 1 weights of vertices that it lacks left out"},
      {[](auto& file) {
         BonesOf(file)[0]->m_weights.push_back({1, kNaN, {}});
       },
       "chunk 0: 1 weights below 0 or not finite left out"},
      {[](auto& file) {
         BonesOf(file)[1]->m_weights[1].weight = 0.5f;
         BonesOf(file)[1]->m_weights.push_back({1, 0.25f, {-1, -1, -3}});
       },
       "chunk 0: 1 vertices follow a bone twice, weights added up"},
      {[](auto& file) { BonesOf(file)[0]->m_weights[0].weight = 0.5f; },
       "chunk 0: 1 vertices with weights that do not sum to 1, scaled"},
      {[](auto& file) { BonesOf(file)[1]->m_weights.erase(BonesOf(file)[1]->m_weights.begin()); },
       "chunk 0: 1 vertices follow no bone, bound to one that stands still"},
      {[](auto& file) { BonesOf(file)[1]->m_rotation = {}; },
       "bone b.knee: has no usable rotation or position, stands at its parent's"},
      {[](auto& file) { BonesOf(file)[0]->m_parentName = "b.knee"; },
       "bone b.hip: stands below itself, now below nothing"},
      {[](auto& file) {
         file.mesh.attachmentPoints = {{{}, {kNaN, 0, 0}, "hatch"}};
       },
       "attachment point hatch: has no usable rotation or position, stands at the origin"},
  };
  for (const DamageCase& damage : cases) {
    IndexedMeshFile file = SkinFile();
    damage.damage(file);
    const Converted converted = ConvertOf(file);
    EXPECT_EQ(converted.messages.mended, std::vector<std::string>{damage.message});
    const Json& attributes = converted.Attributes();
    for (const double value : converted.Floats(attributes["POSITION"])) EXPECT_EQ(value, value);
    const Numbers normals = converted.Floats(attributes["NORMAL"]);
    for (size_t i = 0; i < normals.size(); i += 3)
      EXPECT_NEAR(std::hypot(normals[i], normals[i + 1], normals[i + 2]), 1, 1e-5);
    const Numbers weights = converted.Floats(attributes["WEIGHTS_0"]);
    for (size_t i = 0; i < weights.size(); i += 4)
      EXPECT_NEAR(weights[i] + weights[i + 1] + weights[i + 2] + weights[i + 3], 1, 1e-6);
  }
}

// One blue, half transparent pixel.
const std::string kTga =
    std::string("\0\0\2\0\0\0\0\0\0\0\0\0\1\0\1\0\x20\x08", 18) + std::string("\xFF\0\0\x80", 4);

TEST(Convert, TexturesAreFoundBesideTheModel) {
  TemporaryFolder folder;
  const std::string png = "\x89PNG\r\n\x1A\nnot looked into";
  WriteContent(folder.File("Wall.texture.txt"), "Primary=WALL.png\nTile=s\n");
  WriteContent(folder.File("wall.PNG"), png);
  WriteContent(folder.File("pane-pane.texture.txt"), "Primary=pane.tga\nAlpha=pane.tga\n");
  WriteContent(folder.File("pane.tga"), kTga);
  std::filesystem::create_directory(folder.File("roof.bmp"));
  std::filesystem::create_symlink("cycle.bmp", folder.File("cycle.bmp"));
  IndexedMeshFile file = FileOf(std::vector<IndexedMesh::Chunk>(5, TriangleChunk()));
  const char* const names[] = {"/x/wall.texture", "/x/pane-pane.texture", "/x/gone.texture",
                               "roof.bmp", "cycle.bmp"};
  for (size_t i = 0; i < std::size(names); ++i)
    file.mesh.chunks[i].material.maps = {{.channel = kDiffuse, .fileName = names[i], .amount = 1}};
  const Converted converted = ConvertOf(file, nullptr, folder.File(""));
  const Json& content = converted.document.Content();
  ASSERT_EQ(content["images"].size(), 2u);
  EXPECT_NE(converted.document.Binary().find(png), std::string::npos);
  EXPECT_EQ(content["images"][1]["mimeType"], "image/png");
  EXPECT_EQ(content["materials"][1]["alphaMode"], "BLEND");
  EXPECT_FALSE(content["materials"][0].contains("alphaMode"));
  EXPECT_EQ(content["samplers"][0], Json({{"wrapS", 10497}, {"wrapT", 33071}}));
  EXPECT_EQ(converted.messages.mended,
            (std::vector<std::string>{
                "gone.texture.txt: is not beside the model, its texture is left out",
                "roof.bmp: is not beside the model, left out",
                "cycle.bmp: Too many levels of symbolic links, left out"}));
}

}  // namespace
}  // namespace orv::convert
