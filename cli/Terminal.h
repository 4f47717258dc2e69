#pragma once

#include <string>

#include "report/ExportUserInterface.h"

namespace orv::cli {

// Standard error as a log with a progress bar below it. Colour and bar only on a terminal; no
// colour when NO_COLOR is set.
class Terminal {
 public:
  explicit Terminal(bool quiet);  // quiet: errors only
  ~Terminal() { ClearProgress(); }
  Terminal(const Terminal&) = delete;

  void Log(Severity severity, const std::string& text);
  void Summary(Severity severity, const std::string& text);  // shown also when quiet
  void ShowProgress(int percent, const std::string& title);
  void ClearProgress();

  // The answer to a question on the terminal, without its line end; "" at the end of the input.
  std::string Ask(const std::string& question);

  static bool InputIsTerminal();

 private:
  void Print(Severity severity, const std::string& label, const std::string& text);

  bool m_quiet;
  bool m_isTerminal;
  bool m_colour;
  bool m_barShown = false;
  std::string m_bar;
};

}  // namespace orv::cli
