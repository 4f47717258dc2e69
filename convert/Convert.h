#pragma once

#include <optional>
#include <string>
#include <vector>

#include "convert/GlbDocument.h"
#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"

namespace orv::convert {

// What the user is told of a conversion.
struct Messages {
  std::vector<std::string> mended;  // what is not in the result as it is in the files
  std::vector<std::string> notes;   // what was taken for granted

  // Nothing for a count of 0.
  void Mended(const std::string& place, size_t count, const std::string& what) {
    if (count > 0) mended.push_back(place + ": " + std::to_string(count) + " " + what);
  }
};

struct Source {
  const IndexedMeshFile& mesh;               // not owned
  const AnimationFile* animation = nullptr;  // not owned; null: none
  std::string name;                          // of the model, for the nodes made for it
  std::string textureFolder;
  std::optional<double> metresPerUnit;  // when the animation does not say it
};

// The model as a glTF scene. What glTF forbids is mended, with a message.
GlbDocument Convert(const Source& source, Messages& messages);

}  // namespace orv::convert
