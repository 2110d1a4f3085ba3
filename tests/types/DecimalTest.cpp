#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include <KoXmlLib10.h>

#include "support/Throws.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

// Built during static initialisation of this program, before main: parsing
// and the range checks must not depend on the library's own initialisers.
const CDecimal kStartupPrice("1234.50");
const long kStartupLong = CDecimal("2147483647.4").ToLong();
const std::string kStartupMaxLong = CBigInteger::MAX_LONG.ToString();

std::string Str(const char* text) { return CDecimal(text).ToString(); }

::testing::AssertionResult ParseError(const char* text, const std::string& expected) {
  return Throws<CKoInvalidValueException>([&] { CDecimal d(text); }, expected);
}

std::string Position(int position, const std::string& text) {
  return "The string representing a Decimal, contained an invalid char at position " +
         std::to_string(position) + " [" + text + "]";
}

}  // namespace

TEST(Decimal, StaticObjectsParseAtStartup) {
  EXPECT_EQ(kStartupPrice.ToString(), "1234.5");
  EXPECT_EQ(kStartupLong, 2147483647L);
  EXPECT_EQ(kStartupMaxLong, "2147483647");
}

TEST(Decimal, ParsesAndPrints) {
  const char* const texts[][2] = {{"1.500", "1.5"}, {"-0.50", "-0.5"}, {"007", "7"}, {".5", "0.5"}, {"1.05", "1.05"},
                                  {"1.5e3", "1500"}, {"1.5E-2", "0.015"}, {"12.5e-1", "1.25"}, {" 1 000.5\n", "1000.5"},
                                  {"5-", "-5"}, {"-0", "0"}, {"-0.000", "0"}, {"", "0"}};
  for (const auto& t : texts) EXPECT_EQ(Str(t[0]), t[1]) << t[0];
  EXPECT_EQ(CDecimal(0.1).ToString(), "0.1");
  EXPECT_EQ(CDecimal(-2.5).ToString(), "-2.5");
  EXPECT_EQ(CDecimal(CBigInteger(1), CBigInteger(5), 2).ToString(), "1.05");
  EXPECT_EQ(CDecimal(CBigInteger(-1), CBigInteger(-50), 2).ToString(), "-1.5");
  EXPECT_EQ(Str("1e9999").size(), 10000u);
  const std::string integer500 = "9" + std::string(498, '0') + "1.25";
  EXPECT_EQ(Str(integer500.c_str()), integer500);
}

TEST(Decimal, ParseErrorsNamePositionAndKeepValue) {
  const std::pair<const char*, int> errors[] = {{"12a", 2}, {"abc", 0}, {"1.2.3", 3}, {"1.5-", 3}, {"1e5x", 3},
                                                {"1e 5 ", 4}, {"1e10000", 6}, {"1e-10000", 7}, {"-1x", 2}};
  for (const auto& [text, at] : errors) EXPECT_TRUE(ParseError(text, Position(at, text)));
  CDecimal kept("2.5");
  EXPECT_THROW(kept.Parse("2.5x"), CKoInvalidValueException);
  EXPECT_EQ(kept.ToString(), "2.5");
}

TEST(Decimal, FractionDigitsRoundHalfTowardZeroAtThirty) {
  const std::string z29(29, '0');
  const std::string nines30(30, '9');
  auto str = [](const std::string& text) { return CDecimal(text.c_str()).ToString(); };
  EXPECT_EQ(str("1.23456789012345678901234567890123"), "1.234567890123456789012345678901");
  EXPECT_EQ(str("0." + z29 + "15"), "0." + z29 + "1");
  EXPECT_EQ(str("0." + z29 + "151"), "0." + z29 + "2");
  EXPECT_EQ(str("-0." + z29 + "15"), "-0." + z29 + "1");
  EXPECT_EQ(str("-0." + z29 + "16"), "-0." + z29 + "2");
  EXPECT_EQ(str("0.1" + z29 + "4"), "0.1");
  EXPECT_EQ(str("0." + nines30 + "6"), "1");
  EXPECT_EQ(str("-9." + nines30 + "6"), "-10");
  EXPECT_EQ(str("0.0" + z29 + "4"), "0");
  // Dividing by 10^e truncates after 32 digits first: ...1|50|0001 is a half.
  EXPECT_EQ(str("0." + std::string(28, '0') + "1500001e-1"), "0." + z29 + "1");
  EXPECT_EQ(str("0." + z29 + "1500001"), "0." + z29 + "2");
  EXPECT_EQ((CDecimal("0.000000000000001") * CDecimal("0.0000000000000015")).ToString(), "0." + z29 + "1");
  EXPECT_EQ(str("-12345." + std::string(494, '7') + "1"), "-12345." + std::string(29, '7') + "8");
}

