// Paths are in the system's 8-bit code page, as the host's are.

#include "platform/Platform.h"

#include <windows.h>

#include <commdlg.h>
#include <io.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>

namespace orv::platform {
namespace {

constexpr size_t kMaxPath = 260;  // characters, for the shell's functions
constexpr int kMaxText = 256;     // of the string table, with its end

HINSTANCE s_moduleInstance = nullptr;

std::string LastReason() {
  char text[512] = "";
  const DWORD error = GetLastError();
  DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                error, 0, text, sizeof(text), nullptr);
  while (length > 0 && static_cast<unsigned char>(text[length - 1]) <= ' ') --length;
  return length > 0 ? std::string(text, length) : "error " + std::to_string(error);
}

// A path as the shell's file operations take lists of them: ended by two zero bytes.
struct ShellPath {
  explicit ShellPath(const std::string& path) {
    const std::string native = NativePath(path);
    native.copy(text, kMaxPath);
  }
  char text[kMaxPath + 2] = {};
};

// Everybody else may read, write and rename the file meanwhile.
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class Handle {
 public:
  Handle(const std::string& path, DWORD access, DWORD disposition, DWORD flags)
      : m_handle(CreateFileA(NativePath(path).c_str(), access, kShareAll, nullptr, disposition,
                             flags, nullptr)) {}
  ~Handle() {
    if (IsOpen()) CloseHandle(m_handle);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
  HANDLE Get() const { return m_handle; }

 private:
  HANDLE m_handle;
};

std::string FullPath(const std::string& path) {
  char full[kMaxPath] = "";
  const DWORD length = GetFullPathNameA(NativePath(path).c_str(), kMaxPath, full, nullptr);
  return length > 0 && length < kMaxPath ? full : path;
}

UINT StyleOf(Icon icon) {
  switch (icon) {
    case Icon::Error:
      return MB_ICONERROR;
    case Icon::Warning:
      return MB_ICONWARNING;
    case Icon::Information:
      return MB_ICONINFORMATION;
    default:
      return MB_ICONQUESTION;
  }
}

// Closed by its button alone.
INT_PTR CALLBACK AboutProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrA(window, GWLP_USERDATA, lParam);
    return TRUE;
  }
  if (GetWindowLongPtrA(window, GWLP_USERDATA) == 0) return FALSE;
  if (message == WM_COMMAND && LOWORD(wParam) == ORV_ABOUT_OK) EndDialog(window, 1);
  return message == WM_COMMAND || message == WM_DESTROY;
}

}  // namespace

void SetModuleInstance(void* instance) { s_moduleInstance = static_cast<HINSTANCE>(instance); }

void* ModuleInstance() { return s_moduleInstance; }

std::string ResourceString(unsigned id) {
  char text[kMaxText] = "";
  if (s_moduleInstance) LoadStringA(s_moduleInstance, id, text, kMaxText);
  return text;
}

std::optional<std::string> ApplicationDataFolder() {
  char folder[kMaxPath] = "";
  constexpr int kRoaming = CSIDL_APPDATA | CSIDL_FLAG_CREATE;
  static_assert(kRoaming == 0x801A);
  if (SHGetFolderPathA(nullptr, kRoaming, nullptr, 0, folder) < 0) return std::nullopt;
  return folder;
}

void CreateFolders(const std::string& folder) {
  SHCreateDirectoryExA(nullptr, NativePath(folder).c_str(), nullptr);
}

std::string HostExecutablePath() {
  char path[kMaxPath] = "";
  GetModuleFileNameA(nullptr, path, kMaxPath);
  return path;
}

void UseWindows(Windows*) {}

bool ShowMessageBox(const char* text, const char* caption, Buttons buttons, Icon icon) {
  const UINT style = (buttons == Buttons::YesNo ? MB_YESNO : MB_OK) | StyleOf(icon);
  return MessageBoxA(nullptr, text, caption, style) == IDYES;
}

void ShowAboutBox(void* owner, void* creationParameter) {
  DialogBoxParamA(static_cast<HINSTANCE>(ModuleInstance()), MAKEINTRESOURCEA(ORV_DIALOG_ABOUT),
                  static_cast<HWND>(owner), AboutProcedure,
                  reinterpret_cast<LPARAM>(creationParameter));
}

// The dialog for saving, told to take existing files only.
std::optional<std::string> PickEventFile() {
  char name[256] = {};
  OPENFILENAMEA picker{};
  picker.lStructSize = sizeof(picker);
  picker.lpstrTitle = "Pick an event file";
  picker.lpstrFilter = "Event files\0*.evt\0";
  picker.lpstrDefExt = "evt";
  picker.lpstrFile = name;
  picker.nMaxFile = sizeof(name);
  picker.Flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY;
  if (!GetSaveFileNameA(&picker)) return std::nullopt;
  return name;
}

bool CopyOneFile(const std::string& from, const std::string& to, bool noQuestions, bool silent) {
  const ShellPath source(from), target(to);
  SHFILEOPSTRUCTA operation = {};
  operation.wFunc = FO_COPY;
  operation.pFrom = source.text;
  operation.pTo = target.text;
  operation.lpszProgressTitle = "Copying texture files...";
  if (noQuestions) operation.fFlags |= FOF_NOERRORUI | FOF_NOCONFIRMATION;
  if (silent) operation.fFlags |= FOF_SILENT | FOF_NOERRORUI | FOF_NOCONFIRMATION;
  return SHFileOperationA(&operation) == 0 && !operation.fAnyOperationsAborted;
}

std::string NativePath(const std::string& path) {
  std::string native = path;
  std::replace(native.begin(), native.end(), '/', '\\');
  return native;
}

bool FileExists(const std::string& path) {
  return GetFileAttributesA(NativePath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool IsWritable(const std::string& path) {
  constexpr int kWrite = 2;
  return _access(NativePath(path).c_str(), kWrite) == 0;
}

bool RemoveFile(const std::string& path) { return DeleteFileA(NativePath(path).c_str()); }

bool IsSameFile(const std::string& a, const std::string& b) {
  const Handle first(a, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  const Handle second(b, 0, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
  BY_HANDLE_FILE_INFORMATION x, y;
  if (first.IsOpen() && second.IsOpen() && GetFileInformationByHandle(first.Get(), &x) &&
      GetFileInformationByHandle(second.Get(), &y)) {
    return x.dwVolumeSerialNumber == y.dwVolumeSerialNumber &&
           x.nFileIndexHigh == y.nFileIndexHigh && x.nFileIndexLow == y.nFileIndexLow;
  }
  return lstrcmpiA(FullPath(a).c_str(), FullPath(b).c_str()) == 0;
}

std::string WhyNotWritable(const std::string& path) {
  const bool existed = FileExists(path);
  {
    const Handle file(path, GENERIC_WRITE, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL);
    if (!file.IsOpen()) return LastReason();
  }
  if (!existed) RemoveFile(path);
  return "";
}

// A new file has the permissions of its folder, as the old one had.
bool RenameOnto(const std::string& from, const std::string& to) {
  return MoveFileExA(NativePath(from).c_str(), NativePath(to).c_str(), MOVEFILE_REPLACE_EXISTING);
}

// Devices have a full path in a name space of their own.
std::string FindReplaceableFile(const std::string& path) {
  if (FullPath(path).starts_with("\\\\.\\")) return "";
  const DWORD attributes = GetFileAttributesA(NativePath(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return path;
  const DWORD kNoFile =
      FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT;
  return attributes & kNoFile ? "" : path;
}

}  // namespace orv::platform
