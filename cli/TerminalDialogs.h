#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Terminal.h"
#include "shell/ExportDialogs.h"

namespace orv::cli {

// The windows of an export on a terminal: the options come from the command line, the log goes to
// standard error, and questions are asked only where somebody can answer.
class TerminalDialogs : public ExportDialogs {
 public:
  TerminalDialogs(Terminal& terminal, std::function<void(Options&)> applyCommandLine)
      : m_terminal(terminal), m_applyCommandLine(std::move(applyCommandLine)) {}

  bool ShowOptions(int owner, Options& options) override;
  void OpenLog(int owner) override;
  void Log(Severity severity, const char* text) override;
  void WaitForLogClosed(int owner) override;
  void CloseLog() override;
  ButtonResult Ask(int kind, const char* caption, const char* text) override;
  bool CanPrompt() override;

  int ErrorCount() const { return m_errorCount; }

  // All that was logged but the summary, in order.
  const std::vector<std::string>& Lines() const { return m_lines; }

 private:
  Terminal& m_terminal;
  std::function<void(Options&)> m_applyCommandLine;
  int m_errorCount = 0;
  std::vector<std::string> m_lines;
};

}  // namespace orv::cli
