#pragma once

#include "convert/Textures.h"
#include "scene/GenericMaterial.h"

namespace orv::convert {

// The material as glTF has it; what glTF has no place for is kept under "extras".
Json MaterialOf(const GenericMaterial& material, Textures& textures, Messages& messages);

}  // namespace orv::convert
