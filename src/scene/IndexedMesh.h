#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "scene/GenericInfluence.h"
#include "scene/GenericMaterial.h"
#include "scene/GenericMesh.h"

namespace orv {

// A vertex as the file holds it: 20 bytes.
struct IndexedVertex {
  float x = 0, y = 0, z = 0;
  float u = 0, v = 0;
  Vec3 Position() const { return {x, y, z}; }
};
static_assert(sizeof(IndexedVertex) == 20);

using Triangle = std::array<uint16_t, 3>;

// The model an indexed-mesh file holds: chunks of one material each, with 16-bit triangles.
// Metres; world space, or the attachment bone's space for a rigidly bound part.
struct IndexedMesh {
  struct Chunk {
    GenericMaterial material;
    float surfaceArea = 0;  // square metres
    uint32_t word = 4;      // passed through; 4 in every chunk built here
    std::vector<IndexedVertex> vertices;
    std::vector<Triangle> triangles;
    std::vector<Vec3> normals;                        // per vertex
    std::vector<Vec3> tangents;                       // per vertex, or empty
    std::vector<Vec3> faceNormals;                    // at least one per triangle
    std::vector<std::array<uint32_t, 3>> neighbours;  // (chunk << 16) | triangle, or kNoNeighbour;
                                                      // empty unless asked for
  };
  static constexpr uint32_t kNoNeighbour = 0xFFFFFFFF;

  std::array<float, 3> vector{0, 0, 0};     // passed through
  std::array<float, 3> direction{1, 0, 0};  // passed through
  uint32_t word = 0;                        // passed through
  std::vector<Chunk> chunks;
  std::vector<std::unique_ptr<GenericMeshInfluence>> influences;  // one per chunk, or none
  std::vector<AttachmentPoint> attachmentPoints;
  GenericSkeleton* skeleton = nullptr;  // not owned; null unless rigidly bound
};

}  // namespace orv
