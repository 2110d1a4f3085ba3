#ifndef KOXMLLIB10_XMLCLASSCOLLECTION_H
#define KOXMLLIB10_XMLCLASSCOLLECTION_H

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/MetaData.h"
#include "KoXmlLib10/XmlCollection.h"

namespace KoXmlLib10 {

// The writing and reading that every collection of generated objects shares,
// so that a generated collection class only adds typed access (Add, Item,
// iteration) on top. Items are created through the generated factory: a class
// factory for members of one class, or an element factory (which reads the
// element's xsi:type) for members of a derivable type.
//
// Items whose class is a pseudo element have no element of their own: each
// takes the run of the owner's children it consumes.
class KOXML_API CXmlClassCollection : public CXmlCollection {
 public:
  CXmlClassCollection(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs,
                      KoXmlLib10Data::ClassFactoryFunction factory, int factoryCode,
                      KoXmlLib10Data::XmlElementType itemElementType = KoXmlLib10Data::XmlElementTypeElement);
  CXmlClassCollection(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs,
                      KoXmlLib10Data::ElementFactoryFunction factory);
  ~CXmlClassCollection() override;

 protected:
  // Every item writes itself in elementNamespace (the record's namespace).
  void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                 const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const override;
  // Appends an item per element of the run at the cursor that carries the
  // collection's name; returns the first element that is not an item.
  CXmlElement* FromXml_Int(CXmlElement* parentElement, CXmlElement* cursor, const CXmlSerializationContext& ctx,
                           bool choiceMayBeEmpty) override;

 private:
  CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element) const;

  KoXmlLib10Data::ClassFactoryFunction m_classFactory = nullptr;
  int m_factoryCode = 0;
  KoXmlLib10Data::ElementFactoryFunction m_elementFactory = nullptr;
  KoXmlLib10Data::XmlElementType m_itemElementType = KoXmlLib10Data::XmlElementTypeElement;
};

}  // namespace KoXmlLib10

#endif
