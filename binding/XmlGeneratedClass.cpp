#include "KoXmlLib10/XmlGeneratedClass.h"

#include <strings.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <typeinfo>
#include <vector>

#include "KoXmlLib10/ElementInfoChoice.h"
#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Untyped.h"
#include "KoXmlLib10/XmlCollectionBase.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlWriter.h"
#include "binding/BindingMessages.h"
#include "binding/CachedCast.h"
#include "binding/VariantItemType.h"
#include "members/ReadText.h"
#include "types/VariantText.h"

namespace KoXmlLib10 {

using namespace KoXmlLib10Data;

CKOCriticalSection CXmlGeneratedClass::m_csInit;

namespace {

// Record arrays end at their first null entry; a class may also hand out no
// array at all, which counts as empty.
template <class Record>
int CountRecords(Record** records) {
  int count = 0;
  if (records)
    while (records[count]) ++count;
  return count;
}

template <class Record>
void DeleteRecords(Record**& records) {
  if (!records) return;
  for (Record** entry = records; *entry; ++entry) {
    delete *entry;
    *entry = nullptr;
  }
  delete[] records;
  records = nullptr;
}

// Releases the reference a variant handed out.
template <class T>
class CHeldReference {
 public:
  explicit CHeldReference(T* object) : m_object(object) {}
  ~CHeldReference() {
    if (m_object) m_object->Release();
  }
  CHeldReference(const CHeldReference&) = delete;
  CHeldReference& operator=(const CHeldReference&) = delete;
  T* operator->() const { return m_object; }
  explicit operator bool() const { return m_object != nullptr; }

