#include <gtest/gtest.h>

#include "support/Throws.h"

#include <KoXmlLib10.h>

#include <climits>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <utility>
#include <string>
#include <vector>

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {


::testing::AssertionResult DateError(const char* s, const std::string& expected) {
  return Throws<CKoInvalidValueException>([s] { CDateTime().ParseXSDDate(s); }, expected);
}

std::string RoundTrip(const char* s, void (CDateTime::*parse)(const char*)) {
  CDateTime d;
  (d.*parse)(s);
  return d.ToString();
}

// Runs the body with the process in a zone far east of UTC, restoring it after.
class FarZone {
 public:
  explicit FarZone(const char* tz) {
    if (const char* old = std::getenv("TZ")) m_old = old, m_hadOld = true;
    setenv("TZ", tz, 1);
    tzset();
  }
  ~FarZone() {
    if (m_hadOld) setenv("TZ", m_old.c_str(), 1); else unsetenv("TZ");
    tzset();
  }

 private:
  std::string m_old;
  bool m_hadOld = false;
};

}  // namespace

TEST(DateTime, LeapYearsAndFloorArithmetic) {
  for (int year : {2000, 2004, -4, -400}) EXPECT_TRUE(IsLeapYear(year)) << year;
  for (int year : {1900, 2001, -100, -1}) EXPECT_FALSE(IsLeapYear(year)) << year;
  // {a, b, floor quotient, modulo}; LLONG_MIN / -1 overflows long long and must not trap.
  const long long cases[][4] = {
      {-1, 12, -1, 11}, {-12, 12, -1, 0}, {25, 12, 2, 1}, {-7, -1, 7, 0}, {LLONG_MIN, -1, 0, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(GetQuotient(c[0], c[1]), c[2]) << c[0] << "/" << c[1];
    EXPECT_EQ(GetModulo(c[0], c[1]), c[3]) << c[0] << "%" << c[1];
  }
}

TEST(DateTime, ParsesAndPrintsEveryKind) {
  struct Case {
    const char* text;
    CDateTime::DTType type;
    const char* printed;
  };
  const Case dates[] = {
      {"2004-02-29", CDateTime::dt_date, "2004-02-29"},
      {"-0044-03-15", CDateTime::dt_date, "-0044-03-15"},
      {"1999-05Z", CDateTime::dt_gYearMonth, "1999-05Z"},
      {"-2000-05:00", CDateTime::dt_gYear, "-2000-05:00"},
      {"--05", CDateTime::dt_gMonth, "--05"},
      {"--05--", CDateTime::dt_gMonth, "--05"},
      {"--02-29+14:00", CDateTime::dt_gMonthDay, "--02-29+14:00"},
      {"---31", CDateTime::dt_gDay, "---31"},
      {"2000-01-01+24:00", CDateTime::dt_date, "2000-01-01+00:00"},
      {"2000-01-01-00:30", CDateTime::dt_date, "2000-01-01-00:30"},
  };
  for (const Case& c : dates) {
    CDateTime d;
    d.ParseXSDDate(c.text);
    EXPECT_EQ(d.GetType(), c.type) << c.text;
    EXPECT_EQ(d.ToString(), c.printed) << c.text;
  }
  EXPECT_EQ(CDateTime("-0044-03-15T00:00:00").GetYear(), -44);
  EXPECT_EQ(RoundTrip("2001-10-26T21:32:52.25-05:00", &CDateTime::ParseXSDDateTime), "2001-10-26T21:32:52.25-05:00");
  EXPECT_EQ(RoundTrip("23:59:59Z", &CDateTime::ParseXSDTime), "23:59:59Z");
  EXPECT_EQ(RoundTrip("12:00:00.", &CDateTime::ParseXSDTime), "12:00:00");
  EXPECT_EQ(CDateTime("2000-01-01T00:00:00").GetType(), CDateTime::dt_dateTime);
}

TEST(DateTime, FractionDigitsSplitIntoGroups) {
  CDateTime t;
  const auto fraction = [&t] { return std::vector<int>({t.GetMilliSecond(), t.GetMicroSecond(), t.GetNanoSecond()}); };
  t.ParseXSDTime("12:30:00.5");
  EXPECT_EQ(fraction(), std::vector<int>({500, 0, 0}));
  EXPECT_EQ(t.ToString(), "12:30:00.5");
  t.ParseXSDTime("12:30:00.0005");
  EXPECT_EQ(fraction(), std::vector<int>({0, 500, 0}));
  t.ParseXSDTime("12:30:07.123456789+01:00");
  EXPECT_EQ(fraction(), std::vector<int>({123, 456, 789}));
  EXPECT_DOUBLE_EQ(t.GetRealSecond(), 7.123456789);
  EXPECT_EQ(t.GetZoneHour(), 1);
  EXPECT_EQ(RoundTrip("00:00:00.000000001", &CDateTime::ParseXSDTime), "00:00:00.000000001");
  EXPECT_TRUE(Throws<CKoInvalidValueException>([] { CDateTime().ParseXSDTime("12:30:00.1234567891"); },
            "Invalid XSD Time [12:30:00.1234567891] Fraction part too long"));
}

TEST(DateTime, LimitsPerKind) {
  for (const char* s : {"2003-02-29", "1900-02-29", "-0001-02-29"})
    EXPECT_TRUE(DateError(s, "Invalid Day [29] (1 <= day <= days in month"));
  EXPECT_TRUE(DateError("2000-04-31", "Invalid Day [31] (1 <= day <= days in month"));
  for (const char* s : {"2000-02-29", "-0004-02-29"}) EXPECT_NO_THROW(CDateTime().ParseXSDDate(s)) << s;
  EXPECT_TRUE(DateError("--04-31", "Invalid Day [31] (1 <= day <= days in month)"));
  EXPECT_TRUE(DateError("---32", "Invalid Day [32] (1 <= day <= 31)"));
  EXPECT_TRUE(DateError("---00", "Invalid Day [0] (1 <= day <= 31)"));
  EXPECT_TRUE(DateError("--13", "Invalid Month [13] (1 <= month <= 12)"));
  EXPECT_TRUE(DateError("2000-00", "Invalid Month [0] (1 <= month <= 12)"));
  EXPECT_TRUE(DateError("0000-01-01", "Invalid Year [0] (-9999 <= year <= 9999 && year != 0)"));
  EXPECT_TRUE(DateError("10000-01-01",
            "Invalid XSD Date [10000-01-01] expected CCYY-MM-DD[Z|[+|-]hh:mm]"));

  CDateTime d;
  const std::pair<std::function<void()>, const char*> setters[] = {
      {[&] { d.SetDateTime(CDateTime::dt_gYear, 2000, 5, 0, 0, 0, 0, 0, 0, 0); }, "Invalid Month [5] for type gYear"},
      {[&] { d.SetDateTime(CDateTime::dt_gMonth, 2000, 5, 0, 0, 0, 0, 0, 0, 0); }, "Invalid Year [2000] for type gMonth"},
      {[&] { d.SetDateTime(CDateTime::dt_gYear, 2000, 0, 3, 0, 0, 0, 0, 0, 0); }, "Invalid Day [3] for type gYear"},
      {[&] { d.SetDateTime(CDateTime::dt_date, 2000, 1, 1, 0, 0, 0, 0, 0, 7); }, "Invalid Nano-Second [7] for type date"},
      {[&] { d.SetTime(24, 0, 0); }, "Invalid Hour [24] (0 <= hour <= 23)"},
      {[&] { d.SetFracTime(0, 1000, 0); }, "Invalid Micro-Second [1000] (0 <= micro <= 999)"},
      {[] { CDateTime().Validate(); }, "Invalid Year Zero"}};
  for (const auto& [set, message] : setters) EXPECT_TRUE(Throws<CKoInvalidValueException>(set, message));
  EXPECT_EQ(d.GetType(), CDateTime::dt_yearZero);  // failed setters leave the value alone
}

TEST(DateTime, ParserMessages) {
  EXPECT_TRUE(DateError(nullptr, "Invalid Date (Null String)"));
  EXPECT_TRUE(DateError("", "Invalid Date (Empty String)"));
  EXPECT_TRUE(DateError("2000-01-01T00", "Invalid Date ('T' not allowed)"));
  EXPECT_TRUE(DateError("2000-01-01+01:00Z", "Invalid Date (Bad Zone value)"));
  EXPECT_TRUE(DateError("2000-1-01", "Invalid XSD Date [2000-1-01] expected CCYY-MM-DD[Z|[+|-]hh:mm]"));
  EXPECT_TRUE(DateError("2000-01-01x01:00",
            "Invalid XSD Date [2000-01-01x01:00] expected CCYY-MM-DD[Z|[+|-]hh:mm]"));
  EXPECT_TRUE(DateError("2000-01-01+1:000", "Invalid XSD Time Zone [+1:000]"));
  EXPECT_TRUE(DateError("2000-01-01+23:60", "Invalid TimeZone [23:60]"));
  // Only hour 24 stands for 0; larger hours are out of range, not wrapped.
  EXPECT_TRUE(DateError("2000-01-01+25:00", "Invalid TimeZone [25:0]"));
  EXPECT_TRUE(DateError("2000-01-01-48:00", "Invalid TimeZone [-48:0]"));
  auto timeError = [](const char* s, const std::string& expected) {
    return Throws<CKoInvalidValueException>([s] { CDateTime().ParseXSDTime(s); }, expected);
  };
  EXPECT_TRUE(timeError(nullptr, "Invalid Time (Null String)"));
  EXPECT_TRUE(timeError("", "Invalid XSD Time (Empty String)"));
  EXPECT_TRUE(timeError("24:00:00", "Invalid XSD Time [24:00:00] expected hh:mm:ss[.ff]"));
  EXPECT_TRUE(timeError("12:00", "Invalid XSD Time [12:00] expected hh:mm:ss[.ff]"));
  EXPECT_TRUE(timeError("12:00:00junk", "Invalid XSD Time [12:00:00junk] expected hh:mm:ss[.ff]"));
  auto dateTimeError = [](const char* s, const std::string& expected) {
    return Throws<CKoInvalidValueException>([s] { CDateTime().ParseXSDDateTime(s); }, expected);
  };
  EXPECT_TRUE(dateTimeError(nullptr, "Invalid DateTime (Null String)"));
  EXPECT_TRUE(dateTimeError("2000-01-01", "Invalid XSD DateTime [2000-01-01]"));
  EXPECT_TRUE(dateTimeError("2000-01T12:00:00",
            "Invalid XSD DateTime [2000-01T12:00:00] expected CCYY-MM-DDThh:mm:ss[.ff]"));
  EXPECT_TRUE(dateTimeError("2001-02-29T12:00:00", "Invalid Day [29] (1 <= day <= days in month"));
}

TEST(DateTime, TypedConstructionAndFieldAccess) {
  EXPECT_EQ(CDateTime(2001, 2, 30).GetType(), CDateTime::dt_yearZero);
  EXPECT_EQ(CDateTime(2000, 2, 29).ToString(), "2000-02-29");
  EXPECT_EQ(CDateTime(2000, 1, 2, 3, 4, 5, 6, 0, 0).ToString(), "2000-01-02T03:04:05.006");
  EXPECT_EQ(CDateTime(2000, 1, 2, 24, 0, 0).GetType(), CDateTime::dt_yearZero);

  CDateTime dt("2000-01-01T00:00:00");
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { dt.SetDate(2000, 1, 1); },
            "Failed to copy CDateTime. Invalid Date Type: date, expected: dateTime."));
  CDateTime time(CDateTime::dt_time);
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { time.GetYear(); },
            "Failed to GetYear. Invalid Date Type: time."));
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { time.SetDay(1); },
            "Failed to GetDay. Invalid Date Type: time."));
  CDateTime gYear;
  gYear.SetGYear(1999);
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { gYear.GetRealSecond(); },
            "Failed to GetRealSecond. Invalid Date Type: gYear."));
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { gYear.GetZoneHour(); },
            "TimeZone is not been used"));
  gYear.SetYear(2000);  // field setters do not validate
  EXPECT_EQ(gYear.GetYear(), 2000);

  CDateTime time2;
  time2.SetDateTime(dt, CDateTime::dt_time);
  EXPECT_EQ(time2.ToString(), "00:00:00");
  time2.Validate();
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { CDateTime().SetDateTime(gYear, CDateTime::dt_date); },
            "Attempting to set a CDateTime of type date using an XmlDateTime of type gYear. The "
            "source CDateTime does not contian enough data to allow the conversion."));
  EXPECT_TRUE(CDateTime::CheckConversion(CDateTime::dt_gMonthDay, CDateTime::dt_gDay));
  EXPECT_FALSE(CDateTime::CheckConversion(CDateTime::dt_gYearMonth, CDateTime::dt_gDay));
  EXPECT_TRUE(Throws<CKoInvalidValueException>([] {
              CDateTime::CheckConversion(static_cast<CDateTime::DTType>(9), CDateTime::dt_date);
            },
            "Unknown date type 9."));
  EXPECT_EQ(CDateTime::GetTypeAsString(static_cast<CDateTime::DTType>(9)), "");
}

