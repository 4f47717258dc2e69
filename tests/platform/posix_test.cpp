#ifndef _WIN32
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "TemporaryFolder.h"
#include "platform/Platform.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

class Posix : public testing::Test {
 protected:
  std::string PathOf(const std::string& name) const { return m_folder.File(name); }
  std::string Put(const std::string& name, const std::string& bytes) const {
    WriteContent(PathOf(name), bytes);
    return PathOf(name);
  }
  std::string Get(const std::string& name) const { return ContentOf(PathOf(name)); }

  TemporaryFolder m_folder;
  const std::string m_path = m_folder.File(".");
};

TEST_F(Posix, BackslashesNameFolders) {
  platform::CreateFolders(m_path + "\\a\\b\xC3\xA9");
  Put("a/b\xC3\xA9/c", "x");
  EXPECT_TRUE(platform::FileExists(m_path + "\\a/b\xC3\xA9\\c"));
  EXPECT_TRUE(platform::IsSameFile(m_path + "\\a\\..\\a\\b\xC3\xA9\\c", PathOf("a/b\xC3\xA9/c")));
  EXPECT_TRUE(platform::IsSameFile(m_path + "\\a\\new", PathOf("a/../a/new")));
  EXPECT_FALSE(platform::IsSameFile(PathOf("a"), PathOf("new")));
  EXPECT_TRUE(platform::RemoveFile(m_path + "\\a\\b\xC3\xA9\\c"));
  EXPECT_FALSE(platform::RemoveFile(m_path + "\\a")) << "a folder is no file";
}

TEST_F(Posix, CopyOneFile) {
  const std::string source = Put("wall.tga", "new texture");
  Put("old.tga", "old");
  EXPECT_TRUE(platform::CopyOneFile(source, m_path + "\\old.tga", true, true));
  EXPECT_EQ(Get("old.tga"), "new texture");
  EXPECT_TRUE(platform::CopyOneFile(source, m_path + "/./wall.tga", true, true));
  EXPECT_EQ(Get("wall.tga"), "new texture");

  EXPECT_FALSE(platform::CopyOneFile(PathOf("missing"), PathOf("old.tga"), true, true));
  EXPECT_FALSE(platform::CopyOneFile(m_path, PathOf("old.tga"), true, true));
  EXPECT_FALSE(platform::CopyOneFile(source, PathOf("no folder/x"), true, true));
  EXPECT_FALSE(platform::CopyOneFile(source, m_path, true, true));
  EXPECT_EQ(Get("old.tga"), "new texture");
  EXPECT_EQ(m_folder.Count(), 2u) << "nothing half written stays behind";
}

TEST_F(Posix, WhyNotWritableLeavesNoTrace) {
  const std::string kept = Put("kept", "bytes");
  fs::create_symlink(PathOf("nowhere"), PathOf("dangling"));
  ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
  EXPECT_EQ(platform::WhyNotWritable(kept), "");
  EXPECT_EQ(platform::WhyNotWritable(PathOf("new")), "");
  EXPECT_EQ(platform::WhyNotWritable(PathOf("dangling")), "");
  EXPECT_EQ(platform::WhyNotWritable(PathOf("no folder/new")), "No such file or directory");
  EXPECT_EQ(platform::WhyNotWritable(m_path), "Is a directory");
  EXPECT_NE(platform::WhyNotWritable(PathOf("pipe")), "") << "nobody reads it";
  EXPECT_EQ(Get("kept"), "bytes");
  EXPECT_EQ(m_folder.Count(), 3u);
  EXPECT_TRUE(fs::is_symlink(PathOf("dangling")));
}

}  // namespace
}  // namespace orv
#endif
