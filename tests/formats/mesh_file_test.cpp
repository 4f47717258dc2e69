#include "formats/IndexedMeshFile.h"

#include <gtest/gtest.h>

#include "SampleMeshes.h"

namespace orv {
namespace {

using Strings = std::vector<std::string>;

// A value that a field could be mistaken for stands nowhere else.
const std::string kModel = R"(
QIRF { IDXM
  INFO { 104
    1.0 2.0 3.0   4.0 5.0 6.0   7     # passed through
    1 # mesh chunks
    0 0 # most bones of a vertex, of a mesh chunk
    -1.0 0.0 -2.5   3.0 1.0 0.5       # box
  }
  CHNK { 100
    0                                 # number
    MATL { 103
      "skin.m.onetex"
      2 # properties
      "sound" "metal"
      "key" "value"
      5 0.25                          # two-sided, opacity
      0.1 0.2 0.3   0.4 0.5 0.6       # ambient, diffuse
      0.7 0.8 0.9   1.1 1.2 1.3       # specular, emissive
      25.0                            # shininess
      2 # maps
      0 "dirt.texture" 0.5
      8 "dents.texture" 0.75
    }
    GEOM { 201
      9 0 1.5                         # passed through, no tangents, area
      3 1   3 1                       # vertices, triangles; indices, triangles again
      0 # most bones of a vertex
      "b.arm" # bound to it
      -1.0 0.0 0.5   0.1 0.2
      3.0 0.0 -2.5   0.3 0.4
      0.0 1.0 0.0    0.5 0.6
      2s 0s 1s
      1.0 0.0 0.0   0.0 1.0 0.0   0.0 0.0 1.0   # vertex normals
      0.6 0.0 0.8                               # face normal
    } # geometry
  } # model
} # end)";

// The arm is turned against the root, and the two turns do not commute: stored is the world's times
// the inverse of the root's.
const std::string kRigid = Edited(kModel, "# model", R"(
  SKEL { 100
    BONE { 100   "b.root"   1.0 2.0 3.0   0.5 0.5 0.5 0.5   1
      BONE { 100   "b.arm"  5.0 3.0 4.0   0.5 -0.5 -0.5 0.5   0 # children
      }
    } # bones end
  })");

const std::string kSkinTail = R"(
  CHNK { 100
    1
    MATL { 103
      "hide.m.gloss.tbump"
      0   0 1.0   1.0 1.0 1.0   1.0 1.0 1.0   1.0 1.0 1.0   0.0 0.0 0.0   0.25   0
    }
    GEOM { 201
      4 1 0.5                         # tangents follow
      3 1   3 1   1   ""
      0.0 0.0 0.0 0.0 1.0   1.0 0.0 0.0 1.0 1.0   0.0 1.0 0.0 0.0 0.0
      0s 1s 2s
      0.0 0.0 1.0   0.0 0.0 1.0   0.0 0.0 1.0   0.0 0.0 1.0
      1.0 0.0 0.0   1.0 0.0 0.0   1.0 0.0 0.0   # tangents
    }
  }
  INFL { 100
    4                                 # bones
    "b.hip" "Scene"                   # name, parent
    1.0 2.0 3.0                       # position
    0.1 0.2 0.3   0.4 0.5 0.6   0.7 0.8 0.9
    2                                 # entries: mesh chunk, vertices with weight and offset
      0 3   0 1.0 -1.0 -2.0 -3.0   1 0.25 0.0 0.0 0.0   2 0.0 0.0 0.0 0.0
      0 1   0 0.5 0.0 0.0 0.0
    "b.Knee" "b.hip"   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
    2
      0 2   1 0.75 0.0 0.0 0.0   9 1.0 0.0 0.0 0.0    # there is no vertex 9
      1 1   2 1.0 0.0 0.0 0.0
    "b.twice" ""   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
    1
      0 2   1 0.5 0.0 0.0 0.0   1 0.5 0.0 0.0 0.0
    "b.idle" ""    0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
    1
      0 1   1 0.0 0.0 0.0 0.0
  }
  ATCH { 100
    2
    "muzzle" 0.1 0.2 0.3   0.4 0.5 0.6   0.7 0.8 0.9   10.0 11.0 12.0
    "hatch"  0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0   0.0 0.0 0.0
  })";

std::string Skin() {
  std::string listing = Edited(kModel, "1 # mesh chunks", "2 # mesh chunks");
  listing = Edited(listing, "0 0 # most bones", "3 4 # most bones");
  listing = Edited(listing, "0 # most bones of a vertex\n", "3 # most bones of a vertex\n");
  return Edited(Edited(listing, "\"b.arm\"", "\"\""), "# model", kSkinTail);
}

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

// All of them, with the place of the last.
std::string RemarksOn(const std::string& bytes) {
  IndexedMeshFile file;
  ReadProblem problem;
  EXPECT_TRUE(ReadIndexedMesh(bytes, file, problem)) << problem.Message();
  std::string all;
  for (const ReadProblem& remark : file.remarks) {
    all = all.substr(0, all.rfind(" (at byte")) + (all.empty() ? "" : "; ") + remark.Message();
  }
  return all;
}

ExIndexedMesh MeshOf(const std::string& listing) {
  ExIndexedMesh mesh;
  static_cast<IndexedMesh&>(mesh) = std::move(Read(listing).mesh);
  return mesh;
}

TEST(IndexedMeshFile, WhatIsNotOfTheMeshIsReadToo) {
  const IndexedMeshFile file = Read(Skin());
  EXPECT_EQ(file.maxInfluencesPerVertex, 3u);
  EXPECT_EQ(file.maxBonesPerChunk, 4u);
  EXPECT_EQ(file.boundingBox, (BoundingBox{{-1, 0, -2.5f}, {3, 1, 0.5f}}));
  EXPECT_EQ(file.vertexCount, 6u);
  EXPECT_EQ(file.triangleCount, 2u);
  EXPECT_EQ(file.chunks[0].fileSize, FileOf(Skin()).rfind("CHNK") - FileOf(Skin()).find("CHNK"));
  EXPECT_EQ(file.chunks[0].maxInfluencesPerVertex, 3u);
  EXPECT_EQ(file.chunks[1].index, 1u);
  EXPECT_EQ(file.mesh.chunks[0].material.diffuse.y, 0.5f);
  EXPECT_EQ(file.mesh.chunks[1].tangents, (std::vector<Vec3>(3, {1, 0, 0})));
  EXPECT_TRUE(file.remarks.empty());

  const IndexedMeshFile rigid = Read(kRigid);
  EXPECT_EQ(rigid.chunks[0].boneName, "b.arm");
  EXPECT_EQ(rigid.bones[1].name, "b.arm");
  EXPECT_EQ(rigid.bones[1].parent, 0);
  EXPECT_EQ(rigid.bonePoses[1].position, (Vec3{5, 3, 4}));
  EXPECT_EQ(rigid.bonePoses[1].rotation.y, -0.5f);
  EXPECT_TRUE(rigid.remarks.empty());
}

// As it was read, with what a mesh holds beside what goes into the file; the case of a name tells
// no two bones apart.
TEST(IndexedMeshFile, SkinIsWrittenAsListed) {
  ExIndexedMesh mesh = MeshOf(Skin());
  IndexedMesh::Chunk& chunk = mesh.chunks[0];
  chunk.material.name = "Skin.m.OneTex";
  chunk.tangents.resize(3);                // its material has no use for them
  chunk.faceNormals.push_back({9, 9, 9});  // of a triangle that was dropped
  mesh.influences[0]->m_bones[1]->m_name = "B.HIP";
  mesh.influences[1]->m_bones[0]->m_name = "b.KNEE";
  const WrittenMesh written = Written(mesh);
  EXPECT_EQ(written.bytes, FileOf(Skin()));
  EXPECT_EQ(written.progress, (std::vector<float>{0, 0.5f}));
  EXPECT_EQ(written.log, Strings());
}

TEST(IndexedMeshFile, RigidModelIsWrittenAsListed) {
  struct : ExGenericSkeleton {
    void SetFrame(int number) override { frame = number; }
    int frame = -1;
  } skeleton;
  skeleton.m_root = Bone("b.root", {1, 2, 3}, {0.5f, 0.5f, 0.5f, 0.5f});
  skeleton.m_root->m_children.push_back(Bone("b.arm", {4, 6, 8}, {0.5f, -0.5f, 0.5f, 0.5f}));
  ExIndexedMesh mesh = MeshOf(kRigid);
  mesh.chunks[0].material.attachmentBone = skeleton.m_root->m_children[0].get();
  mesh.skeleton = &skeleton;
  AddInfluence(AddChunkInfluence(mesh), "b.hip", {});  // either the skeleton or the influences
  EXPECT_EQ(Written(mesh).bytes, FileOf(kRigid));
  EXPECT_EQ(skeleton.frame, 0);
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
      1.0 1.0 1.0   1.0 1.0 1.0   0.0 0.0 0.0   0.0 0.0 0.0   32.0   0 # the default colours
    }
    GEOM { 201   4 1 0.0   0 0 0 0   0   "" }   # tangents for none
  }
})"));
}

