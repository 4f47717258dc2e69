// Whole files: reading back what was written, and whole exports beside gltfpack, each a process of
// its own, loading and start included.

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "Benches.h"
#include "GlbFile.h"
#include "Pieces.h"
#include "TemporaryFolder.h"
#include "formats/IndexedMeshFile.h"
#include "inspect/CheckFiles.h"

namespace orv::bench {
namespace {

const std::string& Folder() {
  static const TemporaryFolder s_folder;
  static const std::string s_path = s_folder.File("");
  return s_path;
}

std::string WriteModel(const Model& model) {
  SilentUserInterface silent;
  ExIndexedMesh built = BuildPieces(model);
  const std::string path = Folder() + "model.im";
  bool ask = false, force = true;
  if (!WriteIndexedMeshFile(built, path, true, ask, force, silent)) throw std::runtime_error(path);
  return path;
}

// Of the file itself, or of one that is written for the model.
std::string SceneOf(const ModelSource& source, const Model& model) {
  if (source.size == 0) return std::string(ORV_BENCH_MODELS) + "/" + source.file;
  const std::string path = Folder() + "scene.glb";
  WriteGlb(model, path);
  return path;
}

}  // namespace

void AddReadBack(const ModelSource& source) {
  Add("read-back check", kOurs, source, [](const Model& model) {
    const std::string path = WriteModel(model);
    const std::vector<std::string> errors = inspect::FindStructureErrors(path);
    if (!errors.empty()) throw std::runtime_error(errors.front());
    return Work{[path] { inspect::FindStructureErrors(path); }};
  });
}

void AddExport(const ModelSource& source) {
  const std::string stage = "whole export";
  const auto orv = [=](const Model& model) {
    return std::vector<std::string>{ORV_BENCH_ORV,
                                    "export",
                                    SceneOf(source, model),
                                    "-q",
                                    "--no-animation",
                                    "--default-material",
                                    "m",
                                    "-o",
                                    Folder() + "out"};
  };
  AddProcess(stage, kOurs, source, orv);
  if (source.size > 0 || source.file.ends_with(".glb")) {
    AddProcess(stage, "gltfpack", source, [=](const Model& model) {
      return std::vector<std::string>{
          "gltfpack", "-noq", "-i", SceneOf(source, model), "-o", Folder() + "packed.glb"};
    });
  }
  AddProcess(stage, "orv, no read-back", source, [=](const Model& model) {
    std::vector<std::string> command = orv(model);
    command.push_back("--no-check");
    return command;
  });
}

}  // namespace orv::bench
