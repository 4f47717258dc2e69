#pragma once

#include <string>

#include "host/memory/Scene.h"

namespace orv {

// A railcar in the spirit of examples/railcar, built in code so that it needs no importer: a body
// of several materials that has to be split, one of them with tangents, wheels that turn with their
// bones, bellows skinned to two, a mirrored part and couplings to attach to. It moves for a second.
// textureFolder: where the host looks for its bitmaps, of which notile_missing.tga is not there.
void BuildRailcar(host::Scene& scene, const std::string& textureFolder);

// An event file that fits its animation.
inline constexpr char kRailcarEvents[] =
    "// departure\n0 Sound_Event horn\n12 Effect_Event sparks /* third rail */\n30 Generic_Event "
    "x\n";

// The bitmaps its materials name, but for the one that is not there.
inline constexpr const char* kRailcarTextures[] = {"livery.tga", "livery_n.tga", "glass.tga",
                                                   "glass_a.tga"};

}  // namespace orv
