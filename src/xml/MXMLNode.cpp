#include "xml/MXMLNode.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "xml/MXMLDocument.h"

namespace orv {
namespace {

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\r\n";
  const size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) + 1 - first);
}

}  // namespace

void MXMLNode::Release() {
  MXMLDocument* document = m_document;
  if (m_parent) m_parent->Unlink(this);
  this->~MXMLNode();
  document->Free(this);
}

const char* MXMLNode::GetText() const { return nullptr; }

void MXMLNode::CopyFrom(const MXMLNode&) {}

MXMLTextBase::~MXMLTextBase() {
  if (m_text) m_document->Free(m_text);
}

void MXMLTextBase::SetText(const char* text, size_t length) {
  char* old = m_text;
  if (text && length == 0) length = std::strlen(text);
  m_text = text ? m_document->CopyText(text, length) : nullptr;
  if (old) m_document->Free(old);  // not before the copy: the text may stand in it
}

void MXMLTextBase::SetTextFormat(const char* format, ...) {
  char buffer[1024] = "";
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(buffer, sizeof(buffer), format, arguments);
  va_end(arguments);
  SetText(buffer);
}

// Elements.

MXMLElement::MXMLElement(MXMLDocument& document)
    : MXMLNode(document, kFlags), m_attributes(document.Pool()) {}

MXMLElement::~MXMLElement() {
  for (const MXMLAttribute& attribute : m_attributes) {
    if (attribute.value) m_document->Free(attribute.value);
  }
  // Grandchildren move up before their parent goes, so that depth costs no stack.
  while (m_firstChild) {
    if (auto* element = m_firstChild->As<MXMLElement>()) TakeChildrenOf(*element);
    m_firstChild->Release();
  }
}

const char* MXMLElement::GetText() const {
  const MXMLText* text = First<MXMLText>();
  if (text && !text->Next<MXMLText>()) return text->GetText();
  std::pmr::string& joined = m_document->Scratch();
  joined.clear();
  for (; text; text = text->Next<MXMLText>()) joined += text->GetText();
  return joined.c_str();
}

void MXMLElement::CopyFrom(const MXMLNode& other) {
  const MXMLElement* from = other.As<MXMLElement>();
  if (!from || from == this) return;
  CopyNameAndAttributes(*from);
  MXMLElement* to = this;
  const MXMLNode* next = from->m_firstChild;
  while (next || from != &other) {
    if (!next) {
      next = from->m_next;
      from = from->m_parent;
      to = to->m_parent;
      continue;
    }
    MXMLNode* copy = to->AppendSameTypeAs(*next);
    if (const auto* element = next->As<MXMLElement>()) {
      from = element;
      to = copy->As<MXMLElement>();
      to->CopyNameAndAttributes(*from);
      next = from->m_firstChild;
    } else {
      copy->CopyFrom(*next);
      next = next->m_next;
    }
  }
}

void MXMLElement::CopyNameAndAttributes(const MXMLElement& other) {
  const bool isNew = m_attributes.empty();
  m_name = m_document->Intern(other.m_name);
  for (const MXMLAttribute& attribute : other.m_attributes) {
    if (isNew) {
      AppendAttribute(attribute.name, attribute.value);
    } else {
      SetAttribute(attribute.name, attribute.value);
    }
  }
}

// Children.

template <class Node>
Node* MXMLElement::Append() {
  Node* node = m_document->Create<Node>();
  Insert(node, nullptr);
  return node;
}

MXMLNode* MXMLElement::AppendSameTypeAs(const MXMLNode& other) {
  if (other.As<MXMLElement>()) return Append<MXMLElement>();
  if (other.As<MXMLCDATA>()) return Append<MXMLCDATA>();
  if (other.As<MXMLText>()) return Append<MXMLText>();
  if (other.As<MXMLComment>()) return Append<MXMLComment>();
  return Append<MXMLDeclaration>();
}

void MXMLElement::Insert(MXMLNode* child, MXMLNode* before) {
  MXMLNode* after = before ? before->m_previous : m_lastChild;
  child->m_parent = this;
  child->m_previous = after;
  child->m_next = before;
  (after ? after->m_next : m_firstChild) = child;
  (before ? before->m_previous : m_lastChild) = child;
}

void MXMLElement::InsertText(const char* text, MXMLNode* before) {
  auto* node = m_document->Create<MXMLText>();
  node->SetText(text);
  Insert(node, before);
}

