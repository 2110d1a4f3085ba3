#ifndef KOXMLLIB10_XMLCOLLECTIONBASE_H
#define KOXMLLIB10_XMLCOLLECTIONBASE_H

#include <string>
#include <vector>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/XmlObjectBase.h"

namespace KoXmlLib10 {

// Root of every collection: the element name (held as the object's element
// name) and namespace of its items, their minimum and maximum count (-1:
// unbounded), and the listeners told about every change. A collection is
// itself a reference-counted object and travels in a KoVariant by reference.
// Listeners are not owned: each must outlive its registration.
class KOXML_API CXmlCollectionBase : public CXmlObjectBase {
 public:
  CXmlCollectionBase();
  CXmlCollectionBase(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs);
  ~CXmlCollectionBase() override;

  CXmlObjectBase* GetBase() override;
  using CXmlObjectBase::GetBase;
  // Always throws: a collection is never a document's root.
  std::string GetTargetNamespace() const override;
  // The items' namespace.
  std::string GetNamespace() const override;

  virtual int GetCount() const = 0;
  virtual void Clear() = 0;
  virtual void Remove(int index) = 0;
  // Throws the maximum or minimum count message unless the context ignores counts.
  virtual void ValidateCount(const CXmlSerializationContext& ctx) const;
  virtual bool IsValidCount(const CXmlSerializationContext& ctx) const;

  int GetMinOccurs() const { return m_minOccurs; }
  int GetMaxOccurs() const { return m_maxOccurs; }

  void AddEventListener(IEventSink* listener);
  // Removes every registration of the listener.
  void RemoveEventListener(IEventSink* listener);

 protected:
  void FireOnCollectionAdd(void* item);
  void FireOnCollectionAddComplete(void* item);
  void FireOnCollectionRemove(int index);
  void FireOnCollectionRemoveComplete(int index);
  void FireOnCollectionChange();

  std::string m_namespace;
  std::vector<IEventSink*> m_listeners;
  int m_minOccurs;
  int m_maxOccurs;
};

}  // namespace KoXmlLib10

#endif
