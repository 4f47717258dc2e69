#pragma once

#include <filesystem>
#include <string>

#include "Plugin.h"
#include "TemporaryFolder.h"
#include "shell/Railcar.h"

namespace orv {

// Exports the railcar with everything that can be asked for, under the relative name
// "out/railcar.im" below the folder, which is emptied first; then its skinned part alone, as
// "out/bellows.im". Returns the log.
inline std::string ExportRailcar(const std::filesystem::path& folder) {
  namespace fs = std::filesystem;
  fs::remove_all(folder);
  fs::create_directories(folder / "out");
  fs::create_directory(folder / "textures");
  const fs::path before = fs::current_path();
  fs::current_path(folder);
  WriteContent("railcar.evt", kRailcarEvents);
  for (const std::string name : kRailcarTextures)
    WriteContent("textures/" + name, "pixels of " + name + "\n");

  host::Scene scene;
  BuildRailcar(scene, "textures");
  Plugin plugin("settings");
  plugin.dialogs.onOptions = [](Options& options) {
    options.m_collectTextures = options.m_normalMapFlipGreen = true;
    options.m_eventFileName = "railcar.evt";
    return true;
  };
  std::string log;
  const auto exportTo = [&](const char* name) {
    plugin.Export(scene, name);
    for (const std::string& line : plugin.dialogs.log) log += line + "\n";
  };
  exportTo("out/railcar.im");
  scene.Select("bellows");
  scene.Select("b.bellows.front");
  exportTo("out/bellows.im");
  fs::current_path(before);
  return log;
}

}  // namespace orv
