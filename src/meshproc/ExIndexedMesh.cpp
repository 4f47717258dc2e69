#include "meshproc/ExIndexedMesh.h"

#include <cassert>
#include <cmath>
#include <span>

#include "meshproc/ChunkBuilder.h"
#include "meshproc/ChunkSplitter.h"
#include "meshproc/IndexOptimizer.h"
#include "meshproc/MeshMender.h"
#include "meshproc/NeighbourInfo.h"
#include "meshproc/Welding.h"

namespace orv {

namespace {

const GenericMeshInfluence* SkinOf(const GenericMesh& mesh) {
  const bool skinned = mesh.m_influence != nullptr && !mesh.m_influence->m_bones.empty();
  return skinned ? mesh.m_influence : nullptr;
}

std::vector<std::vector<uint32_t>> TakeCornerMaps(std::vector<ChunkDraft>& drafts) {
  std::vector<std::vector<uint32_t>> maps;
  for (ChunkDraft& draft : drafts) maps.push_back(std::move(draft.cornerMap));
  return maps;
}

template <typename Index>
std::vector<Index> Flatten(const std::vector<Triangle>& triangles) {
  std::vector<Index> indices;
  indices.reserve(3 * triangles.size());
  for (const Triangle& triangle : triangles) {
    indices.insert(indices.end(), triangle.begin(), triangle.end());
  }
  return indices;
}

// Makes all weights name the new number of their vertex, newNumbers[old].
void RenumberWeights(GenericMeshInfluence& influence, std::span<const uint32_t> newNumbers) {
  for (const auto& bone : influence.m_bones) {
    for (VertexWeight& weight : bone->m_weights) weight.vertex = newNumbers[weight.vertex];
  }
}

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

// Vertices without a new number are not moved; others may overwrite them.
// Pinned by ChunkIndexOrder.UnreferencedVerticesAreNotMoved.
template <typename T>
void MoveToNewPlaces(std::vector<T>& values, std::span<const uint32_t> newNumbers) {
  const std::vector<T> old = values;
  for (size_t i = 0; i < old.size(); ++i) {
    if (newNumbers[i] < values.size()) values[newNumbers[i]] = old[i];
  }
}

// What is left of a vertex without a number is none of its own; its weights go to the last place,
// which no triangle names.
void PointToLastPlace(std::vector<uint32_t>& newNumbers) {
  for (uint32_t& number : newNumbers) {
    if (number >= newNumbers.size()) number = static_cast<uint32_t>(newNumbers.size() - 1);
  }
}

}  // namespace

bool ExIndexedMesh::BuildChunks(const GenericMesh& source, bool buildNeighbourInfo,
                                bool useDefaultColors, ExportUserInterface& ui,
                                const MeshLimits& limits) {
  static_cast<IndexedMesh&>(*this) = {};
  attachmentPoints = source.m_attachmentPoints;
  skeleton = source.m_skeleton;
  m_useDefaultColors = useDefaultColors;

  const std::unique_ptr<GenericMesh> triangulated = source.Triangulate();
  const GenericMesh& mesh = triangulated ? *triangulated : source;
  const GenericMeshInfluence* skin = SkinOf(source);

  std::vector<ChunkDraft> drafts = GroupFacesByMaterial(mesh, ui);
  WeldVertices(mesh, drafts, skin != nullptr, ui);
  SplitToLimits(drafts, skin, limits, ui);
  const std::vector<std::vector<uint32_t>> cornerMaps = TakeCornerMaps(drafts);
  if (!FinishChunks(mesh, drafts, chunks, ui)) return false;
  if (buildNeighbourInfo) BuildNeighbourInfo(chunks, ui);
  for (Chunk& chunk : chunks) RemoveDegenerateTriangles(chunk);
  if (skin != nullptr) influences = ExtractInfluences(*skin, cornerMaps, ui);
  return true;
}

void ExIndexedMesh::PrepareChunk(size_t chunk, bool optimise) {
  const bool wantsTangents = AsksForTangents(chunks[chunk].material.name);
  if (!wantsTangents && !optimise) return;
  if (wantsTangents) GenerateTangents(chunk);
  OptimiseIndexOrder(chunk);
  chunks[chunk].faceNormals = ComputeFaceNormals(chunks[chunk]);
}

void ExIndexedMesh::GenerateTangents(size_t number) {
  Chunk& chunk = chunks[number];
  const size_t oldVertexCount = chunk.vertices.size();
  std::vector<MeshMender::Vertex> vertices = MenderVertices(chunk);
  std::vector<uint32_t> indices = Flatten<uint32_t>(chunk.triangles);
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

void ExIndexedMesh::OptimiseIndexOrder(size_t number) {
  Chunk& chunk = chunks[number];
  const std::vector<uint16_t> order = OptimizeTriangleOrder(Flatten<uint16_t>(chunk.triangles));
  // A list that lost degenerate or repeated triangles is not taken, nor is an empty one.
  // Pinned by ChunkIndexOrder.ChunksWithDegenerateOrRepeatedTrianglesStay.
  if (order.empty() || order.size() != 3 * chunk.triangles.size()) return;

  std::vector<uint32_t> newNumbers = RemapInOrderOfFirstUse(order, chunk.vertices.size());
  MoveToNewPlaces(chunk.vertices, newNumbers);
  MoveToNewPlaces(chunk.normals, newNumbers);
  if (!chunk.tangents.empty()) MoveToNewPlaces(chunk.tangents, newNumbers);
  for (size_t i = 0; i < order.size(); ++i) {
    chunk.triangles[i / 3][i % 3] = static_cast<uint16_t>(newNumbers[order[i]]);
  }
  if (!influences.empty()) {
    PointToLastPlace(newNumbers);
    RenumberWeights(*influences[number], newNumbers);
  }
}

size_t ExIndexedMesh::TotalVertexCount() const {
  size_t count = 0;
  for (const Chunk& chunk : chunks) count += chunk.vertices.size();
  return count;
}

size_t ExIndexedMesh::TotalTriangleCount() const {
  size_t count = 0;
  for (const Chunk& chunk : chunks) count += chunk.triangles.size();
  return count;
}

}  // namespace orv
