#include "KoXmlLib10/MetaData.h"

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlGeneratedClass.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "binding/BindingMessages.h"

namespace KoXmlLib10Data {

using KoXmlLib10::CKoException;

namespace {
std::string Text(const char* text) { return text ? text : ""; }

// The same rule for elements and attributes: the local name always, the
// namespace unless the context ignores namespaces.
bool NameMatches(const CXmlSerializationContext& ctx, const std::string& localName,
                 const std::string& namespaceUri, const std::string& expectedName,
                 const std::string& expectedNamespace) {
  if (localName != expectedName) return false;
  return ctx.GetIgnoreNamespaces() || namespaceUri == expectedNamespace;
}
}  // namespace

// ---- CParentElementInfo -----------------------------------------------------

CParentElementInfo::CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType,
                                       const char* typeName, const char* typeNamespace,
                                       bool rejectUnknownAttributes, bool writeTypeAttribute, int valuePropertyId,
                                       ItemType valueType, const char* valueFormat, bool valueAsText)
    : groupType(groupType),
      elementType(elementType),
      typeName(Text(typeName)),
      typeNamespace(Text(typeNamespace)),
      rejectUnknownAttributes(rejectUnknownAttributes),
      writeTypeAttribute(writeTypeAttribute),
      valuePropertyId(valuePropertyId),
      valueType(valueType),
      valueFormat(Text(valueFormat)),
      valueAsText(valueAsText) {}

CParentElementInfo::~CParentElementInfo() = default;

// ---- CElementInfo -----------------------------------------------------------

CElementInfo::CElementInfo(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfo(elementName, elementNamespace, propertyId, false) {}

CElementInfo::CElementInfo(const char* elementName, const char* elementNamespace, int propertyId, bool nillable)
    : elementName(Text(elementName)),
      elementNamespace(Text(elementNamespace)),
      propertyId(propertyId),
      restrictions(),
      itemType(KoXmlLib10::ItemType_none),
      numberFormat(),
      whitespaceRule(CWhitespaceUtils::WhitespaceRule_None),
      nillable(nillable),
      isPrimitive(false) {}

CElementInfo::CElementInfo(const char* elementName, const char* elementNamespace, int propertyId, bool nillable,
                           ItemType itemType, const char* numberFormat,
                           CWhitespaceUtils::WhitespaceRule whitespaceRule,
                           const CPrimitiveRestrictions& restrictions)
    : elementName(Text(elementName)),
      elementNamespace(Text(elementNamespace)),
      propertyId(propertyId),
      restrictions(restrictions),
      itemType(itemType),
      numberFormat(Text(numberFormat)),
      whitespaceRule(whitespaceRule),
      nillable(nillable),
      isPrimitive(true) {}

CElementInfo::~CElementInfo() = default;

void CElementInfo::PseudoChildAttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*,
                                             CXmlWriter*) const {}

bool CElementInfo::IsThisElement(const CXmlSerializationContext& ctx, const CXmlElement* element) const {
  if (!element) return false;
  return NameMatches(ctx, element->GetLocalName(), element->GetNamespaceURI(), elementName, elementNamespace);
}

void CElementInfo::AccessProperty(CXmlGeneratedClass* owner, bool get, KoVariant& value) const {
  owner->AccessProperty(propertyId, get, value);
}

void CElementInfo::ReadProperty(const CXmlGeneratedClass* owner, KoVariant& value) const {
  owner->ReadProperty(propertyId, value);
}

CXmlElement* CElementInfo::FromXml_Int(CXmlObjectBase* object, CXmlElement* element, CXmlElement* firstChild,
                                       const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) {
  return object->FromXml_Int(element, firstChild, ctx, choiceMayBeEmpty);
}

void CElementInfo::AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                       const CXmlSerializationContext& ctx) {
  object->AttributesToXml_Int(writer, ctx);
}

// ---- the three group bases ----------------------------------------------------

