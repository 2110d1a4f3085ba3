#include "members/RecordCore.h"

#include <strings.h>

#include <cassert>
#include <cstring>

#include "KoXmlLib10/AttributeInfo.h"
#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Untyped.h"
#include "KoXmlLib10/XmlCollectionBase.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlGeneratedClass.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "KoXmlLib10/XmlWriter.h"
#include "binding/CachedCast.h"
#include "binding/VariantItemType.h"
#include "members/MembersMessages.h"
#include "members/ReadText.h"
#include "types/VariantAccess.h"
#include "types/VariantText.h"

namespace KoXmlLib10Data::core {

namespace {

using KoXmlLib10::CAttributeCol;
using KoXmlLib10::CElement;
using KoXmlLib10::CElementCol;
using KoXmlLib10::CKoException;
using KoXmlLib10::CKoInvalidValueException;
using KoXmlLib10::CKoValidationException;
using KoXmlLib10::CXmlCollectionBase;
using KoXmlLib10::FormatString;
namespace msg = KoXmlLib10::msg;

const char kSchemaInstanceNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
// An untyped member of this name accepts an element of any name.
const char kAnyElementName[] = "AnyElement";

using ObjectPtr = CSmartPtr<CXmlObjectBase>;


void StoreObject(const CElementInfo& record, CXmlGeneratedClass* owner, CXmlObjectBase* object) {
  KoVariant value;
  value.SetXmlObject(object);  // null stores a variant that holds no object
  record.AccessProperty(owner, false, value);
}

CXmlCollectionBase* AsCollection(const CElementInfo& record, CXmlObjectBase* object) {
  auto* collection = dynamic_cast<CXmlCollectionBase*>(object);
  if (!collection) throw CKoException(FormatString(msg::kNoCollection, record.elementName.c_str()));
  return collection;
}

// AsCollection for reading, where every object of a class asks it again.
CXmlCollectionBase* ReadableCollection(const CElementInfo& record, CXmlObjectBase* object) {
  auto* collection = KoXmlLib10::readcast::CachedDynamicCast<CXmlCollectionBase>(object);
  if (!collection) throw CKoException(FormatString(msg::kNoCollection, record.elementName.c_str()));
  return collection;
}

[[noreturn]] void ThrowRequired(const CElementInfo& record) {
  throw CKoValidationException(FormatString(msg::kRequiredElementMissing, record.elementName.c_str()));
}

bool IsTrueOrFalseText(const std::string& s, const char* word, const char* digit) {
  return strcasecmp(s.c_str(), word) == 0 || strcasecmp(s.c_str(), digit) == 0;
}

// ---- locating the member's element -----------------------------------------

enum class Outcome {
  Element,    // the member's element is at the cursor
  Satisfied,  // absent, and that is fine: answer true
  NotMine,    // absent: answer false and let the caller decide
};

// How a mandatory member of a sequence looks for its element. With an
// element owner it may skip unknown elements (when they are ignored) until it
// finds its own; a missing element is tolerated only when the context says
// so. Inside a pseudo owner nothing is thrown: the owner's caller decides
// whether the owner is present, and only primitive members skip.
Outcome SearchMandatory(const CElementInfo& record, const ReadArgs& a, bool skipsUnderPseudoOwner) {
  CXmlElement*& cursor = *a.cursor;
  if (a.PseudoOwner()) {
    for (;;) {
      if (record.IsThisElement(a.ctx, cursor)) return Outcome::Element;
      if (!skipsUnderPseudoOwner || !a.ctx.GetIgnoreUnknownElements() || !cursor) return Outcome::NotMine;
      cursor = cursor->GetNextSiblingElement();
    }
  }
  for (;;) {
    if (record.IsThisElement(a.ctx, cursor)) return Outcome::Element;
    if (a.ctx.GetIgnoreMissingMandatoryElements()) return Outcome::Satisfied;
    if (!a.ctx.GetIgnoreUnknownElements() || !cursor) ThrowRequired(record);
    cursor = cursor->GetNextSiblingElement();
  }
}

// Whether the element at the cursor is the member's, and if not what the
// answer is. Optional members never skip: only sequences search.
Outcome Locate(const CElementInfo& record, const ReadArgs& a, Group group, Occurs occurs,
               bool skipsUnderPseudoOwner) {
  if (group == Group::Sequence && occurs == Occurs::Mandatory)
    return SearchMandatory(record, a, skipsUnderPseudoOwner);
  if (record.IsThisElement(a.ctx, *a.cursor)) return Outcome::Element;
  return group == Group::Sequence ? Outcome::Satisfied : Outcome::NotMine;
}

// ---- values: the nil rule ----------------------------------------------------

void Parse(const CElementInfo& record, const std::string& text, KoVariant& value, const PrimCodec&) {
  value.FromString(text, record.itemType, record.whitespaceRule);
}

void Parse(const CElementInfo&, const std::string& text, KoVariant& value, const EnumCodec& codec) {
  value.SetI4(codec.textToEnum(text.c_str()));
}

// Generated classes store a primitive value parsed straight from the text,
// without a KoVariant in between; false leaves it to the variant.
bool StoreText(const CElementInfo& record, CXmlGeneratedClass* owner, const std::string& text, const PrimCodec&) {
  return owner->StorePropertyText(record.propertyId, record.itemType, text, record.whitespaceRule);
}

bool StoreText(const CElementInfo&, CXmlGeneratedClass*, const std::string&, const EnumCodec&) { return false; }

// Reads the matched element `element`: nil, or its text parsed by the codec
// (facets are not checked on reading), then stores and moves on.
template <class Codec>
void ReadValueElement(const CElementInfo& record, const ReadArgs& a, CXmlElement* element, const Codec& codec) {
  KoVariant value;
  const std::string* nil = KoXmlLib10::readtext::FindAttribute(*element, "nil", kSchemaInstanceNamespace);
  if (nil && !nil->empty() && !IsTrueOrFalseText(*nil, "false", "0")) {
    if (!record.nillable)
      throw CKoValidationException(FormatString(msg::kNilOnNonNillable, record.elementName.c_str()));
    if (!IsTrueOrFalseText(*nil, "true", "1"))
      throw CKoValidationException(FormatString(msg::kUnexpectedNilValue, nil->c_str()));
    value.SetNil();
  } else {
    const KoXmlLib10::readtext::ScopedText text(*element);
    if (StoreText(record, a.owner, text.Get(), codec)) {
      *a.cursor = element->GetNextSiblingElement();
      return;
    }
    Parse(record, text.Get(), value, codec);
  }
  record.AccessProperty(a.owner, false, value);
  *a.cursor = element->GetNextSiblingElement();
}

// Primitive members are the only ones that skip unknown elements inside a
// pseudo owner.
constexpr bool SkipsUnderPseudoOwner(const PrimCodec&) { return true; }
constexpr bool SkipsUnderPseudoOwner(const EnumCodec&) { return false; }

template <class Codec>
bool ReadValue(const CElementInfo& record, const ReadArgs& a, Group group, Occurs occurs, const Codec& codec) {
  switch (Locate(record, a, group, occurs, SkipsUnderPseudoOwner(codec))) {
    case Outcome::Satisfied: return true;
    case Outcome::NotMine: return false;
    case Outcome::Element: break;
  }
  ReadValueElement(record, a, *a.cursor, codec);
  return true;
}

// ---- objects -------------------------------------------------------------------

// Fills `object` from its own element `element` and moves the cursor behind it.
void ReadOwnElement(const ReadArgs& a, CXmlObjectBase* object, CXmlElement* element, bool choiceMayBeEmpty) {
  CElementInfo::FromXml_Int(object, element, element->GetFirstElement(), a.ctx, choiceMayBeEmpty);
  *a.cursor = element->GetNextSiblingElement();
}

// Fills a pseudo-element `object` from the owner's children at the cursor;
// returns the first child it left (the cursor itself when it took nothing).
CXmlElement* ReadPseudoContent(const ReadArgs& a, CXmlObjectBase* object) {
  return CElementInfo::FromXml_Int(object, a.parent, *a.cursor, a.ctx, false);
}

// The object (or collection) in a record's property while a member is read.
// It keeps the reference the variant's getter hands out instead of taking a
// further one: every AddRef/Release pair takes the object's lock.
class CHeldObject {
 public:
  explicit CHeldObject(CXmlObjectBase* adopted) : m_object(adopted) {}
  ~CHeldObject() {
    if (m_object) m_object->Release();
  }
  CHeldObject(CHeldObject&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }
  CHeldObject(const CHeldObject&) = delete;
  CHeldObject& operator=(const CHeldObject&) = delete;
  CHeldObject& operator=(CHeldObject&&) = delete;
  CXmlObjectBase* get() const { return m_object; }
  explicit operator bool() const { return m_object != nullptr; }

