#include <gtest/gtest.h>

#include <filesystem>
#include <regex>

#include "Plugin.h"
#include "TemporaryFolder.h"
#include "platform/Platform.h"
#include "platform/ReplacingFile.h"
#include "platform/StringTable.h"
#include "shell/Railcar.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

TEST(Library, StringTableIsComplete) {
  std::map<unsigned, std::string> expected;
#define ORV_ENTRY(id, name, text) expected[id] = text;
  ORV_STRING_TABLE(ORV_ENTRY)
  platform::SetModuleInstance(LoadPlugin());
  for (unsigned id = 0; id < 64; ++id) EXPECT_EQ(platform::ResourceString(id), expected[id]) << id;
  EXPECT_TRUE(platform::HostExecutablePath().ends_with("\\windows_test.exe"));
}

TEST(Library, OptionsLandInTheRoamingFolder) {
  const std::string folder = std::getenv("APPDATA") + std::string("\\Tamsk\\VelmorOrvExporter");
  fs::remove_all(folder);
  host::Scene scene;
  TemporaryFolder output;
  Plugin plugin("");
  std::string eventFile;
  plugin.dialogs.onOptions = [&](Options& options) {
    eventFile = options.m_eventFileName.CStr();
    options.m_eventFileName = "C:\\events\\loco.evt";
    return true;
  };
  for (const char* before : {"", "C:\\events\\loco.evt"}) {
    plugin.Export(scene, output.File("out.im"));
    EXPECT_EQ(eventFile, before);
  }
  EXPECT_NE(ContentOf(folder + "/OrvExporter.xml").find("<OrvExporterOptions>"), std::string::npos);
}

std::map<std::string, std::string> FilesIn(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& file : fs::directory_iterator(folder))
    files[file.path().filename().string()] = ContentOf(file.path().string());
  return files;
}

// The folder of the native library's export stands in the environment. Side files have the system's
// line ends.
TEST(Library, RailcarIsTheSameAsFromTheNativeLibrary) {
  const fs::path native = std::getenv("ORV_NATIVE_RAILCAR");
  TemporaryFolder folder;
  EXPECT_EQ(ExportRailcar(folder.File("railcar")), ContentOf((native / "log.txt").string()));
  const auto files = FilesIn(folder.File("railcar/out"));
  auto expected = FilesIn(native / "out");
  for (auto& [name, content] : expected) {
    if (name.ends_with(".texture.txt"))
      content = std::regex_replace(content, std::regex("\n"), "\r\n");
    EXPECT_TRUE(files.contains(name) && files.at(name) == content) << name;
  }
  EXPECT_EQ(files.size(), expected.size());
}

// Somebody else's hold on an existing file.
std::shared_ptr<void> OpenElsewhere(const std::string& path, DWORD access, DWORD sharing) {
  const HANDLE file =
      CreateFileA(path.c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_NE(file, INVALID_HANDLE_VALUE) << path;
  return {file, CloseHandle};
}

TEST(Files, TargetHeldOpenElsewhereIsWrittenIfThatAllowsIt) {
  constexpr DWORD kReadWrite = FILE_SHARE_READ | FILE_SHARE_WRITE;
  TemporaryFolder folder;
  const std::string target = folder.File("a.im");
  for (const DWORD sharing : {kReadWrite, kReadWrite | FILE_SHARE_DELETE, DWORD{FILE_SHARE_READ}}) {
    const bool allowed = sharing != FILE_SHARE_READ;
    WriteContent(target, "old, and longer");
    const auto reader = OpenElsewhere(target, GENERIC_READ | GENERIC_WRITE, sharing);
    ReplacingFile out(target, std::ios::binary);
    out << "new" << std::flush;
    if (allowed) OpenElsewhere(target + ".orv-partial", GENERIC_READ | GENERIC_WRITE, kReadWrite);
    EXPECT_EQ(out.Commit(), allowed);
    EXPECT_EQ(out.FailureReason(), allowed ? "" : "Sharing violation.");
    EXPECT_EQ(ContentOf(target), allowed ? "new" : "old, and longer");
    EXPECT_EQ(folder.Count(), 1u);
  }
}

TEST(Files, PathsNameThemInAnyForm) {
  TemporaryFolder folder;
  const std::string wall = folder.File("wall.tga"), old = folder.File("old.tga"),
                    none = folder.File("none.tga");
  WriteContent(wall, "new texture");
  WriteContent(old, "old");
  EXPECT_TRUE(platform::IsSameFile(wall, folder.File("x/..\\WALL.tga")));
  EXPECT_TRUE(platform::IsSameFile(none, folder.File("x/..\\NONE.tga")));
  EXPECT_FALSE(platform::IsSameFile(wall, old));
  EXPECT_TRUE(platform::CopyOneFile(wall, old, true, true));
  EXPECT_FALSE(platform::CopyOneFile(none, old, true, true));
  EXPECT_EQ(ContentOf(old), "new texture");
  EXPECT_EQ(platform::WhyNotWritable(none), "");
  EXPECT_FALSE(platform::FileExists(none)) << "it was a trial";
  SetFileAttributesA(old.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_TRUE(platform::IsWritable(wall) && !platform::IsWritable(old));
  SetFileAttributesA(old.c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(platform::FindReplaceableFile(wall), wall);
  for (const std::string& path : {std::string("NUL"), folder.File("")})
    EXPECT_EQ(platform::FindReplaceableFile(path), "") << path;
  EXPECT_TRUE(platform::RenameOnto(old, wall) && !platform::FileExists(old));
}

}  // namespace
}  // namespace orv
