#ifndef KOXMLLIB10_ELEMENTINFOCHOICE_H
#define KOXMLLIB10_ELEMENTINFOCHOICE_H

#include <string>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/MetaData.h"

// Element members of classes whose content is a choice.
namespace KoXmlLib10Data {

// Alternatives of a choice: each answers false when the element at the cursor is
// not its own.
class KOXML_API CElementInfoChoicePrimOpt : public CElementInfoChoice {
 public:
  CElementInfoChoicePrimOpt(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, ItemType itemType, const char* numberFormat,
      CWhitespaceUtils::WhitespaceRule whitespaceRule, const CPrimitiveRestrictions& restrictions);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
};

class KOXML_API CElementInfoChoiceEnumOpt : public CElementInfoChoice {
 public:
  CElementInfoChoiceEnumOpt(const char* elementName, const char* elementNamespace, int propertyId,
      bool nillable, EnumToTextFunction enumToText, TextToEnumFunction textToEnum);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;

  const EnumToTextFunction enumToText;
  const TextToEnumFunction textToEnum;
};

class KOXML_API CElementInfoChoiceClsOpt : public CElementInfoChoice {
 public:
  CElementInfoChoiceClsOpt(const char* elementName, const char* elementNamespace, int propertyId,
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

class KOXML_API CElementInfoChoiceAbsClsOpt : public CElementInfoChoice {
 public:
  CElementInfoChoiceAbsClsOpt(const char* elementName, const char* elementNamespace, int propertyId,
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

class KOXML_API CElementInfoChoiceUntpdOpt : public CElementInfoChoice {
 public:
  CElementInfoChoiceUntpdOpt(const char* elementName, const char* elementNamespace, int propertyId,
      const char* namespaceRestriction, const char* targetNamespace);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;

  // Wildcard restriction (##any, ##other, ##local, ##targetNamespace or a list).
  const std::string namespaceRestriction;
  const std::string targetNamespace;
};

// A repeated alternative; it does not check the count before writing.
class KOXML_API CElementInfoChoiceCol : public CElementInfoChoice {
 public:
  CElementInfoChoiceCol(const char* elementName, const char* elementNamespace, int propertyId);
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override;
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
};

class KOXML_API CElementInfoChoicePrimCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoicePrimCol(const char* elementName, const char* elementNamespace, int propertyId);
};

class KOXML_API CElementInfoChoiceEnumCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceEnumCol(const char* elementName, const char* elementNamespace, int propertyId);
};

class KOXML_API CElementInfoChoiceClsCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceClsCol(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType);
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
};

class KOXML_API CElementInfoChoiceAbsClsCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceAbsClsCol(const char* elementName, const char* elementNamespace, int propertyId,
      XmlElementType elementType);
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override;

  const XmlElementType elementType;
};

class KOXML_API CElementInfoChoiceUntpdCol : public CElementInfoChoiceCol {
 public:
  CElementInfoChoiceUntpdCol(const char* elementName, const char* elementNamespace, int propertyId);
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char* ownerNamespace, XmlElementType ownerElementType) override;
};

}  // namespace KoXmlLib10Data

#endif
