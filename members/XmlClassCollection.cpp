#include "KoXmlLib10/XmlClassCollection.h"

#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlObjectHelper.h"

namespace KoXmlLib10 {

CXmlClassCollection::CXmlClassCollection(const char* elementName, const char* elementNamespace, int minOccurs,
                                         int maxOccurs, KoXmlLib10Data::ClassFactoryFunction factory,
                                         int factoryCode, KoXmlLib10Data::XmlElementType itemElementType)
    : CXmlCollection(elementName, elementNamespace, minOccurs, maxOccurs),
      m_classFactory(factory),
      m_factoryCode(factoryCode),
      m_itemElementType(itemElementType) {}

CXmlClassCollection::CXmlClassCollection(const char* elementName, const char* elementNamespace, int minOccurs,
                                         int maxOccurs, KoXmlLib10Data::ElementFactoryFunction factory)
    : CXmlCollection(elementName, elementNamespace, minOccurs, maxOccurs), m_elementFactory(factory) {}

CXmlClassCollection::~CXmlClassCollection() = default;

void CXmlClassCollection::ToXml_Int(CXmlWriter* writer, bool, const char* elementNamespace,
                                    const CXmlSerializationContext& ctx, bool) const {
  for (CNode* node = GetHead(); node; node = node->next)
    if (node->item) CXmlObjectBase::ToXml_Int(node->item, writer, false, elementNamespace, ctx, false);
}

CSmartPtr<CXmlObjectBase> CXmlClassCollection::CreateItem(CXmlElement* element) const {
  if (m_elementFactory) return m_elementFactory(element);
  const std::string name = GetElementName();
  return m_classFactory(m_factoryCode, name.c_str());
}

CXmlElement* CXmlClassCollection::FromXml_Int(CXmlElement* parentElement, CXmlElement* cursor,
                                              const CXmlSerializationContext& ctx, bool) {
  if (m_itemElementType != KoXmlLib10Data::XmlElementTypeElement) {
    // Pseudo-element items: each consumes a run of the owner's children.
    while (cursor) {
      CSmartPtr<CXmlObjectBase> item = CreateItem(cursor);
      if (!item) break;
      CXmlElement* next = CXmlObjectBase::FromXml_Int(item.get(), parentElement, cursor, ctx);
      if (next == cursor) break;
      AppendItem(item.get());
      cursor = next;
    }
    return cursor;
  }
  const std::string name = GetElementName();
  while (cursor && CXmlObjectHelper::DoesElementNameMatch(ctx, cursor, name, m_namespace)) {
    CSmartPtr<CXmlObjectBase> item = CreateItem(cursor);
    if (!item) break;  // no class fits this element: it is not ours
    CXmlObjectBase::FromXml_Int(item.get(), cursor, cursor->GetFirstElement(), ctx);
    AppendItem(item.get());
    cursor = cursor->GetNextSiblingElement();
  }
  return cursor;
}

}  // namespace KoXmlLib10
