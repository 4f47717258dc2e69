#include "inspect/ModelFolder.h"

#include <fstream>
#include <optional>

#include "platform/ExString.h"
#include "platform/Platform.h"

namespace orv::inspect {
namespace {

// The rest of a line that begins with the key.
std::optional<std::string> ValueOf(const std::string& line, std::string_view key) {
  if (!BeginsWithIgnoringCase(line, key)) return std::nullopt;
  return line.substr(key.size());
}

}  // namespace

SideFile ReadSideFile(const std::filesystem::path& path) {
  SideFile sideFile;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) {
    const std::string text = ExString(line.c_str()).TrimWhiteSpace().CStr();
    if (const auto value = ValueOf(text, "primary=")) sideFile.primary = FileNamePart(*value);
    if (const auto value = ValueOf(text, "alpha=")) sideFile.alpha = FileNamePart(*value);
    if (const auto value = ValueOf(text, "tile=")) {
      sideFile.tileS = value->find('s') != std::string::npos;
      sideFile.tileT = value->find('t') != std::string::npos;
    }
  }
  return sideFile;
}

bool NamesSideFile(const std::string& mapName) { return EndsWithIgnoringCase(mapName, ".texture"); }

ModelFolder::ModelFolder(const std::string& folder) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path native = folder.empty() ? "." : platform::NativePath(folder);
  for (fs::directory_iterator entry(native, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code unknown;
    if (entry->is_directory(unknown)) continue;
    m_files.emplace(LowerCase(entry->path().filename().string()), entry->path());
  }
}

const std::filesystem::path* ModelFolder::Find(const std::string& name) const {
  const auto found = m_files.find(LowerCase(name));
  return found == m_files.end() ? nullptr : &found->second;
}

}  // namespace orv::inspect
