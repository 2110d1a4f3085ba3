#ifndef KOXMLLIB10_TYPECOLLECTIONS_H
#define KOXMLLIB10_TYPECOLLECTIONS_H

#include <string>
#include <vector>

#include "KoXmlLib10/BigInteger.h"
#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/Conversions.h"
#include "KoXmlLib10/DateTime.h"
#include "KoXmlLib10/DateTimeSpan.h"
#include "KoXmlLib10/Decimal.h"
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/Facets.h"
#include "KoXmlLib10/ItemType.h"
#include "KoXmlLib10/XmlCollectionBase.h"

namespace KoXmlLib10 {

class CTypeCollectionCore;

// The constructor arguments every typed collection shares: the items'
// element name and namespace, their count bounds (-1: unbounded), the facets
// checked on every added value, the whitespace rule applied to text before it
// is converted, and the printf number format of float, double and decimal
// output (null or empty: the type's own form).
#define KOXML_TYPE_COLLECTION_PARAMS                                                                          \
  const char *elementName, const char *elementNamespace, int minOccurs, int maxOccurs, const char *pattern, \
      int minLength, int maxLength, const char *minInclusive, const char *maxInclusive,                     \
      const char *minExclusive, const char *maxExclusive, int length,                                       \
      CWhitespaceUtils::WhitespaceRule whitespaceRule, const char *numberFormat

// Root of the collections of simple values: one element per value, each
// value checked against the member's facets when it is added, also while a
// run of elements is read. A failed add leaves the collection unchanged, but
// its listeners have already seen the add event.
class KOXML_API CXmlTypeCollection : public CXmlCollectionBase {
 public:
  CXmlTypeCollection(ItemType itemType, KOXML_TYPE_COLLECTION_PARAMS);
  ~CXmlTypeCollection() override;
  CXmlTypeCollection(const CXmlTypeCollection&) = delete;
  CXmlTypeCollection& operator=(const CXmlTypeCollection&) = delete;

  // Converts the text with the whitespace rule and adds the value.
  virtual void AddFromString(std::string text) = 0;

  ItemType GetItemType() const { return m_itemType; }
  const CPrimitiveRestrictions& GetRestrictions() const { return m_restrictions; }
  std::string GetNumberFormat() const { return m_numberFormat; }
  CWhitespaceUtils::WhitespaceRule GetWhitespaceRule() const { return m_whitespaceRule; }

 protected:
  // Adds the text of every element from `firstChild` on that bears the
  // items' name; returns the first one that does not (null at the end).
  // Counts are left to the caller.
  CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CXmlSerializationContext& ctx,
                           bool choiceMayBeEmpty) override;

 private:
  friend class CTypeCollectionCore;

  CPrimitiveRestrictions m_restrictions;
  ItemType m_itemType;
  std::string m_numberFormat;
  CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
};

// One typed collection: `Value` is what Item returns and iteration yields,
// `Param` how Add and AddAt take it. Writing checks the count first.
#define KOXML_DECLARE_TYPE_COLLECTION(Class, Value, Param)                                              \
  class KOXML_API Class : public CXmlTypeCollection {                                                   \
   public:                                                                                              \
    explicit Class(KOXML_TYPE_COLLECTION_PARAMS);                                                       \
    ~Class() override;                                                                                  \
                                                                                                        \
    int GetCount() const override;                                                                      \
    void Clear() override;                                                                              \
    void Remove(int index) override;                                                                    \
    void AddFromString(std::string text) override;                                                      \
    void Add(Param value);                                                                              \
    void AddAt(int index, Param value);                                                                 \
    Value Item(int index) const;                                                                        \
    std::vector<Value>::const_iterator begin() const { return m_items.begin(); }                        \
    std::vector<Value>::const_iterator end() const { return m_items.end(); }                            \
                                                                                                        \
   protected:                                                                                           \
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,                       \
                   const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const override;          \
                                                                                                        \
   private:                                                                                             \
    std::vector<Value> m_items;                                                                         \
  };

