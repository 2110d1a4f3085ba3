#include "xml/DocumentStore.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "KoXmlLib10/Exceptions.h"
#include "xml/XmlNames.h"

namespace KoXmlLib10 {

namespace {

// Blocks grow with the document up to this size, so that small documents
// (untyped content parses many) stay small and large ones make few blocks.
constexpr size_t kMaxBlockBytes = size_t(256) << 10;
// A gathering buffer that grew beyond this is given back after use.
constexpr size_t kKeptBufferBytes = size_t(64) << 10;
// Attribute lists up to this size come from the document's storage; data
// elements rarely carry more.
constexpr size_t kPooledAttributes = 4;
// What a std::string holds without an allocation of its own.
const size_t kShortStringCapacity = std::string().capacity();

// First position of a carriage return or a NUL, eight bytes at a time:
// text chunks are long and rarely hold either.
size_t FindCrOrNul(const char* p, size_t n) {
  constexpr uint64_t kOnes = 0x0101010101010101ull, kHigh = 0x8080808080808080ull;
  constexpr uint64_t kCr = 0x0D0D0D0D0D0D0D0Dull;
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    uint64_t word;
    std::memcpy(&word, p + i, 8);
    const uint64_t cr = word ^ kCr;
    if (((word - kOnes) & ~word & kHigh) | ((cr - kOnes) & ~cr & kHigh)) break;
  }
  for (; i < n; ++i)
    if (p[i] == '\r' || p[i] == '\0') return i;
  return n;
}

}  // namespace

// ---- CXmlAttributeList ---------------------------------------------------------

CXmlAttributeList* CXmlAttributeList::NewOnHeap(size_t capacity) {
  if (capacity > UINT32_MAX) throw std::bad_alloc();
  return static_cast<CXmlAttributeList*>(::operator new(Bytes(capacity)));
}

void CXmlAttributeList::DeleteFromHeap(CXmlAttributeList* list) { ::operator delete(list); }

void CXmlAttributeList::Fill(CXmlAttributeList* list, size_t capacity, CXmlAttributeList* from) {
  new (list) CXmlAttributeList();
  list->capacity = static_cast<uint32_t>(capacity);
  if (!from) return;
  std::copy(from->Items(), from->Items() + from->count, list->Items());
  list->count = from->count;
  list->view = from->view;
}

void CXmlAttributeList::Append(CXmlAttribute* attribute) {
  Items()[count++] = attribute;
  if (view) view->push_back(attribute);  // reserved by the caller
}

// ---- CSlotPool ---------------------------------------------------------------

CSlotPool::CSlotPool(size_t slotSize) : m_slotSize(std::max(slotSize, sizeof(void*))) {}

void* CSlotPool::Allocate() {
  if (m_free) {
    void* slot = m_free;
    std::memcpy(&m_free, slot, sizeof(void*));
    return slot;
  }
  if (m_next == m_end) {
    const size_t bytes = m_nextBlockSlots * m_slotSize;
    m_blocks.emplace_back(new unsigned char[bytes]);
    m_next = m_blocks.back().get();
    m_end = m_next + bytes;
    if (bytes * 2 <= kMaxBlockBytes) m_nextBlockSlots *= 2;
  }
  void* slot = m_next;
  m_next += m_slotSize;
  return slot;
}

void CSlotPool::Release(void* slot) {
  std::memcpy(slot, &m_free, sizeof(void*));
  m_free = slot;
}

void CSlotPool::FreeAll() {
  m_blocks.clear();
  m_next = m_end = nullptr;
  m_free = nullptr;
  m_nextBlockSlots = 16;
}

// ---- CByteArena ----------------------------------------------------------------

const char* CByteArena::Copy(std::string_view bytes) {
  if (static_cast<size_t>(m_end - m_next) < bytes.size()) {
    // A text larger than a block gets a block of its own; the current
    // block stays open for the texts that follow.
    if (bytes.size() > m_nextBlockSize / 4) {
      m_blocks.emplace_back(new char[bytes.size()]);
      std::memcpy(m_blocks.back().get(), bytes.data(), bytes.size());
      return m_blocks.back().get();
    }
    m_blocks.emplace_back(new char[m_nextBlockSize]);
    m_next = m_blocks.back().get();
    m_end = m_next + m_nextBlockSize;
    if (m_nextBlockSize * 2 <= kMaxBlockBytes) m_nextBlockSize *= 2;
  }
  char* copy = m_next;
  std::memcpy(copy, bytes.data(), bytes.size());
  m_next += bytes.size();
  return copy;
}

void CByteArena::FreeAll() {
  m_blocks.clear();
  m_next = m_end = nullptr;
  m_nextBlockSize = 1024;
}

// ---- CStringMap ----------------------------------------------------------------

