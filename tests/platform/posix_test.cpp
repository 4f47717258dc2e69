#ifndef _WIN32
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/Platform.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

class Posix : public testing::Test {
 protected:
  Posix() {
    std::string name = (fs::temp_directory_path() / "orv-platform-XXXXXX").string();
    m_folder = mkdtemp(name.data());
  }
  ~Posix() override { fs::remove_all(m_folder); }

  std::string PathOf(const std::string& name) const { return m_folder + "/" + name; }
  std::string Put(const std::string& name, const std::string& bytes) const {
    std::ofstream(PathOf(name), std::ios::binary) << bytes;
    return PathOf(name);
  }
  std::string Get(const std::string& name) const {
    std::ifstream in(PathOf(name), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  size_t FileCount() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(m_folder), {}));
  }

  std::string m_folder;
};

TEST_F(Posix, BackslashesNameFolders) {
  platform::CreateFolders(m_folder + "\\a\\b\xC3\xA9");
  Put("a/b\xC3\xA9/c", "x");
  EXPECT_TRUE(platform::FileExists(m_folder + "\\a/b\xC3\xA9\\c"));
  EXPECT_TRUE(platform::IsSameFile(m_folder + "\\a\\..\\a\\b\xC3\xA9\\c", PathOf("a/b\xC3\xA9/c")));
  EXPECT_TRUE(platform::IsSameFile(m_folder + "\\a\\new", PathOf("a/../a/new")));
  EXPECT_FALSE(platform::IsSameFile(PathOf("a"), PathOf("new")));
  EXPECT_TRUE(platform::RemoveFile(m_folder + "\\a\\b\xC3\xA9\\c"));
  EXPECT_FALSE(platform::RemoveFile(m_folder + "\\a")) << "a folder is no file";
}

TEST_F(Posix, CopyOneFile) {
  const std::string source = Put("wall.tga", "new texture");
  Put("old.tga", "old");
  EXPECT_TRUE(platform::CopyOneFile(source, m_folder + "\\old.tga", true, true));
  EXPECT_EQ(Get("old.tga"), "new texture");
  EXPECT_TRUE(platform::CopyOneFile(source, m_folder + "/./wall.tga", true, true));
  EXPECT_EQ(Get("wall.tga"), "new texture");

  EXPECT_FALSE(platform::CopyOneFile(PathOf("missing"), PathOf("old.tga"), true, true));
  EXPECT_FALSE(platform::CopyOneFile(m_folder, PathOf("old.tga"), true, true));
  EXPECT_FALSE(platform::CopyOneFile(source, PathOf("no folder/x"), true, true));
  EXPECT_FALSE(platform::CopyOneFile(source, m_folder, true, true));
  EXPECT_EQ(Get("old.tga"), "new texture");
  EXPECT_EQ(FileCount(), 2u) << "nothing half written stays behind";
}

TEST_F(Posix, WhyNotWritableLeavesNoTrace) {
  const std::string kept = Put("kept", "bytes");
  fs::create_symlink(PathOf("nowhere"), PathOf("dangling"));
  ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
  EXPECT_EQ(platform::WhyNotWritable(kept), "");
  EXPECT_EQ(platform::WhyNotWritable(PathOf("new")), "");
  EXPECT_EQ(platform::WhyNotWritable(PathOf("dangling")), "");
  EXPECT_EQ(platform::WhyNotWritable(PathOf("no folder/new")), "No such file or directory");
  EXPECT_EQ(platform::WhyNotWritable(m_folder), "Is a directory");
  EXPECT_NE(platform::WhyNotWritable(PathOf("pipe")), "") << "nobody reads it";
  EXPECT_EQ(Get("kept"), "bytes");
  EXPECT_EQ(FileCount(), 3u);
  EXPECT_TRUE(fs::is_symlink(PathOf("dangling")));
}

}  // namespace
}  // namespace orv
#endif
