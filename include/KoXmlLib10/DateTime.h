#ifndef KOXMLLIB10_DATETIME_H
#define KOXMLLIB10_DATETIME_H

#include <cstdint>
#include <ctime>
#include <string>

#include "KoXmlLib10/DateTimeSpan.h"
#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

constexpr short MIN_YEAR = -9999;
constexpr short MAX_YEAR = 9999;
// February allows 29 here; leap years are checked separately.
inline constexpr unsigned char g_monthMax[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
// Days before each month in a common year.
inline constexpr unsigned short g_monthDayInYear[13] = {0,   31,  59,  90,  120, 151, 181,
                                                        212, 243, 273, 304, 334, 365};

namespace calendar {
struct Moment;
}

class CDateTime;
// Field-wise comparison of two values as they are: 0, 1 (a < b), 2 (a > b), 3 indeterminate.
KOXML_API int Compare(const CDateTime& a, const CDateTime& b);

// One value class for the eight XSD date and time kinds; the type tag tells
// which fields are meaningful.
class KOXML_API CDateTime {
 public:
  enum DTType : std::int32_t {
    dt_yearZero = 0,
    dt_dateTime = 1,
    dt_date = 2,
    dt_gYearMonth = 3,
    dt_gYear = 4,
    dt_time = 5,
    dt_gDay = 6,
    dt_gMonth = 7,
    dt_gMonthDay = 8
  };

  CDateTime();
  CDateTime(DTType type);
  // The typed constructors leave the value unset when the fields are invalid.
  CDateTime(short y, unsigned char m, unsigned char d);
  CDateTime(short y, unsigned char m, unsigned char d, unsigned char h, unsigned char mi,
            unsigned char s, unsigned short milli = 0, unsigned short micro = 0,
            unsigned short nano = 0);
  CDateTime(const long& t);
  CDateTime(const char* s);
  CDateTime(const CDateTime& other);
  virtual ~CDateTime();

  CDateTime& operator=(const CDateTime& other);
  CDateTime& operator=(const long& t);

  static CDateTime GetCurrentTime();

  void SetDateTime(DTType t, short y, unsigned char m, unsigned char d, unsigned char h,
                   unsigned char mi, unsigned char s, unsigned short milli, unsigned short micro,
                   unsigned short nano);
  void SetDateTime(short y, unsigned char m, unsigned char d, unsigned char h, unsigned char mi,
                   unsigned char s, unsigned short milli = 0, unsigned short micro = 0,
                   unsigned short nano = 0);
  void SetDate(short y, unsigned char m, unsigned char d);
  void SetTime(unsigned char h, unsigned char mi, unsigned char s, unsigned short milli = 0,
               unsigned short micro = 0, unsigned short nano = 0);
  void SetFracTime(unsigned short milli, unsigned short micro, unsigned short nano);
  void SetGYear(short y);
  void SetGYearMonth(short y, unsigned char m);
  void SetGMonth(unsigned char m);
  void SetGMonthDay(unsigned char m, unsigned char d);
  void SetGDay(unsigned char d);
  void SetDateTime(const CDateTime& src, DTType t);
  static bool CheckConversion(DTType from, DTType to);

  short GetYear() const;
  void SetYear(short year);
  unsigned char GetMonth() const;
  void SetMonth(unsigned char month);
  unsigned char GetDay() const;
  void SetDay(unsigned char day);
  unsigned char GetHour() const;
  void SetHour(unsigned char hour);
  unsigned char GetMinute() const;
  void SetMinute(unsigned char minute);
  unsigned char GetSecond() const;
  void SetSecond(unsigned char second);
  unsigned short GetMilliSecond() const;
  void SetMilliSecond(unsigned short milli);
  unsigned short GetMicroSecond() const;
  void SetMicroSecond(unsigned short micro);
  unsigned short GetNanoSecond() const;
  void SetNanoSecond(unsigned short nano);
  double GetRealSecond() const;

  // IsUTC: any zone indication ("Z" or an offset); HasTimeZone: an explicit offset.
  bool IsUTC() const { return m_utc; }
  bool HasTimeZone() const { return m_hasTimeZone; }
  void SetUTC();
  void SetTimeZone(short hour, unsigned char minute);
  short GetZoneHour() const;
  unsigned char GetZoneMinute() const;

  DTType GetType() const { return m_type; }
  std::string GetTypeAsString() const;
  static std::string GetTypeAsString(DTType type);
  void Clear();
  void Validate() const;

  void ParseXSDDate(const char* s);
  void ParseXSDTime(const char* s);
  void ParseXSDDateTime(const char* s);
  void SetXSDDate(const char* s);
  void SetXSDTime(const char* s);
  void SetZone(const char* z);

  std::string ToString() const;
  // "s": the XSD form; null, "" and "G": the empty string; any other format:
  // "Unknown Format: " followed by the format. An unset value throws "Date Not Set".
  std::string ToString(const char* format) const;

  CDateTime GetNormalized() const;
  // XSD order: 0 equal, 1 less, 2 greater, 3 indeterminate.
  int CompareTo(const CDateTime& other) const;
  bool operator==(const CDateTime& other) const { return CompareTo(other) == 0; }
  bool operator!=(const CDateTime& other) const { return CompareTo(other) != 0; }
  bool operator<(const CDateTime& other) const { return CompareTo(other) == 1; }
  bool operator>(const CDateTime& other) const { return CompareTo(other) == 2; }
  bool operator<=(const CDateTime& other) const;
  bool operator>=(const CDateTime& other) const;

  void AddDateTimeSpan(const CDateTimeSpan& span);
  CDateTime& operator+=(const CDateTimeSpan& span);
  CDateTime& operator-=(const CDateTimeSpan& span);
  CDateTime operator+(const CDateTimeSpan& span) const;
  CDateTime operator-(const CDateTimeSpan& span) const;
  // Exact difference in days, hours, minutes and seconds; negative when `other` is later.
  CDateTimeSpan operator-(const CDateTime& other) const;

  time_t GetTime() const;
  unsigned short GetDayOfYear() const;
  unsigned char GetDayOfWeek() const;

 private:
  friend int Compare(const CDateTime& a, const CDateTime& b);
  void AssignTime(long t);
  void RequireField(bool present, const char* accessor) const;
  bool IsEmpty() const;
  std::string FieldsToString() const;
  std::string ZoneToString() const;
  int OffsetMinutes() const;
  void ToMoment(calendar::Moment& moment) const;
  void ToUtcMoment(calendar::Moment& moment) const;
  void StoreMoment(const calendar::Moment& moment);
  void DropAbsentFields();

  DTType m_type = dt_yearZero;
  std::int16_t m_year = 0;
  std::uint8_t m_month = 0;
  std::uint8_t m_day = 0;
  std::uint8_t m_hour = 0;
  std::uint8_t m_minute = 0;
  std::uint8_t m_second = 0;
  std::uint16_t m_milli = 0;
  std::uint16_t m_micro = 0;
  std::uint16_t m_nano = 0;
  bool m_utc = false;
  bool m_hasTimeZone = false;
  std::int16_t m_zoneHour = 0;
  std::uint8_t m_zoneMinute = 0;
  // The zone hour carries the sign of the offset, except for -00:01 ... -00:59.
  bool m_zoneNegative = false;
};

KOXML_API bool IsLeapYear(int year);
// Floor division and the matching modulo (the result has the sign of b).
KOXML_API int GetQuotient(long long a, int b);
KOXML_API long long GetModulo(long long a, int b);

}  // namespace KoXmlLib10

#endif
