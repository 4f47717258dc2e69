#include <gtest/gtest.h>

#include "ExpectConsistent.h"
#include "meshproc/ExIndexedMesh.h"

namespace orv {
namespace {

// One chunk whose vertex i lies at (i, i * i, 0) and is moved by the bone with weight i.
ExIndexedMesh OneChunk(const std::string& material, size_t vertexCount,
                       std::vector<Triangle> triangles) {
  ExIndexedMesh mesh;
  IndexedMesh::Chunk& chunk = mesh.chunks.emplace_back();
  chunk.material.name = material;
  chunk.triangles = std::move(triangles);
  chunk.faceNormals.resize(chunk.triangles.size());
  auto bone = std::make_unique<GenericBoneInfluence>();
  for (uint32_t i = 0; i < vertexCount; ++i) {
    const float x = static_cast<float>(i);
    chunk.vertices.push_back({x, x * x, 0, x, x * x});
    chunk.normals.push_back({0, x, 1});
    bone->m_weights.push_back({i, x, {}});
  }
  mesh.influences.push_back(std::make_unique<ExGenericMeshInfluence>());
  mesh.influences[0]->AddBone(std::move(bone));
  return mesh;
}

const std::vector<VertexWeight>& Weights(const ExIndexedMesh& mesh) {
  return mesh.influences[0]->m_bones[0]->m_weights;
}

TEST(ChunkIndexOrder, EveryArrayFollowsTheVertices) {
  ExIndexedMesh mesh = OneChunk("a", 6, {{5, 4, 3}, {0, 2, 1}, {3, 2, 5}, {1, 3, 2}});
  IndexedMesh::Chunk& chunk = mesh.chunks[0];
  for (size_t i = 0; i < 6; ++i) chunk.tangents.push_back({static_cast<float>(i), 0, 0});
  mesh.PrepareChunk(0, false);
  EXPECT_EQ(chunk.triangles[0], (Triangle{5, 4, 3}));
  mesh.PrepareChunk(0, true);
  ExpectConsistent(mesh);
  EXPECT_EQ(chunk.vertices[1].x, 2);
  for (size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(chunk.normals[i].y, chunk.vertices[i].x);
    EXPECT_EQ(chunk.tangents[i].x, chunk.vertices[i].x);
    EXPECT_EQ(chunk.vertices[i].v, chunk.vertices[i].y);
    EXPECT_EQ(chunk.vertices[Weights(mesh)[i].vertex].x, Weights(mesh)[i].weight);
  }
}

TEST(ChunkIndexOrder, UnreferencedVerticesAreNotMoved) {
  ExIndexedMesh mesh = OneChunk("a", 5, {{1, 2, 4}});
  mesh.PrepareChunk(0, true);
  const float xs[] = {1, 2, 4, 3, 4};
  const uint32_t moved[] = {4, 0, 1, 4, 2};
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(mesh.chunks[0].vertices[i].x, xs[i]);
    EXPECT_EQ(Weights(mesh)[i].vertex, moved[i]);
  }
}

TEST(ChunkIndexOrder, ChunksWithDegenerateOrRepeatedTrianglesStay) {
  const Vec3 up{0, 0, 1}, down{0, 0, -1};  // up for a triangle without area too
  const std::tuple<std::vector<Triangle>, std::vector<Vec3>, bool> cases[] = {
      {{{3, 2, 1}, {1, 1, 0}}, {down, up}, true},
      {{{3, 2, 1}, {3, 2, 1}}, {down, down}, true},
      {{}, {}, true},
      {{{3, 2, 1}, {2, 1, 3}}, {down, down}, false},  // a rotation is no repetition
  };
  for (const auto& [triangles, normals, stay] : cases) {
    ExIndexedMesh mesh = OneChunk("a", 4, triangles);
    mesh.PrepareChunk(0, true);
    EXPECT_EQ(mesh.chunks[0].triangles == triangles, stay);
    EXPECT_EQ(mesh.chunks[0].vertices[0].x == 0, stay);
    EXPECT_EQ(Weights(mesh)[0].vertex == 0, stay);
    EXPECT_EQ(mesh.chunks[0].faceNormals, normals);
  }
}

TEST(ChunkTangents, FallbackLiesAcrossTheNormal) {
  const std::pair<Vec3, Vec3> cases[] = {
      {{1, 0, 0}, {0, 1, 0}},         // z axis
      {{0, 1, 0}, {0, 0, 1}},         // x axis
      {{0, 0, 1}, {1, 0, 0}},         // y axis
      {{0, 3, 4}, {1, 0, 0}},         // y axis: z is the largest of three
      {{0, 4, 3}, {0, -0.6f, 0.8f}},  // x axis
      {{4, 3, 0}, {-0.6f, 0.8f, 0}},  // z axis
      {{3, 0, 4}, {0.8f, 0, -0.6f}},  // y axis
  };
  for (const auto& [normal, tangent] : cases) {
    ExIndexedMesh mesh = OneChunk("a.tbump", 3, {{0, 1, 2}});
    for (IndexedVertex& vertex : mesh.chunks[0].vertices) vertex.u = vertex.v = 0;
    mesh.chunks[0].normals.assign(3, normal);
    mesh.PrepareChunk(0, false);
    for (const Vec3& actual : mesh.chunks[0].tangents) {
      EXPECT_LT(Length(actual - tangent), 1e-6f) << normal.x << normal.y << normal.z;
    }
  }
}

// Two triangles on one edge whose texture is mirrored there: the edge's vertices are doubled.
TEST(ChunkTangents, LastCopyKeepsTheWeights) {
  ExIndexedMesh mesh = OneChunk("a.tbump", 4, {{0, 2, 1}, {0, 1, 3}});
  IndexedMesh::Chunk& chunk = mesh.chunks[0];
  chunk.vertices = {{0, 0, 0, 0, 0}, {0, 1, 0, 0, 1}, {1, 0, 0, 1, 0}, {-1, 0, 0, 1, 0}};
  chunk.normals.assign(4, {0, 0, 1});
  mesh.PrepareChunk(0, true);
  ExpectConsistent(mesh);
  ASSERT_EQ(chunk.vertices.size(), 6u);
  ASSERT_EQ(Weights(mesh).size(), 4u);
  for (uint32_t i = 0; i < 2; ++i) {
    const uint32_t vertex = Weights(mesh)[i].vertex;
    EXPECT_EQ(chunk.vertices[vertex].y, static_cast<float>(i));
    EXPECT_EQ(chunk.vertices[vertex].x, 0);
    EXPECT_FLOAT_EQ(chunk.tangents[vertex].x, -1);  // the second triangle's
  }
}

}  // namespace
}  // namespace orv
