#include "inspect/Checks.h"

#include <limits>
#include <set>

#include "Recorded.h"
#include "inspect/GoodFiles.h"

namespace orv::inspect {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

template <typename File>
struct Damage {
  const char* title;
  void (*apply)(File&);
};

// A damage to a good file f, its own code for a title.
#define DAMAGE(...)                                             \
  {                                                             \
#__VA_ARGS__, []([[maybe_unused]] auto& f) { __VA_ARGS__; } \
  }

std::string LinesOf(const Findings& findings) {
  std::string lines;
  for (const Finding& finding : findings) lines += "  " + LineOf(finding) + "\n";
  return lines.empty() ? "  nothing\n" : lines;
}

// All that the checks find after each damage, held against recorded/NAME.txt.
template <typename File>
void ExpectFound(const std::string& name, File (*good)(),
                 std::initializer_list<Damage<File>> damages) {
  std::string text;
  for (const auto& [title, apply] : damages) {
    File file = good();
    apply(file);
    Findings findings;
    CheckStructure(file, findings);
    CheckContent(file, findings);
    text += std::string(title) + "\n" + LinesOf(findings);
  }
  ExpectRecorded(text, ORV_RECORDED "/" + name + ".txt");
}

// Short names for what is damaged.
GenericMaterial& Material(IndexedMeshFile& f) { return f.mesh.chunks[0].material; }
IndexedMesh::Chunk& Chunk(IndexedMeshFile& f, size_t number = 0) { return f.mesh.chunks[number]; }
GenericBoneInfluence& Bone(IndexedMeshFile& f, size_t number = 0) {
  return *f.mesh.influences[0]->m_bones[number];
}

void AddBones(IndexedMeshFile& f, int count, float weight) {
  for (int i = 0; i < count; ++i)
    AddInfluence(*f.mesh.influences[0], "b." + std::to_string(i), {{0, weight, {}}});
  f.maxBonesPerChunk = 2 + (weight > 0 ? count : 0);
  f.maxInfluencesPerVertex = f.chunks[0].maxInfluencesPerVertex = weight > 0 ? 1 + count : 2;
}

void AddVertices(IndexedMeshFile& f, size_t count, size_t chunk = 0) {
  Chunk(f, chunk).vertices.resize(count, {1, 0, 0, 0, 0});
  Chunk(f, chunk).normals.resize(count, {0, 0, 1});
  if (chunk == 1) Chunk(f, chunk).tangents.resize(count, {1, 0, 0});
}

void AddTriangles(IndexedMeshFile& f, uint32_t count) {
  Chunk(f).triangles.resize(count, Chunk(f).triangles[0]);
  Chunk(f).faceNormals.resize(count, {0, 0, 1});
  Chunk(f).surfaceArea = 0.5f * static_cast<float>(count);
  f.chunks[0].indexCount = 3 * count;
  f.chunks[0].triangleCountAgain = count;
}

// The first triangle, so high.
void Flatten(IndexedMeshFile& f, float height) {
  Chunk(f).vertices[2].y = height;
  Chunk(f).surfaceArea = height / 2;
}

void Scale(IndexedMeshFile& f, float factor) {
  for (IndexedMesh::Chunk& chunk : f.mesh.chunks) {
    for (IndexedVertex& v : chunk.vertices) v.x *= factor, v.y *= factor, v.z *= factor;
    chunk.surfaceArea *= factor * factor;
  }
  f.boundingBox = ComputeBoundingBox(f.mesh);
}

TEST(Checks, WhatIsWrongWithTheStructureOfAModel) {
  ExpectFound<IndexedMeshFile>(
      "structure", GoodSkinFile,
      {DAMAGE(), DAMAGE(f.chunks[1].index = 7), DAMAGE(f.chunks[0].indexCount = 4),
       DAMAGE(f.chunks[0].triangleCountAgain = 2), DAMAGE(Chunk(f).vertices[2].z = kNaN),
       DAMAGE(Chunk(f).vertices[1].u = kInf), DAMAGE(Chunk(f).vertices[1].v = kNaN),
       DAMAGE(Chunk(f).normals[2].x = kInf, Chunk(f).normals[1].y = kNaN),
       DAMAGE(Chunk(f).normals[2].z = 1.0009f), DAMAGE(Chunk(f).normals[2].z = 1.0011f),
       DAMAGE(Chunk(f).normals[2].z = 0.9991f), DAMAGE(Chunk(f).normals[2].z = 0.9989f),
       DAMAGE(Chunk(f, 1).tangents[1].x = kNaN), DAMAGE(Chunk(f, 1).tangents[1].x = 1.0009f),
       DAMAGE(Chunk(f, 1).tangents[1].x = 1.0011f), DAMAGE(Chunk(f, 1).tangents.clear()),
       DAMAGE(Chunk(f, 1).tangents.clear(), f.chunks[1].geometryVersion = 200),
       DAMAGE(Chunk(f).tangents.assign(3, Vec3{1, 0, 0})), DAMAGE(Chunk(f).faceNormals[0].x = kNaN),
       DAMAGE(Chunk(f).faceNormals[0].z = 1.0011f), DAMAGE(Chunk(f).faceNormals[0].z = -1),
       DAMAGE(Chunk(f).faceNormals[0] = {0, 0.43f, 0.9028f}),
       DAMAGE(Chunk(f).faceNormals[0] = {0, 0.44f, 0.898f}),
       DAMAGE(Flatten(f, 0.0011f), Chunk(f).faceNormals[0] = {1, 0, 0}),
       DAMAGE(Flatten(f, 0.0009f), Chunk(f).faceNormals[0] = {1, 0, 0}),
       DAMAGE(Chunk(f).surfaceArea = kInf), DAMAGE(Chunk(f).surfaceArea = 0.5004f),
       DAMAGE(Chunk(f).surfaceArea = 0.5006f), DAMAGE(Chunk(f).surfaceArea = 0.4994f),
       DAMAGE(Material(f).opacity = kNaN), DAMAGE(Material(f).shininess = kNaN),
       DAMAGE(Material(f).ambient.x = kNaN), DAMAGE(Material(f).diffuse.y = kNaN),
       DAMAGE(Material(f).specular.z = kNaN), DAMAGE(Material(f).emissive.x = kNaN),
       DAMAGE(Material(f).maps[0].amount = kNaN), DAMAGE(Bone(f).m_weights[2].weight = kNaN),
       DAMAGE(Bone(f).m_weights[2].offset.z = kNaN), DAMAGE(Bone(f).m_position.x = kNaN),
       DAMAGE(Bone(f, 1).m_rotation[2].y = kNaN),
       DAMAGE(Bone(f, 1).m_weights.push_back({3, 1, {}})),
       DAMAGE(f.mesh.attachmentPoints[0].position.y = kNaN),
       DAMAGE(f.mesh.attachmentPoints[0].rotation[1].z = kNaN),
       DAMAGE(f.boundingBox->maximum.x = 0.5f), DAMAGE(f.boundingBox->minimum.y = 0.1f),
       DAMAGE(f.boundingBox->minimum.z = -1), DAMAGE(f.boundingBox.reset()),
       DAMAGE(f.chunks[0].maxInfluencesPerVertex = 1),
       DAMAGE(f.chunks[0].maxInfluencesPerVertex = 3),
       DAMAGE(f.chunks[0].maxInfluencesPerVertex = 9, f.chunks[0].geometryVersion = 101),
       DAMAGE(f.maxInfluencesPerVertex = 1),
       DAMAGE(f.maxInfluencesPerVertex = 3),  // tangents may have copied a vertex
       DAMAGE(f.mesh.influences.clear()), DAMAGE(f.maxBonesPerChunk = 1),
       DAMAGE(f.maxBonesPerChunk = 3),
       DAMAGE(f.maxInfluencesPerVertex.reset(), f.maxBonesPerChunk.reset()),
       DAMAGE(f.chunks[0].boneName = "b.arm"),
       DAMAGE(Chunk(f).neighbours = {{0x10000, IndexedMesh::kNoNeighbour, 0}}),
       DAMAGE(Chunk(f).neighbours = {{0x20000, IndexedMesh::kNoNeighbour, 0x30000}}),
       DAMAGE(AddTriangles(f, 2)), DAMAGE(Chunk(f).triangles[0] = Triangle{1, 2, 0}),
       DAMAGE(Chunk(f).triangles[0] = Triangle{1, 2, 0}, AddTriangles(f, 3)),
       // Vertices that no triangle names have lost their places, and with them the box and the
       // maxima what they were computed from.
       DAMAGE(AddVertices(f, 4), f.boundingBox->maximum.z = 4),
       DAMAGE(AddVertices(f, 5), f.maxInfluencesPerVertex = 9),
       DAMAGE(AddVertices(f, 4, 1),
              AddInfluence(*f.mesh.influences[1], "b.toe", {{3, 1, {}}, {0, 0, {}}})),
       DAMAGE(AddVertices(f, 0x10000)), DAMAGE(AddVertices(f, 0x10001))});
}

TEST(Checks, WhatIsWrongWithTheContentOfAModel) {
  ExpectFound<IndexedMeshFile>(
      "content", GoodSkinFile,
      {DAMAGE(Material(f).name = "skin"),
       DAMAGE(Material(f).name = "skin m.onetexx"),
       DAMAGE(Material(f).name = "skin m."),
       DAMAGE(Material(f).name = "skin m.OneTex"),
       DAMAGE(Material(f).name = "item. m.onetex"),
       DAMAGE(Material(f).name = "skinm.onetex"),
       DAMAGE(Material(f).name = "9m.onetex.billboard"),
       DAMAGE(Material(f).name = "m.tribillboard"),
       DAMAGE(Material(f).name = "skin m.notex", Material(f).maps.clear()),
       DAMAGE(Material(f).name = "skin m.billboard", Material(f).maps.clear()),
       DAMAGE(Material(f).name = "skin m.reflect"),
       DAMAGE(Material(f).name = "skin m.gloss"),
       DAMAGE(Chunk(f, 1).material.maps.pop_back()),
       DAMAGE(Material(f).opacity = 0),
       DAMAGE(Material(f).opacity = -0.01f),
       DAMAGE(Material(f).opacity = 1.01f),
       DAMAGE(Material(f).maps.push_back({.channel = -1, .fileName = "x"})),
       DAMAGE(Material(f).maps.push_back({.channel = kOpacity, .fileName = "x"})),
       DAMAGE(Material(f).maps.push_back({.channel = 11, .fileName = "x"})),
       DAMAGE(Material(f).maps.push_back({.channel = 12, .fileName = "x"})),
       DAMAGE(AddTriangles(f, 0)),
       DAMAGE(AddTriangles(f, 10666)),
       DAMAGE(AddTriangles(f, 10667)),
       DAMAGE(AddVertices(f, 32000)),
       DAMAGE(AddVertices(f, 32001)),
       DAMAGE(Flatten(f, 1.1e-6f)),
       DAMAGE(Flatten(f, 0.9e-6f)),
       DAMAGE(Chunk(f).triangles[0] = Triangle{0, 1, 1}, Chunk(f).surfaceArea = 0),
       DAMAGE(Chunk(f).vertices[2].v = -32),
       DAMAGE(Chunk(f).vertices[2].v = -32.5f),
       DAMAGE(Chunk(f).vertices[1].u = 32.5f, Chunk(f).vertices[2].u = 33),
       DAMAGE(Chunk(f).vertices[1].u = 32.5f, Chunk(f).vertices[1].v = kNaN),
       DAMAGE(Scale(f, 100)),
       DAMAGE(Scale(f, 100.5f)),
       DAMAGE(Scale(f, 0.01f)),
       DAMAGE(Scale(f, 0.0099f)),
       DAMAGE(f.mesh.attachmentPoints.emplace_back().name = "Hatch"),
       DAMAGE(AddBones(f, 14, 1e-6f)),
       DAMAGE(AddBones(f, 15, 1e-6f)),
       DAMAGE(AddBones(f, 15, 0)),
       DAMAGE(Bone(f).m_weights[2].weight = 0.991f),
       DAMAGE(Bone(f).m_weights[2].weight = 0.989f),
       DAMAGE(Bone(f).m_weights[1].weight = 0.2591f),
       DAMAGE(Bone(f).m_weights[1].weight = 0.2611f),
       DAMAGE(Bone(f).m_weights[2].weight = 1.00005f),
       DAMAGE(Bone(f).m_weights[2].weight = 1.0002f),
       DAMAGE(Bone(f, 1).m_weights.push_back({0, -0.00005f, {}})),
       DAMAGE(Bone(f, 1).m_weights.push_back({0, -0.0002f, {}})),
       DAMAGE(Bone(f).m_weights.pop_back()),
       DAMAGE(Bone(f).m_weights.push_back({2, 1, {}})),
       DAMAGE(Bone(f).m_weights[1].weight = 0.125f, Bone(f).m_weights.push_back({1, 0.125f, {}}))});
}

TEST(Checks, WhatIsWrongWithBones) {
  ExpectFound<IndexedMeshFile>(
      "rigid", GoodRigidFile,
      {DAMAGE(), DAMAGE(f.bonePoses[1].rotation.w = 1.0009f),
       DAMAGE(f.bonePoses[1].rotation.w = 1.0011f), DAMAGE(f.bonePoses[1].rotation.w = -0.9989f),
       DAMAGE(f.bonePoses[1].rotation.w = kNaN), DAMAGE(f.bonePoses[1].rotation.y = kInf),
       DAMAGE(f.bonePoses[0].position.x = kNaN), DAMAGE(f.bones[1].name = "B.ROOT"),
       DAMAGE(f.chunks[0].boneName = "B.Arm"),
       // Weights are counted, but not written with a skeleton.
       DAMAGE(f.maxInfluencesPerVertex = f.maxBonesPerChunk = 2)});
}

TEST(Checks, WhatIsWrongWithAnAnimation) {
  ExpectFound<AnimationFile>("animation", GoodAnimationFile,
                             {DAMAGE(),
                              DAMAGE(f.frameRate = 0),
                              DAMAGE(f.masterScale = 0),
                              DAMAGE(f.masterScale = 1e-9f),
                              DAMAGE(f.masterScale = -1),
                              DAMAGE(f.masterScale = kInf),
                              DAMAGE(f.masterScale = kNaN),
                              DAMAGE(f.events[1].type = 8),
                              DAMAGE(f.events[1].type = 9),
                              DAMAGE(f.events[0].frame = 0),
                              DAMAGE(f.events[0].frame = -1),
                              DAMAGE(f.events[1].frame = 3),
                              DAMAGE(f.events[0].frame = 4, f.events[1].frame = 3),
                              DAMAGE(f.bones[1].name = "B.hip"),
                              DAMAGE(f.poses[3].position.y = kInf),
                              DAMAGE(f.poses[4].rotation.x = kNaN),
                              DAMAGE(f.poses[4].rotation.w = 0),
                              DAMAGE(f.poses[5].rotation.w = 1.0009f),
                              DAMAGE(f.poses[5].rotation.w = 1.0011f),
                              DAMAGE(f.frameCount = 0, f.poses.clear(), f.events.clear())});
}

TEST(Checks, WhatTheReaderRemarks) {
  ExIndexedMesh mesh = GoodSkin();
  std::string later = Written(mesh).bytes, longer = later + "abcd";
  later[later.rfind("ATCH") + 8] = 9;
  mesh.chunks[0].material.maps.assign(2, {.channel = kOpacity, .fileName = "a.texture"});
  std::string text;
  for (const std::string& bytes : {longer, later, Written(mesh).bytes}) {
    IndexedMeshFile file;
    ReadProblem problem;
    EXPECT_TRUE(ReadIndexedMesh(bytes, file, problem)) << problem.Message();
    Findings findings;
    CheckStructure(file, findings);
    text += LinesOf(findings);
  }
  ExpectRecorded(text, ORV_RECORDED "/remarks.txt");
}

TEST(Checks, MeshAndAnimationAreHeldAgainstEachOther) {
  const auto found = [](const IndexedMeshFile& mesh, const AnimationFile& animation) {
    Findings findings;
    CheckBones(mesh, animation, "walk.kin", findings);
    return LinesOf(findings);
  };
  AnimationFile animation = GoodAnimationFile();
  std::string text = found(GoodSkinFile(), animation) + found(GoodRigidFile(), animation);
  animation.bones[1].name = "b.tail";
  text += found(GoodSkinFile(), animation);
  for (int i = 0; i < 6; ++i) animation.bones.push_back({"b." + std::to_string(i), 0});
  text += found(GoodSkinFile(), animation);
  IndexedMeshFile boneless = GoodSkinFile();
  boneless.mesh.influences.clear();
  ExpectRecorded(text + found(boneless, animation), ORV_RECORDED "/bones.txt");
}

// The good skin's textures are skin.texture, in both chunks, and b.texture.
TEST(Checks, SideFilesAndPicturesAreLookedForBesideTheModel) {
  const TemporaryFolder folder;
  std::string text;
  const auto check = [&](const GenericMaterial& material = {}) {
    IndexedMeshFile file = GoodSkinFile();
    if (!material.maps.empty()) Material(file) = material;
    Findings findings;
    CheckTextures(file.mesh, folder.File(""), findings);
    text += LinesOf(findings);
  };
  check();
  WriteContent(folder.File("Skin.texture.txt"),
               "Primary=skin.png\r\nAlpha=C:\\a/mask.png\nTile=st\n");
  WriteContent(folder.File("b.texture.txt"), "Tile=st\n");
  WriteContent(folder.File("SKIN.PNG"), "");
  check();
  WriteContent(folder.File("mask.png"), "");
  WriteContent(folder.File("b.texture.txt"), "primary=skin.png\nNormalMapHint=normalmap\n");
  check();
  GenericMaterial plain;
  plain.maps = {{.channel = kDiffuse, .fileName = "x/skin.png"},
                {.channel = kBump, .fileName = "x\\gone.PNG"},
                {.channel = kSelfIllumination, .fileName = "y/Gone.png"}};
  check(plain);
  ExpectRecorded(text, ORV_RECORDED "/textures.txt");
}

}  // namespace
}  // namespace orv::inspect
