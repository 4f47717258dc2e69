#include "TerminalDialogs.h"

#include "platform/ExString.h"

namespace orv::cli {
namespace {

bool IsSummary(const std::string& text) { return text.starts_with("Export completed with "); }

ButtonResult ButtonFor(const std::string& answer) {
  const std::string word = LowerCase(answer);
  if (word == "y" || word == "yes") return ButtonResult::Yes;
  if (word == "a" || word == "all") return ButtonResult::YesToAll;
  if (word == "n" || word == "no") return ButtonResult::No;
  if (word == "k" || word == "keep") return ButtonResult::NoToAll;
  return ButtonResult::None;
}

}  // namespace

bool TerminalDialogs::ShowOptions(int /*owner*/, Options& options) {
  m_applyCommandLine(options);
  return true;
}

void TerminalDialogs::OpenLog(int /*owner*/) {}

void TerminalDialogs::Log(Severity severity, const char* text) {
  if (IsSummary(text)) {
    m_terminal.Summary(severity, text);
    return;
  }
  if (severity == Severity::Error) ++m_errorCount;
  m_lines.push_back(text);
  m_terminal.Log(severity, text);
}

void TerminalDialogs::WaitForLogClosed(int /*owner*/) { m_terminal.ClearProgress(); }

void TerminalDialogs::CloseLog() {}

ButtonResult TerminalDialogs::Ask(int /*kind*/, const char* /*caption*/, const char* text) {
  while (CanPrompt()) {
    const std::string answer = m_terminal.Ask(
        std::string(text) + "[y]es, yes to [a]ll, [n]o, no to all ([k]eep them), Enter for no: ");
    if (answer.empty()) return ButtonResult::No;
    const ButtonResult button = ButtonFor(answer);
    if (button != ButtonResult::None) return button;
  }
  return ButtonResult::No;
}

bool TerminalDialogs::CanPrompt() { return Terminal::InputIsTerminal(); }

}  // namespace orv::cli
