// The plug-in's own windows, used as a person does: through a pointer and a keyboard.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <iostream>
#include <memory>

#include "Desktop.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

const char kOptions[] = "Velmor Exporter Options";
const char kLog[] = "Velmor Exporter Log";
const char kQuestion[] = "Exporter Query";
const char kScene[] = ORV_EXAMPLES "/railcar/railcar.gltf";  // frames 0 to 120
// The scene names some textures twice, and their side files are there the second time.
const std::string kNoQuestions = "<m_askTxtOverwrite>false</m_askTxtOverwrite>";
const char kThrown[] = "error: System.InvalidOperationException: thrown on purpose";
const char kOptionsFile[] = "settings/Tamsk/VelmorOrvExporter/OrvExporter.xml";

class Dialogs : public testing::Test {
 protected:
  Dialogs() {
    for (const char* name : {"settings", "home", "plain", "tmp"}) fs::create_directory(Path(name));
  }

  ~Dialogs() override {
    if (!HasFailure()) return;
    std::cout << "windows: " << m_desktop.Titles() << "\nlog:\n" << Content("orv.err");
  }

  std::string Path(const std::string& name) const { return m_folder.File(name); }
  std::string Content(const std::string& name) const { return ContentOf(Path(name)); }
  bool Exists(const std::string& name) const { return fs::exists(Path(name)); }

