#pragma once

#include <optional>
#include <string>
#include <variant>

#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"

namespace orv::inspect {

struct LoadedFile {
  std::string name;                                                      // as it was asked for
  size_t size = 0;                                                       // bytes
  std::variant<std::monostate, IndexedMeshFile, AnimationFile> content;  // as far as it was read
  std::optional<ReadProblem> problem;                                    // what ended the reading

  const IndexedMeshFile* Mesh() const { return std::get_if<IndexedMeshFile>(&content); }
  const AnimationFile* Animation() const { return std::get_if<AnimationFile>(&content); }

  // What the problem is, with the file's name.
  std::string ProblemMessage() const { return name + ": " + problem->Message(); }
};

// What a file is, is told by its first bytes. One that is cut off within those is taken for what
// its name says.
LoadedFile LoadFile(const std::string& name);

}  // namespace orv::inspect
