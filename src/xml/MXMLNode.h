#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <vector>

#if defined(__GNUC__)
#define ORV_XML_FORMAT(kind, text, first) __attribute__((format(kind, text, first)))
#else
#define ORV_XML_FORMAT(kind, text, first)
#endif

namespace orv {

class MXMLDocument;
class MXMLElement;
class MXMLStream;
class MXMLWriter;

// A node of a document's tree. Nodes are made by their parent element and belong to the document:
// they end by Release, with their parent, or with the document, and are never deleted. Texts are
// 8-bit and end at the first zero byte.
//
// Trees may be of any depth: nothing here recurses.
class MXMLNode {
 public:
  // A class's flags, all of which are set in nodes of that class and of the classes made from it.
  static constexpr uint32_t kFlags = 1;

  virtual void Release();

  // Null where a node has no text; may stand in the document's scratch buffer, so it is valid until
  // the next call that builds a text there.
  virtual const char* GetText() const;
  virtual void CopyFrom(const MXMLNode& other);

  // format: elements put their attributes on lines of their own where their indentation is known.
  // Returns whether every piece was written whole.
  virtual bool Write(MXMLStream& stream, bool format, MXMLWriter& writer) const = 0;

 protected:
  virtual ~MXMLNode() = default;
  MXMLNode(MXMLDocument& document, uint32_t flags)
      : m_flags(MXMLNode::kFlags | flags), m_document(&document) {}

 public:
  MXMLNode(const MXMLNode&) = delete;
  MXMLNode& operator=(const MXMLNode&) = delete;

  uint32_t Flags() const { return m_flags; }
  MXMLElement* Parent() const { return m_parent; }
  MXMLNode* Previous() const { return m_previous; }
  MXMLNode* Next() const { return m_next; }

  // This node as one of that class; null if it is none.
  template <class Node>
  Node* As() {
    return (m_flags & Node::kFlags) == Node::kFlags ? static_cast<Node*>(this) : nullptr;
  }
  template <class Node>
  const Node* As() const {
    return const_cast<MXMLNode*>(this)->As<Node>();
  }

  // The next sibling of a class.
  template <class Node>
  Node* Next() const {
    return FirstFrom<Node>(m_next);
  }

 protected:
  template <class Node>
  static Node* FirstFrom(MXMLNode* node) {
    while (node && !node->As<Node>()) node = node->m_next;
    return node ? node->As<Node>() : nullptr;
  }

  uint32_t m_flags;
  MXMLDocument* m_document;
  MXMLElement* m_parent = nullptr;
  MXMLNode* m_previous = nullptr;
  MXMLNode* m_next = nullptr;

  friend class MXMLElement;
};

// What the nodes that hold a text have in common.
class MXMLTextBase : public MXMLNode {
 public:
  const char* GetText() const override { return m_text ? m_text : ""; }
  void CopyFrom(const MXMLNode& other) override { SetText(other.GetText()); }

  // length 0: up to the terminator. The text may be this node's own, or part of it.
  void SetText(const char* text, size_t length = 0);
  void SetTextFormat(const char* format, ...) ORV_XML_FORMAT(printf, 2, 3);  // at most 1023 bytes

 protected:
  using MXMLNode::MXMLNode;
  ~MXMLTextBase() override;

 private:
  using MXMLNode::kFlags;  // no flag of its own to know it by

  char* m_text = nullptr;  // in the document's pool
};

class MXMLDeclaration : public MXMLTextBase {
 public:
  static constexpr uint32_t kFlags = MXMLNode::kFlags | 2;
  bool Write(MXMLStream& stream, bool format, MXMLWriter& writer) const override;

 private:
  friend class MXMLDocument;
  explicit MXMLDeclaration(MXMLDocument& document) : MXMLTextBase(document, kFlags) {}
};

class MXMLComment : public MXMLTextBase {
 public:
  static constexpr uint32_t kFlags = MXMLNode::kFlags | 4;
  bool Write(MXMLStream& stream, bool format, MXMLWriter& writer) const override;

