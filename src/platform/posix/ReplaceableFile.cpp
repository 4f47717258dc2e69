#include <filesystem>

#include "platform/Platform.h"

namespace orv::platform {

namespace fs = std::filesystem;

std::string FindReplaceableFile(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_symlink(fs::symlink_status(path, error))) {
    const fs::path target = fs::canonical(path, error);
    return error || !fs::is_regular_file(status) ? "" : target.string();
  }
  return fs::exists(status) && !fs::is_regular_file(status) ? "" : path;
}

void CopyPermissions(const std::string& from, const std::string& to) {
  std::error_code error;
  const fs::file_status status = fs::status(from, error);
  if (fs::exists(status)) fs::permissions(to, status.permissions(), error);
}

}  // namespace orv::platform
