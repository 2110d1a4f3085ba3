#ifndef KOXML_TESTS_SUPPORT_TESTRECORDS_H
#define KOXML_TESTS_SUPPORT_TESTRECORDS_H

// Small member records for the hand-written model of TestModel.h. They
// follow the contract the engine relies on (what ElementFromXml returns and
// how it moves the cursor, what ElementToXml writes) for the few member
// kinds the engine's tests need: primitive values, a run of repeated
// primitive elements, class members with and without an element of their
// own, choice and all alternatives, and primitive attributes. The library's
// own record classes can replace them one for one: each is built where the
// model creates its records (TestModel.cpp).

#include <strings.h>

#include <string>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/MetaData.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlGeneratedClass.h"
#include "KoXmlLib10/XmlWriter.h"

namespace testmodel {

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

inline constexpr char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

// What a record answers when its element is not at the cursor.
enum class Occurs {
  Mandatory,  // search on with IgnoreUnknownElements, else fail
  Optional,   // satisfied, nothing read
  Strict,     // not matched: the engine decides
};

// Writes a primitive member: nothing when unset, an empty nil element when nil.
inline bool WritePrimitive(const CElementInfo& record, const CXmlGeneratedClass* owner, CXmlWriter* writer) {
  KoVariant value;
  record.ReadProperty(owner, value);
  if (!value.IsValid()) return false;
  writer->WriteStartElement(record.elementName, record.elementNamespace);
  if (value.IsNil())
    writer->WriteAttributeNil();
  else
    writer->WriteString(value.ToString(record.numberFormat.c_str()), record.itemType);
  writer->WriteEndElement();
  return true;
}

// Reads the primitive value of `element` by the nil rule and stores it.
inline void ReadPrimitive(const CElementInfo& record, CXmlGeneratedClass* owner, const CXmlElement* element) {
  KoVariant value;
  const std::string& nil = element->GetAttribute("nil", kXsi);
  auto is = [&](const char* text) { return strcasecmp(nil.c_str(), text) == 0; };
  if (!nil.empty() && !is("false") && !is("0")) {
    if (!record.nillable)
      throw CKoValidationException(FormatString("Invalid use of 'nil' attibute in non-nillable element [%s]",
                                                record.elementName.c_str()));
    if (!is("true") && !is("1"))
      throw CKoValidationException(FormatString("Unexpected Value [%s] for 'nil' Attribute found.", nil.c_str()));
    value.SetNil();
  } else {
    value.FromString(element->GetText(), record.itemType, record.whitespaceRule);
  }
  record.AccessProperty(owner, false, value);
}

[[noreturn]] inline void ThrowRequired(const CElementInfo& record) {
  throw CKoValidationException(FormatString("Failed to find a required element [%s]", record.elementName.c_str()));
}

// A primitive member of a sequence.
class TestSeqPrim : public CElementInfoSeq {
 public:
  TestSeqPrim(const char* name, const char* ns, int propertyId, Occurs occurs, ItemType type,
              bool nillable = false)
      : CElementInfoSeq(name, ns, propertyId, nillable, type, nullptr, CWhitespaceUtils::WhitespaceRule_Collapse,
                        CPrimitiveRestrictions()),
        m_occurs(occurs) {}
  bool ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override {
    return WritePrimitive(*this, owner, writer);
  }
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement*,
                      CXmlElement** cursor, const char*, XmlElementType) override {
    for (;;) {
      if (IsThisElement(ctx, *cursor)) {
        ReadPrimitive(*this, owner, *cursor);
        *cursor = (*cursor)->GetNextSiblingElement();
        return true;
      }
      if (m_occurs == Occurs::Optional) return true;
      if (m_occurs == Occurs::Strict) return false;
      if (ctx.GetIgnoreMissingMandatoryElements()) return true;
      if (!ctx.GetIgnoreUnknownElements() || !*cursor) ThrowRequired(*this);
      *cursor = (*cursor)->GetNextSiblingElement();
    }
  }

 private:
  const Occurs m_occurs;
};