TEST(IndexedMeshWriter, TwoOpacityMapsCountOneTooHigh) {
  const MaterialMap opacity{.channel = kOpacity, .fileName = "a.texture"};
  const std::string map = FileOf("8 \"dents.texture\" 0.75 GEOM");
  ExIndexedMesh mesh = MeshOf(kModel);
  mesh.chunks[0].material.maps[0] = opacity;
  EXPECT_NE(Written(mesh).bytes.find(LittleEndian(1) + map), std::string::npos);
  mesh.chunks[0].material.maps.push_back(opacity);
  EXPECT_NE(Written(mesh).bytes.find(LittleEndian(2) + map), std::string::npos);
}

TEST(IndexedMeshWriter, Neighbours) {
  IndexedMesh::Chunk chunk = TriangleChunk();
  chunk.neighbours = {{1, 0x00020003, IndexedMesh::kNoNeighbour}, {7, 7, 7}};
  const std::string ninf = "NINF { 100   1 0x00020003 0xFFFFFFFF }";
  EXPECT_EQ(BytesOf([&](std::ostream& out) { WriteNeighbours(out, chunk); }), FileOf(ninf));
  chunk = Read(Edited(kModel, "# geometry", ninf)).mesh.chunks[0];
  EXPECT_EQ(chunk.neighbours.at(0), (std::array<uint32_t, 3>{1, 0x00020003, 0xFFFFFFFF}));
}

