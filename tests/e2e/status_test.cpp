#include <gtest/gtest.h>

#include "e2e/Orv.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

const std::string kMoving = DataFile("moving.gltf");
const std::string kEverything = DataFile("everything.gltf");
constexpr char kAllWell[] = "Export completed with 0 Errors and 0 Warnings.";

struct StatusCase {
  std::string name;
  std::vector<std::string> arguments;
  int status;
  std::vector<std::string> says = {};  // somewhere on standard error
};

void PrintTo(const StatusCase& test, std::ostream* out) { *out << test.name; }

class ExitStatus : public testing::TestWithParam<StatusCase> {};

TEST_P(ExitStatus, ComesWithItsReason) {
  const StatusCase& test = GetParam();
  const Workplace place;
  WriteContent(place.Path("garbage.fbx"), "this is no scene");
  WriteContent(place.Path("garbage.xyz"), "this is no scene");
  WriteContent(place.Path("file"), "");
  const Outcome run = place.Orv(test.arguments);
  EXPECT_EQ(run.status, test.status) << run.err;
  for (const std::string& text : test.says) {
    EXPECT_NE(run.err.find(text), std::string::npos) << text << "\n--\n" << run.err;
  }
  if (test.status == 2) {
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(place.Names(), (std::set<std::string>{"garbage.fbx", "garbage.xyz", "file"}));
  }
  EXPECT_EQ(run.err.find('\033'), std::string::npos);
  EXPECT_EQ(place.Names("tmp"), std::set<std::string>());
}

INSTANTIATE_TEST_SUITE_P(
    Usage, ExitStatus,
    testing::Values(
        StatusCase{"nothing", {}, 2}, StatusCase{"help", {"--help"}, 0},
        StatusCase{"export help", {"export", "--help"}, 0},
        StatusCase{"no scene", {"export"}, 2, {"SCENE"}},
        StatusCase{"command", {"exprot", kMoving}, 2, {"'exprot'", "Did you mean 'export'?"}},
        StatusCase{"option",
                   {"export", kMoving, "--colect-textures"},
                   2,
                   {"'--colect-textures'", "Did you mean '--collect-textures'?"}},
        StatusCase{"unit", {"export", kMoving, "--unit", "-1"}, 2, {"--unit"}},
        StatusCase{"up", {"export", kMoving, "--up", "x"}, 2, {"--up"}},
        StatusCase{"select",
                   {"export", kMoving, "--select", "crete"},
                   2,
                   {kMoving, "'crete'", "Did you mean 'crate'?"}},
        StatusCase{"frames order", {"export", kMoving, "--frames", "5:4"}, 2, {"--frames"}},
        StatusCase{"fps", {"export", kMoving, "--fps", "0"}, 2, {"--fps"}},
        StatusCase{"animation",
                   {"export", kMoving, "--animation", "roll"},
                   2,
                   {kMoving, "\"roll\"", "\"Roll\", \"Hop\""}},
        StatusCase{"events", {"export", kMoving, "--events", "missing.evt"}, 2, {"missing.evt"}}));

INSTANTIATE_TEST_SUITE_P(
    Scene, ExitStatus,
    testing::Values(
        StatusCase{"missing", {"export", "gone.glb"}, 2, {"gone.glb: there is no such file"}},
        StatusCase{"folder", {"export", "."}, 2, {".: is a folder"}},
        StatusCase{"unknown format", {"export", "garbage.xyz"}, 2, {"garbage.xyz: No suitable"}},
        StatusCase{"garbage", {"export", "garbage.fbx"}, 2, {"garbage.fbx: FBX-"}},
        StatusCase{"all well", {"export", kMoving}, 0, {kAllWell}},
        StatusCase{"no files asked for",
                   {"export", kMoving, "--no-geometry", "--no-animation"},
                   0,
                   {kAllWell}}));

INSTANTIATE_TEST_SUITE_P(
    Missing, ExitStatus,
    testing::Values(StatusCase{"nothing to export",
                               {"export", kEverything, "--select", "lamp", "--no-animation"},
                               3,
                               {"warning: Export cancelled - nothing to export",
                                "orv: ./everything.im was not written: nothing to export"}},
                    StatusCase{"no bones",
                               {"export", kEverything},
                               3,
                               {"warning: No bones to export animation",
                                "orv: ./everything.kin was not written: the scene has no bones",
                                "names begin with \"b.\"", "--joints-as-bones", "--no-animation"}},
                    StatusCase{"missing folder",
                               {"export", kMoving, "-o", "gone/x"},
                               3,
                               {"error: Geometry Exporter reported error code '16'",
                                "orv: gone/x.im was not written: No such file or directory.",
                                "orv: gone/x.kin was not written"}},
                    StatusCase{"below a file",
                               {"export", kMoving, "-o", "file/x", "--no-geometry"},
                               3,
                               {"orv: file/x.kin was not written: Not a directory."}}));

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
