#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <cmath>
#include <string>
#include <thread>
#include <vector>

#include "support/Throws.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

using H = CXmlObjectHelper;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

CPrimitiveRestrictions Bounds(const char* minInc, const char* maxInc, const char* minExc,
                              const char* maxExc) {
  return CPrimitiveRestrictions(nullptr, -1, -1, minInc, maxInc, minExc, maxExc, -1);
}

CPrimitiveRestrictions Lengths(int minLength, int maxLength, int length, const char* pattern = "") {
  return CPrimitiveRestrictions(pattern, minLength, maxLength, "", "", "", "", length);
}

CDateTime Date(const char* text) { return CConversions::dateFromString(text, kCollapse); }
CDateTime DateTime(const char* text) { return CConversions::datetimeFromString(text, kCollapse); }

}  // namespace

TEST(Facets, WholeNumberBoundsInOrder) {
  const auto minInc = Bounds(" 10 ", "", "", "");
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionFori4("qty", 9, minInc); }, "Invalid Value for qty [9]"));
  EXPECT_NO_THROW(H::CheckRestrictionFori4("qty", 10, minInc));
  const auto minExc = Bounds("", "", "10", "");
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionFori4("qty", 10, minExc); }, "Invalid Value for qty [10]"));
  const auto maxBounds = Bounds("", "-1", "", "-5");
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionFori2("n", 0, maxBounds); }, "Invalid Value for n [0]"));
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionFori1("n", -5, maxBounds); }, "Invalid Value for n [-5]"));
  EXPECT_NO_THROW(H::CheckRestrictionFori1("n", -6, maxBounds));

  // The first broken bound ends the check before a later bound is converted.
  const auto badLater = Bounds("10", "ten", "", "");
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionFori4("q", 5, badLater); }, "Invalid Value for q [5]"));
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { H::CheckRestrictionFori4("q", 15, badLater); },
            "The value [ten] can not be converted to a i4"));
  EXPECT_TRUE(Throws<CKoInvalidValueException>(
                [] { H::CheckRestrictionForui1("q", 1, Bounds("300", "", "", "")); },
            "The value [300] is to large to fit in a ui1"));

  EXPECT_TRUE(Throws([] { H::CheckRestrictionForui4("u", 4294967295UL, Bounds("", "10", "", "")); },
            "Invalid Value for u [4294967295]"));
  EXPECT_TRUE(Throws([] { H::CheckRestrictionFori8("big", -9223372036854775807LL - 1, Bounds("0", "", "", "")); },
            "Invalid Value for big [-9223372036854775808]"));
  EXPECT_TRUE(Throws([] { H::CheckRestrictionForui8("big", 18446744073709551615ULL, Bounds("", "", "", "-1")); },
            "Invalid Value for big [18446744073709551615]"));  // "-1" reads as the largest ui8
  EXPECT_TRUE(Throws([] { H::CheckRestrictionForday("d", 7, Bounds("", "---05", "", "")); }, "Invalid Value for d [7]"));
  EXPECT_TRUE(Throws([] { H::CheckRestrictionFormonth("m", 1, Bounds("--02", "", "", "")); }, "Invalid Value for m [1]"));
  EXPECT_TRUE(Throws([] { H::CheckRestrictionForyear("y", 2025, Bounds("", "", "", "2025")); },
            "Invalid Value for y [2025]"));
}

