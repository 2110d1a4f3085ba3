#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <cmath>
#include <functional>
#include <map>
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
  const std::string nul("a\tb\0c", 5), spaceNul("a b\0c", 5);
  const struct { std::string (*rule)(const std::string&); std::string text, ruled; } cases[] = {
      {WS::Preserve, crlf, "a\nb"}, {WS::Preserve, "a\rb\r\r\n", "a\nb\n\n"}, {WS::Preserve, nul, nul},
      {WS::Replace, crlf, "a b"}, {WS::Replace, "\ta\n\rb ", " a  b "}, {WS::Replace, nul, "a b"},
      {WS::Replace, spaceNul, spaceNul},  // nothing to replace: returned as it is, NUL included
      {WS::Collapse, "\ta  \nb ", "a b"}, {WS::Collapse, " \r\n\t ", ""}, {WS::Collapse, "ab", "ab"},
      {WS::Collapse, std::string("ab\0 c", 5), "ab"}, {WS::Collapse, std::string("\0ab", 3), ""}};
  for (const auto& c : cases) EXPECT_EQ(c.rule(c.text), c.ruled) << "[" << c.text << "]";
  EXPECT_EQ(WS::Preserve("x\r\ny", -1), "x\ny");
  EXPECT_EQ(WS::Preserve("x\r\ny", 2), "x\n");
  EXPECT_EQ(WS::Preserve(nullptr, 3), "");

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
  using Convert = std::function<std::string(const std::string&)>;
  const std::map<std::string, Convert> convert = {
      {"i1", [](const std::string& t) { return std::to_string(C::i1FromString(t, kCollapse)); }},
      {"i2", [](const std::string& t) { return std::to_string(C::i2FromString(t, kCollapse)); }},
      {"i4", [](const std::string& t) { return std::to_string(C::i4FromString(t, kCollapse)); }},
      {"i8", [](const std::string& t) { return std::to_string(C::i8FromString(t, kCollapse)); }},
      {"ui1", [](const std::string& t) { return std::to_string(C::ui1FromString(t, kCollapse)); }},
      {"ui2", [](const std::string& t) { return std::to_string(C::ui2FromString(t, kCollapse)); }},
      {"ui4", [](const std::string& t) { return std::to_string(C::ui4FromString(t, kCollapse)); }},
      {"ui8", [](const std::string& t) { return std::to_string(C::ui8FromString(t, kCollapse)); }}};
  // {kind, text, value}: both ends; unsigned kinds wrap negative text of their width.
  const char* const accepted[][3] = {
      {"i1", "-128", "-128"}, {"i2", "-32768", "-32768"}, {"i4", "-2147483648", "-2147483648"},
      {"i4", "+2147483647", "2147483647"}, {"i8", "-9223372036854775808", "-9223372036854775808"},
      {"i8", "9223372036854775807", "9223372036854775807"}, {"ui1", "255", "255"}, {"ui2", "65535", "65535"},
      {"ui4", "4294967295", "4294967295"}, {"ui4", "-1", "4294967295"}, {"ui4", "-4294967295", "1"},
      {"ui8", "18446744073709551615", "18446744073709551615"}, {"ui8", "-1", "18446744073709551615"}};
  for (const auto& c : accepted) EXPECT_EQ(convert.at(c[0])(c[1]), c[2]) << c[0] << " " << c[1];
  const char* const tooLarge[][2] = {
      {"i1", " 128"}, {"i1", "-129"}, {"i2", "40000\t"}, {"i2", "-32769"}, {"i4", "2147483648"}, {"i4", "-2147483649"},
      {"i4", "99999999999999999999"}, {"i8", "9223372036854775808"}, {"i8", "-9223372036854775809"}, {"ui1", "256 "},
      {"ui2", "65536"}, {"ui2", "-1"}, {"ui4", "4294967296"}, {"ui4", "-4294967296"}, {"ui8", "18446744073709551616"}};
  for (const auto& c : tooLarge)
    EXPECT_TRUE(InvalidValue([&] { convert.at(c[0])(c[1]); },
                             "The value [" + std::string(c[1]) + "] is to large to fit in a " + c[0]));
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
  for (const auto& [text, value] : {std::pair{" INF ", 1.0}, {"-INF", -1.0}, {"inf", 1.0}, {"1e400", 1.0}})
    EXPECT_EQ(C::r8FromString(text, kCollapse), value * std::numeric_limits<double>::infinity()) << text;
  EXPECT_EQ(C::r4FromString("1e300", kCollapse), std::numeric_limits<float>::infinity());
  EXPECT_EQ(C::r4FromString("0.1", kCollapse), 0.1f);
  EXPECT_TRUE(InvalidValue([] { C::r8FromString("Inf inity", kCollapse); },
            "The value [Inf inity] can not be converted to a r8"));
  EXPECT_TRUE(InvalidValue([] { C::r4FromString("1,5", kCollapse); },
            "The value [1,5] can not be converted to a r4"));

  const double inf = std::numeric_limits<double>::infinity();
  const std::pair<double, const char*> doubles[] = {
      {0.1, "0.1"}, {1.0 / 3, "0.3333333333333333"}, {1e300, "1e+300"}, {std::nan(""), "NaN"}, {-inf, "-INF"}};
  for (const auto& [value, text] : doubles) EXPECT_EQ(C::r8ToString(value), text);
  const std::pair<float, const char*> floats[] = {
      {1.0f / 3, "0.3333333"}, {std::numeric_limits<float>::infinity(), "INF"},
      {std::numeric_limits<float>::max(), "3.402823e+38"}};
  for (const auto& [value, text] : floats) EXPECT_EQ(C::r4ToString(value), text);
  EXPECT_EQ(C::r8ToString(2.5, "%.3f"), "2.500");
  EXPECT_EQ(C::r4ToString(2.5f, "[%+08.2e]%%"), "[+2.50e+00]%");
  EXPECT_EQ(C::r8ToString(1.0, "%060.1f").size(), 47u);  // cut at the 48-byte buffer
  EXPECT_EQ(C::r4ToString(1.0f, "%040.1f").size(), 31u);
  for (const char* bad : {"%s", "%d", "%f %f", "%*f", "plain", "%Lf", "%9999f", "%n"})
    EXPECT_THROW(C::r8ToString(1.0, bad), CKoInvalidParamException) << bad;
}

TEST(Conversions, OtherKindsBothWays) {
  for (const auto& [text, value] : {std::pair{" TRUE ", true}, {"1", true}, {"False", false}, {"0", false}})
    EXPECT_EQ(C::booleanFromString(text, kCollapse), value) << text;
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