TEST(DateTime, PrintingFormatsAndZones) {
  EXPECT_TRUE(Throws<CKoInvalidValueException>([] { CDateTime(CDateTime::dt_date).ToString(); },
            "Date Not Set"));
  CDateTime midnight;
  midnight.SetTime(0, 0, 0);
  EXPECT_EQ(midnight.ToString(), "00:00:00");
  for (const char* format : {"G", "", static_cast<const char*>(nullptr)}) EXPECT_EQ(midnight.ToString(format), "");
  // Only "s" (and the empty forms) are formats; anything else is named in the result.
  for (const char* format : {"x", "S", "s "})
    EXPECT_EQ(midnight.ToString(format), std::string("Unknown Format: ") + format);
  EXPECT_TRUE(Throws<CKoInvalidValueException>([] { CDateTime(CDateTime::dt_date).ToString("x"); },
            "Date Not Set"));
  midnight.SetTimeZone(-5, 30);
  EXPECT_EQ(midnight.ToString(), "00:00:00-05:30");
  midnight.SetUTC();
  EXPECT_EQ(midnight.ToString(), "00:00:00Z");
  EXPECT_FALSE(midnight.HasTimeZone());
  EXPECT_TRUE(midnight.IsUTC());
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { midnight.SetTimeZone(24, 0); },
            "Invalid TimeZone [24:0]"));
}

