#pragma once

#include "maxheap.h"
#include "maxtypes.h"

class Interface;

// The scene by way of its list of objects; DoExport is handed one.
class ExpInterface : public MaxHeapOperators {
 public:
  virtual ~ExpInterface() = default;
};

// Options of DoExport and SupportsOptions.
constexpr DWORD SCENE_EXPORT_SELECTED = 1;

// An exporter, made by ClassDesc::Create and owned by the host. Its texts stay the exporter's.
class SceneExport : public MaxHeapOperators {
 public:
  virtual ~SceneExport() = default;
  virtual int ExtCount() = 0;
  virtual const TCHAR* Ext(int n) = 0;  // without the dot
  virtual const TCHAR* LongDesc() = 0;
  virtual const TCHAR* ShortDesc() = 0;
  virtual const TCHAR* AuthorName() = 0;
  virtual const TCHAR* CopyrightMessage() = 0;
  virtual const TCHAR* OtherMessage1() = 0;
  virtual const TCHAR* OtherMessage2() = 0;
  virtual unsigned int Version() = 0;  // times 100
  virtual void ShowAbout(HWND hWnd) = 0;
  // 0 for failure. `name` is the full path that the user chose.
  virtual int DoExport(const TCHAR* name, ExpInterface* ei, Interface* i,
                       BOOL suppressPrompts = FALSE, DWORD options = 0) = 0;
  virtual BOOL SupportsOptions(int /*ext*/, DWORD /*options*/) { return FALSE; }
};