 private:
  T* m_object;
};

// An alternative of a choice that may be absent on its own.
bool IsOptionalChoiceRecord(const CElementInfo* record) {
  return dynamic_cast<const CElementInfoChoicePrimOpt*>(record) ||
         dynamic_cast<const CElementInfoChoiceClsOpt*>(record) ||
         dynamic_cast<const CElementInfoChoiceAbsClsOpt*>(record) ||
         dynamic_cast<const CElementInfoChoiceEnumOpt*>(record) ||
         dynamic_cast<const CElementInfoChoiceUntpdOpt*>(record);
}

// A repeated alternative of a choice; it may be absent when its collection
// accepts no items.
bool IsCollectionChoiceRecord(const CElementInfo* record) {
  return dynamic_cast<const CElementInfoChoicePrimCol*>(record) ||
         dynamic_cast<const CElementInfoChoiceClsCol*>(record) ||
         dynamic_cast<const CElementInfoChoiceAbsClsCol*>(record) ||
         dynamic_cast<const CElementInfoChoiceEnumCol*>(record) ||
         dynamic_cast<const CElementInfoChoiceUntpdCol*>(record);
}

// A document parsed without namespace processing keeps its namespace
// declarations as ordinary attributes; they are still declarations.
bool IsUnprocessedNamespaceDeclaration(const CXmlAttribute& attribute) {
  const std::string& name = attribute.GetLocalName();
  return attribute.GetNamespaceURI().empty() && (name == "xmlns" || name.compare(0, 6, "xmlns:") == 0);
}

bool EqualsIgnoringCase(const std::string& text, const char* expected) {
  return strcasecmp(text.c_str(), expected) == 0;
}

// Element namespaces arrive as C strings. Building a std::string for every
// element would allocate for each URI longer than the short-string buffer, so
// each thread keeps one whose storage is reused; a writer that writes objects
// from inside WriteStartElement gets a fresh one.
void WriteStartElement(CXmlWriter* writer, const std::string& localName, const char* namespaceUri) {
  thread_local std::string t_namespace;
  thread_local bool t_inUse = false;
  if (t_inUse) return writer->WriteStartElement(localName, namespaceUri ? namespaceUri : "");
  struct InUse {
    InUse() { t_inUse = true; }
    ~InUse() { t_inUse = false; }
  } inUse;
  t_namespace.assign(namespaceUri ? namespaceUri : "");
  writer->WriteStartElement(localName, t_namespace);
}

// Whether objects of `object`'s class implement INillable. A cross-cast per
// object written costs more than the rest of writing a small object, and the
// answer is the class's: it is kept per class in a small table, by the
// address of the class's type_info, one word per entry (so entries read and
// written by several threads stay whole).
bool ImplementsNillable(const CXmlGeneratedClass& object) {
  constexpr size_t kEntries = 32;
  static std::atomic<uintptr_t> s_entries[kEntries];
  const std::type_info& type = typeid(object);
  const auto key = reinterpret_cast<uintptr_t>(&type);
  std::atomic<uintptr_t>& entry = s_entries[(key >> 4) % kEntries];
  // Entries hold the type_info's address with the answer in its lowest bit.
  const uintptr_t known = entry.load(std::memory_order_relaxed);
  if ((known & ~uintptr_t(1)) == key) return (known & 1) != 0;
  const bool nillable = dynamic_cast<const INillable*>(&object) != nullptr;
  entry.store(key | (nillable ? 1 : 0), std::memory_order_relaxed);
  return nillable;
}

[[noreturn]] void ThrowElementsLeftOver(const CXmlElement* parentElement, const CXmlElement* cursor) {
  throw CKoValidationException(FormatString(msg::kElementsLeftOver, parentElement->GetLocalName().c_str(),
                                            cursor->GetLocalName().c_str()));
}

}  // namespace

CXmlGeneratedClass::CXmlGeneratedClass() = default;

CXmlGeneratedClass::~CXmlGeneratedClass() = default;

void CXmlGeneratedClass::CleanMetaData(CParentElementInfo*& info, CElementInfo**& elements,
                                       CAttributeInfo**& attributes) {
  delete info;
  info = nullptr;
  DeleteRecords(elements);
  DeleteRecords(attributes);
}

// The accessors that generated code supplies are not const, although reading
// through them changes nothing; the const operations below go through them.
void CXmlGeneratedClass::ReadProperty(int propertyId, KoVariant& value) const {
  const_cast<CXmlGeneratedClass*>(this)->AccessProperty(propertyId, true, value);
}

int CXmlGeneratedClass::GetClassElementInfoCount() const {
  return CountRecords(const_cast<CXmlGeneratedClass*>(this)->GetClassElementInfo());
}

bool CXmlGeneratedClass::IsElementInList(const CXmlSerializationContext& ctx, CXmlElement* element) const {
  CElementInfo** records = const_cast<CXmlGeneratedClass*>(this)->GetClassElementInfo();
  for (int i = 0, n = CountRecords(records); i < n; ++i)
    if (records[i]->IsThisElement(ctx, element)) return true;
  return false;
}

bool CXmlGeneratedClass::DoesElementContainOptionalElements() const {
  CElementInfo** records = const_cast<CXmlGeneratedClass*>(this)->GetClassElementInfo();
  for (int i = 0, n = CountRecords(records); i < n; ++i) {
    const CElementInfo* record = records[i];
    if (IsOptionalChoiceRecord(record)) return true;
    if (IsCollectionChoiceRecord(record)) {
      KoVariant value;
      record->ReadProperty(this, value);
      CHeldReference<CXmlCollectionBase> collection(value.GetXmlCollection());
      if (collection && collection->GetMinOccurs() == 0) return true;
    }
  }
  return false;
}

// ---- writing -----------------------------------------------------------------

void CXmlGeneratedClass::ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                                   const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const {
  auto* self = const_cast<CXmlGeneratedClass*>(this);
  try {
    const CParentElementInfo* info = self->GetClassInfo();
    const bool ownElement = info->elementType == XmlElementTypeElement;
    if (ownElement) {
      if (isRoot) {
        for (const std::string& instruction : ctx.GetProcessingInstructions()) writer->WritePI(instruction);
        const CNamespaceAliasMap& aliases = ctx.GetNamespaceAliases();
        for (int i = 0, n = aliases.GetNamespaceCount(); i < n; ++i) {
          const std::string uri = aliases.GetNamespaceAt(i);
          const std::string alias = aliases.GetAliasFromNamespace(uri.c_str());
          // An entry without an alias is what GetAliasFromNamespace leaves
          // behind when it is asked about a namespace nobody gave a prefix;
          // declaring it would produce xmlns:="...". The writer gives such a
          // namespace a generated prefix where it is used.
          if (alias.empty()) continue;
          writer->AddNamespace(alias, uri);
        }
        const std::string defaultNamespace = ctx.GetDefaultNamespaceURI();
        if (!defaultNamespace.empty()) writer->SetDefaultNamespace(defaultNamespace);
      }
      WriteStartElement(writer, GetElementName(), elementNamespace);
      if (isRoot) {
        // The caller's extra attributes come first on the root element. A
        // context whose collection was never requested has none to write;
        // looking instead of creating keeps a shared context untouched.
        if (CAttributeCol* extra = ctx.PeekAdditionalRootAttributes())
          CXmlObjectBase::ToXml_Int(extra, writer, false, elementNamespace, ctx, choiceMayBeEmpty);
      }
      AttributesToXml_Int(writer, ctx);
      if (isRoot) {
        const std::string schema = ctx.GetInLineSchema();
        if (!schema.empty()) writer->WriteInlineSchema(schema);
      }
    }

    INillable* nillable = ImplementsNillable(*self) ? dynamic_cast<INillable*>(self) : nullptr;
    if (!nillable || !nillable->IsNil()) {
      CElementInfo** elements = self->GetClassElementInfo();
      switch (info->groupType) {
        case XmlElementGroupTypeSequence: ProcessElementSeqToXml(ctx, elements, writer); break;
        case XmlElementGroupTypeChoice: ProcessElementChoiceToXml(ctx, elements, writer, choiceMayBeEmpty); break;
        case XmlElementGroupTypeAll: ProcessElementAllToXml(ctx, elements, writer); break;
        default: throw CKoException(msg::kUnknownGroupTypeWriting);
      }
      if (info->HasSimpleContent()) {
        KoVariant value;
        ReadProperty(info->valuePropertyId, value);
        if (value.IsNil())
          writer->WriteAttributeNil();
        else if (value.IsValid()) {  // an unset value writes no text
          const ItemType type = ItemTypeOf(value);
          std::string scratch;
          writer->WriteString(VariantText(value, info->valueFormat.c_str(), scratch), type);
        }
      }
    } else {
      writer->WriteAttributeNil();
    }

    if (ownElement) writer->WriteEndElement();
  } catch (const CKoException& failure) {
    throw CKoValidationException(FormatString(msg::kFailedToConvertElement, GetElementName().c_str()), failure);
  }
}

void CXmlGeneratedClass::AttributesToXml_Int(CXmlWriter* writer, const CXmlSerializationContext& ctx) const {
  auto* self = const_cast<CXmlGeneratedClass*>(this);
  try {
    const CParentElementInfo* info = self->GetClassInfo();
    if (ctx.GetWriteTypeAttribute() && info->writeTypeAttribute && GetElementName() != info->typeName)
      writer->WriteAttributeType(info->typeNamespace, info->typeName, ItemType_string);
    ProcessAttributesToXml(ctx, self->GetClassElementInfo(), self->GetClassAttributeInfo(), writer);
  } catch (const CKoException& failure) {
    throw CKoException(msg::kFailedToConvertAttributes, failure);
  }
}

void CXmlGeneratedClass::ProcessAttributesToXml(const CXmlSerializationContext& ctx, CElementInfo** elements,
                                                CAttributeInfo** attributes, CXmlWriter* writer) const {
  // The arrays end at their first null entry; a class may hand out none.
  if (attributes)
    for (CAttributeInfo** record = attributes; *record; ++record) (*record)->AttributeToXml(ctx, this, writer);
  if (elements)
    for (CElementInfo** record = elements; *record; ++record) (*record)->PseudoChildAttributeToXml(ctx, this, writer);
}

void CXmlGeneratedClass::ProcessElementSeqToXml(const CXmlSerializationContext& ctx, CElementInfo** elements,
                                                CXmlWriter* writer) const {
  if (elements)
    for (CElementInfo** record = elements; *record; ++record) (*record)->ElementToXml(ctx, this, writer);
}

void CXmlGeneratedClass::ProcessElementAllToXml(const CXmlSerializationContext& ctx, CElementInfo** elements,
                                                CXmlWriter* writer) const {
  if (elements)
    for (CElementInfo** record = elements; *record; ++record) (*record)->ElementToXml(ctx, this, writer);
}

bool CXmlGeneratedClass::ProcessElementChoiceToXml(const CXmlSerializationContext& ctx, CElementInfo** elements,
                                                   CXmlWriter* writer, bool choiceMayBeEmpty) const {
  for (int i = 0, n = CountRecords(elements); i < n; ++i)
    if (elements[i]->ElementToXml(ctx, this, writer)) return true;
  if (DoesElementContainOptionalElements() || choiceMayBeEmpty || ctx.GetIgnoreMissingChoice()) return false;
  throw CKoValidationException(msg::kChoiceNoneSet);
}

// ---- reading -----------------------------------------------------------------

const char* CXmlGeneratedClass::GetNamespaceText() const { return nullptr; }

bool CXmlGeneratedClass::StorePropertyText(int, ItemType, const std::string&, CWhitespaceUtils::WhitespaceRule) {
  return false;
}

namespace {

// The owner's namespace as the records take it: the class's constant text
// when it has one, otherwise the string GetNamespace() builds, kept for the
// group being read.
class COwnerNamespace {
 public:
  explicit COwnerNamespace(const CXmlGeneratedClass& owner) : m_text(owner.GetNamespaceText()) {
    if (!m_text) {
      m_built = owner.GetNamespace();
      m_text = m_built.c_str();
    }
  }
  COwnerNamespace(const COwnerNamespace&) = delete;
  COwnerNamespace& operator=(const COwnerNamespace&) = delete;
  const char* c_str() const { return m_text; }

