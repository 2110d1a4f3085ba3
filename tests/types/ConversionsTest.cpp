#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <cmath>
#include <limits>
#include <string>

#include "support/Throws.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

using WS = CWhitespaceUtils;
using C = CConversions;
constexpr auto kNone = WS::WhitespaceRule_None;
constexpr auto kPreserve = WS::WhitespaceRule_Preserve;
constexpr auto kCollapse = WS::WhitespaceRule_Collapse;

template <class Action>
::testing::AssertionResult InvalidValue(Action action, const std::string& expected) {
  return Throws<CKoInvalidValueException>(action, expected);
}

}  // namespace

TEST(WhitespaceUtils, RulesOnLineEndsTabsRunsAndNul) {
  const std::string crlf = "a\r\nb";
  EXPECT_EQ(WS::Preserve(crlf), "a\nb");
  EXPECT_EQ(WS::Preserve("a\rb\r\r\n"), "a\nb\n\n");
  EXPECT_EQ(WS::Preserve(std::string("a\tb\0c", 5)), std::string("a\tb\0c", 5));
  EXPECT_EQ(WS::Preserve("x\r\ny", -1), "x\ny");
  EXPECT_EQ(WS::Preserve("x\r\ny", 2), "x\n");
  EXPECT_EQ(WS::Preserve(nullptr, 3), "");

  EXPECT_EQ(WS::Replace(crlf), "a b");
  EXPECT_EQ(WS::Replace("\ta\n\rb "), " a  b ");
  EXPECT_EQ(WS::Replace(std::string("a\tb\0c", 5)), "a b");
  // Nothing to replace: the text is returned as it is, NUL included.
  EXPECT_EQ(WS::Replace(std::string("a b\0c", 5)), std::string("a b\0c", 5));

  EXPECT_EQ(WS::Collapse("\ta  \nb "), "a b");
  EXPECT_EQ(WS::Collapse(" \r\n\t "), "");
  EXPECT_EQ(WS::Collapse("ab"), "ab");
  EXPECT_EQ(WS::Collapse(std::string("ab\0 c", 5)), "ab");
  EXPECT_EQ(WS::Collapse(std::string("\0ab", 3)), "");

  EXPECT_EQ(WS::ApplyRule(kNone, " \r\n "), " \r\n ");
  EXPECT_EQ(WS::ApplyRule(WS::WhitespaceRule_Replace, "a\r\nb"), "a b");
  EXPECT_TRUE(Throws<CKoException>(
                [] { WS::ApplyRule(static_cast<WS::WhitespaceRule>(4), "x"); },
            "Unknown WhitespaceRule"));
  EXPECT_THROW(C::i4FromString("1", static_cast<WS::WhitespaceRule>(-1)), CKoException);
  EXPECT_TRUE(WS::IsWhiteSpace('\r'));
  EXPECT_FALSE(WS::IsWhiteSpace('\v'));
}

