// What an export shows and asks on a terminal.

#include <gtest/gtest.h>

#include <pty.h>
#include <termios.h>

#include <regex>

#include "e2e/Orv.h"

namespace orv {
namespace {

const std::string kScene = DataFile("mistakes.gltf");

// Runs a command at a terminal that neither echoes nor changes line ends, where somebody types
// ahead and leaves then; standard error is all that the terminal is sent.
Outcome RunAtTerminal(Command command, const std::string& typed = "") {
  int ours = -1, theirs = -1;
  termios settings{};
  openpty(&ours, &theirs, nullptr, nullptr, nullptr);
  tcgetattr(theirs, &settings);
  settings.c_lflag &= ~tcflag_t{ECHO};
  settings.c_oflag &= ~tcflag_t{OPOST};
  tcsetattr(theirs, TCSANOW, &settings);
  const std::string keys = typed + static_cast<char>(settings.c_cc[VEOF]);
  EXPECT_EQ(write(ours, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  command.terminal = theirs;
  Process run(command);
  close(theirs);
  Outcome outcome;
  char buffer[4096];
  for (ssize_t n; (n = read(ours, buffer, sizeof(buffer))) > 0;)
    outcome.err.append(buffer, static_cast<size_t>(n));
  close(ours);
  outcome.status = run.Status();
  outcome.out = run.Output();
  return outcome;
}

// What is left on the screen when every line has been cleared where that was asked for.
std::string Screen(const std::string& sent) {
  std::string screen;
  for (const std::string& line : SplitAt('\n', sent)) {
    const size_t cleared = line.rfind("\r\033[K");
    screen += (cleared == std::string::npos ? line : line.substr(cleared + 4)) + "\n";
  }
  return screen;
}

TEST(Terminal, ShowsProgressBelowTheLogAndTakesItAway) {
  const Workplace place;
  const Words arguments = {"export", kScene, "-o", "out", "--no-animation"};
  Command command = place.Prepared(arguments);
  command.environment["NO_COLOR"] = "1";
  const Outcome plain = place.Run(command);
  for (const auto& [name, content] : place.Files()) std::filesystem::remove(place.Path(name));
  const Outcome run = RunAtTerminal(command);
  EXPECT_EQ(run.status, plain.status);
  EXPECT_EQ(run.out, plain.out);
  EXPECT_EQ(plain.err.find_first_of("\r\033"), std::string::npos);
  EXPECT_EQ(Screen(run.err), plain.err);
  const std::regex bar("\r\033\\[K\\[(#*)(\\.*)\\] (\\d+)% ([^\r]+)");
  std::map<std::string, std::vector<int>> percents;
  std::string last;
  for (std::sregex_iterator found(run.err.begin(), run.err.end(), bar), end; found != end;
       ++found) {
    EXPECT_NE(found->str(), last) << "drawn twice";
    last = found->str();
    percents[(*found)[4]].push_back(std::stoi((*found)[3]));
    EXPECT_EQ((*found)[1].length(), std::stoi((*found)[3]) * 30 / 100);
    EXPECT_EQ((*found)[1].length() + (*found)[2].length(), 30);
  }
  EXPECT_EQ(percents.size(), 6u);
  EXPECT_EQ(percents["Building chunks"], (std::vector<int>{50, 0, 33, 66}));
}

TEST(Terminal, ColoursWhatIsWrong) {
  const Workplace place;
  const auto colours = [&](const char* noColour, const Words& more) {
    Command command = place.Prepared(Words{"export", kScene, "--no-animation"} + more);
    if (noColour) command.environment["NO_COLOR"] = noColour;
    const std::string sent = RunAtTerminal(command, "k\n").err;
    const std::regex coloured("\033\\[(3.)m(error: |warning: |)[^\033\n]+\033\\[0m\n");
    std::map<std::string, int> counts;
    for (std::sregex_iterator found(sent.begin(), sent.end(), coloured), end; found != end; ++found)
      ++counts[found->str(1) + " " + found->str(2)];
    EXPECT_EQ(sent.find("\033[3") == std::string::npos, counts.empty());
    EXPECT_EQ(sent.find("% ") == std::string::npos, more == Words{"-q"}) << "a bar";
    return counts;
  };
  const std::map<std::string, int> all = {{"31 error: ", 3}, {"33 warning: ", 1}, {"31 ", 1}};
  EXPECT_EQ(colours(nullptr, {}), all);
  EXPECT_EQ(colours("", {}), all);
  EXPECT_EQ(colours("1", {}), (std::map<std::string, int>()));
  EXPECT_EQ(colours("", {"-q"}), (std::map<std::string, int>{{"31 error: ", 3}, {"31 ", 1}}));
}

TEST(Terminal, AsksBeforeItOverwrites) {
  const Workplace place;
  const Words arguments = {"export", DataFile("everything.gltf"), "-o", "out", "--no-animation"};
  place.Orv(arguments);
  const auto files = place.Files();  // five of them may be asked about
  const struct {
    std::string typed;
    size_t overwritten, questions;
  } cases[] = {
      {"y\nk\n", 1, 2}, {"n\nYES\nk\n", 1, 3}, {"yes\nNo\nall\n", 4, 3},      {"A\n", 5, 1},
      {"k\n", 0, 1},    {"Keep\n", 0, 1},      {"what\nyy\ny\nkeep\n", 1, 4}, {"\n\ny\n\n\n", 1, 5},
      {"", 0, 5}};
  for (const auto& [typed, overwritten, questions] : cases) {
    for (const auto& [name, content] : files)
      if (name.ends_with(".txt")) WriteContent(place.Path(name), "old");
    const Outcome run = RunAtTerminal(place.Prepared(arguments), typed);
    EXPECT_EQ(run.status, 0);
    size_t asked = 0, kept = 0;
    for (size_t at = 0; (at = run.err.find("Enter for no: ", at)) != std::string::npos; ++at)
      ++asked;
    for (const auto& [name, content] : place.Files()) kept += content == "old";
    EXPECT_EQ(asked, questions) << typed;
    EXPECT_EQ(5 - kept, overwritten) << typed;
  }
  // Somebody to read it, but nobody to answer.
  Command command = place.Prepared(arguments);
  command.arguments = Words{"/bin/sh", "-c", "exec \"$0\" \"$@\" </dev/null"} + command.arguments;
  EXPECT_EQ(RunAtTerminal(command, "a\n").err.find("Overwrite"), std::string::npos);
}

}  // namespace
}  // namespace orv
