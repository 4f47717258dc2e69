#pragma once

#include "convert/GlbDocument.h"
#include "convert/SceneBones.h"

namespace orv::convert {

// Adds the animation; node i of the document is bone i. Nothing is added without frames.
void AddAnimation(GlbDocument& document, const AnimationFile& animation, double metresPerUnit,
                  const std::vector<SceneBone>& bones, Messages& messages);

}  // namespace orv::convert
