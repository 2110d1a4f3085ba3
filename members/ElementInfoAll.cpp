// Element members of all groups: members are offered the remaining children pass after pass; Validate reports what is
// missing.

#include "KoXmlLib10/ElementInfoAll.h"

#include "members/MembersMessages.h"
#include "members/RecordCore.h"

namespace KoXmlLib10Data {

using namespace core;
namespace msg = KoXmlLib10::msg;

CElementInfoAllPrimMnd::CElementInfoAllPrimMnd(const char* elementName, const char* elementNamespace, int propertyId,
                                               bool nillable, ItemType itemType, const char* numberFormat,
                                               CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               const CPrimitiveRestrictions& restrictions)
    : CElementInfoAll(elementName, elementNamespace, propertyId, nillable, itemType, numberFormat, whitespaceRule,
                      restrictions) {}

bool CElementInfoAllPrimMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return ElementToXmlPrim(ctx, owner, writer);
}

bool CElementInfoAllPrimMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                    Occurs::Mandatory, PrimCodec{});
}

bool CElementInfoAllPrimMnd::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                      bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Mandatory);
}

CElementInfoAllPrimOpt::CElementInfoAllPrimOpt(const char* elementName, const char* elementNamespace, int propertyId,
                                               bool nillable, ItemType itemType, const char* numberFormat,
                                               CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               const CPrimitiveRestrictions& restrictions)
    : CElementInfoAll(elementName, elementNamespace, propertyId, nillable, itemType, numberFormat, whitespaceRule,
                      restrictions) {}

bool CElementInfoAllPrimOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return ElementToXmlPrim(ctx, owner, writer);
}

bool CElementInfoAllPrimOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                    Occurs::Optional, PrimCodec{});
}

bool CElementInfoAllPrimOpt::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                      bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Optional);
}

CElementInfoAllEnumMnd::CElementInfoAllEnumMnd(const char* elementName, const char* elementNamespace, int propertyId,
                                               bool nillable, EnumToTextFunction enumToText,
                                               TextToEnumFunction textToEnum)
    : CElementInfoAll(elementName, elementNamespace, propertyId, nillable),
      enumToText(enumToText),
      textToEnum(textToEnum) {}

bool CElementInfoAllEnumMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return ElementToXmlEnum(ctx, owner, writer, enumToText);
}

bool CElementInfoAllEnumMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                    Occurs::Mandatory, EnumCodec{textToEnum});
}

bool CElementInfoAllEnumMnd::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                      bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Mandatory);
}

CElementInfoAllEnumOpt::CElementInfoAllEnumOpt(const char* elementName, const char* elementNamespace, int propertyId,
                                               bool nillable, EnumToTextFunction enumToText,
                                               TextToEnumFunction textToEnum)
    : CElementInfoAll(elementName, elementNamespace, propertyId, nillable),
      enumToText(enumToText),
      textToEnum(textToEnum) {}

bool CElementInfoAllEnumOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return ElementToXmlEnum(ctx, owner, writer, enumToText);
}

bool CElementInfoAllEnumOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                    Occurs::Optional, EnumCodec{textToEnum});
}

bool CElementInfoAllEnumOpt::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                      bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Optional);
}

CElementInfoAllClsMnd::CElementInfoAllClsMnd(const char* elementName, const char* elementNamespace, int propertyId,
                                             XmlElementType elementType, ClassFactoryFunction factory, int factoryCode,
                                             bool contentRequired)
    : CElementInfoAll(elementName, elementNamespace, propertyId),
      elementType(elementType),
      contentRequired(contentRequired),
      factory(factory),
      factoryCode(factoryCode) {}

bool CElementInfoAllClsMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                         CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoAllClsMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                           CXmlElement* parentElement, CXmlElement** cursor, const char* ownerNamespace,
                                           XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                    Occurs::Mandatory, ClsCodec{elementType, factory, factoryCode, contentRequired});
}

bool CElementInfoAllClsMnd::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                     bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Mandatory,
                           elementType != XmlElementTypePseudo && !contentRequired);
}

void CElementInfoAllClsMnd::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                      const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoAllClsOpt::CElementInfoAllClsOpt(const char* elementName, const char* elementNamespace, int propertyId,
                                             XmlElementType elementType, ClassFactoryFunction factory, int factoryCode)
    : CElementInfoAll(elementName, elementNamespace, propertyId),
      elementType(elementType),
      factory(factory),
      factoryCode(factoryCode) {}

bool CElementInfoAllClsOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                         CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoAllClsOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                           CXmlElement* parentElement, CXmlElement** cursor, const char* ownerNamespace,
                                           XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                    Occurs::Optional, ClsCodec{elementType, factory, factoryCode, false});
}

bool CElementInfoAllClsOpt::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                     bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Optional);
}

void CElementInfoAllClsOpt::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                      const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoAllAbsClsMnd::CElementInfoAllAbsClsMnd(const char* elementName, const char* elementNamespace,
                                                   int propertyId, XmlElementType elementType,
                                                   ElementFactoryFunction factory, int unused)
    : CElementInfoAll(elementName, elementNamespace, propertyId),
      elementType(elementType),
      factory(factory),
      unused(unused) {}

bool CElementInfoAllAbsClsMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoAllAbsClsMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                              CXmlElement* parentElement, CXmlElement** cursor,
                                              const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadAllAbsCls(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType},
                       msg::kAllAbsClsMndNotImplemented);
}

bool CElementInfoAllAbsClsMnd::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                        bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Mandatory);
}

void CElementInfoAllAbsClsMnd::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                         const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoAllAbsClsOpt::CElementInfoAllAbsClsOpt(const char* elementName, const char* elementNamespace,
                                                   int propertyId, XmlElementType elementType,
                                                   ElementFactoryFunction factory)
    : CElementInfoAll(elementName, elementNamespace, propertyId), elementType(elementType), factory(factory) {}

bool CElementInfoAllAbsClsOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoAllAbsClsOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                              CXmlElement* parentElement, CXmlElement** cursor,
                                              const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadAllAbsCls(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType},
                       msg::kAllAbsClsOptNotImplemented);
}

bool CElementInfoAllAbsClsOpt::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                        bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Optional);
}

void CElementInfoAllAbsClsOpt::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                         const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoAllUntpdMnd::CElementInfoAllUntpdMnd(const char* elementName, const char* elementNamespace, int propertyId,
                                                 const char* namespaceRestriction, const char* targetNamespace)
    : CElementInfoAll(elementName, elementNamespace, propertyId),
      namespaceRestriction(namespaceRestriction ? namespaceRestriction : ""),
      targetNamespace(targetNamespace ? targetNamespace : "") {}

bool CElementInfoAllUntpdMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                           CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoAllUntpdMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                             CXmlElement* parentElement, CXmlElement** cursor,
                                             const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                    Occurs::Mandatory, UntpdCodec{namespaceRestriction, targetNamespace});
}

bool CElementInfoAllUntpdMnd::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                       bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Mandatory);
}

CElementInfoAllUntpdOpt::CElementInfoAllUntpdOpt(const char* elementName, const char* elementNamespace, int propertyId,
                                                 const char* namespaceRestriction, const char* targetNamespace)
    : CElementInfoAll(elementName, elementNamespace, propertyId),
      namespaceRestriction(namespaceRestriction ? namespaceRestriction : ""),
      targetNamespace(targetNamespace ? targetNamespace : "") {}

bool CElementInfoAllUntpdOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                           CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoAllUntpdOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                             CXmlElement* parentElement, CXmlElement** cursor,
                                             const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                    Occurs::Optional, UntpdCodec{namespaceRestriction, targetNamespace});
}

bool CElementInfoAllUntpdOpt::Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                                       bool ownerHasElement) const {
  return ValidateAllMember(*this, found, ownerHasElement, Occurs::Optional);
}

CElementInfoAllEnumCol::CElementInfoAllEnumCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoAll(elementName, elementNamespace, propertyId) {}

bool CElementInfoAllEnumCol::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return WriteCollection(*this, ctx, owner, writer, Group::All);
}

bool CElementInfoAllEnumCol::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadCollection(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                        Items::Typed);
}

bool CElementInfoAllEnumCol::Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool,
                                      bool ownerHasElement) const {
  return ValidateAllCollection(*this, ctx, owner, ownerHasElement);
}

CElementInfoAllNonCol::CElementInfoAllNonCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoAll(elementName, elementNamespace, propertyId) {}

CElementInfoAllCol::CElementInfoAllCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoAll(elementName, elementNamespace, propertyId) {}

bool CElementInfoAllCol::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                      CXmlWriter* writer) const {
  return WriteCollection(*this, ctx, owner, writer, Group::All);
}

bool CElementInfoAllCol::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                        CXmlElement* parentElement, CXmlElement** cursor, const char* ownerNamespace,
                                        XmlElementType ownerElementType) {
  return ReadCollection(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::All,
                        Items::Typed);
}

bool CElementInfoAllCol::Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool,
                                  bool ownerHasElement) const {
  return ValidateAllCollection(*this, ctx, owner, ownerHasElement);
}

CElementInfoAllPrimCol::CElementInfoAllPrimCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoAllCol(elementName, elementNamespace, propertyId) {}

CElementInfoAllClsCol::CElementInfoAllClsCol(const char* elementName, const char* elementNamespace, int propertyId,
                                             XmlElementType elementType)
    : CElementInfoAllCol(elementName, elementNamespace, propertyId), elementType(elementType) {}

void CElementInfoAllClsCol::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                      const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoAllAbsClsCol::CElementInfoAllAbsClsCol(const char* elementName, const char* elementNamespace,
                                                   int propertyId, XmlElementType elementType)
    : CElementInfoAllCol(elementName, elementNamespace, propertyId), elementType(elementType) {}

void CElementInfoAllAbsClsCol::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                         const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoAllUntpdCol::CElementInfoAllUntpdCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoAllCol(elementName, elementNamespace, propertyId) {}

}  // namespace KoXmlLib10Data
