#ifndef KOXMLLIB10_METADATA_H
#define KOXMLLIB10_METADATA_H

#include <cstdint>
#include <string>

#include "KoXmlLib10/Conversions.h"
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/Facets.h"
#include "KoXmlLib10/ItemType.h"
#include "KoXmlLib10/SerializationContext.h"
#include "KoXmlLib10/SmartPtr.h"
#include "KoXmlLib10/Variant.h"

namespace KoXmlLib10 {
class CXmlGeneratedClass;
class CXmlObjectBase;
class CXmlWriter;
class CXmlElement;
class CXmlAttribute;
}  // namespace KoXmlLib10

// The metadata records with which a generated class describes itself to the
// engine. Records are created once per class by generated code, never change
// afterwards, keep no state between calls, and may be used by any number of
// threads at once.
namespace KoXmlLib10Data {

using KoXmlLib10::CPrimitiveRestrictions;
using KoXmlLib10::CWhitespaceUtils;
using KoXmlLib10::CXmlAttribute;
using KoXmlLib10::CXmlElement;
using KoXmlLib10::CXmlGeneratedClass;
using KoXmlLib10::CXmlObjectBase;
using KoXmlLib10::CXmlSerializationContext;
using KoXmlLib10::CXmlWriter;
using KoXmlLib10::ItemType;
using KoXmlLib10::KoVariant;

// Functions that generated code supplies to the records.
using EnumToTextFunction = const char* (*)(int);
using TextToEnumFunction = int (*)(const char*);
// Creates a new, empty object of the class `factoryCode` names, with its
// element name set; must return an object.
using ClassFactoryFunction = CSmartPtr<CXmlObjectBase> (*)(int factoryCode, const char* elementName);
// Chooses the class for `element` (normally from its xsi:type) and returns a
// new, empty object of it with its element name set, or null when no class fits.
using ElementFactoryFunction = CSmartPtr<CXmlObjectBase> (*)(CXmlElement* element);

enum XmlElementGroupType : std::int32_t {
  XmlElementGroupTypeSequence = 0,
  XmlElementGroupTypeChoice = 1,
  XmlElementGroupTypeAll = 2,
};

enum XmlElementType : std::int32_t {
  // The class's instances have an element of their own.
  XmlElementTypeElement = 0,
  // No element of its own: its children stand among the owner's children
  // and its attributes go on the owner's element. Readers treat every
  // non-zero value this way.
  XmlElementTypePseudo = 1,
};

// The description of a generated class.
class KOXML_API CParentElementInfo {
 public:
  CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType, const char* typeName,
                     const char* typeNamespace, bool rejectUnknownAttributes, bool writeTypeAttribute,
                     int valuePropertyId, ItemType valueType, const char* valueFormat, bool valueAsText);
  virtual ~CParentElementInfo();

  // Simple content exists when both valuePropertyId and valueType are set.
  bool HasSimpleContent() const { return valuePropertyId != -1 && valueType != 0; }

  const XmlElementGroupType groupType;
  const XmlElementType elementType;
  // Written as the local part of xsi:type for this class.
  const std::string typeName;
  const std::string typeNamespace;
  // An attribute no record takes is an error (unless the context ignores it).
  const bool rejectUnknownAttributes;
  // xsi:type is written when the object's element name differs from typeName.
  const bool writeTypeAttribute;
  const int valuePropertyId;  // -1: no simple content
  const ItemType valueType;   // 0: no simple content
  const std::string valueFormat;
  // The simple content is read as a plain string, without conversion.
  const bool valueAsText;
};

// One element member of a generated class. The concrete kinds (primitive,
// enumeration, class, derivable class, untyped; mandatory, optional,
// repeated) derive from the three group bases below.
class KOXML_API CElementInfo {
 public:
  CElementInfo(const char* elementName, const char* elementNamespace, int propertyId);
  CElementInfo(const char* elementName, const char* elementNamespace, int propertyId, bool nillable);
  // The only constructor that marks the record as primitive (with facets).
  CElementInfo(const char* elementName, const char* elementNamespace, int propertyId, bool nillable,
               ItemType itemType, const char* numberFormat, CWhitespaceUtils::WhitespaceRule whitespaceRule,
               const CPrimitiveRestrictions& restrictions);
  CElementInfo(const CElementInfo&) = delete;
  CElementInfo& operator=(const CElementInfo&) = delete;

