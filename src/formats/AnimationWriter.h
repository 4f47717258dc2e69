#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "formats/Events.h"
#include "report/ExportUserInterface.h"
#include "scene/GenericSkeleton.h"

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

}  // namespace orv
