#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "Plugin.h"
#include "TemporaryFolder.h"
#include "readers/SceneBuilders.h"
#ifdef _WIN32
#include "windows/ModalWindows.h"
#endif

namespace orv {
namespace {

const char kOptionsFile[] = "Tamsk/VelmorOrvExporter/OrvExporter.xml";

class ExportDriver : public testing::Test {
 protected:
  ExportDriver() : m_plugin(m_folder.File("settings")) {
    std::filesystem::create_directory(m_folder.File("settings"));
    m_material = &m_scene.AddMaterial("plain m.notex");
  }

  host::MemoryNode& AddTriangle(const std::string& name, host::MemoryNode* parent = nullptr) {
    return m_scene.AddMeshNode(name, TriangleMesh(), m_material, parent);
  }
  void SetOptions(std::function<void(Options&)> edit) {
    m_plugin.dialogs.onOptions = [edit](Options& options) {
      edit(options);
      return true;
    };
  }
  int Export(DWORD options = 0) {
    return m_plugin.Export(m_scene, m_folder.File("out.im"), options);
  }
  bool Exists(const std::string& name) { return std::filesystem::exists(m_folder.File(name)); }
  // A field of the first chunk's geometry, so many bytes behind its tag.
  template <typename T>
  T GeometryField(size_t offset) {
    const std::string bytes = ContentOf(m_folder.File("out.im"));
    T value;
    std::memcpy(&value, &bytes.at(bytes.find("GEOM") + offset), sizeof value);
    return value;
  }
  uint32_t VerticesWritten() { return GeometryField<uint32_t>(24); }
  const std::string& LastLine() { return m_plugin.dialogs.log.back(); }