const void* CStringMap::Find(std::string_view key, size_t hash) const {
  if (m_slots.empty()) return nullptr;
  const size_t mask = m_slots.size() - 1;
  for (size_t i = hash & mask;; i = (i + 1) & mask) {
    const Slot& slot = m_slots[i];
    if (!slot.value) return nullptr;
    if (slot.hash == hash && slot.key == key) return slot.value;
  }
}

void CStringMap::Insert(std::string_view key, size_t hash, const void* value) {
  if (2 * (m_used + 1) > m_slots.size()) Grow();
  m_keys.emplace_back(key);
  const size_t mask = m_slots.size() - 1;
  size_t i = hash & mask;
  while (m_slots[i].value) i = (i + 1) & mask;
  m_slots[i] = Slot{hash, m_keys.back(), value};
  ++m_used;
}

void CStringMap::Grow() {
  std::vector<Slot> old(std::max<size_t>(16, 2 * m_slots.size()));
  old.swap(m_slots);
  const size_t mask = m_slots.size() - 1;
  for (const Slot& slot : old) {
    if (!slot.value) continue;
    size_t i = slot.hash & mask;
    while (m_slots[i].value) i = (i + 1) & mask;
    m_slots[i] = slot;
  }
}

void CStringMap::Clear() {
  m_slots.clear();
  m_keys.clear();
  m_used = 0;
}

// ---- CXmlDocumentStore -----------------------------------------------------------

CXmlDocumentStore::CXmlDocumentStore(CXmlDocument& document)
    : m_document(document),
      m_elements(sizeof(CXmlElement)),
      m_attributes(sizeof(CXmlAttribute)),
      m_attributeLists(CXmlAttributeList::Bytes(kPooledAttributes)) {}

CXmlDocumentStore::~CXmlDocumentStore() { Clear(); }

const CXmlNodeName* CXmlDocumentStore::Name(std::string_view namespaceUri, std::string_view localName) {
  // The key spells the URI's length first, so no two pairs share one.
  const uint32_t uriLength = static_cast<uint32_t>(std::min<size_t>(namespaceUri.size(), UINT32_MAX));
  m_nameKey.assign(reinterpret_cast<const char*>(&uriLength), sizeof uriLength);
  m_nameKey.append(namespaceUri.data(), namespaceUri.size());
  m_nameKey.append(localName.data(), localName.size());
  const size_t hash = CStringMap::Hash(m_nameKey);
  if (const void* known = m_nameIndex.Find(m_nameKey, hash)) return static_cast<const CXmlNodeName*>(known);

  auto name = std::make_unique<CXmlNodeName>();
  name->namespaceUri.assign(namespaceUri.data(), namespaceUri.size());
  name->localName.assign(localName.data(), localName.size());
  name->owner = &m_document;
  name->isSchemaInstanceType = namespaceUri == XmlNames::kSchemaInstanceNamespace && localName == "type";
  m_names.reserve(m_names.size() + 1);
  m_nameIndex.Insert(m_nameKey, hash, name.get());
  m_names.push_back(std::move(name));
  return m_names.back().get();
}

CXmlElement* CXmlDocumentStore::NewElement(const CXmlNodeName* name) {
  return new (m_elements.Allocate()) CXmlElement(name, CXmlElement::InStoreTag{});
}

void CXmlDocumentStore::ReserveAttributes(CXmlElement* element, size_t count) {
  CXmlAttributeList* list = element->m_attributes;
  const size_t have = list ? list->count : 0;
  if (list && list->view) list->view->reserve(have + count);
  if (list && list->capacity >= have + count) return;
  size_t capacity = std::max(have + count, list ? 2 * size_t(list->capacity) : size_t(0));
  const bool pooled = capacity <= kPooledAttributes;
  CXmlAttributeList* grown;
  if (pooled) {
    capacity = kPooledAttributes;
    grown = static_cast<CXmlAttributeList*>(m_attributeLists.Allocate());
  } else {
    grown = CXmlAttributeList::NewOnHeap(capacity);
    NoteHeapParts(element);
  }
  CXmlAttributeList::Fill(grown, capacity, list);
  if (list) FreeList(element);
  element->m_attributes = grown;
  if (pooled)
    element->m_flags |= CXmlElement::kPooledAttributes;
  else
    element->m_flags &= ~CXmlElement::kPooledAttributes;
}

void CXmlDocumentStore::FreeList(CXmlElement* element) {
  CXmlAttributeList* list = element->m_attributes;
  list->~CXmlAttributeList();
  if (element->m_flags & CXmlElement::kPooledAttributes)
    m_attributeLists.Release(list);
  else
    CXmlAttributeList::DeleteFromHeap(list);
  element->m_attributes = nullptr;
  element->m_flags &= ~CXmlElement::kPooledAttributes;
}

