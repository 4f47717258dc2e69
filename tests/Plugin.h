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

// A host's dialogs, answered by a test; they keep the calls and the log.
class ScriptedDialogs : public ExportDialogs {
 public:
  std::function<bool(Options&)> onOptions = [](Options&) { return true; };
  std::function<void()> onWait = [] {};
  ButtonResult answer = ButtonResult::None;
  bool canPrompt = true;
  std::vector<std::string> log;    // "info: ...", "warning: ...", "error: ..."
  std::vector<std::string> calls;  // "options", "open", "wait", "close", "ask"

  bool ShowOptions(int, Options& options) override {
    calls.push_back("options");
    return onOptions(options);
  }
  void OpenLog(int) override { calls.push_back("open"); }
  void Log(Severity severity, const char* text) override {
    const char* const labels[] = {"info: ", "warning: ", "error: "};
    log.push_back(labels[static_cast<int>(severity)] + std::string(text));
  }
  void WaitForLogClosed(int) override {
    calls.push_back("wait");
    onWait();
  }
  void CloseLog() override { calls.push_back("close"); }
  ButtonResult Ask(int, const char*, const char*) override {
    calls.push_back("ask");
    return answer;
  }
  bool CanPrompt() override { return canPrompt; }

  bool Logged(const std::string& line) const {
    return std::find(log.begin(), log.end(), line) != log.end();
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
    host::MemoryHost host(scene);
    HostServices services;
    services.core = &host;
    services.dialogs = &dialogs;
    services.settingsFolder = m_settingsFolder.c_str();
    Entry<UseHostServicesFunction>("UseHostServices")(&services);
    dialogs.log.clear();
    dialogs.calls.clear();
    return exporter->DoExport(name.c_str(), nullptr, &host, FALSE, options);
  }

  ScriptedDialogs dialogs;
  std::unique_ptr<SceneExport> exporter;

 private:
  std::string m_settingsFolder;
};

}  // namespace orv
