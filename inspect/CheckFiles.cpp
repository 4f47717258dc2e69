#include "inspect/CheckFiles.h"

#include <algorithm>

#include "inspect/Checks.h"
#include "inspect/Info.h"
#include "inspect/Text.h"
#include "platform/ExString.h"
#include "platform/Platform.h"

namespace orv::inspect {

namespace {

using Json = nlohmann::ordered_json;

bool IsAnimationName(const std::string& name) { return EndsWithIgnoringCase(name, ".kin"); }

std::string StemOf(const std::string& name) {
  return ExString(name.c_str()).StripExtension().CStr();
}

// The animations that belong to a mesh, each once.
std::vector<std::string> AnimationsFor(const std::string& mesh,
                                       std::span<const std::string> given) {
  const auto meshCount = std::count_if(
      given.begin(), given.end(), [](const std::string& name) { return !IsAnimationName(name); });
  std::vector<std::string> animations;
  const auto add = [&](const std::string& name) {
    const bool known =
        std::any_of(animations.begin(), animations.end(),
                    [&](const std::string& other) { return platform::IsSameFile(name, other); });
    if (!known) animations.push_back(name);
  };
  for (const std::string& name : given) {
    const bool sameStem = BaseNamePart(name) == BaseNamePart(mesh);
    if (IsAnimationName(name) && (meshCount == 1 || sameStem)) add(name);
  }
  const std::string beside = StemOf(mesh) + ".kin";
  if (platform::FileExists(beside)) add(beside);
  return animations;
}

void CheckMesh(const LoadedFile& file, std::span<const std::string> given, Findings& findings) {
  CheckStructure(*file.Mesh(), findings);
  CheckContent(*file.Mesh(), findings);
  CheckTextures(file.Mesh()->mesh, std::string(FolderPart(file.name)), findings);
  for (const std::string& name : AnimationsFor(file.name, given)) {
    const LoadedFile animation = LoadFile(name);
    if (animation.problem || !animation.Animation()) continue;  // said when it was given
    CheckBones(*file.Mesh(), *animation.Animation(), std::string(FileNamePart(name)), findings);
  }
}

Code CodeOf(ReadFault fault) {
  switch (fault) {
    case ReadFault::Tag:
      return Code::TagWrong;
    case ReadFault::Version:
      return Code::VersionUnknown;
    case ReadFault::Count:
      return Code::CountTooLarge;
    case ReadFault::Index:
      return Code::IndexRange;
    default:
      return Code::CutOff;
  }
}

// What ended the reading. The rest of the file is not checked: it can follow from this.
Finding FindingOf(const ReadProblem& problem) {
  return {CodeOf(problem.fault), {problem.path}, problem.TextWithOffset()};
}

// True for a file that cannot be opened, or is none of ours.
bool IsUnreadable(const LoadedFile& file) {
  return file.problem && file.problem->fault == ReadFault::File;
}

void SortWorstFirst(Findings& findings) {
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    return InfoOf(a.code).level > InfoOf(b.code).level;
  });
}

CheckedFile CheckOne(const std::string& name, std::span<const std::string> given) {
  const LoadedFile file = LoadFile(name);
  CheckedFile checked;
  checked.name = name;
  checked.kind = KindName(file);
  if (IsUnreadable(file)) {
    checked.unreadable = file.ProblemMessage();
    checked.error = ErrorEntry(file);
  } else if (file.problem) {
    checked.findings.push_back(FindingOf(*file.problem));
  } else if (file.Mesh()) {
    CheckMesh(file, given, checked.findings);
  } else if (file.Animation()) {
    CheckStructure(*file.Animation(), checked.findings);
    CheckContent(*file.Animation(), checked.findings);
  }
  SortWorstFirst(checked.findings);
  return checked;
}

std::string SumUp(const Findings& findings) {
  if (findings.empty()) return "nothing found";
  std::string text;
  for (const Level level : {Level::Error, Level::Warning, Level::Note}) {
    const size_t count = CountOf(findings, level);
    if (count > 0) text += (text.empty() ? "" : ", ") + Counted(count, NameOf(level));
  }
  return text;
}

Json FindingToJson(const Finding& finding) {
  const CodeInfo& info = InfoOf(finding.code);
  const Place& place = finding.place;
  return {{"code", info.name},
          {"severity", NameOf(info.level)},
          {"aspect", NameOf(info.aspect)},
          {"place", place.path},
          {"chunk", place.chunk < 0 ? Json(nullptr) : Json(place.chunk)},
          {"subject", place.subject},
          {"text", finding.text},
          {"count", finding.count}};
}

}  // namespace

std::vector<CheckedFile> CheckFiles(std::span<const std::string> names) {
  std::vector<CheckedFile> checked;
  for (const std::string& name : names) checked.push_back(CheckOne(name, names));
  return checked;
}

void PrintChecked(std::ostream& out, const CheckedFile& file) {
  for (const Finding& finding : file.findings) {
    out << file.name << ": " << NameOf(InfoOf(finding.code).level) << ": " << LineOf(finding)
        << '\n';
  }
  out << file.name << ": " << SumUp(file.findings) << '\n';
}

Json ToJson(const CheckedFile& file) {
  if (!file.unreadable.empty()) return file.error;
  Json findings = Json::array();
  for (const Finding& finding : file.findings) findings.push_back(FindingToJson(finding));
  return {{"file", file.name},
          {"kind", file.kind},
          {"errors", CountOf(file.findings, Level::Error)},
          {"warnings", CountOf(file.findings, Level::Warning)},
          {"notes", CountOf(file.findings, Level::Note)},
          {"findings", std::move(findings)}};
}

std::vector<std::string> FindStructureErrors(const std::string& name) {
  const LoadedFile file = LoadFile(name);
  if (IsUnreadable(file)) return {file.ProblemMessage()};
  Findings findings;
  if (file.problem) {
    findings.push_back(FindingOf(*file.problem));
  } else if (file.Mesh()) {
    CheckStructure(*file.Mesh(), findings);
  } else if (file.Animation()) {
    CheckStructure(*file.Animation(), findings);
  }
  std::vector<std::string> lines;
  for (const Finding& finding : findings) {
    if (InfoOf(finding.code).level == Level::Error) lines.push_back(name + ": " + LineOf(finding));
  }
  return lines;
}

}  // namespace orv::inspect
