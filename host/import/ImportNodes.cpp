#include <algorithm>
#include <cmath>
#include <span>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/import/ImportSteps.h"

namespace orv::host {
namespace {

// The importer splits the transform of some FBX nodes into a chain of nodes with this in their
// name.
constexpr std::string_view kPivotMark = "_$AssimpFbx$_";

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

// Null when the file has none at all and none is wanted.
const aiAnimation* PickAnimation(const SourceFile& file, const std::string& wanted) {
  const aiScene& source = *file.scene;
  if (wanted.empty()) return source.mNumAnimations > 0 ? source.mAnimations[0] : nullptr;
  std::string names;
  for (unsigned i = 0; i < source.mNumAnimations; ++i) {
    const aiAnimation* animation = source.mAnimations[i];
    if (wanted == animation->mName.C_Str()) return animation;
    names += (i > 0 ? ", \"" : "\"") + std::string(animation->mName.C_Str()) + '"';
  }
  throw SceneError(file.path + ": there is no animation \"" + wanted + "\"" +
                   (names.empty() ? ", nor any other" : "; there are: " + names));
}

// What the channel leaves out is as in `atRest`.
TransformTrack ReadTrack(const aiNodeAnim& channel, const aiMatrix4x4& atRest, const AxisTurn& turn,
                         double ticksPerSecond) {
  TransformTrack track;
  for (unsigned i = 0; i < channel.mNumScalingKeys; ++i) {
    const aiVectorKey& key = channel.mScalingKeys[i];
    track.scales.push_back({key.mTime / ticksPerSecond, turn.Scale(key.mValue)});
  }
  for (unsigned i = 0; i < channel.mNumRotationKeys; ++i) {
    const aiQuatKey& key = channel.mRotationKeys[i];
    track.rotations.push_back({key.mTime / ticksPerSecond, turn.Turn(key.mValue)});
  }
  for (unsigned i = 0; i < channel.mNumPositionKeys; ++i) {
    const aiVectorKey& key = channel.mPositionKeys[i];
    track.translations.push_back({key.mTime / ticksPerSecond, turn.Point(key.mValue)});
  }
  aiVector3D scale, translation;
  aiQuaternion rotation;
  atRest.Decompose(scale, rotation, translation);
  if (track.scales.empty()) track.scales.push_back({0, turn.Scale(scale)});
  if (track.rotations.empty()) track.rotations.push_back({0, turn.Turn(rotation)});
  if (track.translations.empty()) track.translations.push_back({0, turn.Point(translation)});
  SortByTime(track.scales);
  SortByTime(track.rotations);
  SortByTime(track.translations);
  return track;
}

// By the names of their nodes; of several for one node the first counts.
std::unordered_map<std::string, const aiNodeAnim*> ChannelsOf(const aiAnimation* animation) {
  std::unordered_map<std::string, const aiNodeAnim*> channels;
  for (unsigned i = 0; animation && i < animation->mNumChannels; ++i) {
    channels.emplace(animation->mChannels[i]->mNodeName.C_Str(), animation->mChannels[i]);
  }
  return channels;
}

// Cameras and lights stand at the node of their name.
std::unordered_set<std::string> ViewNames(const aiScene& source) {
  std::unordered_set<std::string> names;
  for (unsigned i = 0; i < source.mNumCameras; ++i) names.insert(source.mCameras[i]->mName.C_Str());
  for (unsigned i = 0; i < source.mNumLights; ++i) names.insert(source.mLights[i]->mName.C_Str());
  return names;
}

void MarkJoints(const aiScene& source, SourceTree& tree) {
  for (const aiMesh* mesh : std::span(source.mMeshes, source.mNumMeshes)) {
    for (const aiBone* bone : std::span(mesh->mBones, mesh->mNumBones)) {
      const auto joint = tree.byName.find(bone->mName.C_Str());
      if (joint != tree.byName.end()) tree.nodes[joint->second].isJoint = true;
    }
  }
}

}  // namespace

Playback ChoosePlayback(const SourceFile& file, const SceneSettings& settings) {
  constexpr double kMostFrames = 10'000'000;
  Playback result;
  for (unsigned i = 0; i < file.scene->mNumAnimations; ++i) {
    result.names.push_back(file.scene->mAnimations[i]->mName.C_Str());
  }
  result.animation = PickAnimation(file, settings.animation);
  result.framesPerSecond = settings.framesPerSecond.value_or(
      file.facts.framesPerSecond.value_or(result.framesPerSecond));
  if (const aiAnimation* animation = result.animation) {
    const double seconds =
        animation->mDuration / TicksPerSecond(*animation, result.framesPerSecond);
    const double frames = std::floor(seconds * result.framesPerSecond + 0.5);
    if (frames > 0) result.lastFrame = static_cast<int>(std::min(frames, kMostFrames));
  }
  if (settings.frames) std::tie(result.firstFrame, result.lastFrame) = *settings.frames;
  return result;
}

SourceTree ReadTree(const SourceFile& file, const Playback& playback) {
  const aiAnimation* animation = playback.animation;
  const auto channels = ChannelsOf(animation);
  const double ticksPerSecond =
      animation ? TicksPerSecond(*animation, playback.framesPerSecond) : 1;
  const std::unordered_set<std::string> viewNames = ViewNames(*file.scene);
  SourceTree tree;
  std::vector<std::pair<const aiNode*, int>> waiting{{file.scene->mRootNode, -1}};
  while (!waiting.empty()) {
    const auto [source, parent] = waiting.back();
    waiting.pop_back();
    const size_t index = tree.nodes.size();
    const aiMatrix4x4& local = index == 0 ? file.facts.rootTransform : source->mTransformation;
    SourceNode node{source->mName.C_Str(), parent, file.turn.Matrix(local), {}, {}};
    node.meshes.assign(source->mMeshes, source->mMeshes + source->mNumMeshes);
    node.isPivot = parent >= 0 && node.name.find(kPivotMark) != std::string::npos;
    node.isView = viewNames.contains(node.name);
    const bool isFirstOfName = tree.byName.emplace(node.name, index).second;
    const auto channel = channels.find(node.name);
    if (isFirstOfName && channel != channels.end()) {
      node.track = std::make_shared<TransformTrack>(
          ReadTrack(*channel->second, local, file.turn, ticksPerSecond));
    }
    tree.nodes.push_back(std::move(node));
    for (unsigned child = source->mNumChildren; child-- > 0;) {
      // The importer leaves some empty where it skipped a part of the file.
      const aiNode* below = source->mChildren[child];
      if (below) waiting.emplace_back(below, static_cast<int>(index));
    }
  }
  MarkJoints(*file.scene, tree);
  return tree;
}

}  // namespace orv::host
