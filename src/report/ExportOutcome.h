#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "report/Messages.h"

namespace orv {

// What became of a file that an export can write.
struct OutputFile {
  bool isAskedFor = false;
  bool isWritten = false;
  std::string path;
  uint64_t bytes = 0;     // when written
  std::string_view why;   // not written: the code of the finding that has kept it from that
  std::string systemWhy;  // and the system's reason, if it gave one
};

// What an export has come to.
struct ExportOutcome {
  bool isStarted = false;  // false: cancelled, or over before there was a choice
  OutputFile geometry;
  OutputFile animation;
  std::vector<Finding> findings;  // in the order of the log, without progress and summary
};

}  // namespace orv
