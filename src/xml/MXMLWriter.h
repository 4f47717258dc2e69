#pragma once

#include <memory_resource>
#include <string>
#include <string_view>

#include "xml/MXMLStream.h"

namespace orv {

struct MXMLEntity {
  std::string_view name;
  std::string_view escaped;
  char character;
};

inline constexpr MXMLEntity kMXMLEntities[] = {
    {"apos", "&apos;", '\''}, {"amp", "&amp;", '&'},   {"gt", "&gt;", '>'},
    {"lt", "&lt;", '<'},      {"quot", "&quot;", '"'},
};

// What the nodes share while a document is being written: the buffer for escaped texts.
class MXMLWriter {
 public:
  explicit MXMLWriter(std::pmr::memory_resource* pool) : m_escaped(pool) {}

  // Valid until the next call. Every byte from 0x80 on becomes a character reference, as one below
  // 0x20 does: bytes are taken as signed. Pinned by XmlWriter.Escapes.
  std::string_view Escape(std::string_view text);

 private:
  std::pmr::string m_escaped;
};

// Returns whether the piece was written whole.
inline bool WritePiece(MXMLStream& stream, std::string_view piece) {
  return stream.Write(piece.data(), piece.size()) == piece.size();
}

}  // namespace orv
