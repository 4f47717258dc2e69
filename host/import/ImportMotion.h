// Inside of OpenScene: animations.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/import/ImportContext.h"

namespace orv::host {

// A step of a node's transform: it stands still when it has no track.
struct TransformStep {
  Matrix3 matrix;
  std::shared_ptr<const TransformTrack> track;
};

// The node is moved by the first step first.
void PlaceNode(MemoryNode& node, std::vector<TransformStep> steps);

// The channels of one animation, or of none, by the names of their nodes.
class MotionChannels {
 public:
  MotionChannels(const aiAnimation* animation, const AxisTurn& turn, int framesPerSecond);

  bool Find(const std::string& nodeName) const { return m_channels.contains(nodeName); }
  // Null when there is no channel for the node. What the channel leaves out is as in `atRest`.
  std::shared_ptr<const TransformTrack> TrackFor(const std::string& nodeName,
                                                 const aiMatrix4x4& atRest) const;

 private:
  std::unordered_map<std::string, const aiNodeAnim*> m_channels;
  const AxisTurn& m_turn;
  double m_ticksPerSecond = 1;
};

// The animation to play; null when the scene has none. Sets the scene's list of animations, frame
// rate and range. Throws SceneError when there is none of the wanted name.
const aiAnimation* ImportTime(ImportContext& context);

}  // namespace orv::host
