#include "xml/MXMLWriter.h"

#include <algorithm>
#include <cstdio>

#include "xml/MXMLNode.h"

namespace orv {
namespace {

constexpr std::string_view kBlanks = "        ";

bool WriteBlanks(MXMLStream& stream, size_t count) {
  bool whole = true;
  for (; count > kBlanks.size(); count -= kBlanks.size()) whole &= WritePiece(stream, kBlanks);
  return whole & WritePiece(stream, kBlanks.substr(0, count));
}

bool WriteBetween(MXMLStream& stream, std::string_view start, const char* text,
                  std::string_view end) {
  bool whole = WritePiece(stream, start);
  whole &= WritePiece(stream, text);
  whole &= WritePiece(stream, end);
  return whole;
}

}  // namespace

std::string_view MXMLWriter::Escape(std::string_view text) {
  m_escaped.clear();
  for (const char c : text) {
    const auto* entity = std::find_if(std::begin(kMXMLEntities), std::end(kMXMLEntities),
                                      [c](const MXMLEntity& e) { return e.character == c; });
    if (entity != std::end(kMXMLEntities)) {
      m_escaped += entity->escaped;
    } else if (static_cast<signed char>(c) < 32 && c != '\n' && c != '\r' && c != '\t') {
      char reference[8];
      std::snprintf(reference, sizeof(reference), "&#x%02X;", static_cast<unsigned char>(c));
      m_escaped += reference;
    } else {
      m_escaped += c;
    }
  }
  return m_escaped;
}

bool MXMLDeclaration::Write(MXMLStream& stream, bool, MXMLWriter&) const {
  return WriteBetween(stream, "<?", GetText(), "?>");
}

bool MXMLComment::Write(MXMLStream& stream, bool, MXMLWriter&) const {
  return WriteBetween(stream, "<!--", GetText(), "-->");
}

bool MXMLText::Write(MXMLStream& stream, bool, MXMLWriter& writer) const {
  return WritePiece(stream, writer.Escape(GetText()));
}

bool MXMLCDATA::Write(MXMLStream& stream, bool, MXMLWriter&) const {
  return WriteBetween(stream, "<![CDATA[", GetText(), "]]>");
}

// Depth first by the links of the tree, not by recursion.
bool MXMLElement::Write(MXMLStream& stream, bool format, MXMLWriter& writer) const {
  const MXMLNode* failed = nullptr;  // the innermost node that has failed so far
  const MXMLNode* node = this;
  bool descend = true;
  while (true) {
    const auto* element = node->As<MXMLElement>();
    bool whole;
    if (!element) {
      whole = node->Write(stream, format, writer);
    } else if (descend) {
      whole = element->WriteStartTag(stream, format, writer);
    } else {
      whole = element->WriteEndTag(stream);
    }
    if (!whole) failed = node;

    if (element && descend && element->m_firstChild) {
      node = element->m_firstChild;
      continue;
    }
    if (node == this) return failed != this;
    // A node that has failed is the last that its parent writes, and so the parent fails.
    const bool last = node == failed || !node->m_next;
    if (node == failed) failed = node->m_parent;
    node = last ? node->m_parent : node->m_next;
    descend = !last;
  }
}

bool MXMLElement::WriteStartTag(MXMLStream& stream, bool format, MXMLWriter& writer) const {
  const size_t indentation = format ? AttributeIndentation() : 0;
  bool whole = WritePiece(stream, "<");
  whole &= WritePiece(stream, m_name);
  for (const MXMLAttribute& attribute : m_attributes) {
    if (indentation == 0) {
      whole &= WritePiece(stream, " ");
    } else {
      whole &= WritePiece(stream, "\n");
      whole &= WriteBlanks(stream, indentation);
    }
    whole &= WritePiece(stream, attribute.name);
    whole &= WritePiece(stream, "=\"");
    whole &= WritePiece(stream, writer.Escape(attribute.value ? attribute.value : ""));
    whole &= WritePiece(stream, "\"");
  }
  return whole & WritePiece(stream, m_firstChild ? ">" : "/>");
}

bool MXMLElement::WriteEndTag(MXMLStream& stream) const {
  bool whole = WritePiece(stream, "</");
  whole &= WritePiece(stream, m_name);
  return whole & WritePiece(stream, ">");
}

// Two columns further in than the element itself, as far as the text before it tells; 0 when it
// does not. The first character of that text is never looked at: it is the "\r" of the line end.
// Pinned by XmlWriter.AttributeIndentation.
size_t MXMLElement::AttributeIndentation() const {
  const MXMLText* before = m_previous ? m_previous->As<MXMLText>() : nullptr;
  if (!before || !before->IsPlain()) return 0;
  const std::string_view text = before->GetText();
  const size_t end = text.find_last_not_of(" \t") + 1;  // npos + 1 is 0
  if (end > 1 && text.substr(1, end - 1).find_first_not_of(" \r\n\t") != text.npos) return 0;
  size_t count = 0;
  for (const char c : text.substr(end)) count += c == '\t' ? 2 : 1;
  return count > 0 ? count + 2 : 0;
}

}  // namespace orv
