#include <algorithm>
#include <iostream>

#include "Commands.h"
#include "inspect/CheckFiles.h"
#include "inspect/Info.h"

namespace orv::cli {

int RunInfoCommand(const InspectArguments& arguments) {
  int status = kStatusSuccess;
  nlohmann::ordered_json entries = nlohmann::ordered_json::array();
  bool first = true;
  for (const std::string& name : arguments.files) {
    const inspect::LoadedFile file = inspect::LoadFile(name);
    if (file.problem) {
      std::cerr << "orv: " << file.ProblemMessage() << '\n';
      status = kStatusBadUsage;
    }
    if (arguments.json) {
      entries.push_back(inspect::InfoOf(file));
    } else if (!file.problem) {
      if (!first) std::cout << '\n';
      first = false;
      inspect::PrintInfo(std::cout, file);
    }
  }
  if (arguments.json) std::cout << inspect::DocumentText(std::move(entries));
  return status;
}

int RunCheckCommand(const InspectArguments& arguments) {
  int status = kStatusSuccess;
  nlohmann::ordered_json entries = nlohmann::ordered_json::array();
  for (const inspect::CheckedFile& file : inspect::CheckFiles(arguments.files)) {
    if (!file.unreadable.empty()) {
      std::cerr << "orv: " << file.unreadable << '\n';
      status = kStatusBadUsage;
    } else if (inspect::CountOf(file.findings, inspect::Level::Error) > 0) {
      status = std::max<int>(status, kStatusErrorsLogged);
    }
    if (arguments.json) {
      entries.push_back(inspect::ToJson(file));
    } else if (file.unreadable.empty()) {
      inspect::PrintChecked(std::cout, file);
    }
  }
  if (arguments.json) std::cout << inspect::DocumentText(std::move(entries));
  return status;
}

}  // namespace orv::cli
