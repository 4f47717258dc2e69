#include "xml/MXMLWriter.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "xml/MemoryStream.h"

namespace orv {
namespace {

TEST(XmlWriter, Escapes) {
  const struct {
    const char* text;
    const char* escaped;
  } cases[] = {
      {"a<b & 'c'", "a&lt;b &amp; &apos;c&apos;"},
      {">\"", "&gt;&quot;"},
      {"\x07", "&#x07;"},
      {"\x1F ", "&#x1F; "},
      {"\t\n\r", "\t\n\r"},
      {"\xC3\xA9", "&#xC3;&#xA9;"},
      {"\x80\xFF\x7F", "&#x80;&#xFF;\x7F"},
      {"", ""},
  };
  for (const auto& [text, escaped] : cases) {
    MXMLDocument document;
    MXMLElement* element = document.Top().AddElement("n");
    element->SetAttribute("a", text);
    element->AddText(text);
    const std::string expected = escaped;
    EXPECT_EQ(WrittenBy(document), "<n a=\"" + expected + "\">" + expected + "</n>");
  }
}

TEST(XmlWriter, AttributeIndentation) {
  const struct {
    const char* before;
    const char* written;  // after "<e"; "~" for a line feed
  } cases[] = {
      {"\r\n  ", "~    a=\"1\"~    b=\"2\"/>"},
      {"\n\t", "~    a=\"1\"~    b=\"2\"/>"},
      {"\r\n", " a=\"1\" b=\"2\"/>"},
      {"word\n  ", " a=\"1\" b=\"2\"/>"},
      {"x  ", "~    a=\"1\"~    b=\"2\"/>"},  // the first character is not looked at
      {"    ", "~      a=\"1\"~      b=\"2\"/>"},
      {"\n              ", "~                a=\"1\"~                b=\"2\"/>"},
      {"", " a=\"1\" b=\"2\"/>"},
  };
  for (const auto& [before, written] : cases) {
    MXMLDocument document;
    MXMLElement* root = document.Top().AddElement("r");
    root->AddText(before);
    MXMLElement* element = root->AddElement("e");
    element->SetAttribute("a", "1");
    element->SetAttribute("b", "2");
    std::string expected = "<r>" + std::string(before) + "<e" + written + "</r>";
    std::replace(expected.begin(), expected.end(), '~', '\n');
    EXPECT_EQ(WrittenBy(document, true), expected);
  }

  MXMLDocument document;
  document.Top().AddCDATA("\n  ");
  document.Top().AddElement("e")->SetAttribute("a", "1");
  EXPECT_EQ(WrittenBy(document, true), "<![CDATA[\n  ]]><e a=\"1\"/>") << "CDATA tells nothing";
}

TEST(XmlWriter, Formats) {
  const struct {
    const char* text;
    bool trim;
    const char* formatted;  // "~" for "\r\n"
  } cases[] = {
      {"<a> x </a>", true, "~<a>x</a>"},
      {"<a> \t\r\n</a>", false, "~<a/>"},
      {"<a><b>x</b><c><d/></c></a>", false, "~<a>~  <b>x</b>~  <c>~    <d/>~  </c>~</a>"},
      {"<a><![CDATA[x]]></a>", false, "~<a>~  <![CDATA[x]]>~</a>"},
      {"<a><![CDATA[ ]]></a>", false, "~<a/>"},
      {"<?d?><a>x<b/></a><!--e-->", false, "~<?d?>~<a>~  x~  <b/>~</a>~<!--e-->"},
      {"<a> x <b> y </b>\n</a>", true, "~<a>~  x~  <b>y</b>~</a>"},
  };
  for (const auto& [text, trim, formatted] : cases) {
    MXMLDocument document;
    ASSERT_TRUE(ParseText(document, text));
    document.Top().Format(trim, 0);
    std::string expected = formatted;
    for (size_t at; (at = expected.find('~')) != expected.npos;) expected.replace(at, 1, "\r\n");
    EXPECT_EQ(WrittenBy(document), expected) << text;
  }
}

}  // namespace
}  // namespace orv
