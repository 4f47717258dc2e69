#pragma once

#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Process.h"

namespace orv {

// An X display with a window manager, a pointer and a keyboard, for one test program. Windows are
// named by what stands in their title, buttons and check boxes by their captions with the "&".
class Desktop {
 public:
  static Desktop& Get() {
    static Desktop s_desktop;
    return s_desktop;
  }

  // Waits for a window and until it has the keyboard. Throws when that does not happen.
  std::string Window(const std::string& title) {
    std::string id;
    Demand("a window " + title, [&] { return !(id = Find(title)).empty(); });
    Demand("the keyboard for " + title, [&] {
      if (m_manager->Ended())
        throw std::runtime_error("the window manager has ended: " +
                                 std::to_string(m_manager->Status()) + m_manager->Errors());
      if (Run("xdotool getactivewindow") == id) return true;
      Run("xdotool windowactivate " + id);
      return false;
    });
    return id;
  }
  bool IsShown(const std::string& title) { return !Find(title).empty(); }
  void WaitUntilGone(const std::string& id) {
    Demand("the end of window " + id, [&] { return IsGone(id); });
  }
  // Within ten seconds: trying again too early would reach the window that comes next.
  bool IsGoneSoon(const std::string& id) {
    for (int i = 0; i < 500 && !IsGone(id); ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return IsGone(id);
  }

  // With the pointer, in the middle of the control, once that has come to its place.
  void Click(const std::string& caption) {
    std::string id, before, now;
    Demand("a control " + caption, [&] {
      id = Find(caption);
      now = id.empty() ? "" : Run("xwininfo -id " + id + " | grep -E 'Absolute|Width|Height'");
      return !now.empty() && std::exchange(before, now) == now;
    });
    Run("eval $(xdotool getwindowgeometry --shell " + id +
        "); xdotool mousemove --window $WINDOW $((WIDTH/2)) $((HEIGHT/2)) click 1");
  }
  // A button that closes its window.
  void ClickAway(const std::string& caption, const std::string& id) {
    Demand("the end of window " + id, [&] {
      Click(caption);
      return IsGoneSoon(id);
    });
  }
  // On the window manager's button, which stands at the right end of the title above the window.
  void ClickClose(const std::string& id) {
    Demand("the end of window " + id, [&] {
      Run("eval $(xdotool getwindowgeometry --shell " + id +
          "); xdotool mousemove --window $WINDOW $((WIDTH-8)) 0 "
          "mousemove_relative -- 0 -10 click 1");
      return IsGoneSoon(id);
    });
  }
  void Key(const std::string& keys) { Run("xdotool key " + keys); }
  void Type(const std::string& text) { Run("xdotool type '" + text + "'"); }

  std::string Clipboard() { return Run("timeout 10 xclip -selection clipboard -o"); }

  std::string Titles() {
    return Run(
        "xdotool search --onlyvisible --name . | while read w; do "
        "xdotool getwindowname $w; done | tr '\\n' ';'");
  }

  // Its output without the last line end.
  std::string Run(const std::string& command) {
    std::string output;
    FILE* pipe = popen(("{ " + command + "; } 2>/dev/null").c_str(), "r");
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof(buffer), pipe)) > 0;) output.append(buffer, n);
    pclose(pipe);
    while (output.ends_with('\n')) output.pop_back();
    return output;
  }

 private:
  Desktop() {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    m_server.emplace(Command{.arguments = {"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen",
                                           "0", "1024x768x24", "-noreset", "-nolisten", "tcp"},
                             .folder = m_folder.File(""),
                             .output = m_folder.File("xvfb"),
                             .keepOpen = ends[1]});
    close(ends[1]);
    std::string number;
    for (char c; read(ends[0], &c, 1) == 1 && c != '\n';) number += c;
    close(ends[0]);
    if (number.empty()) throw std::runtime_error("no display: " + m_server->Errors());
    setenv("DISPLAY", (":" + number).c_str(), 1);
    m_manager.emplace(Command{.arguments = {"jwm", "-f", ORV_DIALOG_TESTS "/jwmrc"},
                              .folder = m_folder.File(""),
                              .output = m_folder.File("jwm")});
    Demand("a window manager", [&] { return !Run("xdotool get_num_desktops").empty(); });
  }

  bool IsGone(const std::string& id) {
    return (Run("xdotool search --onlyvisible --name .") + "\n").find(id + "\n") ==
           std::string::npos;
  }

  static void Demand(const std::string& what, const std::function<bool()>& condition) {
    if (!WaitUntil(condition)) throw std::runtime_error("waited in vain for " + what);
  }

  // The newest visible one of that very name; "" when there is none.
  std::string Find(const std::string& name) {
    std::string pattern;
    for (const char c : name)
      pattern += std::isalnum(c) || c == ' ' ? std::string(1, c) : std::string("[") + c + "]";
    const std::string ids = Run("xdotool search --onlyvisible --name '^" + pattern + "$'");
    return ids.substr(ids.find_last_of('\n') + 1);
  }

  TemporaryFolder m_folder;
  std::optional<Process> m_server, m_manager;
};

}  // namespace orv
