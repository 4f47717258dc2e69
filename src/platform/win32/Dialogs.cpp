#include <windows.h>

#include <commdlg.h>

#include "platform/Platform.h"
#include "platform/win32/Resource.h"

namespace orv::platform {
namespace {

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

}  // namespace orv::platform