TEST(DateTime, NormalisationAndOrder) {
  CDateTime d("2001-10-26T21:32:52+02:00");
  EXPECT_EQ(d.GetNormalized().ToString(), "2001-10-26T19:32:52+00:00");
  EXPECT_EQ(CDateTime("2001-10-26T21:32:52Z").GetNormalized().ToString(), "2001-10-26T21:32:52Z");
  EXPECT_EQ(CDateTime("2000-01-01T00:00:00-00:30").GetNormalized().ToString(),
            "2000-01-01T00:30:00+00:00");
  CDateTime time;
  time.ParseXSDTime("01:00:00+02:00");
  EXPECT_EQ(time.GetNormalized().ToString(), "23:00:00+00:00");
  time.GetNormalized().Validate();  // carries into the day do not leak into a time
  CDateTime date;
  date.ParseXSDDate("2000-01-01+02:00");
  EXPECT_EQ(date.GetNormalized().ToString(), "1999-12-31+00:00");

  const CDateTime local("2000-01-15T12:00:00"), utc("2000-01-15T12:00:00Z");
  EXPECT_EQ(local.CompareTo(utc), 3);  // indeterminate: only != holds
  EXPECT_TRUE(!(local == utc) && !(local < utc) && !(local > utc) && !(local <= utc) && local != utc);
  // An unzoned value may lie anywhere from +14:00 to -14:00.
  const std::pair<const char*, int> unzoned[] = {{"2000-01-16T02:00:00", 3}, {"2000-01-16T02:00:01", 1},
                                                 {"2000-01-14T22:00:00", 3}, {"2000-01-14T21:59:59", 2}};
  for (const auto& [text, order] : unzoned) {
    EXPECT_EQ(utc.CompareTo(CDateTime(text)), order) << text;
    if (order != 3) {
      EXPECT_EQ(CDateTime(text).CompareTo(utc), 3 - order) << text;
    }
  }
  EXPECT_EQ(CDateTime("2000-01-14T21:59:59.5").CompareTo(utc), 1);

  EXPECT_TRUE(CDateTime("2000-01-01T12:00:00+01:00") == CDateTime("2000-01-01T11:00:00Z"));
  EXPECT_TRUE(CDateTime("2000-01-01T12:00:00+01:00") >= CDateTime("2000-01-01T11:00:00Z"));
  EXPECT_TRUE(CDateTime("2000-01-01T11:00:00.5Z") > CDateTime("2000-01-01T11:00:00.499999999Z"));
  EXPECT_EQ(Compare(CDateTime(2000, 1, 1), CDateTime("2000-01-01T00:00:00")), 3);
  CDateTime y2001;
  y2001.SetGYear(2001);
  EXPECT_EQ(Compare(CDateTime(2000, 12, 31), y2001), 1);  // the year decides first
}