 private:
  CXmlObjectBase* m_object;
};

CHeldObject HeldPropertyObject(const CElementInfo& record, const CXmlGeneratedClass* owner) {
  KoVariant value;
  record.ReadProperty(owner, value);
  return CHeldObject(value.GetXmlObject());  // a reference we must give back
}

// The object a mandatory member always holds; its absence is a fault of the
// generated code, reported instead of dereferenced.
CHeldObject MemberObject(const CElementInfo& record, const CXmlGeneratedClass* owner) {
  CHeldObject object = HeldPropertyObject(record, owner);
  if (!object) throw CKoException(FormatString(msg::kNoObject, record.elementName.c_str()));
  return object;
}

ObjectPtr MakeObject(const CElementInfo& record, const ClsCodec& codec) {
  return codec.factory(codec.factoryCode, record.elementName.c_str());
}

// The mandatory object exists in its owner and is filled in place.
bool ReadClsMandatory(const CElementInfo& record, const ReadArgs& a, Group group, const ClsCodec& codec) {
  CXmlElement*& cursor = *a.cursor;
  if (codec.elementType == XmlElementTypeElement) {
    switch (Locate(record, a, group, Occurs::Mandatory, false)) {
      case Outcome::Satisfied: return true;
      case Outcome::NotMine: return false;
      case Outcome::Element: break;
    }
    ReadOwnElement(a, MemberObject(record, a.owner).get(), cursor, false);
    return true;
  }
  // Pseudo-element member: its content stands among the owner's children.
  if (group == Group::All) {
    CXmlElement* before = cursor;
    cursor = ReadPseudoContent(a, MemberObject(record, a.owner).get());
    return cursor != before;
  }
  if (!codec.contentRequired) {
    CXmlElement* next = ReadPseudoContent(a, MemberObject(record, a.owner).get());
    // Nothing taken with an unknown element at the cursor: let the engine skip it.
    if (cursor && next == cursor && a.ctx.GetIgnoreUnknownElements() && !a.PseudoOwner()) return false;
    cursor = next;
    return true;
  }
  if (!cursor) {
    if (a.PseudoOwner()) return false;
    ThrowRequired(record);
  }
  CXmlElement* next = ReadPseudoContent(a, MemberObject(record, a.owner).get());
  if (next == cursor) {
    if (a.PseudoOwner()) return false;
    ThrowRequired(record);
  }
  cursor = next;
  return true;
}

// The optional object is created by the class factory. A choice stores it
// before reading it (and clears the member again when pseudo content turns
// out absent); the other groups store it once it has been read.
bool ReadClsOptional(const CElementInfo& record, const ReadArgs& a, Group group, const ClsCodec& codec) {
  CXmlElement*& cursor = *a.cursor;
  const bool storeFirst = group == Group::Choice;
  if (codec.elementType == XmlElementTypeElement) {
    switch (Locate(record, a, group, Occurs::Optional, false)) {
      case Outcome::Satisfied: return true;
      case Outcome::NotMine: return false;
      case Outcome::Element: break;
    }
    ObjectPtr object = MakeObject(record, codec);
    if (storeFirst) StoreObject(record, a.owner, object.get());
    // Inside an optional alternative a choice may find no item of its own.
    ReadOwnElement(a, object.get(), cursor, group == Group::Choice);
    if (!storeFirst) StoreObject(record, a.owner, object.get());
    return true;
  }
  const bool absentAnswer = group == Group::Sequence;
  if (!cursor) return absentAnswer;
  ObjectPtr object = MakeObject(record, codec);
  if (storeFirst) StoreObject(record, a.owner, object.get());
  CXmlElement* next = ReadPseudoContent(a, object.get());
  if (next == cursor) {
    if (storeFirst) StoreObject(record, a.owner, nullptr);
    return absentAnswer;
  }
  if (!storeFirst) StoreObject(record, a.owner, object.get());
  cursor = next;
  return true;
}

// ---- untyped content ----------------------------------------------------------

bool AcceptsName(const CElementInfo& record, const CXmlElement* element) {
  return record.elementName == kAnyElementName || element->GetLocalName() == record.elementName;
}

// Lets `element` read the node at the cursor if the record accepts its name;
// returns the first node left (the cursor itself when nothing was taken).
CXmlElement* ReadUntyped(const CElementInfo& record, const ReadArgs& a, CXmlObjectBase* element) {
  CXmlElement* cursor = *a.cursor;
  if (!AcceptsName(record, cursor)) return cursor;
  return CElementInfo::FromXml_Int(element, a.parent, cursor, a.ctx, false);
}

bool ReadUntpdMandatory(const CElementInfo& record, const ReadArgs& a, Group group) {
  CXmlElement*& cursor = *a.cursor;
  if (!cursor) {
    if (group == Group::All) return false;
    ThrowRequired(record);
  }
  const CHeldObject element = HeldPropertyObject(record, a.owner);
  if (!dynamic_cast<CElement*>(element.get()))
    throw CKoException(FormatString(msg::kNotAnElement, record.elementName.c_str()));
  CXmlElement* next = ReadUntyped(record, a, element.get());
  if (next == cursor) {
    if (group == Group::All || a.PseudoOwner()) return false;
    throw CKoValidationException(
        FormatString(msg::kRequiredElementFromNamespace, record.elementNamespace.c_str()));
  }
  cursor = next;
  return true;
}

// A new CElement takes the element at the cursor if it can. A choice clears
// the member when it could not; the other groups leave the property alone.
bool ReadUntpdOptional(const CElementInfo& record, const ReadArgs& a, Group group, const UntpdCodec& codec) {
  CXmlElement*& cursor = *a.cursor;
  const bool absentAnswer = group == Group::Sequence;
  if (!cursor) return absentAnswer;
  const std::string defaultNamespace = CElementInfo::GetAnyDefaultNamespace(
      codec.namespaceRestriction.c_str(), a.ownerNamespace, codec.targetNamespace.c_str());
  CSmartPtr<CElement> element(new CElement(record.elementName.c_str(), defaultNamespace.c_str(),
                                           codec.namespaceRestriction.c_str(), codec.targetNamespace.c_str()));
  CXmlElement* next = ReadUntyped(record, a, element.get());
  if (next == cursor) {
    if (group == Group::Choice) StoreObject(record, a.owner, nullptr);
    return absentAnswer;
  }
  StoreObject(record, a.owner, element.get());
  cursor = next;
  return true;
}

}  // namespace

ObjectPtr TakeObject(const KoVariant& value) {
  CXmlObjectBase* raw = value.GetXmlObject();  // a reference we must give back
  ObjectPtr held(raw);
  if (raw) raw->Release();
  return held;
}

ObjectPtr PropertyObject(const CElementInfo& record, const CXmlGeneratedClass* owner) {
  KoVariant value;
  record.ReadProperty(owner, value);
  return TakeObject(value);
}

// ---- reading single members -----------------------------------------------------

bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs,
                const PrimCodec& codec) {
  return ReadValue(record, args, group, occurs, codec);
}

bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs,
                const EnumCodec& codec) {
  return ReadValue(record, args, group, occurs, codec);
}

bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs,
                const ClsCodec& codec) {
  return occurs == Occurs::Mandatory ? ReadClsMandatory(record, args, group, codec)
                                     : ReadClsOptional(record, args, group, codec);
}

// The element factory picks the class from the element (its xsi:type). The
// mandatory member of an element owner insists on finding one, whatever the
// tolerance flags; the others answer as their group answers a miss.
bool ReadSingle(const CElementInfo& record, const ReadArgs& a, Group group, Occurs occurs,
                const AbsClsCodec& codec) {
  assert(group != Group::All);  // not readable, see ReadAllAbsCls
  CXmlElement* element = *a.cursor;
  const bool insists = group == Group::Sequence && occurs == Occurs::Mandatory && !a.PseudoOwner();
  const bool missAnswer = group == Group::Sequence && occurs == Occurs::Optional;
  if (!record.IsThisElement(a.ctx, element)) {
    if (insists) throw CKoValidationException(FormatString(msg::kNoSubstitutionElement, record.elementName.c_str()));
    return missAnswer;
  }
  ObjectPtr object = codec.factory(element);
  // A choice stores the factory's answer at once, also when it found no class.
  if (group == Group::Choice) StoreObject(record, a.owner, object.get());
  if (!object) {
    if (insists) throw CKoValidationException(FormatString(msg::kNoSubstitutionElement, record.elementName.c_str()));
    return missAnswer;
  }
  ReadOwnElement(a, object.get(), element, false);
  if (group != Group::Choice) StoreObject(record, a.owner, object.get());
  return true;
}

