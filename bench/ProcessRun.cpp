#include "ProcessRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>

extern char** environ;

namespace orv::bench {
namespace {

constexpr char kServe[] = "--run";

// Spawns with the given standard output and answers the process, or -1.
pid_t Spawn(char* const* arguments, int output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  if (output >= 0) {
    posix_spawn_file_actions_adddup2(&actions, output, 1);
  } else {
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  }
  pid_t child = -1;
  if (posix_spawnp(&child, arguments[0], &actions, nullptr, arguments, environ) != 0) child = -1;
  posix_spawn_file_actions_destroy(&actions);
  return child;
}

}  // namespace

std::optional<int> ServeProcessRun(int argc, char** argv) {
  if (argc < 3 || std::strcmp(argv[1], kServe) != 0) return std::nullopt;
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = Spawn(argv + 2, -1);
  int status = -1;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) return 1;
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  std::printf("%.9f %ld\n", time.count(), usage.ru_maxrss);
  return 0;
}

std::optional<ProcessRun> RunProcess(const std::vector<std::string>& command) {
  char self[] = "/proc/self/exe";
  std::string serve = kServe;
  std::vector<char*> arguments = {self, serve.data()};
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  const pid_t child = Spawn(arguments.data(), ends[1]);
  close(ends[1]);
  char text[64] = {};
  const ssize_t length = read(ends[0], text, sizeof text - 1);
  close(ends[0]);
  if (child >= 0) waitpid(child, nullptr, 0);
  ProcessRun run;
  long kilobytes = 0;
  if (length <= 0 || std::sscanf(text, "%lf %ld", &run.seconds, &kilobytes) != 2)
    return std::nullopt;
  run.peakBytes = 1024.0 * static_cast<double>(kilobytes);
  return run;
}

}  // namespace orv::bench