TEST(DateTime, AddingDurationsCarries) {
  auto add = [](const char* start, const char* duration) {
    CDateTimeSpan span;
    span.ParseXSDDuration(duration);
    return (CDateTime(start) + span).ToString();
  };
  const char* const cases[][3] = {
      {"2000-02-28T00:00:00", "P1D", "2000-02-29T00:00:00"}, {"2001-03-01T00:00:00", "-P1D", "2001-02-28T00:00:00"},
      {"1999-12-31T23:00:00", "PT25H", "2000-01-02T00:00:00"}, {"2000-01-31T00:00:00", "P1M", "2000-02-29T00:00:00"},
      {"2001-01-31T00:00:00", "P1M1D", "2001-03-01T00:00:00"}, {"2000-03-31T10:00:00Z", "-P13M", "1999-02-28T10:00:00Z"},
      {"-0001-12-31T23:59:59", "PT1S", "0001-01-01T00:00:00"},
      {"-0004-02-28T12:00:00", "PT12H", "-0004-02-29T00:00:00"},
      {"2000-01-01T12:00:00.999999999", "PT0.000000001S", "2000-01-01T12:00:01"},
      {"2000-01-01T00:00:00", "-PT0.000001S", "1999-12-31T23:59:59.999999"}};
  for (const auto& c : cases) EXPECT_EQ(add(c[0], c[1]), c[2]) << c[0] << " + " << c[1];

  CDateTime time;
  time.ParseXSDTime("23:00:00");
  time += CDateTimeSpan(2, 0, 0);
  EXPECT_EQ(time.ToString(), "01:00:00");
  CDateTime monthDay;
  monthDay.ParseXSDDate("--12-31");
  monthDay += CDateTimeSpan(0, 0, 1, 0, 0, 0);
  EXPECT_EQ(monthDay.ToString(), "--01-01");

  CDateTime start("2000-03-01T00:00:00");
  CDateTimeSpan back;
  back.ParseXSDDuration("-P1D");
  EXPECT_EQ((start - CDateTimeSpan(0, 0, 1, 0, 0, 0)).ToString(), "2000-02-29T00:00:00");
  EXPECT_EQ((start - back).ToString(), "2000-03-02T00:00:00");

  CDateTime end("9999-12-31T23:00:00");
  CDateTimeSpan huge;
  huge.SetSeconds(~0ULL);
  EXPECT_THROW(end += huge, CKoInvalidValueException);
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { end += CDateTimeSpan(1, 0, 0); },
            "Invalid Year [10000] (-9999 <= year <= 9999 && year != 0)"));
  EXPECT_EQ(end.ToString(), "9999-12-31T23:00:00");
}

