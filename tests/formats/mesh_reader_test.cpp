#include "formats/IndexedMeshReader.h"

#include <gtest/gtest.h>

#include <random>

#include "MeshFaults.h"
#include "SampleMeshes.h"

namespace orv {
namespace {

// The bytes of a good file, of which a case changes one part.
struct MeshParts {
  std::string info =
      Chunk("INFO", 104,
            Floats({1, 2, 3, 4, 5, 6}) + Words({7, 1, 2, 3}) + Floats({-1, -2, -3, 1, 2, 3}));
  std::string matl =
      Chunk("MATL", 103,
            Text("a.m.notex") + LittleEndian(0) + LittleEndian(1) +
                Floats({0.5f, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 32}) + LittleEndian(0));
  std::string arrays = Floats({0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1}) + Shorts({0, 1, 2}) +
                       Floats({0, 0, 1, 0, 0, 1, 0, 0, 1}) + Floats({0, 0, 1});
  std::string geom =
      Chunk("GEOM", 201,
            Words({4, 0}) + Floats({0.5f}) + Words({3, 1, 3, 1, 2}) + Text("b.arm") + arrays);
  std::string ninf;
  std::string chunkVersion = LittleEndian(100);
  std::string tail;

  std::string Bytes() const {
    const std::string body = chunkVersion + LittleEndian(0) + matl + geom + ninf;
    return Root("IDXM",
                info + "CHNK" + LittleEndian(static_cast<uint32_t>(body.size())) + body + tail);
  }
};

IndexedMeshFile Read(const std::string& bytes) {
  IndexedMeshFile file;
  ReadProblem problem;
  if (!ReadIndexedMesh(bytes, file, problem)) ADD_FAILURE() << problem.Message();
  return file;
}

// The message of a file that is refused.
std::string Refusal(const std::string& bytes) {
  IndexedMeshFile file;
  ReadProblem problem;
  return ReadIndexedMesh(bytes, file, problem) ? "accepted" : problem.Message();
}

std::vector<std::string> Remarks(const std::string& bytes) {
  std::vector<std::string> messages;
  for (const ReadProblem& remark : Read(bytes).remarks) messages.push_back(remark.Message());
  return messages;
}

// What holds for every mesh that was read; unlike in a mesh that was built, a weight can be off it.
void ExpectSafeToUse(const IndexedMeshFile& file) {
  ASSERT_EQ(file.chunks.size(), file.mesh.chunks.size());
  for (const IndexedMesh::Chunk& chunk : file.mesh.chunks) {
    EXPECT_EQ(ArrayFaultOf(chunk), "");
    EXPECT_EQ(chunk.faceNormals.size(), chunk.triangles.size());
    EXPECT_TRUE(chunk.neighbours.empty() || chunk.neighbours.size() == chunk.triangles.size());
  }
  EXPECT_TRUE(file.mesh.influences.empty() ||
              file.mesh.influences.size() == file.mesh.chunks.size());
  EXPECT_EQ(file.bonePoses.size(), file.bones.size());
  for (size_t i = 0; i < file.bones.size(); ++i) {
    EXPECT_LT(file.bones[i].parent, static_cast<int32_t>(i));
  }
}

// A file that was read and is written again has the same bytes: nothing is lost, nothing moved.
void ExpectSameBytesAgain(const std::string& bytes) {
  IndexedMeshFile file = Read(bytes);
  ExpectSafeToUse(file);
  std::vector<std::unique_ptr<ExGenericSkeleton::Node>> named;
  for (size_t i = 0; i < file.chunks.size(); ++i) {
    named.push_back(Bone(file.chunks[i].boneName));
    file.mesh.chunks[i].material.attachmentBone = named.back().get();
  }
  ExIndexedMesh again;
  static_cast<IndexedMesh&>(again) = std::move(file.mesh);
  EXPECT_EQ(Written(again).bytes, bytes);
}

TEST(IndexedMeshReader, SkinnedMeshComesBackAsItWasWritten) {
  ExIndexedMesh mesh = SkinnedMesh();
  mesh.chunks.pop_back();  // its tangents would be computed anew by the second write
  mesh.influences.pop_back();
  mesh.vector = {1, 2, 3};
  mesh.word = 9;
  const std::string bytes = Written(mesh).bytes;
  ExpectSameBytesAgain(bytes);
  const IndexedMeshFile file = Read(bytes);
  EXPECT_TRUE(file.remarks.empty());
  EXPECT_EQ(file.maxInfluencesPerVertex, 2u);
  EXPECT_EQ(file.maxBonesPerChunk, 2u);
  EXPECT_EQ(file.boundingBox, ComputeBoundingBox(file.mesh));
}

TEST(IndexedMeshReader, TangentsAndNeighboursAreRead) {
  MeshParts parts;
  parts.geom = Chunk("GEOM", 201,
                     Words({4, 1}) + Floats({0.5f}) + Words({3, 1, 3, 1, 2}) + Text("") +
                         parts.arrays + Floats({1, 0, 0, 0, 1, 0, 0, 0, 1}));
  parts.ninf = Chunk("NINF", 100, Words({1, 2, 0xFFFFFFFF}));
  const IndexedMeshFile file = Read(parts.Bytes());
  ExpectSafeToUse(file);
  EXPECT_EQ(file.mesh.chunks[0].tangents.at(1), (Vec3{0, 1, 0}));
  EXPECT_EQ(file.mesh.chunks[0].neighbours.at(0),
            (std::array<uint32_t, 3>{1, 2, IndexedMesh::kNoNeighbour}));
  EXPECT_TRUE(file.remarks.empty());
}

TEST(IndexedMeshReader, OlderHeaders) {
  const std::string head = Floats({1, 2, 3, 4, 5, 6}) + Words({7, 1});
  const std::string box = Floats({-1, -2, -3, 1, 2, 3});
  const std::tuple<uint32_t, std::string, bool, bool> cases[] = {
      {100, head, false, false},
      {101, head, false, false},
      {102, head + Words({2, 3}), true, false},
      {103, head + Words({2, 3}) + std::string(20, 'x'), true, false},
      {104, head + Words({2, 3}) + box, true, true}};
  for (const auto& [version, body, hasMaxima, hasBox] : cases) {
    MeshParts parts;
    parts.info = Chunk("INFO", version, body);
    const IndexedMeshFile file = Read(parts.Bytes());
    EXPECT_EQ(file.mesh.direction[2], 6) << version;
    EXPECT_EQ(file.maxBonesPerChunk, hasMaxima ? std::optional<uint32_t>(3) : std::nullopt);
    EXPECT_EQ(file.boundingBox.has_value(), hasBox) << version;
    EXPECT_TRUE(file.remarks.empty()) << version;
  }
}

TEST(IndexedMeshReader, OlderGeometry) {
  const std::string area = Floats({0.5f});
  const std::string name = Text("b.arm");
  const std::tuple<uint32_t, std::string, uint32_t, const char*> cases[] = {
      {100, area + Words({3, 1}), 0, ""},
      {101, Words({4}) + area + Words({3, 1, 3, 1}), 0, ""},
      {102, Words({4}) + area + Words({3, 1, 3, 1, 2}), 2, ""},
      {199, Words({4}) + area + Words({3, 1, 3, 1, 2}), 2, ""},
      {200, Words({4}) + area + Words({3, 1, 3, 1, 2}) + name, 2, "b.arm"},
      {201, Words({4, 0}) + area + Words({3, 1, 3, 1, 2}) + name, 2, "b.arm"}};
  for (const auto& [version, head, maxInfluences, boneName] : cases) {
    MeshParts parts;
    parts.geom = Chunk("GEOM", version, head + parts.arrays);
    const IndexedMeshFile file = Read(parts.Bytes());
    ExpectSafeToUse(file);
    EXPECT_EQ(file.mesh.chunks.at(0).triangles.at(0), (Triangle{0, 1, 2})) << version;
    EXPECT_EQ(file.mesh.chunks[0].faceNormals.at(0), (Vec3{0, 0, 1})) << version;
    EXPECT_EQ(file.chunks[0].indexCount, 3u) << version;
    EXPECT_EQ(file.chunks[0].maxInfluencesPerVertex, maxInfluences) << version;
    EXPECT_EQ(file.chunks[0].boneName, boneName) << version;
    EXPECT_TRUE(file.remarks.empty()) << version;
  }
}

TEST(IndexedMeshReader, UnknownVersionsAreRefused) {
  for (const uint32_t version : {99u, 105u}) {
    MeshParts parts;
    parts.info.replace(8, 4, LittleEndian(version));
    EXPECT_EQ(Refusal(parts.Bytes()),
              "QIRF/INFO: version " + std::to_string(version) + " is unknown (at byte 20)");
  }
}

// Of the chunks behind the geometry, one of an unknown tag or version counts as absent.
TEST(IndexedMeshReader, UnknownChunksAtTheEndAreRemarked) {
  const size_t end = MeshParts().Bytes().size();
  const auto at = [](size_t offset) { return " (at byte " + std::to_string(offset) + ")"; };
  MeshParts parts;
  parts.tail = Chunk("ELSE", 100);
  EXPECT_EQ(Remarks(parts.Bytes()),
            std::vector<std::string>{"QIRF: 12 bytes are left over" + at(end)});
  parts.tail = Chunk("ATCH", 101, LittleEndian(0));
  EXPECT_EQ(Remarks(parts.Bytes()),
            (std::vector<std::string>{"QIRF/ATCH: version 101 is unknown" + at(end + 8),
                                      "QIRF: 8 bytes are left over" + at(end + 8)}));
  parts.tail = Chunk("INFL", 99, LittleEndian(0)) + Chunk("ATCH", 100, LittleEndian(0));
  EXPECT_EQ(Read(parts.Bytes()).remarks.size(), 2u);
  parts.tail.clear();
  EXPECT_EQ(Remarks(parts.Bytes() + "more"),
            std::vector<std::string>{"4 bytes follow the last chunk" + at(end)});
}

TEST(IndexedMeshReader, MapCountOneTooHighIsRemarked) {
  const std::string start = Text("a.m.notex") + LittleEndian(0) + std::string(60, '\0');
  const std::string map = LittleEndian(1) + Text("x.texture") + Floats({1});
  MeshParts parts;
  parts.matl = Chunk("MATL", 103, start + LittleEndian(2) + map);
  const IndexedMeshFile file = Read(parts.Bytes());
  EXPECT_EQ(file.mesh.chunks[0].material.maps.size(), 1u);
  ASSERT_EQ(file.remarks.size(), 1u);
  EXPECT_EQ(file.remarks[0].text, "map count 2, but one less follows");
  parts.matl = Chunk("MATL", 103, start + LittleEndian(3) + map);
  EXPECT_NE(Refusal(parts.Bytes()).find("QIRF/CHNK 0/MATL: "), std::string::npos);
}

TEST(IndexedMeshReader, CountsBeyondTheFileAreRefusedWithTheirPlace) {
  const auto geometry = [](uint32_t vertices, uint32_t triangles) {
    MeshParts parts;
    parts.geom = Chunk("GEOM", 201,
                       Words({4, 0}) + Floats({0.5f}) + Words({vertices, triangles, 3, 1, 0}) +
                           Text("") + parts.arrays);
    return Refusal(parts.Bytes());
  };
  EXPECT_EQ(geometry(3, 4000000000u).substr(0, 65),
            "QIRF/CHNK 0/GEOM: triangle count 4000000000 exceeds the chunk (at");
  EXPECT_EQ(geometry(0xFFFFFFFF, 1).substr(0, 61),
            "QIRF/CHNK 0/GEOM: vertex count 4294967295 exceeds the chunk (");
  EXPECT_NE(geometry(4, 1).find("exceeds the chunk"), std::string::npos);

  MeshParts parts;
  parts.info.replace(12 + 28, 4, LittleEndian(0x7FFFFFFF));
  EXPECT_EQ(Refusal(parts.Bytes()).substr(0, 47),
            "QIRF: chunk count 2147483647 exceeds the file (");
  const std::string bone = Text("b") + Text("") + std::string(48, '\0');
  const std::pair<std::string, const char*> tails[] = {
      {Chunk("ATCH", 100, LittleEndian(2)), "QIRF/ATCH: attachment point count 2"},
      {Chunk("INFL", 100, LittleEndian(1u << 31)), "QIRF/INFL: bone count 2147483648"},
      {Chunk("INFL", 100, LittleEndian(1) + bone + LittleEndian(9)), "QIRF/INFL: chunk count 9"},
      {Chunk("INFL", 100, LittleEndian(1) + bone + Words({1, 0, 5})), "QIRF/INFL: weight count 5"},
      {Chunk("SKEL", 100, Chunk("BONE", 100, Text("b") + std::string(28, '\0') + Words({7}))),
       "QIRF/SKEL/BONE: child count 7"}};
  for (const auto& [tail, message] : tails) {
    MeshParts withTail;
    withTail.tail = tail;
    EXPECT_EQ(Refusal(withTail.Bytes()).find(message), 0u) << Refusal(withTail.Bytes());
  }
}

TEST(IndexedMeshReader, WhatIsNotThereIsRefused) {
  MeshParts parts;
  parts.geom.replace(parts.geom.find(parts.arrays) + 60 + 4, 2, Shorts({3}));
  EXPECT_NE(Refusal(parts.Bytes()).find("GEOM: triangle 0 names vertex 3 of 3"), std::string::npos);
  parts = {};
  parts.tail =
      Chunk("INFL", 100,
            LittleEndian(1) + Text("b.arm") + Text("") + std::string(48, '\0') + Words({1, 1, 0}));
  EXPECT_NE(Refusal(parts.Bytes()).find("INFL: bone \"b.arm\" names chunk 1 of 1"),
            std::string::npos);
}

TEST(IndexedMeshReader, OtherFilesAreRefused) {
  EXPECT_EQ(Refusal(""), "a tag of 4 bytes is cut off, 0 are left (at byte 0)");
  EXPECT_EQ(Refusal("glTF...."), "found \"glTF\" where \"QIRF\" is due (at byte 0)");
  EXPECT_EQ(Refusal(Root("ANIM", "")), "QIRF: found \"ANIM\" where \"IDXM\" is due (at byte 8)");
}

// A chain of bones as deep as a file can hold it must not exhaust the stack.
TEST(IndexedMeshReader, DeeplyNestedBones) {
  constexpr uint32_t kDepth = 100000;
  constexpr uint32_t kBoneSize = 48;
  std::string bones;
  for (uint32_t i = 0; i < kDepth; ++i) {
    bones += "BONE" + LittleEndian((kDepth - i) * kBoneSize - 8) + LittleEndian(100) +
             LittleEndian(0) + std::string(28, '\0') + LittleEndian(i + 1 < kDepth ? 1 : 0);
  }
  MeshParts parts;
  parts.tail = Chunk("SKEL", 100, bones);
  EXPECT_EQ(Read(parts.Bytes()).bones.size(), kDepth);
  parts.tail = Chunk("SKEL", 100, bones.replace(bones.size() - 4, 4, LittleEndian(1)));
  EXPECT_NE(Refusal(parts.Bytes()).find("QIRF/SKEL/BONE (depth 100000): child count 1"),
            std::string::npos);
}

// Cut off with a root length that says so, a file lacks parts that must be there.
TEST(IndexedMeshReader, EveryPrefixIsRefusedOrReadSafely) {
  ExIndexedMesh mesh = SkinnedMesh();
  const std::string bytes = Written(mesh).bytes;
  const size_t optionalStart = bytes.find("INFL");
  for (size_t size = 12; size < bytes.size(); ++size) {
    std::string prefix = bytes.substr(0, size);
    EXPECT_NE(Refusal(prefix).find(" (at byte "), std::string::npos) << size;
    prefix.replace(4, 4, LittleEndian(static_cast<uint32_t>(size - 8)));
    IndexedMeshFile file;
    ReadProblem problem;
    const bool accepted = ReadIndexedMesh(prefix, file, problem);
    if (accepted) ExpectSafeToUse(file);
    EXPECT_TRUE(!accepted || size >= optionalStart) << size;
    EXPECT_TRUE(accepted || (problem.path.starts_with("QIRF") && problem.offset <= size)) << size;
  }
}

TEST(IndexedMeshReader, DamagedFilesAreReadSafely) {
  ExIndexedMesh mesh = SkinnedMesh();
  const std::string bytes = Written(mesh).bytes;
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    std::string damaged = bytes;
    for (unsigned changes = 1 + random() % 3; changes > 0; --changes) {
      damaged[random() % damaged.size()] = static_cast<char>(random());
    }
    IndexedMeshFile file;
    ReadProblem problem;
    if (ReadIndexedMesh(damaged, file, problem)) ExpectSafeToUse(file);
  }
}

}  // namespace
}  // namespace orv
