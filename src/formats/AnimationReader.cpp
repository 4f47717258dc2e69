#include "formats/AnimationReader.h"

#include "formats/FileVersions.h"

namespace orv {

namespace {

constexpr size_t kMinEventBytes = 12;
constexpr size_t kFrameHeaderBytes = 16;  // tag, length, version, number

void ReadInfo(ChunkReader& in, AnimationFile& file) {
  in.EnterChunk("INFO", kAnimationInfoVersion, kAnimationInfoVersion);
  file.name = in.ReadString();
  const int32_t frameCount = in.ReadI32();  // below zero for a range that ends before it begins
  file.frameCount = frameCount > 0 ? static_cast<uint32_t>(frameCount) : 0;
  file.frameRate = in.ReadU32();
  file.masterScale = in.ReadF32();
  in.LeaveChunk();
}

void ReadEventRecords(ChunkReader& in, std::vector<AnimationEvent>& events) {
  in.EnterChunk("EVNT", kEventsVersion, kEventsVersion);
  events.resize(in.ReadCount("event", kMinEventBytes));
  for (AnimationEvent& event : events) {
    event.frame = in.ReadI32();
    event.type = in.ReadU32();
    event.name = in.ReadString();
  }
  in.LeaveChunk();
}

void ReadSkeleton(ChunkReader& in, std::vector<BoneNode>& bones) {
  in.EnterChunk("SKEL", kSkeletonVersion, kSkeletonVersion);
  ReadBoneTree(in, bones, nullptr);
  in.LeaveChunk();
}

void ReadFrames(ChunkReader& in, AnimationFile& file) {
  const size_t boneCount = file.bones.size();
  in.RequireRoom("frame", file.frameCount, kFrameHeaderBytes + boneCount * sizeof(BonePose));
  file.poses.resize(file.frameCount * boneCount);
  for (uint32_t frame = 0; frame < file.frameCount; ++frame) {
    in.EnterChunk("FRAM", kFrameVersion, kFrameVersion, frame);
    if (const uint32_t number = in.ReadU32(); number != frame) {
      in.Fail(
          ReadFault::Index,
          "frame " + std::to_string(number) + " where frame " + std::to_string(frame) + " is due",
          4);
    }
    in.ReadBlock(file.poses.data() + frame * boneCount, boneCount * sizeof(BonePose),
                 sizeof(float));
    in.LeaveChunk();
  }
}

void ReadFile(ChunkReader& in, AnimationFile& file) {
  in.EnterRoot("ANIM");
  ReadInfo(in, file);
  ReadEventRecords(in, file.events);
  ReadSkeleton(in, file.bones);
  ReadFrames(in, file);
  in.LeaveRoot();
}

}  // namespace

bool ReadAnimation(std::string_view bytes, AnimationFile& file, ReadProblem& problem) {
  return ReadContent(bytes, file, problem, ReadFile);
}

bool ReadAnimationFile(const std::string& fileName, AnimationFile& file, ReadProblem& problem) {
  std::string bytes;
  return ReadWholeFile(fileName, bytes, problem) && ReadAnimation(bytes, file, problem);
}

}  // namespace orv
