// Element members of choice classes: alternatives answer false when the element at the cursor is not theirs.

#include "KoXmlLib10/ElementInfoChoice.h"

#include "members/RecordCore.h"

namespace KoXmlLib10Data {

using namespace core;

CElementInfoChoicePrimOpt::CElementInfoChoicePrimOpt(const char* elementName, const char* elementNamespace,
                                                     int propertyId, bool nillable, ItemType itemType,
                                                     const char* numberFormat,
                                                     CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                                     const CPrimitiveRestrictions& restrictions)
    : CElementInfoChoice(elementName, elementNamespace, propertyId, nillable, itemType, numberFormat, whitespaceRule,
                         restrictions) {}

bool CElementInfoChoicePrimOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                             CXmlWriter* writer) const {
  return ElementToXmlPrim(ctx, owner, writer);
}

bool CElementInfoChoicePrimOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                               CXmlElement* parentElement, CXmlElement** cursor,
                                               const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Choice,
                    Occurs::Optional, PrimCodec{});
}

CElementInfoChoiceEnumOpt::CElementInfoChoiceEnumOpt(const char* elementName, const char* elementNamespace,
                                                     int propertyId, bool nillable, EnumToTextFunction enumToText,
                                                     TextToEnumFunction textToEnum)
    : CElementInfoChoice(elementName, elementNamespace, propertyId, nillable),
      enumToText(enumToText),
      textToEnum(textToEnum) {}

bool CElementInfoChoiceEnumOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                             CXmlWriter* writer) const {
  return ElementToXmlEnum(ctx, owner, writer, enumToText);
}

bool CElementInfoChoiceEnumOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                               CXmlElement* parentElement, CXmlElement** cursor,
                                               const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Choice,
                    Occurs::Optional, EnumCodec{textToEnum});
}

CElementInfoChoiceClsOpt::CElementInfoChoiceClsOpt(const char* elementName, const char* elementNamespace,
                                                   int propertyId, XmlElementType elementType,
                                                   ClassFactoryFunction factory, int factoryCode)
    : CElementInfoChoice(elementName, elementNamespace, propertyId),
      elementType(elementType),
      factory(factory),
      factoryCode(factoryCode) {}

bool CElementInfoChoiceClsOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, true);
}

bool CElementInfoChoiceClsOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                              CXmlElement* parentElement, CXmlElement** cursor,
                                              const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Choice,
                    Occurs::Optional, ClsCodec{elementType, factory, factoryCode, false});
}

void CElementInfoChoiceClsOpt::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                         const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoChoiceAbsClsOpt::CElementInfoChoiceAbsClsOpt(const char* elementName, const char* elementNamespace,
                                                         int propertyId, XmlElementType elementType,
                                                         ElementFactoryFunction factory)
    : CElementInfoChoice(elementName, elementNamespace, propertyId), elementType(elementType), factory(factory) {}

bool CElementInfoChoiceAbsClsOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                               CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoChoiceAbsClsOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                                 CXmlElement* parentElement, CXmlElement** cursor,
                                                 const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Choice,
                    Occurs::Optional, AbsClsCodec{elementType, factory});
}

void CElementInfoChoiceAbsClsOpt::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                            const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoChoiceUntpdOpt::CElementInfoChoiceUntpdOpt(const char* elementName, const char* elementNamespace,
                                                       int propertyId, const char* namespaceRestriction,
                                                       const char* targetNamespace)
    : CElementInfoChoice(elementName, elementNamespace, propertyId),
      namespaceRestriction(namespaceRestriction ? namespaceRestriction : ""),
      targetNamespace(targetNamespace ? targetNamespace : "") {}

bool CElementInfoChoiceUntpdOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                              CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoChoiceUntpdOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                                CXmlElement* parentElement, CXmlElement** cursor,
                                                const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Choice,
                    Occurs::Optional, UntpdCodec{namespaceRestriction, targetNamespace});
}

CElementInfoChoiceCol::CElementInfoChoiceCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoChoice(elementName, elementNamespace, propertyId) {}

bool CElementInfoChoiceCol::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                         CXmlWriter* writer) const {
  return WriteCollection(*this, ctx, owner, writer, Group::Choice);
}

bool CElementInfoChoiceCol::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                           CXmlElement* parentElement, CXmlElement** cursor, const char* ownerNamespace,
                                           XmlElementType ownerElementType) {
  return ReadCollection(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Choice,
                        Items::Typed);
}

CElementInfoChoicePrimCol::CElementInfoChoicePrimCol(const char* elementName, const char* elementNamespace,
                                                     int propertyId)
    : CElementInfoChoiceCol(elementName, elementNamespace, propertyId) {}

CElementInfoChoiceEnumCol::CElementInfoChoiceEnumCol(const char* elementName, const char* elementNamespace,
                                                     int propertyId)
    : CElementInfoChoiceCol(elementName, elementNamespace, propertyId) {}

CElementInfoChoiceClsCol::CElementInfoChoiceClsCol(const char* elementName, const char* elementNamespace,
                                                   int propertyId, XmlElementType elementType)
    : CElementInfoChoiceCol(elementName, elementNamespace, propertyId), elementType(elementType) {}

void CElementInfoChoiceClsCol::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                         const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoChoiceAbsClsCol::CElementInfoChoiceAbsClsCol(const char* elementName, const char* elementNamespace,
                                                         int propertyId, XmlElementType elementType)
    : CElementInfoChoiceCol(elementName, elementNamespace, propertyId), elementType(elementType) {}

void CElementInfoChoiceAbsClsCol::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                            const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoChoiceUntpdCol::CElementInfoChoiceUntpdCol(const char* elementName, const char* elementNamespace,
                                                       int propertyId)
    : CElementInfoChoiceCol(elementName, elementNamespace, propertyId) {}

bool CElementInfoChoiceUntpdCol::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                                CXmlElement* parentElement, CXmlElement** cursor,
                                                const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadCollection(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Choice,
                        Items::Untyped);
}

}  // namespace KoXmlLib10Data
