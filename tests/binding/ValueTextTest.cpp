// The writers put out a value's text without going through KoVariant::ToString;
// these tests hold the written text to the conversions' own, byte for byte,
// over many values of every kind that has a path of its own, as element text
// and as attribute value, with facets checked on the way.

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <KoXmlLib10.h>
#include <KoXmlLib10/GeneratedSupport.h>

#include "support/GeneratorVersion.h"

namespace {

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

// One value in an element "v" and the same value in an attribute "a", of
// one item type with optional facets; the records of each shape are made
// once and freed at exit, as generated code does.
struct Shape {
  ItemType type;
  CPrimitiveRestrictions restrictions;
};

struct Records {
  CParentElementInfo* info = nullptr;
  CElementInfo** elements = nullptr;
  CAttributeInfo** attributes = nullptr;
  explicit Records(const Shape& shape) {
    info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "HolderType", "", false,
                                  false, -1, ItemType_none, nullptr, false);
    elements = new CElementInfo*[2]{new CElementInfoSeqPrimMnd("v", "", 0, false, shape.type, nullptr,
                                                               CWhitespaceUtils::WhitespaceRule_Preserve,
                                                               shape.restrictions),
                                    nullptr};
    attributes = new CAttributeInfo*[2]{new CAttributeInfoPrimitive("a", "", 0, false, shape.type, nullptr,
                                                                     CWhitespaceUtils::WhitespaceRule_Preserve,
                                                                     shape.restrictions, nullptr),
                                        nullptr};
  }
  ~Records() { CXmlGeneratedClass::CleanMetaData(info, elements, attributes); }
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;
};

class CHolder : public CXmlGeneratedClass {
 public:
  CHolder(const Records& records, const KoVariant& value) : m_records(records), m_value(value) {
    SetElementName("h");
  }

  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }
  CParentElementInfo* GetClassInfo() override { return m_records.info; }
  CElementInfo** GetClassElementInfo() override { return m_records.elements; }
  CAttributeInfo** GetClassAttributeInfo() override { return m_records.attributes; }
  void Init() override { m_value.SetInvalid(); }
  void AccessProperty(int, bool get, KoVariant& value) override {
    if (get)
      value = m_value;
    else
      m_value = value;
  }

 private:
  const Records& m_records;
  KoVariant m_value;
};

class ValueText : public WithGeneratorVersion {
 protected:
  std::string Written(const Records& records, const KoVariant& value) {
    CSmartPtr<CHolder> holder(new CHolder(records, value));
    return holder->ToXml(false, false, EOLTypeLF, CXmlSerializationContext::m_defaultContext);
  }
  // The written text is exactly the conversion's.
  void ExpectWritten(const Records& records, const KoVariant& value) {
    const std::string text = value.ToString(nullptr);
    EXPECT_EQ(Written(records, value), "<h a=\"" + text + "\"><v>" + text + "</v></h>") << text;
  }
};

TEST_F(ValueText, RealsAsPrintfWritesThem) {
  const Records r8s(Shape{ItemType_r8, {}});
  const Records r4s(Shape{ItemType_r4, {}});
  std::mt19937_64 random(17);
  std::vector<double> doubles = {0.0, -0.0, 1.0, -1.5, 0.1, 1e-300, 5e-324, 1e300, DBL_MAX, -DBL_MAX,
                                 123456789012345678.0, 1e16, 1e15, 9999999999999998.0, 0.000123,
                                 std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                                 std::nan("")};
  for (int i = 0; i < 2000; ++i) {
    std::uniform_int_distribution<uint64_t> bits;
    uint64_t b = bits(random);
    double d;
    std::memcpy(&d, &b, sizeof d);
    doubles.push_back(d);
    doubles.push_back(std::uniform_real_distribution<double>(-1e6, 1e6)(random));
    doubles.push_back(std::round(std::uniform_real_distribution<double>(0, 1e5)(random)) / 100);
  }
  for (double d : doubles) {
    KoVariant value;
    value.SetR8(d);
    ExpectWritten(r8s, value);
    value.SetR4(static_cast<float>(d));
    ExpectWritten(r4s, value);
  }
}

TEST_F(ValueText, WholeNumbersOfEveryWidth) {
  std::mt19937_64 random(5);
  const Records i1s(Shape{ItemType_i1, {}}), i2s(Shape{ItemType_i2, {}}), i4s(Shape{ItemType_i4, {}}),
      i8s(Shape{ItemType_i8, {}}), ui1s(Shape{ItemType_ui1, {}}), ui2s(Shape{ItemType_ui2, {}}),
      ui4s(Shape{ItemType_ui4, {}}), ui8s(Shape{ItemType_ui8, {}});
  std::vector<uint64_t> samples = {0, 1, 127, 128, 255, 32767, 32768, 65535, 0x7fffffffull, 0x80000000ull,
                                   0xffffffffull, 0x7fffffffffffffffull, 0x8000000000000000ull, ~0ull};
  for (int i = 0; i < 500; ++i) samples.push_back(random() >> (random() % 64));
  for (uint64_t n : samples) {
    KoVariant value;
    value.SetI1(static_cast<char>(n));
    ExpectWritten(i1s, value);
    value.SetI2(static_cast<short>(n));
    ExpectWritten(i2s, value);
    value.SetI4(static_cast<long>(static_cast<int32_t>(n)));
    ExpectWritten(i4s, value);
    value.SetI8(static_cast<long long>(n));
    ExpectWritten(i8s, value);
    value.SetUI1(static_cast<unsigned char>(n));
    ExpectWritten(ui1s, value);
    value.SetUI2(static_cast<unsigned short>(n));
    ExpectWritten(ui2s, value);
    value.SetUI4(static_cast<unsigned long>(static_cast<uint32_t>(n)));
    ExpectWritten(ui4s, value);
    value.SetUI8(n);
    ExpectWritten(ui8s, value);
  }
}