 private:
  std::string m_built;
  const char* m_text;
};

}  // namespace

CXmlElement* CXmlGeneratedClass::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                             const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) {
  if (!element) throw CKoInvalidParamException(msg::kNullElement);
  CXmlElement* cursor = firstChild;
  try {
    Init();
    const CParentElementInfo* info = GetClassInfo();
    if (info->elementType == XmlElementTypeElement) SetElementName(element->GetLocalName().c_str());
    // A pseudo element is handed its owner's element and reads its
    // attributes from there.
    ProcessAttributesFromXml(ctx, element, info->rejectUnknownAttributes);

    INillable* nillable = readcast::CachedDynamicCast<INillable>(this);
    if (nillable && nillable->IsNil()) return cursor;

    switch (info->groupType) {
      case XmlElementGroupTypeSequence:
        cursor = ProcessElementSeqFromXml(ctx, element, cursor, info->elementType);
        break;
      case XmlElementGroupTypeChoice:
        cursor = ProcessElementChoiceFromXml(ctx, element, cursor, info->elementType, choiceMayBeEmpty);
        break;
      case XmlElementGroupTypeAll:
        cursor = ProcessElementAllFromXml(ctx, element, cursor, info->elementType);
        break;
      default: throw CKoException(msg::kUnknownGroupTypeReading);
    }

    if (info->HasSimpleContent()) {
      KoVariant value;
      if (info->valueAsText) {
        value.SetString(std::string(element->GetTextView()));
        AccessProperty(info->valuePropertyId, false, value);
      } else {
        const readtext::ScopedText text(*element);
        if (!StorePropertyText(info->valuePropertyId, info->valueType, text.Get(),
                               CWhitespaceUtils::WhitespaceRule_None)) {
          value.FromString(text.Get(), info->valueType, CWhitespaceUtils::WhitespaceRule_None);
          AccessProperty(info->valuePropertyId, false, value);
        }
      }
    }
    return cursor;
  } catch (const CKoException& failure) {
    throw CKoValidationException(FormatString(msg::kFailedToProcessElement, element->GetLocalName().c_str()),
                                 failure);
  }
}

