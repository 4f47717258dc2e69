#pragma once

#include "maxtypes.h"
#include "strclass.h"

class BitmapInfo {
 public:
  const TCHAR* Name() const { return m_name; }
  void SetName(const TCHAR* name) { m_name = name; }

 private:
  MSTR m_name;
};

// Looks for the bitmap's file in the host's search paths. When it is found its name becomes the
// full one and the answer is TRUE; else the name stays.
BOOL BMMGetFullFilename(BitmapInfo* info);
