#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>

#include "Commands.h"
#include "PluginLibrary.h"
#include "Suggest.h"
#include "Terminal.h"
#include "TerminalDialogs.h"
#include "host/memory/MemoryHost.h"
#include "inspect/CheckFiles.h"
#include "platform/ExString.h"

namespace orv::cli {
namespace {

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The path that both outputs share, up to their extensions; with a folder, so that the exporter
// has one to put textures in.
std::string OutputStem(const ExportArguments& arguments) {
  std::string stem = arguments.output;
  if (stem.empty() || stem.ends_with('/') || std::filesystem::is_directory(stem))
    stem = std::filesystem::path(stem) / BaseNamePart(arguments.scene);
  for (const std::string_view extension : {".im", ".kin"}) {
    if (stem.size() > extension.size() && EndsWithIgnoringCase(stem, extension)) {
      stem.resize(stem.size() - extension.size());
      break;
    }
  }
  if (FolderPart(stem).empty()) stem.insert(0, "./");
  return stem;
}

// A folder that is made where it is asked for as a folder, and goes again when nothing was written
// into it.
class OutputFolder {
 public:
  explicit OutputFolder(const ExportArguments& arguments) {
    if (!arguments.output.ends_with('/')) return;
    std::error_code ignored;  // whoever writes into it says why that fails
    std::filesystem::path folder = std::filesystem::path(arguments.output).parent_path();
    for (; !folder.empty() && !std::filesystem::exists(folder, ignored);
         folder = folder.parent_path()) {
      m_made.push_back(folder);
    }
    if (!m_made.empty()) std::filesystem::create_directories(m_made.front(), ignored);
  }
  ~OutputFolder() {
    std::error_code ignored;
    for (const std::filesystem::path& folder : m_made) std::filesystem::remove(folder, ignored);
  }
  OutputFolder(const OutputFolder&) = delete;

 private:
  std::vector<std::filesystem::path> m_made;  // the innermost first
};

// A folder that is gone at the end of the run.
class PrivateFolder {
 public:
  PrivateFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "orv-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("cannot create a folder like " + name);
    m_path = name;
  }
  ~PrivateFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  PrivateFolder(const PrivateFolder&) = delete;
  const std::string& Path() const { return m_path; }

