#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "scene/GenericMesh.h"

namespace orv {

// One chunk while it is being built. It names faces and corners of the source mesh; their values
// are copied only once its triangles are final.
struct ChunkDraft {
  uint32_t material = 0;
  std::vector<uint32_t> faces;                     // per triangle: the source face
  std::vector<std::array<uint32_t, 3>> triangles;  // into vertices
  std::vector<FaceCorner> vertices;                // the source corner whose values each one has
  std::vector<uint32_t> cornerMap;  // per vertex: the source position whose bone weights it takes;
                                    // empty unless the mesh is skinned
};

// (0, 0) where the mesh has no such texture coordinate.
inline Vec2 TexCoordOf(const GenericMesh& mesh, const FaceCorner& corner) {
  return corner.texCoord < mesh.m_texCoords.size() ? mesh.m_texCoords[corner.texCoord] : Vec2{};
}

}  // namespace orv
