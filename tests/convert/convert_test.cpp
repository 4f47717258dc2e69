#include "convert/Convert.h"

#include <limits>

#include "Recorded.h"
#include "convert/GlbText.h"
#include "formats/SampleMeshes.h"

namespace orv::convert {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kHalf = 0.70710678f;
const Matrix33 kUnturned{Vec3{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const Matrix33 kQuarterTurn{Vec3{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}};  // x becomes y
const Matrix33 kMirrored{Vec3{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

// The whole .glb file and the messages, held against recorded/NAME.txt.
void ExpectConverted(const std::string& name, const IndexedMeshFile& file,
                     const AnimationFile* animation, const TemporaryFolder& folder,
                     std::optional<double> metresPerUnit = 0.01) {
  Messages messages;
  std::ostringstream glb;
  const GlbDocument document =
      Convert({file, animation, "model", folder.File(""), metresPerUnit}, messages);
  EXPECT_TRUE(document.Write(glb));
  std::string text = GlbText(glb.str());
  for (const std::string& line : messages.notes) text += "note: " + line + "\n";
  for (const std::string& line : messages.mended) text += "mended: " + line + "\n";
  ExpectRecorded(text, ORV_RECORDED "/" + name + ".txt");
}

IndexedMeshFile FileOf(std::vector<IndexedMesh::Chunk> chunks) {
  IndexedMeshFile file;
  file.mesh.chunks = std::move(chunks);
  file.chunks.resize(file.mesh.chunks.size());
  return file;
}

void AddBone(GenericMeshInfluence& influence, const std::string& name, const std::string& parent,
             Vec3 position, const Matrix33& rotation, std::vector<VertexWeight> weights) {
  influence.AddBone(
      std::make_unique<GenericBoneInfluence>(name, parent, position, Matrix33{rotation}));
  influence.m_bones.back()->m_weights = std::move(weights);
}

MaterialMap Map(int32_t channel, const std::string& name, float amount = 1) {
  return {.channel = channel, .fileName = name, .amount = amount};
}

// A pixel, blue first.
std::string Tga(const std::string& pixel) {
  const char bits = static_cast<char>(8 * pixel.size());
  return std::string("\0\0\2\0\0\0\0\0\0\0\0\0\1\0\1\0", 16) + bits + (bits == 32 ? '\x08' : '\0') +
         pixel;
}

// The hip's parent is not in the file: it stands at (0, 0, 3), which only the knee's vertices can
// tell, the fin where its own do, mirrored, the prop where the animation begins, the tail nowhere.
IndexedMeshFile SkinFile() {
  IndexedMeshFile file = FileOf(std::vector<IndexedMesh::Chunk>(4, TriangleChunk()));
  auto &skin = file.mesh.chunks[0], &leaf = file.mesh.chunks[1], &fin = file.mesh.chunks[2],
       &pane = file.mesh.chunks[3];
  skin.material.name = "h\xE4ut m.onetex.tbump";
  skin.material.maps = {Map(kDiffuse, "C:\\a/skin.texture"), Map(kBump, "bump.texture", 0.5f),
                        Map(kSelfIllumination, "glow.png"), Map(kSpecular, "not.looked.for", 2)};
  skin.material.diffuse = {};
  skin.vertices[1].u = 0.25f;
  skin.normals = {{0, 0, 1}, {0, 0.6f, 0.8f}, {0.6f, 0, 0.8f}};
  skin.tangents = {{1, 0, 0}, {0, 0.8f, -0.6f}, {0.8f, 0, -0.6f}};
  leaf.material.maps = {Map(kDiffuse, "leaf-mask.texture")};
  leaf.material.shininess = 250;
  fin.material = leaf.material;
  fin.vertices.push_back({0, 0, 1, 0.5f, 0.5f});
  fin.normals.push_back({0, 0, 1});
  fin.triangles.push_back({0, 2, 3});
  pane.material.name = "pane m.gloss";
  pane.material.maps = {Map(kDiffuse, "pane-pane.texture")};
  pane.material.diffuse = {2, 0.5f, -1};

  GenericMeshInfluence& first = AddChunkInfluence(file.mesh);
  AddBone(first, "b.hip", "rig", {}, kQuarterTurn, {{1, 0.1f, {0, -1, -3}}, {2, 0.5f, {1, 0, -3}}});
  AddBone(first, "b.knee", "B.Hip", {1, 0, 0}, kUnturned,
          {{0, 1, {-1, 0, -3}}, {1, 0.45f, {-1, -1, -3}}, {2, 0.5f, {0, 0, -3}}});
  for (const float weight : {0.2f, 0.15f, 0.1f}) {
    AddBone(first, "b.toe" + std::to_string(first.m_bones.size() - 1), "b.knee", {0, 0, 1},
            kUnturned, {{1, weight, {}}});
  }
  GenericMeshInfluence& second = AddChunkInfluence(file.mesh);
  AddBone(second, "b.prop", "rig", {7, 7, 7}, kUnturned, {{0, 1, {}}, {1, 1, {}}});
  AddBone(second, "b.tail", "rig", {0, 5, 0}, kUnturned, {});
  AddBone(AddChunkInfluence(file.mesh), "b.fin", "rig", {}, kUnturned,
          {{0, 1, {2, 0, 0}}, {1, 1, {1, 0, 0}}, {2, 1, {2, 1, 0}}, {3, 1, {2, 0, 1}}});
  AddChunkInfluence(file.mesh);
  file.mesh.attachmentPoints = {{kQuarterTurn, {1, 2, 3}, "t\xFCr"}, {kMirrored, {}, "twin"}};
  return file;
}

// Bones of the skin in another tree and another case, and one that the skin lacks.
AnimationFile SkinAnimation() {
  AnimationFile file;
  file.name = "walk";
  file.frameCount = 3;
  file.frameRate = 4;
  file.masterScale = 0.01f;
  file.events = {{1, 0, "step"}, {2, 12, "odd"}};
  file.bones = {{"b.hip", -1}, {"B.KNEE", 0}, {"b.toe1", 0}, {"b.prop", 0}, {"b.extra", 3}};
  for (int frame = 0; frame < 3; ++frame) {
    const float sign = frame == 1 ? -1 : 1;
    file.poses.push_back({{0, 0, 300}, {0, 0, -kHalf * sign, kHalf * sign}});
    for (float bone = 1; bone < 5; ++bone) {
      file.poses.push_back({{100 * bone, 10.0f * static_cast<float>(frame), 300}, {}});
    }
  }
  file.poses[11].rotation = {1, 0, 0, 0};
  file.poses[13].position.x = kNaN;
  return file;
}

TEST(Convert, SkinWithAnimationAndPictures) {
  const TemporaryFolder folder;
  const std::pair<const char*, std::string> files[] = {
      {"Skin.texture.txt", "Primary=SKIN.png\nTile=s\n"},
      {"skin.PNG", "\x89PNG\r\n\x1A\nnot looked into"},
      {"bump.texture.txt", "Primary=bump.tga\n"},
      {"bump.tga", Tga("\x80\x80\xFF")},
      {"glow.png", "\xFF\xD8\xFFnot looked into"},
      {"leaf-mask.texture.txt", "Primary=leaf.tga\nAlpha=mask.tga\nTile=t\n"},
      {"leaf.tga", Tga("\1\2\3")},
      {"mask.tga", Tga("\x40\x40\x40")},
      {"pane-pane.texture.txt", "Primary=pane.tga\nAlpha=PANE.tga\n"},
      {"pane.tga", Tga("\xFF\1\2\x80")}};
  for (const auto& [name, content] : files) WriteContent(folder.File(name), content);
  const AnimationFile animation = SkinAnimation();
  ExpectConverted("skin", SkinFile(), &animation, folder, 0.5);
}

TEST(Convert, RigidModelWithoutUnit) {
  IndexedMeshFile file = FileOf(std::vector<IndexedMesh::Chunk>(4, TriangleChunk()));
  file.bones = {{"b.root", -1}, {"b.arm", 0}, {"b.hand", 1}};
  file.bonePoses = {
      {{0, 0, 1}, {}}, {{2, 0, 0}, {0, 0, -kHalf, kHalf}}, {{0, 0.5f, 0}, {kHalf, 0, 0, kHalf}}};
  file.chunks[0].boneName = "B.Hand";
  file.chunks[1].boneName = "b.gone";
  file.mesh.chunks[1].material.maps = {Map(kDiffuse, "gone.texture")};
  GenericMaterial& glass = file.mesh.chunks[2].material;
  glass.twoSided = 1;
  glass.opacity = 0.5f;
  glass.ambient = {0.1f, 0.2f, 0.3f};
  glass.diffuse = {0.4f, 0.5f, 0.6f};
  glass.specular = {0.7f, 0.8f, 0.9f};
  glass.emissive = {0.15f, 0.25f, 0.35f};
  glass.name = "glass m.notex";
  glass.properties = {{"sound", "metal"}};
  file.mesh.chunks[3].triangles.clear();
  ExpectConverted("rigid", file, nullptr, TemporaryFolder(), std::nullopt);
}

// One of everything that glTF forbids.
TEST(Convert, WhatIsForbiddenIsMended) {
  IndexedMeshFile file = FileOf(std::vector<IndexedMesh::Chunk>(3, TriangleChunk()));
  IndexedMesh::Chunk& chunk = file.mesh.chunks[0];
  chunk.vertices.push_back({0, 2, 0, kNaN, 1});
  chunk.vertices[0].y = kNaN;
  chunk.triangles = {{0, 1, 2}, {1, 1, 2}, {1, 2, 3}, {3, 2, 1}};
  chunk.normals = {{0, 0, 1}, {}, {0, 2, 0}, {kNaN, 0, 0}};
  chunk.tangents = {{}, {0, 3, 0}, {1, 0, 0}, {0, 0, kNaN}};
  chunk.material.opacity = kNaN;
  chunk.material.shininess = kNaN;
  chunk.material.maps = {Map(kDiffuse, "gone.texture"), Map(kBump, "empty.texture"),
                         Map(kSelfIllumination, "roof.bmp")};
  file.mesh.chunks[1].material.maps = {Map(kDiffuse, "cycle.bmp"), Map(kBump, "text.bmp"),
                                       Map(kSelfIllumination, "half-gone.texture")};
  file.mesh.chunks[2].triangles.clear();
  GenericMeshInfluence& influence = AddChunkInfluence(file.mesh);
  for (int i = 0; i < 18; ++i) {
    AddBone(influence, "b." + std::to_string(i), i == 1 ? "b.0" : "b.1", {1, 0, 0},
            i == 2 ? Matrix33{} : kUnturned, {{0, 0.01f * static_cast<float>(i + 1), {}}});
  }
  auto& weights = influence.m_bones[4]->m_weights;
  weights.insert(weights.end(), {{1, 0.25f, {}}, {1, 0.5f, {}}, {2, 0.5f, {}}});
  weights.insert(weights.end(), {{4, 1, {}}, {2, -1, {}}, {2, kNaN, {}}});
  influence.m_bones[5]->m_weights.push_back({1, 0.25f, {}});
  AddChunkInfluence(file.mesh);
  AddChunkInfluence(file.mesh);
  file.mesh.attachmentPoints = {{kUnturned, {kNaN, 0, 0}, "hatch"},
                                {{}, {1, 2, 3}, "flat"},
                                {kUnturned, {3e30f, 0, 0}, "far"}};
  AnimationFile animation;
  animation.frameCount = 2;
  animation.masterScale = kNaN;
  animation.bones = {{"b.7", -1}, {"B.7", 0}};
  animation.poses = {{{kNaN, 0, 0}, {}}, {{7, 0, 0}, {}}, {{100, 0, 0}, {}}, {{7, 0, 0}, {}}};
  const TemporaryFolder folder;
  WriteContent(folder.File("empty.texture.txt"), "Tile=st\n");
  std::filesystem::create_symlink("cycle.bmp", folder.File("cycle.bmp"));
  WriteContent(folder.File("text.bmp"), "I am a text");
  WriteContent(folder.File("half-gone.texture.txt"), "Primary=half.tga\nAlpha=gone.tga\n");
  WriteContent(folder.File("half.tga"), Tga("\1\2\3"));
  ExpectConverted("mended", file, &animation, folder);
}

// 65535 is not allowed as a short index.
TEST(Convert, IndicesAreAsShortAsTheyCanBe) {
  for (const auto& [vertices, type] : {std::pair(65535, 5123), {65536, 5125}}) {
    IndexedMeshFile file = FileOf({TriangleChunk()});
    file.mesh.chunks[0].vertices.resize(static_cast<size_t>(vertices));
    file.mesh.chunks[0].normals.resize(static_cast<size_t>(vertices), {0, 0, 1});
    Messages messages;
    const Json content = Convert(Source{file, nullptr, "", "", 1}, messages).Content();
    const size_t indices = content["meshes"][0]["primitives"][0]["indices"];
    EXPECT_EQ(content["accessors"][indices]["componentType"], type) << vertices;
  }
}

}  // namespace
}  // namespace orv::convert
