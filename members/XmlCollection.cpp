#include "KoXmlLib10/XmlCollection.h"

#include <cassert>
#include <memory>

#include "KoXmlLib10/Exceptions.h"
#include "members/MembersMessages.h"

namespace KoXmlLib10 {

namespace {

// A fresh node holding its own reference to `item` (a null item stays null).
std::unique_ptr<CNode> MakeNode(CXmlObjectBase* item) {
  auto node = std::make_unique<CNode>();
  node->item = item;
  if (item) item->AddRef();
  return node;
}

}  // namespace

CXmlCollection::CXmlCollection() = default;

CXmlCollection::CXmlCollection(const char* elementName, const char* elementNamespace, int minOccurs,
                               int maxOccurs)
    : CXmlCollectionBase(elementName, elementNamespace, minOccurs, maxOccurs) {}

CXmlCollection::~CXmlCollection() {
  // Listeners are told about the removals; one that throws must not take the
  // process down from a destructor, so the rest goes without events.
  try {
    Clear();
  } catch (...) {
  }
  while (m_head) {
    CNode* node = m_head;
    m_head = node->next;
    if (node->item) node->item->Release();
    delete node;
  }
}

int CXmlCollection::GetCount() const { return m_count; }

void CXmlCollection::Clear() {
  while (GetCount() > 0) Remove(0);
}

void CXmlCollection::Remove(int index) { RemoveNode(GetNodeAtIndex(index)); }

// ---- insertion ------------------------------------------------------------------

void CXmlCollection::AppendItem(CXmlObjectBase* item) {
  FireOnCollectionAdd(item);
  CNode* node = MakeNode(item).release();
  node->previous = m_tail;
  if (m_tail)
    m_tail->next = node;
  else
    m_head = node;
  m_tail = node;
  ++m_count;
  FireOnCollectionAddComplete(item);
  FireOnCollectionChange();
}

void CXmlCollection::PrependItem(CXmlObjectBase* item) {
  FireOnCollectionAdd(item);
  CNode* node = MakeNode(item).release();
  node->next = m_head;
  if (m_head)
    m_head->previous = node;
  else
    m_tail = node;
  m_head = node;
  ++m_count;
  FireOnCollectionAddComplete(item);
  FireOnCollectionChange();
}

void CXmlCollection::AddItemAt(int index, CXmlObjectBase* item) {
  if (index < 0 || index > m_count) throw CKoInvalidParamException(msg::kIndexOutOfRange);
  if (index == m_count) {
    AppendItem(item);
    return;
  }
  FireOnCollectionAdd(item);
  InsertBefore(GetNodeAtIndex(index), item);
}

void CXmlCollection::AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
  if (!existing) {
    AppendItem(item);
    return;
  }
  FireOnCollectionAdd(item);
  InsertBefore(GetNodeForItem(existing), item);
}

void CXmlCollection::AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item) {
  if (!existing) {
    PrependItem(item);
    return;
  }
  FireOnCollectionAdd(item);
  CNode* at = GetNodeForItem(existing);
  CNode* node = MakeNode(item).release();
  node->previous = at;
  node->next = at->next;
  if (at->next)
    at->next->previous = node;
  else
    m_tail = node;
  at->next = node;
  ++m_count;
  FireOnCollectionAddComplete(item);
  FireOnCollectionChange();
}

// The add event has been fired by the caller.
void CXmlCollection::InsertBefore(CNode* at, CXmlObjectBase* item) {
  assert(at);
  CNode* node = MakeNode(item).release();
  node->next = at;
  node->previous = at->previous;
  if (at->previous)
    at->previous->next = node;
  else
    m_head = node;
  at->previous = node;
  ++m_count;
  FireOnCollectionAddComplete(item);
  FireOnCollectionChange();
}

// ---- lookup ------------------------------------------------------------------------

CNode* CXmlCollection::GetNodeAtIndex(int index) const {
  if (index < 0 || index > GetCount() - 1)
    throw CKoInvalidParamException(FormatString(msg::kIndexOutOfRangeUse, index, GetCount()));
  CNode* node = m_head;
  for (int i = 0; i < index; ++i) node = node->next;
  return node;
}

CNode* CXmlCollection::GetNodeForItem(const CXmlObjectBase* item) const {
  const CXmlObjectBase* wanted = item ? item->GetBase() : nullptr;
  for (CNode* node = m_head; node; node = node->next) {
    const CXmlObjectBase* held = node->item ? node->item->GetBase() : nullptr;
    if (held == wanted) return node;
  }
  throw CKoInvalidParamException(msg::kObjectNotInCollection);
}

// ---- removal ----------------------------------------------------------------------------

void CXmlCollection::RemoveNode(CNode* node) {
  if (!node) throw CKoInvalidParamException(msg::kNullNode);
  // A node of another collection would corrupt both lists.
  CNode* own = m_head;
  while (own && own != node) own = own->next;
  if (!own) throw CKoInvalidParamException(msg::kObjectNotInCollection);

  FireOnCollectionRemove(-1);
  if (node->previous)
    node->previous->next = node->next;
  else
    m_head = node->next;
  if (node->next)
    node->next->previous = node->previous;
  else
    m_tail = node->previous;
  --m_count;
  // Releasing may destroy the item; the list is consistent by then.
  std::unique_ptr<CNode> unlinked(node);
  if (unlinked->item) unlinked->item->Release();
  unlinked.reset();
  FireOnCollectionRemoveComplete(-1);
  FireOnCollectionChange();
}

// ---- writing --------------------------------------------------------------------------------

void CXmlCollection::AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const {
  for (const CNode* node = m_head; node; node = node->next)
    if (node->item) CXmlObjectBase::AttributesToXml_Int(node->item, writer, ctx);
}

}  // namespace KoXmlLib10
