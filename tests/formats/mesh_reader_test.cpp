#include "formats/IndexedMeshReader.h"

#include <gtest/gtest.h>

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

TEST(IndexedMeshReader, SkinnedMeshComesBackAsItWasWritten) {
  ExIndexedMesh mesh = SkinnedMesh();
  mesh.chunks.pop_back();  // its tangents would be computed anew by the second write
  mesh.influences.pop_back();
  mesh.vector = {1, 2, 3};
  mesh.word = 9;
  const std::string bytes = Written(mesh).bytes;
  IndexedMeshFile file = Read(bytes);
  EXPECT_TRUE(file.remarks.empty());
  EXPECT_EQ(file.maxInfluencesPerVertex, 2u);
  EXPECT_EQ(file.maxBonesPerChunk, 2u);
  EXPECT_EQ(file.boundingBox, ComputeBoundingBox(file.mesh));
  ExIndexedMesh again;
  static_cast<IndexedMesh&>(again) = std::move(file.mesh);
  EXPECT_EQ(Written(again).bytes, bytes);
}

TEST(IndexedMeshReader, TangentsAndNeighboursAreRead) {
  MeshParts parts;
  parts.geom = Chunk("GEOM", 201,
                     Words({4, 1}) + Floats({0.5f}) + Words({3, 1, 3, 1, 2}) + Text("") +
                         parts.arrays + Floats({1, 0, 0, 0, 1, 0, 0, 0, 1}));
  parts.ninf = Chunk("NINF", 100, Words({1, 2, 0xFFFFFFFF}));
  const IndexedMesh::Chunk chunk = Read(parts.Bytes()).mesh.chunks[0];
  EXPECT_EQ(chunk.tangents.at(1), (Vec3{0, 1, 0}));
  EXPECT_EQ(chunk.neighbours.at(0), (std::array<uint32_t, 3>{1, 2, IndexedMesh::kNoNeighbour}));
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

TEST(IndexedMeshReader, WhatIsNotThereIsRefusedWithItsPlace) {
  const MeshParts good;
  const auto geometry = [&](uint32_t vertices, uint32_t triangles, const std::string& arrays) {
    MeshParts parts;
    parts.geom = Chunk(
        "GEOM", 201,
        Words({4, 0}) + Floats({0.5f}) + Words({vertices, triangles, 3, 1, 0}) + Text("") + arrays);
    return parts.Bytes();
  };
  const auto withTail = [](const char* tag, const std::string& body) {
    MeshParts parts;
    parts.tail = Chunk(tag, 100, body);
    return parts.Bytes();
  };
  MeshParts manyChunks;
  manyChunks.info.replace(12 + 28, 4, LittleEndian(0x7FFFFFFF));
  std::string badTriangle = good.arrays;
  badTriangle.replace(60 + 4, 2, Shorts({3}));
  const std::string bone = LittleEndian(1) + Text("b") + Text("") + std::string(48, '\0');
  const std::pair<std::string, const char*> cases[] = {
      {"", "a tag of 4 bytes is cut off, 0 are left (at byte 0)"},
      {"glTF....", "found \"glTF\" where \"QIRF\" is due (at byte 0)"},
      {Root("ANIM", ""), "QIRF: found \"ANIM\" where \"IDXM\" is due (at byte 8)"},
      {manyChunks.Bytes(), "QIRF: chunk count 2147483647 exceeds the file"},
      {geometry(3, 4000000000u, good.arrays),
       "QIRF/CHNK 0/GEOM: triangle count 4000000000 exceeds the chunk"},
      {geometry(0xFFFFFFFF, 1, good.arrays),
       "QIRF/CHNK 0/GEOM: vertex count 4294967295 exceeds the chunk"},
      {geometry(4, 1, good.arrays), "QIRF/CHNK 0/GEOM: "},
      {geometry(3, 1, badTriangle), "QIRF/CHNK 0/GEOM: triangle 0 names vertex 3 of 3"},
      {withTail("ATCH", LittleEndian(2)), "QIRF/ATCH: attachment point count 2"},
      {withTail("INFL", LittleEndian(1u << 31)), "QIRF/INFL: bone count 2147483648"},
      {withTail("INFL", bone + LittleEndian(9)), "QIRF/INFL: chunk count 9"},
      {withTail("INFL", bone + Words({1, 0, 5})), "QIRF/INFL: weight count 5"},
      {withTail("INFL", bone + Words({1, 1, 0})), "QIRF/INFL: bone \"b\" names chunk 1 of 1"},
      {withTail("SKEL", Chunk("BONE", 100, Text("b") + std::string(28, '\0') + Words({7}))),
       "QIRF/SKEL/BONE: child count 7"}};
  for (const auto& [bytes, message] : cases) {
    EXPECT_EQ(Refusal(bytes).find(message), 0u) << Refusal(bytes);
  }
}

// Cut off with a root length that says so, a file lacks parts that must be there.
TEST(IndexedMeshReader, EveryPrefixIsRefusedUnlessItsEndIsOptional) {
  ExIndexedMesh mesh = SkinnedMesh();
  const std::string bytes = Written(mesh).bytes;
  const size_t optionalStart = bytes.find("INFL");
  for (size_t size = 12; size < bytes.size(); ++size) {
    std::string prefix = bytes.substr(0, size);
    EXPECT_NE(Refusal(prefix).find(" (at byte "), std::string::npos) << size;
    prefix.replace(4, 4, LittleEndian(static_cast<uint32_t>(size - 8)));
    const std::string message = Refusal(prefix);
    EXPECT_TRUE(message.starts_with("QIRF") || (message == "accepted" && size >= optionalStart))
        << message;
  }
}

}  // namespace
}  // namespace orv
