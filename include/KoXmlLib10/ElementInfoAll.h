#ifndef KOXMLLIB10_ELEMENTINFOALL_H
#define KOXMLLIB10_ELEMENTINFOALL_H

#include <string>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/MetaData.h"

// Element members of classes whose content is an all group.
namespace KoXmlLib10Data {

// Members of an all group read in any order; Validate reports a missing
// mandatory member once every child was offered.
class KOXML_API CElementInfoAllPrimMnd : public CElementInfoAll {
 public:
  CElementInfoAllPrimMnd(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, ItemType itemType, const char* numberFormat,
      CWhitespaceUtils::WhitespaceRule whitespaceRule, const CPrimitiveRestrictions& restrictions);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
};

class KOXML_API CElementInfoAllPrimOpt : public CElementInfoAll {
 public:
  CElementInfoAllPrimOpt(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, ItemType itemType, const char* numberFormat,
      CWhitespaceUtils::WhitespaceRule whitespaceRule, const CPrimitiveRestrictions& restrictions);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
};

class KOXML_API CElementInfoAllEnumMnd : public CElementInfoAll {
 public:
  CElementInfoAllEnumMnd(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, EnumToTextFunction enumToText, TextToEnumFunction textToEnum);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;

  const EnumToTextFunction enumToText;
  const TextToEnumFunction textToEnum;
};

class KOXML_API CElementInfoAllEnumOpt : public CElementInfoAll {
 public:
  CElementInfoAllEnumOpt(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, EnumToTextFunction enumToText, TextToEnumFunction textToEnum);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;

  const EnumToTextFunction enumToText;
  const TextToEnumFunction textToEnum;
};

class KOXML_API CElementInfoAllClsMnd : public CElementInfoAll {
 public:
  CElementInfoAllClsMnd(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType, ClassFactoryFunction factory, int factoryCode,
      bool contentRequired);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
  // Mandatory pseudo content must consume at least one element.
  const bool contentRequired;
  const ClassFactoryFunction factory;
  const int factoryCode;
};

class KOXML_API CElementInfoAllClsOpt : public CElementInfoAll {
 public:
  CElementInfoAllClsOpt(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType, ClassFactoryFunction factory, int factoryCode);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
  const ClassFactoryFunction factory;
  const int factoryCode;
};

// Derivable-type members of an all group are written; reading them is not provided.
class KOXML_API CElementInfoAllAbsClsMnd : public CElementInfoAll {
 public:
  CElementInfoAllAbsClsMnd(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType, ElementFactoryFunction factory, int unused);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
  const ElementFactoryFunction factory;
  const int unused;  // kept as the generator hands it over
};

class KOXML_API CElementInfoAllAbsClsOpt : public CElementInfoAll {
 public:
  CElementInfoAllAbsClsOpt(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType, ElementFactoryFunction factory);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
  const ElementFactoryFunction factory;
};

class KOXML_API CElementInfoAllUntpdMnd : public CElementInfoAll {
 public:
  CElementInfoAllUntpdMnd(const char* elementName, const char* elementNamespace, int propertyId,
      const char* namespaceRestriction, const char* targetNamespace);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;

  // Wildcard restriction (##any, ##other, ##local, ##targetNamespace or a list).
  const std::string namespaceRestriction;
  const std::string targetNamespace;
};

class KOXML_API CElementInfoAllUntpdOpt : public CElementInfoAll {
 public:
  CElementInfoAllUntpdOpt(const char* elementName, const char* elementNamespace, int propertyId,
      const char* namespaceRestriction, const char* targetNamespace);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;

  // Wildcard restriction (##any, ##other, ##local, ##targetNamespace or a list).
  const std::string namespaceRestriction;
  const std::string targetNamespace;
};

// A repeated enumeration in an all group, handled like the other repeated members.
class KOXML_API CElementInfoAllEnumCol : public CElementInfoAll {
 public:
  CElementInfoAllEnumCol(const char* elementName, const char* elementNamespace, int propertyId);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
};

// Nothing that can be written or read; never handed to the engine.
class KOXML_API CElementInfoAllNonCol : public CElementInfoAll {
 public:
  CElementInfoAllNonCol(const char* elementName, const char* elementNamespace, int propertyId);
};

// A repeated member of an all group: it keeps collecting in later passes.
class KOXML_API CElementInfoAllCol : public CElementInfoAll {
 public:
  CElementInfoAllCol(const char* elementName, const char* elementNamespace, int propertyId);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
};

class KOXML_API CElementInfoAllPrimCol : public CElementInfoAllCol {
 public:
  CElementInfoAllPrimCol(const char* elementName, const char* elementNamespace, int propertyId);
};

class KOXML_API CElementInfoAllClsCol : public CElementInfoAllCol {
 public:
  CElementInfoAllClsCol(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType);
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
};

class KOXML_API CElementInfoAllAbsClsCol : public CElementInfoAllCol {
 public:
  CElementInfoAllAbsClsCol(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType);
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
};

class KOXML_API CElementInfoAllUntpdCol : public CElementInfoAllCol {
 public:
  CElementInfoAllUntpdCol(const char* elementName, const char* elementNamespace, int propertyId);
};

}  // namespace KoXmlLib10Data

#endif
