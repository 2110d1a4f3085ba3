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

#include "support/CustomClass.h"
#include "support/GeneratorVersion.h"

namespace {

using namespace testmodel;

constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;

// One value in an element "v" and the same value in an attribute "a", of one
// item type with optional facets. A test keeps one holder per kind, so its
// records live through many values, as generated records do.
CSmartPtr<CCustom> Holder(ItemType type, const CPrimitiveRestrictions& restrictions = CPrimitiveRestrictions()) {
  return new CCustom(XmlElementGroupTypeSequence,
                     {new CElementInfoSeqPrimMnd("v", "", 0, false, type, nullptr, kPreserve, restrictions)},
                     {new CAttributeInfoPrimitive("a", "", 0, false, type, nullptr, kPreserve, restrictions, nullptr)});
}

class ValueText : public WithGeneratorVersion {
 protected:
  std::string Written(CCustom& holder, const KoVariant& value) {
    holder.value = value;
    return holder.ToXml(false, false, EOLTypeLF, CXmlSerializationContext::m_defaultContext);
  }
  // The written text is exactly the conversion's.
  void ExpectWritten(const CSmartPtr<CCustom>& holder, const KoVariant& value) {
    const std::string text = value.ToString(nullptr);
    EXPECT_EQ(Written(*holder, value),
              "<AA:custom xmlns:AA=\"urn:test\" a=\"" + text + "\"><v>" + text + "</v></AA:custom>")
        << text;
  }
};

TEST_F(ValueText, RealsAsPrintfWritesThem) {
  const auto r8s = Holder(ItemType_r8);
  const auto r4s = Holder(ItemType_r4);
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
  const auto i1s = Holder(ItemType_i1), i2s = Holder(ItemType_i2), i4s = Holder(ItemType_i4),
      i8s = Holder(ItemType_i8), ui1s = Holder(ItemType_ui1), ui2s = Holder(ItemType_ui2),
      ui4s = Holder(ItemType_ui4), ui8s = Holder(ItemType_ui8);
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
  const auto dates = Holder(ItemType_date), dateTimes = Holder(ItemType_datetime),
      times = Holder(ItemType_time), yearMonths = Holder(ItemType_yearMonth),
      monthDays = Holder(ItemType_monthDay), decimals = Holder(ItemType_decimal),
      integers = Holder(ItemType_integer), booleans = Holder(ItemType_boolean);
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
  const auto prices = Holder(ItemType_decimal, money), skus = Holder(ItemType_string, sku),
      eithers = Holder(ItemType_string, either), days = Holder(ItemType_date, day);
  using C = CConversions;
  constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;
  for (int round = 0; round < 3; ++round) {
    KoVariant value;
    value.SetDecimal(C::decimalFromString("100.49", kNone));
    ExpectWritten(prices, value);
    value.SetDecimal(C::decimalFromString("100.5", kNone));
    EXPECT_THROW(Written(*prices, value), CKoException);
    value.SetDecimal(C::decimalFromString("-0.01", kNone));
    EXPECT_THROW(Written(*prices, value), CKoException);
    value.SetString("ABC-1234");
    ExpectWritten(skus, value);
    value.SetString("ABC-12345");
    EXPECT_THROW(Written(*skus, value), CKoException);
    value.SetString("ab");
    ExpectWritten(eithers, value);
    value.SetString("abc");
    EXPECT_THROW(Written(*eithers, value), CKoException);
    value.SetDate(C::dateFromString("2000-01-01", kNone));
    ExpectWritten(days, value);
    value.SetDate(C::dateFromString("1999-12-31", kNone));
    EXPECT_THROW(Written(*days, value), CKoException);
  }
}

}  // namespace
