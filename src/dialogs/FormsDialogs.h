#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dialogs/DialogTable.h"
#include "dialogs/ExportDialogs.h"
#include "platform/Platform.h"

namespace orv {

// The plug-in's own windows, which are managed code. The runtime is started when the first of them
// is to be shown. When that fails the user is told what is missing, and the export is cancelled.
class FormsDialogs final : public ExportDialogs, public platform::Windows {
 public:
  struct Events {
    void (*logWindowSignalsClose)();
    void (*reportException)(const char*);
  };

  // The events come while a window handles its messages; no exception may leave them.
  explicit FormsDialogs(const Events& events);

  // Whether a message box or the About box is a reason to start the runtime; not where the host
  // has dialogs of its own.
  void StartForBoxes(bool allowed) { m_startsForBoxes = allowed; }

  // To be called on the event of that name: the log window has gone.
  void LogHasClosed() { m_logState = LogState::Closed; }
  // What managed code has thrown. Shows a box while there is no log that tells it.
  void ShowFailure(const char* text);

  bool Prepare() override;
  void Release() override;
  bool ShowOptions(int owner, Options& options) override;
  void OpenLog(int owner) override;
  void Log(Severity severity, const char* text) override;
  void HandleMessages() override;
  void WaitForLogClosed(int owner) override;
  void CloseLog() override;
  ButtonResult Ask(int kind, const char* caption, const char* text) override;
  bool CanPrompt() override;

  bool CanShow() override;
  bool ShowMessageBox(const char* text, const char* caption, platform::Buttons buttons,
                      platform::Icon icon) override;
  void ShowAboutBox() override;
  std::optional<std::string> PickEventFile() override;

 private:
  enum class LogState { NotOpened, Open, Closed };

  std::string Start();
  bool StartOrTell();

  DialogTable m_table;
  bool m_started = false;
  bool m_startsForBoxes = true;
  LogState m_logState = LogState::NotOpened;
  std::vector<std::pair<Severity, std::string>> m_earlyLines;  // logged before the window opened
};

}  // namespace orv