void CXmlGeneratedClass::ProcessAttributesFromXml(const CXmlSerializationContext& ctx, CXmlElement* element,
                                                  bool rejectUnknownAttributes) {
  CAttributeInfo** records = GetClassAttributeInfo();
  const int count = CountRecords(records);
  // Classes have few attribute records: their flags live on the stack.
  constexpr int kFlagsOnStack = 32;
  bool flagsOnStack[kFlagsOnStack] = {};
  std::unique_ptr<bool[]> flagsOnHeap;
  if (count > kFlagsOnStack) flagsOnHeap.reset(new bool[count]());
  bool* const found = flagsOnHeap ? flagsOnHeap.get() : flagsOnStack;

  for (size_t index = 0, total = element->GetAttributeCount(); index < total; ++index) {
    CXmlAttribute* attribute = element->GetAttributeAt(index);
    // Namespace declarations and the schema-instance type and location
    // attributes belong to the document, not to the data.
    // Both kinds, and the nil attribute, are in the schema-instance
    // namespace: an unqualified attribute needs neither test.
    const bool qualified = !attribute->GetNamespaceURI().empty();
    if ((qualified && attribute->IsNamespaceAttribute()) || IsUnprocessedNamespaceDeclaration(*attribute)) continue;

    if (qualified && attribute->IsNilAttribute()) {
      INillable* nillable = dynamic_cast<INillable*>(this);
      if (!nillable)
        throw CKoValidationException(FormatString(msg::kNilOnNonNillable, element->GetLocalName().c_str()));
      const std::string& value = attribute->GetValue();
      if (EqualsIgnoringCase(value, "true") || EqualsIgnoringCase(value, "1"))
        nillable->SetNil(true);
      else if (EqualsIgnoringCase(value, "false") || EqualsIgnoringCase(value, "0"))
        nillable->SetNil(false);
      else
        throw CKoValidationException(FormatString(msg::kUnexpectedNilValue, value.c_str()));
      continue;
    }

    bool taken = false;
    for (int i = 0; i < count && !taken; ++i) {
      if (records[i]->AttributeFromXml(ctx, this, attribute)) {
        found[i] = true;
        taken = true;
      }
    }
    if (!taken && rejectUnknownAttributes && !ctx.GetIgnoreUnknownAttributes())
      throw CKoValidationException(FormatString(msg::kUnexpectedAttribute, attribute->GetLocalName().c_str()));
  }

  for (int i = 0; i < count; ++i) records[i]->Validate(ctx, found[i]);
}

