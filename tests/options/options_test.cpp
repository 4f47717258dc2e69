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

bool Options::*const kFlags[] = {
    &Options::m_useDefaultColors, &Options::m_forceTxtOverwrite,  &Options::m_askTxtOverwrite,
    &Options::m_collectTextures,  &Options::m_normalMapFlipGreen, &Options::m_enableWarnings,
    &Options::m_exportGeometry,   &Options::m_exportAnimation,
};

// The persisted values in a line, for comparing.
std::string Persisted(const Options& options) {
  std::string line;
  for (const auto flag : kFlags) line += options.*flag ? '1' : '0';
  return line + " [" + options.m_eventFileName.CStr() + "]";
}

TEST(Options, TextToBool) {
  const struct {
    const char* text;
    char result;  // 't', 'f', or '=' for the fallback
  } cases[] = {
      {"true", 't'},      {"tRuEX", 't'}, {" \t\r\nTrue ", 't'}, {"tru", '='}, {"truth", '='},
      {"FALSEhood", 'f'}, {"0", 'f'},     {"01", 'f'},           {" 1", 't'},  {"2", '='},
      {"", '='},          {nullptr, '='}, {"\vtrue", '='},
  };
  for (const auto& [text, result] : cases) {
    for (const bool fallback : {false, true}) {
      EXPECT_EQ(TextToBool(text, fallback), result == '=' ? fallback : result == 't')
          << (text ? text : "null") << " else " << fallback;
    }
  }
}

TEST_F(OptionsFile, Bytes) {
  ASSERT_TRUE(Options().Save(m_path.c_str()));
  EXPECT_EQ(ContentOf(m_path),
            "\r\n<OrvExporterOptions>"
            "\r\n  <!--This file was created by the Velmor OrvExporter to remember the last "
            "configuration.\nIt is not intended, nor should there be need to hand edit this "
            "file.\nThis file will be re-created with each run.  Additional data will not be "
            "preserved.\nYou may safely delete this file and default configuration will be used.-->"
            "\r\n  <m_useDefaultColors>false</m_useDefaultColors>"
            "\r\n  <m_forceTxtOverwrite>false</m_forceTxtOverwrite>"
            "\r\n  <m_askTxtOverwrite>true</m_askTxtOverwrite>"
            "\r\n  <m_collectTextures>false</m_collectTextures>"
            "\r\n  <m_normalMapFlipGreen>false</m_normalMapFlipGreen>"
            "\r\n  <m_eventFileName/>"
            "\r\n  <m_enableWarnings>true</m_enableWarnings>"
            "\r\n  <m_exportGeometry>true</m_exportGeometry>"
            "\r\n  <m_exportAnimation>true</m_exportAnimation>"
            "\r\n</OrvExporterOptions>");
}

TEST_F(OptionsFile, RoundTrip) {
  for (const char* name : {"", "C:\\\xC3\xA9v\\a & <b> 'c'.evt"}) {
    for (const auto flag : kFlags) {
      Options saved, loaded;
      saved.*flag = !(saved.*flag);
      saved.m_eventFileName = name;
      loaded.m_eventFileName = "before";
      ASSERT_TRUE(saved.Save(m_path.c_str()));
      ASSERT_TRUE(loaded.Load(m_path.c_str()));
      EXPECT_EQ(Persisted(loaded), Persisted(saved));
    }
  }
}

TEST_F(OptionsFile, LoadsLeniently) {
  const struct {
    const char* elements;
    const char* expected;  // from the defaults, but with m_enableWarnings off and "before"
  } cases[] = {
      {"<m_exportGeometry> False </m_exportGeometry>", "00100001 [before]"},
      {"<m_exportGeometry>no</m_exportGeometry>", "00100011 [before]"},
      {"<m_enableWarnings/>", "00100011 [before]"},
      {"<m_enableWarnings>no</m_enableWarnings><m_enableWarnings>1</m_enableWarnings>",
       "00100011 [before]"},
      {"<m_collectTextures><!--x--><![CDATA[1]]></m_collectTextures>", "00110011 [before]"},
      {"<x><m_enableWarnings>1</m_enableWarnings></x>", "00100011 [before]"},
      {"<m_eventFileName>\n  C:\\events\\loco.evt \n</m_eventFileName>",
       "00100011 [C:\\events\\loco.evt]"},
      {"<m_eventFileName/>", "00100011 []"},
      {"<m_exportAnimation>0</m_exportAnimation><z/><m_useDefaultColors>1</m_useDefaultColors>",
       "10100010 [before]"},
  };
  for (const auto& [elements, expected] : cases) {
    Options options;
    options.m_enableWarnings = false;
    options.m_eventFileName = "before";
    EXPECT_TRUE(
        Load(options, "<OrvExporterOptions>" + std::string(elements) + "</OrvExporterOptions>"));
    EXPECT_EQ(Persisted(options), expected) << elements;
  }
}

TEST_F(OptionsFile, WhatIsNoOptionsFileChangesNothing) {
  Options options;
  EXPECT_FALSE(options.Load(m_path.c_str()));
  for (const char* text :
       {"", "<Options><m_enableWarnings>0</m_enableWarnings></Options>",
        "<OrvExporterOptions><m_enableWarnings>0</m_enableWarnings>",
        "<x><OrvExporterOptions><m_enableWarnings>0</m_enableWarnings></OrvExporterOptions></x>"}) {
    EXPECT_FALSE(Load(options, text)) << text;
  }
  EXPECT_EQ(Persisted(options), "00100111 []");
}

}  // namespace
}  // namespace orv
