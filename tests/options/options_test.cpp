#include "options/Options.h"

#include <gtest/gtest.h>

#include "TemporaryFolder.h"

namespace orv {
namespace {

class OptionsFile : public testing::Test {
 protected:
  bool Load(Options& options, const std::string& text) const {
    WriteContent(m_path, text);
    return options.Load(m_path.c_str());
  }

  TemporaryFolder m_folder;
  const std::string m_path = m_folder.File("OrvExporter.xml");
};

// In the order of the file.
const struct {
  const char* name;
  bool Options::*flag;
  bool initially;
} kFlags[] = {{"m_useDefaultColors", &Options::m_useDefaultColors, false},
              {"m_forceTxtOverwrite", &Options::m_forceTxtOverwrite, false},
              {"m_askTxtOverwrite", &Options::m_askTxtOverwrite, true},
              {"m_collectTextures", &Options::m_collectTextures, false},
              {"m_normalMapFlipGreen", &Options::m_normalMapFlipGreen, false},
              {"m_enableWarnings", &Options::m_enableWarnings, true},
              {"m_exportGeometry", &Options::m_exportGeometry, true},
              {"m_exportAnimation", &Options::m_exportAnimation, true}};

// The names of the flags that differ from their defaults, and of the event file.
std::string Changed(const Options& options) {
  std::string names;
  for (const auto& [name, flag, initially] : kFlags) {
    if (options.*flag != initially) names += std::string(name) + " ";
  }
  return names + options.m_eventFileName.CStr();
}

TEST(Options, TextToBool) {
  const std::pair<const char*, const char*> cases[] = {
      {"true", "t"},      {"tRuEX", "t"}, {" \t\r\nTrue ", "t"}, {"tru", ""}, {"truth", ""},
      {"FALSEhood", "f"}, {"0", "f"},     {"01", "f"},           {" 1", "t"}, {"2", ""},
      {"", ""},           {nullptr, ""},  {"\vtrue", ""}};
  for (const auto& [text, result] : cases) {
    for (const bool fallback : {false, true}) {
      EXPECT_EQ(TextToBool(text, fallback), *result ? *result == 't' : fallback)
          << (text ? text : "null") << " else " << fallback;
    }
  }
}

TEST_F(OptionsFile, EachFieldIsSavedLoadedAndReset) {
  for (const auto& [changed, field, wasOn] : kFlags) {
    Options saved, loaded;
    saved.*field = !wasOn;
    saved.m_eventFileName = "C:\\\xC3\xA9v\\a & <b>.evt ";
    ASSERT_TRUE(saved.Save(m_path.c_str()));
    std::string bytes =
        "\r\n<OrvExporterOptions>"
        "\r\n  <!--This file was created by the Velmor OrvExporter to remember the last "
        "configuration.\nIt is not intended, nor should there be need to hand edit this "
        "file.\nThis file will be re-created with each run.  Additional data will not be "
        "preserved.\nYou may safely delete this file and default configuration will be used.-->";
    for (const auto& [name, flag, initially] : kFlags) {
      if (flag == &Options::m_enableWarnings) {
        bytes +=
            "\r\n  <m_eventFileName>C:\\&#xC3;&#xA9;v\\a &amp; &lt;b&gt;.evt </m_eventFileName>";
      }
      const std::string value = (name == changed) != initially ? "true" : "false";
      bytes += std::string("\r\n  <") + name + ">" + value + "</" + name + ">";
    }
    EXPECT_EQ(ContentOf(m_path), bytes + "\r\n</OrvExporterOptions>");

    loaded.m_optimise = false;  // not in the file
    loaded.m_exportEndFrame = 9;
    loaded.m_animationStartFrame = 3;
    loaded.m_animationEndFrame = 4;
    ASSERT_TRUE(loaded.Load(m_path.c_str()));
    EXPECT_EQ(Changed(loaded) + " ", Changed(saved));
    EXPECT_FALSE(loaded.m_optimise);
    loaded.Reset();
    EXPECT_EQ(Changed(loaded) + " ", saved.m_eventFileName.CStr());
    EXPECT_TRUE(loaded.m_optimise);
    EXPECT_EQ(loaded.m_exportEndFrame, -1);
    EXPECT_EQ(loaded.m_animationEndFrame - loaded.m_animationStartFrame, 1) << "they stay";
  }
  EXPECT_FALSE(Options().Save(m_folder.File("none/x").c_str()));
}

TEST_F(OptionsFile, LoadsLeniently) {
  const std::pair<const char*, const char*> cases[] = {
      // from the defaults and "before"
      {"<m_exportGeometry> False </m_exportGeometry>", "m_exportGeometry before"},
      {"<m_exportGeometry>no</m_exportGeometry><m_enableWarnings/>", "before"},
      {"<m_enableWarnings>no</m_enableWarnings><m_enableWarnings>0</m_enableWarnings>", "before"},
      {"<m_collectTextures><!--x--><![CDATA[1]]></m_collectTextures>", "m_collectTextures before"},
      {"<x><m_enableWarnings>0</m_enableWarnings></x>", "before"},
      {"<m_eventFileName>\n  C:\\lo<!--x-->co.evt \n</m_eventFileName>", "C:\\loco.evt"},
      {"<m_eventFileName/>", ""},
      {"<m_exportAnimation>0</m_exportAnimation><z/><m_useDefaultColors>1</m_useDefaultColors>",
       "m_useDefaultColors m_exportAnimation before"},
  };
  for (const auto& [elements, changed] : cases) {
    Options options;
    options.m_eventFileName = "before";
    EXPECT_TRUE(
        Load(options, "<OrvExporterOptions>" + std::string(elements) + "</OrvExporterOptions>"));
    EXPECT_EQ(Changed(options), changed) << elements;
  }
}

TEST_F(OptionsFile, WhatIsNoOptionsFileChangesNothing) {
  Options options;
  EXPECT_FALSE(options.Load(m_path.c_str()));
  const std::string flag = "<m_enableWarnings>0</m_enableWarnings>";
  for (const std::string& text :
       {std::string(), "<Options>" + flag + "</Options>", "<OrvExporterOptions>" + flag,
        "<x><OrvExporterOptions>" + flag + "</OrvExporterOptions></x>"}) {
    EXPECT_FALSE(Load(options, text)) << text;
  }
  EXPECT_EQ(Changed(options), "");
}

}  // namespace
}  // namespace orv
