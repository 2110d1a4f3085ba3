#include "KoXmlLib10/TypeCollections.h"

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "KoXmlLib10/XmlWriter.h"
#include "members/MembersMessages.h"

namespace KoXmlLib10 {

// What every typed collection does, once: the typed classes below only say
// which value type, conversions and facet check they use.
class CTypeCollectionCore {
 public:
  // Add event (with the value's address), index check, `check`, insertion,
  // add complete and change. A failure leaves the values as they were.
  template <class V, class Check>
  static void AddAt(CXmlTypeCollection& collection, std::vector<V>& items, int index, const V& value,
                    const Check& check) {
    void* data = const_cast<V*>(&value);
    collection.FireOnCollectionAdd(data);
    if (index < 0 || index > static_cast<int>(items.size())) throw CKoInvalidParamException(msg::kIndexOutOfRange);
    check(value);
    items.insert(items.begin() + index, value);
    collection.FireOnCollectionAddComplete(data);
    collection.FireOnCollectionChange();
  }

  // The facet check of a value, named by the collection's element name.
  template <class V, class Check>
  static auto FacetCheck(const CXmlTypeCollection& collection, Check check) {
    return [&collection, check](const V& value) {
      check(collection.GetElementName().c_str(), value, collection.m_restrictions);
    };
  }

  // The kind is checked before anything else happens, events included.
  template <class Check>
  static void AddDateAt(CdatetimeBaseCol& collection, int index, const CDateTime& value, CDateTime::DTType kind,
                        const char* message, Check check) {
    if (value.GetType() != kind) throw CKoInvalidParamException(message);
    check(collection.GetElementName().c_str(), value, collection.m_restrictions);
    collection.BaseAddAt(index, value);
  }

  template <class V>
  static V Item(const std::vector<V>& items, int index) {
    CheckIndex(items, index);
    return items[index];
  }

  // The remove event comes first, also for an index that then fails.
  template <class V>
  static void Remove(CXmlTypeCollection& collection, std::vector<V>& items, int index) {
    collection.FireOnCollectionRemove(index);
    CheckIndex(items, index);
    items.erase(items.begin() + index);
    collection.FireOnCollectionRemoveComplete(index);
    collection.FireOnCollectionChange();
  }

  // Through the virtual Remove, so that every removal is announced.
  static void Clear(CXmlTypeCollection& collection) {
    while (collection.GetCount() > 0) collection.Remove(0);
  }

  // One element per value; values were checked when they were added.
  template <class V, class ToText>
  static void ToXml(const CXmlTypeCollection& collection, const std::vector<V>& items, CXmlWriter* writer,
                    const CXmlSerializationContext& ctx, ItemType type, const ToText& toText) {
    collection.ValidateCount(ctx);
    const std::string name = collection.GetElementName();
    for (const auto& value : items) writer->WriteSimpleElement(name, collection.m_namespace, toText(value), type);
  }