CXmlElement* CXmlGeneratedClass::ProcessElementSeqFromXml(const CXmlSerializationContext& ctx,
                                                          CXmlElement* parentElement, CXmlElement* cursor,
                                                          XmlElementType ownerElementType) {
  CElementInfo** records = GetClassElementInfo();
  const int count = CountRecords(records);
  const COwnerNamespace ownerNamespace(*this);
  CXmlElement* const entry = cursor;
  // The last record that consumed an element. After an unknown element is
  // skipped reading resumes there, so that a repeated member also collects
  // the items behind the skipped element.
  int resumeAt = 0;

  for (;;) {
    for (int i = resumeAt; i < count; ++i) {
      for (;;) {
        CXmlElement* const before = cursor;
        if (records[i]->ElementFromXml(ctx, this, parentElement, &cursor, ownerNamespace.c_str(),
                                       ownerElementType)) {
          if (cursor != before) resumeAt = i;
          break;
        }
        // The record did not match: skip the element in its way and offer
        // it the next one, or give the group up for the caller to decide.
        if (!ctx.GetIgnoreUnknownElements() || !cursor) return entry;
        cursor = cursor->GetNextSiblingElement();
      }
    }

    if (ownerElementType != XmlElementTypeElement || !cursor) return cursor;
    if (!ctx.GetIgnoreUnknownElements()) ThrowElementsLeftOver(parentElement, cursor);
    cursor = cursor->GetNextSiblingElement();
    if (!cursor) return nullptr;
  }
}

