#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "ExpectConsistent.h"
#include "LiteralChunks.h"
#include "RecordingUserInterface.h"
#include "meshproc/ExIndexedMesh.h"
#include "scene/MeshBuilders.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

// Triangles side by side that share no vertex; row r of the tables is corner r.
GenericMesh Loose(uint32_t triangleCount) {
  GenericMesh mesh;
  mesh.m_materials = {Material("a")};
  for (uint32_t i = 0; i < triangleCount; ++i) {
    const float x = static_cast<float>(i);
    mesh.m_positions.insert(mesh.m_positions.end(), {{x, 0, 0}, {x + 0.5f, 0, 0}, {x, 1, 0}});
    AddFace(mesh, 0, {3 * i, 3 * i + 1, 3 * i + 2});
  }
  mesh.m_normals.assign(mesh.m_positions.size(), Vec3{0, 0, 1});
  mesh.m_texCoords.resize(mesh.m_positions.size());
  return mesh;
}

TEST(ChunkBuilding, FacesThatNameNothingAreLeftOut) {
  GenericMesh mesh = Quad({Material("a")});
  AddFace(mesh, 1, {0, 1, 2});  // no such material
  AddFace(mesh, -1, {0, 1, 2});
  AddFace(mesh, 0, {0, 1, 4});  // no such position
  AddFace(mesh, 0, {0, 1});
  mesh.m_faces.Add(0, std::array<FaceCorner, 3>{{{0, 4, 0}, {1, 1, 1}, {2, 2, 2}}});
  RecordingUserInterface ui;
  ExIndexedMesh built;
  EXPECT_TRUE(built.BuildChunks(mesh, true, false, ui));
  EXPECT_EQ(built.TotalTriangleCount(), 2u);
  EXPECT_EQ(built.TotalVertexCount(), 4u);
  EXPECT_EQ(ui.stages, (Lines{"Building chunks", "Optimizing chunks", "Building neighbour info",
                              "Building neighbor array"}));
}

TEST(ChunkBuilding, LimitsAre32000IndicesAnd16Bits) {
  const std::tuple<uint32_t, MeshLimits, size_t, Lines> cases[] = {
      {10666, {}, 1, {}},
      {10667, {}, 2, {"warning: Mesh limits exceeded, 1 chunks split into 2 chunks."}},
      {21845, {100000, 100000, 16}, 1, {}},
      {21846,
       {100000, 100000, 16},
       1,
       {"error: Index out of range, chunk too large. (Should have been split earlier)"}},
  };
  for (const auto& [triangles, limits, chunks, log] : cases) {
    RecordingUserInterface ui;
    ExIndexedMesh built;
    EXPECT_EQ(built.BuildChunks(Loose(triangles), false, false, ui, limits), triangles < 21846);
    EXPECT_EQ(built.chunks.size(), chunks);
    EXPECT_EQ(ui.log, log);
  }
}

class Random {
 public:
  explicit Random(uint32_t seed) : m_engine(seed) {}
  uint32_t Below(size_t end) { return static_cast<uint32_t>(m_engine() % end); }
  bool OneIn(uint32_t chances) { return Below(chances) == 0; }

  // Few values, so that corners coincide; both zeros, and now and then a NaN.
  float Coordinate() {
    if (OneIn(60)) return std::numeric_limits<float>::quiet_NaN();
    return std::array{0.0f, -0.0f, 1.0f, 2.0f, -1.0f}[Below(5)];
  }

 private:
  std::mt19937 m_engine;
};

GenericMesh RandomMesh(uint32_t mostFaces, Random& random) {
  GenericMesh mesh;
  mesh.m_materials.resize(1 + random.Below(3));
  mesh.m_positions.resize(3 + random.Below(20));
  mesh.m_normals.resize(1 + random.Below(3));
  mesh.m_texCoords.resize(random.Below(4));
  for (size_t i = 0; i < mesh.m_materials.size(); ++i) {
    mesh.m_materials[i].shininess = static_cast<float>(i);
  }
  for (Vec3& p : mesh.m_positions) {
    p = {random.Coordinate(), random.Coordinate(), random.Coordinate()};
  }
  for (Vec3& n : mesh.m_normals) n = {random.Coordinate(), 0, random.Coordinate()};
  for (Vec2& t : mesh.m_texCoords) t = {random.Coordinate(), random.Coordinate()};
  const uint32_t mostCorners = random.OneIn(4) ? 6 : 3;
  for (uint32_t faces = random.Below(mostFaces); faces > 0; --faces) {
    std::vector<FaceCorner> corners(3 + random.Below(mostCorners - 2));
    for (FaceCorner& corner : corners) {
      corner.position = random.Below(mesh.m_positions.size());
      corner.normal = random.Below(mesh.m_normals.size());
      if (!mesh.m_texCoords.empty()) corner.texCoord = random.Below(mesh.m_texCoords.size());
    }
    mesh.m_faces.Add(static_cast<int32_t>(random.Below(mesh.m_materials.size())), corners);
  }
  return mesh;
}