TEST(Decimal, AdditionCarriesBetweenFractionAndInteger) {
  auto sum = [](const char* a, const char* b) { return (CDecimal(a) + CDecimal(b)).ToString(); };
  auto difference = [](const char* a, const char* b) { return (CDecimal(a) - CDecimal(b)).ToString(); };
  const char* const sums[][3] = {{"1.2", "-0.5", "0.7"}, {"-1.2", "0.5", "-0.7"}, {"0.999", "0.001", "1"},
                                 {"-0.999", "-0.001", "-1"}, {"-0.5", "0.25", "-0.25"}, {"-2.75", "1", "-1.75"}};
  for (const auto& c : sums) EXPECT_EQ(sum(c[0], c[1]), c[2]) << c[0] << " + " << c[1];
  const char* const differences[][3] = {{"1", "0.001", "0.999"}, {"-1", "-0.001", "-0.999"}, {"0.3", "1", "-0.7"},
                                        {"2.5", "3.75", "-1.25"}, {"-3.25", "-10.5", "7.25"}};
  for (const auto& c : differences) EXPECT_EQ(difference(c[0], c[1]), c[2]) << c[0] << " - " << c[1];
  const CDecimal zero = CDecimal("1.5") + CDecimal("-1.5");
  EXPECT_EQ(zero.ToString(), "0");
  EXPECT_TRUE(zero == CDecimal(0));
  EXPECT_FALSE(zero < CDecimal("-0"));
  EXPECT_FALSE(CDecimal("-0") < zero);

  CDecimal d("-0.5");
  EXPECT_EQ((d++).ToString(), "-0.5");
  EXPECT_EQ(d.ToString(), "0.5");
  EXPECT_EQ((--d).ToString(), "-0.5");
  d.Negate();
  EXPECT_EQ(d.ToString(), "0.5");
}

TEST(Decimal, MultiplicationAndDivision) {
  EXPECT_EQ((CDecimal("1.5") * CDecimal("-0.2")).ToString(), "-0.3");
  const std::string thirds = "0." + std::string(29, '3') + "3", twoThirds = "0." + std::string(29, '6') + "7";
  const std::pair<std::pair<const char*, const char*>, std::string> quotients[] = {
      {{"1", "3"}, thirds}, {{"2", "3"}, twoThirds}, {{"-2", "3"}, "-" + twoThirds}, {{"1", "-3"}, "-" + thirds},
      {{"10", "0.4"}, "25"}};
  for (const auto& [operands, quotient] : quotients)
    EXPECT_EQ((CDecimal(operands.first) / CDecimal(operands.second)).ToString(), quotient) << operands.first;
  CDecimal d("2.5");
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { d /= CDecimal("0.0"); }, "ERROR: Overflow in operator/."));
  EXPECT_EQ(d.ToString(), "2.5");
}

TEST(Decimal, Comparison) {
  for (const auto& [a, b] : {std::pair{"-0.5", "0.3"}, {"-1.5", "-1.2"}, {"-1.5", "-0.9"}, {"1.05", "1.5"}})
    EXPECT_TRUE(CDecimal(a) < CDecimal(b) && !(CDecimal(b) < CDecimal(a))) << a << " < " << b;
  EXPECT_TRUE(CDecimal("1.10") == CDecimal("1.1"));
  EXPECT_TRUE(CDecimal("1234.50") > CDecimal("999.99"));
  EXPECT_TRUE(CDecimal("2") >= CDecimal("2.0"));
  EXPECT_TRUE(CDecimal("2") != CDecimal("2.000000001"));
}

TEST(Decimal, ConversionsRoundAndCheckRange) {
  for (const auto& [text, value] :
       {std::pair{"2.5", 2L}, {"2.6", 3L}, {"-2.5", -2L}, {"-2.6", -3L}, {"-2147483648.5", -2147483648L}})
    EXPECT_EQ(CDecimal(text).ToLong(), value) << text;
  EXPECT_EQ(CDecimal("9223372036854775807.5").ToLongLong(), 9223372036854775807LL);
  EXPECT_EQ(CDecimal("-9223372036854775808").ToLongLong(), -9223372036854775807LL - 1);
  EXPECT_EQ(CDecimal("-3.5").ToBigInteger().ToString(), "-3");
  EXPECT_EQ(CDecimal("0.1").ToDouble(), 0.1);
  EXPECT_EQ(CDecimal("-1.6E+308").ToDouble(), -1.6e308);

  const std::string longMessage = "The Decimal value if to large to fit into a LONG";
  for (const char* outside : {"2147483648", "2147483647.6", "-2147483649"})
    EXPECT_TRUE(Throws<CKoOverFlowException>([&] { CDecimal(outside).ToLong(); }, longMessage)) << outside;
  for (const char* outside : {"9223372036854775808", "-9223372036854775809"})
    EXPECT_TRUE(Throws<CKoOverFlowException>([&] { CDecimal(outside).ToLongLong(); },
              "The Decimal value if to large to fit into a LONGLONG"))
        << outside;
  for (const char* outside : {"1.8E+308", "-1.8E+308"})
    EXPECT_TRUE(Throws<CKoOverFlowException>([&] { CDecimal(outside).ToDouble(); },
              "The Decimal value if to large to fit into a Double"))
        << outside;
}