 private:
  std::string m_path;
};

// Which files are asked for is up to this command line alone, whatever an earlier run has left;
// unless there are windows in which the user can change it again.
void ApplyTo(Options& options, const ExportArguments& arguments) {
  if (!arguments.dialogs) options.m_exportGeometry = options.m_exportAnimation = true;
  if (arguments.noGeometry) options.m_exportGeometry = false;
  if (arguments.noAnimation) options.m_exportAnimation = false;
  if (arguments.collectTextures) options.m_collectTextures = true;
  if (arguments.defaultColors) options.m_useDefaultColors = true;
  if (arguments.flipGreen) options.m_normalMapFlipGreen = true;
  if (arguments.forceTextures) options.m_forceTxtOverwrite = true;
  if (!arguments.eventFile.empty()) options.m_eventFileName = arguments.eventFile.c_str();
}

void MarkNodes(host::Scene& scene, const ExportArguments& arguments) {
  const auto mark = [&](const std::string& name, bool found) {
    if (found) return;
    throw UsageError(arguments.scene + ": has no node '" + name + "'." +
                     DidYouMean(name, scene.NodeNames()));
  };
  for (const std::string& name : arguments.select) mark(name, scene.Select(name));
  for (const std::string& name : arguments.hide) mark(name, scene.Hide(name));
}

void CheckEventFile(const std::string& path) {
  if (!path.empty() && (std::filesystem::is_directory(path) || !std::ifstream(path).is_open()))
    throw UsageError(path + ": cannot be read as an event file");
}

// Runs the export in the plug-in; what it says goes to the dialogs.
void RunPlugin(host::Scene& scene, const std::string& name, const ExportArguments& arguments,
               Terminal& terminal, TerminalDialogs& dialogs) {
  host::MemoryHost memoryHost(scene, [&](int percent, const char* title) {
    title ? terminal.ShowProgress(percent, title) : terminal.ClearProgress();
  });
  PluginLibrary library;
  HostServices services;
  services.core = &memoryHost;
  services.dialogs = &dialogs;
  services.settingsFolder = arguments.settingsFolder.c_str();
  ExportDialogs* windows = nullptr;
  services.ownDialogs = &windows;
  if (!library.UseHostServices(&services)) throw PluginError("the plug-in is of another version");
  if (arguments.dialogs) dialogs.ShowWindows(windows);
  const std::unique_ptr<ClassDesc> descriptor(library.LibClassDesc(0));
  const std::unique_ptr<SceneExport> exporter(static_cast<SceneExport*>(descriptor->Create()));
  exporter->DoExport(name.c_str(), nullptr, &memoryHost, FALSE, 0);
}

// A sentence for the cases that need one.
std::string WhyMissing(const OutputFile& file) {
  if (!file.systemWhy.empty()) return file.systemWhy;
  if (file.why == CodeOf("bones-missing")) {
    return "the scene has no bones. Bones are nodes whose names begin with \"b.\"; see also "
           "--joints-as-bones and --no-animation";
  }
  if (file.why == CodeOf("nothing-to-export"))
    return "nothing to export. The log above says why each mesh was left out";
  return "the export was stopped";
}

// Reads back what was written, unless that went into a pipe or a device. False, with the errors on
// standard error, when it is not sound.
bool IsSound(const std::string& path) {
  if (!std::filesystem::is_regular_file(path)) return true;
  const std::vector<std::string> errors = inspect::FindStructureErrors(path);
  for (const std::string& error : errors) std::cerr << "orv: " << error << '\n';
  return errors.empty();
}

// Says what became of each file; the exit status of the run.
int Conclude(const ExportOutcome& outcome, const ExportArguments& arguments) {
  if (!outcome.isStarted) {
    std::cerr << "orv: cancelled, nothing was written.\n";
    return kStatusFileMissing;
  }
  const bool hasErrors = std::ranges::any_of(
      outcome.findings, [](const Finding& f) { return f.severity == Severity::Error; });
  int status = hasErrors ? kStatusErrorsLogged : kStatusSuccess;
  for (const OutputFile& file : {outcome.geometry, outcome.animation}) {
    if (!file.isAskedFor) continue;
    if (!file.isWritten) {
      std::cerr << "orv: " << file.path << " was not written: " << WhyMissing(file) << ".\n";
      status = kStatusFileMissing;
      continue;
    }
    if (!arguments.noCheck && !IsSound(file.path)) {
      status = std::max<int>(status, kStatusErrorsLogged);
    }
    if (!arguments.quiet) std::cout << file.path << " (" << file.bytes << " bytes)\n";
  }
  return status;
}

int Export(ExportArguments& arguments) {
  if (arguments.dialogs) NeedWindows();
  const std::string stem = OutputStem(arguments);
  arguments.sceneSettings.exportFolder = FolderPart(stem);
  CheckEventFile(arguments.eventFile);
  const OutputFolder folder(arguments);
  Terminal terminal(arguments.quiet);
  const std::unique_ptr<host::Scene> scene =
      host::OpenScene(arguments.scene, arguments.sceneSettings);
  MarkNodes(*scene, arguments);
  for (const std::string& warning : scene->info.warnings) terminal.Log(Severity::Warning, warning);

  std::optional<PrivateFolder> privateSettings;
  if (arguments.settingsFolder.empty() && !arguments.dialogs)
    arguments.settingsFolder = privateSettings.emplace().Path();
  TerminalDialogs dialogs(terminal, [&](Options& options) { ApplyTo(options, arguments); });
  RunPlugin(*scene, stem + ".im", arguments, terminal, dialogs);
  return Conclude(dialogs.Outcome(), arguments);
}

}  // namespace

int RunExportCommand(ExportArguments arguments) {
  KeepFreedMemory();
  try {
    return Export(arguments);
  } catch (const UsageError& error) {
    std::cerr << "orv: " << error.what() << '\n';
  } catch (const host::SceneError& error) {
    std::cerr << "orv: " << error.what() << '\n';
  }
  return kStatusBadUsage;
}

}  // namespace orv::cli
