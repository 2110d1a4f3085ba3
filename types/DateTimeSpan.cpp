#include "KoXmlLib10/DateTimeSpan.h"

#include <string_view>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/StringUtils.h"
#include "types/Calendar.h"

namespace KoXmlLib10 {

namespace {

// Parser states: what has been read so far.
enum State { kStart, kYears, kMonths, kDays, kTimeMark, kHours, kMinutes, kSeconds, kFraction };

CKoInvalidValueException FormatError(const char* s) {
  return CKoInvalidValueException(
      FormatString("Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]", s));
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

CDateTimeSpan::CDateTimeSpan() = default;

CDateTimeSpan::CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                             unsigned long hours, unsigned long long minutes,
                             unsigned long long seconds) {
  SetDateTimeSpan(years, months, days, hours, minutes, seconds);
}

CDateTimeSpan::CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                             unsigned long hours, unsigned long long minutes,
                             unsigned long long seconds, unsigned short milli,
                             unsigned short micro, unsigned short nano) {
  SetDateTimeSpan(years, months, days, hours, minutes, seconds, milli, micro, nano);
}

CDateTimeSpan::CDateTimeSpan(unsigned long hours, unsigned long long minutes,
                             unsigned long long seconds) {
  SetDateTimeSpan(hours, minutes, seconds);
}

CDateTimeSpan::CDateTimeSpan(const CDateTimeSpan& other) = default;
CDateTimeSpan& CDateTimeSpan::operator=(const CDateTimeSpan& other) = default;
CDateTimeSpan::~CDateTimeSpan() = default;

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, unsigned long months,
                                    unsigned long days, unsigned long hours,
                                    unsigned long long minutes, unsigned long long seconds) {
  SetDateTimeSpan(years, months, days, hours, minutes, seconds, 0, 0, 0);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, unsigned long months,
                                    unsigned long days, unsigned long hours,
                                    unsigned long long minutes, unsigned long long seconds,
                                    unsigned short milli, unsigned short micro,
                                    unsigned short nano) {
  Clear();
  SetYears(years);
  SetMonths(months);
  SetDays(days);
  SetHours(hours);
  SetMinutes(minutes);
  SetSeconds(seconds);
  SetMilliSeconds(milli);
  SetMicroSeconds(micro);
  SetNanoSeconds(nano);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned long hours, unsigned long long minutes,
                                    unsigned long long seconds) {
  SetDateTimeSpan(0, 0, 0, hours, minutes, seconds, 0, 0, 0);
}

CDateTimeSpan CDateTimeSpan::GetAsNegative() const {
  CDateTimeSpan copy(*this);
  copy.m_negative = true;
  return copy;
}

void CDateTimeSpan::Clear() { *this = CDateTimeSpan(); }

bool CDateTimeSpan::IsZero() const {
  return m_years == 0 && m_months == 0 && m_days == 0 && m_hours == 0 && m_minutes == 0 &&
         m_seconds == 0 && m_milli == 0 && m_micro == 0 && m_nano == 0;
}

void CDateTimeSpan::ParseXSDDuration(const char* s) {
  Clear();
  if (!s) throw CKoInvalidValueException("Invalid XSD Duration (Null String)");
  const std::string_view text(s);
  if (text.empty()) throw CKoInvalidValueException("Invalid XSD Duration (Empty String)");

  size_t pos = 0;
  if (text[pos] == '-') {
    m_negative = true;
    ++pos;
  }
  if (pos >= text.size() || text[pos] != 'P' || pos + 1 >= text.size()) throw FormatError(s);
  ++pos;

  State state = kStart;
  while (pos < text.size()) {
    const size_t digitsStart = pos;
    std::uint32_t number = 0;  // longer numbers wrap
    for (; pos < text.size() && IsDigit(text[pos]); ++pos)
      number = number * 10 + static_cast<std::uint32_t>(text[pos] - '0');
    if (pos == text.size()) throw FormatError(s);

    const char designator = text[pos++];
    if (designator == 'Y' && state == kStart) {
      m_years = static_cast<std::uint16_t>(number);
      state = kYears;
    } else if (designator == 'M' && state <= kYears) {
      m_months = number;
      state = kMonths;
    } else if (designator == 'D' && state <= kMonths) {
      m_days = number;
      state = kDays;
    } else if (designator == 'T' && state <= kDays && pos - 1 == digitsStart) {
      state = kTimeMark;
    } else if (designator == 'H' && state == kTimeMark) {
      m_hours = number;
      state = kHours;
    } else if (designator == 'M' && (state == kTimeMark || state == kHours)) {
      m_minutes = number;
      state = kMinutes;
    } else if (designator == 'S' && state >= kTimeMark && state <= kMinutes) {
      m_seconds = number;
      state = kSeconds;
    } else if (designator == '.' && state >= kTimeMark && state <= kMinutes) {
      m_seconds = number;
      pos = calendar::ParseFraction(text, pos, m_milli, m_micro, m_nano);
      if (pos == std::string_view::npos)
        throw CKoInvalidValueException(
            FormatString("Invalid XSD Duration [%s] Fraction part too long", s));
      if (pos == text.size() || text[pos] != 'S') throw FormatError(s);
      ++pos;
      state = kFraction;
    } else {
      throw FormatError(s);
    }
  }
  if (state == kStart || state == kTimeMark) throw FormatError(s);
}

std::string CDateTimeSpan::ToString() const {
  // "P" alone would not parse back; XSD writes a zero duration as PT0S, unsigned.
  if (IsZero()) return "PT0S";
  std::string text = m_negative ? "-P" : "P";
  auto append = [&text](unsigned long long value, char designator) {
    if (value == 0) return;
    text += std::to_string(value);
    text += designator;
  };
  append(m_years, 'Y');
  append(m_months, 'M');
  append(m_days, 'D');
  const bool hasFraction = m_milli != 0 || m_micro != 0 || m_nano != 0;
  if (m_hours == 0 && m_minutes == 0 && m_seconds == 0 && !hasFraction) return text;
  text += 'T';
  append(m_hours, 'H');
  append(m_minutes, 'M');
  if (m_seconds != 0 || hasFraction)
    text += std::to_string(m_seconds) + ToFracString(m_milli, m_micro, m_nano) + 'S';
  return text;
}

int CDateTimeSpan::CompareTo(const CDateTimeSpan& other) const {
  // The instants where month lengths differ most: adding both durations to each
  // shows whether their order depends on where they start.
  static const calendar::Moment kReferences[] = {
      {1696, 9, 1}, {1697, 2, 1}, {1903, 3, 1}, {1903, 7, 1}};
  constexpr calendar::Presence kAll{true, true, true, true};
  int common = -1;
  for (const calendar::Moment& reference : kReferences) {
    calendar::Moment mine = reference;
    calendar::Moment theirs = reference;
    calendar::AddSpan(mine, *this, false);
    calendar::AddSpan(theirs, other, false);
    const int result = calendar::Compare(mine, kAll, theirs, kAll);
    if (result == 3 || (common != -1 && result != common)) return 3;
    common = result;
  }
  return common;
}

}  // namespace KoXmlLib10
