// The plug-in's own windows, used as a person does: through a pointer and a keyboard.

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "Desktop.h"
#include "Recorded.h"
#include "e2e/Orv.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

using Environment = std::map<std::string, std::string>;

const std::string kScene = ExampleFile("railcar/railcar.gltf");  // frames 0 to 120
const char kOptionsFile[] = "Tamsk/VelmorOrvExporter/OrvExporter.xml";
const char kFailed[] = "error: System.InvalidOperationException: failed on purpose";

class Dialogs : public testing::Test {
 protected:
  std::string Home() const { return fs::path(m_place.Here()).parent_path() / "home/"; }
  // As an earlier export has left them. The scene names some textures twice, and their side files
  // are there the second time.
  void WriteOptions(const std::string& elements) {
    const fs::path path = Home() + kOptionsFile;
    fs::create_directories(path.parent_path());
    WriteContent(path, "<OrvExporterOptions><m_askTxtOverwrite>false</m_askTxtOverwrite>" +
                           elements + "</OrvExporterOptions>");
  }
  // Those that are on, or have a value.
  std::string KeptOptions() const {
    std::string text = ContentOf(Home() + kOptionsFile), kept;
    for (std::smatch m; regex_search(text, m, std::regex("<m_(\\w+)>([^<]*)</"));) {
      if (m[2] != "false" && m[1] != "enableWarnings")
        kept += (kept.empty() ? "" : " ") + m.str(1) + (m[2] == "true" ? "" : "=" + m.str(2));
      text = m.suffix();
    }
    return kept;
  }

  void Start(const Words& arguments, const Environment& environment = {}) {
    Command command = m_place.Prepared(arguments);
    command.arguments[0] = m_program;
    command.environment.insert(environment.begin(), environment.end());
    m_orv.reset(new Process(command));
  }
  void StartExport(const Words& more = {}, const Environment& environment = {}) {
    Start(Words{"export", kScene, "-o", "out.im", "--dialogs"} + more, environment);
  }

  // Steps of a user, separated by ";":
  //   options, log, question, picker, window TITLE   waits for that window
  //   click CAPTION, key KEY
  //   fill KEY TEXT     into the box that the key leads to, instead of what is in it
  //   leave CAPTION, press KEY, close   until the window has gone
  void Do(const std::string& steps) {
    static const Environment kTitles = {{"options", "Velmor Exporter Options"},
                                        {"log", "Velmor Exporter Log"},
                                        {"question", "Exporter Query"},
                                        {"picker", "Select Event File"}};
    for (const std::string& step : SplitAt(';', steps)) {
      std::istringstream words(step);
      std::string verb, key, what;
      words >> verb >> std::ws;
      if (verb == "fill") words >> key >> std::ws;
      std::getline(words, what);
      if (verb == "click") m_desktop.Click(what);
      if (verb == "key") m_desktop.Key(what);
      if (verb == "fill") m_desktop.Key(key), m_desktop.Key("ctrl+a"), m_desktop.Type(what);
      if (verb == "leave") m_desktop.Leave(m_window, [&] { m_desktop.Click(what); });
      if (verb == "press") m_desktop.Leave(m_window, [&] { m_desktop.Key(what); });
      if (verb == "close") m_desktop.Leave(m_window, [&] { m_desktop.ClickClose(m_window); });
      if (verb == "window") m_window = m_desktop.Window(what);
      if (kTitles.contains(verb)) m_window = m_desktop.Window(kTitles.at(verb));
    }
  }
  void ExpectEnd(int status) { EXPECT_EQ(m_orv->Status(), status) << m_orv->Errors(); }
  void ExpectSaidOnce(const std::string& text) {
    const std::string said = m_orv->Errors();
    EXPECT_NE(said.find(text), std::string::npos) << said;
    EXPECT_EQ(said.find(text), said.rfind(text)) << said;
  }
  void ExpectCancelled(const std::string& reason) {
    ExpectEnd(3);
    ExpectSaidOnce(reason);
    EXPECT_TRUE(m_place.Files().empty() && !fs::exists(Home() + kOptionsFile));
  }
  // Copies until what the log already shows is all.
  void ExpectLog(const std::string& text) {
    EXPECT_TRUE(WaitUntil([&] {
      m_desktop.Key("alt+c");
      return m_desktop.Clipboard() == text;
    })) << m_desktop.Clipboard();
  }

