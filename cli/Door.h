#pragma once

#include <string>

namespace orv::cli {

// A group of tools/packages.txt that a run needs and every run does not. The door ./orv, which has
// started this program, can install it and build what belongs to it.
struct MissingGroup {
  std::string name;
};

// For a run that lacks the group, before it reads or writes anything: throws MissingGroup. Returns
// where there is no door, or where it has brought the group and that did not help.
void AskForGroup(const std::string& name);

// Starts the door in the place of this process, for the group and then the same run again. Returns
// when that fails.
void StartDoor(const MissingGroup& missing, char** argv);

}  // namespace orv::cli
