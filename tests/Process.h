#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "TemporaryFolder.h"

namespace orv {

constexpr std::chrono::seconds kPatience(60);  // for what takes a second on an idle machine

// False when it has not come true in time.
inline bool WaitUntil(const std::function<bool()>& condition,
                      std::chrono::seconds patience = kPatience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  std::chrono::milliseconds pause(1);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(pause);
    pause = std::min(2 * pause, std::chrono::milliseconds(20));
  }
  return true;
}

struct Command {
  std::vector<std::string> arguments;  // the program first
  std::string folder;                  // to run in
  std::string output;                  // path of its output, to which ".out" and ".err" are added
  std::map<std::string, std::string> environment = {};  // beside the test's own
  int terminal = -1;  // its input and standard error, where there is one; else nobody is there
};

// A program that runs beside the test and is killed with it.
class Process {
 public:
  explicit Process(Command command)
      : m_out(command.output + ".out"), m_err(command.output + ".err"), m_pid(fork()) {
    if (m_pid == 0) Become(command);
  }
  ~Process() {
    if (m_pid <= 0 || m_status) return;
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
  }
  Process(const Process&) = delete;

  bool Ended() {
    int status = 0;
    if (!m_status && waitpid(m_pid, &status, WNOHANG) == m_pid)
      m_status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return m_status.has_value();
  }
  // Its exit status; -1 when it does not end.
  int Status() {
    return WaitUntil([this] { return Ended(); }) ? *m_status : -1;
  }

  std::string Output() const { return ContentOf(m_out); }
  std::string Errors() const { return ContentOf(m_err); }

 private:
  [[noreturn]] void Become(Command& command) {
    for (const auto& [key, value] : command.environment) setenv(key.c_str(), value.c_str(), 1);
    const int out = open(m_out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    int input = command.terminal, err = command.terminal;
    if (command.terminal < 0) {
      input = open("/dev/null", O_RDONLY);
      err = open(m_err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    }
    if (chdir(command.folder.c_str()) != 0 || input < 0 || out < 0 || err < 0) _exit(126);
    dup2(input, 0);
    dup2(out, 1);
    dup2(err, 2);
    for (int file = 3; file < 256; ++file) close(file);
    std::vector<char*> argv;
    for (std::string& argument : command.arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    execvp(argv[0], argv.data());
    _exit(127);
  }

  std::string m_out, m_err;
  pid_t m_pid;
  std::optional<int> m_status;
};

}  // namespace orv