TEST(Conversions, IntegerRangesBothEnds) {
  EXPECT_EQ(C::i1FromString("-128", kCollapse), -128);
  EXPECT_TRUE(InvalidValue([] { C::i1FromString(" 128", kCollapse); },
            "The value [ 128] is to large to fit in a i1"));
  EXPECT_TRUE(InvalidValue([] { C::i1FromString("-129", kCollapse); },
            "The value [-129] is to large to fit in a i1"));
  EXPECT_EQ(C::i2FromString("-32768", kCollapse), -32768);
  EXPECT_TRUE(InvalidValue([] { C::i2FromString("40000\t", kCollapse); },
            "The value [40000\t] is to large to fit in a i2"));
  EXPECT_TRUE(InvalidValue([] { C::i2FromString("-32769", kCollapse); },
            "The value [-32769] is to large to fit in a i2"));

  EXPECT_EQ(C::i4FromString("-2147483648", kCollapse), -2147483648L);
  EXPECT_EQ(C::i4FromString("+2147483647", kCollapse), 2147483647L);
  EXPECT_TRUE(InvalidValue([] { C::i4FromString("2147483648", kCollapse); },
            "The value [2147483648] is to large to fit in a i4"));
  EXPECT_TRUE(InvalidValue([] { C::i4FromString("-2147483649", kCollapse); },
            "The value [-2147483649] is to large to fit in a i4"));
  EXPECT_TRUE(InvalidValue([] { C::i4FromString("99999999999999999999", kCollapse); },
            "The value [99999999999999999999] is to large to fit in a i4"));

  EXPECT_EQ(C::i8FromString("-9223372036854775808", kCollapse), std::numeric_limits<long long>::min());
  EXPECT_EQ(C::i8FromString("9223372036854775807", kCollapse), std::numeric_limits<long long>::max());
  EXPECT_TRUE(InvalidValue([] { C::i8FromString("9223372036854775808", kCollapse); },
            "The value [9223372036854775808] is to large to fit in a i8"));
  EXPECT_TRUE(InvalidValue([] { C::i8FromString("-9223372036854775809", kCollapse); },
            "The value [-9223372036854775809] is to large to fit in a i8"));

  EXPECT_EQ(C::ui1FromString("255", kCollapse), 255);
  EXPECT_TRUE(InvalidValue([] { C::ui1FromString("256 ", kCollapse); },
            "The value [256 ] is to large to fit in a ui1"));
  EXPECT_EQ(C::ui2FromString("65535", kCollapse), 65535);
  EXPECT_TRUE(InvalidValue([] { C::ui2FromString("65536", kCollapse); },
            "The value [65536] is to large to fit in a ui2"));
  EXPECT_TRUE(InvalidValue([] { C::ui2FromString("-1", kCollapse); },
            "The value [-1] is to large to fit in a ui2"));
  EXPECT_EQ(C::ui4FromString("4294967295", kCollapse), 4294967295UL);
  EXPECT_EQ(C::ui4FromString("-1", kCollapse), 4294967295UL);
  EXPECT_EQ(C::ui4FromString("-4294967295", kCollapse), 1UL);
  EXPECT_TRUE(InvalidValue([] { C::ui4FromString("4294967296", kCollapse); },
            "The value [4294967296] is to large to fit in a ui4"));
  EXPECT_TRUE(InvalidValue([] { C::ui4FromString("-4294967296", kCollapse); },
            "The value [-4294967296] is to large to fit in a ui4"));
  EXPECT_EQ(C::ui8FromString("18446744073709551615", kCollapse), 18446744073709551615ULL);
  EXPECT_EQ(C::ui8FromString("-1", kCollapse), 18446744073709551615ULL);
  EXPECT_TRUE(InvalidValue([] { C::ui8FromString("18446744073709551616", kCollapse); },
            "The value [18446744073709551616] is to large to fit in a ui8"));
}

TEST(Conversions, IntegerSyntaxAndWhitespace) {
  EXPECT_EQ(C::i4FromString(" 42 ", kCollapse), 42);
  EXPECT_TRUE(InvalidValue([] { C::i4FromString(" 42 ", kPreserve); },
            "The value [ 42 ] can not be converted to a i4"));
  EXPECT_EQ(C::i4FromString("", kCollapse), 0);
  EXPECT_EQ(C::i8FromString("   ", kCollapse), 0);
  EXPECT_TRUE(InvalidValue([] { C::i8FromString("12a", kCollapse); },
            "The value [12a] can not be converted to a i8"));
  EXPECT_TRUE(InvalidValue([] { C::ui8FromString("-", kCollapse); },
            "The value [-] can not be converted to a ui8"));
  EXPECT_TRUE(InvalidValue([] { C::ui4FromString("1.5", kCollapse); },
            "The value [1.5] can not be converted to a ui4"));
  // Conversion failures of the narrow kinds quote the processed text.
  EXPECT_TRUE(InvalidValue([] { C::i2FromString(" x ", kCollapse); },
            "The value [x] can not be converted to a i4"));
}