// Some bones list a vertex twice, list vertices that the mesh does not have, or move nothing.
void AddBones(GenericMeshInfluence& influence, size_t positionCount, Random& random) {
  for (uint32_t bones = random.Below(9); bones > 0; --bones) {
    const float number = static_cast<float>(bones);
    auto bone = std::make_unique<GenericBoneInfluence>(
        "b." + std::to_string(bones), "b.root", Vec3{number, 2, 3}, Matrix33{Vec3{number, 0, 0}});
    for (uint32_t weights = random.Below(positionCount); weights > 0; --weights) {
      bone->m_weights.push_back(
          {random.Below(positionCount + 6), static_cast<float>(weights), Vec3{number, 0, 0}});
    }
    influence.AddBone(std::move(bone));
  }
}

using Words = std::vector<uint32_t>;

void Add(Words& words, std::initializer_list<float> numbers) {
  for (const float number : numbers) {
    words.push_back(std::isnan(number) ? 0x7FC00000u : std::bit_cast<uint32_t>(number));
  }
}

Words WordsOf(const IndexedMesh::Chunk& chunk) {
  Words words;
  for (size_t i = 0; i < chunk.vertices.size(); ++i) {
    const IndexedVertex& v = chunk.vertices[i];
    const Vec3& n = chunk.normals[i];
    Add(words, {v.x, v.y, v.z, v.u, v.v, n.x, n.y, n.z});
  }
  for (const Triangle& t : chunk.triangles) words.insert(words.end(), t.begin(), t.end());
  for (const Vec3& n : chunk.faceNormals) Add(words, {n.x, n.y, n.z});
  Add(words, {chunk.surfaceArea, chunk.material.shininess});
  return words;
}

Words WordsOf(const LiteralChunk& chunk) {
  Words words;
  for (const auto& vertex : chunk.vertices) {
    for (const float number : vertex) Add(words, {number});
  }
  for (const auto& t : chunk.triangles) words.insert(words.end(), t.begin(), t.end());
  double doubleArea = 0;
  for (const auto& [p0, p1, p2] : chunk.corners) {
    const Vec3 upright = Cross(p1 - p0, p2 - p0);
    const Vec3 n = upright * (1.0f / Length(upright));
    doubleArea += Length(upright);
    Add(words, {n.x, n.y, n.z});
  }
  Add(words, {static_cast<float>(doubleArea / 2), static_cast<float>(chunk.material)});
  return words;
}

void ExpectSameBone(const GenericBoneInfluence& bone, const GenericBoneInfluence& source,
                    const LiteralChunk& chunk) {
  EXPECT_EQ(bone.m_name + bone.m_parentName, source.m_name + source.m_parentName);
  EXPECT_EQ(bone.m_position, source.m_position);
  EXPECT_EQ(bone.m_rotation, source.m_rotation);
  const std::vector<VertexWeight> expected = LiteralWeights(source, chunk);
  ASSERT_EQ(bone.m_weights.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(bone.m_weights[i].vertex, expected[i].vertex);
    EXPECT_EQ(bone.m_weights[i].weight, expected[i].weight);
    EXPECT_EQ(bone.m_weights[i].offset, expected[i].offset);
  }
}

void CheckSeed(uint32_t seed, uint32_t mostFaces) {
  SCOPED_TRACE(seed);
  Random random(seed);
  GenericMesh mesh = RandomMesh(mostFaces, random);
  GenericMeshInfluence influence;
  if (random.OneIn(2)) {
    AddBones(influence, mesh.m_positions.size(), random);
    mesh.m_influence = &influence;
  }
  const MeshLimits limits{3 + random.Below(30), 3 + random.Below(90), 1 + random.Below(12)};
  RecordingUserInterface ui;
  ExIndexedMesh built;
  ASSERT_TRUE(built.BuildChunks(mesh, true, false, ui, limits));
  ExpectConsistent(built);

  const auto triangulated = mesh.Triangulate();
  const auto literal = LiteralChunks(triangulated ? *triangulated : mesh, limits);
  ASSERT_EQ(built.chunks.size(), literal.size());
  EXPECT_EQ(ui.log.empty(), literal.size() == mesh.m_materials.size());
  EXPECT_EQ(built.influences.size(), influence.m_bones.empty() ? 0 : literal.size());
  for (size_t i = 0; i < literal.size(); ++i) {
    EXPECT_EQ(WordsOf(built.chunks[i]), WordsOf(literal[i]));
    EXPECT_EQ(built.chunks[i].neighbours, literal[i].neighbours);
    if (built.influences.empty()) continue;
    ASSERT_EQ(built.influences[i]->m_bones.size(), influence.m_bones.size());
    for (size_t bone = 0; bone < influence.m_bones.size(); ++bone) {
      ExpectSameBone(*built.influences[i]->m_bones[bone], *influence.m_bones[bone], literal[i]);
    }
  }
}

TEST(ChunkBuilding, AgreesWithTheLiteralProcedure) {
  for (uint32_t seed = 0; seed < 2000 && !HasFailure(); ++seed) CheckSeed(seed, 40);
  for (uint32_t seed = 0; seed < 8 && !HasFailure(); ++seed) CheckSeed(seed, 600);  // many pieces
}

}  // namespace
}  // namespace orv
