#include "formats/AnimationWriter.h"

#include "formats/BonePose.h"
#include "formats/BoneTree.h"
#include "formats/ChunkStream.h"
#include "formats/FileVersions.h"

namespace orv {

namespace {

void WriteInfo(std::ostream& out, const AnimationHeader& header) {
  // A range that ends before it begins counts down below zero. Pinned by
  // AnimationWriter.RangeThatEndsBeforeItBeginsHasNoFrames.
  const uint32_t frameCount =
      static_cast<uint32_t>(header.lastFrame) - static_cast<uint32_t>(header.firstFrame) + 1;
  ChunkScope info(out, "INFO", kAnimationInfoVersion);
  WriteString(out, header.name);
  WriteU32(out, frameCount);
  WriteU32(out, header.frameRate);
  WriteF32(out, header.masterScale);
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

}  // namespace orv
