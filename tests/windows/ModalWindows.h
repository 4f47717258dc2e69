#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

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

  int Count() const { return m_count; }

 private:
  void Watch() {
    for (; !m_done; std::this_thread::sleep_for(std::chrono::milliseconds(10))) {
      const HWND window = FindWindowA("#32770", m_title.c_str());
      if (window == m_answered || !IsWindowVisible(window)) continue;
      m_answered = window;
      ++m_count;
      m_answer(window);
    }
  }

  std::string m_title;
  std::function<void(HWND)> m_answer;
  std::atomic<int> m_count = 0;
  std::atomic<bool> m_done = false;
  HWND m_answered = nullptr;
  std::thread m_thread;
};

inline void Click(HWND window, int id) { SendMessageA(GetDlgItem(window, id), BM_CLICK, 0, 0); }

inline std::string TextOf(HWND window) {
  char text[1024] = "";
  SendMessageA(window, WM_GETTEXT, sizeof(text), reinterpret_cast<LPARAM>(text));
  return text;
}

// What it shows: "ICON|LABEL|LABEL 1 2", with the numbers of its buttons.
inline std::string Shown(HWND window) {
  std::string icon, labels, buttons;
  for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    if (!IsWindowVisible(child)) continue;
    const auto picture = reinterpret_cast<HICON>(SendMessageA(child, STM_GETICON, 0, 0));
    for (const auto& [id, name] : {std::pair(IDI_ERROR, "error"),
                                   {IDI_WARNING, "warning"},
                                   {IDI_INFORMATION, "information"},
                                   {IDI_QUESTION, "question"}})
      if (picture && picture == LoadIconA(nullptr, id)) icon = name;
    if (SendMessageA(child, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON) {
      buttons += " " + std::to_string(GetDlgCtrlID(child));
    } else if (!picture && !TextOf(child).empty()) {
      labels += "|" + TextOf(child);
    }
  }
  return icon + labels + buttons;
}

}  // namespace orv