CXmlElement* CXmlGeneratedClass::ProcessElementChoiceFromXml(const CXmlSerializationContext& ctx,
                                                             CXmlElement* parentElement, CXmlElement* cursor,
                                                             XmlElementType ownerElementType,
                                                             bool choiceMayBeEmpty) {
  CElementInfo** records = GetClassElementInfo();
  const int count = CountRecords(records);
  const COwnerNamespace ownerNamespace(*this);
  CXmlElement* const entry = cursor;

  // Only one alternative is read: the first that takes the element.
  bool matched = false;
  for (;;) {
    for (int i = 0; i < count && !matched; ++i)
      matched = records[i]->ElementFromXml(ctx, this, parentElement, &cursor, ownerNamespace.c_str(),
                                           ownerElementType);
    if (matched || !cursor || !ctx.GetIgnoreUnknownElements() || ownerElementType != XmlElementTypeElement)
      break;
    cursor = cursor->GetNextSiblingElement();
    if (!cursor) break;
  }

  // What stands behind the chosen alternative must be accounted for.
  auto finish = [&]() -> CXmlElement* {
    if (ownerElementType != XmlElementTypeElement || !cursor || ctx.GetIgnoreUnknownElements()) return cursor;
    ThrowElementsLeftOver(parentElement, cursor);
  };

  if (matched || choiceMayBeEmpty) return finish();
  switch (ownerElementType) {
    case XmlElementTypePseudo:
      return entry;  // the pseudo-element choice is absent
    case XmlElementTypeElement:
      if (DoesElementContainOptionalElements() || ctx.GetIgnoreMissingChoice()) return finish();
      throw CKoValidationException(
          FormatString(msg::kChoiceNoChildPopulated, parentElement->GetLocalName().c_str()));
    default:
      return cursor;
  }
}

CXmlElement* CXmlGeneratedClass::ProcessElementAllFromXml(const CXmlSerializationContext& ctx,
                                                          CXmlElement* parentElement, CXmlElement* cursor,
                                                          XmlElementType ownerElementType) {
  CElementInfo** records = GetClassElementInfo();
  const int count = CountRecords(records);
  const COwnerNamespace ownerNamespace(*this);
  CXmlElement* const entry = cursor;
  // An all group has few members: their flags live on the stack.
  constexpr int kFlagsOnStack = 32;
  bool flagsOnStack[kFlagsOnStack] = {};
  std::unique_ptr<bool[]> flagsOnHeap;
  if (count > kFlagsOnStack) flagsOnHeap.reset(new bool[count]());
  bool* const found = flagsOnHeap ? flagsOnHeap.get() : flagsOnStack;

  // Members come in any order: keep offering the remaining children to the
  // members not yet found until a whole pass consumes nothing.
  while (cursor) {
    CXmlElement* const before = cursor;
    for (int i = 0; i < count; ++i)
      if (!found[i])
        found[i] = records[i]->ElementFromXml(ctx, this, parentElement, &cursor, ownerNamespace.c_str(),
                                              ownerElementType);
    if (cursor == before) break;
  }

  for (int i = 0; i < count; ++i)
    if (!records[i]->Validate(ctx, this, found[i], ownerElementType == XmlElementTypeElement)) return entry;

  if (ownerElementType != XmlElementTypeElement || !cursor || ctx.GetIgnoreUnknownElements()) return cursor;
  ThrowElementsLeftOver(parentElement, cursor);
}

}  // namespace KoXmlLib10
