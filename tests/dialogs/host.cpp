// A host that exports again and again through one exporter object, with the plug-in's own windows,
// and looks whether its memory and its open files grow. Its progress bar fails in the second
// export.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "Plugin.h"

namespace {

constexpr int kExports = 40, kWarm = 10;  // by then everything has been loaded and compiled
// Mono keeps 1 to 2 KiB for every control that has ever been on the screen; an export shows twenty.
constexpr long kMemoryPerExport = 48;  // KiB

// KiB in memory, and files.
std::pair<long, long> Usage() {
  long all = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return {resident * sysconf(_SC_PAGESIZE) / 1024,
          std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {})};
}

}  // namespace

int main() {
  orv::host::Scene scene;
  int i = 0;
  orv::host::MemoryHost host(scene, [&](int, const char*) {
    if (i == 1) throw std::runtime_error("no bar");
  });
  orv::Plugin plugin("");
  orv::HostServices services;
  services.core = &host;
  orv::Entry<orv::UseHostServicesFunction>("UseHostServices")(&services);
  std::pair<long, long> warm;
  for (; i < kExports; ++i) {
    if (i == kWarm) warm = Usage();
    plugin.exporter->DoExport("many.im", nullptr, &host);
  }
  const auto [memory, files] = Usage();
  std::cout << memory - warm.first << " KiB and " << files - warm.second << " files more\n";
  return memory <= warm.first + kMemoryPerExport * (kExports - kWarm) && files == warm.second ? 0
                                                                                              : 1;
}
