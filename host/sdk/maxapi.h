#pragma once

#include "inode.h"
#include "strclass.h"

// The host itself, as an exporter sees it. Everything it answers stays the host's.
class Interface {
 public:
  virtual TimeValue GetTime() = 0;
  virtual Interval GetAnimRange() = 0;  // ticks
  virtual HWND GetMAXHWnd() = 0;
  virtual MSTR& GetCurFileName() = 0;  // the scene's file without folder; empty for a new scene

  virtual INode* GetRootNode() = 0;
  virtual int GetSelNodeCount() = 0;
  virtual INode* GetSelNode(int i) = 0;

  // The progress bar: one start, any number of updates, one end. The host need not call `fn`.
  virtual BOOL ProgressStart(const TCHAR* title, BOOL showBar, LPTHREAD_START_ROUTINE fn,
                             LPVOID argument) = 0;
  virtual void ProgressUpdate(int percent, BOOL showPercent = TRUE,
                              const TCHAR* title = nullptr) = 0;
  virtual void ProgressEnd() = 0;

 protected:
  virtual ~Interface() = default;
};
