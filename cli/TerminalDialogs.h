#pragma once

#include <functional>

#include "Terminal.h"
#include "dialogs/ExportDialogs.h"

namespace orv::cli {

// The windows of an export on a terminal: the options come from the command line, the log goes to
// standard error, and questions are asked only where somebody can answer. With windows beside them,
// those are shown the command line's options, keep a log as well, and ask the questions.
class TerminalDialogs : public ExportDialogs {
 public:
  TerminalDialogs(Terminal& terminal, std::function<void(Options&)> applyCommandLine)
      : m_terminal(terminal), m_applyCommandLine(std::move(applyCommandLine)) {}

  // Lent.
  void ShowWindows(ExportDialogs* windows) { m_windows = windows; }

  bool Prepare() override { return !m_windows || m_windows->Prepare(); }
  void Release() override;
  bool ShowOptions(int owner, Options& options) override;
  void OpenLog(int owner) override;
  void Log(Severity severity, const char* text) override;
  void LogSummary(Severity severity, const char* text) override;
  void HandleMessages() override;
  void WaitForLogClosed(int owner) override;
  void CloseLog() override;
  ButtonResult Ask(int kind, const char* caption, const char* text) override;
  bool CanPrompt() override;
  void ExportEnded(const ExportOutcome& outcome) override;

  const ExportOutcome& Outcome() const { return m_outcome; }

 private:
  Terminal& m_terminal;
  std::function<void(Options&)> m_applyCommandLine;
  ExportDialogs* m_windows = nullptr;
  ExportOutcome m_outcome;
};

}  // namespace orv::cli
