#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "inspect/Findings.h"
#include "inspect/LoadedFile.h"

namespace orv::inspect {

struct CheckedFile {
  std::string name;
  std::string kind;
  std::string unreadable;        // why it could not be opened or is none of ours; "" otherwise
  nlohmann::ordered_json error;  // the same for a program
  Findings findings;
};

// Checks each file, a mesh together with what stands beside it: textures, and the animations that
// belong to it. These are NAME.kin beside NAME.im, given files of that stem, and every given
// animation when no other mesh is given.
std::vector<CheckedFile> CheckFiles(std::span<const std::string> names);

// A line for each finding, the worst first, and one that sums up.
void PrintChecked(std::ostream& out, const CheckedFile& file);

// One entry of a document's "files".
nlohmann::ordered_json ToJson(const CheckedFile& file);

// What is wrong with the structure of a file that was just written, a line each; the notes and
// warnings of the check are not.
std::vector<std::string> FindStructureErrors(const std::string& name);

}  // namespace orv::inspect
