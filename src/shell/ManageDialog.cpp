#include "shell/ManageDialog.h"

#include "platform/Platform.h"

namespace orv {
namespace {

// In place of windows that this build does not have: says so, and every export is cancelled.
class NoDialogs : public ExportDialogs {
 public:
  bool ShowOptions(int, Options&) override {
    platform::ShowMessageBox(
        "The exporter's windows are not available here, so nothing is exported.\n"
        "Use the command line, or a host that brings dialogs of its own.",
        "Velmor Exporter", platform::Buttons::Ok, platform::Icon::Error);
    return false;
  }
  void OpenLog(int) override {}
  void Log(Severity, const char*) override {}
  void WaitForLogClosed(int) override {}
  void CloseLog() override {}
  ButtonResult Ask(const char*, const char*) override { return ButtonResult::None; }
  bool CanPrompt() override { return false; }
};

NoDialogs s_ownDialogs;
ExportDialogs* s_dialogs = &s_ownDialogs;

}  // namespace

int ManageDialog::s_numErrors = 0;
int ManageDialog::s_numWarnings = 0;

void ManageDialog::UseDialogs(ExportDialogs* dialogs) {
  s_dialogs = dialogs ? dialogs : &s_ownDialogs;
}

bool ManageDialog::InitManagedResources() { return true; }

void ManageDialog::DestroyManagedResources() {}

bool ManageDialog::ShowExporterDialog(int owner) {
  return s_dialogs->ShowOptions(owner, Options::Instance());
}

void ManageDialog::OpenLogWindow(int owner) {
  s_numErrors = 0;
  s_numWarnings = 0;
  s_dialogs->OpenLog(owner);
}

void ManageDialog::WaitForUserToCloseLogWindow(int owner) { s_dialogs->WaitForLogClosed(owner); }

void ManageDialog::CloseLogWindow() { s_dialogs->CloseLog(); }

void ManageDialog::LogInfoText(const char* text) { s_dialogs->Log(Severity::Information, text); }

void ManageDialog::LogWarningText(const char* text) {
  ++s_numWarnings;
  s_dialogs->Log(Severity::Warning, text);
}

void ManageDialog::LogErrorText(const char* text) {
  ++s_numErrors;
  s_dialogs->Log(Severity::Error, text);
}

ButtonResult ManageDialog::MessageBoxExt(int /*kind*/, const char* caption, const char* text) {
  return s_dialogs->Ask(caption, text);
}

bool ManageDialog::CanPrompt() { return s_dialogs->CanPrompt(); }

}  // namespace orv
