// The .NET Framework's runtime in this process. Its library is opened at run time, so that the
// plug-in loads, and exports through a host's own dialogs, where there is none.

#include "dialogs/ManagedRuntime.h"

#define WIN32_LEAN_AND_MEAN  // the sockets' headers define s_host
#include <windows.h>

#include <mscoree.h>

#include <cstdio>

#include "platform/Platform.h"

namespace orv {
namespace {

constexpr wchar_t kRuntimeVersion[] = L"v4.0.30319";
constexpr char kHowToGetIt[] =
    "Please install the .NET Framework 4 or later, from Microsoft's download pages or as a feature "
    "of Windows.";

constexpr GUID kRuntimeHostClass = {
    0x90F1A06E, 0x7712, 0x4762, {0x86, 0xB5, 0x7A, 0x5E, 0xBA, 0x6B, 0xDB, 0x02}};
constexpr GUID kRuntimeHostInterface = {
    0x90F1A06C, 0x7712, 0x4762, {0x86, 0xB5, 0x7A, 0x5E, 0xBA, 0x6B, 0xDB, 0x02}};

using BindFunction = HRESULT(STDAPICALLTYPE*)(LPCWSTR version, LPCWSTR flavour, DWORD flags,
                                              REFCLSID hostClass, REFIID hostInterface,
                                              LPVOID* host);

std::string WithCode(const std::string& what, HRESULT code) {
  char text[32];
  std::snprintf(text, sizeof(text), " (0x%08lX)", static_cast<unsigned long>(code));
  return what + text + ".";
}

// The process's runtime, started; null with the problem. It is kept until the process ends: a
// runtime cannot be started a second time.
ICLRRuntimeHost* RuntimeHost(std::string& problem) {
  static ICLRRuntimeHost* s_host = nullptr;
  if (s_host) return s_host;
  const HMODULE library = LoadLibraryA("mscoree.dll");
  const FARPROC address = library ? GetProcAddress(library, "CorBindToRuntimeEx") : nullptr;
  if (!address) {
    problem = std::string("There is no .NET runtime on this computer.\n") + kHowToGetIt;
    return nullptr;
  }
  const auto bind = reinterpret_cast<BindFunction>(reinterpret_cast<void*>(address));
  void* bound = nullptr;
  HRESULT result =
      bind(kRuntimeVersion, nullptr, 0, kRuntimeHostClass, kRuntimeHostInterface, &bound);
  auto* const host = static_cast<ICLRRuntimeHost*>(bound);
  if (SUCCEEDED(result)) result = host->Start();
  if (FAILED(result)) {
    problem = WithCode("The .NET runtime 4 cannot be started", result) + "\n" + kHowToGetIt;
    return nullptr;
  }
  return s_host = host;
}

std::wstring Wide(const std::string& text) {
  std::wstring wide(text.size(), L'\0');
  const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                         wide.data(), static_cast<int>(wide.size()));
  wide.resize(static_cast<size_t>(length));
  return wide;
}

// Beside the plug-in library, wherever the program is.
std::wstring AssemblyPath() {
  wchar_t path[32768] = L"";
  GetModuleFileNameW(static_cast<HMODULE>(platform::ModuleInstance()), path, 32768);
  std::wstring folder = path;
  folder.resize(folder.find_last_of(L'\\') + 1);
  return folder + Wide(kDialogAssembly);
}

}  // namespace

ManagedStart StartManagedDialogs(const std::string& argument) {
  ManagedStart start;
  ICLRRuntimeHost* const host = RuntimeHost(start.problem);
  if (!host) return start;
  DWORD answer = 0;
  const HRESULT result =
      host->ExecuteInDefaultAppDomain(AssemblyPath().c_str(), Wide(kStartClass).c_str(),
                                      Wide(kStartMethod).c_str(), Wide(argument).c_str(), &answer);
  if (FAILED(result)) {
    start.problem = WithCode(
        std::string(kDialogAssembly) + " cannot be started. It belongs beside the plug-in library",
        result);
    return start;
  }
  start.answer = static_cast<int>(answer);
  return start;
}

}  // namespace orv
