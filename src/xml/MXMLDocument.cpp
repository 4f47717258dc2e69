#include "xml/MXMLDocument.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "xml/MXMLParser.h"
#include "xml/MXMLStream.h"
#include "xml/MXMLWriter.h"

namespace orv {

// Puts what the parser finds below a new top-level element.
class MXMLDocument::Builder {
 public:
  explicit Builder(MXMLDocument& document)
      : m_top(document.Create<MXMLElement>()), m_current(m_top) {}
  ~Builder() { m_top->Release(); }
  Builder(const Builder&) = delete;
  Builder& operator=(const Builder&) = delete;

  MXMLParserCallbacks Callbacks() { return {this, StartElement, EndElement, Content}; }
  void SwapTop(MXMLElement*& top) { std::swap(m_top, top); }

 private:
  static MXMLElement*& Current(void* user) { return static_cast<Builder*>(user)->m_current; }

  static void StartElement(void* user, const char* name, const char* const* attributes) {
    MXMLElement* element = Current(user)->AddElement(name);
    element->SetParsedAttributes(attributes);
    Current(user) = element;
  }

  static void EndElement(void* user) { Current(user) = Current(user)->Parent(); }

  static void Content(void* user, MXMLContent kind, const char* text) {
    MXMLElement* parent = Current(user);
    switch (kind) {
      case MXMLContent::Declaration:
        parent->AddDeclaration(text);
        break;
      case MXMLContent::Comment:
        parent->AddComment(text);
        break;
      case MXMLContent::Text:
        parent->AddText(text);
        break;
      case MXMLContent::CDATA:
        parent->AddCDATA(text);
        break;
    }
  }

  MXMLElement* m_top;
  MXMLElement* m_current;
};

MXMLDocument::MXMLDocument()
    : MXMLDocument([](size_t size, void*) { return std::malloc(size); },
                   [](void* memory, void*) { std::free(memory); }, nullptr) {}

MXMLDocument::MXMLDocument(AllocateFunction allocate, FreeFunction free, void* user)
    : m_pool(allocate, free, user),
      m_names(&m_pool),
      m_scratch(&m_pool),
      m_errorText(&m_pool),
      m_top(Create<MXMLElement>()) {}

MXMLDocument::~MXMLDocument() { m_top->Release(); }

void* MXMLDocument::PoolResource::do_allocate(size_t size, size_t) {
  if (void* memory = m_allocate(size, m_user)) return memory;
  throw std::bad_alloc();
}

bool MXMLDocument::Write(MXMLStream& stream, bool format) const {
  MXMLWriter writer(&m_pool);
  for (const MXMLNode* node = m_top->FirstChild(); node; node = node->Next()) {
    node->Write(stream, format, writer);
  }
  return true;
}

bool MXMLDocument::Parse(MXMLStream& stream, size_t bufferSize) {
  std::pmr::vector<char> buffer(std::max<size_t>(bufferSize, 1), &m_pool);
  Builder builder(*this);
  MXMLParser parser(builder.Callbacks());
  MXMLParser::Status status = MXMLParser::kMore;
  while (status == MXMLParser::kMore) {
    const size_t count = stream.Read(buffer.data(), buffer.size());
    status = parser.Feed(buffer.data(), count, count < buffer.size());
  }
  if (status == MXMLParser::kError) {
    m_errorText = parser.ErrorText();
    return false;
  }
  builder.SwapTop(m_top);
  return true;
}

char* MXMLDocument::CopyText(const char* text, size_t length) {
  char* copy = static_cast<char*>(Allocate(length + 1));
  std::memcpy(copy, text, length);
  copy[length] = '\0';
  return copy;
}

const char* MXMLDocument::Intern(std::string_view name) {
  const auto known = m_names.find(name);
  return known != m_names.end() ? known->c_str() : m_names.emplace(name).first->c_str();
}

}  // namespace orv