 private:
  template <class V>
  static void CheckIndex(const std::vector<V>& items, int index) {
    const int count = static_cast<int>(items.size());
    if (index < 0 || index > count - 1)
      throw CKoInvalidParamException(FormatString(msg::kIndexOutOfRangeUse, index, count));
  }
};

namespace {

// float, double and decimal text honours the collection's number format.
template <class V, class Plain, class WithFormat>
std::string FormattedText(const V& value, const std::string& format, Plain plain, WithFormat withFormat) {
  return format.empty() ? plain(value) : withFormat(value, format);
}

}  // namespace

using Core = CTypeCollectionCore;

// ==== CXmlTypeCollection ==============================================================

CXmlTypeCollection::CXmlTypeCollection(ItemType itemType, KOXML_TYPE_COLLECTION_PARAMS)
    : CXmlCollectionBase(elementName, elementNamespace, minOccurs, maxOccurs),
      m_restrictions(pattern, minLength, maxLength, minInclusive, maxInclusive, minExclusive, maxExclusive, length),
      m_itemType(itemType),
      m_numberFormat(numberFormat ? numberFormat : ""),
      m_whitespaceRule(whitespaceRule) {}

CXmlTypeCollection::~CXmlTypeCollection() = default;

CXmlElement* CXmlTypeCollection::FromXml_Int(CXmlElement*, CXmlElement* cursor, const CXmlSerializationContext& ctx,
                                             bool) {
  const std::string name = GetElementName();
  while (cursor && CXmlObjectHelper::DoesElementNameMatch(ctx, cursor, name, m_namespace)) {
    // From the view: GetText would give the element a string of its own.
    AddFromString(std::string(cursor->GetTextView()));
    cursor = cursor->GetNextSiblingElement();
  }
  return cursor;
}

// ==== CdatetimeBaseCol ==================================================================

CdatetimeBaseCol::CdatetimeBaseCol(ItemType itemType, KOXML_TYPE_COLLECTION_PARAMS)
    : CXmlTypeCollection(itemType, elementName, elementNamespace, minOccurs, maxOccurs, pattern, minLength,
                         maxLength, minInclusive, maxInclusive, minExclusive, maxExclusive, length, whitespaceRule,
                         numberFormat) {}

CdatetimeBaseCol::~CdatetimeBaseCol() = default;

int CdatetimeBaseCol::GetCount() const { return static_cast<int>(m_items.size()); }
void CdatetimeBaseCol::Clear() { Core::Clear(*this); }
void CdatetimeBaseCol::Remove(int index) { Core::Remove(*this, m_items, index); }
void CdatetimeBaseCol::Add(const CDateTime& value) { AddAt(GetCount(), value); }
CDateTime CdatetimeBaseCol::Item(int index) const { return Core::Item(m_items, index); }

void CdatetimeBaseCol::BaseAddAt(int index, const CDateTime& value) {
  Core::AddAt(*this, m_items, index, value, [](const CDateTime&) {});
}

// Every date kind travels as a datetime item; the text is the kind's own form.
void CdatetimeBaseCol::ToXml_Int(CXmlWriter* writer, bool, const char*, const CXmlSerializationContext& ctx,
                                 bool) const {
  Core::ToXml(*this, m_items, writer, ctx, ItemType_datetime,
              [this](const CDateTime& value) { return ItemToString(value); });
}

// ==== the typed collections, one row of TypeCollections.def each ===============

#define KOXML_TYPE_COLLECTION_ARGS                                                                               \
  elementName, elementNamespace, minOccurs, maxOccurs, pattern, minLength, maxLength, minInclusive, maxInclusive, \
      minExclusive, maxExclusive, length, whitespaceRule, numberFormat

#define KOXML_TEXT_OF_Plain(token, value) CConversions::token##ToString(value)
#define KOXML_TEXT_OF_Formatted(token, value)                                                             \
  FormattedText(                                                                                          \
      value, GetNumberFormat(), [](const auto& v) { return CConversions::token##ToString(v); },          \
      [](const auto& v, const std::string& f) { return CConversions::token##ToString(v, f); })

#define KOXML_TYPE_COLLECTION(Class, token, Value, Param, Output)                                          \
  Class::Class(KOXML_TYPE_COLLECTION_PARAMS) : CXmlTypeCollection(ItemType_##token, KOXML_TYPE_COLLECTION_ARGS) {} \
  Class::~Class() = default;                                                                              \
  int Class::GetCount() const { return static_cast<int>(m_items.size()); }                               \
  void Class::Clear() { Core::Clear(*this); }                                                             \
  void Class::Remove(int index) { Core::Remove(*this, m_items, index); }                                  \
  void Class::AddFromString(std::string text) {                                                           \
    Add(CConversions::token##FromString(text, GetWhitespaceRule()));                                      \
  }                                                                                                       \
  void Class::Add(Param value) { AddAt(GetCount(), value); }                                              \
  void Class::AddAt(int index, Param value) {                                                             \
    Core::AddAt(*this, m_items, index, static_cast<const Value&>(value),                                 \
                Core::FacetCheck<Value>(*this, [](const char* name, const Value& v,                       \
                                                  const CPrimitiveRestrictions& r) {                      \
                  CXmlObjectHelper::CheckRestrictionFor##token(name, v, r);                               \
                }));                                                                                      \
  }                                                                                                       \
  Value Class::Item(int index) const { return Core::Item(m_items, index); }                              \
  void Class::ToXml_Int(CXmlWriter* writer, bool, const char*, const CXmlSerializationContext& ctx, bool) \
      const {                                                                                             \
    Core::ToXml(*this, m_items, writer, ctx, GetItemType(),                                               \
                [this](const Value& value) { return KOXML_TEXT_OF_##Output(token, value); });            \
  }

#define KOXML_DATE_COLLECTION(Class, token, kind, message)                                                 \
  Class::Class(KOXML_TYPE_COLLECTION_PARAMS) : CdatetimeBaseCol(ItemType_##token, KOXML_TYPE_COLLECTION_ARGS) {} \
  Class::~Class() = default;                                                                              \
  void Class::AddFromString(std::string text) {                                                           \
    Add(CConversions::token##FromString(text, GetWhitespaceRule()));                                      \
  }                                                                                                       \
  void Class::AddAt(int index, const CDateTime& value) {                                                  \
    Core::AddDateAt(*this, index, value, CDateTime::kind, msg::message,                                   \
                    [](const char* name, const CDateTime& v, const CPrimitiveRestrictions& r) {           \
                      CXmlObjectHelper::CheckRestrictionFor##token(name, v, r);                           \
                    });                                                                                   \
  }                                                                                                       \
  std::string Class::ItemToString(const CDateTime& value) const { return CConversions::token##ToString(value); }

#include "members/TypeCollections.def"

#undef KOXML_TYPE_COLLECTION
#undef KOXML_DATE_COLLECTION
#undef KOXML_TEXT_OF_Plain
#undef KOXML_TEXT_OF_Formatted
#undef KOXML_TYPE_COLLECTION_ARGS

}  // namespace KoXmlLib10