  // What Mono and the sanitizers would fight over is left to Mono.
  std::unique_ptr<Process> Start(const std::string& name, std::vector<std::string> arguments,
                                 std::map<std::string, std::string> environment = {},
                                 const std::string& program = ORV_PROGRAM,
                                 const std::string& folder = "") {
    environment.insert({{"HOME", Path("home")},
                        {"XDG_CONFIG_HOME", Path("home")},
                        {"TMPDIR", Path("tmp")},
                        {"ASAN_OPTIONS",
                         "detect_leaks=0:handle_segv=0:handle_sigfpe=0:handle_abort=0:"
                         "use_sigaltstack=0"}});
    arguments.insert(arguments.begin(), program);
    return std::make_unique<Process>(
        Command{arguments, Path(folder), Path(folder + "/" + name), environment});
  }
  std::unique_ptr<Process> StartExport(const std::vector<std::string>& more = {},
                                       const std::string& program = ORV_PROGRAM,
                                       const std::map<std::string, std::string>& environment = {}) {
    std::vector<std::string> arguments = {"export",     kScene,     "-o",       "out.im",
                                          "--settings", "settings", "--dialogs"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Start("orv", arguments, environment, program);
  }
  // The same without windows, into the folder "plain".
  void ExportPlainly(std::vector<std::string> more) {
    more.insert(more.begin(), {"export", kScene, "-o", "out.im"});
    ASSERT_EQ(Start("orv", more, {}, ORV_PROGRAM, "plain")->Status(), 0);
  }
  void WriteOptions(const std::string& elements) {
    fs::create_directories(fs::path(Path(kOptionsFile)).parent_path());
    WriteContent(Path(kOptionsFile), "<OrvExporterOptions>" + elements + "</OrvExporterOptions>");
  }
  bool Kept(const std::string& element, const std::string& value) {
    return Content(kOptionsFile).find("<" + element + ">" + value + "</") != std::string::npos;
  }
  void CloseLog() { m_desktop.ClickAway("Close", m_desktop.Window(kLog)); }

  TemporaryFolder m_folder;
  Desktop& m_desktop = Desktop::Get();
};

TEST_F(Dialogs, EveryControlReachesTheExport) {
  WriteContent(Path("events.evt"), "4 Sound_Event rattle\n30 Sound_Event late\n");
  const auto orv = StartExport();
  m_desktop.Window(kOptions);
  m_desktop.Click("Force &overwrite .texture.txt Files");
  m_desktop.Click("&Collect textures to export folder");
  m_desktop.Key("alt+d");
  m_desktop.Key("alt+p");
  m_desktop.Key("alt+e");
  m_desktop.Type(Path("events.evt"));
  m_desktop.Key("alt+f");
  m_desktop.Key("ctrl+a");
  m_desktop.Type("2");
  m_desktop.Key("alt+l");
  m_desktop.Key("ctrl+a");
  m_desktop.Type("12");
  m_desktop.Click("&Start");
  CloseLog();
  EXPECT_EQ(orv->Status(), 0) << orv->Errors();

  for (const char* element : {"m_forceTxtOverwrite", "m_collectTextures", "m_useDefaultColors",
                              "m_normalMapFlipGreen", "m_exportGeometry", "m_exportAnimation"}) {
    EXPECT_TRUE(Kept(element, "true")) << element;
  }
  EXPECT_TRUE(Kept("m_eventFileName", Path("events.evt"))) << Content(kOptionsFile);
  ExportPlainly({"--force-textures", "--collect-textures", "--default-colors", "--flip-green",
                 "--events", Path("events.evt"), "--frames", "2:12"});
  size_t count = 0;
  for (const auto& file : fs::directory_iterator(Path("plain"))) {
    const std::string name = file.path().filename().string();
    if (name.starts_with("orv.")) continue;
    EXPECT_TRUE(Content(name) == Content("plain/" + name)) << name;
    ++count;
  }
  EXPECT_GT(count, 8u) << "the textures were collected";
}

TEST_F(Dialogs, CancellingLeavesNothingBehind) {
  const std::function<void(const std::string&)> ways[] = {
      [&](const std::string& window) { m_desktop.ClickAway("Cancel", window); },
      [&](const std::string&) { m_desktop.Key("Escape"); },
      [&](const std::string& window) { m_desktop.ClickClose(window); },
  };
  for (const auto& cancel : ways) {
    const auto orv = StartExport();
    const std::string window = m_desktop.Window(kOptions);
    m_desktop.Click("&Collect textures to export folder");
    cancel(window);
    EXPECT_EQ(orv->Status(), 3);
    EXPECT_NE(orv->Errors().find("cancelled"), std::string::npos) << orv->Errors();
    EXPECT_FALSE(Exists(kOptionsFile) || Exists("out.im") || Exists("out.kin"));
    EXPECT_FALSE(m_desktop.IsShown(kLog));
  }
}

TEST_F(Dialogs, StartWithNothingCheckedStaysAndOffMeansGreyed) {
  WriteOptions(kNoQuestions);
  const auto orv = StartExport();
  m_desktop.Window(kOptions);
  m_desktop.Click("Export &Geometry");
  m_desktop.Click("Force &overwrite .texture.txt Files");  // greyed: does nothing
  m_desktop.Key("alt+a");
  m_desktop.Key("Return");
  const std::string box = m_desktop.Window("Nothing to export");
  m_desktop.Key("Return");
  m_desktop.WaitUntilGone(box);
  m_desktop.Window(kOptions);
  m_desktop.Key("alt+g");
  m_desktop.Key("Return");
  m_desktop.Window(kLog);
  m_desktop.Key("Return");
  EXPECT_EQ(orv->Status(), 0);
  EXPECT_TRUE(Exists("out.im"));
  EXPECT_FALSE(Exists("out.kin"));
  EXPECT_TRUE(Kept("m_forceTxtOverwrite", "false"));
  EXPECT_TRUE(Kept("m_exportAnimation", "false"));
}

TEST_F(Dialogs, FramesStayInsideTheAnimationAndInOrder) {
  const auto orv = StartExport({"--no-geometry", "--frames", "490:620"});
  m_desktop.Window(kOptions);
  m_desktop.Key("alt+f");
  m_desktop.Key("ctrl+a");
  m_desktop.Type("999");  // past the animation's end, so that is it
  m_desktop.Key("alt+l");
  m_desktop.Key("ctrl+a");
  m_desktop.Type("507");  // takes the first frame along
  m_desktop.Key("Return");
  CloseLog();
  EXPECT_EQ(orv->Status(), 0);
  ExportPlainly({"--no-geometry", "--frames", "507:507"});
  EXPECT_TRUE(Content("out.kin") == Content("plain/out.kin"));
}

TEST_F(Dialogs, EventFileComesFromThePicker) {
  WriteContent(Path("events.evt"), "4 Sound_Event rattle\n");
  const auto orv = StartExport({"--no-geometry"});
  m_desktop.Window(kOptions);
  m_desktop.Click("&Browse...");
  // The toolkit's own window is a while busy with its list; keys that come too early are lost.
  WaitUntil([&] {
    const std::string picker = m_desktop.Window("Select Event File");
    m_desktop.Key("ctrl+a");
    m_desktop.Type(Path("events.evt"));
    m_desktop.Key("Return");
    return m_desktop.IsGoneSoon(picker);
  });
  m_desktop.Window(kOptions);
  m_desktop.Click("&Start");
  CloseLog();
  EXPECT_EQ(orv->Status(), 0);
  EXPECT_TRUE(Kept("m_eventFileName", Path("events.evt"))) << Content(kOptionsFile);
}

// The side files of the first export are there when the second one asks.
TEST_F(Dialogs, QuestionAnswersAreThoseOfItsButtons) {
  ExportPlainly({});
  std::vector<std::string> sideFiles;
  for (const auto& file : fs::directory_iterator(Path("plain"))) {
    const std::string name = file.path().filename().string();
    if (name.ends_with(".texture.txt")) sideFiles.push_back(name);
  }
  const size_t all = sideFiles.size();
  ASSERT_GE(all, 3u);
  const struct {
    std::vector<std::string> buttons;
    size_t overwritten;
  } cases[] = {{{"&Yes", "No &to All"}, 1},
               {{"&No", "No &to All"}, 0},
               {{"Cancel", "No &to All"}, 0},
               {{"Yes to &All"}, all}};
  for (const auto& test : cases) {
    for (const std::string& name : sideFiles) WriteContent(Path(name), "old");
    const auto orv = StartExport({"--no-animation"});
    m_desktop.Window(kOptions);
    m_desktop.Click("&Start");
    for (const std::string& button : test.buttons) {
      m_desktop.ClickAway(button, m_desktop.Window(kQuestion));
    }
    CloseLog();
    EXPECT_EQ(orv->Status(), 0) << orv->Errors();
    size_t overwritten = 0;
    for (const std::string& name : sideFiles) overwritten += Content(name) != "old";
    EXPECT_EQ(overwritten, test.overwritten) << test.buttons[0];
  }
}

// An event file that is a pipe holds an export up until the test writes into it.
class WhileItRuns : public Dialogs {
 protected:
  WhileItRuns() {
    mkfifo(Path("pipe").c_str(), 0600);
    WriteOptions(kNoQuestions + "<m_eventFileName>" + Path("pipe") + "</m_eventFileName>");
    orv = StartExport();
    m_desktop.Window(kOptions);
    m_desktop.Key("Return");
    log = m_desktop.Window(kLog);
    // Refused as long as nobody reads from it.
    WaitUntil([&] { return (m_pipe = open(Path("pipe").c_str(), O_WRONLY | O_NONBLOCK)) >= 0; });
  }
  ~WhileItRuns() override { close(m_pipe); }
  // With a warning for the log, in which it comes to its messages.
  void LetGoOn() {
    const char text[] = "not a number\n";
    EXPECT_EQ(write(m_pipe, text, sizeof(text) - 1), static_cast<ssize_t>(sizeof(text) - 1));
    close(m_pipe);
    m_pipe = -1;
  }

