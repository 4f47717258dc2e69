// The two passes over the texts that only lay out.
#include <string>
#include <string_view>
#include <utility>

#include "xml/MXMLDocument.h"
#include "xml/MXMLNode.h"

namespace orv {
namespace {

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\r\n";
  const size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) + 1 - first);
}

}  // namespace

// Visits this element and those below it, parents first. The visitor may change the children of
// the element it is given.
template <class Visit>
void MXMLElement::VisitElements(int depth, Visit visit) {
  MXMLElement* element = this;
  while (true) {
    visit(*element, depth);
    MXMLElement* next = element->First<MXMLElement>();
    if (next) ++depth;
    while (!next && element != this) {
      next = element->Next<MXMLElement>();
      if (next) break;
      element = element->m_parent;
      --depth;
    }
    if (!next) return;
    element = next;
  }
}

void MXMLElement::Format(bool trim, int depth) {
  VisitElements(depth, [trim](MXMLElement& element, int elementDepth) {
    element.TrimTexts(trim);
    element.IndentChildren(elementDepth);
  });
}

void MXMLElement::Trim(bool trim) {
  VisitElements(0, [trim](MXMLElement& element, int) { element.TrimTexts(trim); });
}

void MXMLElement::TrimTexts(bool trim) {
  for (MXMLText* text = First<MXMLText>(); text;) {
    MXMLText* current = std::exchange(text, text->Next<MXMLText>());
    const std::string_view whole = current->GetText();
    const std::string_view rest = Trimmed(whole);
    if (rest.empty()) {
      current->Release();
    } else if (trim && rest.size() < whole.size()) {
      current->SetText(rest.data(), rest.size());
    }
  }
}

void MXMLElement::IndentChildren(int depth) {
  if (!m_firstChild) return;
  const auto* onlyText = m_firstChild == m_lastChild ? m_firstChild->As<MXMLText>() : nullptr;
  if (onlyText && onlyText->IsPlain()) return;  // stays on the element's line

  std::pmr::string& indentation = m_document->Scratch();
  indentation = "\r\n";
  if (depth >= 1) {
    indentation.append(2 * static_cast<size_t>(depth - 1), ' ');
    InsertText(indentation.c_str(), nullptr);  // before the end tag
    indentation += "  ";
  }
  MXMLNode* const closing = depth >= 1 ? m_lastChild : nullptr;
  for (MXMLNode* child = m_firstChild; child != closing; child = child->m_next) {
    InsertText(indentation.c_str(), child);
  }
}

}  // namespace orv
