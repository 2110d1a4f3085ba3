#ifndef KOXMLLIB10_MEMBERS_RECORDCORE_H
#define KOXMLLIB10_MEMBERS_RECORDCORE_H

// The one implementation behind every element and attribute record class.
// Internal: not installed. The public record classes are thin so that
// generated code can name and derive from them; each of their overrides is a
// single call into the functions below, which hold each rule exactly once.
//
// A record's behaviour varies along three axes:
//   - the group of its owner (how a miss is answered: a sequence searches or
//     is satisfied, a choice alternative or an all-group member answers false),
//   - its occurrence (what a miss means),
//   - its kind, expressed as a codec carrying the kind's own data.
// The codecs are overloads rather than one template: the kinds differ in what
// they do with the element, not only in how they convert a value.

#include <string>

#include "KoXmlLib10/MetaData.h"

namespace KoXmlLib10Data {
class CAttributeInfoPrimitive;
class CAttributeInfoEnum;
}  // namespace KoXmlLib10Data

namespace KoXmlLib10Data::core {

enum class Group { Sequence, Choice, All };
enum class Occurs { Mandatory, Optional };

// The arguments of one ElementFromXml call. The references and pointers are
// the caller's and live for the call only.
struct ReadArgs {
  const CXmlSerializationContext& ctx;
  CXmlGeneratedClass* owner;
  CXmlElement* parent;
  CXmlElement** cursor;
  const char* ownerNamespace;
  XmlElementType ownerElementType;

  // The owner is itself a pseudo element whose presence its caller decides.
  bool PseudoOwner() const { return ownerElementType != XmlElementTypeElement; }
};

// A simple-typed value: parsed with the record's item type and whitespace rule.
struct PrimCodec {};
// An enumeration held as i4, parsed with the generated text function.
struct EnumCodec {
  TextToEnumFunction textToEnum;
};
// An object of one generated class: filled in place (mandatory) or made by
// the class factory (optional).
struct ClsCodec {
  XmlElementType elementType;
  ClassFactoryFunction factory;
  int factoryCode;
  bool contentRequired;
};
// An object of a derivable type, chosen by the element factory.
struct AbsClsCodec {
  XmlElementType elementType;
  ElementFactoryFunction factory;
};
// Untyped content (a CElement) under a wildcard restriction.
struct UntpdCodec {
  const std::string& namespaceRestriction;
  const std::string& targetNamespace;
};

// The object or collection a variant holds, with one reference held for as
// long as the result lives (the variant's own reference is left alone).
CSmartPtr<CXmlObjectBase> TakeObject(const KoVariant& value);

// The object (or collection) in the record's property, holding one reference
// for as long as the result lives; null when the property holds none.
CSmartPtr<CXmlObjectBase> PropertyObject(const CElementInfo& record, const CXmlGeneratedClass* owner);

// Reading one element member (not repeated).
bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs, const PrimCodec& codec);
bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs, const EnumCodec& codec);
bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs, const ClsCodec& codec);
bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs,
                const AbsClsCodec& codec);
bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs,
                const UntpdCodec& codec);

// Repeated members: the collection in the property reads its run of
// elements; untyped collections collect by the record's name.
enum class Items { Typed, Untyped };
bool ReadCollection(const CElementInfo& record, const ReadArgs& args, Group group, Items items);
// Sequence and all groups check the count before writing; a choice does not.
bool WriteCollection(const CElementInfo& record, const CXmlSerializationContext& ctx,
                     const CXmlGeneratedClass* owner, CXmlWriter* writer, Group group);

// The attributes of a pseudo-element child (object or collection of them).
void WritePseudoChildAttributes(const CElementInfo& record, const CXmlSerializationContext& ctx,
                                const CXmlGeneratedClass* owner, CXmlWriter* writer, XmlElementType elementType);

// Validate of the all family. `mayBeMissing` lets a mandatory member be
// absent (a class member with its own element and no required content).
bool ValidateAllMember(const CElementInfo& record, bool found, bool ownerHasElement, Occurs occurs,
                       bool mayBeMissing = false);
bool ValidateAllCollection(const CElementInfo& record, const CXmlSerializationContext& ctx,
                           const CXmlGeneratedClass* owner, bool ownerHasElement);
// Derivable-type members of an all group cannot be read: `message` names the record.
bool ReadAllAbsCls(const CElementInfo& record, const ReadArgs& args, const char* message);

// Attribute records. The codecs say how a value attribute turns into text
// and back; the rules around them (unset optional values, defaults left out,
// required attributes) are the same for both.
struct PrimAttributeCodec {
  const CAttributeInfoPrimitive& record;
};
struct EnumAttributeCodec {
  const CAttributeInfoEnum& record;
};
void WriteAttribute(const CAttributeInfo& record, const CXmlSerializationContext& ctx,
                    const CXmlGeneratedClass* owner, CXmlWriter* writer, const PrimAttributeCodec& codec);
void WriteAttribute(const CAttributeInfo& record, const CXmlSerializationContext& ctx,
                    const CXmlGeneratedClass* owner, CXmlWriter* writer, const EnumAttributeCodec& codec);
bool ReadAttribute(const CAttributeInfo& record, const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                   CXmlAttribute* attribute, const PrimAttributeCodec& codec);
bool ReadAttribute(const CAttributeInfo& record, const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                   CXmlAttribute* attribute, const EnumAttributeCodec& codec);
void ValidateRequiredAttribute(const CAttributeInfo& record, bool found);

}  // namespace KoXmlLib10Data::core

#endif
