#include <gtest/gtest.h>

#include "SampleMeshes.h"
#include "TemporaryFolder.h"
#include "platform/Platform.h"

namespace orv {
namespace {

// The file with one triangle, field by field.
TEST(IndexedMeshWriter, FileOfOneTriangle) {
  ExIndexedMesh mesh;
  mesh.chunks.push_back(TriangleChunk());
  GenericMaterial& material = mesh.chunks[0].material;
  material.twoSided = 1;
  material.opacity = 0.5f;
  material.ambient = {0.1f, 0.2f, 0.3f};
  material.diffuse = {0.4f, 0.5f, 0.6f};
  material.specular = {0.7f, 0.8f, 0.9f};
  material.emissive = {1.1f, 1.2f, 1.3f};
  material.shininess = 25;
  material.properties = {{"key", "value"}};
  material.maps = {{.channel = kReflection, .fileName = "sky.texture", .amount = 0.75f}};

  const std::string info =
      Floats({0, 0, 0, 1, 0, 0}) + Words({0, 1, 0, 0}) + Floats({0, 0, 0, 1, 1, 0});
  const std::string matl =
      Text("rail.m.onetex") + LittleEndian(1) + Text("key") + Text("value") + LittleEndian(1) +
      Floats({0.5f, 0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f, 0.8f, 0.9f, 1.1f, 1.2f, 1.3f, 25}) +
      Words({1, 9}) + Text("sky.texture") + Floats({0.75f});
  const std::string geom = Words({4, 0}) + Floats({0.5f}) + Words({3, 1, 3, 1, 0}) + Text("") +
                           Floats({0, 0, 0, 0, 1, 1, 0, 0, 1, 1, 0, 1, 0, 0, 0}) +
                           Shorts({0, 1, 2}) + Floats({0, 0, 1, 0, 0, 1, 0, 0, 1}) +
                           Floats({0, 0, 1});
  EXPECT_EQ(Written(mesh).bytes, Root("IDXM", Chunk("INFO", 104, info) +
                                                  Chunk("CHNK", 100,
                                                        LittleEndian(0) + Chunk("MATL", 103, matl) +
                                                            Chunk("GEOM", 201, geom))));
}

TEST(IndexedMeshWriter, DefaultColoursAndComposedNameReplaceTheMaterials) {
  ExIndexedMesh mesh;
  mesh.chunks.push_back(TriangleChunk("rail"));
  mesh.m_useDefaultColors = true;
  EXPECT_EQ(Written(mesh).log.size(), 1u);
  const GenericMaterial material = ReadBack(mesh).mesh.chunks.at(0).material;
  EXPECT_EQ(material.name, "railm.notex");
  EXPECT_EQ(material.ambient, (Vec3{1, 1, 1}));
  EXPECT_EQ(material.diffuse, (Vec3{1, 1, 1}));
  EXPECT_EQ(material.specular, Vec3());
  EXPECT_EQ(material.emissive, Vec3());
  EXPECT_EQ(material.shininess, 32);
}

TEST(IndexedMeshWriter, TwoOpacityMapsCountOneTooHigh) {
  ExIndexedMesh mesh;
  mesh.chunks.push_back(TriangleChunk());
  mesh.chunks[0].material.maps = {{.channel = kOpacity, .fileName = "a.texture"},
                                  {.channel = kBump, .fileName = "b.texture"}};
  const std::string maps = LittleEndian(8) + Text("b.texture") + Floats({0});
  EXPECT_NE(Written(mesh).bytes.find(LittleEndian(1) + maps), std::string::npos);
  mesh.chunks[0].material.maps.push_back({.channel = kOpacity, .fileName = "c.texture"});
  EXPECT_NE(Written(mesh).bytes.find(LittleEndian(2) + maps + "GEOM"), std::string::npos);
}

TEST(IndexedMeshWriter, TangentsNeedTheMaterialTypeAndTheArray) {
  const auto geometry = [](const char* materialName, std::vector<Vec3> tangents) {
    IndexedMesh::Chunk chunk = TriangleChunk(materialName);
    chunk.tangents = std::move(tangents);
    return BytesOf([&](std::ostream& out) { WriteGeometry(out, chunk, 0); });
  };
  const std::vector<Vec3> tangents = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  const std::string plain = geometry("a.m.onetex", {});
  EXPECT_EQ(geometry("a.m.onetex", tangents), plain);
  EXPECT_EQ(geometry("a.m.onetex.tbump", {}), plain);
  std::string expected = plain + Floats({1, 0, 0, 0, 1, 0, 0, 0, 1});
  expected.replace(4, 4, LittleEndian(static_cast<uint32_t>(expected.size() - 8)));
  expected.replace(16, 4, LittleEndian(1));
  EXPECT_EQ(geometry("a.m.onetex.tbump", tangents), expected);
}

TEST(IndexedMeshWriter, TangentFlagStandsWithoutVerticesToo) {
  const std::pair<const char*, uint32_t> cases[] = {{"a.m.notex", 0}, {"a.m.notex.tbump", 1}};
  for (const auto& [name, flags] : cases) {
    ExIndexedMesh mesh;
    mesh.chunks.emplace_back().material.name = name;
    mesh.PrepareChunk(0, false);
    const std::string geometry =
        BytesOf([&](std::ostream& out) { WriteGeometry(out, mesh.chunks[0], 0); });
    EXPECT_EQ(geometry, Chunk("GEOM", 201, Words({4, flags, 0, 0, 0, 0, 0, 0}) + Text(""))) << name;
  }
}

// Degenerate triangles that were dropped leave surplus rows in the tables of the triangles.
TEST(IndexedMeshWriter, SurplusRowsOfTheTriangleTablesAreLeftOut) {
  IndexedMesh::Chunk chunk = TriangleChunk();
  chunk.faceNormals.push_back({9, 9, 9});
  chunk.neighbours = {{1, 0x00020003, IndexedMesh::kNoNeighbour}, {7, 7, 7}};
  EXPECT_EQ(BytesOf([&](std::ostream& out) { WriteNeighbours(out, chunk); }),
            Chunk("NINF", 100, Words({1, 0x00020003, 0xFFFFFFFF})));
  const std::string geom = BytesOf([&](std::ostream& out) { WriteGeometry(out, chunk, 0); });
  EXPECT_EQ(geom.substr(geom.size() - 12), Floats({0, 0, 1}));
}

TEST(IndexedMeshWriter, MeshWithoutVerticesHasTheStartValuesAsItsBox) {
  ExIndexedMesh mesh;
  constexpr float kMax = 3.4028235e38f;
  EXPECT_EQ(Written(mesh).bytes,
            Root("IDXM", Chunk("INFO", 104,
                               Floats({0, 0, 0, 1, 0, 0}) + Words({0, 0, 0, 0}) +
                                   Floats({kMax, kMax, kMax, -kMax, -kMax, -kMax}))));
}

// Only weights above zero count; a bone that lists a vertex twice counts once.
TEST(IndexedMeshWriter, Statistics) {
  ExIndexedMesh mesh = SkinnedMesh();
  AddInfluence(*mesh.influences[0], "b.twice", {{1, 0.5f, {}}, {1, 0.5f, {}}});
  AddInfluence(*mesh.influences[0], "b.idle", {{1, 0, {}}});
  const IndexedMeshFile file = ReadBack(mesh);
  EXPECT_EQ(file.maxInfluencesPerVertex, 3u);  // hip, knee and twice on vertex 1
  EXPECT_EQ(file.maxBonesPerChunk, 3u);        // not the toe
  EXPECT_EQ(file.chunks[0].maxInfluencesPerVertex, 3u);
  EXPECT_EQ(file.chunks[1].maxInfluencesPerVertex, 1u);
}

TEST(IndexedMeshWriter, InfluencesAreGroupedByNameIgnoringCase) {
  ExIndexedMesh mesh = SkinnedMesh();
  const std::string header = Floats({1, 2, 3, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  const std::string infl = LittleEndian(3) +                                             //
                           Text("b.hip") + Text("") + header + Words({1, 0, 3}) +        //
                           Words({0}) + Floats({1, 1, 1, 1}) +                           //
                           Words({1}) + Floats({0.25f, 0, 0, 0}) +                       //
                           Words({2}) + Floats({0, 0, 0, 0}) +                           //
                           Text("b.Knee") + Text("b.hip") + header + Words({2, 0, 1}) +  //
                           Words({1}) + Floats({0.75f, 0, 0, 0}) +                       //
                           Words({1, 1, 2}) + Floats({1, 0, 0, 0}) +                     //
                           Text("b.toe") + Text("b.Knee") + header + Words({1, 0, 0});
  EXPECT_EQ(BytesOf([&](std::ostream& out) { WriteInfluences(out, mesh.influences); }),
            Chunk("INFL", 100, infl));
}

TEST(IndexedMeshWriter, BoneTwiceInOneChunkGivesTwoMatches) {
  ExIndexedMesh mesh;
  GenericMeshInfluence& influence = AddChunkInfluence(mesh);
  AddInfluence(influence, "b.arm", {}, "first");
  AddInfluence(influence, "B.ARM", {{1, 1, {}}}, "second");
  EXPECT_EQ(BytesOf([&](std::ostream& out) { WriteInfluences(out, mesh.influences); }),
            Chunk("INFL", 100,
                  LittleEndian(1) + Text("b.arm") + Text("first") +
                      Floats({1, 2, 3, 1, 0, 0, 0, 1, 0, 0, 0, 1}) + Words({2, 0, 0}) +
                      Words({0, 1, 1}) + Floats({1, 0, 0, 0})));
}

TEST(IndexedMeshWriter, AttachmentPoints) {
  ExIndexedMesh mesh = SkinnedMesh();
  EXPECT_EQ(
      BytesOf([&](std::ostream& out) { WriteAttachments(out, mesh.attachmentPoints); }),
      Chunk("ATCH", 100,
            LittleEndian(2) + Text("muzzle") + Floats({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}) +
                Text("hatch") + std::string(48, '\0')));
}

TEST(IndexedMeshWriter, BoundMeshHasItsSkeletonAndNoInfluences) {
  ExIndexedMesh mesh = SkinnedMesh();
  ExGenericSkeleton skeleton;
  skeleton.m_root = Bone("b.root", {1, 2, 3}, {0, 0, 0, 1});
  skeleton.m_root->m_children.push_back(Bone("b.arm", {4, 6, 8}, {0, 1, 0, 0}));
  mesh.skeleton = &skeleton;
  mesh.chunks[0].material.attachmentBone = skeleton.m_root.get();
  const std::string arm =
      Chunk("BONE", 100, Text("b.arm") + Floats({3, 4, 5, 0, 1, 0, 0}) + LittleEndian(0));
  const std::string root =
      Chunk("BONE", 100, Text("b.root") + Floats({1, 2, 3, 0, 0, 0, 1}) + LittleEndian(1) + arm);
  const std::string bytes = Written(mesh).bytes;
  EXPECT_NE(bytes.find(Chunk("SKEL", 100, root) + "ATCH"), std::string::npos);
  EXPECT_EQ(bytes.find("INFL"), std::string::npos);
  EXPECT_EQ(ReadBack(mesh).chunks[0].boneName, "b.root");
}

// World = stored x parent's world holds for rotations about different axes, which do not commute.
TEST(IndexedMeshWriter, StoredBoneTimesParentIsTheWorldAgain) {
  constexpr float kHalf = 0.70710678f;
  const Quaternion aboutX{-kHalf, 0, 0, kHalf}, aboutZ{0, 0, -kHalf, kHalf};  // +90 degrees
  ExGenericSkeleton skeleton;
  skeleton.m_root = Bone("b.root", {1, 2, 3}, aboutX);
  skeleton.m_root->m_children.push_back(Bone("b.tip", {4, 6, 8}, aboutZ));
  ExIndexedMesh mesh;
  mesh.skeleton = &skeleton;
  const BonePose stored = ReadBack(mesh).bonePoses.at(1);
  // About x, (x, y, z) becomes (x, -z, y).
  EXPECT_LT(Length(stored.position - Vec3{3, 5, -4}), 1e-5);
  const Matrix33 rows = RotationRows(stored.rotation);
  const Matrix33 world{Vec3{0, 1, 0}, Vec3{-1, 0, 0}, Vec3{0, 0, 1}};  // +90 about z
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_LT(Length(Vec3{rows[i].x, -rows[i].z, rows[i].y} - world[i]), 1e-6) << i;
  }
}

class IndexedMeshFileOutput : public testing::Test {
 protected:
  bool Write(const std::string& fileName, std::vector<MaterialMap> maps = {}) {
    ExIndexedMesh mesh;
    mesh.chunks.push_back(TriangleChunk());
    mesh.chunks[0].material.maps = std::move(maps);
    bool ask = false, force = false;
    return WriteIndexedMeshFile(
        mesh, fileName, {.optimise = false, .askOverwrite = ask, .forceOverwrite = force}, ui);
  }
  TemporaryFolder folder;
  RecordingUserInterface ui;
};

TEST_F(IndexedMeshFileOutput, StandsWithItsSideFilesInOneFolder) {
  WriteContent(folder.File("a.im"), "old");
  ASSERT_TRUE(Write(folder.File("a.im"), {{.channel = kBump, .fileName = "stone.tga"}}));
  EXPECT_NE(ContentOf(folder.File("a.im")).find(Text(folder.File("stone.texture"))),
            std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(folder.File("stone.texture.txt")));
  EXPECT_EQ(folder.Count(), 2u);
}

TEST_F(IndexedMeshFileOutput, FailureIsToldWithCodeAndReason) {
  const std::string path = folder.File("missing/a.im");
  EXPECT_FALSE(Write(path));
  EXPECT_EQ(ui.log, (std::vector<std::string>{
                        "error: Geometry Exporter reported error code '16'",
                        "info: Could not write " + path + ": " + platform::WhyNotWritable(path)}));
  EXPECT_EQ(folder.Count(), 0u);
}

TEST_F(IndexedMeshFileOutput, FullDeviceIsTold) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no full device here";
  EXPECT_FALSE(Write("/dev/full"));
  EXPECT_EQ(ui.log.back(), "info: Could not write /dev/full: No space left on device");
}

}  // namespace
}  // namespace orv
