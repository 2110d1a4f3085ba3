#include "types/Calendar.h"

#include <algorithm>

#include "KoXmlLib10/DateTime.h"
#include "KoXmlLib10/DateTimeSpan.h"

namespace KoXmlLib10::calendar {

namespace {

// Days from 1970-01-01 on the proleptic Gregorian calendar with a year 0.
long long AstronomicalDays(long long year, int month, int day) {
  const long long y = year - (month <= 2 ? 1 : 0);
  const long long era = FloorDiv(y, 400);
  const long long yearOfEra = y - era * 400;
  const long long dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const long long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

void AstronomicalDate(long long days, long long& year, int& month, int& day) {
  const long long z = days + 719468;
  const long long era = FloorDiv(z, 146097);
  const long long dayOfEra = z - era * 146097;
  const long long yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const long long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const long long shiftedMonth = (5 * dayOfYear + 2) / 153;
  day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
  month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
  year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
}

// Year 0 would be a leap year; leaving it out removes its 366 days.
constexpr long long kDaysOfYearZero = 366;
const long long kFirstDayOfYearOne = AstronomicalDays(1, 1, 1);

long long ShiftYear(long long year, long long delta) {
  const long long ordinal = (year > 0 ? year - 1 : year) + delta;
  return ordinal >= 0 ? ordinal + 1 : ordinal;
}

// Adds sign * amount to a field of the given base; `carry` comes in from the
// smaller field and goes out to the larger one. `amount` may exceed the signed range.
int AddToField(int field, int sign, unsigned long long amount, int base, long long& carry) {
  const auto whole = static_cast<long long>(amount / static_cast<unsigned>(base));
  const auto rest = static_cast<long long>(amount % static_cast<unsigned>(base));
  const long long value = field + carry + sign * rest;
  carry = FloorDiv(value, base) + sign * whole;
  return static_cast<int>(FloorMod(value, base));
}

}  // namespace

long long FloorDiv(long long a, long long b) {
  long long q = a / b;
  if (a % b != 0 && ((a < 0) != (b < 0))) --q;
  return q;
}

long long FloorMod(long long a, long long b) {
  long long r = a % b;
  if (r != 0 && ((r < 0) != (b < 0))) r += b;
  return r;
}

bool IsLeap(long long year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysInMonth(long long year, int month) {
  if (month == 2) return IsLeap(year) ? 29 : 28;
  return g_monthMax[month - 1];
}

long long DaysSinceEpoch(long long year, int month, int day) {
  return AstronomicalDays(year, month, day) + (year < 0 ? kDaysOfYearZero : 0);
}

void DateFromDays(long long days, long long& year, int& month, int& day) {
  AstronomicalDate(days >= kFirstDayOfYearOne ? days : days - kDaysOfYearZero, year, month, day);
}

long long SecondsSinceEpoch(const Moment& m) {
  return DaysSinceEpoch(m.year, m.month, m.day) * 86400 + m.hour * 3600LL + m.minute * 60LL +
         m.second;
}

void AddSpan(Moment& m, const CDateTimeSpan& span, bool yearFixed) {
  const int sign = span.IsNegative() ? -1 : 1;
  const long long months = m.month - 1 + sign * static_cast<long long>(span.GetMonths());
  m.month = static_cast<int>(FloorMod(months, 12)) + 1;
  if (!yearFixed) m.year = ShiftYear(m.year, sign * span.GetYears() + FloorDiv(months, 12));
  m.day = std::min(m.day, DaysInMonth(m.year, m.month));

  long long carry = 0;
  m.nano = AddToField(m.nano, sign, span.GetNanoSeconds(), 1000, carry);
  m.micro = AddToField(m.micro, sign, span.GetMicroSeconds(), 1000, carry);
  m.milli = AddToField(m.milli, sign, span.GetMilliSeconds(), 1000, carry);
  m.second = AddToField(m.second, sign, span.GetSeconds(), 60, carry);
  m.minute = AddToField(m.minute, sign, span.GetMinutes(), 60, carry);
  m.hour = AddToField(m.hour, sign, span.GetHours(), 24, carry);

  const long long days = carry + sign * static_cast<long long>(span.GetDays());
  if (days != 0) DateFromDays(DaysSinceEpoch(m.year, m.month, m.day) + days, m.year, m.month, m.day);
}

int Compare(const Moment& a, Presence pa, const Moment& b, Presence pb) {
  auto subSecond = [](const Moment& m) { return m.milli * 1000000LL + m.micro * 1000LL + m.nano; };
  struct Step {
    bool inA, inB;
    long long valueA, valueB;
  };
  const Step steps[] = {
      {pa.year, pb.year, a.year, b.year},
      {pa.month, pb.month, a.month, b.month},
      {pa.day, pb.day, a.day, b.day},
      {pa.time, pb.time, a.hour, b.hour},
      {pa.time, pb.time, a.minute, b.minute},
      {pa.time, pb.time, a.second * 1000000000LL + subSecond(a),
       b.second * 1000000000LL + subSecond(b)},
  };
  for (const Step& step : steps) {
    if (step.inA != step.inB) return 3;
    if (!step.inA || step.valueA == step.valueB) continue;
    return step.valueA < step.valueB ? 1 : 2;
  }
  return 0;
}

std::size_t ParseFraction(std::string_view text, std::size_t pos, unsigned short& milli,
                          unsigned short& micro, unsigned short& nano) {
  unsigned short* groups[] = {&milli, &micro, &nano};
  static constexpr unsigned short kWeights[] = {100, 10, 1};
  milli = micro = nano = 0;
  for (int digit = 0; pos < text.size() && text[pos] >= '0' && text[pos] <= '9'; ++digit, ++pos) {
    if (digit == 9) return std::string_view::npos;
    *groups[digit / 3] += static_cast<unsigned short>((text[pos] - '0') * kWeights[digit % 3]);
  }
  return pos;
}

}  // namespace KoXmlLib10::calendar
