#include "platform/Platform.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace orv::platform {
namespace {

fs::path Native(const std::string& path) { return NativePath(path); }

const char* Environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

std::string Reason(int error) { return std::generic_category().message(error); }

void* s_moduleInstance = nullptr;
Windows* s_windows = nullptr;

// Native paths; nothing happens when either file is missing.
void CopyPermissions(const std::string& from, const std::string& to) {
  std::error_code error;
  const fs::file_status status = fs::status(from, error);
  if (fs::exists(status)) fs::permissions(to, status.permissions(), error);
}

bool CanShowWindows() { return s_windows && s_windows->CanShow(); }

}  // namespace

void SetModuleInstance(void* instance) { s_moduleInstance = instance; }

void* ModuleInstance() { return s_moduleInstance; }

std::string ResourceString(unsigned id) {
#define ORV_CASE(number, name, text) \
  case number:                       \
    return text;
  switch (id) { ORV_STRING_TABLE(ORV_CASE) }
#undef ORV_CASE
  return "";
}

std::optional<std::string> ApplicationDataFolder() {
  const fs::path folder = Environment("XDG_CONFIG_HOME");
  if (folder.is_absolute()) return folder.string();  // a relative one is to be ignored
  const fs::path home = Environment("HOME");
  if (home.empty()) return std::nullopt;
  return (home / ".config").string();
}

void CreateFolders(const std::string& folder) {
  std::error_code ignored;
  fs::create_directories(Native(folder), ignored);
}

std::string HostExecutablePath() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error).string();
}

void UseWindows(Windows* windows) { s_windows = windows; }

bool ShowMessageBox(const char* text, const char* caption, Buttons buttons, Icon icon) {
  if (CanShowWindows()) return s_windows->ShowMessageBox(text, caption, buttons, icon);
  std::fprintf(stderr, "%s: %s\n", caption, text);
  return false;
}

void ShowAboutBox(void*, void*) {
  if (CanShowWindows()) return s_windows->ShowAboutBox();
  std::fprintf(stderr, "Orv Exporter\n%s\n", ORV_COPYRIGHT);
}

// Nothing is ever shown or asked, whatever the caller would allow. The copy gets its name when it
// is complete, so that a full disk leaves no half of a texture behind.
bool CopyOneFile(const std::string& from, const std::string& to, bool, bool) {
  if (IsSameFile(from, to)) return FileExists(from);
  const std::string target = FindReplaceableFile(NativePath(to));
  if (target.empty()) return false;
  const fs::path partial = target + ".partial";
  std::error_code error;
  fs::remove(partial, error);
  if (fs::copy_file(Native(from), partial, error)) fs::rename(partial, target, error);
  if (!error) return true;
  std::error_code ignored;
  fs::remove(partial, ignored);
  return false;
}

std::optional<std::string> PickEventFile() {
  return CanShowWindows() ? s_windows->PickEventFile() : std::nullopt;
}

std::string NativePath(const std::string& path) {
  std::string native = path;
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

bool FileExists(const std::string& path) {
  std::error_code error;
  return fs::exists(Native(path), error);
}

bool IsWritable(const std::string& path) { return access(NativePath(path).c_str(), W_OK) == 0; }

bool RemoveFile(const std::string& path) { return unlink(NativePath(path).c_str()) == 0; }

bool IsSameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  const bool same = fs::equivalent(Native(a), Native(b), error);
  if (!error) return same;
  return fs::absolute(Native(a), error).lexically_normal() ==
         fs::absolute(Native(b), error).lexically_normal();
}

std::string WhyNotWritable(const std::string& path) {
  const std::string native = NativePath(path);
  const bool existed = FileExists(path);
  // Not blocking: a pipe that nobody reads would hold the open for ever.
  const int file = open(native.c_str(), O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
  if (file < 0) return Reason(errno);
  close(file);
  std::error_code error;
  if (!existed) fs::remove(fs::canonical(native, error), error);  // behind a link: not the link
  return "";
}

std::string FindReplaceableFile(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_symlink(fs::symlink_status(path, error))) {
    const fs::path target = fs::canonical(path, error);
    return error || !fs::is_regular_file(status) ? "" : target.string();
  }
  return fs::exists(status) && !fs::is_regular_file(status) ? "" : path;
}

bool RenameOnto(const std::string& from, const std::string& to) {
  const std::string target = FindReplaceableFile(NativePath(to));
  if (target.empty()) return false;
  CopyPermissions(target, NativePath(from));
  std::error_code error;
  fs::rename(Native(from), target, error);
  return !error;
}

}  // namespace orv::platform
