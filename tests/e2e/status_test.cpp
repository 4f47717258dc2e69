#include <gtest/gtest.h>

#include "e2e/Orv.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

const std::string kMoving = DataFile("moving.gltf");
const std::string kEverything = DataFile("everything.gltf");

std::vector<std::string> SplitAt(char separator, const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

struct StatusCase {
  const char* arguments;  // between blanks
  int status;
  const char* says = "";  // somewhere on standard error; several texts with "|" between them
};

void PrintTo(const StatusCase& test, std::ostream* out) { *out << test.arguments; }

class ExitStatus : public testing::TestWithParam<StatusCase> {};

TEST_P(ExitStatus, ComesWithItsReason) {
  const StatusCase& test = GetParam();
  const Workplace place;
  for (const char* name : {"moving.gltf", "everything.gltf"}) {
    fs::copy_file(DataFile(name), place.Path(name));
  }
  WriteContent(place.Path("garbage.fbx"), "this is no scene");
  WriteContent(place.Path("garbage.xyz"), "this is no scene");
  WriteContent(place.Path("file"), "");
  const auto before = place.Names();
  const Outcome run = place.Orv(SplitAt(' ', test.arguments));
  EXPECT_EQ(run.status, test.status) << run.err;
  for (const std::string& text : SplitAt('|', test.says)) {
    EXPECT_NE(run.err.find(text), std::string::npos) << text << "\n--\n" << run.err;
  }
  if (test.status == 2) {
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(place.Names(), before);
  }
  EXPECT_EQ(run.err.find('\033'), std::string::npos);
  EXPECT_EQ(place.Names("tmp"), std::set<std::string>());
}

INSTANTIATE_TEST_SUITE_P(
    Usage, ExitStatus,
    testing::Values(StatusCase{"", 2}, StatusCase{"--help", 0}, StatusCase{"export --help", 0},
                    StatusCase{"export", 2, "SCENE"},
                    StatusCase{"exprot moving.gltf", 2, "'exprot'|Did you mean 'export'?"},
                    StatusCase{"export moving.gltf --colect-textures", 2,
                               "'--colect-textures'|Did you mean '--collect-textures'?"},
                    StatusCase{"export moving.gltf --unit -1", 2,
                               "--unit: expects a number above 0, not -1"},
                    StatusCase{"export moving.gltf --up x", 2, "--up"},
                    StatusCase{"export moving.gltf --select crete", 2,
                               "moving.gltf|'crete'|Did you mean 'crate'?"},
                    StatusCase{"export moving.gltf --frames 5:4", 2, "--frames"},
                    StatusCase{"export moving.gltf --fps 0", 2, "--fps"},
                    StatusCase{"export moving.gltf --animation roll", 2,
                               "moving.gltf|\"roll\"|\"Roll\", \"Hop\""},
                    StatusCase{"export moving.gltf --events missing.evt", 2, "missing.evt"}));

INSTANTIATE_TEST_SUITE_P(
    Scene, ExitStatus,
    testing::Values(StatusCase{"export gone.glb", 2, "gone.glb: there is no such file"},
                    StatusCase{"export .", 2, ".: is a folder"},
                    StatusCase{"export garbage.xyz", 2, "garbage.xyz: No suitable"},
                    StatusCase{"export garbage.fbx", 2, "garbage.fbx: FBX-"},
                    StatusCase{"export moving.gltf", 0, "with 0 Errors and 0 Warnings."},
                    StatusCase{"export moving.gltf --no-geometry --no-animation", 0,
                               "with 0 Errors and 0 Warnings."}));

INSTANTIATE_TEST_SUITE_P(
    Missing, ExitStatus,
    testing::Values(StatusCase{"export everything.gltf --select lamp --no-animation", 3,
                               "warning: Export cancelled - nothing to export|"
                               "orv: ./everything.im was not written: nothing to export"},
                    StatusCase{"export everything.gltf", 3,
                               "warning: No bones to export animation|"
                               "orv: ./everything.kin was not written: the scene has no bones|"
                               "names begin with \"b.\"|--joints-as-bones|--no-animation"},
                    StatusCase{"export moving.gltf -o gone/x", 3,
                               "error: Geometry Exporter reported error code '16'|"
                               "orv: gone/x.im was not written: No such file or directory.|"
                               "orv: gone/x.kin was not written"},
                    StatusCase{"export moving.gltf -o file/x --no-geometry", 3,
                               "orv: file/x.kin was not written: Not a directory."}));

TEST(Output, ThatCannotBeWrittenIsAnError) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full device here";
  for (const char* arguments : {"--help", "plugin"}) {
    const int result = std::system(
        (std::string(ORV_PROGRAM) + " " + arguments + " >/dev/full 2>/dev/null").c_str());
    EXPECT_EQ(WEXITSTATUS(result), 3) << arguments;
  }
}

TEST(Log, QuietLeavesErrorsAndTheSummary) {
  const Workplace place;
  const Outcome run = place.Export(DataFile("mistakes.gltf"), "out", {"--quiet", "--no-animation"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.Count("error: "), 3);
  EXPECT_EQ(run.Lines().size(), 4u) << run.err;
  EXPECT_EQ(run.Lines().back(), "Export completed with 3 Errors and 1 Warnings.");
}

// A target that is a folder cannot be written; what stood there stays.
TEST(FailedWrite, LeavesTheOldFile) {
  const Workplace place;
  fs::create_directories(place.Path("out.im"));
  const Outcome run = place.Export(kMoving, "out");
  EXPECT_EQ(run.status, 3) << run.err;
  EXPECT_EQ(place.Names(), std::set<std::string>{"out.im/"});
}

// In a build with the address sanitizer; elsewhere just one more export.
TEST(Memory, IsGivenBack) {
  const Workplace place;
  const Outcome run = place.Orv({"export", kEverything, "--no-animation"}, true);
  EXPECT_EQ(run.status, 0) << run.err;
  const Outcome moving = place.Orv({"export", kMoving, "--joints-as-bones"}, true);
  EXPECT_EQ(moving.status, 0) << moving.err;
}

TEST(PluginCommand, PrintsTheIdentity) {
  const Workplace place;
  const Outcome run = place.Orv({"plugin"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find("/OrvExporter.dle\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("class id:     0x77B61FB5, 0x007429F1\n"), std::string::npos);
  EXPECT_NE(run.out.find("file types: IM KIN\n"), std::string::npos);
}

}  // namespace
}  // namespace orv
