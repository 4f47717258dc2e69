#pragma once

#include <cstdint>
#include <vector>

#include "scene/IndexedMesh.h"

namespace orv {

struct BoundingBox {
  Vec3 minimum{3.4028235e38f, 3.4028235e38f, 3.4028235e38f};  // metres
  Vec3 maximum{-3.4028235e38f, -3.4028235e38f, -3.4028235e38f};
  bool operator==(const BoundingBox&) const = default;
};

// Only weights above zero count.
struct MeshStatistics {
  uint32_t maxInfluencesPerVertex = 0;
  uint32_t maxBonesPerChunk = 0;
  std::vector<uint32_t> maxInfluencesOfChunk;  // per vertex; one entry a chunk
};

// The start values for a mesh without vertices.
BoundingBox ComputeBoundingBox(const IndexedMesh& mesh);

MeshStatistics ComputeStatistics(const IndexedMesh& mesh);

}  // namespace orv
