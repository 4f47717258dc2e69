#pragma once

#include <functional>

#include "host/memory/Scene.h"
#include "host/sdk/hostcore.h"
#include "maxapi.h"

namespace orv::host {

// The host around one scene. Its current time is 0 and it has no window.
class MemoryHost final : public Interface, public HostCore {
 public:
  // `percent` is 0 to 100; `title` is null when the bar is taken away.
  using ProgressSink = std::function<void(int percent, const char* title)>;

  // The scene has to outlive the host.
  explicit MemoryHost(Scene& scene, ProgressSink progress = {});

  TimeValue GetTime() override { return 0; }
  Interval GetAnimRange() override;
  HWND GetMAXHWnd() override { return nullptr; }
  MSTR& GetCurFileName() override { return m_fileName; }
  INode* GetRootNode() override { return &m_scene.Root(); }
  int GetSelNodeCount() override { return static_cast<int>(m_scene.Selection().size()); }
  INode* GetSelNode(int i) override { return m_scene.Selection()[static_cast<size_t>(i)]; }

  BOOL ProgressStart(const TCHAR* title, BOOL showBar, LPTHREAD_START_ROUTINE fn,
                     LPVOID argument) override;
  void ProgressUpdate(int percent, BOOL showPercent = TRUE, const TCHAR* title = nullptr) override;
  void ProgressEnd() override;

  double MasterScale(int unitCode) override;
  int TicksPerFrame() override { return m_scene.TicksPerFrame(); }
  int FrameRate() override { return m_scene.info.framesPerSecond; }
  bool FindBitmap(const char* name, char* found, size_t size) override;

 private:
  Scene& m_scene;
  ProgressSink m_progress;
  MSTR m_fileName;
  MSTR m_progressTitle;
};

}  // namespace orv::host
