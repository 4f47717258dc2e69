#include "PluginLibrary.h"

#include <dlfcn.h>

#include "Door.h"
#include "dialogs/ManagedRuntime.h"
#include "platform/ExString.h"
#include "platform/Platform.h"

namespace orv::cli {
namespace {

std::string BesideTheProgram(const char* name) {
  return std::string(FolderPart(platform::HostExecutablePath())) + name;
}

}  // namespace

PluginLibrary::PluginLibrary() {
  m_path = BesideTheProgram("OrvExporter.dle");
  m_library = dlopen(m_path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!m_library) throw PluginError(std::string("cannot load the plug-in: ") + dlerror());
  Find("LibDescription", LibDescription);
  Find("LibNumberClasses", LibNumberClasses);
  Find("LibClassDesc", LibClassDesc);
  Find("LibVersion", LibVersion);
  Find("CanAutoDefer", CanAutoDefer);
  Find("UseHostServices", UseHostServices);
}

// The library stays loaded: exporter objects and texts of its own may still be about.
PluginLibrary::~PluginLibrary() { UseHostServices(nullptr); }

template <typename Function>
void PluginLibrary::Find(const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(dlsym(m_library, name));
  if (!function) throw PluginError(m_path + ": lacks the entry point " + name);
}

void NeedWindows() {
  if (!platform::FileExists(BesideTheProgram(kDialogAssembly))) AskForGroup("dialogs");
}

}  // namespace orv::cli
