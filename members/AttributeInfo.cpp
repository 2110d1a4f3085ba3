// Attribute members of generated classes: a simple-typed value, an
// enumeration, or an xs:anyAttribute wildcard held in a CAttributeCol.

#include "KoXmlLib10/AttributeInfo.h"

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Untyped.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlGeneratedClass.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "members/MembersMessages.h"
#include "members/RecordCore.h"

namespace KoXmlLib10Data {

using namespace core;

CAttributeInfoPrimitive::CAttributeInfoPrimitive(const char* attributeName, const char* attributeNamespace,
                                                 int propertyId, bool optional, ItemType itemType,
                                                 const char* numberFormat,
                                                 CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                                 const CPrimitiveRestrictions& restrictions, const char* defaultValue)
    : CAttributeInfo(attributeName, attributeNamespace, propertyId, optional, defaultValue),
      restrictions(restrictions),
      itemType(itemType),
      numberFormat(numberFormat ? numberFormat : ""),
      whitespaceRule(whitespaceRule) {}

void CAttributeInfoPrimitive::AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                             CXmlWriter* writer) const {
  WriteAttribute(*this, ctx, owner, writer, PrimAttributeCodec{*this});
}

bool CAttributeInfoPrimitive::AttributeFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                               CXmlAttribute* attribute) {
  return ReadAttribute(*this, ctx, owner, attribute, PrimAttributeCodec{*this});
}

void CAttributeInfoPrimitive::Validate(const CXmlSerializationContext&, bool found) const {
  ValidateRequiredAttribute(*this, found);
}

void CAttributeInfoPrimitive::CheckRestriction(KoVariant value) const {
  KoXmlLib10::CXmlObjectHelper::CheckRestriction(attributeName.c_str(), value, itemType, restrictions);
}

CAttributeInfoEnum::CAttributeInfoEnum(const char* attributeName, const char* attributeNamespace, int propertyId,
                                       bool optional, EnumToTextFunction enumToText, TextToEnumFunction textToEnum,
                                       const char* defaultValue)
    : CAttributeInfo(attributeName, attributeNamespace, propertyId, optional, defaultValue),
      enumToText(enumToText),
      textToEnum(textToEnum) {}

void CAttributeInfoEnum::AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                        CXmlWriter* writer) const {
  WriteAttribute(*this, ctx, owner, writer, EnumAttributeCodec{*this});
}

bool CAttributeInfoEnum::AttributeFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                          CXmlAttribute* attribute) {
  return ReadAttribute(*this, ctx, owner, attribute, EnumAttributeCodec{*this});
}

void CAttributeInfoEnum::Validate(const CXmlSerializationContext&, bool found) const {
  ValidateRequiredAttribute(*this, found);
}

CAttributeInfoAny::CAttributeInfoAny(const char* attributeName, const char* attributeNamespace, int propertyId,
                                     bool optional, const char* namespaceRestriction, const char* targetNamespace,
                                     const char* defaultValue)
    : CAttributeInfo(attributeName, attributeNamespace, propertyId, optional, defaultValue),
      namespaceRestriction(namespaceRestriction ? namespaceRestriction : ""),
      targetNamespace(targetNamespace ? targetNamespace : "") {}

// The collection writes its attributes in order, under the owner's target namespace.
void CAttributeInfoAny::AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                       CXmlWriter* writer) const {
  KoVariant value;
  ReadProperty(owner, value);
  CSmartPtr<CXmlObjectBase> collection = TakeObject(value);
  if (!collection) return;
  ToXml_Int(collection.get(), writer, false, GetTargetNamespace(owner).c_str(), ctx);
}

bool CAttributeInfoAny::AttributeFromXml(const CXmlSerializationContext&, CXmlGeneratedClass* owner,
                                         CXmlAttribute* attribute) {
  if (!IsNamespaceValid(attribute->GetNamespaceURI(), namespaceRestriction, targetNamespace)) return false;
  KoVariant value;
  AccessProperty(owner, true, value);
  CSmartPtr<CXmlObjectBase> held = TakeObject(value);
  auto* collection = dynamic_cast<KoXmlLib10::CAttributeCol*>(held.get());
  if (!collection) throw KoXmlLib10::CKoException(KoXmlLib10::msg::kNotAnAttributeCol);
  collection->Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(),
                  attribute->GetNamespaceURI().c_str());
  return true;
}

// Wildcard attributes are never required.
void CAttributeInfoAny::Validate(const CXmlSerializationContext&, bool) const {}

}  // namespace KoXmlLib10Data