  TemporaryFolder m_folder;
  host::Scene m_scene;
  host::MemoryMaterial* m_material;
  Plugin m_plugin;
#ifdef _WIN32
  // Elsewhere these boxes are lines on standard error.
  ModalWindows m_refusals{"Velmor Exporter", [](HWND box) { Click(box, IDOK); }};
  ModalWindows m_exceptions{"Exception", [](HWND box) { Click(box, IDOK); }};
#endif
};

TEST_F(ExportDriver, CancelLeavesNothingBehind) {
  AddTriangle("part");
  m_plugin.dialogs.onOptions = [](Options&) { return false; };
  EXPECT_EQ(Export(), 1);
  EXPECT_FALSE(Exists(std::string("settings/") + kOptionsFile));
  EXPECT_FALSE(Exists("out.im"));
  EXPECT_EQ(m_plugin.dialogs.calls, std::vector<std::string>{"options"});
  EXPECT_TRUE(m_plugin.dialogs.log.empty());
}

TEST_F(ExportDriver, CallsComeInOrder) {
  AddTriangle("part");
  SetOptions([](Options& options) { options.m_exportAnimation = false; });
  EXPECT_EQ(Export(), 1);
  EXPECT_EQ(m_plugin.dialogs.calls, (std::vector<std::string>{"options", "open", "wait"}));
  EXPECT_EQ(m_plugin.dialogs.log.front(), "info: Exporting...");
  EXPECT_EQ(LastLine(), "info: Export completed with 0 Errors and 0 Warnings.");
  EXPECT_TRUE(Exists("out.im"));
  EXPECT_FALSE(Exists("out.kin"));
}

TEST_F(ExportDriver, SelectionLimitsTheExportUnasked) {
  host::MemoryNode& parent = AddTriangle("parent");
  AddTriangle("child", &parent);
  AddTriangle("other");
  SetOptions([](Options& options) { options.m_exportAnimation = false; });
  Export();
  EXPECT_EQ(VerticesWritten(), 3u);  // three equal triangles, welded
  parent.SetTransform(MovedBy(5, 0, 0));
  m_scene.Touch();
  m_scene.Select("other");
  Export();
  EXPECT_EQ(VerticesWritten(), 3u);
  m_scene.Select("child");
  m_scene.Select("parent");  // takes its child again, which counts once
  Export();
  EXPECT_EQ(VerticesWritten(), 6u);
}

TEST_F(ExportDriver, HiddenAndFrozenNodesAreLeftOutTheirChildrenAreNot) {
  host::MemoryNode& hidden = AddTriangle("hidden");
  hidden.SetHidden(true);
  hidden.SetTransform(MovedBy(5, 0, 0));
  AddTriangle("child", &hidden);
  AddTriangle("frozen").SetFrozen(true);
  SetOptions([](Options& options) { options.m_exportAnimation = false; });
  Export();
  ASSERT_EQ(VerticesWritten(), 3u);
  EXPECT_GE(GeometryField<float>(48), 5);  // the first vertex's x
}

TEST_F(ExportDriver, FramesComeFromTheHostWhateverTheFileHeld) {
  m_scene.info.firstFrame = -5;
  m_scene.info.lastFrame = 100;
  std::vector<int> frames;
  SetOptions([&](Options& options) {
    frames = {options.m_animationStartFrame, options.m_animationEndFrame,
              options.m_exportStartFrame, options.m_exportEndFrame};
    options.m_exportStartFrame = 7;
  });
  for (int run = 0; run < 2; ++run) {
    Export();
    EXPECT_EQ(frames, (std::vector<int>{-5, 100, -5, 100}));
  }
}

TEST_F(ExportDriver, OptionsAreKeptFromRunToRun) {
  AddTriangle("part");
  SetOptions([](Options& options) { options.m_useDefaultColors = true; });
  Export();
  EXPECT_TRUE(Exists(std::string("settings/") + kOptionsFile));
  bool kept = false;
  SetOptions([&](Options& options) { kept = options.m_useDefaultColors; });
  Export();
  EXPECT_TRUE(kept);
  std::filesystem::remove(m_folder.File(std::string("settings/") + kOptionsFile));
  Export();  // no file: the defaults
  EXPECT_FALSE(kept);
}

// A window that waits for its user hands on the host's messages, and one of these may ask for it.
TEST_F(ExportDriver, NoSecondExportBeginsDuringAnother) {
  AddTriangle("part");
  const auto askAgain = [&] {
    EXPECT_EQ(m_plugin.exporter->DoExport("second.im", nullptr, nullptr), 1);
  };
  SetOptions([&](Options&) { askAgain(); });
  m_plugin.dialogs.onWait = askAgain;
  Export();
  EXPECT_EQ(m_plugin.dialogs.calls, (std::vector<std::string>{"options", "open", "wait"}));
  EXPECT_TRUE(Exists("out.im"));
}

TEST_F(ExportDriver, FailedGeometryEndsTheExport) {
  AddTriangle("part");
  AddTriangle("b.root");
  std::filesystem::create_directory(m_folder.File("out.im"));  // cannot be opened as a file
  EXPECT_EQ(Export(), 0);
  EXPECT_TRUE(m_plugin.dialogs.Logged("error: Unhandled error in exporter module"));
  EXPECT_TRUE(LastLine().starts_with("error: Export completed with ")) << LastLine();
  EXPECT_FALSE(Exists("out.kin"));
  EXPECT_EQ(m_plugin.dialogs.calls.back(), "wait");
}

TEST_F(ExportDriver, NamesAreCutAtTheLastDotOfTheWholePath) {
  AddTriangle("part");
  SetOptions([](Options& options) { options.m_exportAnimation = false; });
  std::filesystem::create_directory(m_folder.File("a.b"));
  m_plugin.Export(m_scene, m_folder.File("a.b/mesh"));
  EXPECT_TRUE(Exists("a.im"));
  m_plugin.Export(m_scene, m_folder.File("a.b/LOCO.IM"));
  EXPECT_TRUE(Exists("a.b/LOCO.im"));
}

// A window function of the host that throws stands for any fault below the driver.
TEST_F(ExportDriver, NoExceptionLeavesIt) {
  AddTriangle("part");
  const struct {
    std::function<void()> raise;
    const char* line;
  } cases[] = {
      {[] { throw "out of ink"; }, "error: out of ink"},
      {[] { throw static_cast<const char*>(nullptr); }, "error: <NULL>"},
      {[] { throw std::runtime_error("x"); },
       "error: Unhandled exception occurred in plug-in!\nPlug-in terminated."},
  };
  for (const auto& test : cases) {
    SetOptions([&](Options&) { test.raise(); });
    EXPECT_EQ(Export(), 1);
    EXPECT_TRUE(m_plugin.dialogs.Logged(test.line)) << test.line;
    EXPECT_TRUE(LastLine().starts_with("error: Export completed with ")) << LastLine();
    EXPECT_EQ(m_plugin.dialogs.calls.back(), "wait");
  }
  m_plugin.dialogs.onOptions = [](Options&) { return true; };
  m_plugin.dialogs.onWait = [] { throw std::runtime_error("x"); };
  EXPECT_EQ(Export(), 1);
}

}  // namespace
}  // namespace orv
