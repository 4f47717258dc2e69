#include "ExportUserInterface.h"

#include <cstdarg>

#include "FormatText.h"

namespace orv {

#define ORV_LOG_FORMATTED(sink)                \
  va_list arguments;                           \
  va_start(arguments, format);                 \
  sink(FormatText(format, arguments).c_str()); \
  va_end(arguments)

void ExportUserInterface::LogInfo(const char* format, ...) { ORV_LOG_FORMATTED(LogInfoText); }

void ExportUserInterface::LogWarning(const char* format, ...) { ORV_LOG_FORMATTED(LogWarningText); }

void ExportUserInterface::LogError(const char* format, ...) { ORV_LOG_FORMATTED(LogErrorText); }

void ExportUserInterface::CollectTexture(const std::string& fileName) {
  if (m_knownTextures.insert(fileName).second) m_textures.push_back(fileName);
}

}  // namespace orv
