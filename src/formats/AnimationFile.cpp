#include "formats/AnimationFile.h"

#include "formats/ChunkStream.h"

namespace orv {

namespace {

constexpr uint32_t kAnimationInfoVersion = 100;
constexpr uint32_t kEventsVersion = 100;
constexpr uint32_t kFrameVersion = 100;

constexpr size_t kMinEventBytes = 12;
constexpr size_t kFrameHeaderBytes = 16;  // tag, length, version, number

void WriteInfo(std::ostream& out, const AnimationHeader& header) {
  // A range that ends before it begins counts down below zero. Pinned by
  // AnimationFile.RangeThatEndsBeforeItBeginsHasNoFrames.
  const uint32_t frameCount =
      static_cast<uint32_t>(header.lastFrame) - static_cast<uint32_t>(header.firstFrame) + 1;
  ChunkScope info(out, "INFO", kAnimationInfoVersion);
  WriteString(out, header.name);
  WriteU32(out, frameCount);
  WriteU32(out, header.frameRate);
  WriteF32(out, header.masterScale);
}

// From the first to the last frame, both included, counted from the first.
void WriteEvents(std::ostream& out, std::span<const AnimationEvent> events, int32_t firstFrame,
                 int32_t lastFrame) {
  ChunkScope evnt(out, "EVNT", kEventsVersion);
  const CountPosition position = BeginCount(out);
  uint32_t count = 0;
  for (const AnimationEvent& event : events) {
    if (event.frame < firstFrame || event.frame > lastFrame) continue;
    WriteU32(out, static_cast<uint32_t>(event.frame) - static_cast<uint32_t>(firstFrame));
    WriteU32(out, event.type);
    WriteString(out, event.name);
    ++count;
  }
  PatchCount(out, position, count);
}

void WriteFrames(std::ostream& out, GenericSkeleton& skeleton, int64_t first, int64_t last,
                 ExportUserInterface& ui) {
  const std::vector<const GenericSkeleton::Node*> bones = BonesInFileOrder(*skeleton.m_root);
  std::vector<BonePose> poses(bones.size());
  for (int64_t frame = first; frame <= last; ++frame) {
    ui.ReportProgress(static_cast<size_t>(frame - first), static_cast<size_t>(last - first + 1));
    skeleton.SetFrame(static_cast<int>(frame));
    for (size_t i = 0; i < bones.size(); ++i) {
      poses[i] = {bones[i]->Position(), bones[i]->Rotation()};
    }
    ChunkScope fram(out, "FRAM", kFrameVersion);
    WriteU32(out, static_cast<uint32_t>(frame - first));
    WriteRecords<float>(out, std::span<const BonePose>(poses));
  }
}

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

void WriteAnimation(std::ostream& out, GenericSkeleton& skeleton, const AnimationHeader& header,
                    ExportUserInterface& ui) {
  RootScope root(out, "ANIM");
  WriteInfo(out, header);
  WriteEvents(out, header.events, header.firstFrame, header.lastFrame);
  {
    ChunkScope skel(out, "SKEL", kSkeletonVersion);
    WriteBoneTree(out, *skeleton.m_root, nullptr);
  }
  WriteFrames(out, skeleton, header.firstFrame, header.lastFrame, ui);
}

bool WriteAnimationFile(const std::string& fileName, GenericSkeleton& skeleton,
                        const AnimationHeader& header, ExportUserInterface& ui) {
  binofstream out(fileName);
  if (out) WriteAnimation(out, skeleton, header, ui);
  return CommitOrReport(out, ui);
}

bool ReadAnimation(std::string_view bytes, AnimationFile& file, ReadProblem& problem) {
  return ReadContent(bytes, file, problem, ReadFile);
}

bool ReadAnimationFile(const std::string& fileName, AnimationFile& file, ReadProblem& problem) {
  std::string bytes;
  return ReadWholeFile(fileName, bytes, problem) && ReadAnimation(bytes, file, problem);
}

}  // namespace orv
