#pragma once

#include <string>

#include "Models.h"

namespace orv::bench {

// Writes a shape, with its skin when it has one, as a binary glTF file. The corners of its faces
// have one number for position, normal and texture coordinate.
void WriteGlb(const Model& model, const std::string& path);

}  // namespace orv::bench
