#include "platform/ReplacingFile.h"

#include <gtest/gtest.h>

#include "TemporaryFolder.h"
#include "platform/Platform.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

class ReplacingFileTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  const std::string target = folder.File("a.im");
};

TEST_F(ReplacingFileTest, TargetChangesAtTheCommit) {
  WriteContent(target, "old");
  {
    ReplacingFile out(target, std::ios::binary);
    out << "new" << std::flush;
    EXPECT_EQ(ContentOf(target), "old");
    EXPECT_TRUE(out.Commit());
    EXPECT_EQ(out.FailureReason(), "");
  }
  EXPECT_EQ(ContentOf(target), "new");
  EXPECT_EQ(folder.Count(), 1u);
}

TEST_F(ReplacingFileTest, FailedStreamLeavesTheTarget) {
  WriteContent(target, "old");
  ReplacingFile out(target, std::ios::binary);
  out.setstate(std::ios::failbit);
  EXPECT_FALSE(out.Commit());
  EXPECT_NE(out.FailureReason(), "");
  EXPECT_EQ(ContentOf(target), "old");
  EXPECT_EQ(folder.Count(), 1u);
}

TEST_F(ReplacingFileTest, TargetStaysWhenWhatWasWrittenIsGone) {
  WriteContent(target, "old");
  ReplacingFile out(target, std::ios::binary);
  out << "new" << std::flush;
  std::error_code error;
  fs::rename(target + ".orv-partial", folder.File("elsewhere"), error);
  if (error) GTEST_SKIP() << "no open file can be taken away here";
  EXPECT_FALSE(out.Commit());
  EXPECT_NE(out.FailureReason(), "");
  EXPECT_EQ(ContentOf(target), "old");
}

TEST_F(ReplacingFileTest, FullDeviceIsToldWithTheSystemsReason) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no full device here";
  for (const size_t size : {size_t{1}, size_t{1} << 20}) {
    ReplacingFile out("/dev/full", std::ios::binary);
    EXPECT_TRUE(out.good());
    out << std::string(size, 'x');
    EXPECT_FALSE(out.Commit());
    EXPECT_EQ(out.FailureReason(), "No space left on device");
  }
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_F(ReplacingFileTest, LinksAndPermissionsStay) {
  WriteContent(target, "old");
  fs::permissions(target, fs::perms::owner_all);
  std::error_code error;
  fs::create_symlink("a.im", folder.File("link.im"), error);
  if (error) GTEST_SKIP() << "no links here";
  ReplacingFile out(folder.File("link.im"), std::ios::binary);
  out << "new";
  EXPECT_TRUE(out.Commit());
  EXPECT_TRUE(fs::is_symlink(folder.File("link.im")));
  EXPECT_EQ(ContentOf(target), "new");
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_all);
}

TEST_F(ReplacingFileTest, TargetIsWrittenDirectlyWhenNoTemporaryFileCanBe) {
  WriteContent(target, "old");
  fs::create_directories(target + ".orv-partial/taken");
  ReplacingFile out(target, std::ios::binary);
  out << "new";
  EXPECT_TRUE(out.Commit());
  EXPECT_EQ(ContentOf(target), "new");
}

}  // namespace
}  // namespace orv
