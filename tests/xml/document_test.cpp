#include <gtest/gtest.h>

#include <cstdlib>

#include "xml/MXMLWriter.h"
#include "xml/MemoryStream.h"

namespace orv {
namespace {

// The text with every "~" as a line end.
std::string Lines(std::string text, const char* lineEnd) {
  for (size_t at; (at = text.find('~')) != text.npos;) text.replace(at, 1, lineEnd);
  return text;
}

TEST(XmlWriter, Escapes) {
  const std::pair<const char*, const char*> cases[] = {
      {"a<b & 'c'", "a&lt;b &amp; &apos;c&apos;"},
      {">\"", "&gt;&quot;"},
      {"\x07\x1F ", "&#x07;&#x1F; "},
      {"\t\n\r", "\t\n\r"},
      {"\xC3\xA9", "&#xC3;&#xA9;"},
      {"\x80\xFF\x7F", "&#x80;&#xFF;\x7F"},
  };
  for (const auto& [text, escaped] : cases) {
    MXMLDocument document;
    MXMLElement* element = document.Top().AddElement("n");
    element->SetAttribute("a", text);
    element->AddText(text);
    const std::string expected = std::string("<n a=\"") + escaped + "\">" + escaped + "</n>";
    EXPECT_EQ(WrittenBy(document), expected);
    ASSERT_TRUE(ParseText(document, expected));
    EXPECT_EQ(WrittenBy(document), expected) << "read back";
  }
}

TEST(XmlWriter, AttributeIndentation) {
  const std::pair<const char*, const char*> cases[] = {
      // before the element, and what stands before each of its attributes; "~" for a line feed
      {"\r~  ", "~    "},  {"~\t", "~    "},
      {"\r~", " "},        {"word~  ", " "},
      {"x  ", "~    "},  // the first character is not looked at
      {"    ", "~      "}, {"~               ", "~                 "},
      {"", " "},           {"<![CDATA[~  ]]>", " "},
      {"<!--x-->", " "},
  };
  for (const auto& [before, blanks] : cases) {
    const std::string text = Lines(std::string("<r>") + before + "<e", "\n");
    const std::string blank = Lines(blanks, "\n");
    MXMLDocument document;
    ASSERT_TRUE(ParseText(document, text + " a=\"1\" b=\"2\"/></r>"));
    EXPECT_EQ(WrittenBy(document, true), text + blank + "a=\"1\"" + blank + "b=\"2\"/></r>");
  }
}

TEST(XmlWriter, Formats) {
  const struct {
    const char* text;
    bool trim;
    const char* formatted;
  } cases[] = {
      {"<a> x </a>", true, "~<a>x</a>"},
      {"<a> \t\r\n</a>", false, "~<a/>"},
      {"<a><b>x</b><c><d/></c></a>", false, "~<a>~  <b>x</b>~  <c>~    <d/>~  </c>~</a>"},
      {"<a><![CDATA[x]]></a>", false, "~<a>~  <![CDATA[x]]>~</a>"},
      {"<a><![CDATA[ ]]></a>", false, "~<a/>"},
      {"<?d?><a>x<b/></a><!--e-->", false, "~<?d?>~<a>~  x~  <b/>~</a>~<!--e-->"},
      {"<a> x <b> y </b>\n</a>", true, "~<a>~  x~  <b>y</b>~</a>"},
      {"<a> x <b> y </b>\n</a>", false, "~<a>~   x ~  <b> y </b>~</a>"},
  };
  for (const auto& [text, trim, formatted] : cases) {
    MXMLDocument document;
    ASSERT_TRUE(ParseText(document, text));
    document.Top().Format(trim, 0);
    EXPECT_EQ(WrittenBy(document), Lines(formatted, "\r\n")) << text;
  }
}

TEST(XmlWriter, NodesSayWhetherTheyWereWrittenWhole) {
  const std::string text = "<?d?><a b=\"c\">t<!--x--><e/><![CDATA[y]]><e><f/></e></a>";
  MXMLDocument document;
  ASSERT_TRUE(ParseText(document, text));
  const MXMLNode* element = document.Top().FirstChild()->Next();
  MXMLWriter writer(document.Pool());
  for (size_t room = 0; room <= text.size() - 5; ++room) {
    MemoryStream stream;
    stream.room = room;
    EXPECT_EQ(element->Write(stream, false, writer), room == text.size() - 5) << room;
  }
}

TEST(XmlTree, EverythingComesFromTheDocumentsPool) {
  size_t held = 0;
  {
    MXMLDocument document(
        [](size_t size, void* user) {
          ++*static_cast<size_t*>(user);
          return std::malloc(size);
        },
        [](void* memory, void* user) {
          --*static_cast<size_t*>(user);
          std::free(memory);
        },
        &held);
    ASSERT_TRUE(ParseText(document, "<a b=\"c\" b=\"d\">t<!--x--><d/></a>"));
    EXPECT_FALSE(ParseText(document, "<a b=\"c\">t<!--x--><d>"));
    const size_t before = held;
    auto* root = document.Top().FindElement("a");
    root->AddElement("d")->AddText("text");
    root->LastChild()->Release();
    root->SetAttribute("b", "e");
    root->First<MXMLText>()->SetText("another");
    EXPECT_EQ(held, before);
  }
  EXPECT_EQ(held, 0u);
}

TEST(XmlTree, ElementsTextsAndAttributes) {
  MXMLDocument document, copy;
  ASSERT_TRUE(
      ParseText(document, "<a b=\"1\" c=\"2\" b=\"3\">t<!--x--><e f=\"0x1F 7\"/>u<e/></a>"));
  MXMLElement* element = document.Top().FindElement("a");
  EXPECT_STREQ(element->GetText(), "tu");
  EXPECT_EQ(element->FindElement("f"), nullptr);
  EXPECT_STREQ(element->Attribute("b"), "3");
  EXPECT_STREQ(element->Attribute("none", "default"), "default");
  int first = 0, second = 0;
  EXPECT_EQ(element->FindElement("e")->ScanAttribute("f", "%i %i", &first, &second), 2);
  EXPECT_EQ(first - second, 24);
  EXPECT_EQ(element->ScanAttribute("none", "%i", &first), 0);
  element->SetAttribute("b", "4");
  element->SetAttributeFormat("d", "%d%s", 5, "x");
  element->SetAttribute("c", nullptr);
  auto* text = element->First<MXMLText>();
  text->SetText("abcdef", 5);
  text->SetText(text->GetText() + 1, 3);  // its own
  text->SetTextFormat("%s!", text->GetText());
  const std::string rest = " c=\"\" d=\"5x\">bcd!<!--x--><e f=\"0x1F 7\"/>u<e/></a>";
  EXPECT_EQ(WrittenBy(document), "<a b=\"4\"" + rest);
  copy.Top().CopyFrom(document.Top());
  copy.Top().FindElement("a")->CopyFrom(*document.Top().AddElement("a"));
  EXPECT_EQ(WrittenBy(copy), "<a b=\"4\"" + rest);
  text->SetTextFormat("%2000d", 1);
  EXPECT_EQ(std::string(text->GetText()), std::string(1023, ' '));
}

}  // namespace
}  // namespace orv
