#include "Terminal.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace orv::cli {
namespace {

const char* ColourOf(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return "\033[31m";
    case Severity::Warning:
      return "\033[33m";
    default:
      return "";
  }
}

const char* LabelOf(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return "error: ";
    case Severity::Warning:
      return "warning: ";
    default:
      return "";
  }
}

}  // namespace

Terminal::Terminal(bool quiet) : m_quiet(quiet), m_isTerminal(isatty(STDERR_FILENO) != 0) {
  const char* noColour = std::getenv("NO_COLOR");
  m_colour = m_isTerminal && !(noColour && *noColour);
}

bool Terminal::InputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

void Terminal::Log(Severity severity, const std::string& text) {
  if (!m_quiet || severity == Severity::Error) Print(severity, LabelOf(severity), text);
}

void Terminal::Summary(Severity severity, const std::string& text) { Print(severity, "", text); }

void Terminal::Print(Severity severity, const std::string& label, const std::string& text) {
  ClearProgress();
  const std::string colour = m_colour ? ColourOf(severity) : "";
  const char* reset = colour.empty() ? "" : "\033[0m";
  std::fprintf(stderr, "%s%s%s%s\n", colour.c_str(), label.c_str(), text.c_str(), reset);
}

void Terminal::ShowProgress(int percent, const std::string& title) {
  if (!m_isTerminal || m_quiet) return;
  constexpr int kWidth = 30;
  const int filled = percent * kWidth / 100;
  std::string bar = "[" + std::string(static_cast<size_t>(filled), '#') +
                    std::string(static_cast<size_t>(kWidth - filled), '.') + "] " +
                    std::to_string(percent) + "% " + title;
  if (m_barShown && bar == m_bar) return;
  m_bar = std::move(bar);
  m_barShown = true;
  std::fprintf(stderr, "\r\033[K%s", m_bar.c_str());
}

void Terminal::ClearProgress() {
  if (m_barShown) std::fputs("\r\033[K", stderr);
  m_barShown = false;
}

std::string Terminal::Ask(const std::string& question) {
  ClearProgress();
  std::fprintf(stderr, "%s", question.c_str());
  std::string line;
  std::getline(std::cin, line);
  return line;
}

}  // namespace orv::cli
