#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "RecordingUserInterface.h"

namespace orv {
namespace {

TEST(Messages, CodesAreDifferentWordsWithHyphens) {
  std::set<std::string_view> codes;
  for (const Message& message : kMessages) {
    const std::string code(message.code);
    EXPECT_TRUE(std::regex_match(code, std::regex("[a-z]+(-[a-z]+)+"))) << code;
    EXPECT_TRUE(codes.insert(message.code).second) << code;
    EXPECT_FALSE(TextOf(message).empty()) << code;
  }
}

TEST(Messages, PlacesAreFilledAndSubjectsKept) {
  const std::string node = "body";
  const Finding finding = MakeFinding("bitmap-name-missing", "paint", "diffuse", node);
  EXPECT_EQ(finding.text,
            "Ignoring material map - missing bitmap name in material:paint,Map:diffuse,Mesh:body");
  EXPECT_EQ(finding.subjects,
            (std::vector<Subject>{{SubjectKind::Material, "paint"}, {SubjectKind::Node, "body"}}));
  EXPECT_EQ(finding.severity, Severity::Error);
  const char* const nothing = nullptr;
  EXPECT_EQ(MakeFinding("side-file-not-removable", nothing, "a{b}.txt").text,
            "Could not remove (null)file.\n");
  EXPECT_EQ(MakeFinding("chunks-split", size_t{3}, -4).text,
            "Mesh limits exceeded, 3 chunks split into -4 chunks.");
  EXPECT_EQ(MakeFinding("export-stopped", std::string(2000, 'x')).text, std::string(1023, 'x'));
}

TEST(ExportUserInterface, ReportsAreLoggedAndKept) {
  ExportOutcome outcome;
  outcome.animation.path = "a.kin";
  RecordingUserInterface ui;
  ui.Report("faces-missing", "lost");
  ui.m_outcome = &outcome;
  ui.Report("faces-missing", "100%s");
  ui.Report("side-file-kept", "a.txt");
  ui.Report("material-missing", "c");
  ui.LogInfo("%s", std::string(2000, 'x').c_str());
  ui.RecordFile("a.im", true, 5, "");
  ui.RecordFile("a.kin", false, 5, "disk full");
  EXPECT_EQ(ui.log, (std::vector<std::string>{"warning: Ignoring mesh - no faces for mesh:lost",
                                              "warning: Ignoring mesh - no faces for mesh:100%s",
                                              "info: Skipping existing file: 'a.txt'",
                                              "error: Ignoring mesh - Material missing for mesh:c",
                                              "info: " + std::string(1023, 'x')}));
  ASSERT_EQ(outcome.findings.size(), 3u);
  EXPECT_EQ(outcome.findings[2].code, CodeOf("material-missing"));
  EXPECT_EQ(outcome.animation.systemWhy, "disk full");
  EXPECT_EQ(outcome.animation.bytes + outcome.geometry.bytes, 0u);
}

TEST(ExportUserInterface, TexturesAreCollectedOnceInOrder) {
  RecordingUserInterface ui;
  for (const char* name : {"b.tga", "a.tga", "b.tga", "A.tga"}) ui.CollectTexture(name);
  EXPECT_EQ(ui.Textures(), (std::vector<std::string>{"b.tga", "a.tga", "A.tga"}));
}

}  // namespace
}  // namespace orv
