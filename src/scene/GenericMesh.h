#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "scene/GenericInfluence.h"
#include "scene/GenericMaterial.h"
#include "scene/GenericSkeleton.h"
#include "scene/Vector.h"

namespace orv {

struct FaceCorner {
  uint32_t position = 0;
  uint32_t normal = 0;
  uint32_t texCoord = 0;
  bool operator==(const FaceCorner&) const = default;
};

// A polygon as the face list shows it; valid until the list changes.
struct GenericFace {
  int32_t material;
  std::span<const FaceCorner> corners;
};

// The faces of a mesh, corners packed one after the other, so that a million triangles take
// 44 MB whatever the largest polygon.
class GenericFaceList {
 public:
  static constexpr size_t kMaxCorners = 32;

  size_t size() const { return m_materials.size(); }
  bool empty() const { return m_materials.empty(); }
  // Inline, as all stages call it for every face.
  GenericFace operator[](size_t face) const {
    const uint32_t begin = face == 0 ? 0 : m_cornerEnds[face - 1];
    return {m_materials[face], {m_corners.data() + begin, m_cornerEnds[face] - begin}};
  }
  std::span<FaceCorner> Corners(size_t face);
  void Add(int32_t material, std::span<const FaceCorner> corners);
  // Adds the other's faces with their numbers raised.
  void Append(const GenericFaceList& other, int32_t materialOffset, const FaceCorner& offset);
  // Material firstMaterial + i becomes remap[i], in the faces from firstFace on. A face that names
  // none of these keeps its number.
  void RenumberMaterials(std::span<const int32_t> remap, size_t firstMaterial = 0,
                         size_t firstFace = 0);
  void Reserve(size_t faces, size_t corners);

 private:
  std::vector<int32_t> m_materials;
  std::vector<uint32_t> m_cornerEnds;  // one past the face's last corner
  std::vector<FaceCorner> m_corners;
};

struct AttachmentPoint {
  Matrix33 rotation{};  // world space, without scale
  Vec3 position;        // metres
  std::string name;     // at most kMaxNameLength
};

// How a diffuse map's coordinate generator and cropping move texture coordinates.
struct TexCoordTransform {
  float rotation[4] = {1, 0, 0, 1};  // cos a, -sin a, sin a, cos a
  float angle = 0;                   // a, radians; 0: not rotated
  bool cropEnabled = false;
  Vec2 cropOrigin{0, 0};
  Vec2 cropSize{1, 1};
  Vec2 offset{0, 0};  // counts only when cropping
  Vec2 tiling{1, 1};
};

// A polygon mesh independent of the host, with its materials. The scene readers make one per node
// in the node's space, move it into world space and metres, and merge all into the first.
class GenericMesh {
 public:
  virtual ~GenericMesh() = default;

  // Adds the other's geometry and materials behind this one's. Influence, attachment points and
  // skeleton stay as they are.
  void Append(const GenericMesh& other);

  // Drops the materials no face uses and renumbers the faces.
  void RemoveUnusedMaterials();

  // Into world space and metres; then, with a bone, into the space of that bone as it stands at
  // the current sampling time.
  void Transform(const Matrix43& tm, float scale, const GenericSkeleton::Node* bone);

  // One transform per material. A texture coordinate that several materials share is moved once,
  // with the first that a face names.
  void ApplyTexCoordTransforms(std::span<const TexCoordTransform> perMaterial);

  // The mesh with every polygon cut into a fan of triangles; nothing when all are triangles.
  std::unique_ptr<GenericMesh> Triangulate() const;

  std::vector<Vec3> m_positions;
  std::vector<Vec3> m_normals;
  std::vector<Vec2> m_texCoords;  // v runs down: 1 - the host's v
  GenericFaceList m_faces;
  std::vector<GenericMaterial> m_materials;
  std::vector<AttachmentPoint> m_attachmentPoints;

  // Both are lent for the length of a write and not owned.
  const GenericMeshInfluence* m_influence = nullptr;
  GenericSkeleton* m_skeleton = nullptr;

 private:
  void MoveIntoBoneSpace(const GenericSkeleton::Node& bone, float scale);
};

class ExGenericMesh : public GenericMesh {};

}  // namespace orv