  Workplace m_place;
  Desktop& m_desktop = Desktop::Get();
  std::string m_program = Program();
  std::unique_ptr<Process> m_orv;
  std::string m_window;  // the one last waited for
};

TEST_F(Dialogs, SessionsExportAsWithoutWindows) {
  std::map<std::string, std::map<std::string, std::string>> sessions;
  std::string text = ContentOf(ORV_DIALOG_TESTS "/sessions.txt"), name;
  std::istringstream in(std::regex_replace(text, std::regex("\\{here\\}"), m_place.Here()));
  for (std::string line, key; std::getline(in, line);) {
    std::istringstream words(line);
    words >> key >> std::ws;
    if (!line.starts_with(' ')) name = key;
    if (line.starts_with(' ')) std::getline(words, sessions[name][key]);
  }
  for (auto& [title, session] : sessions) {
    SCOPED_TRACE(title);
    const Workplace plain;
    for (const auto& [file, content] : m_place.Files()) fs::remove(m_place.Path(file));
    for (const std::string file : {"events.evt", "caf\xE9.evt"})
      for (const std::string& path : {m_place.Path(file), plain.Path(file)})
        WriteContent(path, "4 Sound_Event rattle\n30 Sound_Event late\n");
    WriteOptions(session["before"]);
    StartExport(SplitAt(' ', session["with"]));
    Do("options;" + session["do"] + "; key Return; log; press Return");
    ExpectEnd(0);
    EXPECT_EQ(KeptOptions(), session["keeps"]);
    EXPECT_EQ(plain.Export(kScene, "out.im", SplitAt(' ', session["as"])).status, 0);
    EXPECT_EQ(m_place.Files().size(), plain.Files().size());
    for (const auto& [file, content] : plain.Files())
      EXPECT_TRUE(m_place.Content(file) == content) << file;
  }
}

TEST_F(Dialogs, CancellingLeavesNothingBehind) {
  for (const std::string way : {"leave Cancel", "press Escape", "close"}) {
    StartExport();
    Do("options; click &Collect textures to export folder; " + way);
    ExpectCancelled("cancelled");
  }
}

// The side files of an earlier export, in the order of the questions.
TEST_F(Dialogs, QuestionAnswersAreThoseOfItsButtons) {
  const Words sideFiles = {"livery_normal", "livery", "glass-glass", "roof", "wheel", "lamps"};
  const std::map<std::string, size_t> overwritten = {
      {"leave &Yes; question; press Return; question; leave &No; question; press Escape; question; "
       "close; question; leave Cancel; question; leave No &to All",
       2},
      {"press alt+n; question; leave Yes to &All", sideFiles.size()}};
  for (const auto& [steps, count] : overwritten) {
    for (const std::string& name : sideFiles)
      WriteContent(m_place.Path(name + ".texture.txt"), "old");
    StartExport({"--no-animation"});
    Do("options; leave &Start; question");
    EXPECT_TRUE(m_desktop.ShowsColor({"\0\0\xCC", 3})) << "it is in the icon for warnings alone";
    Do(steps + "; log; leave Close");
    ExpectEnd(0);
    for (size_t i = 0; i < sideFiles.size(); ++i)
      EXPECT_EQ(m_place.Content(sideFiles[i] + ".texture.txt") != "old", i < count) << steps;
  }
}

// An event file that is a pipe holds the export up until the test writes into it, a warning for the
// log, in which it comes to its messages.
TEST_F(Dialogs, LogIsUsedWhileTheExportRuns) {
  const std::string path = Home() + "pipe", warningColor("\x00\x52\xA0", 3);
  mkfifo(path.c_str(), 0600);
  for (const std::string button : {"Close", "&Copy to Clipboard"}) {
    WriteOptions("<m_eventFileName>" + path + "</m_eventFileName>");
    StartExport();
    Do("options; key Return; log");
    int pipe = -1;  // refused as long as nobody reads from it
    WaitUntil([&] { return (pipe = open(path.c_str(), O_WRONLY | O_NONBLOCK)) >= 0; });
    Do("click " + button);
    EXPECT_EQ(write(pipe, "no number\n", 10), 10);
    close(pipe);
    EXPECT_TRUE(WaitUntil([&] { return m_orv->Errors().ends_with("0 Errors and 1 Warnings.\n"); }));
    if (button != "Close") {
      EXPECT_TRUE(m_desktop.ShowsColor(warningColor));
      EXPECT_TRUE(WaitUntil([&] { return m_desktop.Clipboard().starts_with("Exporting...\n"); }));
      const std::string said = m_orv->Errors();  // what is before the log is the toolkit's
      ExpectLog(
          std::regex_replace(said.substr(said.find("Exporting")), std::regex("warning: |\n$"), ""));
      Do("key Escape");
    }
    ExpectEnd(0);
    EXPECT_TRUE(fs::remove(m_place.Path("out.kin")));
  }
}

