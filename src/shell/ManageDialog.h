#pragma once

#include "dialogs/ExportDialogs.h"

namespace orv {

// What the exporter calls to reach its windows. Stands before whichever ExportDialogs is in use
// and keeps the counters of the log.
class ManageDialog {
 public:
  // Null: the plug-in's own windows. The dialogs are lent.
  static void UseDialogs(ExportDialogs* dialogs);
  static ExportDialogs& OwnDialogs();

  static void BeginExport();  // with an empty outcome
  static void EndExport();    // hands the outcome to the dialogs

  static bool InitManagedResources();
  static void DestroyManagedResources();

  static bool ShowExporterDialog(int owner);  // false: cancelled

  static void OpenLogWindow(int owner);   // sets the counters to 0
  static void HandleLogWindowMessages();  // to be called often while an export runs
  static void LogWindowSignalsClose();    // the plug-in's own log window has gone
  static void WaitForUserToCloseLogWindow(int owner);
  static void CloseLogWindow();

  // Accept text at any time, also before a log is open.
  static void LogInfoText(const char* text);
  static void LogWarningText(const char* text);
  static void LogErrorText(const char* text);

  static void Log(const Finding& finding);
  static void Report(const Finding& finding);  // logs it and keeps it in the outcome
  static void LogSummary();

  static ButtonResult MessageBoxExt(int kind, const char* caption, const char* text);
  static bool CanPrompt();

  static int s_numErrors;
  static int s_numWarnings;
  static ExportOutcome s_outcome;  // of the export that runs, or the one that ran last
};

}  // namespace orv
