#include "shell/ManageDialog.h"

#include "dialogs/FormsDialogs.h"

namespace orv {
namespace {

// For calls from managed code.
template <typename Body>
void WithoutExceptions(Body body) noexcept {
  try {
    body();
  } catch (...) {
  }
}

FormsDialogs s_ownDialogs({
    [] { ManageDialog::LogWindowSignalsClose(); },
    [](const char* text) {
      WithoutExceptions([&] {
        ManageDialog::Report(MakeFinding("window-failed", text));
        s_ownDialogs.ShowFailure(text);
      });
    },
});
ExportDialogs* s_dialogs = &s_ownDialogs;

}  // namespace

int ManageDialog::s_numErrors = 0;
int ManageDialog::s_numWarnings = 0;
ExportOutcome ManageDialog::s_outcome;

void ManageDialog::UseDialogs(ExportDialogs* dialogs) {
  s_dialogs = dialogs ? dialogs : &s_ownDialogs;
  s_ownDialogs.StartForBoxes(!dialogs);
}

void ManageDialog::BeginExport() { s_outcome = {}; }

void ManageDialog::EndExport() { s_dialogs->ExportEnded(s_outcome); }

ExportDialogs& ManageDialog::OwnDialogs() { return s_ownDialogs; }

bool ManageDialog::InitManagedResources() { return s_dialogs->Prepare(); }

void ManageDialog::DestroyManagedResources() { s_dialogs->Release(); }

bool ManageDialog::ShowExporterDialog(int owner) {
  return s_dialogs->ShowOptions(owner, Options::Instance());
}

void ManageDialog::OpenLogWindow(int owner) {
  s_numErrors = 0;
  s_numWarnings = 0;
  s_dialogs->OpenLog(owner);
}

void ManageDialog::HandleLogWindowMessages() { s_dialogs->HandleMessages(); }

void ManageDialog::LogWindowSignalsClose() { s_ownDialogs.LogHasClosed(); }

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

void ManageDialog::Log(const Finding& finding) {
  switch (finding.severity) {
    case Severity::Information:
      return LogInfoText(finding.text.c_str());
    case Severity::Warning:
      return LogWarningText(finding.text.c_str());
    case Severity::Error:
      return LogErrorText(finding.text.c_str());
  }
}

void ManageDialog::Report(const Finding& finding) {
  s_outcome.findings.push_back(finding);
  Log(finding);
}

void ManageDialog::LogSummary() {
  const Severity severity = s_numErrors > 0     ? Severity::Error
                            : s_numWarnings > 0 ? Severity::Warning
                                                : Severity::Information;
  const Finding summary = MakeFinding("export-completed", s_numErrors, s_numWarnings);
  s_dialogs->LogSummary(severity, summary.text.c_str());
}

ButtonResult ManageDialog::MessageBoxExt(int kind, const char* caption, const char* text) {
  return s_dialogs->Ask(kind, caption, text);
}

bool ManageDialog::CanPrompt() { return s_dialogs->CanPrompt(); }

}  // namespace orv
