#include "platform/Platform.h"

namespace orv::platform {

// A device refuses the rename and is then written through.
std::string FindReplaceableFile(const std::string& path) { return path; }

// The folder hands its rights down to a new file.
void CopyPermissions(const std::string&, const std::string&) {}

}  // namespace orv::platform
