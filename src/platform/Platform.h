#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "platform/StringTable.h"

// The services the plug-in needs of the operating system; one implementation per system, chosen
// by CMake. Paths go in and come out in the exporter's own form (see ExString.h).
namespace orv::platform {

#define ORV_STRING_ID(id, name, text) kString##name = id,
enum StringId : unsigned { ORV_STRING_TABLE(ORV_STRING_ID) };
#undef ORV_STRING_ID

// The library's own handle, as the system gave it on loading; null until it is set. Where strings
// and dialogs are resources of the library, they are looked up by it.
void SetModuleInstance(void* instance);
void* ModuleInstance();

// The text of a string-table entry; "" for an id the table lacks.
std::string ResourceString(unsigned id);

// Where programs keep the user's settings; nothing when the system cannot say.
std::optional<std::string> ApplicationDataFolder();

// Creates the folder and those above it. An existing folder is fine; failure is not reported.
void CreateFolders(const std::string& folder);

// Full path of the program that has loaded the plug-in.
std::string HostExecutablePath();

enum class Buttons { Ok, YesNo };
enum class Icon { Error, Warning, Information, Question };

// Windows for a system that has none of its own; each call says what the function of its name
// below does.
class Windows {
 public:
  virtual bool CanShow() = 0;  // false: the other calls are not to be made
  virtual bool ShowMessageBox(const char* text, const char* caption, Buttons buttons,
                              Icon icon) = 0;
  virtual void ShowAboutBox() = 0;
  virtual std::optional<std::string> PickEventFile() = 0;

 protected:
  ~Windows() = default;
};

// Lent for good. Ignored on a system that has windows of its own.
void UseWindows(Windows* windows);

// A modal box without owner; returns true when the user answers Yes. Without a way to show
// one the text goes to standard error and the answer is no.
bool ShowMessageBox(const char* text, const char* caption, Buttons buttons, Icon icon);

// The modal About box; without a way to show it the text goes to standard error. owner: the host's
// window handle, or null.
void ShowAboutBox(void* owner, void* creationParameter);

// Copies one file. silent: no progress window, no error box, no question; noQuestions: no error
// box, no question. Returns whether the file arrived.
bool CopyOneFile(const std::string& from, const std::string& to, bool noQuestions, bool silent);

// Asks for an existing event file ("*.evt"); nothing when the user cancels or cannot be asked.
std::optional<std::string> PickEventFile();

// The path as the file system takes it: on systems with "/" alone, every "\\" becomes "/".
std::string NativePath(const std::string& path);

bool FileExists(const std::string& path);
bool IsWritable(const std::string& path);
bool RemoveFile(const std::string& path);
bool IsSameFile(const std::string& a, const std::string& b);

// Opens an existing or new file for writing without changing it, to learn whether that is allowed,
// and closes it again; a file created by the test is removed. Returns the system's reason, "" if
// allowed.
std::string WhyNotWritable(const std::string& path);

// Renames over an existing file in one step, keeping that file's permissions; a link to a file
// stays a link. False, with "from" still there, when the system refuses and when "to" can only be
// written to (see FindReplaceableFile).
bool RenameOnto(const std::string& from, const std::string& to);

// What a new file may be renamed onto, by native path: the path itself; behind a link, the file it
// stands for. "" for what can only be written to: a device, a pipe, a link to nothing.
std::string FindReplaceableFile(const std::string& path);

}  // namespace orv::platform
