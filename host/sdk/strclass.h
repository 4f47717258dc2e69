#pragma once

#include <string>

#include "maxtypes.h"

// The host's own string: 8-bit, NUL-terminated, never null.
class MSTR {
 public:
  MSTR() = default;
  MSTR(const TCHAR* text) : m_text(text ? text : "") {}
  const TCHAR* data() const { return m_text.c_str(); }
  operator const TCHAR*() const { return m_text.c_str(); }
  int Length() const { return static_cast<int>(m_text.size()); }

 private:
  std::string m_text;
};

using TSTR = MSTR;