TEST_F(ValueText, DatesDecimalsIntegersAndBooleans) {
  const Records dates(Shape{ItemType_date, {}}), dateTimes(Shape{ItemType_datetime, {}}),
      times(Shape{ItemType_time, {}}), yearMonths(Shape{ItemType_yearMonth, {}}),
      monthDays(Shape{ItemType_monthDay, {}}), decimals(Shape{ItemType_decimal, {}}),
      integers(Shape{ItemType_integer, {}}), booleans(Shape{ItemType_boolean, {}});
  using C = CConversions;
  constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;
  for (const char* text : {"2024-02-29T23:59:58Z", "-0044-03-15T12:00:00.5+01:30", "9999-12-31T23:59:59",
                           "2001-10-26T21:32:52.000001-05:00", "0001-01-01T00:00:00.123456789Z"}) {
    KoVariant value;
    value.SetDateTime(C::datetimeFromString(text, kNone));
    EXPECT_EQ(value.ToString(nullptr), text);  // these texts are canonical
    ExpectWritten(dateTimes, value);
  }
  for (const char* text : {"2024-02-29", "-0044-03-15Z", "2001-10-26+14:00", "0999-12-31-12:00"}) {
    KoVariant value;
    value.SetDate(C::dateFromString(text, kNone));
    EXPECT_EQ(value.ToString(nullptr), text);
    ExpectWritten(dates, value);
  }
  for (const char* text : {"00:00:00", "23:59:59.999Z", "12:30:00.05-08:00"}) {
    KoVariant value;
    value.SetTime(C::timeFromString(text, kNone));
    EXPECT_EQ(value.ToString(nullptr), text);
    ExpectWritten(times, value);
  }
  KoVariant value;
  value.SetYearMonth(C::yearMonthFromString("2024-02Z", kNone));
  ExpectWritten(yearMonths, value);
  value.SetMonthDay(C::monthDayFromString("--02-29", kNone));
  ExpectWritten(monthDays, value);
  for (const char* text : {"0", "-0.5", "123456789012345678901234567890.000000000000000000001", "42.10", "-7"}) {
    value.SetDecimal(C::decimalFromString(text, kNone));
    ExpectWritten(decimals, value);
  }
  for (const char* text : {"0", "-1", "123456789012345678901234567890123456789"}) {
    value.SetInteger(C::integerFromString(text, kNone));
    ExpectWritten(integers, value);
  }
  value.SetBoolean(true);
  ExpectWritten(booleans, value);
  value.SetBoolean(false);
  ExpectWritten(booleans, value);
}

// The bounds and patterns are converted and compiled once per thread; the
// answers must stay those of each value, in any order of shapes.
TEST_F(ValueText, FacetsCheckedOnEveryValueWritten) {
  CPrimitiveRestrictions money;
  money.minInclusive = "0";
  money.maxExclusive = "100.5";
  CPrimitiveRestrictions sku;
  sku.pattern = "[A-Z]{3}-[0-9]{4}";
  CPrimitiveRestrictions either;
  either.pattern = "a|ab";  // the whole value must match, not a prefix
  CPrimitiveRestrictions day;
  day.minInclusive = "2000-01-01";
  const Records prices(Shape{ItemType_decimal, money}), skus(Shape{ItemType_string, sku}),
      eithers(Shape{ItemType_string, either}), days(Shape{ItemType_date, day});
  using C = CConversions;
  constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;
  for (int round = 0; round < 3; ++round) {
    KoVariant value;
    value.SetDecimal(C::decimalFromString("100.49", kNone));
    ExpectWritten(prices, value);
    value.SetDecimal(C::decimalFromString("100.5", kNone));
    EXPECT_THROW(Written(prices, value), CKoException);
    value.SetDecimal(C::decimalFromString("-0.01", kNone));
    EXPECT_THROW(Written(prices, value), CKoException);
    value.SetString("ABC-1234");
    ExpectWritten(skus, value);
    value.SetString("ABC-12345");
    EXPECT_THROW(Written(skus, value), CKoException);
    value.SetString("ab");
    ExpectWritten(eithers, value);
    value.SetString("abc");
    EXPECT_THROW(Written(eithers, value), CKoException);
    value.SetDate(C::dateFromString("2000-01-01", kNone));
    ExpectWritten(days, value);
    value.SetDate(C::dateFromString("1999-12-31", kNone));
    EXPECT_THROW(Written(days, value), CKoException);
  }
}

}  // namespace