bool ReadSingle(const CElementInfo& record, const ReadArgs& args, Group group, Occurs occurs,
                const UntpdCodec& codec) {
  return occurs == Occurs::Mandatory ? ReadUntpdMandatory(record, args, group)
                                     : ReadUntpdOptional(record, args, group, codec);
}

bool ReadAllAbsCls(const CElementInfo& record, const ReadArgs& args, const char* message) {
  // Only an element that is the member's own needs reading: a class whose
  // derivable member is absent from a document still reads.
  if (!record.IsThisElement(args.ctx, *args.cursor)) return false;
  throw CKoException(std::string(message) + msg::kSupportAddress);
}

// ---- repeated members -------------------------------------------------------------

bool ReadCollection(const CElementInfo& record, const ReadArgs& a, Group group, Items items) {
  CXmlElement*& cursor = *a.cursor;
  const CHeldObject held = HeldPropertyObject(record, a.owner);
  CXmlCollectionBase* collection = ReadableCollection(record, held.get());

  CXmlElement* next;
  if (items == Items::Untyped && record.elementName != kAnyElementName) {
    auto* elements = dynamic_cast<CElementCol*>(collection);
    if (!elements) throw CKoException(FormatString(msg::kNotAnElementCol, record.elementName.c_str()));
    const std::string namespaceUri = cursor ? cursor->GetNamespaceURI() : std::string();
    next = elements->FromXmlLockElementName_Int(record.elementName, namespaceUri, a.parent, cursor, a.ctx);
  } else {
    next = CElementInfo::FromXml_Int(collection, a.parent, cursor, a.ctx, false);
  }

  switch (group) {
    case Group::Sequence:
      cursor = next;
      if (a.PseudoOwner()) return collection->IsValidCount(a.ctx);
      collection->ValidateCount(a.ctx);
      return true;
    case Group::Choice:
      if (next == cursor) return false;
      if (a.PseudoOwner()) {
        if (!collection->IsValidCount(a.ctx)) return false;
        cursor = next;
        return true;
      }
      cursor = next;
      collection->ValidateCount(a.ctx);
      return true;
    case Group::All:
      // Never satisfied: the member is offered the remaining children in
      // every later pass, and its count is not checked on reading.
      cursor = next;
      return false;
  }
  return false;
}