 private:
  friend class MXMLDocument;
  explicit MXMLComment(MXMLDocument& document) : MXMLTextBase(document, kFlags) {}
};

class MXMLText : public MXMLTextBase {
 public:
  static constexpr uint32_t kFlags = MXMLNode::kFlags | 8;
  bool Write(MXMLStream& stream, bool format, MXMLWriter& writer) const override;
  bool IsPlain() const { return m_flags == kFlags; }  // no CDATA section

 protected:
  friend class MXMLDocument;
  explicit MXMLText(MXMLDocument& document, uint32_t flags = 0)
      : MXMLTextBase(document, kFlags | flags) {}
};

class MXMLCDATA : public MXMLText {
 public:
  static constexpr uint32_t kFlags = MXMLText::kFlags | 16;
  bool Write(MXMLStream& stream, bool format, MXMLWriter& writer) const override;

 private:
  friend class MXMLDocument;
  explicit MXMLCDATA(MXMLDocument& document) : MXMLText(document, kFlags) {}
};

struct MXMLAttribute {
  const char* name;  // in the document's name table
  char* value;       // in the document's pool; null where there is none
};

class MXMLElement : public MXMLNode {
 public:
  static constexpr uint32_t kFlags = MXMLNode::kFlags | 32;

  // The text of the text children, joined; "" without any.
  const char* GetText() const override;

  // Takes the other element's name and adds its attributes and copies of its children to what is
  // here. The other one must not hold this one.
  void CopyFrom(const MXMLNode& other) override;
  bool Write(MXMLStream& stream, bool format, MXMLWriter& writer) const override;

  // Lays the tree below out by line breaks and two blanks a level; texts that are all white space
  // go. trim: the others lose the white space at their ends. depth: 0 for the document's top.
  virtual void Format(bool trim, int depth);

  // Does to the texts what Format does, and nothing else.
  virtual void Trim(bool trim);

  const char* Name() const { return m_name; }

  MXMLElement* AddElement(const char* name);
  MXMLComment* AddComment(const char* text);
  MXMLText* AddText(const char* text, size_t length = 0);
  MXMLCDATA* AddCDATA(const char* text);
  MXMLDeclaration* AddDeclaration(const char* text);

  void SetAttribute(const char* name, const char* value);
  void SetAttributeFormat(const char* name, const char* format, ...) ORV_XML_FORMAT(printf, 3, 4);
  const std::pmr::vector<MXMLAttribute>& Attributes() const { return m_attributes; }
  const char* Attribute(const char* name, const char* defaultValue = nullptr) const;

  // sscanf on the value; returns the count of what was read, 0 where there is no value.
  int ScanAttribute(const char* name, const char* format, ...) const ORV_XML_FORMAT(scanf, 3, 4);

  MXMLNode* FirstChild() const { return m_firstChild; }
  MXMLNode* LastChild() const { return m_lastChild; }

  // for (auto* e = parent.First<MXMLElement>(); e; e = e->Next<MXMLElement>())
  template <class Node>
  Node* First() const {
    return FirstFrom<Node>(m_firstChild);
  }
  MXMLElement* FindElement(const char* name) const;

 private:
  friend class MXMLDocument;
  friend class MXMLNode;

  explicit MXMLElement(MXMLDocument& document);
  ~MXMLElement() override;

  template <class Node>
  Node* Append();
  MXMLNode* AppendSameTypeAs(const MXMLNode& other);
  void Insert(MXMLNode* child, MXMLNode* before);  // before null: at the end
  void InsertText(const char* text, MXMLNode* before);
  void Unlink(MXMLNode* child);
  void TakeChildrenOf(MXMLElement& other);

  const MXMLAttribute* FindAttribute(const char* name) const;
  void AppendAttribute(const char* name, const char* value);
  void SetParsedAttributes(const char* const* pairs);
  void CopyNameAndAttributes(const MXMLElement& other);

  template <class Visit>
  void VisitElements(int depth, Visit visit);
  void TrimTexts(bool trim);
  void IndentChildren(int depth);

  bool WriteStartTag(MXMLStream& stream, bool format, MXMLWriter& writer) const;
  bool WriteEndTag(MXMLStream& stream) const;
  size_t AttributeIndentation() const;

  const char* m_name = "";  // interned
  std::pmr::vector<MXMLAttribute> m_attributes;
  MXMLNode* m_firstChild = nullptr;
  MXMLNode* m_lastChild = nullptr;
};

}  // namespace orv
