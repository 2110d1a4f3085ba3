#ifndef KOXMLLIB10_XML_DOCUMENTSTORE_H
#define KOXMLLIB10_XML_DOCUMENTSTORE_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "KoXmlLib10/XmlDocument.h"

namespace KoXmlLib10 {

// An element's attributes: a count and the pointers right behind this
// header, in one allocation. The vector GetAttributes hands out is made only
// when asked for and kept in step from then on.
struct CXmlAttributeList {
  uint32_t count = 0;
  uint32_t capacity = 0;
  std::vector<CXmlAttribute*>* view = nullptr;

  CXmlAttribute** Items() { return reinterpret_cast<CXmlAttribute**>(this + 1); }
  static size_t Bytes(size_t capacity) { return sizeof(CXmlAttributeList) + capacity * sizeof(CXmlAttribute*); }
  // Lists on the ordinary heap, for elements outside a document's storage
  // and for the rare element with many attributes.
  static CXmlAttributeList* NewOnHeap(size_t capacity);
  static void DeleteFromHeap(CXmlAttributeList* list);
  // A list with room for `capacity` holding what `from` holds (if given).
  static void Fill(CXmlAttributeList* list, size_t capacity, CXmlAttributeList* from);
  void Append(CXmlAttribute* attribute);  // needs room
};

// Slots of one size carved from blocks that grow with use; released slots
// are reused, and everything goes at once with the pool.
class CSlotPool {
 public:
  explicit CSlotPool(size_t slotSize);
  void* Allocate();
  void Release(void* slot);
  void FreeAll();

 private:
  size_t m_slotSize;
  size_t m_nextBlockSlots = 16;
  std::vector<std::unique_ptr<unsigned char[]>> m_blocks;
  unsigned char* m_next = nullptr;
  unsigned char* m_end = nullptr;
  void* m_free = nullptr;
};

// Bytes that live as long as the document, freed all at once.
class CByteArena {
 public:
  const char* Copy(std::string_view bytes);
  void FreeAll();

 private:
  size_t m_nextBlockSize = 1024;
  std::vector<std::unique_ptr<char[]>> m_blocks;
  char* m_next = nullptr;
  char* m_end = nullptr;
};

// String keys to pointers, with lookups by view (no allocation on a hit).
// Keys are copied once, on insertion.
class CStringMap {
 public:
  const void* Find(std::string_view key, size_t hash) const;
  void Insert(std::string_view key, size_t hash, const void* value);
  void Clear();
  static size_t Hash(std::string_view key) { return std::hash<std::string_view>()(key); }

 private:
  struct Slot {
    size_t hash = 0;
    std::string_view key;
    const void* value = nullptr;
  };
  void Grow();
  std::vector<Slot> m_slots;
  size_t m_used = 0;
  std::deque<std::string> m_keys;
};

// Everything a document's tree is made of and the state of a load in
// progress: node storage, the names shared by the nodes, the texts, the open
// elements with the text each is gathering, and the namespace declarations
// in scope.
class CXmlDocumentStore {
 public:
  explicit CXmlDocumentStore(CXmlDocument& document);
  ~CXmlDocumentStore();
  CXmlDocumentStore(const CXmlDocumentStore&) = delete;
  CXmlDocumentStore& operator=(const CXmlDocumentStore&) = delete;

  // The shared name for a namespace URI and local name.
  const CXmlNodeName* Name(std::string_view namespaceUri, std::string_view localName);

  // ---- nodes ----
  CXmlElement* NewElement(const CXmlNodeName* name);
  CXmlAttribute* AddAttribute(CXmlElement* element, const CXmlNodeName* name, std::string_view value);
  void ReserveAttributes(CXmlElement* element, size_t count);
  // Frees every node of a subtree that is no longer linked anywhere.
  void DestroySubtree(CXmlElement* root);
  // Frees everything: the tree, the load state, the names.
  void Clear();
  // Notes that a stored element holds a part (a text string, a long
  // attribute value, a vector of attributes) that must be freed on its own.
  // While no element does, freeing the document skips walking the tree.
  void NoteHeapParts(CXmlElement* element) {
    if (element->m_flags & CXmlElement::kHeapParts) return;
    element->m_flags |= CXmlElement::kHeapParts;
    ++m_heapPartElements;
  }

  // ---- building ----
  CXmlElement* Start(const CXmlNodeName* name);
  // Ends the innermost open element; the element filter applies when asked.
  void End(bool applyFilter);
  CXmlElement* Top() const { return m_open.empty() ? nullptr : m_open.back().element; }
  size_t OpenCount() const { return m_open.size(); }
  void ForgetOpen();
  // Appends text to an element, leaving out carriage returns and stopping
  // at a NUL.
  void AppendText(CXmlElement* element, std::string_view text);
  // Appends character data read for the innermost open element. `plain`
  // tells that the text holds no carriage return and no NUL.
  void AppendToTop(std::string_view text, bool plain) {
    const size_t depth = m_open.size();
    if (!plain || depth == 0 || !(m_open.back().element->m_flags & CXmlElement::kTextPending)) {
      AppendText(Top(), text);
      return;
    }
    // Most elements get their text in one piece: it goes straight to the
    // storage, unless a filter may drop the element and free it.
    CXmlElement* top = m_open.back().element;
    if (top->m_textLength == 0 && !m_document.m_filter && m_pending[depth - 1].empty() && text.size() <= UINT32_MAX) {
      top->m_text = m_texts.Copy(text);
      top->m_textLength = static_cast<uint32_t>(text.size());
      return;
    }
    Gathered(depth - 1).append(text.data(), text.size());
  }
  // Appends to the text being gathered for the innermost open element;
  // false when `element` is not that element.
  bool AppendIfGathering(const CXmlElement* element, std::string_view text);
  // Moves text still being gathered for an open element into the element.
  void FlushPending(const CXmlElement* element);

  // ---- namespaces in scope ----
  // A declaration read before the start of the element it belongs to.
  void Declare(std::string_view prefix, std::string_view namespaceUri);
  void RecordTypePrefix(CXmlElement* element, std::string_view typeValue);
  bool TypeNamespace(const CXmlElement* element, std::string& namespaceUri) const;
  void ForgetTypeNamespace(const CXmlElement* element) { m_typeNamespaces.erase(element); }

 private:
  struct OpenElement {
    CXmlElement* element;
    uint32_t declarations;  // namespace declarations it brought into scope
  };
  // The text gathered for the open element at `index`: a first piece that
  // went straight to the storage moves here when more follows.
  std::string& Gathered(size_t index);
  void ReleaseElementParts(CXmlElement* element);
  void FreeList(CXmlElement* element);
  void Commit(CXmlElement* element, std::string& text);

  CXmlDocument& m_document;
  CSlotPool m_elements;
  CSlotPool m_attributes;
  CSlotPool m_attributeLists;  // lists of up to kPooledAttributes
  size_t m_heapPartElements = 0;
  CByteArena m_texts;
  CStringMap m_nameIndex;
  std::vector<std::unique_ptr<CXmlNodeName>> m_names;
  std::string m_nameKey;

  std::vector<OpenElement> m_open;
  // Text gathered per open element, by depth; kept for reuse.
  std::vector<std::string> m_pending;
  std::vector<std::pair<std::string, std::string>> m_scope;
  uint32_t m_unclaimedDeclarations = 0;
  std::unordered_map<const CXmlElement*, std::string> m_typeNamespaces;
};

}  // namespace KoXmlLib10

#endif
