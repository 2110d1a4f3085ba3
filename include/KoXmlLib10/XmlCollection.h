#ifndef KOXMLLIB10_XMLCOLLECTION_H
#define KOXMLLIB10_XMLCOLLECTION_H

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/XmlCollectionBase.h"

namespace KoXmlLib10 {

// One link of a CXmlCollection; it holds one reference to its item.
struct KOXML_API CNode {
  CXmlObjectBase* item = nullptr;
  CNode* next = nullptr;
  CNode* previous = nullptr;
};

// Walks the nodes of a collection from head to tail, handing out each item
// as the collection's item type (range-for over typed collections).
template <class T>
class CXmlCollectionIterator {
 public:
  explicit CXmlCollectionIterator(CNode* node) : m_node(node) {}
  T* operator*() const { return static_cast<T*>(m_node->item); }
  CXmlCollectionIterator& operator++() {
    m_node = m_node->next;
    return *this;
  }
  bool operator==(const CXmlCollectionIterator& other) const { return m_node == other.m_node; }
  bool operator!=(const CXmlCollectionIterator& other) const { return m_node != other.m_node; }

 private:
  CNode* m_node;
};

// Ordered storage of reference-counted objects as a doubly linked list; every
// change is announced to the listeners (add, add complete, change; remove,
// remove complete, change). The same object may be added more than once:
// each node holds its own reference. Destroying the collection clears it,
// with its events.
class KOXML_API CXmlCollection : public CXmlCollectionBase {
 public:
  CXmlCollection();
  CXmlCollection(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs);
  ~CXmlCollection() override;
  CXmlCollection(const CXmlCollection&) = delete;
  CXmlCollection& operator=(const CXmlCollection&) = delete;

  int GetCount() const override;
  void Clear() override;
  void Remove(int index) override;

  void AppendItem(CXmlObjectBase* item);
  void PrependItem(CXmlObjectBase* item);
  void AddItemAt(int index, CXmlObjectBase* item);
  // A null `existing` appends (AddBeforeItem) or prepends (AddAfterItem).
  void AddBeforeItem(const CXmlObjectBase* existing, CXmlObjectBase* item);
  void AddAfterItem(const CXmlObjectBase* existing, CXmlObjectBase* item);
  // The node must belong to this collection.
  void RemoveNode(CNode* node);

  CNode* GetNodeAtIndex(int index) const;
  // The first node whose item is the same object as `item`.
  CNode* GetNodeForItem(const CXmlObjectBase* item) const;
  CNode* GetHead() const { return m_head; }
  CNode* GetTail() const { return m_tail; }

 protected:
  // The attributes of every item, head to tail (items that are pseudo elements).
  void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const override;

 private:
  // Links a new node for `item` in front of `at`; the add event has been fired.
  void InsertBefore(CNode* at, CXmlObjectBase* item);

  CNode* m_head = nullptr;
  CNode* m_tail = nullptr;
  int m_count = 0;
};

}  // namespace KoXmlLib10

#endif
