#pragma once

#include <string>
#include <vector>

#include "report/ExportUserInterface.h"

namespace orv {

// Keeps all that is reported, one line each ("info: ...", "warning: ...", "error: ...",
// "stage: ...", "ask: ..."), and answers questions from a list, the last answer for ever.
class RecordingUserInterface : public ExportUserInterface {
 public:
  void SetProgressText(const char* text) override { stages.push_back(text); }
  void SetProgress(float fraction) override { progress.push_back(fraction); }
  bool CanPrompt() override { return canPrompt; }
  Answer ShowMessage(const char* text, MessageKind, Severity) override {
    log.push_back(std::string("ask: ") + text);
    if (answers.empty()) return Answer::None;
    const Answer answer = answers.front();
    if (answers.size() > 1) answers.erase(answers.begin());
    return answer;
  }
  void LogInfoText(const char* text) override { log.push_back(std::string("info: ") + text); }
  void LogWarningText(const char* text) override { log.push_back(std::string("warning: ") + text); }
  void LogErrorText(const char* text) override { log.push_back(std::string("error: ") + text); }

  bool canPrompt = true;
  std::vector<Answer> answers;
  std::vector<std::string> log;
  std::vector<std::string> stages;
  std::vector<float> progress;
};

}  // namespace orv
