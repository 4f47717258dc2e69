#pragma once

#include <concepts>
#include <cstddef>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/Platform.h"

namespace orv {

enum class Severity { Information = 0, Warning = 1, Error = 2 };

// What a message can be about, and how its text calls that.
enum class SubjectKind { Node, Material, Texture, Bone, File };
inline constexpr std::string_view kSubjectNames[] = {"node", "material", "texture", "bone", "file"};

constexpr std::optional<SubjectKind> SubjectNamed(std::string_view name) {
  for (size_t i = 0; i < std::size(kSubjectNames); ++i)
    if (kSubjectNames[i] == name) return static_cast<SubjectKind>(i);
  return std::nullopt;
}

struct Subject {
  SubjectKind kind;
  std::string name;
  bool operator==(const Subject&) const = default;
};

// One message as an export gives it. Also thrown, by what ends the export.
struct Finding {
  std::string_view code;  // the catalogue's own
  Severity severity;
  std::string text;               // at most kMaxMessageText characters
  std::vector<Subject> subjects;  // in the order of the message's places
};

inline constexpr size_t kMaxMessageText = 1023;

// A message of the exporter. Programs know it by its code, which names the condition and never
// changes; the text is for people. Arguments go to the places in braces: "{number}", "{text}", or
// text that names a subject: "{node}", "{file}" and so on. A subject that is not shown has a "-":
// "{-file}".
struct Message {
  constexpr Message(std::string_view code, Severity severity, std::string_view text)
      : Message(code, severity, platform::StringId{}, text) {}
  constexpr Message(std::string_view code, Severity severity, platform::StringId beginning,
                    std::string_view text = "")
      : code(code), severity(severity), beginning(beginning), text(text) {}

