#include "xml/MXMLNode.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "xml/MXMLDocument.h"
#include "xml/MXMLWriter.h"

namespace orv {

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

namespace {

bool WriteBetween(MXMLStream& stream, std::string_view start, const char* text,
                  std::string_view end) {
  bool whole = WritePiece(stream, start);
  whole &= WritePiece(stream, text);
  whole &= WritePiece(stream, end);
  return whole;
}

}  // namespace

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

}  // namespace orv
