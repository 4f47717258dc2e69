#include "xml/MXMLParser.h"

#include <gtest/gtest.h>

#include "xml/MemoryStream.h"

namespace orv {
namespace {

// Everything the parser can meet, so that every cut of it is a different moment.
constexpr const char* kAllSyntax =
    "\r\n<?xml version=\"1.0\"?> <!-- a - b -- c --->\n"
    "<r\xC3\xA9  a = \"1 &lt; &#x41;\"\n\tb.c-d=\"'&quot;&#65;\" >text &amp; &#xe9;\n"
    "<e/><e ></e\t><![CDATA[]] ]> <&>]]]>&apos;<!----><?pi ? ?><x:y _z=\"\"/></r\xC3\xA9 "
    ">\n<!--end-->";

std::string EventsOf(const std::string& text, size_t cut) {
  std::string events;
  MXMLParserCallbacks callbacks = {
      &events,
      [](void* user, const char* name, const char* const* attributes) {
        std::string& out = *static_cast<std::string*>(user);
        out += std::string("start ") + name + "\n";
        for (; *attributes; attributes += 2) {
          out += std::string("  ") + attributes[0] + "=" + attributes[1] + "\n";
        }
      },
      [](void* user) { *static_cast<std::string*>(user) += "end\n"; },
      [](void* user, MXMLContent kind, const char* content) {
        *static_cast<std::string*>(user) +=
            std::to_string(static_cast<int>(kind)) + " [" + content + "]\n";
      }};
  MXMLParser parser(callbacks);
  parser.Feed(text.data(), cut, false);
  const MXMLParser::Status status = parser.Feed(text.data() + cut, text.size() - cut, true);
  return events + (status == MXMLParser::kDone ? "done" : parser.ErrorText());
}

TEST(XmlParser, Events) {
  EXPECT_EQ(EventsOf(kAllSyntax, 0),
            "0 [xml version=\"1.0\"]\n"
            "1 [ a - b -- c -]\n"
            "start r\xC3\xA9\n  a=1 < A\n  b.c-d='\"A\n"
            "2 [text & \xE9\n]\n"
            "start e\nend\n"
            "start e\nend\n"
            "3 []] ]> <&>]]\n"
            "2 [']\n"
            "1 []\n"
            "0 [pi ? ]\n"
            "start x:y\n  _z=\nend\n"
            "end\n"
            "1 [end]\n"
            "done");
}

TEST(XmlParser, CutsChangeNothing) {
  const std::string text = kAllSyntax;
  const std::string whole = EventsOf(text, 0);
  for (size_t cut = 1; cut <= text.size(); ++cut) EXPECT_EQ(EventsOf(text, cut), whole) << cut;
}

TEST(XmlParser, Messages) {
  const struct {
    const char* text;
    const char* message;
  } cases[] = {
      {"x", "expecting '<' line 1, col 2"},
      {"\xEF\xBB\xBF<a/>", "expecting '<' line 1, col 2"},
      {"<a/>\nx", "expecting '<' line 2, col 2"},
      {"\r\r\n\rx", "expecting '<' line 2, col 3"},
      {"<a/><b/>", "already parsed document root element line 1, col 7"},
      {"<1>", "invalid name start '1' line 1, col 3"},
      {"<a =\"1\">", "invalid name start '=' line 1, col 5"},
      {"<a\"b\">", "unexpected character '\"' line 1, col 4"},
      {"<a></a$>", "unexpected character '$' line 1, col 8"},
      {"<a></a b>", "expecting '>' line 1, col 9"},
      {"<a/><!-- ", "expecting '>' line 1, col 10"},
      {"", "expecting element line 1, col 1"},
      {"<!--only-->", "expecting element line 1, col 12"},
      {"</a>", "expecting element line 1, col 3"},
      {"<a>text", "expecting element line 1, col 8"},
      {"<a b=\"", "expecting element line 1, col 7"},
      {"<!DOCTYPE a>", "expecting '-' or '[' line 1, col 4"},
      {"<!-x", "expecting '-' line 1, col 5"},
      {"<a b>", "expecting '=' line 1, col 6"},
      {"<a b='1'>", "expecting '\"' line 1, col 7"},
      {"<a/b>", "unexpected char 'b' line 1, col 5"},
      {"<a / >", "unexpected char ' ' line 1, col 6"},
      {"<a b=\"1\"c=\"2\">", "unexpected char 'c' line 1, col 10"},
      {"<a></b>", "end tag does not match start tag, line 1, col 8"},
      {"<a></ab>", "end tag does not match start tag, line 1, col 9"},
      {"<a><![CDATa[", "invalid CDATA line 1, col 12"},
      {"<![CDATA[x]]>", "cant have CDATA at top level line 1, col 10"},
      {"<a>&nbsp;</a>", "unrecognized escape sequence line 1, col 10"},
      {"<a>&;</a>", "unrecognized escape sequence line 1, col 6"},
      {"<a b=\"&nbsp;\"/>", "unrecognized escape sequence line 1, col 13"},
      {"<a>&#xZZ;</a>", "invalid character escape  sequence line 1, col 10"},
      {"<a>&#256;</a>", "invalid character escape  sequence line 1, col 10"},
      {"<a>&#-1;</a>", "invalid character escape  sequence line 1, col 9"},
      {"<a>&#x99999999999999999999;</a>", "invalid character escape  sequence line 1, col 28"},
      {"<a>&#X41;</a>", "invalid character escape  sequence line 1, col 10"},
  };
  for (const auto& [text, message] : cases) {
    for (size_t bufferSize : {1, 7, 4096}) {
      EXPECT_EQ(ErrorOf(text, bufferSize), message) << text << " by " << bufferSize;
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