TEST(IndexedMeshReader, OlderLayouts) {
  const size_t info = kModel.find("INFO"), chunks = kModel.find("CHNK");
  const std::pair<int, const char*> infos[] = {
      {100, ""}, {101, ""}, {102, "2 3"}, {103, "2 3   1 2 3 4 5"}};
  for (const auto& [version, rest] : infos) {
    const IndexedMeshFile file =
        Read(kModel.substr(0, info) + "INFO { " + std::to_string(version) +
             " 1.0 2.0 3.0   4.0 5.0 6.0   7   1 " + rest + " }\n" + kModel.substr(chunks));
    EXPECT_EQ(file.maxInfluencesPerVertex.value_or(0), version >= 102 ? 2u : 0u) << version;
    EXPECT_EQ(file.maxBonesPerChunk.value_or(0), version >= 102 ? 3u : 0u) << version;
    EXPECT_TRUE(!file.boundingBox && file.remarks.empty()) << version;
  }
  const size_t geometry = kModel.find("GEOM"), arrays = kModel.find("-1.0 0.0 0.5");
  const std::pair<int, const char*> geometries[] = {{100, "1.5 3 1"},
                                                    {101, "9 1.5 3 1 3 1"},
                                                    {102, "9 1.5 3 1 3 1 2"},
                                                    {199, "9 1.5 3 1 3 1 2"},
                                                    {200, "9 1.5 3 1 3 1 2 \"b.arm\""}};
  for (const auto& [version, head] : geometries) {
    const IndexedMeshFile file =
        Read(kModel.substr(0, geometry) + "GEOM { " + std::to_string(version) + " " + head + "\n" +
             kModel.substr(arrays));
    EXPECT_EQ(file.chunks[0].geometryVersion, static_cast<uint32_t>(version));
    EXPECT_EQ(file.mesh.chunks[0].surfaceArea, 1.5f) << version;
    EXPECT_EQ(file.mesh.chunks[0].faceNormals.at(0).z, 0.8f) << version;
    EXPECT_EQ(file.chunks[0].indexCount, 3u) << version;
    EXPECT_EQ(file.chunks[0].triangleCountAgain, 1u) << version;
    EXPECT_EQ(file.chunks[0].maxInfluencesPerVertex, version >= 102 ? 2u : 0u) << version;
    EXPECT_EQ(file.chunks[0].boneName, version >= 200 ? "b.arm" : "") << version;
    EXPECT_TRUE(file.remarks.empty()) << version;
  }
}

