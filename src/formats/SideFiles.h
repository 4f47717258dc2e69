#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "report/ExportUserInterface.h"
#include "scene/GenericMaterial.h"

namespace orv {

// A side file tells the engine of one texture: "wall-glass.texture.txt" of the texture that a map
// calls "wall-glass.texture". It stands beside the model, and its pictures do.
struct SideFile {
  std::string primary;               // a picture, without folder; "" where the text names none
  std::optional<std::string> alpha;  // the same, of the picture whose alpha counts
  bool tileS = false, tileT = false;
  bool isNormalMap = false;
  bool flipGreen = false;  // of a normal map
  bool operator==(const SideFile&) const = default;
};

// A map's name without its folder. Scene files mix "\\" and "/" within one path.
std::string MapName(std::string_view fileName);

std::string TextureName(const SideFile& sideFile);  // without folder
std::string SideFileName(const std::string& textureName);
bool IsTextureName(std::string_view mapName);  // else it is a picture's

std::string TextOf(const SideFile& sideFile);
// One that cannot be opened is as an empty one.
SideFile ReadSideFile(const std::filesystem::path& path);

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

// The material type name that the engine chooses a shader by: the given name in lower case; one
// without "m." is an error to the user and gets "m." and a suffix that its maps decide.
// allowBillboards: whether a diffuse map named "tb_" or "sb_" may decide it.
std::string ComposeMaterialName(const GenericMaterial& material, const std::string& name,
                                bool allowBillboards, ExportUserInterface& ui);

// Writes the ".texture.txt" file of every map, and gives each map the name that the engine then
// knows its texture by; the opacity map goes into the diffuse map's file. Collects the textures.
// folder: of the mesh file, with its trailing separator, or "". The flags say what becomes of a
// file that exists; the user's answers and a user interface that cannot ask change them.
// Returns whether the material has an opacity map.
bool WriteTextureSideFiles(GenericMaterial& material, const std::string& folder,
                           ExportUserInterface& ui, bool& askOverwrite, bool& forceOverwrite);

// Finds a texture on the host's bitmap search path; "" when it is nowhere.
using TextureResolver = std::function<std::string(const std::string& fileName)>;

// Copies the textures into the folder, those that are not there already, and logs those that
// failed. The flags are platform::CopyOneFile's. Returns whether all arrived.
bool CopyTextures(const std::vector<std::string>& names, const std::string& folder,
                  bool noQuestions, bool silent, const TextureResolver& resolve,
                  ExportUserInterface& ui);

}  // namespace orv
