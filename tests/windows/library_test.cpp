#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "Plugin.h"
#include "TemporaryFolder.h"
#include "platform/Platform.h"
#include "platform/ReplacingFile.h"
#include "platform/StringTable.h"
#include "shell/Railcar.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

std::string TextOf(unsigned id) {
  char text[256] = "";
  LoadStringA(GetModuleHandleA(ORV_PLUGIN_PATH), id, text, sizeof(text));
  return text;
}

TEST(Library, StringTableIsComplete) {
  Plugin plugin("");
#define ORV_EXPECT(id, name, text) EXPECT_EQ(TextOf(id), text);
  ORV_STRING_TABLE(ORV_EXPECT)
#undef ORV_EXPECT
  for (const unsigned id : {0, 3, 12, 19, 26, 31, 38}) EXPECT_EQ(TextOf(id), "") << id;
}

std::string FromEnvironment(const char* name) {
  char value[MAX_PATH] = "";
  GetEnvironmentVariableA(name, value, sizeof(value));
  return value;
}

TEST(Library, OptionsLandInTheRoamingFolder) {
  const std::string folder = FromEnvironment("APPDATA") + "\\Tamsk\\VelmorOrvExporter";
  fs::remove_all(folder);
  host::Scene scene;
  TemporaryFolder output;
  Plugin plugin("");
  plugin.Export(scene, output.File("out.im"));
  EXPECT_NE(ContentOf(folder + "/OrvExporter.xml").find("<OrvExporterOptions>"), std::string::npos);
  std::string eventFile;
  plugin.dialogs.onOptions = [&](Options& options) {
    eventFile = options.m_eventFileName.CStr();
    options.m_eventFileName = "C:\\events\\loco.evt";
    return true;
  };
  for (int run = 0; run < 2; ++run) plugin.Export(scene, output.File("out.im"));
  EXPECT_EQ(eventFile, "C:\\events\\loco.evt");
}

// The folder of the native library's export stands in the environment.
TEST(Library, RailcarIsTheSameAsFromTheNativeLibrary) {
  const fs::path expected = FromEnvironment("ORV_NATIVE_RAILCAR");
  TemporaryFolder folder;
  const fs::path actual = folder.File("railcar");
  EXPECT_EQ(ExportRailcar(actual), ContentOf((expected / "log.txt").string()));
  std::set<std::string> expectedNames, names;
  for (const auto& file : fs::directory_iterator(actual / "out"))
    names.insert(file.path().filename().string());
  for (const auto& file : fs::directory_iterator(expected / "out")) {
    const std::string name = *expectedNames.insert(file.path().filename().string()).first;
    const std::string want = ContentOf(file.path().string());
    std::string bytes = ContentOf((actual / "out" / name).string());
    if (name.ends_with(".texture.txt")) {
      EXPECT_EQ(std::erase(bytes, '\r'), std::ranges::count(want, '\n')) << name;
    }
    EXPECT_TRUE(bytes == want) << name;
  }
  EXPECT_EQ(names, expectedNames);
}

// Somebody else's hold on a file.
class OpenElsewhere {
 public:
  OpenElsewhere(const std::string& path, DWORD access, DWORD sharing)
      : m_file(CreateFileA(path.c_str(), access, sharing, nullptr, OPEN_EXISTING, 0, nullptr)) {}
  ~OpenElsewhere() { CloseHandle(m_file); }
  OpenElsewhere(const OpenElsewhere&) = delete;
  bool Succeeded() const { return m_file != INVALID_HANDLE_VALUE; }

 private:
  HANDLE m_file;
};

constexpr DWORD kReadWrite = FILE_SHARE_READ | FILE_SHARE_WRITE;

class Sharing : public testing::Test {
 protected:
  Sharing() { WriteContent(target, "old, and longer"); }
  std::string WriteNew() {
    ReplacingFile out(target, std::ios::binary);
    out << "new";
    out.Commit();
    return out.FailureReason();
  }
  TemporaryFolder folder;
  const std::string target = folder.File("a.im");
};

TEST_F(Sharing, TargetHeldOpenElsewhereIsWritten) {
  for (const DWORD sharing : {kReadWrite, kReadWrite | FILE_SHARE_DELETE}) {
    const OpenElsewhere reader(target, GENERIC_READ, sharing);
    ASSERT_TRUE(reader.Succeeded());
    EXPECT_EQ(WriteNew(), "");
    EXPECT_EQ(ContentOf(target), "new");
    EXPECT_EQ(folder.Count(), 1u);
  }
}

TEST_F(Sharing, TargetThatIsNotSharedStaysAsItIs) {
  const OpenElsewhere reader(target, GENERIC_READ, FILE_SHARE_READ);
  EXPECT_NE(WriteNew(), "");
  EXPECT_EQ(ContentOf(target), "old, and longer");
  EXPECT_EQ(folder.Count(), 1u);
}

TEST_F(Sharing, OthersMayUseAFileThatIsBeingWritten) {
  ReplacingFile out(target, std::ios::binary);
  out << "new" << std::flush;
  const OpenElsewhere other(target + ".orv-partial", GENERIC_READ | GENERIC_WRITE, kReadWrite);
  EXPECT_TRUE(other.Succeeded());
}

TEST(Copying, OneFile) {
  TemporaryFolder folder;
  const std::string source = folder.File("wall.tga"), target = folder.File("old.tga");
  WriteContent(source, "new texture");
  WriteContent(target, "old");
  EXPECT_TRUE(platform::IsSameFile(source, folder.File("x\\..\\WALL.tga")));
  EXPECT_FALSE(platform::IsSameFile(source, target));
  EXPECT_TRUE(platform::CopyOneFile(source, target, true, true));
  EXPECT_EQ(ContentOf(target), "new texture");
  EXPECT_FALSE(platform::CopyOneFile(folder.File("missing"), target, true, true));
  EXPECT_EQ(ContentOf(target), "new texture");
}

TEST(Copying, TexturesInTheExportFolderStay) {
  TemporaryFolder folder;
  for (const char* name : kRailcarTextures) WriteContent(folder.File(name), name);
  host::Scene scene;
  BuildRailcar(scene, folder.File(""));
  Plugin plugin(folder.File("settings"));
  plugin.dialogs.onOptions = [](Options& options) { return options.m_collectTextures = true; };
  plugin.Export(scene, folder.File("OUT.IM"));
  EXPECT_TRUE(plugin.dialogs.Logged(
      "error: The following 1 file(s) failed to copy or could not be located:"));
  EXPECT_TRUE(plugin.dialogs.Logged("info:   notile_missing.tga"));
  for (const char* name : kRailcarTextures) EXPECT_EQ(ContentOf(folder.File(name)), name);
}

}  // namespace
}  // namespace orv
