#ifndef KOXMLLIB10_DATETIMESPAN_H
#define KOXMLLIB10_DATETIMESPAN_H

#include <cstdint>
#include <string>

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// An XSD duration. Components are kept exactly as written (90 minutes stays
// 90 minutes); the sign belongs to the whole duration.
class KOXML_API CDateTimeSpan {
 public:
  CDateTimeSpan();
  CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                unsigned long long minutes, unsigned long long seconds);
  CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days, unsigned long hours,
                unsigned long long minutes, unsigned long long seconds, unsigned short milli,
                unsigned short micro, unsigned short nano);
  CDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds);
  CDateTimeSpan(const CDateTimeSpan& other);
  CDateTimeSpan& operator=(const CDateTimeSpan& other);
  virtual ~CDateTimeSpan();

  void SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                       unsigned long hours, unsigned long long minutes, unsigned long long seconds);
  void SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                       unsigned long hours, unsigned long long minutes, unsigned long long seconds,
                       unsigned short milli, unsigned short micro, unsigned short nano);
  void SetDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds);

  unsigned short GetYears() const { return m_years; }
  unsigned long GetMonths() const { return m_months; }
  unsigned long GetDays() const { return m_days; }
  unsigned long GetHours() const { return m_hours; }
  unsigned long long GetMinutes() const { return m_minutes; }
  unsigned long long GetSeconds() const { return m_seconds; }
  unsigned short GetMilliSeconds() const { return m_milli; }
  unsigned short GetMicroSeconds() const { return m_micro; }
  unsigned short GetNanoSeconds() const { return m_nano; }

  void SetYears(unsigned short years) { m_years = years; }
  void SetMonths(unsigned long months) { m_months = static_cast<std::uint32_t>(months); }
  void SetDays(unsigned long days) { m_days = static_cast<std::uint32_t>(days); }
  void SetHours(unsigned long hours) { m_hours = static_cast<std::uint32_t>(hours); }
  void SetMinutes(unsigned long long minutes) { m_minutes = minutes; }
  void SetSeconds(unsigned long long seconds) { m_seconds = seconds; }
  void SetMilliSeconds(unsigned short milli) { m_milli = milli; }
  void SetMicroSeconds(unsigned short micro) { m_micro = micro; }
  void SetNanoSeconds(unsigned short nano) { m_nano = nano; }

  bool IsNegative() const { return m_negative; }
  void Negate() { m_negative = !m_negative; }
  // A copy whose sign is negative, whatever the sign of this one.
  CDateTimeSpan GetAsNegative() const;
  void Clear();

  void ParseXSDDuration(const char* s);
  std::string ToString() const;

  // XSD order of durations: 0 equal, 1 less, 2 greater, 3 indeterminate.
  int CompareTo(const CDateTimeSpan& other) const;
  bool operator==(const CDateTimeSpan& other) const { return CompareTo(other) == 0; }
  bool operator!=(const CDateTimeSpan& other) const { return CompareTo(other) != 0; }
  bool operator<(const CDateTimeSpan& other) const { return CompareTo(other) == 1; }
  bool operator>(const CDateTimeSpan& other) const { return CompareTo(other) == 2; }

 private:
  bool IsZero() const;

  std::uint16_t m_years = 0;
  std::uint32_t m_months = 0;
  std::uint32_t m_days = 0;
  std::uint32_t m_hours = 0;
  std::uint64_t m_minutes = 0;
  std::uint64_t m_seconds = 0;
  std::uint16_t m_milli = 0;
  std::uint16_t m_micro = 0;
  std::uint16_t m_nano = 0;
  bool m_negative = false;
};

}  // namespace KoXmlLib10

#endif