void MXMLElement::Unlink(MXMLNode* child) {
  (child->m_previous ? child->m_previous->m_next : m_firstChild) = child->m_next;
  (child->m_next ? child->m_next->m_previous : m_lastChild) = child->m_previous;
  child->m_parent = nullptr;
  child->m_previous = child->m_next = nullptr;
}

void MXMLElement::TakeChildrenOf(MXMLElement& other) {
  if (!other.m_firstChild) return;
  for (MXMLNode* child = other.m_firstChild; child; child = child->m_next) child->m_parent = this;
  other.m_firstChild->m_previous = m_lastChild;
  (m_lastChild ? m_lastChild->m_next : m_firstChild) = other.m_firstChild;
  m_lastChild = other.m_lastChild;
  other.m_firstChild = other.m_lastChild = nullptr;
}

MXMLElement* MXMLElement::AddElement(const char* name) {
  auto* element = Append<MXMLElement>();
  element->m_name = m_document->Intern(name);
  return element;
}

MXMLComment* MXMLElement::AddComment(const char* text) {
  auto* comment = Append<MXMLComment>();
  comment->SetText(text);
  return comment;
}

MXMLText* MXMLElement::AddText(const char* text, size_t length) {
  auto* node = Append<MXMLText>();
  node->SetText(text, length);
  return node;
}

MXMLCDATA* MXMLElement::AddCDATA(const char* text) {
  auto* section = Append<MXMLCDATA>();
  section->SetText(text);
  return section;
}

MXMLDeclaration* MXMLElement::AddDeclaration(const char* text) {
  auto* declaration = Append<MXMLDeclaration>();
  declaration->SetText(text);
  return declaration;
}

MXMLElement* MXMLElement::FindElement(const char* name) const {
  MXMLElement* element = First<MXMLElement>();
  while (element && std::strcmp(element->m_name, name) != 0) element = element->Next<MXMLElement>();
  return element;
}

// Attributes.

const MXMLAttribute* MXMLElement::FindAttribute(const char* name) const {
  for (const MXMLAttribute& attribute : m_attributes) {
    if (std::strcmp(attribute.name, name) == 0) return &attribute;
  }
  return nullptr;
}

void MXMLElement::AppendAttribute(const char* name, const char* value) {
  char* copy = value ? m_document->CopyText(value, std::strlen(value)) : nullptr;
  m_attributes.push_back({m_document->Intern(name), copy});
}

void MXMLElement::SetAttribute(const char* name, const char* value) {
  auto* attribute = const_cast<MXMLAttribute*>(FindAttribute(name));
  if (!attribute) return AppendAttribute(name, value);
  char* old = attribute->value;
  attribute->value = value ? m_document->CopyText(value, std::strlen(value)) : nullptr;
  if (old) m_document->Free(old);
}

void MXMLElement::SetAttributeFormat(const char* name, const char* format, ...) {
  char buffer[1024] = "";
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(buffer, sizeof(buffer), format, arguments);
  va_end(arguments);
  SetAttribute(name, buffer);
}

// The same as SetAttribute for each pair in turn, in linear time: nobody bounds the count.
void MXMLElement::SetParsedAttributes(const char* const* pairs) {
  size_t count = 0;
  while (pairs[2 * count]) ++count;
  m_attributes.reserve(count);
  std::unordered_map<const char*, size_t> positions;  // by interned name
  for (; *pairs; pairs += 2) {
    const auto [known, isNew] =
        positions.try_emplace(m_document->Intern(pairs[0]), m_attributes.size());
    AppendAttribute(pairs[0], pairs[1]);
    if (isNew) continue;
    std::swap(m_attributes[known->second].value, m_attributes.back().value);
    m_document->Free(m_attributes.back().value);
    m_attributes.pop_back();
  }
}

const char* MXMLElement::Attribute(const char* name, const char* defaultValue) const {
  const MXMLAttribute* attribute = FindAttribute(name);
  return attribute && attribute->value ? attribute->value : defaultValue;
}

int MXMLElement::ScanAttribute(const char* name, const char* format, ...) const {
  const char* value = Attribute(name);
  if (!value) return 0;
  va_list arguments;
  va_start(arguments, format);
  const int count = std::vsscanf(value, format, arguments);
  va_end(arguments);
  return count;
}

// The two passes over the texts that only lay out.

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
