#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>

namespace orv::inspect {

// What a ".texture.txt" file tells the engine of a texture.
struct SideFile {
  std::string primary, alpha;  // pictures, names without folder; "" for none
  bool tileS = false, tileT = false;
};

// One that cannot be opened is as an empty one.
SideFile ReadSideFile(const std::filesystem::path& path);

// Whether a map's name is that of a texture with a side file, not of a picture.
bool NamesSideFile(const std::string& mapName);

// The files beside a model, found whatever the case of their letters, as the engine finds them.
class ModelFolder {
 public:
  // folder: with its trailing separator, or "" for the current one.
  explicit ModelFolder(const std::string& folder);

  // name: without folder. Null when there is no such file.
  const std::filesystem::path* Find(const std::string& name) const;

 private:
  std::unordered_map<std::string, std::filesystem::path> m_files;  // by name in lower case
};

}  // namespace orv::inspect
