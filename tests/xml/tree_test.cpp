#include <gtest/gtest.h>

#include <cstdlib>

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

}  // namespace
}  // namespace orv
