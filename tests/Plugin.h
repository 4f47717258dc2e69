#pragma once

#ifndef _WIN32
#include <dlfcn.h>
#endif

#include <algorithm>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/memory/MemoryHost.h"
#include "max.h"
#include "shell/HostEntry.h"

namespace orv {

#ifdef _WIN32
inline void* LoadPlugin() { return LoadLibraryA(ORV_PLUGIN_PATH); }
inline void* FindSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}
#else
inline void* LoadPlugin() { return dlopen(ORV_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL); }
inline void* FindSymbol(void* library, const char* name) { return dlsym(library, name); }
#endif

// An entry point of the plug-in library under test, by its name.
template <typename Function>
Function* Entry(const char* name) {
  static void* library = LoadPlugin();
  if (!library) throw std::runtime_error("cannot load " ORV_PLUGIN_PATH);
  return reinterpret_cast<Function*>(FindSymbol(library, name));
}

// A host's dialogs, answered by a test; they keep the calls, the log and the outcome.
class ScriptedDialogs : public ExportDialogs {
 public:
  std::function<bool(Options&)> onOptions = [](Options&) { return true; };
  std::function<void()> onMessages = [] {};
  std::function<void()> onWait = [] {};
  ButtonResult answer = ButtonResult::None;
  bool canPrompt = true;
  std::vector<std::string> log;  // "info: ...", "warning: ...", "error: ..."
  std::string calls;             // "options open ask wait close ended"
  ExportOutcome outcome;

  bool ShowOptions(int, Options& options) override {
    calls += "options ";
    return onOptions(options);
  }
  void OpenLog(int) override { calls += "open "; }
  void Log(Severity severity, const char* text) override {
    const char* const labels[] = {"info: ", "warning: ", "error: "};
    log.push_back(labels[static_cast<int>(severity)] + std::string(text));
  }
  void HandleMessages() override { onMessages(); }
  void WaitForLogClosed(int) override {
    calls += "wait ";
    onWait();
  }
  void CloseLog() override { calls += "close "; }
  ButtonResult Ask(int, const char*, const char*) override {
    calls += "ask ";
    return answer;
  }
  bool CanPrompt() override { return canPrompt; }
  void ExportEnded(const ExportOutcome& ended) override {
    calls += "ended";
    outcome = ended;
  }

  bool Logged(const std::string& line) const {
    return std::find(log.begin(), log.end(), line) != log.end();
  }
  std::string LogText() const {
    std::string text;
    for (const std::string& line : log) text += line + "\n";
    return text;
  }
};

// One exporter of the library, in a host with scripted dialogs.
class Plugin {
 public:
  // settingsFolder: stands for the user's application-data folder.
  explicit Plugin(std::string settingsFolder) : m_settingsFolder(std::move(settingsFolder)) {
    const std::unique_ptr<ClassDesc> descriptor(Entry<ClassDesc*(int)>("LibClassDesc")(0));
    exporter.reset(static_cast<SceneExport*>(descriptor->Create()));
  }
  ~Plugin() { Entry<UseHostServicesFunction>("UseHostServices")(nullptr); }
  Plugin(const Plugin&) = delete;

  int Export(host::Scene& scene, const std::string& name, DWORD options = 0) {
    progress.clear();
    host::MemoryHost host(scene, [this](int percent, const char* title) {
      progress += std::to_string(percent) + " " + (title ? title : "(gone)") + "\n";
    });
    HostServices services;
    services.core = &host;
    services.dialogs = &dialogs;
    services.settingsFolder = m_settingsFolder.c_str();
    Entry<UseHostServicesFunction>("UseHostServices")(&services);
    dialogs.log.clear();
    dialogs.calls.clear();
    dialogs.outcome = {};
    return exporter->DoExport(name.c_str(), nullptr, &host, FALSE, options);
  }

  ScriptedDialogs dialogs;
  std::string progress;  // of the host's bar, a line for each call: "50 Merging meshes"
  std::unique_ptr<SceneExport> exporter;

 private:
  std::string m_settingsFolder;
};

}  // namespace orv