namespace {

// The collection a variant holds, borrowed from the variant. One stored as a
// collection needs no run-time type check.
CXmlCollectionBase* HeldCollection(const KoVariant& value) {
  CXmlObjectBase* object = KoXmlLib10::KoVariantAccess::Object(value);
  if (!object) return nullptr;
  if (KoXmlLib10::KoVariantAccess::Type(value) == KoVariant::TypeXmlCollection)
    return static_cast<CXmlCollectionBase*>(object);
  return dynamic_cast<CXmlCollectionBase*>(object);
}

}  // namespace

// The count check and ElementToXmlCol, on one reading of the property.
bool WriteCollection(const CElementInfo& record, const CXmlSerializationContext& ctx,
                     const CXmlGeneratedClass* owner, CXmlWriter* writer, Group group) {
  KoVariant value;
  record.ReadProperty(owner, value);
  CXmlCollectionBase* collection = HeldCollection(value);
  if (group != Group::Choice && !ctx.GetIgnoreInvalidCollectionCounts() &&
      KoXmlLib10::KoVariantAccess::Object(value)) {
    if (!collection) throw CKoException(FormatString(msg::kNoCollection, record.elementName.c_str()));
    collection->ValidateCount(ctx);
  }
  if (!collection || collection->GetCount() <= 0) return false;
  CXmlObjectBase::ToXml_Int(collection, writer, false, record.elementNamespace.c_str(), ctx, false);
  return true;
}

void WritePseudoChildAttributes(const CElementInfo& record, const CXmlSerializationContext& ctx,
                                const CXmlGeneratedClass* owner, CXmlWriter* writer,
                                XmlElementType elementType) {
  if (elementType != XmlElementTypePseudo) return;
  // An object writes its own attributes; a collection those of every item.
  ObjectPtr object = PropertyObject(record, owner);
  if (object) CElementInfo::AttributesToXml_Int(object.get(), writer, ctx);
}

// ---- all groups: after reading ------------------------------------------------------

bool ValidateAllMember(const CElementInfo& record, bool found, bool ownerHasElement, Occurs occurs,
                       bool mayBeMissing) {
  if (occurs == Occurs::Optional || found) return true;
  if (!ownerHasElement) return false;
  if (mayBeMissing) return true;
  throw CKoValidationException(FormatString(msg::kMandatoryElementMissing, record.elementName.c_str()));
}