  std::unique_ptr<Process> orv;
  std::string log;

 private:
  int m_pipe = -1;
};

TEST_F(WhileItRuns, ClosingTheLogLetsTheExportFinish) {
  m_desktop.Click("Close");
  LetGoOn();
  EXPECT_EQ(orv->Status(), 0) << "nobody has to close a log any more";
  EXPECT_NE(orv->Errors().find("Export completed with 0 Errors and 1 Warnings."),
            std::string::npos);
  EXPECT_TRUE(Exists("out.im") && Exists("out.kin"));
}

TEST_F(WhileItRuns, LogCanBeCopied) {
  m_desktop.Click("&Copy to Clipboard");
  LetGoOn();
  const auto clipboardHas = [&](const char* text) {
    return WaitUntil([&] { return m_desktop.Clipboard().find(text) != std::string::npos; });
  };
  EXPECT_TRUE(clipboardHas("Progress: Building chunks\n"));
  EXPECT_EQ(m_desktop.Clipboard().find("Export completed"), std::string::npos)
      << "it was too early";
  WaitUntil([&] { return orv->Errors().find("Export completed") != std::string::npos; });
  m_desktop.Key("alt+c");
  EXPECT_TRUE(clipboardHas("Export completed with 0 Errors and 1 Warnings."));
  EXPECT_EQ(m_desktop.Clipboard().substr(0, 13), "Exporting...\n");
  m_desktop.Key("Escape");
  EXPECT_EQ(orv->Status(), 0);
}

TEST_F(Dialogs, AboutBox) {
  const auto orv = Start("orv", {"about"});
  m_desktop.Window("Dialog");
  EXPECT_TRUE(m_desktop.IsShown("Orv Exporter"));
  EXPECT_TRUE(m_desktop.IsShown("Copyright (C) 2026 The OrvExporter developers"));
  m_desktop.Key("Return");
  EXPECT_EQ(orv->Status(), 0) << orv->Errors();
}

// A folder with the plug-in as it is built, but for the windows.
class OtherWindows : public Dialogs {
 protected:
  OtherWindows() {
    fs::create_directory(Path("bin"));
    for (const char* name : {"orv", "OrvExporter.dle"})
      fs::copy_file(fs::path(ORV_PROGRAM).parent_path() / name, Path("bin") + "/" + name);
  }
  // Cancelled, nothing written, and said why. box: the title of one to be answered; "" for none.
  void ExpectNoExport(const std::string& reason, const std::string& program,
                      const std::map<std::string, std::string>& environment = {},
                      const std::string& box = "") {
    const auto orv = StartExport({}, program, environment);
    if (!box.empty()) {
      m_desktop.Window(box);
      m_desktop.Key("Return");
    }
    EXPECT_EQ(orv->Status(), 3);
    const std::string said = orv->Errors();
    EXPECT_NE(said.find(reason), std::string::npos) << said;
    EXPECT_EQ(said.find(reason), said.rfind(reason)) << "said once: " << said;
    EXPECT_FALSE(Exists(kOptionsFile) || Exists("out.im") || Exists("out.kin"));
  }
};

TEST_F(OtherWindows, MissingOnesCancelTheExport) {
  ExpectNoExport("They need an X display", ORV_PROGRAM, {{"DISPLAY", ""}});
  ExpectNoExport("Their library is missing: " + Path("bin/OrvExporterDialogs.dll"),
                 Path("bin/orv"));
  fs::copy_file(fs::path(ORV_PROGRAM).parent_path() / "OrvExporterDialogs.dll",
                Path("bin/OrvExporterDialogs.dll"));
  WriteContent(Path("bin/libmonosgen-2.0.so.1"), "no library");
  ExpectNoExport("apt-get install libmonosgen-2.0-1", Path("bin/orv"),
                 {{"LD_LIBRARY_PATH", Path("bin")}});
}

TEST_F(OtherWindows, ManagedExceptionsBecomeLoggedErrors) {
  fs::copy_file(ORV_THROWING_DIALOGS "/ThrowingOptions.dll", Path("bin/OrvExporterDialogs.dll"));
  ExpectNoExport(kThrown, Path("bin/orv"), {}, "Velmor Exporter");
}

// The report of an exception is a line of the log, which throws again. A window that is closed
// before it has shown its first line throws nothing.
TEST_F(OtherWindows, AFailingLogDoesNotStopTheExport) {
  fs::copy_file(ORV_THROWING_DIALOGS "/ThrowingLog.dll", Path("bin/OrvExporterDialogs.dll"));
  WriteOptions(kNoQuestions);
  const auto orv = StartExport({}, Path("bin/orv"));
  m_desktop.Window(kOptions);
  m_desktop.Key("Return");
  const std::string log = m_desktop.Window(kLog);
  EXPECT_TRUE(WaitUntil([&] { return orv->Errors().find(kThrown) != std::string::npos; }));
  m_desktop.ClickClose(log);
  EXPECT_LE(orv->Status(), 1) << "0 when the first line was shown after the last one was logged";
  EXPECT_TRUE(Exists("out.im") && Exists("out.kin"));
}

TEST_F(Dialogs, LayoutIsSoundAlsoWithALargerFont) {
  for (const char* window : {"options", "log", "question", "about"}) {
    for (const char* factor : {"1", "1.5"}) {
      const auto gallery = Start("gallery", {ORV_GALLERY, window, factor, "check"}, {}, "mono");
      EXPECT_EQ(gallery->Status(), 0) << window << " " << factor << ": " << gallery->Output();
    }
  }
}

TEST_F(Dialogs, ManyExportsInOneProcessTakeNoMore) {
  const auto host = Start("host", {Path("many.im"), "40"}, {}, ORV_MANY_EXPORTS);
  WaitUntil([&] {
    for (const char* title : {kOptions, kLog})
      if (m_desktop.IsShown(title)) m_desktop.Key("Return");
    return host->Ended();
  });
  EXPECT_EQ(host->Status(), 0) << host->Output() << host->Errors();
}

}  // namespace
}  // namespace orv
