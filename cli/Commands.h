#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/import/OpenScene.h"

namespace orv::cli {

enum ExitStatus : int {
  kStatusSuccess = 0,       // every file asked for was written, no error was logged
  kStatusErrorsLogged = 1,  // or a check found errors
  kStatusBadUsage = 2,      // or a file to be read cannot be
  kStatusFileMissing = 3,   // a file that was asked for was not written
};

struct ExportArguments {
  std::string scene;
  std::string output;
  std::vector<std::string> select;
  std::vector<std::string> hide;
  host::SceneSettings sceneSettings;
  std::string settingsFolder;
  std::string eventFile;
  bool noGeometry = false;
  bool noAnimation = false;
  bool collectTextures = false;
  bool defaultColors = false;
  bool flipGreen = false;
  bool forceTextures = false;
  bool dialogs = false;  // the plug-in's own windows; the rest is what they begin with
  bool noCheck = false;
  bool quiet = false;
};

struct InspectArguments {
  std::vector<std::string> files;
  bool json = false;
};

struct ConvertArguments {
  std::string model;
  std::string animation;
  std::string output;
  std::optional<double> metresPerUnit;
};

int RunExportCommand(ExportArguments arguments);
int RunPluginCommand();
int RunAboutCommand();
int RunInfoCommand(const InspectArguments& arguments);
int RunCheckCommand(const InspectArguments& arguments);
int RunConvertCommand(const ConvertArguments& arguments);

// Has the process keep the memory that it frees, in huge pages where the system has them: an export
// frees and takes tens of megabytes at each stage, and would spend a third of its time on getting
// the pages anew. Call it before much memory is taken. Does nothing where it cannot be done.
void KeepFreedMemory();

}  // namespace orv::cli
