#include "platform/ExString.h"

#include <gtest/gtest.h>

namespace orv {
namespace {

TEST(ExString, AppendPath) {
  const struct {
    const char *base, *component;
    bool trailingSeparator;
    const char* expected;
  } cases[] = {
      {"C:\\a", "b", false, "C:\\a/b"},
      {"C:\\a\\", "b", false, "C:\\a\\b"},
      {"a/", "b", false, "a/b"},
      {"", "b", false, "/b"},
      {"a", "", true, "a"},
      {"a", nullptr, true, "a"},
      {"a", "/b", false, "a/b"},
      {"a", "\\b", false, "a/b"},
      {"a", "b/", false, "a/b"},
      {"a", "b", true, "a/b/"},
      {"a", "/", false, "a"},
  };
  for (const auto& [base, component, trailingSeparator, expected] : cases) {
    EXPECT_STREQ(ExString(base).AppendPath(component, trailingSeparator).CStr(), expected);
  }
  ExString own("ab");
  EXPECT_STREQ(own.AppendPath(own.CStr(), false).CStr(), "ab/ab");
  EXPECT_STREQ(own.Append(nullptr).Append("\\c").NormalizeSeparators('\\').CStr(), "ab\\ab\\c");
  EXPECT_STREQ(ExString(" \t\r\n a b\v \t\r\n").TrimWhiteSpace().CStr(), "a b\v");
}

TEST(ExString, Cuts) {
  const struct {
    const char *path, *withoutExtension, *withoutFileName, *fileName, *baseName;
  } cases[] = {
      {"C:\\out\\loco.IM", "C:\\out\\loco", "C:\\out", "loco.IM", "loco"},
      {"C:\\a.b\\mesh", "C:\\a", "C:\\a.b", "mesh", "mesh"},
      {"/out/a.b.tga", "/out/a.b", "/out", "a.b.tga", "a.b"},
      {"a\\b/c.d", "a\\b/c", "a", "b/c.d", "b/c"},  // a backslash wins over a later "/"
      {"name", "name", "name", "name", "name"},
      {"", "", "", "", ""},
      {"\\x", "\\x", "", "x", "x"},
      {"folder/", "folder/", "folder", "", ""},
  };
  for (const auto& c : cases) {
    EXPECT_STREQ(ExString(c.path).StripExtension().CStr(), c.withoutExtension) << c.path;
    EXPECT_STREQ(ExString(c.path).StripFileName().CStr(), c.withoutFileName) << c.path;
    EXPECT_EQ(FileNamePart(c.path), c.fileName) << c.path;
    EXPECT_EQ(std::string(FolderPart(c.path)) + c.fileName, c.path);
    EXPECT_EQ(BaseNamePart(c.path), c.baseName) << c.path;
  }
}

TEST(ExString, CaseIsThatOfAsciiLetters) {
  EXPECT_EQ(LowerCase("@AZ[`az{\xC4"), "@az[`az{\xC4");
  EXPECT_TRUE(EqualIgnoringCase("Loco.IM", "lOCO.im"));
  EXPECT_FALSE(EqualIgnoringCase("\xC4", "\xE4") || EqualIgnoringCase("a", "ab"));
  EXPECT_TRUE(BeginsWithIgnoringCase("B.hip", "b."));
  EXPECT_FALSE(BeginsWithIgnoringCase("b", "b.") || BeginsWithIgnoringCase("a b.", "b."));
  EXPECT_TRUE(EndsWithIgnoringCase("a.KIN", ".kin") && EndsWithIgnoringCase(".Kin", ".kin"));
  EXPECT_FALSE(EndsWithIgnoringCase("kin", ".kin") || EndsWithIgnoringCase("a.kin2", ".kin"));
}

}  // namespace
}  // namespace orv
