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
  for (const auto& [name, part] : {std::pair("railcar.im", "livery m.onetex.tbump"),
                                   {"railcar.im", "ATCH"},
                                   {"railcar.im", "SKEL"},
                                   {"bellows.im", "b.bellows.rear"},
                                   {"railcar.kin", "horn"},
                                   {"livery.tga", "pixels of livery.tga"}}) {
    const std::string content = ContentOf((folder / "out" / name).string());
    EXPECT_NE(content.find(part), content.npos) << name << ": " << part;
  }
}

}  // namespace
}  // namespace orv
