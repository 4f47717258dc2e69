#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include "report/ExportOutcome.h"

#if defined(__GNUC__)
#define ORV_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define ORV_PRINTF(text, first)
#endif

namespace orv {

enum class Answer { None = 0, Yes = 1, YesToAll = 2, No = 3, NoToAll = 4 };
enum class MessageKind { Message = 0, YesNo = 1, YesNoAll = 2 };

// Where every stage of an export reports to: progress, messages of the catalogue and questions.
// Texts are 8-bit and without a line end; a formatted text is cut at kMaxMessageText characters.
class ExportUserInterface {
 public:
  virtual ~ExportUserInterface() = default;

  virtual void SetProgressText(const char* text) = 0;
  virtual void SetProgress(float fraction) = 0;  // of the current stage, 0 to 1
  virtual bool CanPrompt() = 0;                  // false: nobody is there to answer a question
  virtual Answer ShowMessage(const char* text, MessageKind kind, Severity severity) = 0;
  virtual void LogInfoText(const char* text) = 0;
  virtual void LogWarningText(const char* text) = 0;
  virtual void LogErrorText(const char* text) = 0;

  // Before each item of a stage.
  void ReportProgress(size_t item, size_t itemCount) {
    SetProgress(static_cast<float>(item) / static_cast<float>(itemCount));
  }

  // Logs a message of the catalogue, and keeps it: ui.Report("faces-missing", nodeName).
  template <typename... Arguments>
  void Report(MessageFor<std::type_identity_t<Arguments>...> message,
              const Arguments&... arguments) {
    Report(MakeFinding<Arguments...>(message, arguments...));
  }
  void Report(const Finding& finding);

  // Asks one, which may be answered for all others too.
  template <typename... Arguments>
  Answer Ask(MessageFor<std::type_identity_t<Arguments>...> message,
             const Arguments&... arguments) {
    const Finding question = MakeFinding<Arguments...>(message, arguments...);
    return ShowMessage(question.text.c_str(), MessageKind::YesNoAll, question.severity);
  }

  // Keeps what has become of an output file. bytes: when written; systemWhy: when not.
  void RecordFile(const std::string& path, bool isWritten, uint64_t bytes,
                  const std::string& systemWhy);

  void LogInfo(const char* format, ...) ORV_PRINTF(2, 3);
  void LogWarning(const char* format, ...) ORV_PRINTF(2, 3);
  void LogError(const char* format, ...) ORV_PRINTF(2, 3);

  // Remembers a texture file for the copying step, each name once, in order of first mention.
  void CollectTexture(const std::string& fileName);
  const std::vector<std::string>& Textures() const { return m_textures; }

  ExportOutcome* m_outcome = nullptr;  // lent; where that is kept, null: nowhere
  bool m_enableWarnings = false;       // silences warning boxes only, never log lines

 private:
  std::vector<std::string> m_textures;
  std::unordered_set<std::string> m_knownTextures;
};

}  // namespace orv
