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

TEST(XmlWriter, EveryKindOfNode) {
  MXMLDocument document;
  document.Top().AddDeclaration("xml version=\"1.0\"");
  document.Top().AddComment(" a & b ");
  MXMLElement* element = document.Top().AddElement("n");
  element->SetAttribute("a", "1");
  element->SetAttributeFormat("b", "%d", 3);
  element->SetAttributeFormat("b", "%d", 2);
  element->AddElement("empty");
  element->AddCDATA("<&>\xE9");
  EXPECT_EQ(WrittenBy(document),
            "<?xml version=\"1.0\"?><!-- a & b -->"
            "<n a=\"1\" b=\"2\"><empty/><![CDATA[<&>\xE9]]></n>");
  EXPECT_EQ(WrittenBy(MXMLDocument()), "");
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
    EXPECT_EQ(WrittenBy(document, false), "<r>" + std::string(before) + "<e a=\"1\" b=\"2\"/></r>");
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
      {"<a/>", false, "~<a/>"},
      {"<a> x </a>", false, "~<a> x </a>"},
      {"<a> x </a>", true, "~<a>x</a>"},
      {"<a> \t\r\n</a>", false, "~<a/>"},
      {"<a><b>x</b><c><d/></c></a>", false, "~<a>~  <b>x</b>~  <c>~    <d/>~  </c>~</a>"},
      {"<a><![CDATA[x]]></a>", false, "~<a>~  <![CDATA[x]]>~</a>"},
      {"<a><![CDATA[ ]]></a>", false, "~<a/>"},
      {"<a><!--c--></a>", false, "~<a>~  <!--c-->~</a>"},
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
    if (!trim) continue;
    ASSERT_TRUE(ParseText(document, expected)) << text;
    document.Top().Format(trim, 0);
    EXPECT_EQ(WrittenBy(document), expected) << text << ": a second time changes nothing";
  }
}

TEST(XmlWriter, TrimInsertsNothing) {
  MXMLDocument document;
  ASSERT_TRUE(ParseText(document, "<a> x <b>\n y<c> </c></b></a>"));
  document.Top().Trim(false);
  EXPECT_EQ(WrittenBy(document), "<a> x <b>\n y<c/></b></a>");
  document.Top().Trim(true);
  EXPECT_EQ(WrittenBy(document), "<a>x<b>y<c/></b></a>");
}

// Takes all but the pieces that hold a given text.
class FullStream : public MemoryStream {
 public:
  explicit FullStream(std::string refused) : m_refused(std::move(refused)) {}
  size_t Write(const void* buffer, size_t length) override {
    if (std::string(static_cast<const char*>(buffer), length) == m_refused) return 0;
    return MemoryStream::Write(buffer, length);
  }

 private:
  std::string m_refused;
};

TEST(XmlWriter, AnElementStopsAtTheFirstChildThatFails) {
  const struct {
    const char* refused;
    const char* written;
  } cases[] = {
      {"one", "<a><b></b></a>"},     // neither b's nor a's other children
      {"b", "<a><>one<c/></></a>"},  // b fails, yet writes its own children
      {"c", "<a><b>one</></b></a>"},
      {"</", "<a><b>one<c/>b>a>"},
      {"nothing", "<a><b>one<c/></b><d/></a>"},
  };
  for (const auto& [refused, written] : cases) {
    MXMLDocument document;
    ASSERT_TRUE(ParseText(document, "<a><b>one<c/></b><d/></a>"));
    FullStream stream(refused);
    MXMLWriter writer(document.Pool());
    const MXMLNode* root = document.Top().FirstChild();
    EXPECT_EQ(root->Write(stream, false, writer), std::string(refused) == "nothing");
    EXPECT_EQ(stream.written, written) << refused;
    EXPECT_TRUE(document.Write(stream, false));
  }
}

}  // namespace
}  // namespace orv
