#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "ExpectConsistent.h"
#include "LiteralChunks.h"
#include "RecordingUserInterface.h"
#include "meshproc/ExIndexedMesh.h"

namespace orv {
namespace {

class Random {
 public:
  explicit Random(uint32_t seed) : m_engine(seed) {}
  uint32_t Below(uint32_t end) { return static_cast<uint32_t>(m_engine() % end); }
  bool OneIn(uint32_t chances) { return Below(chances) == 0; }

  // Few values, so that corners coincide; both zeros, and now and then a NaN.
  float Coordinate() {
    if (OneIn(60)) return std::numeric_limits<float>::quiet_NaN();
    return std::array{0.0f, -0.0f, 1.0f, 2.0f, -1.0f}[Below(5)];
  }

 private:
  std::mt19937 m_engine;
};

void FillTables(GenericMesh& mesh, Random& random) {
  mesh.m_materials.resize(1 + random.Below(3));
  mesh.m_positions.resize(3 + random.Below(20));
  mesh.m_normals.resize(1 + random.Below(3));
  mesh.m_texCoords.resize(random.Below(4));
  for (Vec3& p : mesh.m_positions) {
    p = {random.Coordinate(), random.Coordinate(), random.Coordinate()};
  }
  for (Vec3& n : mesh.m_normals) n = {random.Coordinate(), 0, random.Coordinate()};
  for (Vec2& t : mesh.m_texCoords) t = {random.Coordinate(), random.Coordinate()};
}

void AddFaces(GenericMesh& mesh, uint32_t faceCount, Random& random) {
  const uint32_t mostCorners = random.OneIn(4) ? 6 : 3;
  for (uint32_t i = 0; i < faceCount; ++i) {
    std::vector<FaceCorner> corners(3 + random.Below(mostCorners - 2));
    for (FaceCorner& corner : corners) {
      corner.position = random.Below(static_cast<uint32_t>(mesh.m_positions.size()));
      corner.normal = random.Below(static_cast<uint32_t>(mesh.m_normals.size()));
      corner.texCoord = mesh.m_texCoords.empty()
                            ? 0
                            : random.Below(static_cast<uint32_t>(mesh.m_texCoords.size()));
    }
    mesh.m_faces.Add(
        static_cast<int32_t>(random.Below(static_cast<uint32_t>(mesh.m_materials.size()))),
        corners);
  }
}

// Some bones list a vertex twice, list vertices that the mesh does not have, or move nothing.
void AddBones(GenericMeshInfluence& influence, size_t positionCount, Random& random) {
  const uint32_t boneCount = random.Below(9);
  for (uint32_t i = 0; i < boneCount; ++i) {
    auto bone = std::make_unique<GenericBoneInfluence>("b." + std::to_string(i), "b.root",
                                                       Vec3{1, 2, 3}, Matrix33{});
    const uint32_t weightCount = random.Below(static_cast<uint32_t>(positionCount));
    for (uint32_t j = 0; j < weightCount; ++j) {
      bone->m_weights.push_back({random.Below(static_cast<uint32_t>(positionCount) + 6),
                                 static_cast<float>(j), Vec3{static_cast<float>(i), 0, 0}});
    }
    influence.AddBone(std::move(bone));
  }
}

bool SameBits(Vec3 a, Vec3 b) {
  const auto same = [](float x, float y) {
    return std::bit_cast<uint32_t>(x) == std::bit_cast<uint32_t>(y) ||
           (std::isnan(x) && std::isnan(y));
  };
  return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z);
}

void ExpectSameChunk(const IndexedMesh::Chunk& chunk, const LiteralChunk& literal) {
  EXPECT_EQ(chunk.material.shininess, static_cast<float>(literal.material));
  EXPECT_EQ(chunk.word, 4u);
  ASSERT_EQ(chunk.vertices.size(), literal.vertices.size());
  for (size_t i = 0; i < chunk.vertices.size(); ++i) {
    const auto& expected = literal.vertices[i];
    const IndexedVertex& vertex = chunk.vertices[i];
    EXPECT_TRUE(SameBits(vertex.Position(), {expected[0], expected[1], expected[2]}));
    EXPECT_TRUE(SameBits({vertex.u, vertex.v, 0}, {expected[3], expected[4], 0}));
    EXPECT_TRUE(SameBits(chunk.normals[i], {expected[5], expected[6], expected[7]}));
  }
  ASSERT_EQ(chunk.triangles.size(), literal.triangles.size());
  for (size_t i = 0; i < chunk.triangles.size(); ++i) {
    for (size_t c = 0; c < 3; ++c) EXPECT_EQ(chunk.triangles[i][c], literal.triangles[i][c]);
  }
  ASSERT_EQ(chunk.faceNormals.size(), literal.corners.size());
  double area = 0;
  for (size_t i = 0; i < chunk.faceNormals.size(); ++i) {
    const auto& [p0, p1, p2] = literal.corners[i];
    const Vec3 normal = Cross(p1 - p0, p2 - p0);
    area += 0.5 * Length(normal);
    EXPECT_TRUE(SameBits(chunk.faceNormals[i], normal * (1.0f / Length(normal))));
  }
  const bool bothNan = std::isnan(chunk.surfaceArea) && std::isnan(area);
  EXPECT_TRUE(bothNan || std::abs(chunk.surfaceArea - area) <= 1e-6 * area);
  EXPECT_EQ(chunk.neighbours, literal.neighbours);
}

void ExpectSameInfluence(const GenericMeshInfluence& influence, const GenericMeshInfluence& source,
                         const LiteralChunk& literal) {
  ASSERT_EQ(influence.m_bones.size(), source.m_bones.size());
  for (size_t i = 0; i < source.m_bones.size(); ++i) {
    EXPECT_EQ(influence.m_bones[i]->m_name, source.m_bones[i]->m_name);
    EXPECT_EQ(influence.m_bones[i]->m_parentName, source.m_bones[i]->m_parentName);
    EXPECT_EQ(influence.m_bones[i]->m_position, source.m_bones[i]->m_position);
    const auto expected = LiteralWeights(*source.m_bones[i], literal);
    const auto& weights = influence.m_bones[i]->m_weights;
    ASSERT_EQ(weights.size(), expected.size());
    for (size_t j = 0; j < weights.size(); ++j) {
      EXPECT_EQ(weights[j].vertex, expected[j].vertex);
      EXPECT_EQ(weights[j].weight, expected[j].weight);
      EXPECT_EQ(weights[j].offset, expected[j].offset);
    }
  }
}

void CheckSeed(uint32_t seed, uint32_t mostFaces) {
  SCOPED_TRACE(seed);
  Random random(seed);
  GenericMesh mesh;
  GenericMeshInfluence influence;
  FillTables(mesh, random);
  AddFaces(mesh, random.Below(mostFaces), random);
  for (size_t i = 0; i < mesh.m_materials.size(); ++i) {
    mesh.m_materials[i].shininess = static_cast<float>(i);
  }
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
  EXPECT_EQ(built.influences.size(), influence.m_bones.empty() ? 0 : literal.size());
  for (size_t i = 0; i < literal.size(); ++i) {
    ExpectSameChunk(built.chunks[i], literal[i]);
    if (!built.influences.empty()) ExpectSameInfluence(*built.influences[i], influence, literal[i]);
  }
}

TEST(ChunkBuilding, AgreesWithTheLiteralProcedure) {
  for (uint32_t seed = 0; seed < 2000 && !HasFailure(); ++seed) CheckSeed(seed, 40);
}

TEST(ChunkBuilding, AgreesWithTheLiteralProcedureForHundredsOfPieces) {
  for (uint32_t seed = 0; seed < 8 && !HasFailure(); ++seed) CheckSeed(seed, 600);
}

}  // namespace
}  // namespace orv
