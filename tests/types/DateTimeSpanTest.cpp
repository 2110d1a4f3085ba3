#include <gtest/gtest.h>

#include "support/Throws.h"

#include <KoXmlLib10.h>

#include <string>

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
  EXPECT_EQ(full.GetYears(), 1);
  EXPECT_EQ(full.GetMonths(), 2u);
  EXPECT_EQ(full.GetDays(), 3u);
  EXPECT_EQ(full.GetHours(), 10u);
  EXPECT_EQ(full.GetMinutes(), 30u);
  EXPECT_EQ(full.ToString(), "P1Y2M3DT10H30M");

  const CDateTimeSpan negative = Span("-PT1.5S");
  EXPECT_TRUE(negative.IsNegative());
  EXPECT_EQ(negative.GetSeconds(), 1u);
  EXPECT_EQ(negative.GetMilliSeconds(), 500);
  EXPECT_EQ(negative.ToString(), "-PT1.5S");

  const CDateTimeSpan fraction = Span("PT0.123456789S");
  EXPECT_EQ(fraction.GetMilliSeconds(), 123);
  EXPECT_EQ(fraction.GetMicroSeconds(), 456);
  EXPECT_EQ(fraction.GetNanoSeconds(), 789);
  EXPECT_EQ(Span("PT0.000000001S").GetNanoSeconds(), 1);
  EXPECT_EQ(Span("PT0.000000001S").ToString(), "PT0.000000001S");
  EXPECT_EQ(Span("PT90M").ToString(), "PT90M");
  EXPECT_EQ(Span("P1MT1M").GetMonths(), 1u);
  EXPECT_EQ(Span("P1MT1M").GetMinutes(), 1u);
  EXPECT_EQ(Span("PT.5S").ToString(), "PT0.5S");
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
  EXPECT_EQ(month.CompareTo(thirtyDays), 3);
  EXPECT_FALSE(month == thirtyDays);
  EXPECT_FALSE(month < thirtyDays);
  EXPECT_FALSE(month > thirtyDays);
  EXPECT_TRUE(month != thirtyDays);
  EXPECT_EQ(Span("P1D").CompareTo(Span("PT24H")), 0);
  EXPECT_EQ(Span("PT1H").CompareTo(Span("PT2H")), 1);
  EXPECT_EQ(Span("P1Y").CompareTo(Span("P365D")), 3);  // a leap day lies in only some years
  EXPECT_EQ(Span("P1Y").CompareTo(Span("P364D")), 2);
  EXPECT_EQ(Span("-P1D").CompareTo(Span("PT1H")), 1);
  EXPECT_EQ(Span("P1M").CompareTo(Span("P27D")), 2);
  EXPECT_EQ(Span("PT90M").CompareTo(Span("PT1H30M")), 0);
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
