#include "host/memory/MemoryHost.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include "host/memory/BitmapSearch.h"

namespace orv::host {
namespace {

constexpr int kMetres = 5;

TimeValue FrameTime(int frame, int ticksPerFrame) {
  const int64_t ticks = int64_t{frame} * ticksPerFrame;
  return static_cast<TimeValue>(
      std::clamp<int64_t>(ticks, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

}  // namespace

MemoryHost::MemoryHost(Scene& scene, ProgressSink progress)
    : m_scene(scene), m_progress(std::move(progress)), m_fileName(scene.info.fileName.c_str()) {}

Interval MemoryHost::GetAnimRange() {
  return {FrameTime(m_scene.info.firstFrame, TicksPerFrame()),
          FrameTime(m_scene.info.lastFrame, TicksPerFrame())};
}

BOOL MemoryHost::ProgressStart(const TCHAR* title, BOOL, LPTHREAD_START_ROUTINE, LPVOID) {
  ProgressUpdate(0, TRUE, title);
  return TRUE;
}

void MemoryHost::ProgressUpdate(int percent, BOOL, const TCHAR* title) {
  if (title) m_progressTitle = MSTR(title);
  if (m_progress) m_progress(percent, m_progressTitle);
}

void MemoryHost::ProgressEnd() {
  if (m_progress) m_progress(100, nullptr);
}

double MemoryHost::MasterScale(int unitCode) {
  return unitCode == kMetres ? m_scene.info.metresPerUnit : 1;
}

bool MemoryHost::FindBitmap(const char* name, char* found, size_t size) {
  const std::string wanted = name;
  std::optional<std::string> file;
  if (std::ranges::find(m_scene.info.ownBitmaps, wanted) != m_scene.info.ownBitmaps.end()) {
    file = wanted;
  } else {
    file = FindBitmapFile(wanted, m_scene.info.bitmapFolders);
  }
  if (!file || file->size() >= size) return false;
  std::memcpy(found, file->c_str(), file->size() + 1);
  return true;
}

}  // namespace orv::host