// A repeated member never reports itself found (it keeps collecting). Under
// an element owner it is satisfied (counts are checked when written); a
// pseudo owner is present only if the collection's count is valid.
bool ValidateAllCollection(const CElementInfo& record, const CXmlSerializationContext& ctx,
                           const CXmlGeneratedClass* owner, bool ownerHasElement) {
  if (ownerHasElement) return true;
  const CHeldObject held = HeldPropertyObject(record, owner);
  return AsCollection(record, held.get())->IsValidCount(ctx);
}

// ---- attributes ----------------------------------------------------------------------

namespace {

const std::string& Text(const KoVariant& value, const PrimAttributeCodec& codec, std::string& scratch) {
  return KoXmlLib10::VariantText(value, codec.record.numberFormat.c_str(), scratch);
}
const std::string& Text(const KoVariant& value, const EnumAttributeCodec& codec, std::string& scratch) {
  const long number = value.GetI4();
  const char* text = codec.record.enumToText(static_cast<int>(number));
  if (!text)
    throw CKoInvalidValueException(FormatString(msg::kNoEnumerationText, codec.record.attributeName.c_str(), number));
  return scratch.assign(text);
}
ItemType TypeOf(const KoVariant& value, const PrimAttributeCodec&) { return KoXmlLib10::ItemTypeOf(value); }
ItemType TypeOf(const KoVariant&, const EnumAttributeCodec&) { return KoXmlLib10::ItemType_string; }
// The record's own check takes the value by copy; the facets are the same.
void Check(const KoVariant& value, const PrimAttributeCodec& codec) {
  KoXmlLib10::CXmlObjectHelper::CheckRestriction(codec.record.attributeName.c_str(), value, codec.record.itemType,
                                                 codec.record.restrictions);
}
void Check(const KoVariant&, const EnumAttributeCodec&) {}  // enumerations have no facets

template <class Codec>
void WriteValueAttribute(const CAttributeInfo& record, const CXmlSerializationContext& ctx,
                         const CXmlGeneratedClass* owner, CXmlWriter* writer, const Codec& codec) {
  KoVariant value;
  record.ReadProperty(owner, value);
  if (record.optional && !value.IsValid()) return;
  // A mandatory attribute is always converted: an unset value fails here.
  std::string scratch;
  const std::string& text = Text(value, codec, scratch);
  // Only an exact copy of the default text is left out.
  if (record.optional && !record.defaultValue.empty() && ctx.GetNoOptionalAttributeDefaultOutput() &&
      text == record.defaultValue)
    return;
  Check(value, codec);
  writer->WriteAttributeString(record.attributeName, record.attributeNamespace, text, TypeOf(value, codec));
}

}  // namespace

void WriteAttribute(const CAttributeInfo& record, const CXmlSerializationContext& ctx,
                    const CXmlGeneratedClass* owner, CXmlWriter* writer, const PrimAttributeCodec& codec) {
  WriteValueAttribute(record, ctx, owner, writer, codec);
}

void WriteAttribute(const CAttributeInfo& record, const CXmlSerializationContext& ctx,
                    const CXmlGeneratedClass* owner, CXmlWriter* writer, const EnumAttributeCodec& codec) {
  WriteValueAttribute(record, ctx, owner, writer, codec);
}

// A primitive attribute matches its name and namespace exactly, even when the
// context ignores namespaces; an enumerated one follows the context.
bool ReadAttribute(const CAttributeInfo& record, const CXmlSerializationContext&, CXmlGeneratedClass* owner,
                   CXmlAttribute* attribute, const PrimAttributeCodec& codec) {
  if (attribute->GetLocalName() != record.attributeName || attribute->GetNamespaceURI() != record.attributeNamespace)
    return false;
  if (owner->StorePropertyText(record.propertyId, codec.record.itemType, attribute->GetValue(),
                               codec.record.whitespaceRule))
    return true;
  KoVariant value;
  value.FromString(attribute->GetValue(), codec.record.itemType, codec.record.whitespaceRule);
  record.AccessProperty(owner, false, value);
  return true;
}

bool ReadAttribute(const CAttributeInfo& record, const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner,
                   CXmlAttribute* attribute, const EnumAttributeCodec& codec) {
  if (!record.IsThisAttribute(ctx, attribute)) return false;
  KoVariant value;
  value.SetI4(codec.record.textToEnum(attribute->GetValue().c_str()));
  record.AccessProperty(owner, false, value);
  return true;
}

void ValidateRequiredAttribute(const CAttributeInfo& record, bool found) {
  if (!record.optional && !found)
    throw CKoValidationException(FormatString(msg::kRequiredAttributeMissing, record.attributeName.c_str()));
}

}  // namespace KoXmlLib10Data::core
