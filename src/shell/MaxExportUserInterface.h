#pragma once

#include <string>

#include "max.h"
#include "report/ExportUserInterface.h"

namespace orv {

// Progress on the host's bar; the log, the outcome and the questions through ManageDialog. Its life
// brackets the host's progress bar.
class MaxExportUserInterface : public ExportUserInterface {
 public:
  explicit MaxExportUserInterface(Interface* host);
  ~MaxExportUserInterface() override;

  void SetProgressText(const char* text) override;
  void SetProgress(float fraction) override;
  bool CanPrompt() override;
  Answer ShowMessage(const char* text, MessageKind kind, Severity severity) override;
  void LogInfoText(const char* text) override;
  void LogWarningText(const char* text) override;
  void LogErrorText(const char* text) override;

 private:
  void UpdateHostBar();

  Interface* m_host;  // not owned
  float m_fraction = 0;
  std::string m_title = "Exporting";  // at most 256 characters
};

}  // namespace orv
