#include <cassert>
#include <cmath>

#include "meshproc/ExIndexedMesh.h"
#include "meshproc/MeshMender.h"
#include "meshproc/VertexNumbers.h"

namespace orv {

namespace {

std::vector<MeshMender::Vertex> MenderVertices(const IndexedMesh::Chunk& chunk) {
  std::vector<MeshMender::Vertex> vertices(chunk.vertices.size());
  for (size_t i = 0; i < vertices.size(); ++i) {
    const IndexedVertex& from = chunk.vertices[i];
    vertices[i].position = from.Position();
    vertices[i].s = from.u;
    vertices[i].t = from.v;
    vertices[i].normal = chunk.normals[i];
  }
  return vertices;
}

std::vector<uint32_t> WidenIndices(const std::vector<Triangle>& triangles) {
  std::vector<uint32_t> indices;
  indices.reserve(3 * triangles.size());
  for (const Triangle& triangle : triangles) {
    indices.insert(indices.end(), triangle.begin(), triangle.end());
  }
  return indices;
}

// Some direction across the normal.
Vec3 FallbackTangent(Vec3 normal) {
  const float x = std::abs(normal.x), y = std::abs(normal.y), z = std::abs(normal.z);
  Vec3 axis{0, 0, 1};
  if (y > x) {
    axis = z > y ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
  } else if (z > x) {
    axis = {0, 1, 0};
  }
  const Vec3 tangent = Cross(axis, normal);
  return tangent * (1.0f / Length(tangent));
}

void TakeVertices(const std::vector<MeshMender::Vertex>& from, IndexedMesh::Chunk& chunk) {
  chunk.vertices.resize(from.size());
  chunk.normals.resize(from.size());
  chunk.tangents.resize(from.size());
  for (size_t i = 0; i < from.size(); ++i) {
    const Vec3& p = from[i].position;
    chunk.vertices[i] = {p.x, p.y, p.z, from[i].s, from[i].t};
    chunk.normals[i] = from[i].normal;
    const bool usable = std::isnormal(Dot(from[i].tangent, from[i].tangent));
    chunk.tangents[i] = usable ? from[i].tangent : FallbackTangent(from[i].normal);
  }
}

// The last copy of a vertex gets all its weights, as in every file already written.
// Pinned by ChunkTangents.LastCopyKeepsTheWeights.
std::vector<uint32_t> LastCopies(const std::vector<uint32_t>& newToOld, size_t oldCount) {
  std::vector<uint32_t> copies(oldCount);
  for (uint32_t i = 0; i < newToOld.size(); ++i) copies[newToOld[i]] = i;
  return copies;
}

}  // namespace

void ExIndexedMesh::GenerateTangents(size_t number) {
  Chunk& chunk = chunks[number];
  const size_t oldVertexCount = chunk.vertices.size();
  std::vector<MeshMender::Vertex> vertices = MenderVertices(chunk);
  std::vector<uint32_t> indices = WidenIndices(chunk.triangles);
  std::vector<uint32_t> newToOld;
  MeshMender().Mend(vertices, indices, newToOld, MeshMender::Settings());

  // The index limit leaves at most 32000 copies beside the 32000 vertices.
  assert(vertices.size() <= 0x10000);
  TakeVertices(vertices, chunk);
  for (size_t i = 0; i < chunk.triangles.size(); ++i) {
    for (size_t c = 0; c < 3; ++c) {
      chunk.triangles[i][c] = static_cast<uint16_t>(indices[3 * i + c]);
    }
  }
  if (!influences.empty()) {
    RenumberWeights(*influences[number], LastCopies(newToOld, oldVertexCount));
  }
}

}  // namespace orv
