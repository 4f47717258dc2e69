#include "report/ExportUserInterface.h"

#include <cstdarg>
#include <cstdio>

namespace orv {
namespace {

std::string FormatText(const char* format, va_list arguments) {
  char buffer[kMaxMessageText + 1] = "";
  std::vsnprintf(buffer, sizeof(buffer), format, arguments);
  return buffer;
}

}  // namespace

#define ORV_LOG_FORMATTED(sink)                \
  va_list arguments;                           \
  va_start(arguments, format);                 \
  sink(FormatText(format, arguments).c_str()); \
  va_end(arguments)

void ExportUserInterface::LogInfo(const char* format, ...) { ORV_LOG_FORMATTED(LogInfoText); }

void ExportUserInterface::LogWarning(const char* format, ...) { ORV_LOG_FORMATTED(LogWarningText); }

void ExportUserInterface::LogError(const char* format, ...) { ORV_LOG_FORMATTED(LogErrorText); }

void ExportUserInterface::Report(const Finding& finding) {
  if (m_outcome) m_outcome->findings.push_back(finding);
  switch (finding.severity) {
    case Severity::Information:
      return LogInfo("%s", finding.text.c_str());
    case Severity::Warning:
      return LogWarning("%s", finding.text.c_str());
    case Severity::Error:
      return LogError("%s", finding.text.c_str());
  }
}

void ExportUserInterface::RecordFile(const std::string& path, bool isWritten, uint64_t bytes,
                                     const std::string& systemWhy) {
  if (!m_outcome) return;
  for (OutputFile* file : {&m_outcome->geometry, &m_outcome->animation}) {
    if (file->path != path) continue;
    file->isWritten = isWritten;
    file->bytes = isWritten ? bytes : 0;
    file->systemWhy = systemWhy;
  }
}

void ExportUserInterface::CollectTexture(const std::string& fileName) {
  if (m_knownTextures.insert(fileName).second) m_textures.push_back(fileName);
}

}  // namespace orv
