#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace orv {

// Answers the modal windows of one title that this process opens while it lives, from a thread of
// its own as a user would; `answer` has to make the window close.
class ModalWindows {
 public:
  ModalWindows(std::string title, std::function<void(HWND)> answer)
      : m_title(std::move(title)), m_answer(std::move(answer)), m_thread([this] { Watch(); }) {}
  ~ModalWindows() {
    m_done = true;
    m_thread.join();
  }
  ModalWindows(const ModalWindows&) = delete;

  int Count() const { return m_count; }

 private:
  void Watch() {
    while (!m_done) {
      const HWND window = FindWindowA("#32770", m_title.c_str());
      if (!window || !IsWindowVisible(window)) {
        Pause();
        continue;
      }
      ++m_count;
      m_answer(window);
      while (IsWindow(window) && IsWindowVisible(window)) Pause();
    }
  }
  static void Pause() { std::this_thread::sleep_for(std::chrono::milliseconds(10)); }

  std::string m_title;
  std::function<void(HWND)> m_answer;
  std::atomic<int> m_count = 0;
  std::atomic<bool> m_done = false;
  std::thread m_thread;
};

inline void Click(HWND window, int id) { SendMessageA(GetDlgItem(window, id), BM_CLICK, 0, 0); }

inline std::string TextOf(HWND window) {
  char text[1024] = "";
  SendMessageA(window, WM_GETTEXT, sizeof(text), reinterpret_cast<LPARAM>(text));
  return text;
}

inline bool IsOfClass(HWND window, const char* name) {
  char found[64] = "";
  GetClassNameA(window, found, sizeof(found));
  return lstrcmpiA(found, name) == 0;
}

// The visible controls inside a window, in order.
inline std::vector<HWND> Controls(HWND window, const char* className) {
  std::vector<HWND> controls;
  for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    if (IsOfClass(child, className) && IsWindowVisible(child)) controls.push_back(child);
  }
  return controls;
}

// The texts of the labels, without those that show a picture or nothing.
inline std::vector<std::string> Labels(HWND window) {
  std::vector<std::string> texts;
  for (const HWND label : Controls(window, "Static")) {
    const bool picture = (GetWindowLongA(label, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
    if (!picture) texts.push_back(TextOf(label));
  }
  return texts;
}

inline HICON IconIn(HWND window) {
  for (const HWND label : Controls(window, "Static")) {
    if (const LRESULT icon = SendMessageA(label, STM_GETICON, 0, 0))
      return reinterpret_cast<HICON>(icon);
  }
  return nullptr;
}

inline std::vector<int> ButtonIds(HWND window) {
  std::vector<int> ids;
  for (const HWND button : Controls(window, "Button")) ids.push_back(GetDlgCtrlID(button));
  return ids;
}

}  // namespace orv
