#include <gtest/gtest.h>

#include "xml/MemoryStream.h"

namespace orv {
namespace {

// Everything the parser can meet, and what a write then makes of it.
constexpr const char* kAllSyntax =
    "\r\n<?xml version=\"1.0\"?> <!-- a - b -- c --->\n"
    "<r\xC3\xA9  a = \"1 &lt; &#x41;\"\n\tb.c-d=\"'&quot;&#65;\" >text &amp; &#xe9;\n"
    "<e/><e ></e\t><![CDATA[]] ]> <&>]]]>&apos;<!----><?pi ? ?><x:y _z=\"\"/></r\xC3\xA9 "
    ">\n<!--end-->";
constexpr const char* kRewritten =
    "<?xml version=\"1.0\"?><!-- a - b -- c --->"
    "<r\xC3\xA9 a=\"1 &lt; A\" b.c-d=\"&apos;&quot;A\">text &amp; &#xE9;\n"
    "<e/><e/><![CDATA[]] ]> <&>]]]>&apos;<!----><?pi ? ?><x:y _z=\"\"/></r\xC3\xA9><!--end-->";

TEST(XmlParser, PiecesOfAnySizeGiveTheSameTree) {
  for (size_t size = 1; size <= std::string(kAllSyntax).size() + 1; ++size) {
    MXMLDocument document;
    ASSERT_TRUE(ParseText(document, kAllSyntax, size)) << document.ErrorText();
    EXPECT_EQ(WrittenBy(document), kRewritten) << size;
  }
}

// "text => message".
constexpr const char* kRefused[] = {
    "x => expecting '<' line 1, col 2",
    "\xEF\xBB\xBF<a/> => expecting '<' line 1, col 2",
    "\r\r\n\rx => expecting '<' line 2, col 3",
    "<a/><b/> => already parsed document root element line 1, col 7",
    "<1> => invalid name start '1' line 1, col 3",
    "<a\"b\"> => unexpected character '\"' line 1, col 4",
    "<a></a$> => unexpected character '$' line 1, col 8",
    "<a></a b> => expecting '>' line 1, col 9",
    "<a/><!--  => expecting '>' line 1, col 10",
    " => expecting element line 1, col 1",
    "<!--only--> => expecting element line 1, col 12",
    "</a> => expecting element line 1, col 3",
    "<a>text => expecting element line 1, col 8",
    "<a b=\" => expecting element line 1, col 7",
    "<!DOCTYPE a> => expecting '-' or '[' line 1, col 4",
    "<!-x => expecting '-' line 1, col 5",
    "<a b> => expecting '=' line 1, col 6",
    "<a b='1'> => expecting '\"' line 1, col 7",
    "<a/b> => unexpected char 'b' line 1, col 5",
    "<a / > => unexpected char ' ' line 1, col 6",
    "<a b=\"1\"c=\"2\"> => unexpected char 'c' line 1, col 10",
    "<a></b> => end tag does not match start tag, line 1, col 8",
    "<a><![CDATa[ => invalid CDATA line 1, col 12",
    "<![CDATA[x]]> => cant have CDATA at top level line 1, col 10",
    "<a>&nbsp;</a> => unrecognized escape sequence line 1, col 10",
    "<a>&#xZZ;</a> => invalid character escape  sequence line 1, col 10",
    "<a>&#256;</a> => invalid character escape  sequence line 1, col 10",
    "<a>&#-1;</a> => invalid character escape  sequence line 1, col 9",
    "<a>&#X41;</a> => invalid character escape  sequence line 1, col 10",
};

TEST(XmlParser, Messages) {
  for (const std::string row : kRefused) {
    const size_t arrow = row.find(" => ");
    for (const size_t bufferSize : {1, 7, 4096}) {
      EXPECT_EQ(ErrorOf(row.substr(0, arrow), bufferSize), row.substr(arrow + 4)) << bufferSize;
    }
  }
}

TEST(XmlParser, FailureLeavesTheTreeAndSuccessReplacesIt) {
  MXMLDocument document;
  ASSERT_TRUE(ParseText(document, "<old/>"));
  EXPECT_FALSE(ParseText(document, "<a><b></a>"));
  EXPECT_EQ(WrittenBy(document), "<old/>");
  EXPECT_STREQ(document.ErrorText(), "end tag does not match start tag, line 1, col 11");
  EXPECT_TRUE(ParseText(document, "<new/>"));
  EXPECT_EQ(WrittenBy(document), "<new/>");
}

TEST(XmlParser, DepthWithoutLimit) {
  constexpr size_t kCount = 100'000;
  std::string deep, closing;
  for (size_t i = 0; i < kCount; ++i) {
    deep += "<a>";
    closing += "</a>";
  }
  deep += "x" + closing;

  MXMLDocument document;
  ASSERT_TRUE(ParseText(document, deep));
  EXPECT_EQ(WrittenBy(document), deep);
  document.Top().Trim(true);
  MXMLDocument copy;
  copy.Top().CopyFrom(document.Top());
  EXPECT_EQ(WrittenBy(copy), deep);
  EXPECT_EQ(ErrorOf(deep.substr(0, 3 * kCount)), "expecting element line 1, col 300001");
}

}  // namespace
}  // namespace orv
