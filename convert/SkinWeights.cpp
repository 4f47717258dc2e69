#include "convert/SkinWeights.h"

#include <algorithm>
#include <cmath>

#include "platform/ExString.h"

namespace orv::convert {

namespace {

// How many were found, for one message each.
struct Faults {
  size_t off = 0, bad = 0, twice = 0, unequal = 0, tooMany = 0, still = 0;
};

void Tell(const Faults& faults, size_t chunk, Messages& messages) {
  const std::string place = "chunk " + std::to_string(chunk);
  messages.Mended(place, faults.off, "weights of vertices that it lacks left out");
  messages.Mended(place, faults.bad, "weights below 0 or not finite left out");
  messages.Mended(place, faults.twice, "vertices follow a bone twice, weights added up");
  messages.Mended(place, faults.tooMany, "vertices follow more than 16 bones, the strongest kept");
  messages.Mended(place, faults.unequal, "vertices with weights that do not sum to 1, scaled");
  messages.Mended(place, faults.still, "vertices follow no bone, bound to one that stands still");
}

// Adds up what one joint has twice. Returns whether there was such a joint.
bool MergeJoints(std::vector<JointWeight>& weights) {
  std::stable_sort(weights.begin(), weights.end(),
                   [](const auto& a, const auto& b) { return a.joint < b.joint; });
  size_t kept = 0;
  for (size_t i = 0; i < weights.size(); ++i) {
    if (kept > 0 && weights[kept - 1].joint == weights[i].joint) {
      weights[kept - 1].weight += weights[i].weight;
    } else {
      weights[kept++] = weights[i];
    }
  }
  const bool merged = kept < weights.size();
  weights.resize(kept);
  return merged;
}

void Normalise(std::vector<JointWeight>& weights, Faults& faults) {
  std::stable_sort(weights.begin(), weights.end(),
                   [](const auto& a, const auto& b) { return a.weight > b.weight; });
  double all = 0, sum = 0;
  for (const JointWeight& entry : weights) all += entry.weight;
  if (std::abs(all - 1) > 1e-4) ++faults.unequal;
  if (weights.size() > kMostJoints) {
    ++faults.tooMany;
    weights.resize(kMostJoints);
  }
  for (const JointWeight& entry : weights) sum += entry.weight;
  for (JointWeight& entry : weights) entry.weight = static_cast<float>(entry.weight / sum);
}

}  // namespace

ChunkWeights SkinWeights::Of(const IndexedMesh& mesh, size_t chunk, Messages& messages) {
  Faults faults;
  ChunkWeights weights(mesh.chunks[chunk].vertices.size());
  bool any = false;
  for (const auto& bone : mesh.influences[chunk]->m_bones) {
    const auto joint = static_cast<uint16_t>(m_joints.at(LowerCase(bone->m_name)));
    for (const VertexWeight& entry : bone->m_weights) {
      const bool isOn = entry.vertex < weights.size();
      const bool isGood = std::isfinite(entry.weight) && entry.weight >= 0;
      if (!isOn) ++faults.off;
      if (isOn && !isGood) ++faults.bad;
      if (!isOn || !isGood || entry.weight < 1e-12f) continue;
      weights[entry.vertex].push_back({joint, entry.weight});
      any = true;
    }
  }
  if (!any) weights.clear();
  for (std::vector<JointWeight>& entries : weights) {
    if (entries.empty()) {
      ++faults.still;
      m_needsStillJoint = true;
      entries.push_back({m_stillJoint, 1});
      continue;
    }
    if (MergeJoints(entries)) ++faults.twice;
    Normalise(entries, faults);
  }
  Tell(faults, chunk, messages);
  return weights;
}

}  // namespace orv::convert
