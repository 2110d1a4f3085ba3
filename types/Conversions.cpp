#include "KoXmlLib10/Conversions.h"

#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

#include "KoXmlLib10/Exceptions.h"
#include "types/RuledText.h"

namespace KoXmlLib10 {

namespace {

using WhitespaceRule = CWhitespaceUtils::WhitespaceRule;

[[noreturn]] void FailTooLarge(const std::string& text, const char* kind) {
  throw CKoInvalidValueException(
      FormatString("The value [%s] is to large to fit in a %s", text.c_str(), kind));
}

[[noreturn]] void FailConvert(const std::string& text, const char* kind) {
  throw CKoInvalidValueException(
      FormatString("The value [%s] can not be converted to a %s", text.c_str(), kind));
}

// Runs a strtoX function with the C library's grammar: leading sign and
// whitespace accepted, empty text gives 0, anything left over is an error.
template <class T, class Parse>
T ParseInteger(const std::string& t, const char* kind, Parse parse) {
  errno = 0;
  char* end = nullptr;
  const T value = parse(t.c_str(), &end, 10);
  if (errno == ERANGE) FailTooLarge(t, kind);
  if (*end != '\0') FailConvert(t, kind);
  return value;
}

bool StartsWithMinus(const std::string& t) {
  const size_t first = t.find_first_not_of(" \t\n\r\f\v");
  return first != std::string::npos && t[first] == '-';
}

std::string FormatNumber(const char* format, size_t bufferSize, ...)
    __attribute__((format(printf, 1, 3)));

std::string FormatNumber(const char* format, size_t bufferSize, ...) {
  char buffer[96];
  va_list args;
  va_start(args, bufferSize);
  const int written = std::vsnprintf(buffer, bufferSize, format, args);
  va_end(args);
  if (written < 0) return std::string();
  return std::string(buffer, std::min(static_cast<size_t>(written), bufferSize - 1));
}

size_t SkipDigits(std::string_view s, size_t pos, size_t maxDigits) {
  const size_t start = pos;
  while (pos < s.size() && s[pos] >= '0' && s[pos] <= '9' && pos - start < maxDigits) ++pos;
  return pos;
}

// True for a printf format whose only conversion takes one double: flags,
// width and precision of at most three digits (larger ones only burn time in
// a fixed-size buffer), an optional 'l', then e, f, g or a in either case.
bool IsDoubleFormat(std::string_view f) {
  int conversions = 0;
  for (size_t i = 0; i < f.size(); ++i) {
    if (f[i] != '%') continue;
    if (++i < f.size() && f[i] == '%') continue;
    while (i < f.size() && std::strchr("-+ #0", f[i]) && f[i] != '\0') ++i;
    i = SkipDigits(f, i, 3);
    if (i < f.size() && f[i] == '.') i = SkipDigits(f, i + 1, 3);
    if (i < f.size() && f[i] == 'l') ++i;
    if (i >= f.size() || f[i] == '\0' || !std::strchr("eEfFgGaA", f[i])) return false;
    ++conversions;
  }
  return conversions == 1;
}

std::string RealToString(double value, double max, const std::string& format,
                         const char* defaultFormat, size_t bufferSize) {
  if (std::isnan(value)) return "NaN";
  if (value < -max) return "-INF";
  if (value > max) return "INF";
  if (format.empty()) return FormatNumber(defaultFormat, bufferSize, value);
  if (format.find('\0') != std::string::npos || !IsDoubleFormat(format))
    throw CKoInvalidParamException(
        FormatString("The format [%s] does not print one floating-point value", format.c_str()));
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  return FormatNumber(format.c_str(), bufferSize, value);
#pragma GCC diagnostic pop
}

double ParseReal(const std::string& t, const char* kind) {
  if (t.empty() || t == "NaN" || t == "1.#QNAN" || t == "-NAN")
    return std::numeric_limits<double>::quiet_NaN();
  if (t == "-INF") return -std::numeric_limits<double>::infinity();
  if (t == "INF") return std::numeric_limits<double>::infinity();
  char* end = nullptr;
  const double value = std::strtod(t.c_str(), &end);
  if (*end != '\0') FailConvert(t, kind);
  return value;
}

template <class Parse>
CDateTime ParseDate(const std::string& t, CDateTime::DTType type, Parse parse) {
  CDateTime value(type);
  (value.*parse)(t.c_str());
  return value;
}

}  // namespace

// ---- to text -----------------------------------------------------------------

std::string CConversions::hexBinaryToString(const CBinaryData& value) { return value.GetAsHexString(); }
std::string CConversions::base64BinaryToString(const CBinaryData& value) { return value.GetAsBase64(); }
std::string CConversions::i1ToString(char value) { return FormatNumber("%d", 32, value); }
std::string CConversions::i2ToString(short value) { return FormatNumber("%d", 32, value); }
std::string CConversions::i4ToString(long value) { return FormatNumber("%ld", 32, value); }
std::string CConversions::i8ToString(long long value) { return FormatNumber("%lld", 96, value); }
std::string CConversions::ui1ToString(unsigned char value) { return FormatNumber("%u", 32, value); }
std::string CConversions::ui2ToString(unsigned short value) { return FormatNumber("%u", 32, value); }
std::string CConversions::ui4ToString(unsigned long value) { return FormatNumber("%lu", 32, value); }
std::string CConversions::ui8ToString(unsigned long long value) { return FormatNumber("%llu", 96, value); }

std::string CConversions::r4ToString(float value) { return r4ToString(value, std::string()); }
std::string CConversions::r8ToString(double value) { return r8ToString(value, std::string()); }

std::string CConversions::r4ToString(float value, const std::string& format) {
  return RealToString(value, FLT_MAX, format, "%.7g", 32);
}

std::string CConversions::r8ToString(double value, const std::string& format) {
  return RealToString(value, DBL_MAX, format, "%.16g", 48);
}

std::string CConversions::durationToString(const CDateTimeSpan& value) { return value.ToString(); }
std::string CConversions::yearMonthToString(const CDateTime& value) { return value.ToString("s"); }
std::string CConversions::monthDayToString(const CDateTime& value) { return value.ToString("s"); }
std::string CConversions::dateToString(const CDateTime& value) { return value.ToString("s"); }
std::string CConversions::datetimeToString(const CDateTime& value) { return value.ToString("s"); }
std::string CConversions::timeToString(const CDateTime& value) { return value.ToString("s"); }
std::string CConversions::yearToString(unsigned short value) { return FormatNumber("%u", 10, value); }
std::string CConversions::monthToString(unsigned char value) { return FormatNumber("--%02u", 10, value); }
std::string CConversions::dayToString(unsigned char value) { return FormatNumber("---%02u", 10, value); }
std::string CConversions::charToString(char value) { return std::string(1, value); }
std::string CConversions::stringToString(const std::string& value) { return value; }
std::string CConversions::booleanToString(bool value) { return value ? "true" : "false"; }
std::string CConversions::decimalToString(const CDecimal& value) { return value.ToString(); }

std::string CConversions::decimalToString(const CDecimal& value, const std::string& format) {
  return format.empty() ? value.ToString() : value.ToString(std::atoi(format.c_str()));
}

std::string CConversions::integerToString(const CBigInteger& value) { return value.ToString(); }

// ---- from text ---------------------------------------------------------------

long long CConversions::i8FromString(const std::string& text, WhitespaceRule rule) {
  return ParseInteger<long long>(CRuledText(rule, text), "i8", std::strtoll);
}

unsigned long long CConversions::ui8FromString(const std::string& text, WhitespaceRule rule) {
  return ParseInteger<unsigned long long>(CRuledText(rule, text), "ui8",
                                          std::strtoull);
}

long CConversions::i4FromString(const std::string& text, WhitespaceRule rule) {
  const CRuledText ruled(rule, text);
  const std::string& t = ruled.Get();
  const long value = ParseInteger<long>(t, "i4", std::strtol);
  if (value < INT32_MIN || value > INT32_MAX) FailTooLarge(t, "i4");
  return value;
}

// The 32-bit strtoul grammar on a wider unsigned long: the magnitude must fit
// in 32 bits, and a leading minus wraps it within 32 bits ('-1' is 4294967295).
unsigned long CConversions::ui4FromString(const std::string& text, WhitespaceRule rule) {
  const CRuledText ruled(rule, text);
  const std::string& t = ruled.Get();
  const unsigned long value = ParseInteger<unsigned long>(t, "ui4", std::strtoul);
  const bool negative = StartsWithMinus(t);
  const unsigned long magnitude = negative ? 0 - value : value;
  if (magnitude > UINT32_MAX) FailTooLarge(t, "ui4");
  return negative ? static_cast<std::uint32_t>(0u - static_cast<std::uint32_t>(magnitude)) : value;
}

short CConversions::i2FromString(const std::string& text, WhitespaceRule rule) {
  const long value = i4FromString(text, rule);
  if (value < INT16_MIN || value > INT16_MAX) FailTooLarge(text, "i2");
  return static_cast<short>(value);
}

char CConversions::i1FromString(const std::string& text, WhitespaceRule rule) {
  const long value = i4FromString(text, rule);
  if (value < INT8_MIN || value > INT8_MAX) FailTooLarge(text, "i1");
  return static_cast<char>(value);
}

unsigned short CConversions::ui2FromString(const std::string& text, WhitespaceRule rule) {
  const unsigned long value = ui4FromString(text, rule);
  if (value > UINT16_MAX) FailTooLarge(text, "ui2");
  return static_cast<unsigned short>(value);
}

unsigned char CConversions::ui1FromString(const std::string& text, WhitespaceRule rule) {
  const unsigned long value = ui4FromString(text, rule);
  if (value > UINT8_MAX) FailTooLarge(text, "ui1");
  return static_cast<unsigned char>(value);
}

double CConversions::r8FromString(const std::string& text, WhitespaceRule rule) {
  return ParseReal(CRuledText(rule, text), "r8");
}

float CConversions::r4FromString(const std::string& text, WhitespaceRule rule) {
  return static_cast<float>(ParseReal(CRuledText(rule, text), "r4"));
}

bool CConversions::booleanFromString(const std::string& text, WhitespaceRule rule) {
  const CRuledText ruled(rule, text);
  const std::string& t = ruled.Get();
  const char* s = t.c_str();
  if (strcasecmp(s, "true") == 0 || strcasecmp(s, "1") == 0) return true;
  if (strcasecmp(s, "false") == 0 || strcasecmp(s, "0") == 0) return false;
  throw CKoInvalidValueException(FormatString(
      "A Boolean Value read from an XML document was invalid [%s]. Valid values are 'true', "
      "'false', '1', or '0'",
      text.c_str()));
}

char CConversions::charFromString(const std::string& text, WhitespaceRule rule) {
  const CRuledText ruled(rule, text);
  const std::string& t = ruled.Get();
  if (t.size() != 1)
    throw CKoInvalidValueException(FormatString(
        "The value [%s] can not be a char as it is either empty of greater than 1 char long",
        t.c_str()));
  return t[0];
}

std::string CConversions::stringFromString(const std::string& text, WhitespaceRule rule) {
  return CRuledText(rule, text).Get();
}

CDecimal CConversions::decimalFromString(const std::string& text, WhitespaceRule rule) {
  return CDecimal(CRuledText(rule, text).c_str());
}

CBigInteger CConversions::integerFromString(const std::string& text, WhitespaceRule rule) {
  return CBigInteger(CRuledText(rule, text).c_str());
}

CDateTimeSpan CConversions::durationFromString(const std::string& text, WhitespaceRule rule) {
  CDateTimeSpan value;
  value.ParseXSDDuration(CRuledText(rule, text).c_str());
  return value;
}

CBinaryData CConversions::hexBinaryFromString(const std::string& text, WhitespaceRule rule) {
  CBinaryData value;
  value.SetAsHexString(CRuledText(rule, text).c_str());
  return value;
}

CBinaryData CConversions::base64BinaryFromString(const std::string& text, WhitespaceRule rule) {
  CBinaryData value;
  value.SetAsBase64(CRuledText(rule, text).c_str());
  return value;
}

CDateTime CConversions::dateFromString(const std::string& text, WhitespaceRule rule) {
  return ParseDate(CRuledText(rule, text), CDateTime::dt_date,
                   &CDateTime::ParseXSDDate);
}

CDateTime CConversions::timeFromString(const std::string& text, WhitespaceRule rule) {
  return ParseDate(CRuledText(rule, text), CDateTime::dt_time,
                   &CDateTime::ParseXSDTime);
}

CDateTime CConversions::datetimeFromString(const std::string& text, WhitespaceRule rule) {
  return ParseDate(CRuledText(rule, text), CDateTime::dt_dateTime,
                   &CDateTime::ParseXSDDateTime);
}

CDateTime CConversions::yearMonthFromString(const std::string& text, WhitespaceRule rule) {
  return ParseDate(CRuledText(rule, text), CDateTime::dt_gYearMonth,
                   &CDateTime::ParseXSDDate);
}

CDateTime CConversions::monthDayFromString(const std::string& text, WhitespaceRule rule) {
  return ParseDate(CRuledText(rule, text), CDateTime::dt_gMonthDay,
                   &CDateTime::ParseXSDDate);
}

unsigned short CConversions::yearFromString(const std::string& text, WhitespaceRule rule) {
  const CDateTime value = ParseDate(CRuledText(rule, text), CDateTime::dt_gYear,
                                    &CDateTime::ParseXSDDate);
  return static_cast<unsigned short>(value.GetYear());
}

unsigned char CConversions::monthFromString(const std::string& text, WhitespaceRule rule) {
  return ParseDate(CRuledText(rule, text), CDateTime::dt_gMonth,
                   &CDateTime::ParseXSDDate)
      .GetMonth();
}

unsigned char CConversions::dayFromString(const std::string& text, WhitespaceRule rule) {
  return ParseDate(CRuledText(rule, text), CDateTime::dt_gDay,
                   &CDateTime::ParseXSDDate)
      .GetDay();
}

}  // namespace KoXmlLib10
