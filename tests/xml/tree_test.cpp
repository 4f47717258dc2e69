#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>

#include "xml/MemoryStream.h"

namespace orv {
namespace {

// Counts what a document has taken from its memory functions.
struct Ledger {
  size_t taken = 0;
  size_t held = 0;

  static void* Allocate(size_t size, void* user) {
    ++static_cast<Ledger*>(user)->taken;
    ++static_cast<Ledger*>(user)->held;
    return std::malloc(size);
  }
  static void Free(void* memory, void* user) {
    --static_cast<Ledger*>(user)->held;
    std::free(memory);
  }
};

TEST(XmlTree, EverythingComesFromTheDocumentsPool) {
  Ledger ledger;
  {
    MXMLDocument document(Ledger::Allocate, Ledger::Free, &ledger);
    const size_t empty = ledger.held;
    ASSERT_TRUE(ParseText(document, "<a b=\"c\">t<!--x--><d/></a>"));
    EXPECT_FALSE(ParseText(document, "<a b=\"c\">t<!--x--><d>"));
    EXPECT_GT(ledger.held, empty + 5);
    const size_t held = ledger.held;
    MXMLElement* element = document.Top().FirstChild()->As<MXMLElement>()->AddElement("d");
    element->AddText("text");
    element->Release();
    EXPECT_EQ(ledger.held, held);
  }
  EXPECT_EQ(ledger.held, 0u);
  EXPECT_GT(ledger.taken, 10u);
}

TEST(XmlTree, Flags) {
  MXMLDocument document;
  MXMLElement& top = document.Top();
  EXPECT_EQ(top.AddDeclaration("")->Flags(), 3u);
  EXPECT_EQ(top.AddComment("")->Flags(), 5u);
  EXPECT_EQ(top.AddText("")->Flags(), 9u);
  EXPECT_EQ(top.AddCDATA("")->Flags(), 25u);
  EXPECT_EQ(top.AddElement("e")->Flags(), 33u);
  size_t texts = 0;
  for (auto* text = top.First<MXMLText>(); text; text = text->Next<MXMLText>()) ++texts;
  EXPECT_EQ(texts, 2u) << "a CDATA section is a text";
  EXPECT_EQ(top.FirstChild()->As<MXMLText>(), nullptr);
}

TEST(XmlTree, TextOfAnElement) {
  const struct {
    const char* content;
    const char* text;
  } cases[] = {
      {"", ""},          {"one", "one"},      {"a<b>no</b>c<![CDATA[<]]>", "ac<"},
      {"<b>no</b>", ""}, {"<!--no-->x", "x"},
  };
  for (const auto& [content, text] : cases) {
    MXMLDocument document;
    ASSERT_TRUE(ParseText(document, "<e>" + std::string(content) + "</e>"));
    EXPECT_STREQ(document.Top().FindElement("e")->GetText(), text) << content;
  }
}

TEST(XmlTree, TextsMayBeSetFromThemselves) {
  MXMLDocument document;
  MXMLText* text = document.Top().AddText("abcdef", 5);
  EXPECT_STREQ(text->GetText(), "abcde");
  text->SetText(text->GetText() + 1, 3);
  EXPECT_STREQ(text->GetText(), "bcd");
  text->SetTextFormat("%s!", text->GetText());
  EXPECT_STREQ(text->GetText(), "bcd!");
  text->SetTextFormat("%2000d", 1);
  EXPECT_EQ(std::string(text->GetText()), std::string(1023, ' '));
  text->SetText(nullptr);
  EXPECT_STREQ(text->GetText(), "");
}

TEST(XmlTree, Attributes) {
  MXMLDocument document;
  MXMLElement* element = document.Top().AddElement("e");
  element->SetAttribute("size", "3 4");
  element->SetAttribute("none", nullptr);
  element->SetAttribute("size", element->Attribute("size") + 2);
  EXPECT_STREQ(element->Attribute("size"), "4");
  EXPECT_STREQ(element->Attribute("none", "default"), "default");
  EXPECT_STREQ(element->Attribute("missing", "default"), "default");
  int value = 0;
  EXPECT_EQ(element->ScanAttribute("size", "%d", &value), 1);
  EXPECT_EQ(value, 4);
  EXPECT_EQ(element->ScanAttribute("missing", "%d", &value), 0);
  EXPECT_EQ(WrittenBy(document), "<e size=\"4\" none=\"\"/>");
}

TEST(XmlTree, ReleaseUnlinks) {
  MXMLDocument document;
  ASSERT_TRUE(ParseText(document, "<r><a/><b><x>t</x></b><c/></r>"));
  MXMLElement* root = document.Top().FindElement("r");
  root->FindElement("b")->Release();
  EXPECT_EQ(WrittenBy(document), "<r><a/><c/></r>");
  root->FirstChild()->Release();
  root->LastChild()->Release();
  EXPECT_EQ(root->FirstChild(), nullptr);
  EXPECT_EQ(root->LastChild(), nullptr);
  root->AddElement("d");
  EXPECT_EQ(WrittenBy(document), "<r><d/></r>");
}

TEST(XmlTree, CopyFrom) {
  const std::string text =
      "<?d?><a x=\"1\"><b>t<c y=\"2\"/><![CDATA[z]]></b><!--n--><e/></a><!--end-->";
  MXMLDocument from, to;
  ASSERT_TRUE(ParseText(from, text));
  to.Top().CopyFrom(from.Top());
  EXPECT_EQ(WrittenBy(to), text);

  MXMLDocument more;
  ASSERT_TRUE(ParseText(more, "<was x=\"0\" w=\"9\">kept</was>"));
  MXMLNode* element = more.Top().FirstChild();
  element->CopyFrom(*from.Top().FindElement("a"));
  element->CopyFrom(*element);
  EXPECT_EQ(WrittenBy(more),
            "<a x=\"1\" w=\"9\">kept<b>t<c y=\"2\"/><![CDATA[z]]></b><!--n--><e/></a>");
  MXMLText* copied = more.Top().AddText("");
  copied->CopyFrom(*from.Top().FindElement("a")->FindElement("b"));
  EXPECT_STREQ(copied->GetText(), "tz");
}

TEST(XmlTree, FileStreams) {
  const std::string path = (std::filesystem::temp_directory_path() /
                            ("orv-xml-" + std::to_string(std::random_device()())))
                               .string();
  MXMLDocument document;
  document.Top().AddElement("a")->AddText("\r\n");
  {
    MXMLStreamFile out(path.c_str(), "wb");
    ASSERT_TRUE(out.IsOpen());
    document.Write(out, false);
  }
  {
    MXMLStreamFile in(path.c_str(), "rb");
    EXPECT_TRUE(document.Parse(in, 4));
    EXPECT_EQ(WrittenBy(document), "<a>\r\n</a>");
  }
  std::filesystem::remove(path);
  MXMLStreamFile missing(path.c_str(), "rb");
  EXPECT_FALSE(missing.IsOpen());
  char byte = 0;
  EXPECT_EQ(missing.Read(&byte, 1), 0u);
  EXPECT_EQ(missing.Write(&byte, 1), 0u);
  EXPECT_FALSE(document.Parse(missing, 4096));
}

}  // namespace
}  // namespace orv