TEST(DateTime, DifferenceOfTwoValues) {
  const CDateTime a("2000-02-28T12:00:00.25"), b("2000-03-01T00:00:00+01:00");
  const CDateTimeSpan diff = b - a;
  EXPECT_EQ(diff.ToString(), "P1DT10H59M59.75S");
  EXPECT_EQ((a - b).ToString(), "-P1DT10H59M59.75S");
  EXPECT_EQ(Compare(a + diff, b.GetNormalized()), 0);
  EXPECT_EQ((a - a).ToString(), "PT0S");
}

TEST(DateTime, TimeConversionIgnoresProcessZone) {
  FarZone zone("XYZ-13");
  EXPECT_EQ(CDateTime("2001-10-26T21:32:52+02:00").GetTime(), 1004124772);
  EXPECT_EQ(CDateTime("1970-01-02T00:00:00").GetTime(), 86400);
  CDateTime date;
  date.ParseXSDDate("2000-02-29");
  EXPECT_EQ(date.GetTime(), 951782400);
  EXPECT_EQ(CDateTime(1004124772L).ToString(), "2001-10-26T19:32:52");
  EXPECT_EQ(CDateTime(-62135596800L).ToString(), "0001-01-01T00:00:00");
  EXPECT_EQ(CDateTime(253402300800L).GetType(), CDateTime::dt_yearZero);
  EXPECT_NEAR(static_cast<double>(CDateTime::GetCurrentTime().GetTime()),
              static_cast<double>(std::time(nullptr)), 2.0);
  CDateTime assigned;
  assigned = 951825600L;
  EXPECT_EQ(assigned.ToString(), "2000-02-29T12:00:00");
  EXPECT_EQ(CDateTime("1999-12-31T23:00:00-14:00").GetDayOfWeek(), 7);  // Saturday in UTC
  EXPECT_EQ(CDateTime(1970, 1, 1).GetDayOfWeek(), 5);
  EXPECT_EQ(CDateTime(1969, 12, 28).GetDayOfWeek(), 1);
  const int days[][4] = {{2000, 1, 1, 1}, {2000, 12, 31, 366}, {2001, 12, 31, 365}, {2000, 3, 1, 61}};
  for (const auto& d : days) EXPECT_EQ(CDateTime(d[0], d[1], d[2]).GetDayOfYear(), d[3]) << d[0] << "-" << d[1];
  CDateTime time, gYear;
  time.SetTime(1, 0, 0);
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { time.GetTime(); },
            "Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: time."));
  gYear.SetGYear(2000);
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { gYear.GetDayOfYear(); },
                                                "Failed to GetDayOfYear. Invalid Date Type: gYear."));
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { gYear.GetDayOfWeek(); },
                                                "Failed to GetDayOfWeek. Invalid Date Type: gYear."));
}