TEST(Facets, RealDecimalAndIntegerBounds) {
  const double nan = std::nan("");
  EXPECT_TRUE(Throws([] { H::CheckRestrictionForr8("r", 1.0, Bounds("1.5", "", "", "")); },
            "Invalid Value for r [1.000000]"));
  for (const auto& bounds : {Bounds("0", "", "", ""), Bounds("", "0", "", ""), Bounds("", "", "0", ""),
                             Bounds("", "", "", "0")}) {
    EXPECT_THROW(H::CheckRestrictionForr8("r", nan, bounds), CKoException);
    EXPECT_THROW(H::CheckRestrictionForr4("r", std::nanf(""), bounds), CKoException);
  }
  EXPECT_NO_THROW(H::CheckRestrictionForr8("r", nan, CPrimitiveRestrictions()));
  EXPECT_TRUE(Throws([] { H::CheckRestrictionForr4("r", 2.5f, Bounds("", "", "", "2.5")); },
            "Invalid Value for r [2.500000]"));
  EXPECT_NO_THROW(H::CheckRestrictionForr8("r", 1e308, Bounds("", "INF", "-INF", "")));

  EXPECT_TRUE(Throws([] { H::CheckRestrictionFordecimal("price", CDecimal("10.005"), Bounds("", "10.00", "", "")); },
            "Invalid Value for price [10.005]"));
  EXPECT_NO_THROW(H::CheckRestrictionFordecimal("price", CDecimal("10.000"), Bounds("", " 10 ", "", "")));
  EXPECT_TRUE(Throws([] {
              H::CheckRestrictionForinteger("n", CBigInteger("-100000000000000000000"),
                                            Bounds("-99999999999999999999", "", "", ""));
            },
            "Invalid Value for n [-100000000000000000000]"));
}

TEST(Facets, DateAndDurationBoundsUseThePartialOrder) {
  EXPECT_TRUE(Throws([] { H::CheckRestrictionFordate("d", Date("2001-10-25"), Bounds("2001-10-26", "", "", "")); },
            "Invalid Value for d [2001-10-25]"));
  EXPECT_NO_THROW(H::CheckRestrictionFordate("d", Date("2001-10-26"), Bounds("2001-10-26", "", "", "")));
  EXPECT_THROW(H::CheckRestrictionFordate("d", Date("2001-10-26"), Bounds("", "", "2001-10-26", "")), CKoException);
  // A zoned value against an unzoned bound within 14 hours is indeterminate: never broken.
  const CDateTime zoned = DateTime("2001-10-26T21:32:52Z");
  for (const auto& bounds : {Bounds("2001-10-26T21:32:52", "2001-10-26T21:32:52", "2001-10-26T21:32:52",
                                    "2001-10-26T21:32:52")})
    EXPECT_NO_THROW(H::CheckRestrictionFordatetime("t", zoned, bounds));
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionFordatetime("t", zoned, Bounds("", "2001-10-25T00:00:00", "", "")); },
            "Invalid Value for t [2001-10-26T21:32:52Z]"));
  EXPECT_THROW(H::CheckRestrictionFortime("t", CConversions::timeFromString("10:00:00", kCollapse),
                                          Bounds("", "", "", "10:00:00")),
               CKoException);
  const CDateTime yearMonth = CConversions::yearMonthFromString("2001-10", kCollapse);
  EXPECT_THROW(H::CheckRestrictionFormonthYear("ym", yearMonth, Bounds("2001-11", "", "", "")), CKoException);
  EXPECT_NO_THROW(H::CheckRestrictionForyearMonth("ym", yearMonth, Bounds("2001-10", "2001-10", "", "")));
  EXPECT_THROW(H::CheckRestrictionFormonthDay("md", CConversions::monthDayFromString("--02-29", kCollapse),
                                              Bounds("", "--02-28", "", "")),
               CKoException);

  const CDateTimeSpan month = CConversions::durationFromString("P1M", kCollapse);
  EXPECT_NO_THROW(H::CheckRestrictionForduration("p", month, Bounds("P30D", "P30D", "P30D", "P30D")));
  EXPECT_TRUE(Throws([] {
              H::CheckRestrictionForduration("p", CConversions::durationFromString("P2D", kCollapse),
                                             Bounds("", "", "", "P1D"));
            },
            "Invalid Value for p [P2D]"));
}

