#include "dialogs/FormsDialogs.h"

#include "dialogs/ManagedRuntime.h"

namespace orv {
namespace {

constexpr char kCaption[] = "Velmor Exporter";

// Frees what the managed side has handed out.
ExString ToExString(char* text, const DialogTable& table) {
  const ExString copy(text);
  table.freeAnsiString(text);
  return copy;
}

OptionsRecord RecordOf(const Options& options) {
  return {.exportGeometry = options.m_exportGeometry,
          .exportAnimation = options.m_exportAnimation,
          .forceTxtOverwrite = options.m_forceTxtOverwrite,
          .collectTextures = options.m_collectTextures,
          .useDefaultColors = options.m_useDefaultColors,
          .normalMapFlipGreen = options.m_normalMapFlipGreen,
          .animationStartFrame = options.m_animationStartFrame,
          .animationEndFrame = options.m_animationEndFrame,
          .exportStartFrame = options.m_exportStartFrame,
          .exportEndFrame = options.m_exportEndFrame,
          .eventFileName = options.m_eventFileName.CStr(),
          .newEventFileName = nullptr};
}

void Assign(const OptionsRecord& record, const DialogTable& table, Options& options) {
  options.m_exportGeometry = record.exportGeometry != 0;
  options.m_exportAnimation = record.exportAnimation != 0;
  options.m_forceTxtOverwrite = record.forceTxtOverwrite != 0;
  options.m_collectTextures = record.collectTextures != 0;
  options.m_useDefaultColors = record.useDefaultColors != 0;
  options.m_normalMapFlipGreen = record.normalMapFlipGreen != 0;
  options.m_exportStartFrame = record.exportStartFrame;
  options.m_exportEndFrame = record.exportEndFrame;
  if (record.newEventFileName) options.m_eventFileName = ToExString(record.newEventFileName, table);
}

int32_t IconNumber(platform::Icon icon) {
  switch (icon) {
    case platform::Icon::Error:
      return 0;
    case platform::Icon::Warning:
      return 1;
    case platform::Icon::Information:
      return 2;
    default:
      return 3;
  }
}

}  // namespace

FormsDialogs::FormsDialogs(const Events& events) {
  m_table.logWindowSignalsClose = events.logWindowSignalsClose;
  m_table.reportException = events.reportException;
  platform::UseWindows(this);
}

// "" when the windows are there, else why not.
std::string FormsDialogs::Start() {
  if (m_started) return "";
  const auto address = reinterpret_cast<uintptr_t>(&m_table);
  const ManagedStart start = StartManagedDialogs(std::to_string(address));
  if (!start.problem.empty()) return start.problem;
  switch (static_cast<StartAnswer>(start.answer)) {
    case StartAnswer::Ready:
      m_started = true;
      return "";
    case StartAnswer::NoDisplay:
      return "They need an X display, and none can be opened. Run the program in a desktop "
             "session,\nor set DISPLAY, for example by connecting with \"ssh -X\".";
    default:
      return std::string(kDialogAssembly) + " is of another version than the plug-in.";
  }
}

bool FormsDialogs::StartOrTell() {
  const std::string problem = Start();
  if (problem.empty()) return true;
  platform::ShowMessageBox(MakeFinding("windows-missing", problem).text.c_str(), kCaption,
                           platform::Buttons::Ok, platform::Icon::Error);
  return false;
}

bool FormsDialogs::Prepare() { return Start().empty(); }

void FormsDialogs::Release() {
  if (m_started) m_table.releaseResources();
  m_logState = LogState::NotOpened;
  m_earlyLines.clear();
}

bool FormsDialogs::ShowOptions(int owner, Options& options) {
  if (!StartOrTell()) return false;
  OptionsRecord record = RecordOf(options);
  if (!m_table.showOptions(owner, &record)) {
    m_earlyLines.clear();  // no log follows, and the next export's is not theirs
    return false;
  }
  Assign(record, m_table, options);
  return true;
}

// The window handles its first messages in the call that opens it, so it can be closed again by
// the time the call returns.
void FormsDialogs::OpenLog(int owner) {
  m_earlyLines.clear();
  m_logState = LogState::Open;
  if (!m_started || !m_table.openLog(owner)) m_logState = LogState::Closed;
}

void FormsDialogs::Log(Severity severity, const char* text) {
  if (m_logState == LogState::Open) {
    m_table.appendToLog(static_cast<int32_t>(severity), text);
  } else if (m_logState == LogState::NotOpened) {
    m_earlyLines.emplace_back(severity, text);
  }
}

void FormsDialogs::ShowFailure(const char* text) {
  if (m_logState != LogState::NotOpened) return;
  platform::ShowMessageBox(text, kCaption, platform::Buttons::Ok, platform::Icon::Error);
}

void FormsDialogs::HandleMessages() {
  if (m_logState == LogState::Open) m_table.handleMessages(0);
}

// An export that was stopped before its log opened shows now why.
void FormsDialogs::WaitForLogClosed(int owner) {
  if (m_logState == LogState::NotOpened && !m_earlyLines.empty() && StartOrTell()) {
    const auto lines = std::move(m_earlyLines);
    OpenLog(owner);
    for (const auto& [severity, text] : lines) Log(severity, text.c_str());
  }
  while (m_logState == LogState::Open) m_table.handleMessages(1);
}

void FormsDialogs::CloseLog() {
  if (m_started) m_table.closeLog();
}

ButtonResult FormsDialogs::Ask(int kind, const char* caption, const char* text) {
  if (!m_started) return ButtonResult::None;
  return static_cast<ButtonResult>(m_table.messageBoxExt(kind, caption, text));
}

bool FormsDialogs::CanPrompt() { return m_started; }

bool FormsDialogs::CanShow() { return m_started || (m_startsForBoxes && Start().empty()); }

bool FormsDialogs::ShowMessageBox(const char* text, const char* caption, platform::Buttons buttons,
                                  platform::Icon icon) {
  return m_table.showMessageBox(text, caption, buttons == platform::Buttons::YesNo,
                                IconNumber(icon)) != 0;
}

void FormsDialogs::ShowAboutBox() { m_table.showAbout(ORV_COPYRIGHT); }

std::optional<std::string> FormsDialogs::PickEventFile() {
  char* picked = m_table.pickEventFile();
  if (!picked) return std::nullopt;
  return ToExString(picked, m_table).CStr();
}

}  // namespace orv
