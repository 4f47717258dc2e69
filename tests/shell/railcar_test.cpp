#include <gtest/gtest.h>

#include "TemporaryFolder.h"
#include "shell/Railcar.h"

namespace orv {
namespace {

// What it writes stays, with its log: the tests of the Windows library compare theirs to it.
TEST(Railcar, EverythingIsInItsFiles) {
  const std::filesystem::path folder = ORV_RAILCAR_FOLDER;
  const std::string log = ExportRailcar(folder);
  WriteContent((folder / "log.txt").string(), log);
  EXPECT_NE(log.find("completed with 2 Errors and 0 Warnings."), log.npos) << log;
  const std::string bellows = ContentOf((folder / "out/bellows.im").string());
  EXPECT_NE(bellows.find("b.bellows.rear"), bellows.npos);
}

}  // namespace
}  // namespace orv
