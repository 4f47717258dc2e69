#include <gtest/gtest.h>

#include <cmath>

#include "ExpectConsistent.h"
#include "RecordingUserInterface.h"
#include "meshproc/ExIndexedMesh.h"
#include "scene/MeshBuilders.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

ExIndexedMesh Built(const GenericMesh& mesh, RecordingUserInterface& ui,
                    const MeshLimits& limits = {}, bool neighbours = false) {
  ExIndexedMesh built;
  EXPECT_TRUE(built.BuildChunks(mesh, neighbours, false, ui, limits));
  ExpectConsistent(built);
  return built;
}

ExIndexedMesh Built(const GenericMesh& mesh, const MeshLimits& limits = {},
                    bool neighbours = false) {
  RecordingUserInterface ui;
  return Built(mesh, ui, limits, neighbours);
}

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

std::unique_ptr<GenericBoneInfluence> Bone(const std::string& name,
                                           std::initializer_list<uint32_t> vertices) {
  auto bone = std::make_unique<GenericBoneInfluence>(name, "", Vec3{}, Matrix33{});
  for (const uint32_t vertex : vertices) bone->m_weights.push_back({vertex, 1, {}});
  return bone;
}

// Chunk vertices of one bone's weights.
std::vector<uint32_t> Moved(const ExIndexedMesh& mesh, size_t chunk, size_t bone) {
  std::vector<uint32_t> vertices;
  for (const auto& weight : mesh.influences.at(chunk)->m_bones.at(bone)->m_weights) {
    vertices.push_back(weight.vertex);
  }
  return vertices;
}

TEST(ChunkBuilding, FacesThatNameNothingAreLeftOut) {
  GenericMesh mesh = Quad({Material("a")});
  AddFace(mesh, 1, {0, 1, 2});  // no such material
  AddFace(mesh, -1, {0, 1, 2});
  AddFace(mesh, 0, {0, 1, 9});  // no such position
  AddFace(mesh, 0, {0, 1});
  mesh.m_faces.Add(0, std::array<FaceCorner, 3>{{{0, 9, 0}, {1, 1, 1}, {2, 2, 2}}});
  EXPECT_EQ(Built(mesh).TotalTriangleCount(), 2u);
}

TEST(ChunkBuilding, DegenerateTrianglesLeaveTheirRows) {
  GenericMesh mesh = Loose(3);
  mesh.m_positions[1] = mesh.m_positions[0];  // welds two corners of the first triangle
  for (size_t i = 0; i < 3; ++i) mesh.m_positions[6 + i] = {0, static_cast<float>(i * i), 1.0f + i};
  const ExIndexedMesh built = Built(mesh, {}, true);
  const IndexedMesh::Chunk& chunk = built.chunks[0];
  ASSERT_EQ(chunk.triangles.size(), 2u);
  EXPECT_EQ(chunk.vertices[chunk.triangles[0][0]].Position(), mesh.m_positions[6]);
  EXPECT_EQ(chunk.faceNormals.size(), 3u);
  EXPECT_TRUE(std::isnan(chunk.faceNormals[0].z));
  EXPECT_EQ(chunk.faceNormals[1], (Vec3{0, 0, 1}));
  EXPECT_EQ(chunk.neighbours.size(), 3u);
  EXPECT_EQ(chunk.neighbours[2][0], 2u);  // itself, by its old number
}

TEST(ChunkBuilding, IndexBeyond16BitsFails) {
  const GenericMesh mesh = Loose(21846);
  RecordingUserInterface ui;
  ExIndexedMesh built;
  EXPECT_FALSE(built.BuildChunks(mesh, false, false, ui, {100000, 100000, 16}));
  EXPECT_EQ(ui.log, (Lines{"error: Index out of range, chunk too large. (Should have been split "
                           "earlier)"}));
  EXPECT_TRUE(built.BuildChunks(Loose(21845), false, false, ui, {100000, 100000, 16}));
}

TEST(ChunkWelding, LastCornerGivesTheBoneWeights) {
  GenericMesh mesh = Quad({Material("a")});
  mesh.m_positions.push_back(mesh.m_positions[0]);  // 4 is where 0 is, with another bone
  mesh.m_faces = {};
  mesh.m_faces.Add(0, std::array<FaceCorner, 3>{{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}});
  mesh.m_faces.Add(0, std::array<FaceCorner, 3>{{{4, 0, 0}, {2, 2, 2}, {3, 3, 3}}});
  GenericMeshInfluence influence;
  influence.AddBone(Bone("b.first", {0, 1}));
  influence.AddBone(Bone("b.last", {4, 3}));
  mesh.m_influence = &influence;
  const ExIndexedMesh built = Built(mesh);
  EXPECT_EQ(built.TotalVertexCount(), 4u);
  EXPECT_EQ(Moved(built, 0, 0), (std::vector<uint32_t>{1}));
  EXPECT_EQ(Moved(built, 0, 1), (std::vector<uint32_t>{0, 3}));
}

TEST(ChunkSplitting, DefaultLimitIs32000Indices) {
  RecordingUserInterface ui;
  EXPECT_EQ(Built(Loose(10666), ui).chunks.size(), 1u);
  EXPECT_EQ(Built(Loose(10667), ui).chunks.size(), 2u);
  EXPECT_EQ(ui.log, Lines{"warning: Mesh limits exceeded, 1 chunks split into 2 chunks."});
}

// The bones move the triangle of positions 0 to 2, but it is the other one, of chunk vertices 0 to
// 2, that is dropped for them.
TEST(ChunkSplitting, BonesAreFoundByChunkVertexNumber) {
  GenericMesh mesh = Loose(2);
  mesh.m_faces = {};
  AddFace(mesh, 0, {3, 4, 5});
  AddFace(mesh, 0, {0, 1, 2});
  GenericMeshInfluence influence;
  influence.AddBone(Bone("b.a", {0, 1, 2}));
  influence.AddBone(Bone("b.b", {0, 1, 2}));
  mesh.m_influence = &influence;
  const ExIndexedMesh built = Built(mesh, {99, 3, 5});
  ASSERT_EQ(built.chunks.size(), 1u);
  ASSERT_EQ(built.chunks[0].triangles.size(), 1u);
  EXPECT_EQ(built.chunks[0].vertices[0].Position(), mesh.m_positions[0]);
  EXPECT_EQ(Moved(built, 0, 1), (std::vector<uint32_t>{0, 1, 2}));
}

}  // namespace
}  // namespace orv
