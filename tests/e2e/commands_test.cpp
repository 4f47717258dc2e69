// What all commands share; tests/exports has their runs.

#include <gtest/gtest.h>

#include <fstream>
#include <regex>

#include "e2e/Orv.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

const std::string kMoving = DataFile("moving.gltf");

// Words that begin with "-" in a text; of the README only those in its tables.
std::set<std::string> OptionsIn(const std::string& text, const std::string& lineStart) {
  std::set<std::string> options;
  const std::regex option("(^|[^-\\w])(--?[a-z][a-z-]*)");
  for (const std::string& line : SplitAt('\n', text)) {
    if (!line.starts_with(lineStart)) continue;
    const std::string names = line.substr(0, line.find(lineStart == "|" ? " |" : "   ", 2));
    for (std::sregex_iterator found(names.begin(), names.end(), option), end; found != end; ++found)
      options.insert((*found)[2]);
  }
  return options;
}

TEST(Help, HasTheOptionsOfTheReadme) {
  const Workplace place;
  const Outcome run = place.Orv({"export", "--help"});
  EXPECT_EQ(run.status, 0);
  const std::set<std::string> told = OptionsIn(run.out, "  -");
  const std::set<std::string> promised = OptionsIn(ContentOf(ORV_EXAMPLES "/../README.md"), "|");
  EXPECT_GT(promised.size(), 5u);
  for (const std::string& option : promised) EXPECT_TRUE(told.contains(option)) << option;
  EXPECT_TRUE(
      std::regex_match(place.Orv({"--version"}).out, std::regex("orv \\d+\\.\\d+\\.\\d+\n")));
}

TEST(Output, ThatCannotBeWrittenIsAnError) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full device here";
  const Workplace place;
  place.Export(kMoving, "good");
  fs::create_symlink("/dev/full", place.Path("full.out"));
  for (const char* arguments : {"--help", "plugin", "info good.im", "check good.im good.kin",
                                "check --json good.im", "export good.glb -o again"}) {
    place.Orv({"convert", "good.im", "good.kin"});
    Command command = place.Prepared(SplitAt(' ', arguments));
    command.output = place.Path("full");
    Process run(command);
    EXPECT_EQ(run.Status(), 3) << arguments;
    EXPECT_TRUE(run.Errors().ends_with("orv: standard output cannot be written\n")) << arguments;
  }
}

// In a build with the address sanitizer; elsewhere just some more runs.
TEST(Memory, IsGivenBack) {
  const Workplace place;
  for (const Words& arguments : {Words{"export", DataFile("everything.gltf"), "--no-animation"},
                                 Words{"export", kMoving, "--joints-as-bones"},
                                 Words{"check", "everything.im", "moving.kin", "none.im"},
                                 Words{"convert", "moving.im", "moving.kin"}}) {
    Command command = place.Prepared(arguments);
    command.environment["ASAN_OPTIONS"] = "detect_leaks=1";
    EXPECT_EQ(place.Run(command).status, arguments[0] == "check" ? 2 : 0) << arguments[0];
  }
}

// A program whose windows have not been built, started by a door that keeps what it is asked for.
TEST(Door, IsAskedForTheWindowsBeforeAnythingIsDone) {
  const Workplace place;
  const fs::path program = Program(), bin = place.Path("bin");
  fs::create_directory(bin);
  for (const char* name : {"orv", "OrvExporter.dle"})
    fs::copy_file(program.parent_path() / name, bin / name);
  WriteContent(place.Path("door"), "#!/bin/sh\necho \"$ORV_GROUPS; $*\" >>asked\nexit 42\n");
  fs::permissions(place.Path("door"), fs::perms::owner_all);
  const struct {
    const char* arguments;
    const char* brought;
    int status;
    const char* asked;
  } cases[] = {
      {"about", "", 42, " dialogs; about\n"},
      {"export gone.gltf -o new/ --dialogs", "models", 42,
       "models dialogs; export gone.gltf -o new/ --dialogs\n"},
      {"about", "dialogs", 0, ""},
      {"export gone.gltf --dialogs", "models dialogs", 2, ""},
      {"export gone.gltf -o --dialogs", "", 2, ""},
      {"export --help --dialogs", "", 0, ""},
  };
  for (const auto& test : cases) {
    Command command = place.Prepared(SplitAt(' ', test.arguments));
    command.arguments[0] = bin / "orv";
    command.environment["ORV_DOOR"] = place.Path("door");
    command.environment["ORV_GROUPS"] = test.brought;
    command.environment["DISPLAY"] = "";
    EXPECT_EQ(place.Run(command).status, test.status) << test.arguments;
    EXPECT_EQ(place.Content("asked"), test.asked);
    fs::remove(place.Path("asked"));
    EXPECT_FALSE(fs::exists(place.Path("new")));
  }
}

}  // namespace
}  // namespace orv
