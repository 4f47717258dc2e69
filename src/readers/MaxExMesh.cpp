#include "readers/MaxExMesh.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "plugapi.h"
#include "readers/MaxExHost.h"
#include "readers/MaxExMaterial.h"

namespace orv {
namespace {

constexpr uint32_t kNoNormal = 0xFFFFFFFF;

bool IsStandard(Mtl& material) { return material.ClassID() == Class_ID(DMTL_CLASS_ID, 0); }

bool IsMulti(Mtl& material) { return material.ClassID() == Class_ID(MULTI_CLASS_ID, 0); }

// Records to make for a material; nothing for a class that cannot be exported. A multi/sub-object
// material that is empty counts as one whose only sub-material is missing.
std::optional<size_t> CountMaterials(Mtl* material) {
  if (!material || IsStandard(*material)) return 1;
  if (IsMulti(*material)) return static_cast<size_t>(std::max(material->NumSubMtls(), 1));
  return std::nullopt;
}

// The host's vertex normals, and which of them a corner has.
class VertexNormals {
 public:
  explicit VertexNormals(const Mesh& mesh) : m_mesh(mesh) {
    m_start.reserve(static_cast<size_t>(mesh.getNumVerts()));
    for (int v = 0; v < mesh.getNumVerts(); ++v) {
      m_start.push_back(m_count);
      m_count += CountAt(mesh.getRVert(v));
    }
  }

  std::vector<Vec3> Read() const {
    std::vector<Vec3> normals;
    normals.reserve(m_count);
    for (int v = 0; v < m_mesh.getNumVerts(); ++v) {
      const RVertex& vertex = m_mesh.getRVert(v);
      const uint32_t count = CountAt(vertex);
      const RNormal* const first = count == 1 ? &vertex.rn : vertex.ern;
      for (uint32_t k = 0; k < count; ++k) normals.push_back(ToVec3(first[k].getNormal()));
    }
    return normals;
  }

  // Place in Read()'s result of the vertex's normal for a face of these smoothing groups.
  uint32_t Find(uint32_t v, DWORD groups) const {
    if (groups == 0) return kNoNormal;
    const RVertex& vertex = m_mesh.getRVert(static_cast<int>(v));
    const uint32_t count = CountAt(vertex);
    if (count == 1) return m_start[v];
    for (uint32_t k = 0; k < count; ++k) {
      if (vertex.ern[k].getSmGroup() & groups) return m_start[v] + k;
    }
    return kNoNormal;
  }

 private:
  static uint32_t CountAt(const RVertex& vertex) { return vertex.rFlags & NORCT_MASK; }

  const Mesh& m_mesh;
  std::vector<uint32_t> m_start;  // per vertex: place of its first normal
  uint32_t m_count = 0;
};

void ReadPoints(const Mesh& mesh, GenericMesh& out) {
  out.m_positions.reserve(static_cast<size_t>(mesh.getNumVerts()));
  for (int v = 0; v < mesh.getNumVerts(); ++v) out.m_positions.push_back(ToVec3(mesh.verts[v]));
  out.m_texCoords.reserve(static_cast<size_t>(mesh.getNumTVerts()));
  for (int t = 0; t < mesh.getNumTVerts(); ++t) {
    out.m_texCoords.push_back({mesh.tVerts[t].x, 1 - mesh.tVerts[t].y});
  }
}

// Corners that no vertex normal is for share the normal of their face.
void ReadFaces(const Mesh& mesh, const VertexNormals& normals, GenericMesh& out) {
  const size_t faceCount = static_cast<size_t>(mesh.getNumFaces());
  out.m_faces.Reserve(faceCount, 3 * faceCount);
  for (int f = 0; f < mesh.getNumFaces(); ++f) {
    const Face& face = mesh.faces[f];
    std::array<FaceCorner, 3> corners;
    bool needsFaceNormal = false;
    for (int k = 0; k < 3; ++k) {
      corners[k] = {face.v[k], normals.Find(face.v[k], face.getSmGroup()), mesh.tvFace[f].t[k]};
      needsFaceNormal |= corners[k].normal == kNoNormal;
    }
    if (needsFaceNormal) {
      const uint32_t faceNormal = static_cast<uint32_t>(out.m_normals.size());
      out.m_normals.push_back(ToVec3(mesh.FaceNormal(f, TRUE)));
      for (FaceCorner& corner : corners) {
        if (corner.normal == kNoNormal) corner.normal = faceNormal;
      }
    }
    const size_t material = face.getMatID() % out.m_materials.size();
    out.m_materials[material].used = true;
    out.m_faces.Add(static_cast<int32_t>(material), corners);
  }
}

}  // namespace

FillResult MaxExGenericMesh::Fill(Mesh& hostMesh, const GenericSkeleton::Node* bone, Mtl* material,
                                  std::vector<TexCoordTransform>& transforms, const char* nodeName,
                                  const Options& options, ExportUserInterface& ui) {
  if (hostMesh.getNumFaces() == 0) return FillResult::NoFaces;
  if (hostMesh.getNumTVerts() == 0) return FillResult::NoTextureMapping;
  const std::optional<size_t> materialCount = CountMaterials(material);
  if (!materialCount) {
    ui.Report("material-not-standard", nodeName, material->GetName().data());
    return FillResult::NonStandardMaterial;
  }
  m_materials.resize(*materialCount);
  for (GenericMaterial& record : m_materials) record.attachmentBone = bone;
  hostMesh.buildNormals();
  const VertexNormals normals(hostMesh);
  m_normals = normals.Read();
  ReadPoints(hostMesh, *this);
  ReadFaces(hostMesh, normals, *this);
  RemoveUnusedMaterials();
  transforms.assign(m_materials.size(), {});
  return ReadMaterials(material, transforms, nodeName, options, ui);
}

FillResult MaxExGenericMesh::ReadMaterials(Mtl* material,
                                           std::vector<TexCoordTransform>& transforms,
                                           const char* nodeName, const Options& options,
                                           ExportUserInterface& ui) {
  for (size_t i = 0; i < m_materials.size(); ++i) {
    Mtl* source = material;
    if (material && IsMulti(*material)) {
      const int index = m_materials[i].sourceSubMaterial;
      source = index < material->NumSubMtls() ? material->GetSubMtl(index) : nullptr;
    }
    if (source && !IsStandard(*source)) {
      ui.Report("sub-material-not-standard", nodeName, material->GetName().data(),
                source->GetName().data());
      return FillResult::NonStandardSubMaterial;
    }
    ReadMaterial(m_materials[i], static_cast<StdMat2*>(source), transforms[i], nodeName,
                 options.m_normalMapFlipGreen, ui);
  }
  return FillResult::Filled;
}

}  // namespace orv