TEST(Facets, LengthsAndPatternsOfStringsAndBinaries) {
  EXPECT_TRUE(Throws([] { H::CheckRestrictionForstring("s", "abc", Lengths(4, -1, -1)); }, "Invalid Value for s [abc]"));
  EXPECT_NO_THROW(H::CheckRestrictionForstring("s", "\xC3\xA9\xC3\xA9", Lengths(4, -1, -1)));  // bytes, not chars
  EXPECT_THROW(H::CheckRestrictionForstring("s", "\xC3\xA9\xC3\xA9", Lengths(-1, 3, -1)), CKoException);
  EXPECT_NO_THROW(H::CheckRestrictionForstring("s", "", Lengths(-1, -1, 0)));
  EXPECT_THROW(H::CheckRestrictionForstring("s", "x", Lengths(-1, -1, 0)), CKoException);
  const auto code = Lengths(-1, -1, -1, "[A-Z]{3}-[0-9]{4}");
  EXPECT_NO_THROW(H::CheckRestrictionForstring("code", "ABC-1234", code));
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionForstring("code", "ABC-123", code); }, "Invalid Value for code [ABC-123]"));
  // Lengths come before the pattern: a broken length is reported even with a bad pattern.
  EXPECT_TRUE(Throws([] { H::CheckRestrictionForstring("s", "ab", Lengths(3, -1, -1, "(")); }, "Invalid Value for s [ab]"));

  const CBinaryData bytes("\x01\xAB");
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionForbase64Binary("b", bytes, Lengths(3, -1, -1)); },
            "Invalid Value for b [01AB]"));
  EXPECT_TRUE(Throws([&] { H::CheckRestrictionForhexBinary("h", bytes, Lengths(-1, 1, -1, "x")); },
            "Invalid Value for h [01AB]"));
  EXPECT_NO_THROW(H::CheckRestrictionForhexBinary("h", bytes, CPrimitiveRestrictions("zzz", 2, 2, "9", "", "", "", 2)));
}

TEST(Facets, DispatchByItemType) {
  const auto minInc = Bounds("10", "", "", "");
  KoVariant v;
  v.SetI4(9);
  EXPECT_TRUE(Throws([&] { H::CheckRestriction("qty", v, ItemType_i4, minInc); }, "Invalid Value for qty [9]"));
  v.SetDecimal(CDecimal("9.5"));
  EXPECT_TRUE(Throws([&] { H::CheckRestriction("qty", v, ItemType_decimal, minInc); }, "Invalid Value for qty [9.5]"));
  v.SetBoolean(false);
  EXPECT_NO_THROW(H::CheckRestriction("b", v, ItemType_boolean, CPrimitiveRestrictions("x", 9, 0, "y", "y", "y", "y", 3)));
  v.SetChar('c');
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { H::CheckRestriction("c", v, ItemType_char, minInc); },
            "unknown type [char]"));
  v.SetI2(1);
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { H::CheckRestriction("c", v, ItemType_none, minInc); },
            "unknown type [i2]"));
}