TEST(IndexedMeshReader, Remarks) {
  ExpectRefusals(kRigid, R"(
SKEL { 100 => @ ELSE { 100 => QIRF: 124 bytes are left over
SKEL { 100 => SKEL { @ 101 => QIRF/SKEL: version 101 is unknown; QIRF: 116 bytes are left over
2 # maps => 3 # maps => QIRF/CHNK 0/MATL: map count 3, but one less follows (at byte 300)
# bones end => @ 9 => QIRF/SKEL: 4 bytes are left over; QIRF: 4 bytes are left over
# end => @ 9 => 4 bytes follow the last chunk)",
                 RemarksOn);
  std::string deep = "0 9";
  for (int i = 0; i < 100; ++i) deep = "1 BONE { 100 \"b\" 0 0 0 0 0 0 0 " + deep + " }";
  EXPECT_EQ(Read(Edited(kRigid, "0 # children", deep)).remarks.size(), 64u) << "the first ones";
}

TEST(IndexedMeshReader, RefusalsSayWhatAndWhere) {
  ExpectRefusals(kRigid, R"(
QIRF => @ GLTF => found "GLTF" where "QIRF" is due
IDXM => @ ANIM => QIRF: found "ANIM" where "IDXM" is due
IDXM => @ 0x4A325B1B => QIRF: found "?[2J" where "IDXM" is due
INFO { 104 => INFO @ 0x7FFFFFFF { 104 => QIRF: INFO is 2147483647 bytes long, 578 are left
INFO { 104 => INFO { @ 105 => QIRF/INFO: version 105 is unknown
INFO { 104 => INFO { @ 99 => QIRF/INFO: version 99 is unknown
MATL { 103 => MATL { @ 100 => QIRF/CHNK 0/MATL: version 100 is unknown
MATL { 103 => MATL { @ 104 => QIRF/CHNK 0/MATL: version 104 is unknown
GEOM { 201 => GEOM { @ 202 => QIRF/CHNK 0/GEOM: version 202 is unknown
1 # mesh chunks => 0x7FFFFFFF => QIRF: chunk count 2147483647 exceeds the file (at byte 88)
2 # properties => @ 99 => QIRF/CHNK 0/MATL: property count 99 exceeds the chunk
2 # maps => @ 257 => QIRF/CHNK 0/MATL: map count 257 exceeds the chunk
2 # maps => @ 6 => QIRF/CHNK 0/MATL: map count 6 exceeds the chunk
3 1   3 1 => @ -1 1 3 1 => QIRF/CHNK 0/GEOM: vertex count 4294967295 exceeds the chunk
3 1   3 1 => 3 @ 99 3 1 => QIRF/CHNK 0/GEOM: triangle count 99 exceeds the chunk
2s 0s 1s => @ 2s 3s 1s => QIRF/CHNK 0/GEOM: triangle 0 names vertex 3 of 3
9 0 1.5 => 9 1 1.5 => QIRF/CHNK 0/GEOM: tangent count 3 exceeds the chunk (at byte 470)
0 # children => @ 7 => QIRF/SKEL/BONE (depth 2): child count 7 exceeds the chunk
BONE { 100   "b.root" => BONE { @ 101 => QIRF/SKEL/BONE: version 101 is unknown
SKEL => ATCH { 100 @ 2 } SKEL => QIRF/ATCH: attachment point count 2 exceeds the chunk
SKEL => INFL { 100 @ 9 } SKEL => QIRF/INFL: bone count 9 exceeds the chunk)",
                 RefusalOf);
  const std::string bone = "INFL { 100   1 \"b\" \"\"   0 0 0   0 0 0   0 0 0   0 0 0   ";
  std::string many;
  for (int i = 0; i < 257; ++i) many += " 0 0";
  ExpectRefusals(
      kRigid,
      "\nSKEL => " + bone + "@ 9 } SKEL => QIRF/INFL: chunk count 9 exceeds the chunk\n" +
          "SKEL => " + bone + "1 1 @ 0 } SKEL => QIRF/INFL: bone \"b\" names chunk 1 of 1\n" +
          "SKEL => " + bone + "1 0 @ 5 } SKEL => QIRF/INFL: weight count 5 exceeds the chunk\n" +
          "SKEL => INFL { 100 1 \"" + std::string(256, 'n') +
          "\" @ } SKEL => QIRF/INFL: a bone name of 256 characters is beyond 255\n" +
          "2 # properties => @ 257" + many +
          " # => QIRF/CHNK 0/MATL: property count 257 is beyond 256",
      RefusalOf);
}

TEST(IndexedMeshReader, EveryPrefixIsRefusedUnlessItsEndIsOptional) {
  ExpectPrefixesRefused(FileOf(Skin()), FileOf(Skin()).find("INFL"), RefusalOf);
}

}  // namespace
}  // namespace orv
