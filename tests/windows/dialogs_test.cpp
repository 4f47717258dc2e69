#include <filesystem>

#include "ModalWindows.h"
#include "Plugin.h"
#include "TemporaryFolder.h"
#include "platform/Platform.h"
#include "platform/StringTable.h"
#include "shell/MaxExportUserInterface.h"

namespace orv {
namespace {

using Strings = std::vector<std::string>;

TEST(MessageBoxes, LookAndAnswerAsAskedFor) {
  const struct {
    MessageKind kind;
    Severity severity;
    const char* caption;
    LPCSTR icon;
    std::vector<int> buttons;
    int click;
    Answer answer;
  } cases[] = {
      {MessageKind::Message,
       Severity::Information,
       "Exporter Message",
       IDI_INFORMATION,
       {IDOK},
       IDOK,
       Answer::None},
      {MessageKind::Message,
       Severity::Warning,
       "Exporter Message",
       IDI_WARNING,
       {IDOK},
       IDOK,
       Answer::None},
      {MessageKind::Message,
       Severity::Error,
       "Exporter Message",
       IDI_ERROR,
       {IDOK},
       IDOK,
       Answer::None},
      {MessageKind::YesNo,
       Severity::Error,
       "Exporter Query",
       IDI_QUESTION,
       {IDYES, IDNO},
       IDYES,
       Answer::Yes},
      {MessageKind::YesNo,
       Severity::Information,
       "Exporter Query",
       IDI_QUESTION,
       {IDYES, IDNO},
       IDNO,
       Answer::No},
  };
  host::Scene scene;
  host::MemoryHost memoryHost(scene);
  MaxExportUserInterface ui(&memoryHost);
  ui.m_enableWarnings = true;
  for (const auto& test : cases) {
    ModalWindows boxes(test.caption, [&](HWND box) {
      EXPECT_EQ(Labels(box), Strings{"Is it so?"});
      EXPECT_EQ(IconIn(box), LoadIconA(nullptr, test.icon)) << test.caption;
      EXPECT_EQ(ButtonIds(box), test.buttons);
      EXPECT_EQ(GetWindow(box, GW_OWNER), nullptr);
      Click(box, test.click);
    });
    EXPECT_EQ(ui.ShowMessage("Is it so?", test.kind, test.severity), test.answer);
    EXPECT_EQ(boxes.Count(), 1);
  }
}

TEST(MessageBoxes, AnExceptionIsShownNotPassedOn) {
  ModalWindows boxes("Exception", [](HWND box) {
    EXPECT_EQ(Labels(box),
              Strings{"Unhandled exception occurred in plug-in!\nPlug-in terminated."});
    EXPECT_EQ(IconIn(box), LoadIconA(nullptr, IDI_ERROR));
    Click(box, IDOK);
  });
  Plugin plugin("");
  plugin.dialogs.onWait = [] { throw 1; };
  host::Scene scene;
  EXPECT_EQ(plugin.Export(scene, "nothing.im"), 1);
  EXPECT_EQ(boxes.Count(), 1);
}

TEST(AboutBox, ClosesByItsButtonAlone) {
  Plugin plugin("");
  ModalWindows boxes("Dialog", [](HWND box) {
    EXPECT_EQ(Labels(box), (Strings{"Orv Exporter", ORV_COPYRIGHT}));
    EXPECT_EQ(TextOf(GetDlgItem(box, 1002)), "OK");
    SendMessageA(box, WM_COMMAND, IDOK, 0);
    SendMessageA(box, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(box));
    Click(box, 1002);
  });
  plugin.exporter->ShowAbout(nullptr);
  EXPECT_EQ(boxes.Count(), 1);
}

TEST(EventFilePicker, TakesAnExistingFileOnly) {
  constexpr int kFileName = 0x47C;
  const auto before = std::filesystem::current_path();  // picking moves it
  TemporaryFolder folder;
  const std::string name = folder.File("loco.evt");
  WriteContent(name, "");
  {
    ModalWindows pickers("Pick an event file", [&](HWND picker) {
      SetDlgItemTextA(picker, kFileName, name.c_str());
      Click(picker, IDOK);
    });
    EXPECT_EQ(platform::PickEventFile(), name);
    EXPECT_EQ(pickers.Count(), 1);
    std::filesystem::current_path(before);
  }
  ModalWindows pickers("Pick an event file", [](HWND picker) { Click(picker, IDCANCEL); });
  EXPECT_EQ(platform::PickEventFile(), std::nullopt);
  EXPECT_EQ(pickers.Count(), 1);
}

// There is no .NET runtime where these tests run.
TEST(OwnDialogs, WithoutARuntimeTheExportIsCancelled) {
  TemporaryFolder folder;
  host::Scene scene;
  host::MemoryHost memoryHost(scene);
  const std::string settings = folder.File("settings");
  HostServices services;
  services.core = &memoryHost;
  services.settingsFolder = settings.c_str();
  Plugin plugin("");
  ASSERT_EQ(Entry<UseHostServicesFunction>("UseHostServices")(&services), 1);
  for (int run = 1; run <= 2; ++run) {
    ModalWindows boxes("Velmor Exporter", [](HWND box) {
      EXPECT_NE(Labels(box).at(0).find("nothing is exported"), std::string::npos);
      EXPECT_NE(Labels(box).at(0).find("install the .NET Framework 4"), std::string::npos);
      EXPECT_EQ(IconIn(box), LoadIconA(nullptr, IDI_ERROR));
      Click(box, IDOK);
    });
    const std::string name = folder.File("out.im");
    EXPECT_EQ(plugin.exporter->DoExport(name.c_str(), nullptr, &memoryHost, FALSE, 0), 1);
    EXPECT_EQ(boxes.Count(), 1);
  }
  for (const char* name : {"out.im", "out.kin", "settings/Tamsk/VelmorOrvExporter/OrvExporter.xml"})
    EXPECT_FALSE(std::filesystem::exists(folder.File(name))) << name;
}

}  // namespace
}  // namespace orv
