#pragma once

#include "options/Options.h"
#include "report/ExportUserInterface.h"

namespace orv {

// The button a user pressed in the extended question box.
enum class ButtonResult { None = 0, Yes = 1, YesToAll = 2, No = 3, NoToAll = 4, Cancel = 5 };

// The windows of an export as one interface: the plug-in's own, or those of a host that brings
// its own. All calls come from the thread that called DoExport. owner: the host's main window,
// its handle cut to an int.
class ExportDialogs {
 public:
  virtual ~ExportDialogs() = default;

  // Brackets what an export shows; the options dialog may come before it. False: there are no
  // windows, and the other calls show nothing.
  virtual bool Prepare() { return true; }
  virtual void Release() {}

  // Edits the options in place; false when the user cancels.
  virtual bool ShowOptions(int owner, Options& options) = 0;

  virtual void OpenLog(int owner) = 0;
  virtual void Log(Severity severity, const char* text) = 0;  // one line, also without a window
  // The last line of an export's log.
  virtual void LogSummary(Severity severity, const char* text) { Log(severity, text); }
  // Called often during an export, for windows that would freeze otherwise.
  virtual void HandleMessages() {}
  // Returns at once when the user has closed the log already.
  virtual void WaitForLogClosed(int owner) = 0;
  virtual void CloseLog() = 0;

  // kind: 0 with a button to cancel, 1 without.
  virtual ButtonResult Ask(int kind, const char* caption, const char* text) = 0;
  virtual bool CanPrompt() = 0;  // false: nobody is there to answer Ask

  // Comes last, once for every export, however it has ended.
  virtual void ExportEnded(const ExportOutcome& /*outcome*/) {}
};

}  // namespace orv
