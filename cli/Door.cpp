#include "Door.h"

#include <unistd.h>

#include <cstdlib>

namespace orv::cli {
namespace {

constexpr char kDoor[] = "ORV_DOOR";      // its path
constexpr char kGroups[] = "ORV_GROUPS";  // those that it has brought for this run, between blanks

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

}  // namespace

void AskForGroup(const std::string& name) {
  const bool wasBrought =
      (" " + Variable(kGroups) + " ").find(" " + name + " ") != std::string::npos;
  if (!Variable(kDoor).empty() && !wasBrought) throw MissingGroup{name};
}

void StartDoor(const MissingGroup& missing, char** argv) {
  setenv(kGroups, (Variable(kGroups) + " " + missing.name).c_str(), 1);
  execv(Variable(kDoor).c_str(), argv);
}

}  // namespace orv::cli