  std::string_view code;
  Severity severity;
  platform::StringId beginning;  // a text of the string table that stands before `text`; 0: none
  std::string_view text;
};

// Every message there is. One that explains the one before it has that one's code and a word more.
inline constexpr Message kMessages[] = {
    // Meshes that are left out.
    {"material-missing", Severity::Error, platform::kStringMaterialMissing, "{node}"},
    {"texcoords-missing", Severity::Warning, platform::kStringNoTextureMapping, "{node}"},
    {"faces-missing", Severity::Warning, platform::kStringNoFaces, "{node}"},
    {"material-not-standard", Severity::Error, platform::kStringNonStandardMaterial,
     "{node},Material:{material}"},
    {"sub-material-not-standard", Severity::Error, platform::kStringNonStandardSubMaterial,
     "{node},Material:{material},SubMaterial:{material}"},

    // Materials.
    {"map-not-bitmap", Severity::Warning, platform::kStringNonBitmapMap,
     "{material},Map:{text},Mesh:{node}"},
    {"bitmap-name-missing", Severity::Error, platform::kStringMissingBitmapName,
     "{material},Map:{text},Mesh:{node}"},
    {"material-type-missing", Severity::Error,
     "Material '{material}' name is invalid.  Materials should be named and have a 'm.' material "
     "type suffix."},

    // Bones and weights.
    {"bones-missing", Severity::Warning, "No bones to export animation"},
    {"bone-outside-root", Severity::Warning,
     "Ignoring bone - not below the first bone root:{bone}"},
    {"skin-vertex-not-rigid", Severity::Error,
     "Unsupported vertex type encountered in physique export{-node}"},

    // The mesh as a whole.
    {"nothing-to-export", Severity::Warning, platform::kStringNothingToExport},
    {"chunks-split", Severity::Warning,
     "Mesh limits exceeded, {number} chunks split into {number} chunks."},
    {"index-out-of-range", Severity::Error,
     "Index out of range, chunk too large. (Should have been split earlier)"},
    {"mesh-too-large", Severity::Error,
     "Failed to create indexed mesh.  Check vertex and face counts.\n"
     "Vertex count = {number} Index count = {number} (Max Verts 65535)"},

    // Files.
    {"event-file-malformed", Severity::Warning,
     "Event file {file} is malformed at line {number}, later events are ignored."},
    {"file-not-writable", Severity::Error,
     "Geometry Exporter reported error code '{number}'{-file}"},
    {"file-not-writable-reason", Severity::Information, "Could not write {file}: {text}"},
    {"side-file-exists", Severity::Information,
     "{text}.texture.txt file {file} already exists.\n  Overwrite file?\n"},
    {"side-file-kept", Severity::Information, "Skipping existing file: '{file}'"},
    {"side-file-overwritten", Severity::Information, "Overwriting existing file: '{file}'"},
    {"side-file-not-removable", Severity::Warning, "Could not remove {text}file.\n{-file}"},
    {"side-file-not-writable", Severity::Error, "Could not open texture file {file} for writing."},
    {"side-file-not-writable-reason", Severity::Information, "  {text}{-file}"},
    {"side-file-not-writable-text", Severity::Information, "  its text is in {file}"},
    {"texture-copy-failed", Severity::Error,
     "The following {number} file(s) failed to copy or could not be located:"},
    {"texture-copy-failed-name", Severity::Information, "  {texture}"},

    // The run.
    {"export-started", Severity::Information, "Exporting..."},
    {"stage-started", Severity::Information, "Progress: {text}"},
    {"export-completed", Severity::Information,  // or as severe as what there was
     "Export completed with {number} Errors and {number} Warnings."},
    {"export-running", Severity::Information, "An export is running, or its log is still open."},
    {"geometry-failed", Severity::Error, platform::kStringUnhandledError},
    {"export-stopped", Severity::Error, "{text}"},  // by what the host has thrown
    {"unhandled-exception", Severity::Error,
     "Unhandled exception occurred in plug-in!\nPlug-in terminated."},
    {"window-failed", Severity::Error, "{text}"},
    {"windows-missing", Severity::Error,
     "The exporter's windows cannot be shown, so nothing is exported.\n{text}"},
};

// The whole text, with its places.
std::string TextOf(const Message& message);

// The next place in a text, and what stands before it; both are taken from the text. At its end
// there is no name.
struct MessagePlace {
  std::string_view before;
  std::string_view name;
  bool isShown = true;
};
constexpr MessagePlace TakePlace(std::string_view& text) {
  const size_t begin = text.find('{');
  MessagePlace place{text.substr(0, begin), ""};
  if (begin == text.npos) {
    text = "";
    return place;
  }
  const size_t end = text.find('}', begin);
  place.name = text.substr(begin + 1, end - begin - 1);
  text.remove_prefix(end + 1);
  if (place.name.starts_with('-')) {
    place.isShown = false;
    place.name.remove_prefix(1);
  }
  return place;
}

consteval const Message& FindMessage(std::string_view code) {
  for (const Message& message : kMessages)
    if (message.code == code) return message;
  throw std::invalid_argument("no such message");
}

// A code to compare a finding's with. One that the catalogue lacks does not compile.
consteval std::string_view CodeOf(std::string_view code) { return FindMessage(code).code; }

// A message by its code, to be given arguments of these types. What the catalogue lacks, and
// arguments that do not fit the places, do not compile.
template <typename... Arguments>
class MessageFor {
 public:
  consteval MessageFor(const char* code) : m_message(&FindMessage(code)) {
    std::string_view text = m_message->text;
    (CheckPlace(TakePlace(text).name, std::is_integral_v<Arguments>), ...);
    if (!TakePlace(text).name.empty()) throw std::invalid_argument("an argument is missing");
  }
  const Message& Get() const { return *m_message; }

 private:
  static consteval void CheckPlace(std::string_view name, bool isNumber) {
    if (name.empty()) throw std::invalid_argument("an argument too many");
    if (isNumber != (name == "number")) throw std::invalid_argument("argument of another kind");
    if (!isNumber && name != "text" && !SubjectNamed(name))
      throw std::invalid_argument("no such place");
  }

  const Message* m_message;
};

// An argument as it stands in the text.
inline std::string ArgumentText(const std::string& text) { return text; }
inline std::string ArgumentText(const char* text) { return text ? text : "(null)"; }
std::string ArgumentText(std::integral auto number) { return std::to_string(number); }

// The message with its places filled in.
Finding FillIn(const Message& message, const std::vector<std::string>& arguments);

template <typename... Arguments>
Finding MakeFinding(MessageFor<std::type_identity_t<Arguments>...> message,
                    const Arguments&... arguments) {
  return FillIn(message.Get(), {ArgumentText(arguments)...});
}

}  // namespace orv