// A run of repeated string elements, kept in one property as a
// comma-separated list; stands in for a primitive collection.
class TestSeqRun : public CElementInfoSeq {
 public:
  TestSeqRun(const char* name, const char* ns, int propertyId) : CElementInfoSeq(name, ns, propertyId) {}
  bool ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override {
    KoVariant value;
    ReadProperty(owner, value);
    const std::string list = value.IsValid() ? value.GetString() : std::string();
    if (list.empty()) return false;
    size_t start = 0;
    for (;;) {
      const size_t comma = list.find(',', start);
      writer->WriteStartElement(elementName, elementNamespace);
      writer->WriteString(list.substr(start, comma - start), ItemType_string);
      writer->WriteEndElement();
      if (comma == std::string::npos) return true;
      start = comma + 1;
    }
  }
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement*,
                      CXmlElement** cursor, const char*, XmlElementType) override {
    while (IsThisElement(ctx, *cursor)) {
      KoVariant value;
      ReadProperty(owner, value);
      std::string list = value.IsValid() ? value.GetString() : std::string();
      if (!list.empty()) list += ',';
      list += (*cursor)->GetText();
      value.SetString(list);
      AccessProperty(owner, false, value);
      *cursor = (*cursor)->GetNextSiblingElement();
    }
    return true;
  }
};

using TestFactory = CSmartPtr<CXmlObjectBase> (*)(int, const char*);

// A class member of a sequence. With an element of its own it is created by
// the factory when its element is found; a pseudo element is always present
// and reads from the owner's children.
class TestSeqCls : public CElementInfoSeq {
 public:
  TestSeqCls(const char* name, const char* ns, int propertyId, Occurs occurs, XmlElementType elementType,
             TestFactory factory, int factoryCode)
      : CElementInfoSeq(name, ns, propertyId),
        m_occurs(occurs),
        m_elementType(elementType),
        m_factory(factory),
        m_factoryCode(factoryCode) {}
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override {
    KoVariant value;
    ReadProperty(owner, value);
    CSmartPtr<CXmlObjectBase> object(value.GetXmlObject());
    if (!object) return false;
    object->Release();  // GetXmlObject's own reference; the pointer keeps one
    CXmlObjectBase::ToXml_Int(object.get(), writer, false, elementNamespace.c_str(), ctx, false);
    return true;
  }
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parentElement,
                      CXmlElement** cursor, const char*, XmlElementType) override {
    if (m_elementType != XmlElementTypeElement) {
      KoVariant value;
      AccessProperty(owner, true, value);
      CSmartPtr<CXmlObjectBase> object(value.GetXmlObject());
      object->Release();
      *cursor = FromXml_Int(object.get(), parentElement, *cursor, ctx, false);
      return true;
    }
    for (;;) {
      if (IsThisElement(ctx, *cursor)) {
        CSmartPtr<CXmlObjectBase> object = m_factory(m_factoryCode, elementName.c_str());
        FromXml_Int(object.get(), *cursor, (*cursor)->GetFirstElement(), ctx, false);
        *cursor = (*cursor)->GetNextSiblingElement();
        KoVariant value;
        value.SetXmlObject(object.get());
        AccessProperty(owner, false, value);
        return true;
      }
      if (m_occurs != Occurs::Mandatory) return m_occurs == Occurs::Optional;
      if (!ctx.GetIgnoreUnknownElements() || !*cursor) ThrowRequired(*this);
      *cursor = (*cursor)->GetNextSiblingElement();
    }
  }
  void PseudoChildAttributeToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                                 CXmlWriter* writer) const override {
    if (m_elementType != XmlElementTypePseudo) return;
    KoVariant value;
    ReadProperty(owner, value);
    CSmartPtr<CXmlObjectBase> object(value.GetXmlObject());
    if (!object) return;
    object->Release();
    AttributesToXml_Int(object.get(), writer, ctx);
  }

 private:
  const Occurs m_occurs;
  const XmlElementType m_elementType;
  const TestFactory m_factory;
  const int m_factoryCode;
};

// A primitive alternative of a choice.
class TestChoicePrim : public CElementInfoChoice {
 public:
  TestChoicePrim(const char* name, const char* ns, int propertyId, ItemType type)
      : CElementInfoChoice(name, ns, propertyId, false, type, nullptr, CWhitespaceUtils::WhitespaceRule_Collapse,
                           CPrimitiveRestrictions()) {}
  bool ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override {
    return WritePrimitive(*this, owner, writer);
  }
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement*,
                      CXmlElement** cursor, const char*, XmlElementType) override {
    if (!IsThisElement(ctx, *cursor)) return false;
    ReadPrimitive(*this, owner, *cursor);
    *cursor = (*cursor)->GetNextSiblingElement();
    return true;
  }
};

