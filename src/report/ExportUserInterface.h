#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

#if defined(__GNUC__)
#define ORV_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define ORV_PRINTF(text, first)
#endif

namespace orv {

enum class Answer { None = 0, Yes = 1, YesToAll = 2, No = 3, NoToAll = 4 };
enum class MessageKind { Message = 0, YesNo = 1, YesNoAll = 2 };
enum class Severity { Information = 0, Warning = 1, Error = 2 };

// Where every stage of an export reports to: progress, log lines and questions. Texts are 8-bit
// and without a line end; a formatted text is cut at 1023 characters.
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

  void LogInfo(const char* format, ...) ORV_PRINTF(2, 3);
  void LogWarning(const char* format, ...) ORV_PRINTF(2, 3);
  void LogError(const char* format, ...) ORV_PRINTF(2, 3);

  // Remembers a texture file for the copying step, each name once, in order of first mention.
  void CollectTexture(const std::string& fileName);
  const std::vector<std::string>& Textures() const { return m_textures; }

  bool m_enableWarnings = false;  // silences warning boxes only, never log lines

 private:
  std::vector<std::string> m_textures;
  std::unordered_set<std::string> m_knownTextures;
};

}  // namespace orv
