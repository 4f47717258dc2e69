#include "host/import/ImportMotion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orv::host {
namespace {

// Ticks that the file gives no rate for are frames.
double TicksPerSecond(const aiAnimation& animation, int framesPerSecond) {
  return animation.mTicksPerSecond > 0 ? animation.mTicksPerSecond : framesPerSecond;
}

template <typename T>
void SortByTime(std::vector<Key<T>>& keys) {
  const auto earlier = [](const Key<T>& a, const Key<T>& b) { return a.seconds < b.seconds; };
  std::erase_if(keys, [](const Key<T>& key) { return std::isnan(key.seconds); });
  if (!std::ranges::is_sorted(keys, earlier)) std::ranges::stable_sort(keys, earlier);
}

const aiAnimation* PickAnimation(const ImportContext& context) {
  const aiScene& source = context.source;
  const std::string& wanted = context.settings.animation;
  if (wanted.empty()) return source.mNumAnimations > 0 ? source.mAnimations[0] : nullptr;
  std::string names;
  for (unsigned i = 0; i < source.mNumAnimations; ++i) {
    const aiAnimation* animation = source.mAnimations[i];
    if (wanted == animation->mName.C_Str()) return animation;
    names += (i > 0 ? ", \"" : "\"") + std::string(animation->mName.C_Str()) + '"';
  }
  throw SceneError(context.path + ": there is no animation \"" + wanted + "\"" +
                   (names.empty() ? ", nor any other" : "; there are: " + names));
}

}  // namespace

void PlaceNode(MemoryNode& node, std::vector<TransformStep> steps) {
  const bool moves =
      std::ranges::any_of(steps, [](const TransformStep& s) { return s.track != nullptr; });
  const auto placeAt = [steps = std::move(steps)](double seconds) {
    Matrix3 result;
    for (size_t i = 0; i < steps.size(); ++i) {
      const Matrix3 step = steps[i].track ? steps[i].track->At(seconds) : steps[i].matrix;
      result = i == 0 ? step : result * step;
    }
    return result;
  };
  if (moves) {
    node.SetMotion(placeAt);
  } else {
    node.SetTransform(placeAt(0));
  }
}

MotionChannels::MotionChannels(const aiAnimation* animation, const AxisTurn& turn,
                               int framesPerSecond)
    : m_turn(turn) {
  if (!animation) return;
  m_ticksPerSecond = TicksPerSecond(*animation, framesPerSecond);
  for (unsigned i = 0; i < animation->mNumChannels; ++i) {
    const aiNodeAnim* channel = animation->mChannels[i];
    m_channels.emplace(channel->mNodeName.C_Str(), channel);
  }
}

std::shared_ptr<const TransformTrack> MotionChannels::TrackFor(const std::string& nodeName,
                                                               const aiMatrix4x4& atRest) const {
  const auto found = m_channels.find(nodeName);
  if (found == m_channels.end()) return nullptr;
  const aiNodeAnim& channel = *found->second;
  auto track = std::make_shared<TransformTrack>();
  for (unsigned i = 0; i < channel.mNumScalingKeys; ++i) {
    const aiVectorKey& key = channel.mScalingKeys[i];
    track->scales.push_back({key.mTime / m_ticksPerSecond, m_turn.Scale(key.mValue)});
  }
  for (unsigned i = 0; i < channel.mNumRotationKeys; ++i) {
    const aiQuatKey& key = channel.mRotationKeys[i];
    track->rotations.push_back({key.mTime / m_ticksPerSecond, m_turn.Turn(key.mValue)});
  }
  for (unsigned i = 0; i < channel.mNumPositionKeys; ++i) {
    const aiVectorKey& key = channel.mPositionKeys[i];
    track->translations.push_back({key.mTime / m_ticksPerSecond, m_turn.Point(key.mValue)});
  }
  aiVector3D scale, translation;
  aiQuaternion rotation;
  atRest.Decompose(scale, rotation, translation);
  if (track->scales.empty()) track->scales.push_back({0, m_turn.Scale(scale)});
  if (track->rotations.empty()) track->rotations.push_back({0, m_turn.Turn(rotation)});
  if (track->translations.empty()) track->translations.push_back({0, m_turn.Point(translation)});
  SortByTime(track->scales);
  SortByTime(track->rotations);
  SortByTime(track->translations);
  return track;
}

const aiAnimation* ImportTime(ImportContext& context) {
  constexpr int kUsualFrameRate = 30;
  constexpr double kMostFrames = 10'000'000;
  SceneInfo& info = context.scene.info;
  for (unsigned i = 0; i < context.source.mNumAnimations; ++i) {
    info.animations.push_back(context.source.mAnimations[i]->mName.C_Str());
  }
  const aiAnimation* animation = PickAnimation(context);
  info.framesPerSecond = context.settings.framesPerSecond.value_or(
      context.facts.framesPerSecond.value_or(kUsualFrameRate));
  if (animation) {
    info.animation = animation->mName.C_Str();
    const double seconds = animation->mDuration / TicksPerSecond(*animation, info.framesPerSecond);
    const double frames = std::floor(seconds * info.framesPerSecond + 0.5);
    if (frames > 0) info.lastFrame = static_cast<int>(std::min(frames, kMostFrames));
  }
  if (context.settings.frames) {
    info.firstFrame = context.settings.frames->first;
    info.lastFrame = context.settings.frames->second;
  }
  return animation;
}

}  // namespace orv::host
