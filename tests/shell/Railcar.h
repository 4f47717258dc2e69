#pragma once

#include <filesystem>
#include <string>

#include "host/memory/Scene.h"

namespace orv {

// A railcar in the spirit of examples/railcar, built in code so that it needs no importer: a body
// of several materials, one of them with tangents, a wheel that turns with its
// bone, bellows skinned to two, a mirrored part and a coupling to attach to. It moves for a second.
// textureFolder: where the host looks for its bitmaps, of which notile_missing.tga is not there.
void BuildRailcar(host::Scene& scene, const std::string& textureFolder);

// The bitmaps its materials name, but for the one that is not there.
inline constexpr const char* kRailcarTextures[] = {"livery.tga", "livery_n.tga", "glass.tga",
                                                   "glass_a.tga"};

// Exports it with everything that can be asked for, under the relative name "out/railcar.im" below
// the folder, which is emptied first; then its skinned part alone, as "out/bellows.im". Returns the
// log.
std::string ExportRailcar(const std::filesystem::path& folder);

}  // namespace orv