  virtual ~CElementInfo();
  // Writes the member of `owner`; true when anything was written.
  virtual bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                            CXmlWriter* writer) const = 0;
  // Reads the member from the children of parentElement from *cursor on
  // (null: none left) and moves *cursor behind what it consumed. True when
  // the member is satisfied; false when the element at the cursor is not the
  // member's and the caller decides.
  virtual bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                              CXmlElement* parentElement, CXmlElement** cursor, const char* ownerNamespace,
                              XmlElementType ownerElementType) = 0;
  // All groups only, after reading: false makes a pseudo owner absent; a
  // missing mandatory member of an element owner throws.
  virtual bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                        bool ownerHasElement) const = 0;
  // Writes the attributes of a pseudo-element child on the owner's element;
  // nothing here.
  virtual void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                         CXmlWriter* writer) const;

  // The element's local name, and unless namespaces are ignored its namespace.
  bool IsThisElement(const CXmlSerializationContext& ctx, const CXmlElement* element) const;
  // get true fills `value` from the owner's property, get false stores it.
  void AccessProperty(CXmlGeneratedClass* owner, bool get, KoVariant& value) const;
  void ReadProperty(const CXmlGeneratedClass* owner, KoVariant& value) const;
  // Facets of a primitive member; throws for any other record.
  void CheckRestriction(const KoVariant& value) const;

  // The writing operations every member kind shares.
  bool ElementToXmlPrim(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                        CXmlWriter* writer) const;
  bool ElementToXmlEnum(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                        CXmlWriter* writer, const char* (*enumToText)(int)) const;
  bool ElementToXmlCls(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, CXmlWriter* writer,
                       bool choiceMayBeEmpty) const;
  bool ElementToXmlCol(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                       CXmlWriter* writer) const;
  // Default namespace of a new untyped element under a wildcard restriction.
  static std::string GetAnyDefaultNamespace(const char* namespaceRestriction, const char* ownerNamespace,
                                            const char* targetNamespace);

  // Doors to the protected operations of objects.
  static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* element, CXmlElement* firstChild,
                                  const CXmlSerializationContext& ctx, bool choiceMayBeEmpty);
  static void AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                  const CXmlSerializationContext& ctx);

  const std::string elementName;
  const std::string elementNamespace;
  const int propertyId;
  const CPrimitiveRestrictions restrictions;
  const ItemType itemType;
  const std::string numberFormat;
  const CWhitespaceUtils::WhitespaceRule whitespaceRule;
  const bool nillable;
  // Set only by the primitive constructor; guards CheckRestriction.
  const bool isPrimitive;
};

// Base of the sequence family. Validate is never used for it and throws.
class KOXML_API CElementInfoSeq : public CElementInfo {
 public:
  CElementInfoSeq(const char* elementName, const char* elementNamespace, int propertyId);
  CElementInfoSeq(const char* elementName, const char* elementNamespace, int propertyId, bool nillable);
  CElementInfoSeq(const char* elementName, const char* elementNamespace, int propertyId, bool nillable,
                  ItemType itemType, const char* numberFormat, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                  const CPrimitiveRestrictions& restrictions);
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
};

// Base of the choice family. Validate is never used for it and throws.
class KOXML_API CElementInfoChoice : public CElementInfo {
 public:
  CElementInfoChoice(const char* elementName, const char* elementNamespace, int propertyId);
  CElementInfoChoice(const char* elementName, const char* elementNamespace, int propertyId, bool nillable);
  CElementInfoChoice(const char* elementName, const char* elementNamespace, int propertyId, bool nillable,
                     ItemType itemType, const char* numberFormat,
                     CWhitespaceUtils::WhitespaceRule whitespaceRule, const CPrimitiveRestrictions& restrictions);
  bool Validate(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner, bool found,
                bool ownerHasElement) const override;
};

// Base of the all family; each kind answers Validate itself.
class KOXML_API CElementInfoAll : public CElementInfo {
 public:
  CElementInfoAll(const char* elementName, const char* elementNamespace, int propertyId);
  CElementInfoAll(const char* elementName, const char* elementNamespace, int propertyId, bool nillable);
  CElementInfoAll(const char* elementName, const char* elementNamespace, int propertyId, bool nillable,
                  ItemType itemType, const char* numberFormat, CWhitespaceUtils::WhitespaceRule whitespaceRule,
                  const CPrimitiveRestrictions& restrictions);
};

// One attribute member of a generated class.
class KOXML_API CAttributeInfo {
 public:
  CAttributeInfo(const char* attributeName, const char* attributeNamespace, int propertyId, bool optional,
                 const char* defaultValue);
  CAttributeInfo(const CAttributeInfo&) = delete;
  CAttributeInfo& operator=(const CAttributeInfo&) = delete;

  virtual ~CAttributeInfo();
  virtual void AttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                              CXmlWriter* writer) const = 0;
  // True when the record takes the attribute and has stored its value.
  virtual bool AttributeFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                                CXmlAttribute* attribute) = 0;
  // Called once per record after every attribute was offered; throws for a
  // missing required attribute.
  virtual void Validate(const CXmlSerializationContext& ctx, bool found) const = 0;

  // The attribute's local name, and unless namespaces are ignored its namespace.
  bool IsThisAttribute(const CXmlSerializationContext& ctx, CXmlAttribute* attribute) const;
  void AccessProperty(CXmlGeneratedClass* owner, bool get, KoVariant& value) const;
  void ReadProperty(const CXmlGeneratedClass* owner, KoVariant& value) const;

  static void ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot,
                        const char* elementNamespace, const CXmlSerializationContext& ctx);
  static std::string GetTargetNamespace(const CXmlObjectBase* object);
  static bool IsNamespaceValid(const std::string& namespaceUri, const std::string& restriction,
                               const std::string& targetNamespace);
  static void TestNamespace(const std::string& namespaceUri, const std::string& restriction,
                            const std::string& targetNamespace);

  const std::string attributeName;
  const std::string attributeNamespace;
  const int propertyId;
  // The attribute may be absent.
  const bool optional;
  // The schema default as text; only used to suppress output (never stored on reading).
  const std::string defaultValue;
};

}  // namespace KoXmlLib10Data

#endif
