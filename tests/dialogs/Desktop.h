#pragma once

#include <regex>
#include <stdexcept>
#include <utility>

#include "Process.h"

namespace orv {

// An X display with a window manager, a pointer and a keyboard, for one test program. Windows are
// named by their titles, buttons and check boxes by their captions with the "&".
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
      if (Run("xdotool getactivewindow") == id) return true;
      Run("xdotool windowactivate " + id);
      return false;
    });
    return id;
  }
  // bgr: the bytes of a pixel, anywhere on the screen, before long.
  bool ShowsColor(const std::string& bgr) {
    const std::string screen = m_folder.File("Xvfb_screen0");
    return WaitUntil([&] { return ContentOf(screen).find(bgr) != std::string::npos; });
  }

  // With the pointer, in the middle of the control, once that has come to its place.
  void Click(const std::string& caption) {
    std::string id, before, now;
    Demand("a control " + caption, [&] {
      id = Find(caption);
      now = id.empty() ? "" : Run("xwininfo -id " + id + " | grep -E 'Absolute|Width|Height'");
      return !now.empty() && std::exchange(before, now) == now;
    });
    MoveInto(id, "$((WIDTH/2)) $((HEIGHT/2)) click 1");
  }
  // On the window manager's button, which stands at the right end of the title above the window.
  void ClickClose(const std::string& id) {
    MoveInto(id, "$((WIDTH-8)) 0 mousemove_relative -- 0 -10 click 1");
  }
  void Key(const std::string& key) { Run("xdotool key " + key); }
  void Type(const std::string& text) { Run("xdotool type '" + text + "'"); }
  // Tries until the window has gone, but gives it ten seconds each time: trying again too early
  // would reach the window that comes next.
  template <typename Try>
  void Leave(const std::string& id, Try once) {
    Demand("the end of window " + id, [&] {
      once();
      const std::string find = "xdotool search --onlyvisible --name . | grep -x " + id;
      return WaitUntil([&] { return Run(find).empty(); }, std::chrono::seconds(10));
    });
  }

  std::string Clipboard() { return Run("timeout 10 xclip -selection clipboard -o"); }

 private:
  Desktop() {
    const std::string folder = m_folder.File("");
    m_server.emplace(Command{
        {"Xvfb", "-displayfd", "1", "-fbdir", folder, "-noreset"}, folder, folder + "xvfb"});
    std::string number;
    Demand("a display", [&] { return (number = m_server->Output()).ends_with('\n'); });
    number.pop_back();
    setenv("DISPLAY", (":" + number).c_str(), 1);
    m_manager.emplace(Command{{"jwm", "-f", ORV_DIALOG_TESTS "/jwmrc"}, folder, folder + "jwm"});
    Demand("a window manager", [&] { return !Run("xdotool get_num_desktops").empty(); });
  }

  void MoveInto(const std::string& id, const std::string& where) {
    Run("eval $(xdotool getwindowgeometry --shell " + id +
        "); xdotool mousemove --window $WINDOW " + where);
  }

  template <typename Condition>
  void Demand(const std::string& what, Condition condition) {
    if (!WaitUntil(condition))
      throw std::runtime_error("waited in vain for " + what + "; there are: " +
                               Run("xdotool search --onlyvisible --name . getwindowname %@"));
  }

  // The newest visible one of that very name; "" when there is none.
  std::string Find(const std::string& name) {
    const std::string pattern = std::regex_replace(name, std::regex("[^A-Za-z0-9 ]"), "[$&]");
    const std::string ids = Run("xdotool search --onlyvisible --name '^" + pattern + "$'");
    return ids.substr(ids.find_last_of('\n') + 1);
  }

  // Its output without the last line end.
  std::string Run(const std::string& command) {
    Process shell({{"sh", "-c", command}, m_folder.File(""), m_folder.File("sh")});
    shell.Status();
    std::string output = shell.Output();
    while (output.ends_with('\n')) output.pop_back();
    return output;
  }

  TemporaryFolder m_folder;
  std::optional<Process> m_server, m_manager;
};

}  // namespace orv
