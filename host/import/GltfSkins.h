#pragma once

#include <string>

namespace orv::host {

// What keeps the importer from a glTF file's skins, in words for the user; "" for nothing, and for
// files of other formats. A skin need not have inverse bind matrices, but the importer reads them
// unasked.
std::string FaultOfGltfSkins(const std::string& path);

}  // namespace orv::host