CXmlAttribute* CXmlDocumentStore::AddAttribute(CXmlElement* element, const CXmlNodeName* name,
                                               std::string_view value) {
  ReserveAttributes(element, 1);
  void* slot = m_attributes.Allocate();
  CXmlAttribute* attribute;
  try {
    attribute = new (slot) CXmlAttribute(name, value);
  } catch (...) {
    m_attributes.Release(slot);
    throw;
  }
  element->m_attributes->Append(attribute);  // cannot throw: reserved
  if (value.size() > kShortStringCapacity) NoteHeapParts(element);
  if (name->isSchemaInstanceType && (element->m_flags & CXmlElement::kOpen)) RecordTypePrefix(element, value);
  return attribute;
}

void CXmlDocumentStore::ReleaseElementParts(CXmlElement* element) {
  if (element->m_flags & CXmlElement::kTextString) {
    delete reinterpret_cast<std::string*>(const_cast<char*>(element->m_text));
    element->m_text = nullptr;
    element->m_flags &= ~CXmlElement::kTextString;
  }
  if (CXmlAttributeList* list = element->m_attributes) {
    for (uint32_t i = 0; i < list->count; ++i) {
      CXmlAttribute* attribute = list->Items()[i];
      attribute->~CXmlAttribute();
      m_attributes.Release(attribute);
    }
    delete list->view;
    FreeList(element);
  }
  if (element->m_flags & CXmlElement::kTypeNamespace) m_typeNamespaces.erase(element);
  if (element->m_flags & CXmlElement::kHeapParts) {
    element->m_flags &= ~CXmlElement::kHeapParts;
    --m_heapPartElements;
  }
}

void CXmlDocumentStore::DestroySubtree(CXmlElement* root) {
  // The descendants are visited as one chain through the sibling links: an
  // element with children splices them in right behind itself, so nothing
  // recurses however deep the tree.
  root->m_nextSibling = nullptr;
  for (CXmlElement* chain = root; chain;) {
    CXmlElement* element = chain;
    if (CXmlElement* first = element->m_firstChild) {
      first->m_prevSibling->m_nextSibling = element->m_nextSibling;
      element->m_nextSibling = first;
      element->m_firstChild = nullptr;
    }
    chain = element->m_nextSibling;
    ReleaseElementParts(element);
    m_elements.Release(element);
  }
}

void CXmlDocumentStore::Clear() {
  // Everything else goes with the storage blocks.
  if (m_document.m_documentElement && m_heapPartElements > 0) DestroySubtree(m_document.m_documentElement);
  m_heapPartElements = 0;
  m_document.m_documentElement = nullptr;
  m_elements.FreeAll();
  m_attributes.FreeAll();
  m_attributeLists.FreeAll();
  m_texts.FreeAll();
  m_nameIndex.Clear();
  m_names.clear();
  m_typeNamespaces.clear();
  ForgetOpen();
  m_pending.clear();
}

void CXmlDocumentStore::ForgetOpen() {
  m_open.clear();
  m_scope.clear();
  m_unclaimedDeclarations = 0;
}

// ---- building --------------------------------------------------------------------

CXmlElement* CXmlDocumentStore::Start(const CXmlNodeName* name) {
  CXmlElement* parent = Top();
  if (m_document.m_documentElement) {
    if (!parent) throw CKoException("A document can have only one document element.");
    if (m_open.size() >= CXmlDocument::MAX_ELEMENT_DEPTH)
      throw CKoException(FormatString("The document is nested too deeply: more than %lu levels of elements.",
                                      static_cast<unsigned long>(CXmlDocument::MAX_ELEMENT_DEPTH)));
  }
  if (m_pending.size() <= m_open.size()) m_pending.resize(m_open.size() + 1);
  // Room for the push below is made before the element is linked, so that
  // the push cannot fail half-way; doubling keeps deep documents linear.
  if (m_open.size() == m_open.capacity()) m_open.reserve(std::max<size_t>(16, 2 * m_open.capacity()));
  CXmlElement* element = NewElement(name);
  if (parent)
    parent->LinkChild(element);
  else
    m_document.m_documentElement = element;
  element->m_flags |= CXmlElement::kTextPending | CXmlElement::kOpen;
  m_open.push_back(OpenElement{element, m_unclaimedDeclarations});
  m_unclaimedDeclarations = 0;
  return element;
}

