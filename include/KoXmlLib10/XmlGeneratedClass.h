#ifndef KOXMLLIB10_XMLGENERATEDCLASS_H
#define KOXMLLIB10_XMLGENERATEDCLASS_H

#include "KoXmlLib10/CriticalSection.h"
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/MetaData.h"
#include "KoXmlLib10/Variant.h"
#include "KoXmlLib10/XmlObjectBase.h"

namespace KoXmlLib10 {

using KoXmlLib10Data::CAttributeInfo;
using KoXmlLib10Data::CElementInfo;
using KoXmlLib10Data::CParentElementInfo;
using KoXmlLib10Data::XmlElementType;

// Base of every class the code generator emits. A generated class supplies
// only data: its description (GetClassInfo), null-terminated arrays of
// element and attribute records in schema order, a property accessor by id
// through KoVariant, and Init. The engine here decides everything else: the
// order of output, how child elements are matched to members while reading,
// and what the context's tolerance options relax.
//
// The records are static, shared by every instance and read-only; generated
// code creates them once, on the class's first use, while holding m_csInit,
// and frees them with CleanMetaData.
class KOXML_API CXmlGeneratedClass : public CXmlObjectBase {
 public:
  CXmlGeneratedClass();
  ~CXmlGeneratedClass() override;

  // Implemented by generated code, in this slot order.
  // get true copies the property into `value` (an unset optional property
  // leaves it invalid, a nil one makes it nil, an object or collection yields
  // a counted reference); get false stores `value` into the property.
  virtual void AccessProperty(int propertyId, bool get, KoVariant& value) = 0;
  virtual CParentElementInfo* GetClassInfo() = 0;
  virtual CElementInfo** GetClassElementInfo() = 0;
  virtual CAttributeInfo** GetClassAttributeInfo() = 0;
  // Resets every property to its initial state; called first by every read.
  virtual void Init() = 0;
  // Beyond the generated-code contract above, added by this library: the
  // text GetNamespace() returns when it is a constant that outlives the
  // object, or null (the default) to have GetNamespace() called. Reading
  // hands the owner's namespace to the records of every group it reads; a
  // constant spares building a string for each object. A class that
  // overrides GetNamespace() of a class that overrides this overrides both.
  virtual const char* GetNamespaceText() const;
  // Also an addition beyond the contract: stores the value of `text`,
  // converted as KoVariant::FromString(text, itemType, rule) converts it, into
  // the simple-typed property `propertyId`, exactly as AccessProperty(
  // propertyId, false, value) would store that variant. Returns false, having
  // changed nothing, when the class offers no such shortcut for the property
  // and item type (the default); reading then goes through a KoVariant.
  // Conversion failures throw as FromString throws.
  virtual bool StorePropertyText(int propertyId, ItemType itemType, const std::string& text,
                                 CWhitespaceUtils::WhitespaceRule rule);

  // Held by generated code while it creates a class's records.
  static CKOCriticalSection m_csInit;

  // Deletes the description, every record of both arrays up to the first
  // null entry, and the arrays; sets all three to null. Null arguments are skipped.
  static void CleanMetaData(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes);

  void ReadProperty(int propertyId, KoVariant& value) const;
  int GetClassElementInfoCount() const;
  bool IsElementInList(const CXmlSerializationContext& ctx, CXmlElement* element) const;
  // True when some member of this choice class may be absent.
  bool DoesElementContainOptionalElements() const;

  void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                 const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const override;
  CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CXmlSerializationContext& ctx,
                           bool choiceMayBeEmpty) override;
  void AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const override;
  using CXmlObjectBase::AttributesToXml_Int;
  using CXmlObjectBase::FromXml_Int;
  using CXmlObjectBase::ToXml_Int;

 protected:
  void ProcessAttributesToXml(const CXmlSerializationContext& ctx, CElementInfo** elements,
                              CAttributeInfo** attributes, CXmlWriter* writer) const;
  void ProcessElementSeqToXml(const CXmlSerializationContext& ctx, CElementInfo** elements,
                              CXmlWriter* writer) const;
  void ProcessElementAllToXml(const CXmlSerializationContext& ctx, CElementInfo** elements,
                              CXmlWriter* writer) const;
  bool ProcessElementChoiceToXml(const CXmlSerializationContext& ctx, CElementInfo** elements,
                                 CXmlWriter* writer, bool choiceMayBeEmpty) const;
  void ProcessAttributesFromXml(const CXmlSerializationContext& ctx, CXmlElement* element,
                                bool rejectUnknownAttributes);
  CXmlElement* ProcessElementSeqFromXml(const CXmlSerializationContext& ctx, CXmlElement* parentElement,
                                        CXmlElement* cursor, XmlElementType ownerElementType);
  CXmlElement* ProcessElementChoiceFromXml(const CXmlSerializationContext& ctx, CXmlElement* parentElement,
                                           CXmlElement* cursor, XmlElementType ownerElementType,
                                           bool choiceMayBeEmpty);
  CXmlElement* ProcessElementAllFromXml(const CXmlSerializationContext& ctx, CXmlElement* parentElement,
                                        CXmlElement* cursor, XmlElementType ownerElementType);
};

}  // namespace KoXmlLib10

#endif
