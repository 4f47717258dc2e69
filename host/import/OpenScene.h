#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/memory/Scene.h"

namespace orv::host {

enum class UpAxis { Y, Z };

// What the user says about a file; all that is left open is as the file says.
struct SceneSettings {
  std::optional<UpAxis> up;
  std::optional<double> metresPerUnit;
  std::vector<std::string> textureFolders;  // searched for bitmaps after the scene's own
  std::string defaultMaterial;              // name of a material for parts that have none
  std::string animation;                    // name of the one to play; the first when empty
  bool jointsAsBones = false;               // "b." before the names of the skins' joints
  std::optional<std::pair<int, int>> frames;
  std::optional<int> framesPerSecond;
  std::string exportFolder;  // where embedded textures are written; empty: nowhere
};

// The scene cannot be had; the message names the file and the reason.
class SceneError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Opens a scene file of any format that the importer library reads. `path` is UTF-8.
std::unique_ptr<Scene> OpenScene(const std::string& path, const SceneSettings& settings);

}  // namespace orv::host
