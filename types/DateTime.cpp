#include "KoXmlLib10/DateTime.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/StringUtils.h"
#include "types/Calendar.h"

namespace KoXmlLib10 {

namespace {

using DTType = CDateTime::DTType;

bool HasYear(DTType t) {
  return t == CDateTime::dt_dateTime || t == CDateTime::dt_date || t == CDateTime::dt_gYearMonth ||
         t == CDateTime::dt_gYear;
}

bool HasMonth(DTType t) {
  return t == CDateTime::dt_dateTime || t == CDateTime::dt_date || t == CDateTime::dt_gYearMonth ||
         t == CDateTime::dt_gMonth || t == CDateTime::dt_gMonthDay;
}

bool HasDay(DTType t) {
  return t == CDateTime::dt_dateTime || t == CDateTime::dt_date || t == CDateTime::dt_gDay ||
         t == CDateTime::dt_gMonthDay;
}

bool HasTime(DTType t) { return t == CDateTime::dt_dateTime || t == CDateTime::dt_time; }

bool IsKnownType(int t) { return t >= CDateTime::dt_yearZero && t <= CDateTime::dt_gMonthDay; }

calendar::Presence PresenceOf(DTType t) { return {HasYear(t), HasMonth(t), HasDay(t), HasTime(t)}; }

const char* TypeName(DTType t) {
  static const char* const kNames[] = {"yearZero", "dateTime", "date",   "gYearMonth", "gYear",
                                       "time",     "gDay",     "gMonth", "gMonthDay"};
  return IsKnownType(t) ? kNames[t] : "";
}

std::string YearRangeMessage(long long year) {
  return FormatString("Invalid Year [%lld] (%d <= year <= %d && year != 0)", year, MIN_YEAR,
                      MAX_YEAR);
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Digits where the pattern has letters, the pattern's other characters verbatim.
bool Matches(std::string_view text, std::string_view pattern) {
  if (text.size() != pattern.size()) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool digitWanted = pattern[i] >= 'A' && pattern[i] <= 'z';
    if (digitWanted ? !IsDigit(text[i]) : text[i] != pattern[i]) return false;
  }
  return true;
}

// The number written at the positions of `letter` in a text that matches `pattern`.
int FieldOf(std::string_view text, std::string_view pattern, char letter) {
  int value = 0;
  for (size_t i = 0; i < pattern.size(); ++i)
    if (pattern[i] == letter) value = value * 10 + (text[i] - '0');
  return value;
}

struct DateLayout {
  std::string_view pattern;
  DTType type;
};

// Forms starting with two hyphens (the old "--MM--" gMonth included), then the
// forms led by a year, which may carry a minus sign.
constexpr DateLayout kMonthDayLayouts[] = {{"--MM", CDateTime::dt_gMonth},
                                           {"---DD", CDateTime::dt_gDay},
                                           {"--MM--", CDateTime::dt_gMonth},
                                           {"--MM-DD", CDateTime::dt_gMonthDay}};
constexpr DateLayout kYearLayouts[] = {{"YYYY", CDateTime::dt_gYear},
                                       {"YYYY-MM", CDateTime::dt_gYearMonth},
                                       {"YYYY-MM-DD", CDateTime::dt_date}};

template <size_t N>
const DateLayout* FindLayout(std::string_view body, const DateLayout (&layouts)[N]) {
  for (const DateLayout& layout : layouts)
    if (Matches(body, layout.pattern)) return &layout;
  return nullptr;
}

// What a parser accepts after the date or time: "Z" alone, or a signed offset
// (whose shape SetZone checks).
bool IsZoneText(std::string_view zone) {
  return zone == "Z" || (!zone.empty() && (zone[0] == '+' || zone[0] == '-'));
}

CDateTimeSpan OffsetSpan(int offsetMinutes) {
  CDateTimeSpan span(static_cast<unsigned long>(std::abs(offsetMinutes) / 60),
                     static_cast<unsigned long long>(std::abs(offsetMinutes) % 60), 0);
  if (offsetMinutes > 0) span.Negate();  // UTC lies behind a positive offset
  return span;
}

void MoveToUtc(calendar::Moment& moment, int offsetMinutes, bool yearFixed) {
  calendar::AddSpan(moment, OffsetSpan(offsetMinutes), yearFixed);
}

constexpr int kMaxZoneMinutes = 14 * 60;

}  // namespace

// ---- construction --------------------------------------------------------

CDateTime::CDateTime() = default;

CDateTime::CDateTime(DTType type) : m_type(type) {}

CDateTime::CDateTime(short y, unsigned char m, unsigned char d) {
  try {
    SetDate(y, m, d);
  } catch (const CKoInvalidValueException&) {
    Clear();
  }
}

CDateTime::CDateTime(short y, unsigned char m, unsigned char d, unsigned char h, unsigned char mi,
                     unsigned char s, unsigned short milli, unsigned short micro,
                     unsigned short nano) {
  try {
    SetDateTime(y, m, d, h, mi, s, milli, micro, nano);
  } catch (const CKoInvalidValueException&) {
    Clear();
  }
}

CDateTime::CDateTime(const long& t) {
  try {
    AssignTime(t);
  } catch (const CKoInvalidValueException&) {
    Clear();
  }
}

CDateTime::CDateTime(const char* s) { ParseXSDDateTime(s); }

CDateTime::CDateTime(const CDateTime& other) = default;
CDateTime::~CDateTime() = default;
CDateTime& CDateTime::operator=(const CDateTime& other) = default;

CDateTime& CDateTime::operator=(const long& t) {
  AssignTime(t);
  return *this;
}

CDateTime CDateTime::GetCurrentTime() { return CDateTime(static_cast<long>(std::time(nullptr))); }

// Seconds since 1970-01-01T00:00:00Z, read in UTC whatever the process's zone.
void CDateTime::AssignTime(long t) {
  long long year;
  int month, day;
  calendar::DateFromDays(calendar::FloorDiv(t, 86400), year, month, day);
  if (year < MIN_YEAR || year > MAX_YEAR) throw CKoInvalidValueException(YearRangeMessage(year));
  const auto seconds = static_cast<int>(calendar::FloorMod(t, 86400));
  SetDateTime(static_cast<short>(year), static_cast<unsigned char>(month),
              static_cast<unsigned char>(day), static_cast<unsigned char>(seconds / 3600),
              static_cast<unsigned char>(seconds / 60 % 60), static_cast<unsigned char>(seconds % 60));
}

// ---- whole-value setters -------------------------------------------------

void CDateTime::SetDateTime(DTType t, short y, unsigned char m, unsigned char d, unsigned char h,
                            unsigned char mi, unsigned char s, unsigned short milli,
                            unsigned short micro, unsigned short nano) {
  if (m_type != dt_yearZero && m_type != t)
    throw CKoInvalidStateException(
        FormatString("Failed to copy CDateTime. Invalid Date Type: %s, expected: %s.", TypeName(t),
                     TypeName(m_type)));
  CDateTime value;
  value.m_type = t;
  value.m_year = y;
  value.m_month = m;
  value.m_day = d;
  value.m_hour = h;
  value.m_minute = mi;
  value.m_second = s;
  value.m_milli = milli;
  value.m_micro = micro;
  value.m_nano = nano;
  value.Validate();
  *this = value;
}

void CDateTime::SetDateTime(short y, unsigned char m, unsigned char d, unsigned char h,
                            unsigned char mi, unsigned char s, unsigned short milli,
                            unsigned short micro, unsigned short nano) {
  SetDateTime(dt_dateTime, y, m, d, h, mi, s, milli, micro, nano);
}

void CDateTime::SetDate(short y, unsigned char m, unsigned char d) {
  SetDateTime(dt_date, y, m, d, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetTime(unsigned char h, unsigned char mi, unsigned char s, unsigned short milli,
                        unsigned short micro, unsigned short nano) {
  SetDateTime(dt_time, 0, 0, 0, h, mi, s, milli, micro, nano);
}

void CDateTime::SetFracTime(unsigned short milli, unsigned short micro, unsigned short nano) {
  SetDateTime(dt_time, 0, 0, 0, 0, 0, 0, milli, micro, nano);
}

void CDateTime::SetGYear(short y) { SetDateTime(dt_gYear, y, 0, 0, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetGYearMonth(short y, unsigned char m) {
  SetDateTime(dt_gYearMonth, y, m, 0, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetGMonth(unsigned char m) { SetDateTime(dt_gMonth, 0, m, 0, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetGMonthDay(unsigned char m, unsigned char d) {
  SetDateTime(dt_gMonthDay, 0, m, d, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetGDay(unsigned char d) { SetDateTime(dt_gDay, 0, 0, d, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetDateTime(const CDateTime& src, DTType t) {
  if (!CheckConversion(src.m_type, t))
    throw CKoInvalidValueException(FormatString(
        "Attempting to set a CDateTime of type %s using an XmlDateTime of type %s. The source "
        "CDateTime does not contian enough data to allow the conversion.",
        TypeName(t), TypeName(src.m_type)));
  CDateTime value(src);
  value.m_type = t;
  value.DropAbsentFields();
  *this = value;
}

bool CDateTime::CheckConversion(DTType from, DTType to) {
  if (!IsKnownType(from))
    throw CKoInvalidValueException(FormatString("Unknown date type %d.", static_cast<int>(from)));
  if (to == from || to == dt_yearZero) return true;
  switch (from) {
    case dt_dateTime:
      return IsKnownType(to);
    case dt_date:
      return to == dt_gDay || to == dt_gMonth || to == dt_gYear || to == dt_gMonthDay ||
             to == dt_gYearMonth;
    case dt_gYearMonth:
      return to == dt_gMonth || to == dt_gYear;
    case dt_gMonthDay:
      return to == dt_gDay || to == dt_gMonth;
    default:
      return false;
  }
}

// A converted value keeps only the fields of its new kind, so that it validates.
void CDateTime::DropAbsentFields() {
  if (m_type == dt_yearZero) {
    Clear();
    return;
  }
  if (!HasYear(m_type)) m_year = 0;
  if (!HasMonth(m_type)) m_month = 0;
  if (!HasDay(m_type)) m_day = 0;
  if (!HasTime(m_type)) {
    m_hour = m_minute = m_second = 0;
    m_milli = m_micro = m_nano = 0;
  }
}

// ---- field access --------------------------------------------------------

void CDateTime::RequireField(bool present, const char* accessor) const {
  if (!present)
    throw CKoInvalidStateException(
        FormatString("Failed to %s. Invalid Date Type: %s.", accessor, TypeName(m_type)));
}

short CDateTime::GetYear() const {
  RequireField(HasYear(m_type), "GetYear");
  return m_year;
}

void CDateTime::SetYear(short year) {
  RequireField(HasYear(m_type), "GetYear");
  m_year = year;
}

unsigned char CDateTime::GetMonth() const {
  RequireField(HasMonth(m_type), "GetMonth");
  return m_month;
}

void CDateTime::SetMonth(unsigned char month) {
  RequireField(HasMonth(m_type), "GetMonth");
  m_month = month;
}

unsigned char CDateTime::GetDay() const {
  RequireField(HasDay(m_type), "GetDay");
  return m_day;
}

void CDateTime::SetDay(unsigned char day) {
  RequireField(HasDay(m_type), "GetDay");
  m_day = day;
}

unsigned char CDateTime::GetHour() const {
  RequireField(HasTime(m_type), "GetHour");
  return m_hour;
}

void CDateTime::SetHour(unsigned char hour) {
  RequireField(HasTime(m_type), "GetHour");
  m_hour = hour;
}

unsigned char CDateTime::GetMinute() const {
  RequireField(HasTime(m_type), "GetMinute");
  return m_minute;
}

void CDateTime::SetMinute(unsigned char minute) {
  RequireField(HasTime(m_type), "GetMinute");
  m_minute = minute;
}

unsigned char CDateTime::GetSecond() const {
  RequireField(HasTime(m_type), "GetSecond");
  return m_second;
}

void CDateTime::SetSecond(unsigned char second) {
  RequireField(HasTime(m_type), "GetSecond");
  m_second = second;
}

unsigned short CDateTime::GetMilliSecond() const {
  RequireField(HasTime(m_type), "GetMilliSecond");
  return m_milli;
}

void CDateTime::SetMilliSecond(unsigned short milli) {
  RequireField(HasTime(m_type), "GetMilliSecond");
  m_milli = milli;
}

unsigned short CDateTime::GetMicroSecond() const {
  RequireField(HasTime(m_type), "GetMicroSecond");
  return m_micro;
}

void CDateTime::SetMicroSecond(unsigned short micro) {
  RequireField(HasTime(m_type), "GetMicroSecond");
  m_micro = micro;
}

unsigned short CDateTime::GetNanoSecond() const {
  RequireField(HasTime(m_type), "GetNanoSecond");
  return m_nano;
}

void CDateTime::SetNanoSecond(unsigned short nano) {
  RequireField(HasTime(m_type), "GetNanoSecond");
  m_nano = nano;
}

double CDateTime::GetRealSecond() const {
  RequireField(HasTime(m_type), "GetRealSecond");
  return m_second + m_milli / 1e3 + m_micro / 1e6 + m_nano / 1e9;
}

// ---- zone ----------------------------------------------------------------

void CDateTime::SetUTC() {
  m_utc = true;
  m_hasTimeZone = false;
  m_zoneHour = 0;
  m_zoneMinute = 0;
  m_zoneNegative = false;
}

void CDateTime::SetTimeZone(short hour, unsigned char minute) {
  if (hour < -23 || hour > 23 || minute > 59)
    throw CKoInvalidValueException(FormatString("Invalid TimeZone [%d:%d]", hour, minute));
  m_utc = true;
  m_hasTimeZone = true;
  m_zoneHour = hour;
  m_zoneMinute = minute;
  m_zoneNegative = hour < 0;
}

short CDateTime::GetZoneHour() const {
  if (!m_hasTimeZone) throw CKoInvalidStateException("TimeZone is not been used");
  return m_zoneHour;
}

unsigned char CDateTime::GetZoneMinute() const {
  if (!m_hasTimeZone) throw CKoInvalidStateException("TimeZone is not been used");
  return m_zoneMinute;
}

int CDateTime::OffsetMinutes() const {
  if (!m_hasTimeZone) return 0;
  const int minutes = std::abs(m_zoneHour) * 60 + m_zoneMinute;
  return m_zoneNegative ? -minutes : minutes;
}

void CDateTime::SetZone(const char* z) {
  if (!z || (z[0] != 'Z' && z[0] != '+' && z[0] != '-')) return;
  if (z[0] == 'Z') {
    SetUTC();
    return;
  }
  const std::string_view zone(z);
  if (!Matches(zone.substr(1), "hh:mm"))
    throw CKoInvalidValueException(FormatString("Invalid XSD Time Zone [%s]", z));
  // 24:00 is midnight of the next day, the same offset as 00:00; any other
  // hour beyond 23 is left for SetTimeZone to reject.
  int hour = FieldOf(zone.substr(1), "hh:mm", 'h');
  if (hour == 24) hour = 0;
  const int minute = FieldOf(zone.substr(1), "hh:mm", 'm');
  const bool negative = z[0] == '-';
  SetTimeZone(static_cast<short>(negative ? -hour : hour), static_cast<unsigned char>(minute));
  // -00:30 is still west of UTC although its hour has no sign.
  m_zoneNegative = negative && (hour != 0 || minute != 0);
}

// ---- type, clear, validate -------------------------------------------------

std::string CDateTime::GetTypeAsString() const { return TypeName(m_type); }

std::string CDateTime::GetTypeAsString(DTType type) { return TypeName(type); }

void CDateTime::Clear() { *this = CDateTime(); }

void CDateTime::Validate() const {
  if (m_type == dt_yearZero) throw CKoInvalidValueException("Invalid Year Zero");
  if (!IsKnownType(m_type))
    throw CKoInvalidValueException(FormatString("Unknown date type %d.", static_cast<int>(m_type)));
  const char* name = TypeName(m_type);
  auto fail = [](const std::string& message) { throw CKoInvalidValueException(message); };

  if (HasMonth(m_type)) {
    if (m_month < 1 || m_month > 12)
      fail(FormatString("Invalid Month [%d] (1 <= month <= 12)", m_month));
  } else if (m_month != 0) {
    fail(FormatString("Invalid Month [%d] for type %s", m_month, name));
  }

  if (HasYear(m_type)) {
    if (m_year == 0 || m_year < MIN_YEAR || m_year > MAX_YEAR) fail(YearRangeMessage(m_year));
  } else if (m_year != 0) {
    fail(FormatString("Invalid Year [%d] for type %s", m_year, name));
  }

  if (m_type == dt_dateTime || m_type == dt_date) {
    const bool february29 = m_month == 2 && m_day == 29;
    if (m_day < 1 || m_day > g_monthMax[m_month - 1] || (february29 && !IsLeapYear(m_year)))
      fail(FormatString("Invalid Day [%d] (1 <= day <= days in month", m_day));
  } else if (m_type == dt_gMonthDay) {
    if (m_day < 1 || m_day > g_monthMax[m_month - 1])
      fail(FormatString("Invalid Day [%d] (1 <= day <= days in month)", m_day));
  } else if (m_type == dt_gDay) {
    if (m_day < 1 || m_day > 31) fail(FormatString("Invalid Day [%d] (1 <= day <= 31)", m_day));
  } else if (m_day != 0) {
    fail(FormatString("Invalid Day [%d] for type %s", m_day, name));
  }

  struct TimeField {
    int value;
    int max;
    const char* label;
    const char* variable;
  };
  const TimeField timeFields[] = {{m_hour, 23, "Hour", "hour"},
                                  {m_minute, 59, "Minute", "minute"},
                                  {m_second, 59, "Second", "second"},
                                  {m_milli, 999, "Milli-Second", "milli"},
                                  {m_micro, 999, "Micro-Second", "micro"},
                                  {m_nano, 999, "Nano-Second", "nano"}};
  const bool hasTime = HasTime(m_type);
  for (const TimeField& field : timeFields) {
    if (hasTime && field.value > field.max)
      fail(FormatString("Invalid %s [%d] (0 <= %s <= %d)", field.label, field.value,
                        field.variable, field.max));
    if (!hasTime && field.value != 0)
      fail(FormatString("Invalid %s [%d] for type %s", field.label, field.value, name));
  }
}

// ---- parsing -------------------------------------------------------------

void CDateTime::ParseXSDDate(const char* s) {
  Clear();
  SetXSDDate(s);
  Validate();
}

void CDateTime::ParseXSDTime(const char* s) {
  Clear();
  SetXSDTime(s);
  Validate();
}

void CDateTime::ParseXSDDateTime(const char* s) {
  if (!s) throw CKoInvalidValueException("Invalid DateTime (Null String)");
  const std::string_view text(s);
  const size_t timeMark = text.find('T');
  if (timeMark == std::string_view::npos)
    throw CKoInvalidValueException(FormatString("Invalid XSD DateTime [%s]", s));
  Clear();
  SetXSDDate(std::string(text.substr(0, timeMark)).c_str());
  // The zone belongs after the time; a date part with one of its own is malformed.
  if (m_type != dt_date || m_utc)
    throw CKoInvalidValueException(
        FormatString("Invalid XSD DateTime [%s] expected CCYY-MM-DDThh:mm:ss[.ff]", s));
  SetXSDTime(s + timeMark + 1);
  m_type = dt_dateTime;
  Validate();
}

void CDateTime::SetXSDDate(const char* s) {
  if (!s) throw CKoInvalidValueException("Invalid Date (Null String)");
  const std::string_view text(s);
  if (text.empty()) throw CKoInvalidValueException("Invalid Date (Empty String)");
  if (text.find('T') != std::string_view::npos)
    throw CKoInvalidValueException("Invalid Date ('T' not allowed)");
  const bool hasColon = text.find(':') != std::string_view::npos;
  if (text.back() == 'Z' && hasColon) throw CKoInvalidValueException("Invalid Date (Bad Zone value)");

  auto formatError = [s] {
    return CKoInvalidValueException(
        FormatString("Invalid XSD Date [%s] expected CCYY-MM-DD[Z|[+|-]hh:mm]", s));
  };
  const size_t zoneLength = text.back() == 'Z' ? 1 : hasColon ? 6 : 0;
  if (zoneLength >= text.size()) throw formatError();
  const std::string_view body = text.substr(0, text.size() - zoneLength);
  const std::string_view zone = text.substr(body.size());

  const bool monthDayForm = body.substr(0, 2) == "--";
  const bool negativeYear = !monthDayForm && body[0] == '-';
  const std::string_view fields = negativeYear ? body.substr(1) : body;
  const DateLayout* layout =
      monthDayForm ? FindLayout(fields, kMonthDayLayouts) : FindLayout(fields, kYearLayouts);
  if (!layout || (zoneLength != 0 && !IsZoneText(zone))) throw formatError();

  const int year = FieldOf(fields, layout->pattern, 'Y');
  m_year = static_cast<std::int16_t>(negativeYear ? -year : year);
  m_month = static_cast<std::uint8_t>(FieldOf(fields, layout->pattern, 'M'));
  m_day = static_cast<std::uint8_t>(FieldOf(fields, layout->pattern, 'D'));
  m_type = layout->type;
  if (zoneLength != 0) SetZone(std::string(zone).c_str());
}

void CDateTime::SetXSDTime(const char* s) {
  if (!s) throw CKoInvalidValueException("Invalid Time (Null String)");
  const std::string_view text(s);
  if (text.empty()) throw CKoInvalidValueException("Invalid XSD Time (Empty String)");

  auto formatError = [s] {
    return CKoInvalidValueException(FormatString("Invalid XSD Time [%s] expected hh:mm:ss[.ff]", s));
  };
  constexpr std::string_view kPattern = "hh:mm:ss";
  const std::string_view clock = text.substr(0, kPattern.size());
  if (!Matches(clock, kPattern)) throw formatError();
  const int hour = FieldOf(clock, kPattern, 'h');
  const int minute = FieldOf(clock, kPattern, 'm');
  const int second = FieldOf(clock, kPattern, 's');
  if (hour > 23 || minute > 59 || second > 59) throw formatError();
  m_hour = static_cast<std::uint8_t>(hour);
  m_minute = static_cast<std::uint8_t>(minute);
  m_second = static_cast<std::uint8_t>(second);
  m_milli = m_micro = m_nano = 0;

  size_t pos = kPattern.size();
  if (pos < text.size() && text[pos] == '.') {
    pos = calendar::ParseFraction(text, pos + 1, m_milli, m_micro, m_nano);
    if (pos == std::string_view::npos)
      throw CKoInvalidValueException(
          FormatString("Invalid XSD Time [%s] Fraction part too long", s));
  }
  if (pos < text.size()) {
    if (!IsZoneText(text.substr(pos))) throw formatError();
    SetZone(s + pos);
  }
  m_type = dt_time;
}

// ---- printing ------------------------------------------------------------

bool CDateTime::IsEmpty() const {
  return m_year == 0 && m_month == 0 && m_day == 0 && m_hour == 0 && m_minute == 0 &&
         m_second == 0 && m_milli == 0 && m_micro == 0 && m_nano == 0;
}

std::string CDateTime::ToString() const { return ToString("s"); }

std::string CDateTime::ToString(const char* format) const {
  if (m_type == dt_yearZero || (m_type != dt_time && IsEmpty()))
    throw CKoInvalidValueException("Date Not Set");
  if (!format || !*format || std::strcmp(format, "G") == 0) return std::string();
  // An unknown format is answered in the result, not thrown: callers print
  // whatever comes back.
  if (std::strcmp(format, "s") != 0) return std::string("Unknown Format: ") + format;
  std::string text = FieldsToString();
  if (m_utc) text += ZoneToString();
  return text;
}

namespace {

// `value` in decimal, zero-padded to at least `width` digits. Values are
// written for every date and time the writers put out, so this stays clear
// of printf and temporaries.
void AppendPadded(std::string& out, unsigned int value, unsigned int width) {
  char digits[16];
  char* end = digits + sizeof digits;
  char* p = end;
  do {
    *--p = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  for (unsigned int n = static_cast<unsigned int>(end - p); n < width; ++n) out += '0';
  out.append(p, static_cast<size_t>(end - p));
}

}  // namespace

std::string CDateTime::FieldsToString() const {
  // No reserve: the kinds without a time part fit the string's inline room.
  std::string text;
  const auto year = [&] {
    if (m_year < 0) text += '-';
    AppendPadded(text, static_cast<unsigned int>(std::abs(m_year)), 4);
  };
  const auto month = [&] { AppendPadded(text, m_month, 2); };
  const auto day = [&] { AppendPadded(text, m_day, 2); };
  const auto time = [&] {
    AppendPadded(text, m_hour, 2);
    text += ':';
    AppendPadded(text, m_minute, 2);
    text += ':';
    AppendPadded(text, m_second, 2);
    if (m_milli != 0 || m_micro != 0 || m_nano != 0) text += ToFracString(m_milli, m_micro, m_nano);
  };
  switch (m_type) {
    case dt_dateTime:
      year();
      text += '-';
      month();
      text += '-';
      day();
      text += 'T';
      time();
      break;
    case dt_date:
      year();
      text += '-';
      month();
      text += '-';
      day();
      break;
    case dt_gYearMonth:
      year();
      text += '-';
      month();
      break;
    case dt_gYear: year(); break;
    case dt_time: time(); break;
    case dt_gDay:
      text += "---";
      day();
      break;
    case dt_gMonth:
      text += "--";
      month();
      break;
    case dt_gMonthDay:
      text += "--";
      month();
      text += '-';
      day();
      break;
    default: break;
  }
  return text;
}

std::string CDateTime::ZoneToString() const {
  if (!m_utc) return std::string();
  if (!m_hasTimeZone) return "Z";
  std::string text(1, m_zoneNegative ? '-' : '+');
  AppendPadded(text, static_cast<unsigned int>(std::abs(m_zoneHour)), 2);
  text += ':';
  AppendPadded(text, m_zoneMinute, 2);
  return text;
}

// ---- timeline ------------------------------------------------------------

void CDateTime::ToMoment(calendar::Moment& moment) const {
  moment = calendar::Moment();
  if (HasYear(m_type)) moment.year = m_year;
  if (HasMonth(m_type)) moment.month = m_month;
  if (HasDay(m_type)) moment.day = m_day;
  if (HasTime(m_type)) {
    moment.hour = m_hour;
    moment.minute = m_minute;
    moment.second = m_second;
    moment.milli = m_milli;
    moment.micro = m_micro;
    moment.nano = m_nano;
  }
}

void CDateTime::ToUtcMoment(calendar::Moment& moment) const {
  ToMoment(moment);
  if (m_hasTimeZone) MoveToUtc(moment, OffsetMinutes(), !HasYear(m_type));
}

// Writes back the fields this kind has; the others stay as they are.
void CDateTime::StoreMoment(const calendar::Moment& moment) {
  if (HasYear(m_type)) {
    if (moment.year < MIN_YEAR || moment.year > MAX_YEAR)
      throw CKoInvalidValueException(YearRangeMessage(moment.year));
    m_year = static_cast<std::int16_t>(moment.year);
  }
  if (HasMonth(m_type)) m_month = static_cast<std::uint8_t>(moment.month);
  if (HasDay(m_type)) m_day = static_cast<std::uint8_t>(moment.day);
  if (HasTime(m_type)) {
    m_hour = static_cast<std::uint8_t>(moment.hour);
    m_minute = static_cast<std::uint8_t>(moment.minute);
    m_second = static_cast<std::uint8_t>(moment.second);
    m_milli = static_cast<std::uint16_t>(moment.milli);
    m_micro = static_cast<std::uint16_t>(moment.micro);
    m_nano = static_cast<std::uint16_t>(moment.nano);
  }
}

CDateTime CDateTime::GetNormalized() const {
  CDateTime normalized(*this);
  if (m_hasTimeZone) {
    calendar::Moment moment;
    ToUtcMoment(moment);
    normalized.StoreMoment(moment);
    normalized.SetTimeZone(0, 0);
  }
  return normalized;
}

int Compare(const CDateTime& a, const CDateTime& b) {
  calendar::Moment ma, mb;
  a.ToMoment(ma);
  b.ToMoment(mb);
  return calendar::Compare(ma, PresenceOf(a.m_type), mb, PresenceOf(b.m_type));
}

int CDateTime::CompareTo(const CDateTime& other) const {
  calendar::Moment p, q;
  ToUtcMoment(p);
  other.ToUtcMoment(q);
  const calendar::Presence pp = PresenceOf(m_type), pq = PresenceOf(other.m_type);
  if (m_utc == other.m_utc) return calendar::Compare(p, pp, q, pq);

  // Only one side is anchored: compare with the other placed at the extreme zones.
  const bool qFixed = !HasYear(other.m_type), pFixed = !HasYear(m_type);
  if (m_utc) {
    calendar::Moment earliest = q, latest = q;
    MoveToUtc(earliest, kMaxZoneMinutes, qFixed);
    if (calendar::Compare(p, pp, earliest, pq) == 1) return 1;
    MoveToUtc(latest, -kMaxZoneMinutes, qFixed);
    return calendar::Compare(p, pp, latest, pq) == 2 ? 2 : 3;
  }
  calendar::Moment earliest = p, latest = p;
  MoveToUtc(earliest, kMaxZoneMinutes, pFixed);
  if (calendar::Compare(earliest, pp, q, pq) == 2) return 2;
  MoveToUtc(latest, -kMaxZoneMinutes, pFixed);
  return calendar::Compare(latest, pp, q, pq) == 1 ? 1 : 3;
}

bool CDateTime::operator<=(const CDateTime& other) const {
  const int result = CompareTo(other);
  return result == 0 || result == 1;
}

bool CDateTime::operator>=(const CDateTime& other) const {
  const int result = CompareTo(other);
  return result == 0 || result == 2;
}

// ---- arithmetic ----------------------------------------------------------

void CDateTime::AddDateTimeSpan(const CDateTimeSpan& span) {
  calendar::Moment moment;
  ToMoment(moment);
  calendar::AddSpan(moment, span, !HasYear(m_type));
  StoreMoment(moment);
}

CDateTime& CDateTime::operator+=(const CDateTimeSpan& span) {
  AddDateTimeSpan(span);
  return *this;
}

// a - d = a + (-d): subtracting a negative duration moves forwards.
CDateTime& CDateTime::operator-=(const CDateTimeSpan& span) {
  CDateTimeSpan negated(span);
  negated.Negate();
  AddDateTimeSpan(negated);
  return *this;
}

CDateTime CDateTime::operator+(const CDateTimeSpan& span) const {
  CDateTime result(*this);
  result += span;
  return result;
}

CDateTime CDateTime::operator-(const CDateTimeSpan& span) const {
  CDateTime result(*this);
  result -= span;
  return result;
}

CDateTimeSpan CDateTime::operator-(const CDateTime& other) const {
  if (m_type == dt_yearZero || other.m_type == dt_yearZero)
    throw CKoInvalidValueException("Date Not Set");
  calendar::Moment a, b;
  ToUtcMoment(a);
  other.ToUtcMoment(b);
  auto subSecond = [](const calendar::Moment& m) {
    return m.milli * 1000000LL + m.micro * 1000LL + m.nano;
  };
  long long seconds = calendar::SecondsSinceEpoch(a) - calendar::SecondsSinceEpoch(b);
  long long nanos = subSecond(a) - subSecond(b);
  if (seconds > 0 && nanos < 0) {
    --seconds;
    nanos += 1000000000;
  } else if (seconds < 0 && nanos > 0) {
    ++seconds;
    nanos -= 1000000000;
  }
  const bool negative = seconds < 0 || nanos < 0;
  seconds = std::llabs(seconds);
  nanos = std::llabs(nanos);
  CDateTimeSpan span(0, 0, static_cast<unsigned long>(seconds / 86400),
                     static_cast<unsigned long>(seconds / 3600 % 24),
                     static_cast<unsigned long long>(seconds / 60 % 60),
                     static_cast<unsigned long long>(seconds % 60),
                     static_cast<unsigned short>(nanos / 1000000),
                     static_cast<unsigned short>(nanos / 1000 % 1000),
                     static_cast<unsigned short>(nanos % 1000));
  if (negative) span.Negate();
  return span;
}

time_t CDateTime::GetTime() const {
  if (m_type != dt_dateTime && m_type != dt_date)
    throw CKoInvalidValueException(FormatString(
        "Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: %s.",
        TypeName(m_type)));
  Validate();
  calendar::Moment moment;
  ToUtcMoment(moment);
  // A date counts from the start of its (normalised) day; fractions are dropped.
  if (m_type == dt_date) moment.hour = moment.minute = moment.second = 0;
  return static_cast<time_t>(calendar::SecondsSinceEpoch(moment));
}

unsigned short CDateTime::GetDayOfYear() const {
  if (m_type != dt_dateTime && m_type != dt_date)
    throw CKoInvalidStateException(
        FormatString("Failed to GetDayOfYear. Invalid Date Type: %s.", TypeName(m_type)));
  Validate();
  const bool leapDayBefore = m_month > 2 && IsLeapYear(m_year);
  return static_cast<unsigned short>(g_monthDayInYear[m_month - 1] + m_day + (leapDayBefore ? 1 : 0));
}

unsigned char CDateTime::GetDayOfWeek() const {
  if (m_type != dt_dateTime && m_type != dt_date)
    throw CKoInvalidStateException(
        FormatString("Failed to GetDayOfWeek. Invalid Date Type: %s.", TypeName(m_type)));
  const long long days = calendar::FloorDiv(GetTime(), 86400);
  // 1970-01-01 was a Thursday; 1 = Sunday ... 7 = Saturday.
  return static_cast<unsigned char>(calendar::FloorMod(days + 4, 7) + 1);
}

// ---- free functions ------------------------------------------------------

bool IsLeapYear(int year) { return calendar::IsLeap(year); }

int GetQuotient(long long a, int b) {
  if (b == 0) throw CKoInvalidParamException("Division by zero");
  // The smallest long long divided by -1 traps; negate in unsigned arithmetic,
  // which keeps the low bits like any other quotient too wide for an int.
  if (b == -1) return static_cast<int>(0ULL - static_cast<unsigned long long>(a));
  return static_cast<int>(calendar::FloorDiv(a, b));
}

long long GetModulo(long long a, int b) {
  if (b == 0) throw CKoInvalidParamException("Division by zero");
  if (b == -1) return 0;  // and the remainder of that division traps as well
  return calendar::FloorMod(a, b);
}

}  // namespace KoXmlLib10
