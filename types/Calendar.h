#ifndef KOXMLLIB10_TYPES_CALENDAR_H
#define KOXMLLIB10_TYPES_CALENDAR_H

#include <cstddef>
#include <string_view>

namespace KoXmlLib10 {

class CDateTimeSpan;

// Proleptic Gregorian arithmetic shared by dates and durations. There is no
// year 0: year -1 is followed by year 1. Years are wide so that intermediate
// results (huge durations, offsets at the ends of the year range) never overflow.
namespace calendar {

// A point in time with every field present. Kinds that lack a field use the
// defaults: the start of January 1972 (a leap year, so a lone February 29 survives).
struct Moment {
  static constexpr long long kYearPlaceholder = 1972;
  long long year = kYearPlaceholder;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int milli = 0;
  int micro = 0;
  int nano = 0;
};

// Which fields take part in a comparison.
struct Presence {
  bool year;
  bool month;
  bool day;
  bool time;
};

long long FloorDiv(long long a, long long b);
long long FloorMod(long long a, long long b);
bool IsLeap(long long year);
int DaysInMonth(long long year, int month);
long long DaysSinceEpoch(long long year, int month, int day);
void DateFromDays(long long days, long long& year, int& month, int& day);
long long SecondsSinceEpoch(const Moment& m);

// Adds the duration with its sign: years and months first (a day past the end of
// the resulting month is pinned to its last day), then the time of day, whose
// carry joins the days. With `yearFixed` the year does not take part.
void AddSpan(Moment& m, const CDateTimeSpan& span, bool yearFixed);

// Walks year, month, day, hour, minute, second: a field present in only one value
// makes the result indeterminate (3); the first difference decides (1 less, 2 greater).
int Compare(const Moment& a, Presence pa, const Moment& b, Presence pb);

// Reads up to nine fraction digits from `pos`, weighted into milli-, micro- and
// nanoseconds. Returns the position after the digits, or npos on a tenth digit.
std::size_t ParseFraction(std::string_view text, std::size_t pos, unsigned short& milli,
                          unsigned short& micro, unsigned short& nano);

}  // namespace calendar
}  // namespace KoXmlLib10

#endif
