// Our own addition to the host's declarations: where the SDK's free functions get their answers.
#pragma once

#include <cstddef>

namespace orv {

// A plug-in library imports nothing from the program that loads it. So each module, host and
// plug-in, has its own copy of GetMasterScale and its like, and they ask the one core that the host
// hands to every module.
class HostCore {
 public:
  virtual double MasterScale(int unitCode) = 0;  // code 5: metres per system unit
  virtual int TicksPerFrame() = 0;
  virtual int FrameRate() = 0;  // frames per second
  // Writes the file's full name, NUL-terminated, to `found`. False when there is no such file in
  // the search paths or its name does not fit.
  virtual bool FindBitmap(const char* name, char* found, size_t size) = 0;

 protected:
  virtual ~HostCore() = default;
};

// For this module. The core is not owned and must outlive its use; null takes it away, and then the
// answers are scale 1, 160 ticks, 30 frames a second, and no bitmap.
void SetHostCore(HostCore* core);

}  // namespace orv
