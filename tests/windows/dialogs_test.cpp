#include <filesystem>
#include <regex>

#include "ModalWindows.h"
#include "Plugin.h"
#include "TemporaryFolder.h"
#include "platform/Platform.h"

namespace orv {
namespace {

TEST(MessageBoxes, LookAndAnswerAsAskedFor) {
  const struct {
    platform::Icon icon;
    const char* shown;
    int click;
  } cases[] = {
      {platform::Icon::Error, "error|Is it so? 1", IDOK},
      {platform::Icon::Warning, "warning|Is it so? 1", IDOK},
      {platform::Icon::Information, "information|Is it so? 1", IDOK},
      {platform::Icon::Question, "question|Is it so? 6 7", IDYES},
      {platform::Icon::Question, "question|Is it so? 6 7", IDNO},
  };
  for (const auto& [icon, shown, click] : cases) {
    ModalWindows boxes("Exporter", [&, expected = shown, button = click](HWND box) {
      EXPECT_EQ(Shown(box), expected);
      EXPECT_EQ(GetWindow(box, GW_OWNER), nullptr);
      Click(box, button);
    });
    const auto buttons = click == IDOK ? platform::Buttons::Ok : platform::Buttons::YesNo;
    EXPECT_EQ(platform::ShowMessageBox("Is it so?", "Exporter", buttons, icon), click == IDYES);
    EXPECT_EQ(boxes.Count(), 1);
  }
}

TEST(MessageBoxes, AnExceptionIsShownNotPassedOn) {
  ModalWindows boxes("Exception", [](HWND box) {
    EXPECT_EQ(Shown(box), "error|Unhandled exception occurred in plug-in!\nPlug-in terminated. 1");
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
    EXPECT_EQ(Shown(box), "|Orv Exporter|" ORV_COPYRIGHT " 1002");
    EXPECT_EQ(TextOf(GetDlgItem(box, 1002)), "OK");
    SendMessageA(box, WM_COMMAND, IDOK, 0);
    SendMessageA(box, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(box));
    Click(box, 1002);
  });
  plugin.exporter->ShowAbout(nullptr);
  EXPECT_EQ(boxes.Count(), 1);
}

TEST(EventFilePicker, TakesAFileOrNone) {
  constexpr int kFileName = 0x47C, kFileType = 0x470;
  const std::string name = platform::HostExecutablePath();
  for (const int button : {IDOK, IDCANCEL}) {
    ModalWindows pickers("Pick an event file", [&](HWND picker) {
      EXPECT_EQ(TextOf(GetDlgItem(picker, kFileType)), "Event files");
      SetDlgItemTextA(picker, kFileName, name.c_str());
      Click(picker, button);
    });
    EXPECT_EQ(platform::PickEventFile(), button == IDOK ? std::optional(name) : std::nullopt);
    EXPECT_EQ(pickers.Count(), 1);
  }
}

// There is no .NET runtime where these tests run.
TEST(OwnDialogs, WithoutARuntimeTheExportIsCancelled) {
  TemporaryFolder folder;
  host::Scene scene;
  host::MemoryHost memoryHost(scene);
  const std::string settings = folder.File("settings"), name = folder.File("out.im");
  HostServices services;
  services.core = &memoryHost;
  services.settingsFolder = settings.c_str();
  Plugin plugin("");
  ASSERT_EQ(Entry<UseHostServicesFunction>("UseHostServices")(&services), 1);
  for (int run = 1; run <= 2; ++run) {
    ModalWindows boxes("Velmor Exporter", [](HWND box) {
      const std::regex text("error[|]The exporter's windows [\\s\\S]*install the .NET Framework 4");
      EXPECT_TRUE(std::regex_search(Shown(box), text)) << Shown(box);
      Click(box, IDOK);
    });
    EXPECT_EQ(plugin.exporter->DoExport(name.c_str(), nullptr, &memoryHost, FALSE, 0), 1);
    EXPECT_EQ(boxes.Count(), 1);
  }
  for (const std::string& file : {name, settings + "/Tamsk/VelmorOrvExporter/OrvExporter.xml"})
    EXPECT_FALSE(std::filesystem::exists(file)) << file;
}

}  // namespace
}  // namespace orv
