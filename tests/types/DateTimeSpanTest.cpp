#include <gtest/gtest.h>

#include "support/Throws.h"

#include <KoXmlLib10.h>

#include <string>
#include <tuple>
#include <vector>

using namespace KoXmlLib10;

using testsupport::Throws;

namespace {

CDateTimeSpan Span(const char* text) {
  CDateTimeSpan span;
  span.ParseXSDDuration(text);
  return span;
}

::testing::AssertionResult ParseError(const char* text, const std::string& expected) {
  return Throws<CKoInvalidValueException>([&] { Span(text); }, expected);
}

}  // namespace

TEST(DateTimeSpan, ParsesComponentsAsWritten) {
  const CDateTimeSpan full = Span("P1Y2M3DT10H30M");
  EXPECT_EQ(std::vector<unsigned long long>({static_cast<unsigned long long>(full.GetYears()), full.GetMonths(),
                                             full.GetDays(), full.GetHours(), full.GetMinutes()}),
            std::vector<unsigned long long>({1, 2, 3, 10, 30}));
  EXPECT_EQ(full.ToString(), "P1Y2M3DT10H30M");

  const CDateTimeSpan negative = Span("-PT1.5S");
  EXPECT_TRUE(negative.IsNegative() && negative.GetSeconds() == 1u && negative.GetMilliSeconds() == 500);
  const CDateTimeSpan fraction = Span("PT0.123456789S");
  EXPECT_EQ(std::vector<int>({fraction.GetMilliSeconds(), fraction.GetMicroSeconds(), fraction.GetNanoSeconds()}),
            std::vector<int>({123, 456, 789}));
  EXPECT_EQ(Span("PT0.000000001S").GetNanoSeconds(), 1);
  EXPECT_TRUE(Span("P1MT1M").GetMonths() == 1u && Span("P1MT1M").GetMinutes() == 1u);
  for (const auto& [text, printed] : {std::pair{"-PT1.5S", "-PT1.5S"}, {"PT0.000000001S", "PT0.000000001S"},
                                      {"PT90M", "PT90M"}, {"PT.5S", "PT0.5S"}})
    EXPECT_EQ(Span(text).ToString(), printed) << text;
  // A zero duration prints in a form that parses back.
  EXPECT_EQ(CDateTimeSpan().ToString(), "PT0S");
  EXPECT_EQ(Span("-P0D").ToString(), "PT0S");
  EXPECT_EQ(Span(CDateTimeSpan().ToString().c_str()).CompareTo(CDateTimeSpan()), 0);
}

TEST(DateTimeSpan, RejectsMalformedText) {
  const std::string expected = " expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]";
  for (const char* bad : {"P1D2Y", "PT1H2D", "P1DT", "PT", "P", "1Y", "-", "+P1D", "P1", "P5T1H",
                          "PT1.5", "PT1.5H", "P1S", "P1H", "PT1S2M", "PT1.5S1S"})
    EXPECT_TRUE(ParseError(bad, "Invalid XSD Duration [" + std::string(bad) + "]" + expected));
  EXPECT_TRUE(ParseError(nullptr, "Invalid XSD Duration (Null String)"));
  EXPECT_TRUE(ParseError("", "Invalid XSD Duration (Empty String)"));
  EXPECT_TRUE(ParseError("PT1.1234567891S", "Invalid XSD Duration [PT1.1234567891S] Fraction part too long"));
}

TEST(DateTimeSpan, OrderThroughReferenceInstants) {
  const CDateTimeSpan month = Span("P1M"), thirtyDays = Span("P30D");
  EXPECT_EQ(month.CompareTo(thirtyDays), 3);  // indeterminate: only != holds
  EXPECT_TRUE(!(month == thirtyDays) && !(month < thirtyDays) && !(month > thirtyDays) && month != thirtyDays);
  // A leap day lies in only some years, so P1Y and P365D are indeterminate.
  const std::tuple<const char*, const char*, int> orders[] = {
      {"P1D", "PT24H", 0}, {"PT1H", "PT2H", 1}, {"P1Y", "P365D", 3},   {"P1Y", "P364D", 2},
      {"-P1D", "PT1H", 1}, {"P1M", "P27D", 2}, {"PT90M", "PT1H30M", 0}};
  for (const auto& [a, b, order] : orders) EXPECT_EQ(Span(a).CompareTo(Span(b)), order) << a << " vs " << b;
  CDateTimeSpan huge;
  huge.SetMinutes(~0ULL);  // far past the year range: still ordered, never thrown
  EXPECT_EQ(huge.CompareTo(Span("P65535Y")), 2);
  EXPECT_EQ(Span("P65535Y").CompareTo(Span("P1D")), 2);
}

TEST(DateTimeSpan, SignAndSetters) {
  CDateTimeSpan span = Span("-P1D");
  EXPECT_TRUE(span.GetAsNegative().IsNegative());
  span.Negate();
  EXPECT_FALSE(span.IsNegative());
  EXPECT_TRUE(span.GetAsNegative().IsNegative());
  EXPECT_FALSE(span.IsNegative());
  span = Span("-P1D");
  span.SetDateTimeSpan(1, 2, 3);
  EXPECT_FALSE(span.IsNegative());
  EXPECT_EQ(span.ToString(), "PT1H2M3S");
  EXPECT_EQ(CDateTimeSpan(1, 2, 3, 4, 5, 6, 7, 8, 9).ToString(), "P1Y2M3DT4H5M6.007008009S");
  span.Clear();
  EXPECT_EQ(span.GetDays(), 0u);
}