void CXmlDocumentStore::Commit(CXmlElement* element, std::string& text) {
  element->m_flags &= ~CXmlElement::kTextPending;
  if (text.empty()) return;
  if (m_document.m_filter || text.size() > UINT32_MAX) {
    // Elements a filter may drop keep their text on their own, so that
    // dropping them gives the memory back.
    element->m_text = reinterpret_cast<const char*>(new std::string(text));
    element->m_flags |= CXmlElement::kTextString;
    NoteHeapParts(element);
  } else {
    element->m_text = m_texts.Copy(text);
    element->m_textLength = static_cast<uint32_t>(text.size());
  }
  text.clear();
  if (text.capacity() > kKeptBufferBytes) std::string().swap(text);
}

void CXmlDocumentStore::End(bool applyFilter) {
  if (m_open.empty()) return;
  const OpenElement top = m_open.back();
  CXmlElement* element = top.element;
  if (element->m_flags & CXmlElement::kTextPending) Commit(element, m_pending[m_open.size() - 1]);
  element->m_flags &= ~CXmlElement::kOpen;
  m_scope.resize(m_scope.size() - std::min<size_t>(top.declarations, m_scope.size()));
  m_open.pop_back();
  if (m_open.empty()) m_pending.clear();

  const CXmlDocument::ElementFilter filter = m_document.m_filter;
  // The document element is shown to the filter too; having no parent, it
  // is never dropped.
  if (!applyFilter || !filter || !filter(element) || m_open.empty()) return;
  // The element that just ended is its parent's last child: nothing can
  // follow it while it is open. Unlinking it takes constant time.
  CXmlElement* parent = m_open.back().element;
  if (parent->LastChild() != element) return;
  parent->UnlinkLastChild();
  DestroySubtree(element);
}

void CXmlDocumentStore::AppendText(CXmlElement* element, std::string_view text) {
  if (!element) return;
  const bool gathering = (element->m_flags & CXmlElement::kTextPending) && element == Top();
  std::string* pending = gathering ? &Gathered(m_open.size() - 1) : nullptr;
  while (!text.empty()) {
    const size_t stop = FindCrOrNul(text.data(), text.size());
    if (pending)
      pending->append(text.data(), stop);
    else
      element->Append(text.substr(0, stop));
    if (stop == text.size() || text[stop] == '\0') return;
    text.remove_prefix(stop + 1);
  }
}

std::string& CXmlDocumentStore::Gathered(size_t index) {
  std::string& pending = m_pending[index];
  CXmlElement* element = m_open[index].element;
  // While an element gathers, its text is either in the storage or here.
  if (element->m_textLength > 0) {
    pending.assign(element->m_text, element->m_textLength);
    element->m_text = nullptr;
    element->m_textLength = 0;
  }
  return pending;
}

bool CXmlDocumentStore::AppendIfGathering(const CXmlElement* element, std::string_view text) {
  if (!(element->m_flags & CXmlElement::kTextPending) || element != Top()) return false;
  Gathered(m_open.size() - 1).append(text.data(), text.size());
  return true;
}

void CXmlDocumentStore::FlushPending(const CXmlElement* element) {
  CXmlElement* target = const_cast<CXmlElement*>(element);
  target->m_flags &= ~CXmlElement::kTextPending;
  std::string& text = target->TextString();
  for (size_t i = m_open.size(); i-- > 0;) {
    if (m_open[i].element != element) continue;
    text.append(m_pending[i]);
    m_pending[i].clear();
    return;
  }
}

// ---- namespaces in scope -----------------------------------------------------------

void CXmlDocumentStore::Declare(std::string_view prefix, std::string_view namespaceUri) {
  m_scope.emplace_back(std::string(prefix), std::string(namespaceUri));
  ++m_unclaimedDeclarations;
  m_document.m_aliases[m_scope.back().first] = m_scope.back().second;
}

void CXmlDocumentStore::RecordTypePrefix(CXmlElement* element, std::string_view typeValue) {
  const size_t colon = typeValue.find(':');
  if (colon == std::string_view::npos) return;
  const std::string_view prefix = typeValue.substr(0, colon);
  // The innermost declaration of the prefix decides; an undeclaration
  // (xmlns="") leaves the prefix unbound.
  for (size_t i = m_scope.size(); i-- > 0;) {
    if (m_scope[i].first != prefix) continue;
    if (m_scope[i].second.empty()) return;
    m_typeNamespaces[element] = m_scope[i].second;
    element->m_flags |= CXmlElement::kTypeNamespace;
    return;
  }
  // Bound in every document without a declaration.
  if (prefix == "xml") {
    m_typeNamespaces[element] = XmlNames::kXmlNamespace;
    element->m_flags |= CXmlElement::kTypeNamespace;
  }
}

bool CXmlDocumentStore::TypeNamespace(const CXmlElement* element, std::string& namespaceUri) const {
  const auto found = m_typeNamespaces.find(element);
  if (found == m_typeNamespaces.end()) return false;
  namespaceUri = found->second;
  return true;
}

}  // namespace KoXmlLib10
