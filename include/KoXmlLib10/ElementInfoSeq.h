#ifndef KOXMLLIB10_ELEMENTINFOSEQ_H
#define KOXMLLIB10_ELEMENTINFOSEQ_H

#include <string>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/MetaData.h"

// Element members of classes whose content is a sequence.
namespace KoXmlLib10Data {

// A simple-typed member that must be present.
class KOXML_API CElementInfoSeqPrimMnd : public CElementInfoSeq {
 public:
  CElementInfoSeqPrimMnd(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, ItemType itemType, const char* numberFormat,
      CWhitespaceUtils::WhitespaceRule whitespaceRule, const CPrimitiveRestrictions& restrictions);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
};

// A simple-typed member that may be absent; reading never skips for it.
class KOXML_API CElementInfoSeqPrimOpt : public CElementInfoSeq {
 public:
  CElementInfoSeqPrimOpt(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, ItemType itemType, const char* numberFormat,
      CWhitespaceUtils::WhitespaceRule whitespaceRule, const CPrimitiveRestrictions& restrictions);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
};

// An enumeration member (held as i4) that must be present.
class KOXML_API CElementInfoSeqEnumMnd : public CElementInfoSeq {
 public:
  CElementInfoSeqEnumMnd(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, EnumToTextFunction enumToText, TextToEnumFunction textToEnum);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;

  const EnumToTextFunction enumToText;
  const TextToEnumFunction textToEnum;
};

class KOXML_API CElementInfoSeqEnumOpt : public CElementInfoSeq {
 public:
  CElementInfoSeqEnumOpt(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, EnumToTextFunction enumToText, TextToEnumFunction textToEnum);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;

  const EnumToTextFunction enumToText;
  const TextToEnumFunction textToEnum;
};

// A member object that always exists in its owner and is filled in place.
class KOXML_API CElementInfoSeqClsMnd : public CElementInfoSeq {
 public:
  CElementInfoSeqClsMnd(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType, ClassFactoryFunction factory, int factoryCode,
      bool contentRequired);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
  // Mandatory pseudo content must consume at least one element.
  const bool contentRequired;
  const ClassFactoryFunction factory;
  const int factoryCode;
};

// An optional member object, created by the class factory when read.
class KOXML_API CElementInfoSeqClsOpt : public CElementInfoSeq {
 public:
  CElementInfoSeqClsOpt(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType, ClassFactoryFunction factory, int factoryCode);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
  const ClassFactoryFunction factory;
  const int factoryCode;
};

// A member of a derivable type: the element factory picks the class (xsi:type).
class KOXML_API CElementInfoSeqAbsClsMnd : public CElementInfoSeq {
 public:
  CElementInfoSeqAbsClsMnd(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType, ElementFactoryFunction factory);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
  const ElementFactoryFunction factory;
};

class KOXML_API CElementInfoSeqAbsClsOpt : public CElementInfoSeq {
 public:
  CElementInfoSeqAbsClsOpt(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType, ElementFactoryFunction factory);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
  const ElementFactoryFunction factory;
};

// Untyped content (a CElement); the name "AnyElement" accepts any element.
class KOXML_API CElementInfoSeqUntpdMnd : public CElementInfoSeq {
 public:
  CElementInfoSeqUntpdMnd(const char* elementName, const char* elementNamespace, int propertyId,
      const char* namespaceRestriction, const char* targetNamespace);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;

  // Wildcard restriction (##any, ##other, ##local, ##targetNamespace or a list).
  const std::string namespaceRestriction;
  const std::string targetNamespace;
};

class KOXML_API CElementInfoSeqUntpdOpt : public CElementInfoSeq {
 public:
  CElementInfoSeqUntpdOpt(const char* elementName, const char* elementNamespace, int propertyId,
      const char* namespaceRestriction, const char* targetNamespace);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;

  // Wildcard restriction (##any, ##other, ##local, ##targetNamespace or a list).
  const std::string namespaceRestriction;
  const std::string targetNamespace;
};

// Nothing that can be written or read; never handed to the engine.
class KOXML_API CElementInfoSeqNonCol : public CElementInfoSeq {
 public:
  CElementInfoSeqNonCol(const char* elementName, const char* elementNamespace, int propertyId);
};

// A repeated member: the collection in the property writes and reads its items.
class KOXML_API CElementInfoSeqCol : public CElementInfoSeq {
 public:
  CElementInfoSeqCol(const char* elementName, const char* elementNamespace, int propertyId);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
};

class KOXML_API CElementInfoSeqPrimCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqPrimCol(const char* elementName, const char* elementNamespace, int propertyId);
};

class KOXML_API CElementInfoSeqEnumCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqEnumCol(const char* elementName, const char* elementNamespace, int propertyId);
};

class KOXML_API CElementInfoSeqClsCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqClsCol(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType);
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
};

class KOXML_API CElementInfoSeqAbsClsCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqAbsClsCol(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType);
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
};

class KOXML_API CElementInfoSeqUntpdCol : public CElementInfoSeqCol {
 public:
  CElementInfoSeqUntpdCol(const char* elementName, const char* elementNamespace, int propertyId);
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
};

}  // namespace KoXmlLib10Data

#endif
