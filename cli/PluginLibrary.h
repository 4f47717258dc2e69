#pragma once

#include <stdexcept>
#include <string>

#include "max.h"
#include "shell/HostEntry.h"

namespace orv::cli {

struct PluginError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The plug-in library, loaded the way the host does it: by its file name beside the program, its
// entry points by theirs. Throws PluginError when it cannot be loaded.
class PluginLibrary {
 public:
  PluginLibrary();
  ~PluginLibrary();
  PluginLibrary(const PluginLibrary&) = delete;

  const std::string& Path() const { return m_path; }

  const TCHAR* (*LibDescription)() = nullptr;
  int (*LibNumberClasses)() = nullptr;
  ClassDesc* (*LibClassDesc)(int) = nullptr;
  ULONG (*LibVersion)() = nullptr;
  ULONG (*CanAutoDefer)() = nullptr;
  UseHostServicesFunction* UseHostServices = nullptr;

 private:
  template <typename Function>
  void Find(const char* name, Function*& function);

  std::string m_path;
  void* m_library = nullptr;
};

// To be called before the plug-in is to show windows of its own, which are built on demand: asks
// the door for them when they are not there.
void NeedWindows();

}  // namespace orv::cli
