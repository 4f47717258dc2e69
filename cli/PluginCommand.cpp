#include <cstdio>
#include <memory>

#include "Commands.h"
#include "PluginLibrary.h"

namespace orv::cli {
namespace {

void PrintExporter(SceneExport& exporter) {
  std::printf("file types:");
  for (int i = 0; i < exporter.ExtCount(); ++i) std::printf(" %s", exporter.Ext(i));
  std::printf("\nexporter:     %s (%s)\n", exporter.ShortDesc(), exporter.LongDesc());
  std::printf("author:       %s\n", exporter.AuthorName());
  std::printf("copyright:    %s\n", exporter.CopyrightMessage());
  std::printf("version:      %u.%02u\n", exporter.Version() / 100, exporter.Version() % 100);
}

void PrintClass(int index, ClassDesc& descriptor) {
  Class_ID id = descriptor.ClassID();
  std::printf("class %d:      %s (%s)\n", index, descriptor.InternalName(), descriptor.ClassName());
  std::printf("class id:     0x%08X, 0x%08X\n", static_cast<unsigned>(id.PartA()),
              static_cast<unsigned>(id.PartB()));
  std::printf("super class:  0x%X\n", static_cast<unsigned>(descriptor.SuperClassID()));
  const std::unique_ptr<SceneExport> exporter(static_cast<SceneExport*>(descriptor.Create()));
  if (exporter) PrintExporter(*exporter);
}

}  // namespace

int RunPluginCommand() {
  PluginLibrary library;
  std::printf("library:      %s\n", library.Path().c_str());
  std::printf("description:  %s\n", library.LibDescription());
  std::printf("host version: 0x%08X\n", static_cast<unsigned>(library.LibVersion()));
  std::printf("may defer:    %s\n", library.CanAutoDefer() ? "yes" : "no");
  for (int i = 0; i < library.LibNumberClasses(); ++i) {
    const std::unique_ptr<ClassDesc> descriptor(library.LibClassDesc(i));
    PrintClass(i, *descriptor);
  }
  return kStatusSuccess;
}

int RunAboutCommand() {
  NeedWindows();
  PluginLibrary library;
  const std::unique_ptr<ClassDesc> descriptor(library.LibClassDesc(0));
  const std::unique_ptr<SceneExport> exporter(static_cast<SceneExport*>(descriptor->Create()));
  exporter->ShowAbout(nullptr);
  return kStatusSuccess;
}

}  // namespace orv::cli