// An optional class alternative of a choice. A choice class written or read
// here may itself be empty.
class TestChoiceCls : public CElementInfoChoice {
 public:
  TestChoiceCls(const char* name, const char* ns, int propertyId, TestFactory factory, int factoryCode)
      : CElementInfoChoice(name, ns, propertyId), m_factory(factory), m_factoryCode(factoryCode) {}
  bool ElementToXml(const CXmlSerializationContext& ctx, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override {
    KoVariant value;
    ReadProperty(owner, value);
    CSmartPtr<CXmlObjectBase> object(value.GetXmlObject());
    if (!object) return false;
    object->Release();
    CXmlObjectBase::ToXml_Int(object.get(), writer, false, elementNamespace.c_str(), ctx, true);
    return true;
  }
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement*,
                      CXmlElement** cursor, const char*, XmlElementType) override {
    if (!IsThisElement(ctx, *cursor)) return false;
    CSmartPtr<CXmlObjectBase> object = m_factory(m_factoryCode, elementName.c_str());
    KoVariant value;
    value.SetXmlObject(object.get());
    AccessProperty(owner, false, value);
    FromXml_Int(object.get(), *cursor, (*cursor)->GetFirstElement(), ctx, true);
    *cursor = (*cursor)->GetNextSiblingElement();
    return true;
  }

 private:
  const TestFactory m_factory;
  const int m_factoryCode;
};

// A primitive member of an all group.
class TestAllPrim : public CElementInfoAll {
 public:
  TestAllPrim(const char* name, const char* ns, int propertyId, bool mandatory, ItemType type)
      : CElementInfoAll(name, ns, propertyId, false, type, nullptr, CWhitespaceUtils::WhitespaceRule_Collapse,
                        CPrimitiveRestrictions()),
        m_mandatory(mandatory) {}
  bool ElementToXml(const CXmlSerializationContext&, const CXmlGeneratedClass* owner,
                    CXmlWriter* writer) const override {
    return WritePrimitive(*this, owner, writer);
  }
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement*,
                      CXmlElement** cursor, const char*, XmlElementType) override {
    if (!IsThisElement(ctx, *cursor)) return false;
    ReadPrimitive(*this, owner, *cursor);
    *cursor = (*cursor)->GetNextSiblingElement();
    return true;
  }
  bool Validate(const CXmlSerializationContext&, const CXmlGeneratedClass*, bool found,
                bool ownerHasElement) const override {
    if (found || !m_mandatory) return true;
    if (!ownerHasElement) return false;
    throw CKoValidationException(FormatString("Failed to find the mandatory element [%s]", elementName.c_str()));
  }

 private:
  const bool m_mandatory;
};

// A primitive attribute.
class TestAttrPrim : public CAttributeInfo {
 public:
  TestAttrPrim(const char* name, const char* ns, int propertyId, bool optional, ItemType type)
      : CAttributeInfo(name, ns, propertyId, optional, nullptr), m_type(type) {}
  void AttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass* owner,
                      CXmlWriter* writer) const override {
    KoVariant value;
    ReadProperty(owner, value);
    if (!value.IsValid() || value.IsNil()) return;
    writer->WriteAttributeString(attributeName, attributeNamespace, value.ToString(nullptr), m_type);
  }
  bool AttributeFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                        CXmlAttribute* attribute) override {
    if (!IsThisAttribute(ctx, attribute)) return false;
    KoVariant value;
    value.FromString(attribute->GetValue(), m_type, CWhitespaceUtils::WhitespaceRule_Collapse);
    AccessProperty(owner, false, value);
    return true;
  }
  void Validate(const CXmlSerializationContext&, bool found) const override {
    if (!found && !optional)
      throw CKoValidationException(
          FormatString("Failed to find the required Attribute [%s]", attributeName.c_str()));
  }

 private:
  const ItemType m_type;
};

}  // namespace testmodel

#endif
