// A host that exports a triangle again and again through one exporter object, with the plug-in's
// own windows, and looks whether its memory and its open files grow.
//   many_exports OUT.im COUNT

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "Plugin.h"

namespace orv {
namespace {

// Mono keeps 1 to 2 KiB for every control that has ever been on the screen; an export shows twenty.
constexpr long kMemoryPerExport = 48;  // KiB

struct Usage {
  long memory = 0;  // KiB, resident
  long files = 0;
};

Usage Measure() {
  Usage usage;
  long pages = 0;
  if (FILE* file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(file, "%*d %ld", &pages) != 1) pages = 0;
    std::fclose(file);
  }
  usage.memory = pages * sysconf(_SC_PAGESIZE) / 1024;
  usage.files = std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                              std::filesystem::directory_iterator());
  return usage;
}

Mesh Triangle() {
  Mesh mesh;
  mesh.setNumVerts(3);
  mesh.setNumTVerts(3);
  mesh.setNumFaces(1);
  mesh.setNumTVFaces(1);
  for (int i = 0; i < 3; ++i) {
    mesh.setVert(i, Point3(i == 1, i == 2, 0));
    mesh.setTVert(i, Point3(i == 1, i == 2, 0));
  }
  mesh.faces[0].setVerts(0, 1, 2);
  mesh.tvFace[0].setTVerts(0, 1, 2);
  return mesh;
}

int Run(const char* name, int count) {
  host::Scene scene;
  scene.AddMeshNode("part", Triangle(), &scene.AddMaterial("plain m.notex"));
  scene.AddMeshNode("b.root", Triangle(), nullptr);
  host::MemoryHost host(scene);
  HostServices services;
  services.core = &host;
  Entry<UseHostServicesFunction>("UseHostServices")(&services);
  const std::unique_ptr<ClassDesc> descriptor(Entry<ClassDesc*(int)>("LibClassDesc")(0));
  const std::unique_ptr<SceneExport> exporter(static_cast<SceneExport*>(descriptor->Create()));
  Usage first;
  for (int i = 0; i < count; ++i) {
    std::filesystem::remove(name);
    if (exporter->DoExport(name, nullptr, &host) != 1 || !std::filesystem::exists(name)) return 2;
    const Usage usage = Measure();
    if (i == count / 4) first = usage;  // by then everything has been loaded and compiled
    if (i % (count / 8) == 0 || i == count - 1)
      std::printf("export %d: %ld KiB, %ld files\n", i + 1, usage.memory, usage.files);
  }
  const Usage last = Measure();
  const long allowed = kMemoryPerExport * (count - count / 4);
  return last.files == first.files && last.memory <= first.memory + allowed ? 0 : 1;
}

}  // namespace
}  // namespace orv

int main(int argc, char** argv) { return argc == 3 ? orv::Run(argv[1], std::atoi(argv[2])) : 2; }
