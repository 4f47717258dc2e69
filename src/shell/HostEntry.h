#pragma once

#include <cstdint>

#include "dialogs/ExportDialogs.h"

namespace orv {

class HostCore;

// What a host hands to the plug-in beyond the entry points every exporter has: its own dialogs
// and settings folder, and the services that the host's SDK reaches through free functions.
// Everything is lent and has to outlive the last export. Both sides must come from the same
// compiler.
struct HostServices {
  uint32_t size = sizeof(HostServices);  // of this record as the host knows it
  HostCore* core = nullptr;              // null: the SDK's defaults
  ExportDialogs* dialogs = nullptr;      // null: the plug-in's own windows
  const char* settingsFolder = nullptr;  // stands for the user's application-data folder
  ExportDialogs** ownDialogs = nullptr;  // receives the plug-in's own windows, to build upon
};

// The library's one entry of our own, exported as "UseHostServices". Null goes back to the
// defaults. Answers 0 to a record of another size.
using UseHostServicesFunction = int(const HostServices*);

}  // namespace orv