KOXML_DECLARE_TYPE_COLLECTION(Ci1Col, char, char)
KOXML_DECLARE_TYPE_COLLECTION(Ci2Col, short, short)
KOXML_DECLARE_TYPE_COLLECTION(Ci4Col, long, long)
KOXML_DECLARE_TYPE_COLLECTION(Ci8Col, long long, long long)
KOXML_DECLARE_TYPE_COLLECTION(Cui1Col, unsigned char, unsigned char)
KOXML_DECLARE_TYPE_COLLECTION(Cui2Col, unsigned short, unsigned short)
KOXML_DECLARE_TYPE_COLLECTION(Cui4Col, unsigned long, unsigned long)
KOXML_DECLARE_TYPE_COLLECTION(Cui8Col, unsigned long long, unsigned long long)
KOXML_DECLARE_TYPE_COLLECTION(Cr4Col, float, float)
KOXML_DECLARE_TYPE_COLLECTION(Cr8Col, double, double)
KOXML_DECLARE_TYPE_COLLECTION(CdecimalCol, CDecimal, const CDecimal&)
KOXML_DECLARE_TYPE_COLLECTION(CintegerCol, CBigInteger, const CBigInteger&)
KOXML_DECLARE_TYPE_COLLECTION(CbooleanCol, bool, bool)
KOXML_DECLARE_TYPE_COLLECTION(CstringCol, std::string, std::string)
KOXML_DECLARE_TYPE_COLLECTION(Cbase64BinaryCol, CBinaryData, const CBinaryData&)
KOXML_DECLARE_TYPE_COLLECTION(ChexBinaryCol, CBinaryData, const CBinaryData&)
KOXML_DECLARE_TYPE_COLLECTION(CdurationCol, CDateTimeSpan, const CDateTimeSpan&)
KOXML_DECLARE_TYPE_COLLECTION(CdayCol, unsigned char, unsigned char)
KOXML_DECLARE_TYPE_COLLECTION(CmonthCol, unsigned char, unsigned char)
KOXML_DECLARE_TYPE_COLLECTION(CyearCol, unsigned short, unsigned short)

#undef KOXML_DECLARE_TYPE_COLLECTION

// Root of the five date collections: one array of CDateTime values, each of
// the kind its collection requires (checked before any event), written as
// datetime items in the collection's own lexical form.
class KOXML_API CdatetimeBaseCol : public CXmlTypeCollection {
 public:
  CdatetimeBaseCol(ItemType itemType, KOXML_TYPE_COLLECTION_PARAMS);
  ~CdatetimeBaseCol() override;

  int GetCount() const override;
  void Clear() override;
  void Remove(int index) override;
  // AddAt(GetCount(), value).
  virtual void Add(const CDateTime& value);
  // Checks the date kind and the facets, then BaseAddAt.
  virtual void AddAt(int index, const CDateTime& value) = 0;
  virtual CDateTime Item(int index) const;
  virtual std::string ItemToString(const CDateTime& value) const = 0;

  // The insertion with its events, without the kind and facet checks.
  void BaseAddAt(int index, const CDateTime& value);
  std::vector<CDateTime>::const_iterator begin() const { return m_items.begin(); }
  std::vector<CDateTime>::const_iterator end() const { return m_items.end(); }

 protected:
  void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                 const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const override;

 private:
  std::vector<CDateTime> m_items;
};

#define KOXML_DECLARE_DATE_COLLECTION(Class)                                   \
  class KOXML_API Class : public CdatetimeBaseCol {                            \
   public:                                                                     \
    explicit Class(KOXML_TYPE_COLLECTION_PARAMS);                              \
    ~Class() override;                                                         \
                                                                               \
    void AddFromString(std::string text) override;                             \
    void AddAt(int index, const CDateTime& value) override;                    \
    std::string ItemToString(const CDateTime& value) const override;           \
  };

KOXML_DECLARE_DATE_COLLECTION(CdateCol)       // dt_date values
KOXML_DECLARE_DATE_COLLECTION(CdatetimeCol)   // dt_dateTime values
KOXML_DECLARE_DATE_COLLECTION(CtimeCol)       // dt_time values
KOXML_DECLARE_DATE_COLLECTION(CmonthDayCol)   // dt_gMonthDay values
KOXML_DECLARE_DATE_COLLECTION(CyearMonthCol)  // dt_gYearMonth values

#undef KOXML_DECLARE_DATE_COLLECTION

}  // namespace KoXmlLib10

#endif
