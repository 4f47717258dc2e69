#include "shell/ResourceText.h"

#include <cstdio>

#include "platform/Platform.h"

namespace orv {

const char* ResourceText(unsigned id) {
  static char s_buffer[256];
  return ResourceText(id, s_buffer, sizeof(s_buffer));
}

const char* ResourceText(unsigned id, char* buffer, size_t size) {
  const bool loaded = platform::ModuleInstance() != nullptr;
  std::snprintf(buffer, size, "%s", loaded ? platform::ResourceString(id).c_str() : "");
  return buffer;
}

}  // namespace orv
