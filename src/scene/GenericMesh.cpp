#include "scene/GenericMesh.h"

#include <algorithm>
#include <cassert>

namespace orv {

namespace {

// At the end, so that the vector grows by factors: never reserve here.
template <typename T>
void AppendAll(std::vector<T>& to, const std::vector<T>& from) {
  to.insert(to.end(), from.begin(), from.end());
}

int32_t Count(const auto& list) { return static_cast<int32_t>(list.size()); }

// The sign test on the diagonal, not the determinant: a half turn counts as two mirrors and a
// quarter turn hides one, as in every file already written.
// Pinned by MeshTransform.MirrorTestReadsThreeSigns.
bool LooksMirrored(const Matrix43& tm) {
  return (tm.rows[0].x < 0) ^ (tm.rows[1].y < 0) ^ (tm.rows[2].z < 0);
}

// Exchanges the outermost pair of an odd polygon only, which is enough for triangles; a polygon
// with an even number of corners keeps its order.
// Pinned by MeshTransform.MirrorTestReadsThreeSigns.
void Reverse(std::span<FaceCorner> corners) {
  if (corners.size() % 2 == 1) std::swap(corners.front(), corners.back());
}

Vec2 Apply(const TexCoordTransform& transform, Vec2 coord) {
  const float u = coord.u - 0.5f;
  const float v = coord.v - 0.5f;
  const Vec2& tiling = transform.tiling;
  const float* r = transform.rotation;
  const bool rotated = transform.angle != 0;
  Vec2 result{tiling.u * (rotated ? r[0] * u + r[1] * v : u) + 0.5f,
              tiling.v * (rotated ? r[2] * u + r[3] * v : v) + 0.5f};
  // Without cropping the offset has no effect.
  // Pinned by TexCoordTransforms.OffsetCountsOnlyWithCropping.
  if (transform.cropEnabled) {
    result.u =
        transform.cropOrigin.u + transform.cropSize.u * (result.u + transform.offset.u * tiling.u);
    result.v =
        transform.cropOrigin.v + transform.cropSize.v * (result.v + transform.offset.v * tiling.v);
  }
  return result;
}

}  // namespace

std::span<FaceCorner> GenericFaceList::Corners(size_t face) {
  const uint32_t begin = face == 0 ? 0 : m_cornerEnds[face - 1];
  return {m_corners.data() + begin, m_cornerEnds[face] - begin};
}

void GenericFaceList::Add(int32_t material, std::span<const FaceCorner> corners) {
  assert(corners.size() <= kMaxCorners);
  m_materials.push_back(material);
  m_corners.insert(m_corners.end(), corners.begin(), corners.end());
  m_cornerEnds.push_back(static_cast<uint32_t>(m_corners.size()));
}

void GenericFaceList::Append(const GenericFaceList& other, int32_t materialOffset,
                             const FaceCorner& offset) {
  const size_t oldFaces = size();
  const size_t oldCorners = m_corners.size();
  AppendAll(m_materials, other.m_materials);
  AppendAll(m_cornerEnds, other.m_cornerEnds);
  AppendAll(m_corners, other.m_corners);
  for (size_t face = oldFaces; face < size(); ++face) {
    m_materials[face] += materialOffset;
    m_cornerEnds[face] += static_cast<uint32_t>(oldCorners);
  }
  for (size_t corner = oldCorners; corner < m_corners.size(); ++corner) {
    m_corners[corner].position += offset.position;
    m_corners[corner].normal += offset.normal;
    m_corners[corner].texCoord += offset.texCoord;
  }
}

void GenericFaceList::RenumberMaterials(std::span<const int32_t> remap, size_t firstMaterial,
                                        size_t firstFace) {
  for (size_t face = firstFace; face < size(); ++face) {
    const int32_t place = m_materials[face] - static_cast<int32_t>(firstMaterial);
    if (place >= 0 && place < Count(remap)) m_materials[face] = remap[place];
  }
}

void GenericFaceList::Reserve(size_t faces, size_t corners) {
  m_materials.reserve(faces);
  m_cornerEnds.reserve(faces);
  m_corners.reserve(corners);
}

void GenericMesh::Append(const GenericMesh& other) {
  assert(&other != this);
  m_faces.Append(
      other.m_faces, Count(m_materials),
      {static_cast<uint32_t>(m_positions.size()), static_cast<uint32_t>(m_normals.size()),
       static_cast<uint32_t>(m_texCoords.size())});
  AppendAll(m_positions, other.m_positions);
  AppendAll(m_normals, other.m_normals);
  AppendAll(m_texCoords, other.m_texCoords);
  AppendAll(m_materials, other.m_materials);
}

void GenericMesh::RemoveUnusedMaterials() {
  std::vector<int32_t> remap(m_materials.size());
  std::vector<GenericMaterial> kept;
  for (size_t i = 0; i < m_materials.size(); ++i) {
    m_materials[i].sourceSubMaterial = static_cast<int32_t>(i);
    // A face of an unused material falls to the first that is left.
    // Pinned by UnusedMaterials.FacesOfDroppedMaterialsFallToTheFirst.
    remap[i] = m_materials[i].used ? Count(kept) : 0;
    if (m_materials[i].used) kept.push_back(std::move(m_materials[i]));
  }
  m_materials = std::move(kept);
  m_faces.RenumberMaterials(remap);
}

void GenericMesh::Transform(const Matrix43& tm, float scale, const GenericSkeleton::Node* bone) {
  for (Vec3& position : m_positions) position = tm.TransformPoint(position) * scale;
  for (Vec3& normal : m_normals) {
    const Vec3 moved = tm.TransformVector(normal);
    const float length = Length(moved);
    normal = {moved.x / length, moved.y / length, moved.z / length};  // no guard: 0 / 0 stays NaN
  }
  if (LooksMirrored(tm)) {
    for (size_t face = 0; face < m_faces.size(); ++face) Reverse(m_faces.Corners(face));
  }
  if (bone) MoveIntoBoneSpace(*bone, scale);
}

void GenericMesh::MoveIntoBoneSpace(const GenericSkeleton::Node& bone, float scale) {
  const Matrix33 inverse = Transpose(RotationRows(bone.Rotation()));
  const Vec3 origin = bone.Position() * scale;
  for (Vec3& position : m_positions) position = (position - origin) * inverse;
  for (Vec3& normal : m_normals) normal = normal * inverse;
}

void GenericMesh::ApplyTexCoordTransforms(std::span<const TexCoordTransform> perMaterial) {
  std::vector<bool> seen(m_texCoords.size());
  for (size_t i = 0; i < m_faces.size(); ++i) {
    const GenericFace face = m_faces[i];
    if (face.material < 0 || face.material >= Count(perMaterial)) continue;
    const TexCoordTransform& transform = perMaterial[face.material];
    for (const FaceCorner& corner : face.corners) {
      if (corner.texCoord >= seen.size() || seen[corner.texCoord]) continue;
      seen[corner.texCoord] = true;
      m_texCoords[corner.texCoord] = Apply(transform, m_texCoords[corner.texCoord]);
    }
  }
}

std::unique_ptr<GenericMesh> GenericMesh::Triangulate() const {
  size_t extra = 0;
  for (size_t i = 0; i < m_faces.size(); ++i) {
    if (m_faces[i].corners.size() > 3) extra += m_faces[i].corners.size() - 3;
  }
  if (extra == 0) return nullptr;

  GenericFaceList triangles;
  triangles.Reserve(m_faces.size() + extra, 3 * (m_faces.size() + extra));
  for (size_t i = 0; i < m_faces.size(); ++i) {
    const GenericFace face = m_faces[i];
    const auto corners = face.corners;
    triangles.Add(face.material, corners.first(std::min<size_t>(corners.size(), 3)));
    for (size_t k = 3; k < corners.size(); ++k) {
      triangles.Add(face.material, std::array{corners[0], corners[k - 1], corners[k]});
    }
  }
  auto result = std::make_unique<GenericMesh>(*this);
  result->m_faces = std::move(triangles);
  return result;
}

}  // namespace orv