CElementInfoSeq::CElementInfoSeq(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfo(elementName, elementNamespace, propertyId) {}

CElementInfoSeq::CElementInfoSeq(const char* elementName, const char* elementNamespace, int propertyId,
                                 bool nillable)
    : CElementInfo(elementName, elementNamespace, propertyId, nillable) {}

CElementInfoSeq::CElementInfoSeq(const char* elementName, const char* elementNamespace, int propertyId,
                                 bool nillable, ItemType itemType, const char* numberFormat,
                                 CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                 const CPrimitiveRestrictions& restrictions)
    : CElementInfo(elementName, elementNamespace, propertyId, nillable, itemType, numberFormat, whitespaceRule,
                   restrictions) {}

// Only members of an all group are validated after reading.
bool CElementInfoSeq::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
  throw CKoException(KoXmlLib10::msg::kNotImplemented);
}

CElementInfoChoice::CElementInfoChoice(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfo(elementName, elementNamespace, propertyId) {}

CElementInfoChoice::CElementInfoChoice(const char* elementName, const char* elementNamespace, int propertyId,
                                       bool nillable)
    : CElementInfo(elementName, elementNamespace, propertyId, nillable) {}

CElementInfoChoice::CElementInfoChoice(const char* elementName, const char* elementNamespace, int propertyId,
                                       bool nillable, ItemType itemType, const char* numberFormat,
                                       CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                       const CPrimitiveRestrictions& restrictions)
    : CElementInfo(elementName, elementNamespace, propertyId, nillable, itemType, numberFormat, whitespaceRule,
                   restrictions) {}

bool CElementInfoChoice::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool, bool) const {
  throw CKoException(KoXmlLib10::msg::kNotImplemented);
}

CElementInfoAll::CElementInfoAll(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfo(elementName, elementNamespace, propertyId) {}

CElementInfoAll::CElementInfoAll(const char* elementName, const char* elementNamespace, int propertyId,
                                 bool nillable)
    : CElementInfo(elementName, elementNamespace, propertyId, nillable) {}

CElementInfoAll::CElementInfoAll(const char* elementName, const char* elementNamespace, int propertyId,
                                 bool nillable, ItemType itemType, const char* numberFormat,
                                 CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                 const CPrimitiveRestrictions& restrictions)
    : CElementInfo(elementName, elementNamespace, propertyId, nillable, itemType, numberFormat, whitespaceRule,
                   restrictions) {}

// ---- CAttributeInfo -----------------------------------------------------------

CAttributeInfo::CAttributeInfo(const char* attributeName, const char* attributeNamespace, int propertyId,
                               bool optional, const char* defaultValue)
    : attributeName(Text(attributeName)),
      attributeNamespace(Text(attributeNamespace)),
      propertyId(propertyId),
      optional(optional),
      defaultValue(Text(defaultValue)) {}

CAttributeInfo::~CAttributeInfo() = default;

bool CAttributeInfo::IsThisAttribute(const CXmlSerializationContext& ctx, CXmlAttribute* attribute) const {
  if (!attribute) return false;
  return NameMatches(ctx, attribute->GetLocalName(), attribute->GetNamespaceURI(), attributeName,
                     attributeNamespace);
}

void CAttributeInfo::AccessProperty(CXmlGeneratedClass* owner, bool get, KoVariant& value) const {
  owner->AccessProperty(propertyId, get, value);
}

void CAttributeInfo::ReadProperty(const CXmlGeneratedClass* owner, KoVariant& value) const {
  owner->ReadProperty(propertyId, value);
}

void CAttributeInfo::ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot,
                               const char* elementNamespace, const CXmlSerializationContext& ctx) {
  object->ToXml_Int(writer, isRoot, elementNamespace, ctx, false);
}

std::string CAttributeInfo::GetTargetNamespace(const CXmlObjectBase* object) { return object->GetTargetNamespace(); }

bool CAttributeInfo::IsNamespaceValid(const std::string& namespaceUri, const std::string& restriction,
                                      const std::string& targetNamespace) {
  return KoXmlLib10::CXmlObjectHelper::IsNamespaceValid(namespaceUri, restriction, targetNamespace);
}

void CAttributeInfo::TestNamespace(const std::string& namespaceUri, const std::string& restriction,
                                   const std::string& targetNamespace) {
  KoXmlLib10::CXmlObjectHelper::TestNamespace(namespaceUri, restriction, targetNamespace);
}

}  // namespace KoXmlLib10Data
