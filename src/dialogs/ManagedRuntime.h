#pragma once

#include <string>

namespace orv {

// What StartManagedDialogs calls, and where it finds it: beside the plug-in library.
inline constexpr char kDialogAssembly[] = "OrvExporterDialogs.dll";
inline constexpr char kStartClass[] = "Orv.Dialogs.Bridge";  // with its namespaces
inline constexpr char kStartMethod[] = "Start";              // static int Start(string)

struct ManagedStart {
  // Why Start was not reached, in sentences for the user: what is missing and, where that can be
  // said, how to get it. "" when Start was called.
  std::string problem;
  int answer = 0;  // of Start
};

// Starts a .NET runtime in this process, unless one runs already, loads the assembly and calls its
// Start with the argument. One implementation per system; it also finds the folder of the plug-in
// library, which is not the folder of the program. Comes from the host's user-interface thread,
// and again after a failure. Throws nothing but std::bad_alloc.
ManagedStart StartManagedDialogs(const std::string& argument);

}  // namespace orv