TEST(RegEx, TranslationAnchoringAndMatching) {
  EXPECT_TRUE(TestRegEx("\\i\\c*", "a1"));
  EXPECT_FALSE(TestRegEx("\\i\\c*", "1a"));
  EXPECT_TRUE(TestRegEx("\\I\\C", "1 "));
  EXPECT_FALSE(TestRegEx("\\I", "a"));
  EXPECT_TRUE(TestRegEx("a\\\\i", "a\\i"));
  EXPECT_FALSE(TestRegEx("a\\\\i", "ai"));
  EXPECT_TRUE(TestRegEx("\\\\\\i", "\\x"));  // escaped backslash, then \i
  EXPECT_FALSE(TestRegEx("b", "abc"));
  EXPECT_FALSE(TestRegEx("abc", "abc\n"));
  EXPECT_FALSE(TestRegEx("a|b", "ab"));
  EXPECT_TRUE(TestRegEx("a|ab", "ab"));  // a later alternative that covers the whole value
  EXPECT_TRUE(TestRegEx("[0-9]{3}|[0-9]{5}", "12345"));
  EXPECT_FALSE(TestRegEx("[0-9]{3}|[0-9]{5}", "1234"));
  EXPECT_TRUE(TestRegEx("(a)(b)?(c)*", "acc"));
  EXPECT_TRUE(TestRegEx("", ""));
  EXPECT_TRUE(TestRegEx("abc", std::string("abc\0def", 7)));  // the subject ends at NUL

  // Bytes pass unchanged in ASCII-only mode, so the UTF-8 below reaches PCRE as written.
  ASCIIOnly(true);
  EXPECT_TRUE(TestRegEx("\\p{IsBasicLatin}+", "Az~\x7F"));
  EXPECT_FALSE(TestRegEx("\\p{IsBasicLatin}", "\xC3\xA9"));
  EXPECT_TRUE(TestRegEx("\\p{IsLatin-1Supplement}", "\xC3\xA9"));
  EXPECT_TRUE(TestRegEx("\\p{IsLatinExtended-A}{2}", "\xC4\x80\xC5\xBF"));
  EXPECT_TRUE(TestRegEx("\\p{IsLatinExtended-B}{2}", "\xC6\x80\xC9\x8F"));
  EXPECT_FALSE(TestRegEx("\\p{IsLatinExtended-B}", "\xC9\x90"));
  EXPECT_FALSE(TestRegEx(".", "\xC3"));  // ill-formed UTF-8 does not match
  ASCIIOnly(false);
}

