#include <iostream>

#include "Commands.h"
#include "convert/Convert.h"
#include "inspect/LoadedFile.h"
#include "inspect/Text.h"
#include "platform/ExString.h"
#include "platform/Platform.h"
#include "platform/ReplacingFile.h"

namespace orv::cli {

namespace {

// False, with a message, when it cannot be read or is of the other kind.
template <typename Content>
bool Load(const std::string& name, const char* kind, inspect::LoadedFile& file) {
  file = inspect::LoadFile(name);
  if (file.problem) {
    std::cerr << "orv: " << file.ProblemMessage() << '\n';
    return false;
  }
  if (std::holds_alternative<Content>(file.content)) return true;
  std::cerr << "orv: " << name << ": is no " << kind << " file\n";
  return false;
}

// With its separator; "" for a name without folder.
bool IsInput(const ConvertArguments& arguments, const std::string& output) {
  return platform::FileExists(output) &&
         (platform::IsSameFile(output, arguments.model) ||
          (!arguments.animation.empty() && platform::IsSameFile(output, arguments.animation)));
}

int Write(const convert::GlbDocument& document, const std::string& output) {
  ReplacingFile out(output, std::ios::binary);
  if (!document.Write(out)) {
    std::cerr << "orv: " << output << ": would be larger than the 4 GiB of a .glb file\n";
    return kStatusFileMissing;
  }
  if (out.Commit()) return kStatusSuccess;
  std::cerr << "orv: " << output << ": cannot be written: " << out.FailureReason() << '\n';
  return kStatusFileMissing;
}

}  // namespace

int RunConvertCommand(const ConvertArguments& arguments) {
  const std::string base(BaseNamePart(arguments.model));
  const std::string output = arguments.output.empty() ? base + ".glb" : arguments.output;
  inspect::LoadedFile model, animation;
  if (!Load<IndexedMeshFile>(arguments.model, "indexed mesh", model)) return kStatusBadUsage;
  if (!arguments.animation.empty() &&
      !Load<AnimationFile>(arguments.animation, "animation", animation)) {
    return kStatusBadUsage;
  }
  if (IsInput(arguments, output)) {
    std::cerr << "orv: " << output << ": is one of the files to convert\n";
    return kStatusBadUsage;
  }
  convert::Messages messages;
  const convert::GlbDocument document =
      convert::Convert({.mesh = *model.Mesh(),
                        .animation = animation.Animation(),
                        .name = base,
                        .textureFolder = std::string(FolderPart(arguments.model)),
                        .metresPerUnit = arguments.metresPerUnit},
                       messages);
  for (const std::string& text : messages.notes) {
    std::cerr << "note: " << inspect::Printable(text) << '\n';
  }
  for (const std::string& text : messages.mended) {
    std::cerr << "mended: " << inspect::Printable(text) << '\n';
  }
  const int status = Write(document, output);
  if (status != kStatusSuccess) return status;
  std::cerr << output << ": " << inspect::Counted(document.CountOf("meshes"), "mesh part") << ", "
            << inspect::Counted(document.CountOf("materials"), "material") << ", "
            << inspect::Counted(document.CountOf("images"), "picture") << ", "
            << inspect::Counted(document.CountOf("nodes"), "node") << '\n';
  return messages.mended.empty() ? kStatusSuccess : kStatusErrorsLogged;
}

}  // namespace orv::cli
