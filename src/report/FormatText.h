#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>

namespace orv {

// printf into the 1024-byte buffer that every formatted text of the exporter passes through.
inline std::string FormatText(const char* format, va_list arguments) {
  char buffer[1024];
  buffer[0] = '\0';
  std::vsnprintf(buffer, sizeof(buffer), format, arguments);
  return buffer;
}

}  // namespace orv
