#include "meshproc/ChunkBuilder.h"

#include <algorithm>
#include <cmath>
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

// Stands upright on the triangle and is twice its area long. Inline: the compiler would not, and it
// is called for every triangle twice.
inline Vec3 UprightOn(Vec3 p0, Vec3 p1, Vec3 p2) { return Cross(p1 - p0, p2 - p0); }

// The surface area, and face normals that are not finite for triangles of zero area. From the
// source's own corners: those they were welded with may have 0 for -0.
void MeasureFaces(const GenericMesh& mesh, std::span<const uint32_t> faces,
                  IndexedMesh::Chunk& chunk) {
  double doubleArea = 0;
  chunk.faceNormals.reserve(faces.size());
  for (const uint32_t face : faces) {
    const auto corners = mesh.m_faces[face].corners;
    const Vec3 upright =
        UprightOn(mesh.m_positions[corners[0].position], mesh.m_positions[corners[1].position],
                  mesh.m_positions[corners[2].position]);
    const float length = Length(upright);
    doubleArea += length;
    chunk.faceNormals.push_back(upright * (1.0f / length));
  }
  chunk.surfaceArea = static_cast<float>(doubleArea / 2);
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
  MeasureFaces(mesh, draft.faces, chunk);
  return true;
}

bool IsDegenerate(const Triangle& t) { return t[0] == t[1] || t[1] == t[2] || t[2] == t[0]; }

// The chunk vertices that take their weights from one vertex of the mesh, in chunk order and
// ascending within a chunk.
class ChunkVertices {
 public:
  struct Place {
    uint32_t chunk;
    uint32_t vertex;
  };

  explicit ChunkVertices(std::span<const std::vector<uint32_t>> cornerMaps) {
    uint32_t sourceCount = 0;
    for (const auto& map : cornerMaps) {
      for (const uint32_t source : map) sourceCount = std::max(sourceCount, source + 1);
    }
    // Counted two places on, so that filling moves each begin to where it belongs.
    m_begins.resize(size_t{sourceCount} + 2);
    for (const auto& map : cornerMaps) {
      for (const uint32_t source : map) ++m_begins[source + 2];
    }
    for (size_t i = 2; i < m_begins.size(); ++i) m_begins[i] += m_begins[i - 1];
    m_places.resize(m_begins.back());
    for (uint32_t chunk = 0; chunk < cornerMaps.size(); ++chunk) {
      for (uint32_t vertex = 0; vertex < cornerMaps[chunk].size(); ++vertex) {
        m_places[m_begins[cornerMaps[chunk][vertex] + 1]++] = {chunk, vertex};
      }
    }
  }

  // Empty for a number beyond the mesh's vertices: merged influences can hold such.
  std::span<const Place> Of(uint32_t source) const {
    if (source >= m_begins.size() - 2) return {};
    return {m_places.data() + m_begins[source], m_begins[source + 1] - m_begins[source]};
  }

 private:
  std::vector<uint32_t> m_begins;
  std::vector<Place> m_places;
};

std::unique_ptr<GenericBoneInfluence> WithoutWeights(const GenericBoneInfluence& bone) {
  return std::make_unique<GenericBoneInfluence>(bone.m_name, bone.m_parentName, bone.m_position,
                                                bone.m_rotation);
}

}  // namespace

std::vector<ChunkDraft> GroupFacesByMaterial(const GenericMesh& mesh, ExportUserInterface& ui) {
  ui.SetProgressText("Building chunks");
  std::vector<ChunkDraft> drafts(mesh.m_materials.size());
  for (size_t i = 0; i < drafts.size(); ++i) {
    ui.ReportProgress(i, drafts.size());
    drafts[i].material = static_cast<uint32_t>(i);
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
      ui.Report("index-out-of-range");
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
    const Vec3 upright =
        UprightOn(chunk.vertices[triangle[0]].Position(), chunk.vertices[triangle[1]].Position(),
                  chunk.vertices[triangle[2]].Position());
    const float length = Length(upright);
    normals.push_back(length == 0 ? Vec3{0, 0, 1} : upright * (1.0f / length));
  }
  return normals;
}

std::vector<std::unique_ptr<GenericMeshInfluence>> ExtractInfluences(
    const GenericMeshInfluence& mesh, std::span<const std::vector<uint32_t>> cornerMaps,
    ExportUserInterface& ui) {
  ui.SetProgressText("Extracting mesh influence");
  std::vector<std::unique_ptr<GenericMeshInfluence>> influences;
  influences.reserve(cornerMaps.size());
  for (size_t i = 0; i < cornerMaps.size(); ++i) {
    ui.ReportProgress(i, cornerMaps.size());
    influences.push_back(std::make_unique<ExGenericMeshInfluence>());
    for (const auto& bone : mesh.m_bones) influences[i]->AddBone(WithoutWeights(*bone));
  }

  const ChunkVertices places(cornerMaps);
  for (size_t bone = 0; bone < mesh.m_bones.size(); ++bone) {
    for (const VertexWeight& weight : mesh.m_bones[bone]->m_weights) {
      for (const auto [chunk, vertex] : places.Of(weight.vertex)) {
        influences[chunk]->m_bones[bone]->m_weights.push_back(
            {vertex, weight.weight, weight.offset});
      }
    }
  }
  return influences;
}

}  // namespace orv
