#pragma once

#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/BoneTree.h"
#include "formats/ChunkReader.h"
#include "formats/Events.h"
#include "report/ExportUserInterface.h"
#include "scene/GenericSkeleton.h"

// The animation file, written and read.
namespace orv {

struct AnimationHeader {
  int32_t firstFrame = 0;  // of the scene; both ends are included
  int32_t lastFrame = 0;
  uint32_t frameRate = 0;  // frames per second
  std::string name;
  float masterScale = 1;  // metres per system unit, in which the bones' positions are
  std::vector<AnimationEvent> events;
};

// Samples the skeleton at every frame and writes the animation. False, with the error and the
// system's reason logged, when the file could not be written; the file that was there is still
// there.
bool WriteAnimationFile(const std::string& fileName, GenericSkeleton& skeleton,
                        const AnimationHeader& header, ExportUserInterface& ui);

// The whole content of the file. Before each frame the fraction done is reported.
void WriteAnimation(std::ostream& out, GenericSkeleton& skeleton, const AnimationHeader& header,
                    ExportUserInterface& ui);

// An animation file as it was read. Numbers can be NaN, and an event's type one that has no
// keyword.
struct AnimationFile {
  std::string name;
  uint32_t frameCount = 0;
  uint32_t frameRate = 0;              // frames per second
  float masterScale = 0;               // metres per unit of the positions
  std::vector<AnimationEvent> events;  // frames count from 0
  std::vector<BoneNode> bones;
  std::vector<BonePose> poses;  // world space; the bones of frame 0, of frame 1, ...
  std::vector<ReadProblem> remarks;

  std::span<const BonePose> Frame(size_t frame) const {
    return std::span(poses).subspan(frame * bones.size(), bones.size());
  }
};

// False, with the problem, when the bytes are no animation file.
bool ReadAnimation(std::string_view bytes, AnimationFile& file, ReadProblem& problem);
bool ReadAnimationFile(const std::string& fileName, AnimationFile& file, ReadProblem& problem);

}  // namespace orv
