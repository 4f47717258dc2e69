#ifndef _WIN32
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
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
  EXPECT_TRUE(platform::IsWritable(m_path + "\\a"));
  EXPECT_FALSE(platform::IsWritable(m_path + "\\none"));
  EXPECT_TRUE(platform::IsSameFile(m_path + "\\a\\..\\a\\b\xC3\xA9\\c", PathOf("a/b\xC3\xA9/c")));
  EXPECT_TRUE(platform::IsSameFile(m_path + "\\a\\new", PathOf("a/../a/new")));
  EXPECT_FALSE(platform::IsSameFile(PathOf("a"), PathOf("new")));
  EXPECT_TRUE(platform::RemoveFile(m_path + "\\a\\b\xC3\xA9\\c"));
  EXPECT_FALSE(platform::RemoveFile(m_path + "\\a")) << "a folder is no file";
}

TEST_F(Posix, CopyOneFile) {
  const auto copy = [&](const char* from, const char* to) {
    return platform::CopyOneFile(PathOf(from), PathOf(to), true, true);
  };
  Put("wall.tga", "new texture");
  Put("old.tga", "old");
  fs::create_symlink("old.tga", PathOf("link.tga"));
  EXPECT_TRUE(copy("wall.tga", ".\\link.tga"));
  EXPECT_TRUE(fs::is_symlink(PathOf("link.tga")));
  EXPECT_EQ(Get("old.tga"), "new texture");
  EXPECT_TRUE(copy("wall.tga", "./wall.tga"));
  EXPECT_EQ(Get("wall.tga"), "new texture");

  EXPECT_FALSE(copy("missing", "old.tga"));
  EXPECT_FALSE(copy("missing", "missing"));
  EXPECT_FALSE(copy(".", "old.tga"));
  EXPECT_FALSE(copy("wall.tga", "no folder/x"));
  EXPECT_FALSE(copy("wall.tga", "."));
  rlimit before;
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit fourBytes{4, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &fourBytes);
  std::signal(SIGXFSZ, SIG_IGN);
  EXPECT_FALSE(copy("wall.tga", "old.tga")) << "no room for it";
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(Get("old.tga"), "new texture");
  EXPECT_EQ(m_folder.Count(), 3u) << "nothing half written stays behind";
}

TEST_F(Posix, WhyNotWritableLeavesNoTrace) {
  Put("kept", "bytes");
  fs::create_symlink(PathOf("nowhere"), PathOf("dangling"));
  ASSERT_EQ(mkfifo(PathOf("pipe").c_str(), 0600), 0);
  const std::pair<const char*, const char*> cases[] = {
      {"kept", ""},
      {"new", ""},
      {"dangling", ""},
      {"no folder/new", "No such file or directory"},
      {".", "Is a directory"},
      {"pipe", "No such device or address"}};  // nobody reads it
  for (const auto& [name, reason] : cases) {
    EXPECT_EQ(platform::WhyNotWritable(PathOf(name)), reason) << name;
  }
  EXPECT_EQ(Get("kept"), "bytes");
  EXPECT_EQ(m_folder.Count(), 3u);
  EXPECT_TRUE(fs::is_symlink(PathOf("dangling")));
}

TEST_F(Posix, SettingsAreWhereTheEnvironmentSays) {
  const std::string home = getenv("HOME");
  const auto folder = [](const char* configuration, const char* home) {
    setenv("XDG_CONFIG_HOME", configuration, 1);
    setenv("HOME", home, 1);
    return platform::ApplicationDataFolder().value_or("none");
  };
  EXPECT_EQ(folder("/conf", "/home/me"), "/conf");
  EXPECT_EQ(folder("conf", "/home/me"), "/home/me/.config") << "a relative one does not count";
  EXPECT_EQ(folder("", ""), "none");
  setenv("HOME", home.c_str(), 1);
  unsetenv("XDG_CONFIG_HOME");
}

TEST_F(Posix, WithoutWindowsTheStandardErrorTells) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(platform::ShowMessageBox("Sure?", "Orv", {}, {}));
  platform::ShowAboutBox(nullptr, nullptr);
  EXPECT_EQ(platform::PickEventFile(), std::nullopt);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Orv: Sure?\nOrv Exporter\n" + platform::ResourceString(7) + "\n");
  EXPECT_EQ(platform::ResourceString(3), "") << "no entry has that number";
}

}  // namespace
}  // namespace orv
#endif
