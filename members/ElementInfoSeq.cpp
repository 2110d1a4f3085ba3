// Element members of sequence classes: each override is one call into the shared core, which holds the rules.

#include "KoXmlLib10/ElementInfoSeq.h"

#include "members/RecordCore.h"

namespace KoXmlLib10Data {

using namespace core;

CElementInfoSeqPrimMnd::CElementInfoSeqPrimMnd(const char* elementName, const char* elementNamespace, int propertyId,
                                               bool nillable, ItemType itemType, const char* numberFormat,
                                               CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               const CPrimitiveRestrictions& restrictions)
    : CElementInfoSeq(elementName, elementNamespace, propertyId, nillable, itemType, numberFormat, whitespaceRule,
                      restrictions) {}

bool CElementInfoSeqPrimMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return ElementToXmlPrim(ctx, owner, writer);
}

bool CElementInfoSeqPrimMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Mandatory, PrimCodec{});
}

CElementInfoSeqPrimOpt::CElementInfoSeqPrimOpt(const char* elementName, const char* elementNamespace, int propertyId,
                                               bool nillable, ItemType itemType, const char* numberFormat,
                                               CWhitespaceUtils::WhitespaceRule whitespaceRule,
                                               const CPrimitiveRestrictions& restrictions)
    : CElementInfoSeq(elementName, elementNamespace, propertyId, nillable, itemType, numberFormat, whitespaceRule,
                      restrictions) {}

bool CElementInfoSeqPrimOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return ElementToXmlPrim(ctx, owner, writer);
}

bool CElementInfoSeqPrimOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Optional, PrimCodec{});
}

CElementInfoSeqEnumMnd::CElementInfoSeqEnumMnd(const char* elementName, const char* elementNamespace, int propertyId,
                                               bool nillable, EnumToTextFunction enumToText,
                                               TextToEnumFunction textToEnum)
    : CElementInfoSeq(elementName, elementNamespace, propertyId, nillable),
      enumToText(enumToText),
      textToEnum(textToEnum) {}

bool CElementInfoSeqEnumMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return ElementToXmlEnum(ctx, owner, writer, enumToText);
}

bool CElementInfoSeqEnumMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Mandatory, EnumCodec{textToEnum});
}

CElementInfoSeqEnumOpt::CElementInfoSeqEnumOpt(const char* elementName, const char* elementNamespace, int propertyId,
                                               bool nillable, EnumToTextFunction enumToText,
                                               TextToEnumFunction textToEnum)
    : CElementInfoSeq(elementName, elementNamespace, propertyId, nillable),
      enumToText(enumToText),
      textToEnum(textToEnum) {}

bool CElementInfoSeqEnumOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                          CXmlWriter* writer) const {
  return ElementToXmlEnum(ctx, owner, writer, enumToText);
}

bool CElementInfoSeqEnumOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                            CXmlElement* parentElement, CXmlElement** cursor,
                                            const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Optional, EnumCodec{textToEnum});
}

CElementInfoSeqClsMnd::CElementInfoSeqClsMnd(const char* elementName, const char* elementNamespace, int propertyId,
                                             XmlElementType elementType, ClassFactoryFunction factory, int factoryCode,
                                             bool contentRequired)
    : CElementInfoSeq(elementName, elementNamespace, propertyId),
      elementType(elementType),
      contentRequired(contentRequired),
      factory(factory),
      factoryCode(factoryCode) {}

bool CElementInfoSeqClsMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                         CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoSeqClsMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                           CXmlElement* parentElement, CXmlElement** cursor, const char* ownerNamespace,
                                           XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Mandatory, ClsCodec{elementType, factory, factoryCode, contentRequired});
}

void CElementInfoSeqClsMnd::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                      const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoSeqClsOpt::CElementInfoSeqClsOpt(const char* elementName, const char* elementNamespace, int propertyId,
                                             XmlElementType elementType, ClassFactoryFunction factory, int factoryCode)
    : CElementInfoSeq(elementName, elementNamespace, propertyId),
      elementType(elementType),
      factory(factory),
      factoryCode(factoryCode) {}

bool CElementInfoSeqClsOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                         CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoSeqClsOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                           CXmlElement* parentElement, CXmlElement** cursor, const char* ownerNamespace,
                                           XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Optional, ClsCodec{elementType, factory, factoryCode, false});
}

void CElementInfoSeqClsOpt::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                      const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoSeqAbsClsMnd::CElementInfoSeqAbsClsMnd(const char* elementName, const char* elementNamespace,
                                                   int propertyId, XmlElementType elementType,
                                                   ElementFactoryFunction factory)
    : CElementInfoSeq(elementName, elementNamespace, propertyId), elementType(elementType), factory(factory) {}

bool CElementInfoSeqAbsClsMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoSeqAbsClsMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                              CXmlElement* parentElement, CXmlElement** cursor,
                                              const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Mandatory, AbsClsCodec{elementType, factory});
}

void CElementInfoSeqAbsClsMnd::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                         const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoSeqAbsClsOpt::CElementInfoSeqAbsClsOpt(const char* elementName, const char* elementNamespace,
                                                   int propertyId, XmlElementType elementType,
                                                   ElementFactoryFunction factory)
    : CElementInfoSeq(elementName, elementNamespace, propertyId), elementType(elementType), factory(factory) {}

bool CElementInfoSeqAbsClsOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoSeqAbsClsOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                              CXmlElement* parentElement, CXmlElement** cursor,
                                              const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Optional, AbsClsCodec{elementType, factory});
}

void CElementInfoSeqAbsClsOpt::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                         const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoSeqUntpdMnd::CElementInfoSeqUntpdMnd(const char* elementName, const char* elementNamespace, int propertyId,
                                                 const char* namespaceRestriction, const char* targetNamespace)
    : CElementInfoSeq(elementName, elementNamespace, propertyId),
      namespaceRestriction(namespaceRestriction ? namespaceRestriction : ""),
      targetNamespace(targetNamespace ? targetNamespace : "") {}

bool CElementInfoSeqUntpdMnd::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                           CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoSeqUntpdMnd::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                             CXmlElement* parentElement, CXmlElement** cursor,
                                             const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Mandatory, UntpdCodec{namespaceRestriction, targetNamespace});
}

CElementInfoSeqUntpdOpt::CElementInfoSeqUntpdOpt(const char* elementName, const char* elementNamespace, int propertyId,
                                                 const char* namespaceRestriction, const char* targetNamespace)
    : CElementInfoSeq(elementName, elementNamespace, propertyId),
      namespaceRestriction(namespaceRestriction ? namespaceRestriction : ""),
      targetNamespace(targetNamespace ? targetNamespace : "") {}

bool CElementInfoSeqUntpdOpt::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                           CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, owner, writer, false);
}

bool CElementInfoSeqUntpdOpt::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                             CXmlElement* parentElement, CXmlElement** cursor,
                                             const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadSingle(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                    Occurs::Optional, UntpdCodec{namespaceRestriction, targetNamespace});
}

CElementInfoSeqNonCol::CElementInfoSeqNonCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoSeq(elementName, elementNamespace, propertyId) {}

CElementInfoSeqCol::CElementInfoSeqCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoSeq(elementName, elementNamespace, propertyId) {}

bool CElementInfoSeqCol::ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                      CXmlWriter* writer) const {
  return WriteCollection(*this, ctx, owner, writer, Group::Sequence);
}

bool CElementInfoSeqCol::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                        CXmlElement* parentElement, CXmlElement** cursor, const char* ownerNamespace,
                                        XmlElementType ownerElementType) {
  return ReadCollection(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                        Items::Typed);
}

CElementInfoSeqPrimCol::CElementInfoSeqPrimCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoSeqCol(elementName, elementNamespace, propertyId) {}

CElementInfoSeqEnumCol::CElementInfoSeqEnumCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoSeqCol(elementName, elementNamespace, propertyId) {}

CElementInfoSeqClsCol::CElementInfoSeqClsCol(const char* elementName, const char* elementNamespace, int propertyId,
                                             XmlElementType elementType)
    : CElementInfoSeqCol(elementName, elementNamespace, propertyId), elementType(elementType) {}

void CElementInfoSeqClsCol::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                      const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoSeqAbsClsCol::CElementInfoSeqAbsClsCol(const char* elementName, const char* elementNamespace,
                                                   int propertyId, XmlElementType elementType)
    : CElementInfoSeqCol(elementName, elementNamespace, propertyId), elementType(elementType) {}

void CElementInfoSeqAbsClsCol::PseudoChildAttributeToXml(const CXmlSerializationContext& ctx,
                                                         const CXmlGeneratedClass* owner, CXmlWriter* writer) const {
  WritePseudoChildAttributes(*this, ctx, owner, writer, elementType);
}

CElementInfoSeqUntpdCol::CElementInfoSeqUntpdCol(const char* elementName, const char* elementNamespace, int propertyId)
    : CElementInfoSeqCol(elementName, elementNamespace, propertyId) {}

bool CElementInfoSeqUntpdCol::ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                             CXmlElement* parentElement, CXmlElement** cursor,
                                             const char* ownerNamespace, XmlElementType ownerElementType) {
  return ReadCollection(*this, {ctx, owner, parentElement, cursor, ownerNamespace, ownerElementType}, Group::Sequence,
                        Items::Untyped);
}

}  // namespace KoXmlLib10Data
