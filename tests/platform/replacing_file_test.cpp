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
    ReplacingFile left(target, std::ios::binary);
    left << "never committed";
  }
  EXPECT_EQ(folder.Count(), 1u);
  ReplacingFile failed(target, std::ios::binary);
  failed.setstate(std::ios::failbit);
  EXPECT_FALSE(failed.Commit());
  EXPECT_NE(failed.FailureReason(), "");
  ReplacingFile out(target, std::ios::binary);
  out << "new" << std::flush;
  EXPECT_EQ(ContentOf(target), "old");
  EXPECT_TRUE(out.Commit());
  EXPECT_EQ(out.FailureReason(), "");
  EXPECT_EQ(ContentOf(target), "new");
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

// By the time of the commit the target is a link to no file yet: no place to rename onto.
TEST_F(ReplacingFileTest, TargetIsWrittenThroughWhenItCannotBeReplaced) {
  for (const std::string content : {"new", ""}) {
    WriteContent(target, "old");
    ReplacingFile out(target, std::ios::binary);
    out << content;
    fs::remove(target);
    std::error_code error;
    fs::create_symlink("elsewhere", target, error);
    if (error) GTEST_SKIP() << "no links here";
    EXPECT_TRUE(out.Commit());
    EXPECT_EQ(ContentOf(folder.File("elsewhere")), content);
    EXPECT_EQ(folder.Count(), 2u) << "the temporary file goes";
    fs::remove(folder.File("elsewhere"));
    fs::remove(target);
  }
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