TEST(Decimal, ToStringWithPlacesRoundsHalfAwayFromZero) {
  auto places = [](const char* text, int n) { return CDecimal(text).ToString(n); };
  const struct { const char* text; int places; std::string printed; } cases[] = {
      {"1.005", 2, "1.01"}, {"-1.005", 2, "-1.01"}, {"1.004", 2, "1.00"}, {"-0.25", 1, "-0.3"}, {"-0.01", 1, "-0.0"},
      {"0.995", 2, "1.00"}, {"1.5", 3, "1.500"}, {"2", 2, "2.00"}, {"1.5", 35, "1.5" + std::string(34, '0')},
      {"2.5", 0, "3"}, {"-2.5", 0, "-3"}, {"-0.4", 0, "0"}};
  for (const auto& c : cases) EXPECT_EQ(places(c.text, c.places), c.printed) << c.text << " to " << c.places;
}

namespace {

// Sets the number of fraction digits kept for one scope.
class MaxDividerScope {
 public:
  explicit MaxDividerScope(int value) : m_saved(CDecimal::m_maxDivider) { CDecimal::m_maxDivider = value; }
  ~MaxDividerScope() { CDecimal::m_maxDivider = m_saved; }
  MaxDividerScope(const MaxDividerScope&) = delete;
  MaxDividerScope& operator=(const MaxDividerScope&) = delete;

 private:
  int m_saved;
};

std::string RandomDigits(std::mt19937_64& rng, int count) {
  std::string digits;
  for (int i = 0; i < count; ++i) digits += static_cast<char>('0' + (rng() % 4 == 0 ? 0 : rng() % 10));
  return digits;
}

// Plain short text is read without the general scan; a trailing space sends
// the same text through the general scan. Both must give the same value in
// every observable way.
void ExpectPlainTextReadsLikeGeneralScan(std::mt19937_64& rng) {
  for (int i = 0; i < 3000; ++i) {
    std::string text = rng() % 3 == 0 ? "-" : (rng() % 5 == 0 ? "+" : "");
    text += RandomDigits(rng, static_cast<int>(rng() % 21));
    if (rng() % 4 != 0) text += "." + RandomDigits(rng, static_cast<int>(rng() % 21));
    const CDecimal quick(text.c_str());
    const CDecimal general((text + " ").c_str());
    ASSERT_EQ(quick.ToString(), general.ToString()) << text;
    ASSERT_EQ(quick.ToString(2), general.ToString(2)) << text;
    ASSERT_TRUE(quick == general) << text;
    ASSERT_EQ(quick < CDecimal(0), general < CDecimal(0)) << text;
    ASSERT_EQ((quick + CDecimal("0.001")).ToString(), (general + CDecimal("0.001")).ToString()) << text;
  }
}

}  // namespace

TEST(Decimal, PlainTextReadsLikeTheGeneralScan) {
  std::mt19937_64 rng(11);
  ExpectPlainTextReadsLikeGeneralScan(rng);
  const char* const texts[][2] = {{"320.20", "320.2"}, {"-.5", "-0.5"}, {"+4.", "4"}, {".", "0"},
                                  {"0.000000001", "0.000000001"}, {"-123456789.000000012", "-123456789.000000012"},
                                  {"999999999999999999.999999999999999999", "999999999999999999.999999999999999999"}};
  for (const auto& t : texts) EXPECT_EQ(Str(t[0]), t[1]) << t[0];
}

TEST(Decimal, PlainTextRespectsFewerKeptFractionDigits) {
  const MaxDividerScope scope(3);
  std::mt19937_64 rng(13);
  ExpectPlainTextReadsLikeGeneralScan(rng);
  EXPECT_EQ(Str("1.23456"), "1.235");
  EXPECT_EQ(Str("1.2345"), "1.234");
}

// Canonical text (no leading zeros, no trailing fraction zeros) prints back
// unchanged, whatever the sizes of its two parts.
TEST(Decimal, CanonicalTextPrintsBackUnchanged) {
  std::mt19937_64 rng(17);
  for (int i = 0; i < 3000; ++i) {
    std::string integer = RandomDigits(rng, static_cast<int>(rng() % 25));
    integer.erase(0, std::min(integer.find_first_not_of('0'), integer.size()));
    if (integer.empty()) integer = "0";
    std::string fraction = RandomDigits(rng, static_cast<int>(rng() % 30));
    fraction += static_cast<char>('1' + rng() % 9);
    const std::string text = (rng() % 2 ? "-" : "") + integer + "." + fraction;
    ASSERT_EQ(Str(text.c_str()), text);
    ASSERT_EQ(CDecimal(text.c_str()).GetNegative().GetNegative().ToString(), text);
  }
}
