#include "platform/ExString.h"

#include <gtest/gtest.h>

namespace orv {
namespace {

TEST(ExString, NullReadsAsEmpty) {
  const ExString text(static_cast<const char*>(nullptr));
  EXPECT_STREQ(text.CStr(), "");
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_STREQ(ExString("a").Append(nullptr).CStr(), "a");
}

TEST(ExString, AppendPath) {
  const struct {
    const char* base;
    const char* component;
    bool trailingSeparator;
    const char* expected;
  } cases[] = {
      {"C:\\a", "b", false, "C:\\a/b"},
      {"C:\\a\\", "b", false, "C:\\a\\b"},
      {"a/", "b", false, "a/b"},
      {"", "b", false, "/b"},
      {"a", "", false, "a"},
      {"a/", "", false, "a/"},
      {"a", nullptr, true, "a"},
      {"a", "/b", false, "a/b"},
      {"a", "\\b", false, "a/b"},
      {"a", "//b", false, "a//b"},
      {"a", "b/", false, "a/b"},
      {"a", "b\\", false, "a/b"},
      {"a", "b//", false, "a/b/"},
      {"a", "b", true, "a/b/"},
      {"a", "b/", true, "a/b/"},
      {"a", "b\\", true, "a/b/"},
      {"a", "/", false, "a"},
      {"a", "b\\c", false, "a/b\\c"},
      {"h\xC3\xA9", "\xC3\xA9", false, "h\xC3\xA9/\xC3\xA9"},
  };
  for (const auto& [base, component, trailingSeparator, expected] : cases) {
    EXPECT_STREQ(ExString(base).AppendPath(component, trailingSeparator).CStr(), expected)
        << base << " + " << (component ? component : "null");
  }
  ExString own("ab");
  EXPECT_STREQ(own.AppendPath(own.CStr(), false).CStr(), "ab/ab");
}

TEST(ExString, Cuts) {
  const struct {
    const char* path;
    const char* withoutExtension;
    const char* withoutFileName;
    const char* fileName;
    const char* baseName;
  } cases[] = {
      {"C:\\out\\loco.IM", "C:\\out\\loco", "C:\\out", "loco.IM", "loco"},
      {"C:\\out\\loco", "C:\\out\\loco", "C:\\out", "loco", "loco"},
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
    EXPECT_EQ(BaseNamePart(c.path), c.baseName) << c.path;
  }
}

TEST(ExString, NormalizesBothSeparators) {
  EXPECT_STREQ(ExString("a/b\\c/").NormalizeSeparators('\\').CStr(), "a\\b\\c\\");
  EXPECT_STREQ(ExString("a/b\\c/").NormalizeSeparators('/').CStr(), "a/b/c/");
}

TEST(ExString, TrimsWhiteSpaceAtBothEnds) {
  const struct {
    const char* text;
    const char* expected;
  } cases[] = {
      {"\n  C:\\events\\my loco.evt \n", "C:\\events\\my loco.evt"},
      {"\t\r\n ", ""},
      {"", ""},
      {"\vkept\f", "\vkept\f"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_STREQ(ExString(text).TrimWhiteSpace().CStr(), expected);
  }
}

TEST(ExString, CaseIsIgnoredInAsciiOnly) {
  EXPECT_EQ(LowerCase("AZ[@\xC3\x89"), "az[@\xC3\x89");
  EXPECT_TRUE(EqualIgnoringCase("NoTile", "nOTILE"));
  EXPECT_FALSE(EqualIgnoringCase("notile", "notil"));
  EXPECT_FALSE(EqualIgnoringCase("\xC3\x89", "\xC3\xA9"));
  EXPECT_TRUE(BeginsWithIgnoringCase("NOTILE_sky", "notile_"));
  EXPECT_FALSE(BeginsWithIgnoringCase("note", "notile_"));
}

}  // namespace
}  // namespace orv
