#pragma once

#include <optional>
#include <string>

#include "convert/GlbDocument.h"
#include "convert/Messages.h"
#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"

namespace orv::convert {

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
