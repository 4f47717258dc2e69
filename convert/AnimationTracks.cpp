#include "convert/Parts.h"

#include <cmath>
#include <iterator>

namespace orv::convert {

namespace {

constexpr uint32_t kDefaultFrameRate = 30;

Json EventsOf(const AnimationFile& animation, uint32_t frameRate) {
  Json events = Json::array();
  for (const AnimationEvent& event : animation.events) {
    Json entry = {{"frame", event.frame}, {"time", event.frame / static_cast<double>(frameRate)}};
    if (event.type < std::size(kEventKeywords)) {
      entry["type"] = kEventKeywords[event.type];
    } else {
      entry["type"] = event.type;
    }
    entry["name"] = Utf8(event.name);
    events.push_back(std::move(entry));
  }
  return events;
}

// The poses of every frame in the world. A pose that is no pose is that of the frame before, at
// first the bone's rest.
std::vector<Pose> WorldPoses(const AnimationFile& animation, double metresPerUnit,
                             const std::vector<SceneBone>& bones, Messages& messages) {
  const size_t trackCount = animation.bones.size();
  std::vector<Pose> poses(animation.poses.size());
  std::vector<Pose> before(trackCount);
  for (const SceneBone& bone : bones) {
    if (bone.track >= 0) before[static_cast<size_t>(bone.track)] = bone.rest;
  }
  size_t mended = 0;
  for (size_t i = 0; i < poses.size(); ++i) {
    const BonePose& stored = animation.poses[i];
    const auto pose = PoseFrom(stored.position, stored.rotation, metresPerUnit);
    if (!pose) ++mended;
    poses[i] = before[i % trackCount] = pose.value_or(before[i % trackCount]);
  }
  messages.Mended("animation", mended,
                  "poses that were none replaced by those of the frame before");
  return poses;
}

// The keys of one node, relative to its parent.
struct Keys {
  std::vector<float> translations, rotations;
};

Keys KeysOf(const std::vector<Pose>& poses, size_t trackCount, size_t track, int32_t parentTrack) {
  Keys keys;
  Rotation last;
  for (size_t first = 0; first < poses.size(); first += trackCount) {
    Pose local = poses[first + track];
    if (parentTrack >= 0) {
      local = Compose(Inverse(poses[first + static_cast<size_t>(parentTrack)]), local);
    }
    // Of the two quaternions of a rotation the one nearer to the last key, so that what is between
    // the keys takes the short way in every viewer.
    Rotation& q = local.rotation;
    if (Dot(q, last) < 0) {
      q = {-q.x, -q.y, -q.z, -q.w};
    }
    last = q;
    for (const double value : {local.position.x, local.position.y, local.position.z}) {
      keys.translations.push_back(static_cast<float>(value));
    }
    for (const double value : {q.x, q.y, q.z, q.w}) {
      keys.rotations.push_back(static_cast<float>(value));
    }
  }
  return keys;
}

std::vector<float> TimesOf(size_t frameCount, uint32_t frameRate) {
  std::vector<float> times;
  for (size_t frame = 0; frame < frameCount; ++frame) {
    times.push_back(static_cast<float>(static_cast<double>(frame) / frameRate));
  }
  return times;
}

void AddChannel(Json& animation, size_t node, const char* path, size_t times, size_t values) {
  animation["channels"].push_back(
      {{"sampler", animation["samplers"].size()}, {"target", {{"node", node}, {"path", path}}}});
  animation["samplers"].push_back(
      {{"input", times}, {"output", values}, {"interpolation", "LINEAR"}});
}

}  // namespace

void AddAnimation(GlbDocument& document, const AnimationFile& animation, double metresPerUnit,
                  const std::vector<SceneBone>& bones, Messages& messages) {
  const size_t trackCount = animation.bones.size();
  if (trackCount == 0 || animation.poses.empty()) return;
  const size_t frameCount = animation.poses.size() / trackCount;
  uint32_t frameRate = animation.frameRate;
  if (frameRate == 0) {
    frameRate = kDefaultFrameRate;
    messages.mended.push_back("animation: has a frame rate of 0, taken for 30");
  }
  const std::vector<Pose> poses = WorldPoses(animation, metresPerUnit, bones, messages);
  const size_t times =
      document.AddFloats(TimesOf(frameCount, frameRate), frameCount, "SCALAR", Use::Other, true);
  Json result = {
      {"name", Utf8(animation.name)}, {"channels", Json::array()}, {"samplers", Json::array()}};
  for (size_t node = 0; node < bones.size(); ++node) {
    const SceneBone& bone = bones[node];
    if (bone.track < 0) continue;
    const int32_t parentTrack =
        bone.parent < 0 ? -1 : bones[static_cast<size_t>(bone.parent)].track;
    const Keys keys = KeysOf(poses, trackCount, static_cast<size_t>(bone.track), parentTrack);
    AddChannel(result, node, "translation", times,
               document.AddFloats(keys.translations, frameCount, "VEC3", Use::Other));
    AddChannel(result, node, "rotation", times,
               document.AddFloats(keys.rotations, frameCount, "VEC4", Use::Other));
  }
  result["extras"] = {{"frameRate", frameRate}, {"events", EventsOf(animation, frameRate)}};
  document.Add("animations", std::move(result));
}

}  // namespace orv::convert