TEST(Conversions, FloatSpecialsAndFormats) {
  EXPECT_TRUE(std::isnan(C::r8FromString("", kCollapse)));
  EXPECT_TRUE(std::isnan(C::r8FromString("1.#QNAN", kCollapse)));
  EXPECT_TRUE(std::isnan(C::r4FromString("-NAN", kCollapse)));
  EXPECT_EQ(C::r8FromString(" INF ", kCollapse), std::numeric_limits<double>::infinity());
  EXPECT_EQ(C::r8FromString("-INF", kCollapse), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(C::r8FromString("inf", kCollapse), std::numeric_limits<double>::infinity());
  EXPECT_EQ(C::r8FromString("1e400", kCollapse), std::numeric_limits<double>::infinity());
  EXPECT_EQ(C::r4FromString("1e300", kCollapse), std::numeric_limits<float>::infinity());
  EXPECT_EQ(C::r4FromString("0.1", kCollapse), 0.1f);
  EXPECT_TRUE(InvalidValue([] { C::r8FromString("Inf inity", kCollapse); },
            "The value [Inf inity] can not be converted to a r8"));
  EXPECT_TRUE(InvalidValue([] { C::r4FromString("1,5", kCollapse); },
            "The value [1,5] can not be converted to a r4"));

  EXPECT_EQ(C::r8ToString(0.1), "0.1");
  EXPECT_EQ(C::r8ToString(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(C::r4ToString(1.0f / 3), "0.3333333");
  EXPECT_EQ(C::r8ToString(1e300), "1e+300");
  EXPECT_EQ(C::r8ToString(std::nan("")), "NaN");
  EXPECT_EQ(C::r8ToString(-std::numeric_limits<double>::infinity()), "-INF");
  EXPECT_EQ(C::r4ToString(std::numeric_limits<float>::infinity()), "INF");
  EXPECT_EQ(C::r4ToString(std::numeric_limits<float>::max()), "3.402823e+38");
  EXPECT_EQ(C::r8ToString(2.5, "%.3f"), "2.500");
  EXPECT_EQ(C::r4ToString(2.5f, "[%+08.2e]%%"), "[+2.50e+00]%");
  EXPECT_EQ(C::r8ToString(1.0, "%060.1f").size(), 47u);  // cut at the 48-byte buffer
  EXPECT_EQ(C::r4ToString(1.0f, "%040.1f").size(), 31u);
  for (const char* bad : {"%s", "%d", "%f %f", "%*f", "plain", "%Lf", "%9999f", "%n"})
    EXPECT_THROW(C::r8ToString(1.0, bad), CKoInvalidParamException) << bad;
}

TEST(Conversions, OtherKindsBothWays) {
  EXPECT_TRUE(C::booleanFromString(" TRUE ", kCollapse));
  EXPECT_TRUE(C::booleanFromString("1", kCollapse));
  EXPECT_FALSE(C::booleanFromString("False", kCollapse));
  EXPECT_FALSE(C::booleanFromString("0", kCollapse));
  EXPECT_TRUE(InvalidValue([] { C::booleanFromString(" yes ", kCollapse); },
            "A Boolean Value read from an XML document was invalid [ yes ]. Valid values are "
            "'true', 'false', '1', or '0'"));

  EXPECT_EQ(C::charFromString(" x ", kCollapse), 'x');
  EXPECT_TRUE(InvalidValue([] { C::charFromString("", kCollapse); },
            "The value [] can not be a char as it is either empty of greater than 1 char long"));
  EXPECT_THROW(C::charFromString(" x ", kPreserve), CKoInvalidValueException);
  EXPECT_EQ(C::stringFromString(" a \t b ", kCollapse), "a b");

  EXPECT_EQ(C::yearToString(5), "5");
  EXPECT_EQ(C::monthToString(7), "--07");
  EXPECT_EQ(C::dayToString(7), "---07");
  EXPECT_EQ(C::yearFromString(" 2024 ", kCollapse), 2024);
  EXPECT_EQ(C::monthFromString("--07", kCollapse), 7);
  EXPECT_EQ(C::dayFromString("---31", kCollapse), 31);
  EXPECT_THROW(C::dayFromString("---32", kCollapse), CKoInvalidValueException);

  EXPECT_EQ(C::datetimeToString(C::datetimeFromString("2001-10-26T21:32:52.5Z", kCollapse)),
            "2001-10-26T21:32:52.5Z");
  EXPECT_EQ(C::timeToString(C::timeFromString("\t21:32:52+02:00", kCollapse)), "21:32:52+02:00");
  EXPECT_EQ(C::datetimeFromString("2001-10-26T21:32:52", kCollapse).GetType(), CDateTime::dt_dateTime);
  EXPECT_THROW(C::datetimeFromString("2001-10-26", kCollapse), CKoInvalidValueException);
  EXPECT_EQ(C::durationToString(C::durationFromString(" P1Y2MT3H ", kCollapse)), "P1Y2MT3H");

  EXPECT_EQ(C::decimalToString(C::decimalFromString(" -12.50 ", kCollapse)), "-12.5");
  EXPECT_EQ(C::decimalToString(CDecimal("2.345"), "2"), "2.35");
  EXPECT_EQ(C::integerToString(C::integerFromString("123456789012345678901234567890", kCollapse)),
            "123456789012345678901234567890");

  EXPECT_EQ(C::hexBinaryToString(C::hexBinaryFromString(" 0aFF ", kCollapse)), "0AFF");
  EXPECT_EQ(C::base64BinaryFromString("aGVsbG8=", kCollapse), CBinaryData("hello"));
}

// Every conversion reads its text after the whitespace rule, whether the
// rule changes the text or leaves it as it is: the result equals the
// conversion of the text with the rule already applied.
TEST(Conversions, ReadTheTextAsTheWhitespaceRuleLeavesIt) {
  const auto kReplace = WS::WhitespaceRule_Replace;
  const std::string texts[] = {"12",     " 12",    "12 ",     "1  2",    "1 2",        "\t12",   "12\n",
                               "1\r\n2", "1\r2",   "",        " ",       "true",       " true ", "0\t",
                               "12.50",  "-0.5",   " 1e2 ",   "abc",     "2024-01-02", "a b c",  "a  b",
                               std::string("1\0 2", 4), std::string("\0", 1)};
  for (const auto rule : {kNone, kPreserve, kReplace, kCollapse}) {
    for (const std::string& text : texts) {
      SCOPED_TRACE("rule " + std::to_string(rule) + " text [" + text + "]");
      const std::string ruled = WS::ApplyRule(rule, text);
      EXPECT_EQ(C::stringFromString(text, rule), ruled);
      // Both sides either give the same value or fail with the same message
      // (the Boolean message quotes the text as given, so only its failure
      // is compared).
      auto same = [&](auto convert, bool compareMessages = true) {
        std::string expected, actual;
        try {
          expected = convert(ruled, kNone);
        } catch (const CKoException& e) {
          expected = "failed: " + (compareMessages ? e.GetMessage() : std::string());
        }
        try {
          actual = convert(text, rule);
        } catch (const CKoException& e) {
          actual = "failed: " + (compareMessages ? e.GetMessage() : std::string());
        }
        EXPECT_EQ(actual, expected);
      };
      same([](const std::string& t, WS::WhitespaceRule r) { return std::to_string(C::i4FromString(t, r)); });
      same([](const std::string& t, WS::WhitespaceRule r) { return std::to_string(C::r8FromString(t, r)); });
      same([](const std::string& t, WS::WhitespaceRule r) { return C::decimalToString(C::decimalFromString(t, r)); });
      same([](const std::string& t, WS::WhitespaceRule r) { return C::integerToString(C::integerFromString(t, r)); });
      same([](const std::string& t, WS::WhitespaceRule r) { return std::to_string(C::booleanFromString(t, r)); },
           false);
      same([](const std::string& t, WS::WhitespaceRule r) { return C::dateToString(C::dateFromString(t, r)); });
    }
  }
}