TEST(RegEx, BadPatternsAndTheCache) {
  for (int i = 0; i < 2; ++i)  // a failed compilation is not remembered as a success
    EXPECT_TRUE(Throws<CKoException>([] { TestRegEx("(", "x"); },
              "Invalid Regular Expression: ( Error: 'missing closing parenthesis'"));
  EXPECT_THROW(TestRegEx("a{2,1}", "aa"), CKoException);
  EXPECT_THROW(TestRegEx("\xC3", "x"), CKoException);

  // More patterns than a thread keeps, then the first ones again.
  for (int round = 0; round < 2; ++round)
    for (int n = 0; n < 100; ++n) {
      const std::string pattern = "x{" + std::to_string(n) + "}";
      EXPECT_TRUE(TestRegEx(pattern, std::string(n, 'x')));
      EXPECT_FALSE(TestRegEx(pattern, std::string(n + 1, 'x')));
    }

  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([t, &failures] {
      for (int i = 0; i < 200; ++i)
        if (TestRegEx("[A-Z]{3}-[0-9]{4}", i % 2 ? "ABC-1234" : "ABC-12x4") != (i % 2 == 1)) ++failures[t];
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<int>(4, 0));
}

// Patterns made of characters and classes with counts are matched without
// PCRE for short printable values. Wrapped in a group, the same pattern goes
// to PCRE: both must answer alike.
TEST(RegEx, PlainPatternsAnswerAsPcreDoes) {
  const std::string kNothing = testsupport::MessageOf([] {});
  const std::vector<std::string> patterns = {
      "[A-Z]{3}", ".+Z", "[^@\\s]+@[^@\\s]+", "[0-9]{5}", "[A-Z]{3}-[0-9]{4}", "a*a*b", "a?b?c?",
      "x{2,}", "x{0,3}y", "x{2,4}", "\\d+\\.\\d{2}", "\\D\\S\\W", "\\w*", "[\\-a]+", "[a-]", "[^a-c]*",
      "[^\\d]", "\\.\\*\\+\\?\\{\\}\\[\\]\\(\\)\\|\\^\\$\\\\", "ab c", ".*", ".", "[ -~]+", "[a-cx-z]{1,2}",
      "[\\]\\\\]", "[%-/]+", "(?:a)", "a{3", "a{1,2}?", "[[:alpha:]]", "[]a]", "a|b", "^a", "\\i",
      "[b-a]", "a**", "x{1001}", ""};
  const std::vector<std::string> values = {
      "", "A", "ABC", "ABCD", "abc", "a@b", "a@@b", "@b", "a b@c", "12345", "1234", "ABC-1234", "ABC-12x4",
      "aab", "b", "ab", "ac", "abc", "xx", "xxx", "xxxxy", "y", "xy", "3.14", "3.1", "a ", "a_1", "-a-",
      "d", "a", "-", "z", "cz", "x", ".*+?{}[]()|^$\\", "ab c", "2024-05-01T08:00:00Z", "Z", "%&/",
      "]", "\\", "a]", std::string(300, 'x'), "tab\there", "caf\xC3\xA9"};
  for (const std::string& pattern : patterns)
    for (const std::string& value : values) {
      bool plain = false, grouped = false;
      // Whether each one fails; the messages name different patterns.
      const bool plainFails = testsupport::MessageOf([&] { plain = TestRegEx(pattern, value); }) != kNothing;
      const bool groupedFails =
          testsupport::MessageOf([&] { grouped = TestRegEx("(" + pattern + ")", value); }) != kNothing;
      EXPECT_EQ(plainFails, groupedFails) << pattern << " / " << value;
      EXPECT_EQ(plain, grouped) << pattern << " / " << value;
    }
}

// Random sequences of the plain constructs against random short values.
TEST(RegEx, RandomPlainPatternsAnswerAsPcreDoes) {
  const char* const atoms[] = {"a", "b", ".", "[ab]", "[^a]", "\\d", "\\s", "[a-c]", "-", "\\.", "[0-9]"};
  const char* const counts[] = {"", "", "?", "*", "+", "{2}", "{1,3}", "{0,}", "{2,}"};
  const char alphabet[] = "ab c1.-";
  unsigned long long state = 7;
  const auto next = [&state](unsigned bound) {
    state = state * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<unsigned>(state >> 33) % bound;
  };
  for (int round = 0; round < 400; ++round) {
    std::string pattern;
    for (unsigned i = 0, n = 1 + next(4); i < n; ++i) {
      pattern += atoms[next(sizeof atoms / sizeof atoms[0])];
      pattern += counts[next(sizeof counts / sizeof counts[0])];
    }
    for (int v = 0; v < 20; ++v) {
      std::string value;
      for (unsigned i = 0, n = next(7); i < n; ++i) value += alphabet[next(sizeof alphabet - 1)];
      EXPECT_EQ(TestRegEx(pattern, value), TestRegEx("(" + pattern + ")", value)) << pattern << " / " << value;
    }
  }
}

TEST(PrimitiveRestrictions, DefaultIsNothingSetAndFieldsAreFilledDirectly) {
  CPrimitiveRestrictions r;
  EXPECT_TRUE(r.pattern.empty());
  EXPECT_EQ(r.minLength, -1);
  EXPECT_EQ(r.maxLength, -1);
  EXPECT_EQ(r.length, -1);
  EXPECT_TRUE(r.minInclusive.empty() && r.maxInclusive.empty() && r.minExclusive.empty() &&
              r.maxExclusive.empty());
  EXPECT_NO_THROW(CXmlObjectHelper::CheckRestrictionForstring("s", "anything", r));
  // Generated code fills the fields as it finds them in the schema.
  r.maxInclusive = "10";
  r.pattern = "[0-9]+";
  EXPECT_NO_THROW(CXmlObjectHelper::CheckRestrictionFori4("n", 10, r));
  EXPECT_THROW(CXmlObjectHelper::CheckRestrictionFori4("n", 11, r), CKoException);
  r.maxLength = 2;
  EXPECT_THROW(CXmlObjectHelper::CheckRestrictionForstring("s", "123", r), CKoException);
}
