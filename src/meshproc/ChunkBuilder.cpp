#include "meshproc/ChunkBuilder.h"

#include <algorithm>
#include <cmath>

#include "meshproc/ExIndexedMesh.h"
#include "meshproc/Progress.h"

namespace orv {

namespace {

// A fan's first triangle at least, and no corner beyond the tables.
bool IsUsable(const GenericMesh& mesh, const GenericFace& face) {
  return face.material >= 0 && static_cast<size_t>(face.material) < mesh.m_materials.size() &&
         face.corners.size() >= 3 &&
         std::all_of(face.corners.begin(), face.corners.end(), [&](const FaceCorner& corner) {
           return corner.position < mesh.m_positions.size() &&
                  corner.normal < mesh.m_normals.size();
         });
}

// Not finite for a triangle of zero area.
Vec3 FaceNormal(Vec3 p0, Vec3 p1, Vec3 p2) {
  const Vec3 normal = Cross(p1 - p0, p2 - p0);
  return normal * (1.0f / Length(normal));
}

Vec3 FaceNormal(const GenericMesh& mesh, std::span<const FaceCorner> corners) {
  return FaceNormal(mesh.m_positions[corners[0].position], mesh.m_positions[corners[1].position],
                    mesh.m_positions[corners[2].position]);
}

bool NarrowIndices(const std::vector<std::array<uint32_t, 3>>& from, std::vector<Triangle>& to) {
  to.reserve(from.size());
  for (const auto& [a, b, c] : from) {
    if (std::max({a, b, c}) > 0xFFFF) return false;
    to.push_back({static_cast<uint16_t>(a), static_cast<uint16_t>(b), static_cast<uint16_t>(c)});
  }
  return true;
}

bool FinishChunk(const GenericMesh& mesh, const ChunkDraft& draft, IndexedMesh::Chunk& chunk) {
  chunk.material = mesh.m_materials[draft.material];
  chunk.vertices.reserve(draft.vertices.size());
  chunk.normals.reserve(draft.vertices.size());
  for (const FaceCorner& corner : draft.vertices) {
    const Vec3& p = mesh.m_positions[corner.position];
    const Vec2 t = TexCoordOf(mesh, corner);
    chunk.vertices.push_back({p.x, p.y, p.z, t.u, t.v});
    chunk.normals.push_back(mesh.m_normals[corner.normal]);
  }
  if (!NarrowIndices(draft.triangles, chunk.triangles)) return false;
  chunk.faceNormals.reserve(draft.faces.size());
  for (const uint32_t face : draft.faces) {
    chunk.faceNormals.push_back(FaceNormal(mesh, mesh.m_faces[face].corners));
  }
  chunk.surfaceArea = ComputeSurfaceArea(chunk);
  return true;
}

bool IsDegenerate(const Triangle& t) { return t[0] == t[1] || t[1] == t[2] || t[2] == t[0]; }

std::array<Vec3, 3> CornersOf(const IndexedMesh::Chunk& chunk, const Triangle& t) {
  return {chunk.vertices[t[0]].Position(), chunk.vertices[t[1]].Position(),
          chunk.vertices[t[2]].Position()};
}

}  // namespace

std::vector<ChunkDraft> GroupFacesByMaterial(const GenericMesh& mesh, ExportUserInterface& ui) {
  ui.SetProgressText("Building chunks");
  std::vector<size_t> faceCounts(mesh.m_materials.size());
  for (size_t i = 0; i < mesh.m_faces.size(); ++i) {
    const GenericFace face = mesh.m_faces[i];
    if (IsUsable(mesh, face)) ++faceCounts[face.material];
  }
  std::vector<ChunkDraft> drafts(mesh.m_materials.size());
  for (size_t i = 0; i < drafts.size(); ++i) {
    ReportProgress(ui, i, drafts.size());
    drafts[i].material = static_cast<uint32_t>(i);
    drafts[i].faces.reserve(faceCounts[i]);
  }
  for (size_t i = 0; i < mesh.m_faces.size(); ++i) {
    const GenericFace face = mesh.m_faces[i];
    if (IsUsable(mesh, face)) drafts[face.material].faces.push_back(static_cast<uint32_t>(i));
  }
  return drafts;
}

bool FinishChunks(const GenericMesh& mesh, std::vector<ChunkDraft>& drafts,
                  std::vector<IndexedMesh::Chunk>& chunks, ExportUserInterface& ui) {
  chunks.reserve(drafts.size());
  for (ChunkDraft& draft : drafts) {
    if (!FinishChunk(mesh, draft, chunks.emplace_back())) {
      ui.LogError("Index out of range, chunk too large. (Should have been split earlier)");
      return false;
    }
    draft = ChunkDraft();
  }
  return true;
}

void RemoveDegenerateTriangles(IndexedMesh::Chunk& chunk) {
  for (size_t i = chunk.triangles.size(); i-- > 0;) {
    if (!IsDegenerate(chunk.triangles[i])) continue;
    chunk.triangles[i] = chunk.triangles.back();
    chunk.triangles.pop_back();
  }
}

std::vector<Vec3> ComputeFaceNormals(const IndexedMesh::Chunk& chunk) {
  std::vector<Vec3> normals;
  normals.reserve(chunk.triangles.size());
  for (const Triangle& triangle : chunk.triangles) {
    const auto [p0, p1, p2] = CornersOf(chunk, triangle);
    const bool flat = Length(Cross(p1 - p0, p2 - p0)) == 0;
    normals.push_back(flat ? Vec3{0, 0, 1} : FaceNormal(p0, p1, p2));
  }
  return normals;
}

float ComputeSurfaceArea(const IndexedMesh::Chunk& chunk) {
  double doubleArea = 0;
  for (const Triangle& triangle : chunk.triangles) {
    const auto [p0, p1, p2] = CornersOf(chunk, triangle);
    doubleArea += Length(Cross(p1 - p0, p2 - p0));
  }
  return static_cast<float>(doubleArea / 2);
}

}  // namespace orv
