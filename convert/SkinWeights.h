#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "convert/Messages.h"
#include "scene/IndexedMesh.h"

namespace orv::convert {

struct JointWeight {
  uint16_t joint = 0;
  float weight = 0;
};

// For each vertex of a chunk its joints, the strongest first, no joint twice, weights that sum to
// 1. Empty when no vertex of the chunk follows a bone.
using ChunkWeights = std::vector<std::vector<JointWeight>>;

constexpr size_t kJointsPerSet = 4;
constexpr size_t kMostJoints = 16;  // of a vertex: four sets

// Weighs the vertices of the chunks, one after the other.
class SkinWeights {
 public:
  // joints: of the bones by name in lower case. stillJoint: for vertices that follow no bone.
  SkinWeights(std::unordered_map<std::string, size_t> joints, uint16_t stillJoint)
      : m_joints(std::move(joints)), m_stillJoint(stillJoint) {}

  ChunkWeights Of(const IndexedMesh& mesh, size_t chunk, Messages& messages);
  bool NeedsStillJoint() const { return m_needsStillJoint; }

 private:
  std::unordered_map<std::string, size_t> m_joints;
  uint16_t m_stillJoint;
  bool m_needsStillJoint = false;
};

}  // namespace orv::convert