TEST_F(Dialogs, AboutBox) {
  Start({"about"});
  Do("window Dialog; click Copyright (C) 2026 The OrvExporter developers; press Return");
  ExpectEnd(0);
}

// With a folder that has the plug-in as it is built, but for the windows. The report of an
// exception is a line of the log, which throws again. A window that is closed before it has shown
// its first line throws nothing.
TEST_F(Dialogs, MissingOrFailingOnesAreTold) {
  const fs::path built = fs::path(ORV_PROGRAM).parent_path(), bin = Home() + "bin";
  const fs::path assembly = bin / "OrvExporterDialogs.dll";
  m_program = bin / "orv";
  fs::create_directory(bin);
  for (const char* name : {"orv", "OrvExporter.dle"}) fs::copy_file(built / name, bin / name);
  StartExport({}, {{"DISPLAY", ""}});
  ExpectCancelled("Their library is missing: " + assembly.string());
  fs::copy_file(built / "OrvExporterDialogs.dll", assembly);
  StartExport({}, {{"DISPLAY", ""}});
  ExpectCancelled("They need an X display");
  WriteContent(bin / "libmonosgen-2.0.so.1", "no library");
  StartExport({}, {{"LD_LIBRARY_PATH", bin.string()}});
  ExpectCancelled("They need the .NET runtime Mono: " + (bin / "libmonosgen-2.0.so.1").string());
  ExpectSaidOnce("apt-get install libmonosgen-2.0-1");

  fs::copy_file(ORV_DIALOG_ASSEMBLIES "/Failing.dll", assembly,
                fs::copy_options::overwrite_existing);
  StartExport({}, {{"FAILING", "options"}});
  Do("window Velmor Exporter");
  EXPECT_TRUE(m_desktop.ShowsColor("\x46\x46\xFA")) << "it is in the icon for errors alone";
  Do("press Return");
  ExpectCancelled(kFailed);
  WriteOptions("");
  StartExport({}, {{"FAILING", "log"}});
  Do("log");
  EXPECT_TRUE(WaitUntil([&] { return m_orv->Errors().find(kFailed) != std::string::npos; }));
  Do("close");
  EXPECT_LE(m_orv->Status(), 1) << "0 when the first line was shown after the last one was logged";
  ExpectSaidOnce(kFailed);
  EXPECT_TRUE(fs::exists(m_place.Path("out.kin")));
}

TEST_F(Dialogs, LookAsRecordedAndAreSoundAlsoWithALargerFont) {
  m_program = "mono";
  Start({ORV_DIALOG_ASSEMBLIES "/Gallery.exe"});
  ExpectEnd(0);
  ExpectRecorded(m_orv->Output(), ORV_DIALOG_TESTS "/windows.txt");
}

// The second export fails before there is a log, and its summary still counts what came before.
TEST_F(Dialogs, ManyExportsInOneProcessTakeNoMore) {
  m_program = ORV_DIALOG_HOST;
  Start({});
  for (const char* log : {"Exporting...\nProgress: Reading data from the scene\n"
                          "Export cancelled - nothing to export\nNo bones to export animation\n"
                          "Export completed with 0 Errors and 2 Warnings.",
                          "Unhandled exception occurred in plug-in!\nPlug-in terminated.\n"
                          "Export completed with 1 Errors and 2 Warnings."}) {
    Do("options; press Return; log");
    ExpectLog(log);
    Do("press Return");
  }
  WaitUntil([&] { return m_desktop.Key("Return"), m_orv->Ended(); });
  EXPECT_EQ(m_orv->Status(), 0) << m_orv->Output();
}

}  // namespace
}  // namespace orv
