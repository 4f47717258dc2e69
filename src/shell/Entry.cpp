// The library's entry points: what the host calls by name.

#include "iparamb2.h"
#include "max.h"

#include "platform/Platform.h"
#include "shell/HostEntry.h"
#include "shell/ManageDialog.h"
#include "shell/OrvExporter.h"

// Our own declarations of the SDK take the host's services by this header; the real SDK brings
// them itself.
#if __has_include("hostcore.h")
#include "hostcore.h"
#define ORV_OWN_SDK 1
#endif

namespace orv {
namespace {

// What the host learns of the exporter before it makes one.
class ClassDescriptor : public ClassDesc2 {
 public:
  int IsPublic() override { return 1; }
  void* Create(BOOL /*loading*/) override { return new OrvExporter; }
  const TCHAR* ClassName() override { return ResourceText(platform::kStringClassName); }
  SClass_ID SuperClassID() override { return SCENE_EXPORT_CLASS_ID; }
  Class_ID ClassID() override { return Class_ID(0x77B61FB5, 0x007429F1); }
  const TCHAR* Category() override { return ""; }
  const TCHAR* InternalName() override { return "OrvExporter"; }
  HINSTANCE HInstance() override { return static_cast<HINSTANCE>(platform::ModuleInstance()); }
};

}  // namespace
}  // namespace orv

#ifdef _WIN32
#define ORV_ENTRY extern "C" __declspec(dllexport)

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  orv::platform::SetModuleInstance(instance);
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
  return TRUE;
}
#else
#define ORV_ENTRY extern "C" __attribute__((visibility("default")))

// There is no handle to keep, only the fact that the library has been loaded.
__attribute__((constructor)) static void OnLoad() {
  static char s_instance;
  orv::platform::SetModuleInstance(&s_instance);
}
#endif

ORV_ENTRY const TCHAR* LibDescription() {
  return orv::ResourceText(orv::platform::kStringDescription);
}

ORV_ENTRY int LibNumberClasses() { return 1; }

// Kept: the descriptor is made before the index is looked at, and is not freed. The host asks for
// index 0 alone.
ORV_ENTRY ClassDesc* LibClassDesc(int i) {
  ClassDesc* descriptor = new orv::ClassDescriptor;
  return i == 0 ? descriptor : nullptr;
}

ORV_ENTRY ULONG LibVersion() { return VERSION_3DSMAX; }

ORV_ENTRY ULONG CanAutoDefer() { return 1; }

ORV_ENTRY int UseHostServices(const orv::HostServices* services) {
  const orv::HostServices defaults;
  if (!services) services = &defaults;
  if (services->size != sizeof(orv::HostServices)) return 0;
#ifdef ORV_OWN_SDK
  orv::SetHostCore(services->core);
#endif
  orv::ManageDialog::UseDialogs(services->dialogs);
  if (services->ownDialogs) *services->ownDialogs = &orv::ManageDialog::OwnDialogs();
  orv::OrvExporter::s_settingsFolder = services->settingsFolder;
  return 1;
}
