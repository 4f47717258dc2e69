#pragma once

#include <cstddef>
#include <memory_resource>
#include <string>
#include <string_view>
#include <unordered_set>

#include "xml/MXMLNode.h"

namespace orv {

// A document and its pool: every node, text and name comes from the two memory functions. The nodes
// live as long as the document, or until they are released.
class MXMLDocument {
 public:
  using AllocateFunction = void* (*)(size_t size, void* user);
  using FreeFunction = void (*)(void* memory, void* user);

  MXMLDocument();  // malloc and free
  MXMLDocument(AllocateFunction allocate, FreeFunction free, void* user);
  ~MXMLDocument();
  MXMLDocument(const MXMLDocument&) = delete;
  MXMLDocument& operator=(const MXMLDocument&) = delete;

  // The nameless element whose children are the document's top-level nodes. A parse replaces it.
  MXMLElement& Top() const { return *m_top; }

  // Writes the top-level nodes, and nothing of its own between them. Always true: whether the
  // bytes arrived is for the stream to know.
  bool Write(MXMLStream& stream, bool format) const;

  // Replaces the tree by what the stream holds. False on an error: the tree is then as it was and
  // ErrorText says what is wrong and where.
  bool Parse(MXMLStream& stream, size_t bufferSize);
  const char* ErrorText() const { return m_errorText.c_str(); }  // of the last failed parse

  // What the nodes need of their document.
  void* Allocate(size_t size) { return m_pool.allocate(size); }
  void Free(void* memory) { m_pool.deallocate(memory, 0); }
  char* CopyText(const char* text, size_t length);
  const char* Intern(std::string_view name);
  std::pmr::string& Scratch() { return m_scratch; }
  std::pmr::memory_resource* Pool() { return &m_pool; }

  template <class Node>
  Node* Create() {
    return new (Allocate(sizeof(Node))) Node(*this);
  }

 private:
  // The two functions in the form that the standard containers take.
  class PoolResource : public std::pmr::memory_resource {
   public:
    PoolResource(AllocateFunction allocate, FreeFunction free, void* user)
        : m_allocate(allocate), m_free(free), m_user(user) {}

   private:
    void* do_allocate(size_t size, size_t) override;
    void do_deallocate(void* memory, size_t, size_t) override { m_free(memory, m_user); }
    bool do_is_equal(const memory_resource& other) const noexcept override {
      return this == &other;
    }

    AllocateFunction m_allocate;
    FreeFunction m_free;
    void* m_user;
  };

  struct NameHash {
    using is_transparent = void;
    size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
  };

  class Builder;

  mutable PoolResource m_pool;
  std::pmr::unordered_set<std::pmr::string, NameHash, std::equal_to<>> m_names;
  std::pmr::string m_scratch;
  std::pmr::string m_errorText;
  MXMLElement* m_top;
};

}  // namespace orv
