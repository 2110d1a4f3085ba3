#ifndef KOXMLLIB10_ATTRIBUTEINFO_H
#define KOXMLLIB10_ATTRIBUTEINFO_H

#include <string>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/MetaData.h"

// Attribute members of generated classes.
namespace KoXmlLib10Data {

// An attribute of a simple type. Facets are checked when it is written,
// never when it is read.
class KOXML_API CAttributeInfoPrimitive : public CAttributeInfo {
 public:
  CAttributeInfoPrimitive(const char* attributeName, const char* attributeNamespace, int propertyId, bool optional,
                          ItemType itemType, const char* numberFormat,
                          CWhitespaceUtils::WhitespaceRule whitespaceRule,
                          const CPrimitiveRestrictions& restrictions, const char* defaultValue);
  void AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                      CXmlWriter* writer) const override;
  bool AttributeFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                        CXmlAttribute* attribute) override;
  void Validate(const CXmlSerializationContext& ctx, bool found) const override;

  void CheckRestriction(KoVariant value) const;

  const CPrimitiveRestrictions restrictions;
  const ItemType itemType;
  const std::string numberFormat;
  const CWhitespaceUtils::WhitespaceRule whitespaceRule;
};

// An attribute of an enumerated type, held as i4.
class KOXML_API CAttributeInfoEnum : public CAttributeInfo {
 public:
  CAttributeInfoEnum(const char* attributeName, const char* attributeNamespace, int propertyId, bool optional,
                     EnumToTextFunction enumToText, TextToEnumFunction textToEnum, const char* defaultValue);
  void AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                      CXmlWriter* writer) const override;
  bool AttributeFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                        CXmlAttribute* attribute) override;
  void Validate(const CXmlSerializationContext& ctx, bool found) const override;

  const EnumToTextFunction enumToText;
  const TextToEnumFunction textToEnum;
};

// An xs:anyAttribute wildcard; the property holds a CAttributeCol.
class KOXML_API CAttributeInfoAny : public CAttributeInfo {
 public:
  CAttributeInfoAny(const char* attributeName, const char* attributeNamespace, int propertyId, bool optional,
                    const char* namespaceRestriction, const char* targetNamespace, const char* defaultValue);
  void AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                      CXmlWriter* writer) const override;
  bool AttributeFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                        CXmlAttribute* attribute) override;
  void Validate(const CXmlSerializationContext& ctx, bool found) const override;

  const std::string namespaceRestriction;
  const std::string targetNamespace;
};

}  // namespace KoXmlLib10Data

#endif
