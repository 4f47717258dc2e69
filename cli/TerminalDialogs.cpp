#include "TerminalDialogs.h"

#include "platform/ExString.h"

namespace orv::cli {
namespace {

ButtonResult ButtonFor(const std::string& answer) {
  const std::string word = LowerCase(answer);
  if (word == "y" || word == "yes") return ButtonResult::Yes;
  if (word == "a" || word == "all") return ButtonResult::YesToAll;
  if (word == "n" || word == "no") return ButtonResult::No;
  if (word == "k" || word == "keep") return ButtonResult::NoToAll;
  return ButtonResult::None;
}

}  // namespace

bool TerminalDialogs::ShowOptions(int owner, Options& options) {
  m_applyCommandLine(options);
  return !m_windows || m_windows->ShowOptions(owner, options);
}

void TerminalDialogs::Release() {
  if (m_windows) m_windows->Release();
}

void TerminalDialogs::OpenLog(int owner) {
  if (m_windows) m_windows->OpenLog(owner);
}

void TerminalDialogs::Log(Severity severity, const char* text) {
  if (m_windows) m_windows->Log(severity, text);
  m_terminal.Log(severity, text);
}

void TerminalDialogs::LogSummary(Severity severity, const char* text) {
  if (m_windows) m_windows->LogSummary(severity, text);
  m_terminal.Summary(severity, text);
}

void TerminalDialogs::HandleMessages() {
  if (m_windows) m_windows->HandleMessages();
}

void TerminalDialogs::WaitForLogClosed(int owner) {
  m_terminal.ClearProgress();
  if (m_windows) m_windows->WaitForLogClosed(owner);
}

void TerminalDialogs::CloseLog() {
  if (m_windows) m_windows->CloseLog();
}

ButtonResult TerminalDialogs::Ask(int kind, const char* caption, const char* text) {
  if (m_windows) return m_windows->Ask(kind, caption, text);
  while (CanPrompt()) {
    const std::string answer = m_terminal.Ask(
        std::string(text) + "[y]es, yes to [a]ll, [n]o, no to all ([k]eep them), Enter for no: ");
    if (answer.empty()) return ButtonResult::No;
    const ButtonResult button = ButtonFor(answer);
    if (button != ButtonResult::None) return button;
  }
  return ButtonResult::No;
}

bool TerminalDialogs::CanPrompt() {
  return m_windows ? m_windows->CanPrompt() : Terminal::InputIsTerminal();
}

void TerminalDialogs::ExportEnded(const ExportOutcome& outcome) {
  if (m_windows) m_windows->ExportEnded(outcome);
  m_outcome = outcome;
}

}  // namespace orv::cli
