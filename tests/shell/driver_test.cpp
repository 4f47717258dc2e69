#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <tuple>

#include "Plugin.h"
#include "TemporaryFolder.h"
#include "formats/IndexedMeshFile.h"
#include "readers/SceneBuilders.h"
#ifdef _WIN32
#include "windows/ModalWindows.h"
#endif

namespace orv {
namespace {

namespace fs = std::filesystem;

const std::string kOptionsFile = "Tamsk/VelmorOrvExporter/OrvExporter.xml";

class ExportDriver : public testing::Test {
 protected:
  // So many equal triangles, and the number tells whose they are.
  host::MemoryNode& AddMesh(const std::string& name, size_t triangles = 1,
                            host::MemoryNode* parent = nullptr) {
    Mesh mesh = MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {triangles, {0, 1, 2}});
    return scene.AddMeshNode(name, std::move(mesh), &material, parent);
  }
  int Export(DWORD options = 0) { return plugin.Export(scene, folder.File("out.im"), options); }
  void ExportGeometryAlone(DWORD options = 0) {
    plugin.dialogs.onOptions = [](Options& o) { return !(o.m_exportAnimation = false); };
    Export(options);
  }
  bool Exists(const std::string& name) { return fs::exists(folder.File(name)); }

  TemporaryFolder folder;
  host::Scene scene;
  host::MemoryMaterial& material = scene.AddMaterial("plain m.notex");
  Plugin plugin{folder.File("settings")};
#ifdef _WIN32
  // Elsewhere these boxes are lines on standard error.
  ModalWindows m_refusals{"Velmor Exporter", [](HWND box) { Click(box, IDOK); }};
  ModalWindows m_exceptions{"Exception", [](HWND box) { Click(box, IDOK); }};
#endif
};

// How exports end, an exception in a window of the host standing for any fault: what the scene and
// the folder hold, then what becomes of each file that was asked for, and behind a bar what is
// found.
using End = std::pair<const char*, std::string>;

class ExportEnds : public ExportDriver, public testing::WithParamInterface<End> {
 protected:
  void Give(const std::string& what) {
    ScriptedDialogs& dialogs = plugin.dialogs;
    if (what == "part" || what == "b.root") AddMesh(what);
    if (what == "bare") AddMesh(what).SetMaterial(nullptr);
    if (what == "flat") AddMesh(what).SetMesh(WithoutTextureVertices(TriangleMesh()));
    if (what == "skin") {
      auto& skin = AddMesh(what).SetSkinnedMesh(TriangleMesh(), {}, Weights({{}, {}, {}}));
      skin.Physique().staysDeformable = true;
    }
    if (what == "out.im" || what == "out.kin") fs::create_directory(folder.File(what));
    if (what == "cancel") dialogs.onOptions = [](Options&) { return false; };
    if (what == "im-only")
      dialogs.onOptions = [](Options& o) { return !(o.m_exportAnimation = false); };
    // A window that waits hands on the host's messages, of which one may ask for another export.
    if (what == "again")
      dialogs.onWait = [&] { plugin.exporter->DoExport("b.im", nullptr, nullptr); };
    if (what == "throw") dialogs.onMessages = [&] { dialogs.log.size() > 1 ? throw 1 : 0; };
    if (what == "throw-first") dialogs.onOptions = [](Options&) -> bool { throw 1; };
    if (what == "throw-text") dialogs.onOptions = [](Options&) -> bool { throw "no ink"; };
    if (what == "throw-null")
      dialogs.onOptions = [](Options&) -> bool { throw static_cast<const char*>(nullptr); };
    if (what == "last-throws") dialogs.onWait = [] { throw 1; };
  }
};

TEST_P(ExportEnds, OutcomeSaysWhatHasHappened) {
  const auto& [given, expected] = GetParam();
  std::istringstream words(given);
  for (std::string what; words >> what;) Give(what);
  EXPECT_EQ(Export(), expected.find("geometry-failed") == expected.npos);
  const ExportOutcome& outcome = plugin.dialogs.outcome;
  std::string told;
  for (const OutputFile* file : {&outcome.geometry, &outcome.animation}) {
    if (!file->isAskedFor) continue;
    EXPECT_EQ(file->isWritten, fs::is_regular_file(file->path));
    EXPECT_EQ(file->bytes, file->isWritten ? fs::file_size(file->path) : 0);
    EXPECT_EQ(file->systemWhy.empty(), file->why != CodeOf("file-not-writable"));
    told.append(file->isWritten ? FileNamePart(file->path) : file->why).append(" ");
  }
  const bool started = !told.empty();
  for (const Finding& finding : outcome.findings) {
    told.append("| ").append(finding.code).append(" ");
    for (const Subject& subject : finding.subjects) told.append(FileNamePart(subject.name)) += " ";
    if (finding.code == CodeOf("export-stopped")) told += finding.text + " ";
    EXPECT_EQ(plugin.dialogs.LogText().find(": " + finding.text + "\n") == std::string::npos,
              *given == 'l');
  }
  EXPECT_EQ(told, expected);
  EXPECT_EQ(outcome.isStarted, started);
  EXPECT_EQ(plugin.dialogs.calls, started                    ? "options open wait ended"
                                  : outcome.findings.empty() ? "options ended"
                                                             : "options wait ended");
  EXPECT_EQ(plugin.progress.ends_with("100 (gone)\n"), started);
  EXPECT_EQ(Exists("settings/" + kOptionsFile), started);
}

const End kEnds[] = {
    {"part b.root", "out.im out.kin "},
    {"part b.root cancel", ""},
    {"part b.root im-only", "out.im "},
    {"part b.root again", "out.im out.kin "},
    {"part", "out.im bones-missing | bones-missing "},
    {"bare flat b.root",
     "nothing-to-export out.kin | material-missing bare "
     "| texcoords-missing flat | nothing-to-export "},
    {"part b.root out.im",
     "file-not-writable geometry-failed | file-not-writable out.im "
     "| file-not-writable-reason out.im | geometry-failed "},
    {"part b.root out.kin",
     "out.im file-not-writable | file-not-writable out.kin "
     "| file-not-writable-reason out.kin "},
    {"skin", "skin-vertex-not-rigid skin-vertex-not-rigid | skin-vertex-not-rigid skin "},
    {"part throw", "unhandled-exception unhandled-exception | unhandled-exception "},
    {"throw-text", "| export-stopped no ink "},
    {"throw-null", "| export-stopped <NULL> "},
    {"throw-first", "| unhandled-exception "},
    {"last-throws part b.root", "out.im out.kin | unhandled-exception "},  // not logged any more
};
INSTANTIATE_TEST_SUITE_P(All, ExportEnds, testing::ValuesIn(kEnds));

TEST_F(ExportDriver, BarFollowsTheStagesAndEveryExportCountsAnew) {
  AddMesh("part");
  AddMesh("flat").SetMesh(WithoutTextureVertices(TriangleMesh()));
  size_t handled = 0;
  plugin.dialogs.onMessages = [&] { ++handled; };
  for (int run = 0; run < 2; ++run) {
    ExportGeometryAlone();
    EXPECT_EQ(plugin.dialogs.log.back(), "warning: Export completed with 0 Errors and 1 Warnings.");
    EXPECT_EQ(plugin.progress,
              "0 Exporting\n0 Reading data from the scene\n16 Reading data from the scene\n"
              "33 Reading data from the scene\n0 Reading data from the scene\n"
              "16 Reading data from the scene\n33 Reading data from the scene\n"
              "33 Transforming and cropping\n0 Transforming and cropping\n0 Merging meshes\n"
              "0 Building chunks\n0 Optimizing chunks\n100 (gone)\n");
  }
  EXPECT_EQ(handled, 22u);
}

TEST_F(ExportDriver, AnswersAreThoseOfTheButtons) {
  AddMesh("part");
  material.maps[1] = &scene.AddBitmap("a.tga");
  material.maps[8] = &scene.AddBitmap("b.tga");
  const std::tuple<ButtonResult, const char*, bool> cases[] = {
      {ButtonResult::Yes, "ask ask ", true},     {ButtonResult::YesToAll, "ask ", true},
      {ButtonResult::No, "ask ask ", false},     {ButtonResult::NoToAll, "ask ", false},
      {ButtonResult::Cancel, "ask ask ", false}, {ButtonResult::None, "ask ask ", false}};
  for (const auto& [button, asked, overwrites] : cases) {
    const std::string files[] = {folder.File("a.texture.txt"), folder.File("b.texture.txt")};
    for (const std::string& name : files) WriteContent(name, "old");
    plugin.dialogs.answer = button;
    ExportGeometryAlone();
    EXPECT_EQ(plugin.dialogs.calls, std::string("options open ") + asked + "wait ended");
    for (const std::string& name : files) EXPECT_EQ(ContentOf(name) != "old", overwrites) << asked;
  }
}

// Hidden and frozen nodes are left out, their children are not; no node counts twice.
TEST_F(ExportDriver, SelectionLimitsTheExportUnasked) {
  AddMesh("child", 2, &AddMesh("parent", 1));
  AddMesh("other", 4);
  host::MemoryNode &hidden = AddMesh("hidden", 8), &frozen = AddMesh("frozen", 16);
  hidden.SetHidden(true);
  frozen.SetFrozen(true);
  AddMesh("below", 32, &hidden);
  AddMesh("below", 64, &frozen);
  ExportGeometryAlone(SCENE_EXPORT_SELECTED);
  EXPECT_FALSE(Exists("out.im"));
  for (const auto& [select, triangles] : {std::pair("", 1 + 2 + 4 + 32 + 64),
                                          {"other", 4},
                                          {"child", 4 + 2},
                                          {"parent", 4 + 2 + 1}}) {
    scene.Select(select);
    ExportGeometryAlone();
    IndexedMeshFile file;
    ReadProblem problem;
    ASSERT_TRUE(ReadIndexedMesh(ContentOf(folder.File("out.im")), file, problem));
    EXPECT_EQ(file.triangleCount, static_cast<size_t>(triangles)) << select;
  }
}

TEST_F(ExportDriver, OptionsAreKeptButTheFramesAreTheHosts) {
  scene.info.firstFrame = -5;
  scene.info.lastFrame = 100;
  std::vector<int> seen;
  plugin.dialogs.onOptions = [&](Options& o) {
    seen = {o.m_useDefaultColors, o.m_animationStartFrame, o.m_animationEndFrame,
            o.m_exportStartFrame, o.m_exportEndFrame};
    o.m_exportStartFrame = 7;
    return o.m_useDefaultColors = true;
  };
  for (const bool kept : {false, true, false}) {
    Export();
    EXPECT_EQ(seen, (std::vector<int>{kept, -5, 100, -5, 100}));
    if (kept) fs::remove(folder.File("settings/" + kOptionsFile));
  }
}

#ifndef _WIN32
TEST_F(ExportDriver, OptionsAreTheUsersElseBesideTheProgram) {
  const fs::path plugins = fs::canonical("/proc/self/exe").parent_path() / "plugins";
  fs::create_directory(plugins);
  Plugin own("");
  setenv("XDG_CONFIG_HOME", folder.File("").c_str(), 1);
  own.Export(scene, folder.File("out.im"));
  EXPECT_TRUE(Exists(kOptionsFile));
  for (const char* name : {"XDG_CONFIG_HOME", "HOME"}) unsetenv(name);
  own.Export(scene, folder.File("out.im"));
  EXPECT_TRUE(fs::exists(plugins / "OrvExporter.xml"));
  fs::remove_all(plugins);
}
#endif

TEST_F(ExportDriver, NamesAreCutAtTheLastDotOfTheWholePath) {
  AddMesh("part");
  fs::create_directory(folder.File("a.b"));
  for (const auto& [name, written] :
       {std::pair("a.b/mesh", "a.im"), std::pair("a.b/LOCO.IM", "a.b/LOCO.im")}) {
    plugin.Export(scene, folder.File(name));
    EXPECT_TRUE(Exists(written)) << name;
  }
}

}  // namespace
}  // namespace orv
