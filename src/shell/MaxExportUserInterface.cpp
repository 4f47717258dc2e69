#include "shell/MaxExportUserInterface.h"

#include <algorithm>

#include "platform/Platform.h"
#include "shell/ManageDialog.h"

namespace orv {
namespace {

constexpr size_t kMaxTitle = 256;

DWORD WINAPI IgnoreProgressCall(LPVOID) { return 0; }

platform::Icon IconFor(Severity severity) {
  switch (severity) {
    case Severity::Error:
      return platform::Icon::Error;
    case Severity::Warning:
      return platform::Icon::Warning;
    default:
      return platform::Icon::Information;
  }
}

Answer AnswerFor(ButtonResult button) {
  switch (button) {
    case ButtonResult::Yes:
      return Answer::Yes;
    case ButtonResult::YesToAll:
      return Answer::YesToAll;
    case ButtonResult::NoToAll:
      return Answer::NoToAll;
    default:
      return Answer::No;
  }
}

}  // namespace

MaxExportUserInterface::MaxExportUserInterface(Interface* host) : m_host(host) {
  m_outcome = &ManageDialog::s_outcome;
  m_host->ProgressStart(m_title.c_str(), TRUE, IgnoreProgressCall, nullptr);
  SetProgress(0);
}

MaxExportUserInterface::~MaxExportUserInterface() { m_host->ProgressEnd(); }

void MaxExportUserInterface::SetProgressText(const char* text) {
  m_title = std::string(text).substr(0, kMaxTitle);
  ManageDialog::Log(MakeFinding("stage-started", m_title));
  UpdateHostBar();
}

void MaxExportUserInterface::SetProgress(float fraction) {
  const int oldPercent = static_cast<int>(100 * m_fraction);
  m_fraction = std::min(std::max(0.0f, fraction), 1.0f);  // 0 for a NaN
  if (100 * m_fraction != static_cast<float>(oldPercent)) UpdateHostBar();
  ManageDialog::HandleLogWindowMessages();
}

void MaxExportUserInterface::UpdateHostBar() {
  m_host->ProgressUpdate(static_cast<int>(100 * m_fraction), FALSE, m_title.c_str());
}

bool MaxExportUserInterface::CanPrompt() { return ManageDialog::CanPrompt(); }

Answer MaxExportUserInterface::ShowMessage(const char* text, MessageKind kind, Severity severity) {
  switch (kind) {
    case MessageKind::Message:
      if (severity == Severity::Warning && !m_enableWarnings) return Answer::None;
      platform::ShowMessageBox(text, "Exporter Message", platform::Buttons::Ok, IconFor(severity));
      return Answer::None;
    case MessageKind::YesNo: {
      const bool yes = platform::ShowMessageBox(text, "Exporter Query", platform::Buttons::YesNo,
                                                platform::Icon::Question);
      return yes ? Answer::Yes : Answer::No;
    }
    case MessageKind::YesNoAll:
      return AnswerFor(ManageDialog::MessageBoxExt(0, "Exporter Query", text));
  }
  return Answer::None;
}

void MaxExportUserInterface::LogInfoText(const char* text) { ManageDialog::LogInfoText(text); }

void MaxExportUserInterface::LogWarningText(const char* text) {
  ManageDialog::LogWarningText(text);
}

void MaxExportUserInterface::LogErrorText(const char* text) { ManageDialog::LogErrorText(text); }

}  // namespace orv
