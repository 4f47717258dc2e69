#include "formats/IndexedMeshFile.h"

#include <gtest/gtest.h>

#include "SampleMeshes.h"
#include "TemporaryFolder.h"
#include "platform/Platform.h"

namespace orv {
namespace {

using Strings = std::vector<std::string>;

// A skinned mesh. A value that a field could be mistaken for stands nowhere else.
const std::string kSkin = R"(
QIRF { IDXM
  INFO { 104
    1.0 2.0 3.0   4.0 5.0 6.0   7     # passed through
    2                                 # mesh chunks
    3 4                               # most bones of a vertex, of a mesh chunk
    -1.0 0.0 -2.5   3.0 1.0 0.5       # box
  }
  CHNK { 100
    0                                 # number
    MATL { 103
      "skin.m.onetex"
      2 "sound" "metal" "key" "value" # properties
      5 0.25                          # two-sided, opacity
      0.1 0.2 0.3   0.4 0.5 0.6       # ambient, diffuse
      0.7 0.8 0.9   1.1 1.2 1.3       # specular, emissive
      25.0                            # shininess
      2                               # maps
      0 "dirt.texture" 0.5
      8 "dents.texture" 0.75
    }
    GEOM { 201
      9 0 1.5                         # passed through, no tangents, area
      3 1   3 1                       # vertices, triangles; indices, triangles again
      3                               # most bones of a vertex
      ""                              # bound to no bone
      -1.0 0.0 0.5   0.1 0.2
      3.0 0.0 -2.5   0.3 0.4
      0.0 1.0 0.0    0.5 0.6
      2s 0s 1s
      1.0 0.0 0.0   0.0 1.0 0.0   0.0 0.0 1.0   # vertex normals
      0.6 0.0 0.8                               # face normal
    }
  }
  CHNK { 100
    1
    MATL { 103
      "hide.m.gloss.tbump"
      0   0 1.0   1.0 1.0 1.0   1.0 1.0 1.0   1.0 1.0 1.0   0.0 0.0 0.0   0.25   0
    }
    GEOM { 201
      4 1 0.5                         # tangents follow
      3 1   3 1   1   ""
      0.0 0.0 0.0   0.0 1.0
      1.0 0.0 0.0   1.0 1.0
      0.0 1.0 0.0   0.0 0.0
      0s 1s 2s
      0.0 0.0 1.0   0.0 0.0 1.0   0.0 0.0 1.0
      0.0 0.0 1.0
      1.0 0.0 0.0   1.0 0.0 0.0   1.0 0.0 0.0   # tangents
    }
  }
  INFL { 100
    5                                 # bones
    "b.hip" ""                        # name, parent
    1.0 2.0 3.0                       # position
    0.1 0.2 0.3   0.4 0.5 0.6   0.7 0.8 0.9
    2                                 # entries: mesh chunk, vertices with weight and offset
      0 3   0 1.0 -1.0 -2.0 -3.0   1 0.25 0.0 0.0 0.0   2 0.0 0.0 0.0 0.0
      0 1   0 0.5 0.0 0.0 0.0
    "b.Knee" "b.hip"
    0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
    2
      0 1   1 0.75 0.0 0.0 0.0
      1 1   2 1.0 0.0 0.0 0.0
    "b.toe" "b.Knee"
    0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
    1
      0 0
    "b.twice" ""
    0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
    1
      0 2   1 0.5 0.0 0.0 0.0   1 0.5 0.0 0.0 0.0
    "b.idle" ""
    0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
    1
      0 1   1 0.0 0.0 0.0 0.0
  }
  ATCH { 100
    2
    "muzzle" 0.1 0.2 0.3   0.4 0.5 0.6   0.7 0.8 0.9   10.0 11.0 12.0
    "hatch"  0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
  }
})";

ExIndexedMesh Skin() {
  const Matrix33 matrix{Vec3{0.1f, 0.2f, 0.3f}, Vec3{0.4f, 0.5f, 0.6f}, Vec3{0.7f, 0.8f, 0.9f}};
  ExIndexedMesh mesh;
  mesh.vector = {1, 2, 3};
  mesh.direction = {4, 5, 6};
  mesh.word = 7;
  IndexedMesh::Chunk& chunk = mesh.chunks.emplace_back();
  chunk.material.name = "Skin.m.OneTex";
  chunk.material.properties = {{"sound", "metal"}, {"key", "value"}};
  chunk.material.twoSided = 5;
  chunk.material.opacity = 0.25f;
  chunk.material.ambient = matrix[0];
  chunk.material.diffuse = matrix[1];
  chunk.material.specular = matrix[2];
  chunk.material.emissive = {1.1f, 1.2f, 1.3f};
  chunk.material.shininess = 25;
  chunk.material.maps = {{.channel = kAmbient, .fileName = "dirt.texture", .amount = 0.5f},
                         {.channel = kBump, .fileName = "dents.texture", .amount = 0.75f}};
  chunk.word = 9;
  chunk.surfaceArea = 1.5f;
  chunk.vertices = {{-1, 0, 0.5f, 0.1f, 0.2f}, {3, 0, -2.5f, 0.3f, 0.4f}, {0, 1, 0, 0.5f, 0.6f}};
  chunk.triangles = {{2, 0, 1}};
  chunk.normals = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  chunk.tangents = {{9, 9, 9}, {9, 9, 9}, {9, 9, 9}};  // left out: the material has no use for it
  chunk.faceNormals = {{0.6f, 0, 0.8f}, {9, 9, 9}};    // of a triangle that was dropped
  mesh.chunks.push_back(TriangleChunk("hide.m.gloss.tbump"));
  const auto add = [](GenericMeshInfluence& influence, const char* name, const char* parentName,
                      std::vector<VertexWeight> weights) -> GenericBoneInfluence& {
    influence.AddBone(std::make_unique<GenericBoneInfluence>(name, parentName, Vec3(), Matrix33()));
    influence.m_bones.back()->m_weights = std::move(weights);
    return *influence.m_bones.back();
  };
  GenericMeshInfluence& first = AddChunkInfluence(mesh);
  GenericBoneInfluence& hip =
      add(first, "b.hip", "", {{0, 1, {-1, -2, -3}}, {1, 0.25f, {}}, {2, 0, {}}});
  hip.m_position = {1, 2, 3};
  hip.m_rotation = matrix;
  add(first, "b.Knee", "b.hip", {{1, 0.75f, {}}});
  add(first, "b.toe", "b.Knee", {});
  add(first, "b.twice", "", {{1, 0.5f, {}}, {1, 0.5f, {}}});
  add(first, "b.idle", "", {{1, 0, {}}});
  add(first, "B.HIP", "not this", {{0, 0.5f, {}}});
  add(AddChunkInfluence(mesh), "b.knee", "", {{2, 1, {}}});
  mesh.attachmentPoints = {{matrix, {10, 11, 12}, "muzzle"}, {{}, {}, "hatch"}};
  return mesh;
}

// A model bound to bones.
const std::string kRigid = R"(
QIRF { IDXM
  INFO { 104
    0.0 0.0 0.0   1.0 0.0 0.0   0
    1 # mesh chunks
    0 0
    0.0 0.0 0.0   1.0 1.0 0.0
  }
  CHNK { 100
    0
    MATL { 103
      "steel.m.notex"
      0 # properties
      0 1.0   1.0 1.0 1.0   1.0 1.0 1.0   1.0 1.0 1.0   0.0 0.0 0.0   0.25
      0 # maps
    }
    GEOM { 201
      4 0 0.5   3 1 3 1   0   "b.arm" # head
      0.0 0.0 0.0 0.0 1.0   1.0 0.0 0.0 1.0 1.0   0.0 1.0 0.0 0.0 0.0
      0s 1s 2s
      0.0 0.0 1.0   0.0 0.0 1.0   0.0 0.0 1.0
      0.0 0.0 1.0 # last
    }
  }
  SKEL { 100
    BONE { 100   "b.root"
      1.0 2.0 3.0   0.5 0.5 0.5 0.5
      1
      BONE { 100   "b.arm"
        5.0 3.0 4.0   0.5 -0.5 -0.5 0.5 # relative to the root
        0 # children
      }
    }
  }
} # end)";

struct SampledSkeleton : ExGenericSkeleton {
  void SetFrame(int frame) override { this->frame = frame; }
  int frame = -1;
};

IndexedMeshFile Read(const std::string& listing) {
  IndexedMeshFile file;
  ReadProblem problem;
  EXPECT_TRUE(ReadIndexedMesh(FileOf(listing), file, problem)) << problem.Message();
  return file;
}

std::string RefusalOf(const std::string& bytes) {
  IndexedMeshFile file;
  ReadProblem problem;
  return ReadIndexedMesh(bytes, file, problem) ? "accepted" : problem.Message();
}

Strings RemarksOf(const std::string& listing) {
  Strings messages;
  for (const ReadProblem& remark : Read(listing).remarks) messages.push_back(remark.Message());
  return messages;
}

TEST(IndexedMeshFile, SkinIsWrittenAndReadAsListed) {
  ExIndexedMesh mesh = Skin();
  const WrittenMesh written = Written(mesh);
  EXPECT_EQ(written.bytes, FileOf(kSkin));
  EXPECT_EQ(written.progress, (std::vector<float>{0, 0.5f}));
  EXPECT_EQ(written.log, Strings());

  IndexedMeshFile file = Read(kSkin);
  EXPECT_EQ(file.maxInfluencesPerVertex, 3u);
  EXPECT_EQ(file.maxBonesPerChunk, 4u);
  EXPECT_EQ(file.boundingBox, (BoundingBox{{-1, 0, -2.5f}, {3, 1, 0.5f}}));
  EXPECT_EQ(file.vertexCount, 6u);
  EXPECT_EQ(file.triangleCount, 2u);
  EXPECT_EQ(file.chunks[1].index, 1u);
  EXPECT_EQ(file.chunks[0].indexCount, 3u);
  EXPECT_EQ(file.chunks[0].triangleCountAgain, 1u);
  EXPECT_EQ(file.chunks[0].maxInfluencesPerVertex, 3u);
  EXPECT_EQ(file.chunks[0].fileSize, written.bytes.rfind("CHNK") - written.bytes.find("CHNK"));
  EXPECT_EQ(file.mesh.chunks[1].tangents, (std::vector<Vec3>(3, {1, 0, 0})));
  EXPECT_TRUE(file.remarks.empty());
  ExIndexedMesh again;
  static_cast<IndexedMesh&>(again) = std::move(file.mesh);
  EXPECT_EQ(Written(again).bytes, FileOf(kSkin));
}

// With the matrices of the two quaternions, which do not commute: the stored bone is the world's
// times the inverse of its parent's.
TEST(IndexedMeshFile, RigidModelIsWrittenAndReadAsListed) {
  SampledSkeleton skeleton;
  skeleton.m_root = Bone("b.root", {1, 2, 3}, {0.5f, 0.5f, 0.5f, 0.5f});
  skeleton.m_root->m_children.push_back(Bone("b.arm", {4, 6, 8}, {0.5f, -0.5f, 0.5f, 0.5f}));
  ExIndexedMesh mesh = Skin();
  mesh.attachmentPoints.clear();
  mesh.vector = {};
  mesh.direction = {1, 0, 0};
  mesh.word = 0;
  mesh.chunks = {TriangleChunk("steel.m.notex")};
  mesh.influences.clear();
  mesh.chunks[0].material.attachmentBone = skeleton.m_root->m_children[0].get();
  mesh.skeleton = &skeleton;
  EXPECT_EQ(Written(mesh).bytes, FileOf(kRigid));
  EXPECT_EQ(skeleton.frame, 0);
  AddInfluence(AddChunkInfluence(mesh), "b.hip", {});
  EXPECT_EQ(Written(mesh).bytes, FileOf(kRigid)) << "either the skeleton or the influences";

  const IndexedMeshFile file = Read(kRigid);
  EXPECT_EQ(file.chunks[0].boneName, "b.arm");
  EXPECT_EQ(file.bones[1].name, "b.arm");
  EXPECT_EQ(file.bones[1].parent, 0);
  EXPECT_EQ(file.bonePoses[1].position, (Vec3{5, 3, 4}));
  EXPECT_EQ(file.bonePoses[1].rotation.y, -0.5f);
}

TEST(IndexedMeshFile, WithoutVertices) {
  ExIndexedMesh mesh;
  mesh.m_useDefaultColors = true;
  mesh.chunks.emplace_back().material.name = "m.notex.tbump";
  EXPECT_EQ(Written(mesh).bytes, FileOf(R"(
QIRF { IDXM
  INFO { 104
    0.0 0.0 0.0   1.0 0.0 0.0   0   1   0 0
    3.4028235e38  3.4028235e38  3.4028235e38 -3.4028235e38 -3.4028235e38 -3.4028235e38
  }
  CHNK { 100   0
    MATL { 103   "m.notex.tbump"   0   0 1.0
      1.0 1.0 1.0   1.0 1.0 1.0   0.0 0.0 0.0   0.0 0.0 0.0   32.0   # the default colours
      0
    }
    GEOM { 201   4 1 0.0   0 0 0 0   0   "" }   # tangents for none
  }
})"));
}

TEST(IndexedMeshWriter, TwoOpacityMapsCountOneTooHigh) {
  const auto maps = [](std::vector<MaterialMap> of) {
    ExIndexedMesh mesh;
    mesh.chunks.push_back(TriangleChunk());
    mesh.chunks[0].material.maps = std::move(of);
    return Written(mesh).bytes;
  };
  const MaterialMap opacity{.channel = kOpacity, .fileName = "a.texture"};
  const MaterialMap bump{.channel = kBump, .fileName = "b.texture"};
  const std::string one = FileOf("8 \"b.texture\" 0.0 GEOM");
  EXPECT_NE(maps({opacity, bump}).find(LittleEndian(1) + one), std::string::npos);
  EXPECT_NE(maps({opacity, bump, opacity}).find(LittleEndian(2) + one), std::string::npos);
}

TEST(IndexedMeshWriter, Neighbours) {
  IndexedMesh::Chunk chunk = TriangleChunk();
  chunk.neighbours = {{1, 0x00020003, IndexedMesh::kNoNeighbour}, {7, 7, 7}};
  EXPECT_EQ(BytesOf([&](std::ostream& out) { WriteNeighbours(out, chunk); }),
            FileOf("NINF { 100   1 0x00020003 0xFFFFFFFF }"));
}

TEST(IndexedMeshReader, OlderLayouts) {
  const std::string info = kRigid.substr(kRigid.find("INFO"), kRigid.find("CHNK") - 8);
  const std::string upToCount = "0.0 0.0 0.0   1.0 0.0 0.0   0   1 ";
  const std::string bones = " 2 3", box = " 0.0 0.0 0.0   1.0 1.0 0.0";
  const std::pair<int, std::string> infos[] = {
      {100, ""}, {101, ""}, {102, bones}, {103, bones + " 1 2 3 4 5"}, {104, bones + box}};
  for (const auto& [version, rest] : infos) {
    const IndexedMeshFile file =
        Read(kRigid.substr(0, kRigid.find("INFO")) + "INFO { " + std::to_string(version) + " " +
             upToCount + rest + " }\n" + kRigid.substr(kRigid.find("CHNK")));
    EXPECT_EQ(file.maxInfluencesPerVertex.value_or(0), version >= 102 ? 2u : 0u) << version;
    EXPECT_EQ(file.maxBonesPerChunk.value_or(0), version >= 102 ? 3u : 0u) << version;
    EXPECT_EQ(file.boundingBox.has_value(), version == 104) << version;
    EXPECT_TRUE(file.remarks.empty()) << version;
  }
  const std::string head = "GEOM { 201\n      4 0 0.5   3 1 3 1   0   \"b.arm\"";
  const std::pair<int, const char*> geometries[] = {{100, "0.5 3 1"},
                                                    {101, "4 0.5 3 1 3 1"},
                                                    {102, "4 0.5 3 1 3 1 2"},
                                                    {199, "4 0.5 3 1 3 1 2"},
                                                    {200, "4 0.5 3 1 3 1 2 \"b.arm\""}};
  for (const auto& [version, layout] : geometries) {
    const IndexedMeshFile file =
        Read(Edited(kRigid, head, "GEOM { " + std::to_string(version) + " " + layout));
    EXPECT_EQ(file.chunks[0].geometryVersion, static_cast<uint32_t>(version));
    EXPECT_EQ(file.mesh.chunks[0].surfaceArea, 0.5f) << version;
    EXPECT_EQ(file.mesh.chunks[0].faceNormals.at(0), (Vec3{0, 0, 1})) << version;
    EXPECT_EQ(file.chunks[0].indexCount, 3u) << version;
    EXPECT_EQ(file.chunks[0].triangleCountAgain, 1u) << version;
    EXPECT_EQ(file.chunks[0].maxInfluencesPerVertex, version >= 102 ? 2u : 0u) << version;
    EXPECT_EQ(file.chunks[0].boneName, version >= 200 ? "b.arm" : "") << version;
    EXPECT_TRUE(file.remarks.empty()) << version;
  }
  EXPECT_EQ(RemarksOf(Edited(kRigid, "MATL { 103", "MATL { 101")), Strings());
  const IndexedMeshFile file =
      Read(Edited(kRigid, "# last\n    }", "\n    } NINF { 100   1 0x00020003 0xFFFFFFFF }"));
  EXPECT_EQ(file.mesh.chunks[0].neighbours.at(0),
            (std::array<uint32_t, 3>{1, 0x00020003, IndexedMesh::kNoNeighbour}));
}

TEST(IndexedMeshReader, Remarks) {
  const struct {
    const char *from, *to;
    Strings remarks;  // each at the "@"
  } cases[] = {
      {"SKEL { 100", "@ ELSE { 100", {"QIRF: 124 bytes are left over"}},
      {"SKEL { 100",
       "SKEL { @ 101",
       {"QIRF/SKEL: version 101 is unknown", "QIRF: 116 bytes are left over"}},
      {"0 # maps",
       "2   1 \"x.texture\" 1.0 @",
       {"QIRF/CHNK 0/MATL: map count 2, but one less follows"}},
      {"0 # children",
       "0 @ 9",
       {"QIRF/SKEL/BONE (depth 2): 4 bytes are left over", "QIRF/SKEL/BONE: 4 bytes are left over",
        "QIRF/SKEL: 4 bytes are left over", "QIRF: 4 bytes are left over"}},
      {"# end", "@ 9", {"4 bytes follow the last chunk"}},
  };
  for (const auto& [from, to, remarks] : cases) {
    const std::string listing = Edited(kRigid, from, to);
    Strings expected = remarks;
    for (std::string& remark : expected) remark += PlaceIn(listing);
    EXPECT_EQ(RemarksOf(listing), expected) << to;
  }
  std::string deep = "0 9", closing;
  for (int i = 0; i < 100; ++i) deep = "1 BONE { 100 \"b\" 0 0 0 0 0 0 0 " + deep + " }";
  EXPECT_EQ(RemarksOf(Edited(kRigid, "0 # children", deep)).size(), 64u) << "the first ones";
}

TEST(IndexedMeshReader, RefusalsSayWhatAndWhere) {
  const std::string bone = "INFL { 100   1 \"b\" \"\"   0 0 0   0 0 0   0 0 0   0 0 0   ";
  std::string many;
  for (int i = 0; i < 257; ++i) many += " 0 0";
  const struct {
    std::string from, to, message;  // with the place, or the "@"
  } cases[] = {
      {"QIRF", "@ GLTF", "found \"GLTF\" where \"QIRF\" is due"},
      {"IDXM", "@ ANIM", "QIRF: found \"ANIM\" where \"IDXM\" is due"},
      {"IDXM", "@ 0x4A325B1B", "QIRF: found \"?[2J\" where \"IDXM\" is due"},
      {"INFO { 104", "INFO @ 0x7FFFFFFF { 104",
       "QIRF: INFO is 2147483647 bytes long, 482 are left"},
      {"INFO { 104", "INFO { @ 105", "QIRF/INFO: version 105 is unknown"},
      {"INFO { 104", "INFO { @ 99", "QIRF/INFO: version 99 is unknown"},
      {"MATL { 103", "MATL { @ 100", "QIRF/CHNK 0/MATL: version 100 is unknown"},
      {"MATL { 103", "MATL { @ 104", "QIRF/CHNK 0/MATL: version 104 is unknown"},
      {"GEOM { 201", "GEOM { @ 202", "QIRF/CHNK 0/GEOM: version 202 is unknown"},
      {"1 # mesh chunks", "0x7FFFFFFF",
       "QIRF: chunk count 2147483647 exceeds the file (at byte 88)"},
      {"0 # properties", "@ 99", "QIRF/CHNK 0/MATL: property count 99 exceeds the chunk"},
      {"0 # properties", "@ 257" + many, "QIRF/CHNK 0/MATL: property count 257 is beyond 256"},
      {"0 # maps", "@ 257" + many, "QIRF/CHNK 0/MATL: map count 257 exceeds the chunk"},
      {"0 # maps", "@ 2", "QIRF/CHNK 0/MATL: map count 2 exceeds the chunk"},
      {"3 1 3 1", "@ -1 1 3 1", "QIRF/CHNK 0/GEOM: vertex count 4294967295 exceeds the chunk"},
      {"3 1 3 1", "3 @ 9 3 1", "QIRF/CHNK 0/GEOM: triangle count 9 exceeds the chunk"},
      {"0s 1s 2s", "@ 0s 1s 3s", "QIRF/CHNK 0/GEOM: triangle 0 names vertex 3 of 3"},
      {"4 0 0.5", "4 1 0.5", "QIRF/CHNK 0/GEOM: tangent count 3 exceeds the chunk (at byte 374)"},
      {"0 # children", "@ 7", "QIRF/SKEL/BONE (depth 2): child count 7 exceeds the chunk"},
      {"BONE { 100   \"b.root\"", "BONE { @ 101", "QIRF/SKEL/BONE: version 101 is unknown"},
      {"SKEL {", "ATCH { 100 @ 2 } SKEL {",
       "QIRF/ATCH: attachment point count 2 exceeds the chunk"},
      {"SKEL {", "INFL { 100 @ 9 } SKEL {", "QIRF/INFL: bone count 9 exceeds the chunk"},
      {"SKEL {", bone + "@ 9 } SKEL {", "QIRF/INFL: chunk count 9 exceeds the chunk"},
      {"SKEL {", bone + "1   1 @ 0 } SKEL {", "QIRF/INFL: bone \"b\" names chunk 1 of 1"},
      {"SKEL {", bone + "1   0 @ 5 } SKEL {", "QIRF/INFL: weight count 5 exceeds the chunk"},
      {"SKEL {", "INFL { 100 1 \"" + std::string(256, 'n') + "\" @ } SKEL {",
       "QIRF/INFL: a bone name of 256 characters is beyond 255"},
  };
  for (const auto& [from, to, message] : cases) {
    const std::string listing = Edited(kRigid, from, to);
    EXPECT_EQ(RefusalOf(FileOf(listing)), message + PlaceIn(listing)) << to;
  }
}

// Cut off with a root length that says so, a file lacks parts that must be there.
TEST(IndexedMeshReader, EveryPrefixIsRefusedUnlessItsEndIsOptional) {
  const std::string bytes = FileOf(kSkin);
  const size_t optionalStart = bytes.find("INFL");
  for (size_t size = 0; size < bytes.size(); ++size) {
    std::string prefix = bytes.substr(0, size);
    EXPECT_TRUE(RefusalOf(prefix).ends_with(")")) << size;
    if (size < 12) continue;
    prefix.replace(4, 4, LittleEndian(static_cast<uint32_t>(size - 8)));
    const std::string message = RefusalOf(prefix);
    EXPECT_TRUE(message.starts_with("QIRF") || (message == "accepted" && size >= optionalStart))
        << message;
  }
}

class IndexedMeshFileOutput : public testing::Test {
 protected:
  bool Write(const std::string& fileName) {
    ExIndexedMesh mesh;
    mesh.chunks.push_back(TriangleChunk());
    mesh.chunks[0].material.maps = {{.channel = kBump, .fileName = "stone.tga"}};
    bool ask = false, force = false;
    return WriteIndexedMeshFile(mesh, fileName, false, ask, force, ui);
  }
  TemporaryFolder folder;
  RecordingUserInterface ui;
};

TEST_F(IndexedMeshFileOutput, StandsWithItsSideFilesInOneFolder) {
  WriteContent(folder.File("a.im"), "old");
  ASSERT_TRUE(Write(folder.File("a.im")));
  IndexedMeshFile file;
  ReadProblem problem;
  ASSERT_TRUE(ReadIndexedMeshFile(folder.File("a.im"), file, problem)) << problem.Message();
  EXPECT_EQ(file.mesh.chunks.at(0).material.maps.at(0).fileName, folder.File("stone.texture"));
  EXPECT_TRUE(std::filesystem::exists(folder.File("stone.texture.txt")));
  EXPECT_EQ(folder.Count(), 2u);
}

TEST_F(IndexedMeshFileOutput, FailureIsToldWithCodeAndReason) {
  const std::string path = folder.File("missing/a.im");
  EXPECT_FALSE(Write(path));
  EXPECT_EQ(ui.log,
            (Strings{"error: Geometry Exporter reported error code '16'",
                     "info: Could not write " + path + ": " + platform::WhyNotWritable(path)}));
  EXPECT_EQ(folder.Count(), 0u);
}

}  // namespace
}  // namespace orv
