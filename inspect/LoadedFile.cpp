#include "inspect/LoadedFile.h"

#include "platform/ExString.h"

namespace orv::inspect {

namespace {

FileKind KindByName(std::string_view name) {
  const std::string lowered = LowerCase(name);
  if (lowered.ends_with(".kin")) return FileKind::Animation;
  return lowered.ends_with(".im") ? FileKind::IndexedMesh : FileKind::Unknown;
}

}  // namespace

LoadedFile LoadFile(const std::string& name) {
  LoadedFile file;
  file.name = name;
  std::string bytes;
  ReadProblem problem;
  if (!ReadWholeFile(name, bytes, problem)) {
    file.problem = std::move(problem);
    return file;
  }
  file.size = bytes.size();
  FileKind kind = KindOf(bytes);
  if (kind == FileKind::Unknown) kind = KindByName(name);
  bool complete = false;
  if (kind == FileKind::IndexedMesh) {
    complete = ReadIndexedMesh(bytes, file.content.emplace<IndexedMeshFile>(), problem);
  } else if (kind == FileKind::Animation) {
    complete = ReadAnimation(bytes, file.content.emplace<AnimationFile>(), problem);
  } else {
    problem.text = "is neither an indexed mesh nor an animation file";
  }
  if (!complete) file.problem = std::move(problem);
  return file;
}

}  // namespace orv::inspect
