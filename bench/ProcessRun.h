#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orv::bench {

// A whole process: its time by the wall clock, and the memory that it had resident at most.
struct ProcessRun {
  double seconds = 0;
  double peakBytes = 0;
};

// Runs a command, its output dropped; nothing when its status is not 0.
std::optional<ProcessRun> RunProcess(const std::vector<std::string>& command);

// For main: when the arguments are those by which RunProcess has started this program once more,
// does what they ask for and answers the exit status. The system counts the memory of whoever
// starts a process as the process's own, so a small one has to start it.
std::optional<int> ServeProcessRun(int argc, char** argv);

}  // namespace orv::bench
