#include "KoXmlLib10/Decimal.h"

#include <algorithm>
#include <cstdio>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "KoXmlLib10/Exceptions.h"
#include "types/NumberLimits.h"

namespace KoXmlLib10 {

namespace {

// Exponents are applied digit by digit, so they are bounded to keep absurd
// input such as "1e999999999" from allocating without limit.
constexpr unsigned int kMaxExponent = 9999;

int MaxDivider() { return std::max(0, CDecimal::m_maxDivider); }

bool IsWhitespace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

[[noreturn]] void ThrowInvalidChar(size_t position, const char* text) {
  throw CKoInvalidValueException(
      FormatString("The string representing a Decimal, contained an invalid char at position %d [%s]",
                   static_cast<int>(position), text));
}

// The pieces of decimal text: digits with whitespace removed, the sign and
// the signed exponent.
struct DecimalText {
  std::string integerDigits;
  std::string fractionDigits;
  bool negative = false;
  int exponent = 0;
};

DecimalText ScanDecimal(const char* s) {
  enum class Section { Integer, Fraction, Exponent };
  const std::string_view text = s ? s : "";
  DecimalText scanned;
  Section section = Section::Integer;
  bool exponentNegative = false;
  bool exponentStarted = false;
  unsigned int exponent = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    switch (section) {
      case Section::Integer:
        if (IsDigit(c)) scanned.integerDigits += c;
        else if (c == '-' || c == '+') scanned.negative = c == '-';
        else if (c == '.') section = Section::Fraction;
        else if (c == 'e' || c == 'E') section = Section::Exponent;
        else if (!IsWhitespace(c)) ThrowInvalidChar(i, s);
        break;
      case Section::Fraction:
        if (IsDigit(c)) scanned.fractionDigits += c;
        else if (c == 'e' || c == 'E') section = Section::Exponent;
        else if (!IsWhitespace(c)) ThrowInvalidChar(i, s);
        break;
      case Section::Exponent:
        if (IsDigit(c)) {
          exponentStarted = true;
          exponent = exponent * 10 + static_cast<unsigned int>(c - '0');
          if (exponent > kMaxExponent) ThrowInvalidChar(i, s);
        } else if (exponentStarted) {
          ThrowInvalidChar(i, s);
        } else if (c == '-' || c == '+') {
          exponentNegative = c == '-';
        } else if (!IsWhitespace(c)) {
          ThrowInvalidChar(i, s);
        }
        break;
    }
  }
  scanned.exponent = exponentNegative ? -static_cast<int>(exponent) : static_cast<int>(exponent);
  return scanned;
}

// Text that the general scan would read as plain digits: an optional leading
// sign, up to 18 integer digits, and optionally a point and up to 18 fraction
// digits. Each run then fits a 64-bit integer and needs no digit strings.
struct PlainDecimal {
  std::uint64_t integer = 0;
  std::uint64_t fraction = 0;
  int fractionDigits = 0;
  bool negative = false;
  bool scanned = false;
};

constexpr size_t kMaxPlainDigits = 18;

bool ScanPlainDecimal(const char* s, PlainDecimal& out) {
  if (!s) return false;
  const char* p = s;
  if (*p == '-' || *p == '+') out.negative = *p++ == '-';
  const char* digits = p;
  for (; IsDigit(*p); ++p) {
    if (static_cast<size_t>(p - digits) == kMaxPlainDigits) return false;
    out.integer = out.integer * 10 + static_cast<std::uint64_t>(*p - '0');
  }
  if (*p == '.') {
    digits = ++p;
    for (; IsDigit(*p); ++p) {
      if (static_cast<size_t>(p - digits) == kMaxPlainDigits) return false;
      out.fraction = out.fraction * 10 + static_cast<std::uint64_t>(*p - '0');
    }
    out.fractionDigits = static_cast<int>(p - digits);
  }
  out.scanned = *p == '\0';
  return out.scanned;
}

// The text CDecimal(double) parses: 13 fraction digits, and the newline is
// skipped as whitespace.
std::string PrintDouble(double d) {
  char buffer[1024];
  std::snprintf(buffer, sizeof buffer, "%.13f\n", d);
  return buffer;
}

// Is |remainder| above (1), equal to (0) or below (-1) half of 10^k, k >= 1?
int CompareWithHalf(const CBigInteger& remainder, unsigned int k) {
  const CBigInteger half = CBigInteger::Pow10(k - 1) * CBigInteger(5);
  const CBigInteger magnitude = remainder.GetAbs();
  if (magnitude == half) return 0;
  return magnitude < half ? -1 : 1;
}

}  // namespace

int CDecimal::m_maxDivider = 30;

// ---- construction ----------------------------------------------------------

CDecimal::CDecimal() : m_integer(0), m_fraction(0), m_divider(1) {}

CDecimal::CDecimal(int i) : m_integer(i), m_fraction(0), m_divider(1) {}

CDecimal::CDecimal(double d) : CDecimal(FromText(PrintDouble(d).c_str())) {}

CDecimal::CDecimal(const char* s) : CDecimal(FromText(s)) {}

CDecimal::CDecimal(const CBigInteger& integerPart) : m_integer(integerPart), m_fraction(0), m_divider(1) {}

CDecimal::CDecimal(const CBigInteger& integerPart, const CBigInteger& fraction, int divider) : CDecimal() {
  if (divider <= 0) {
    CBigInteger scaled = fraction;
    scaled.MultiplyPow10(static_cast<unsigned int>(-static_cast<long long>(divider)));
    *this = CDecimal(integerPart + scaled, 0);
    return;
  }
  // A fraction this far below the last kept digit cannot change the rounded
  // value, and building 10^divider for it could be enormous.
  const long long negligibleFrom = static_cast<long long>(CBigInteger::Position(fraction.m_digits)) + MaxDivider() + 1;
  if (divider > negligibleFrom) {
    *this = CDecimal(CBigInteger(integerPart), 0);
    return;
  }
  CBigInteger scaled = integerPart;
  scaled.MultiplyPow10(static_cast<unsigned int>(divider));
  *this = CDecimal(scaled + fraction, divider);
}

CDecimal::CDecimal(CBigInteger&& scaled, int divider)
    : m_integer(std::move(scaled)),
      m_fraction(m_integer.DividePow10(static_cast<unsigned int>(divider))),
      m_divider(divider) {
  Finish();
}

// ---- internal representation -----------------------------------------------

bool CDecimal::IsNegative() const { return m_integer.IsNegative() || m_fraction.IsNegative(); }

CBigInteger CDecimal::Scaled(int divider) const {
  CBigInteger scaled = m_integer;
  scaled.MultiplyPow10(static_cast<unsigned int>(divider));
  CBigInteger fraction = m_fraction;
  fraction.MultiplyPow10(static_cast<unsigned int>(divider - m_divider));
  return scaled += fraction;
}

void CDecimal::Finish() {
  Rationalise();
  if (m_divider > MaxDivider()) {
    ChangeFractionalDivider(MaxDivider());
    Rationalise();
  }
}

void CDecimal::ChangeFractionalDivider(int d) {
  d = std::max(d, 0);
  if (d >= m_divider) {
    m_fraction.MultiplyPow10(static_cast<unsigned int>(d - m_divider));
    m_divider = d;
    return;
  }
  const unsigned int k = static_cast<unsigned int>(m_divider - d);
  const CBigInteger dropped = m_fraction.DividePow10(k);
  // Round to the nearest; an exact half goes toward zero.
  if (CompareWithHalf(dropped, k) > 0) m_fraction += CBigInteger(dropped.IsNegative() ? -1 : 1);
  // A fraction that rounded up to 10^d moves into the integer part.
  CBigInteger fraction = m_fraction.DividePow10(static_cast<unsigned int>(d));
  m_integer += m_fraction;
  m_fraction = std::move(fraction);
  m_divider = d;
}

void CDecimal::Normalize(CDecimal& a, CDecimal& b) {
  const int divider = std::max(a.m_divider, b.m_divider);
  a.ChangeFractionalDivider(divider);
  b.ChangeFractionalDivider(divider);
}

void CDecimal::Rationalise() {
  if (m_divider < 1) {
    m_fraction.MultiplyPow10(static_cast<unsigned int>(1 - m_divider));
    m_divider = 1;
  }
  if (m_fraction.IsZero()) {
    m_divider = 1;
    return;
  }
  const unsigned int drop = std::min(m_fraction.TrailingZeros(), static_cast<unsigned int>(m_divider - 1));
  if (drop == 0) return;
  m_fraction.DividePow10(drop);
  m_divider -= static_cast<int>(drop);
}

// ---- text ------------------------------------------------------------------

void CDecimal::Parse(const char* s) { *this = FromText(s); }

CDecimal CDecimal::FromText(const char* s) {
  PlainDecimal plain;
  if (ScanPlainDecimal(s, plain)) {
    // The parts as the general path leaves them: fraction trailing zeros
    // dropped down to one digit, zero parts unsigned.
    while (plain.fractionDigits > 1 && plain.fraction % 10 == 0) {
      plain.fraction /= 10;
      --plain.fractionDigits;
    }
  }
  // More fraction digits than are kept need the general path's rounding.
  if (plain.scanned && (plain.fraction == 0 || plain.fractionDigits <= MaxDivider())) {
    const std::int32_t sign = plain.negative ? -1 : 1;
    CDecimal value;
    CBigInteger::BuildDWORDLONG(plain.integer, value.m_integer.m_digits);
    value.m_integer.m_sign = plain.integer != 0 ? sign : 1;
    if (plain.fraction != 0) {
      CBigInteger::BuildDWORDLONG(plain.fraction, value.m_fraction.m_digits);
      value.m_fraction.m_sign = sign;
      value.m_divider = plain.fractionDigits;
    }
    return value;
  }
  const DecimalText text = ScanDecimal(s);
  const int fractionDigits = static_cast<int>(text.fractionDigits.size());
  CBigInteger::Digits magnitude;
  CBigInteger::Build(text.integerDigits + text.fractionDigits, magnitude);
  CBigInteger scaled(text.negative ? -1 : 1, std::move(magnitude));

  int divider = fractionDigits - text.exponent;
  if (divider < 0) {
    scaled.MultiplyPow10(static_cast<unsigned int>(-divider));
    divider = 0;
  } else if (text.exponent < 0 && divider > MaxDivider() + 2) {
    // Dividing by a power of ten keeps two guard digits, truncated, before
    // the final rounding; so does parsing a negative exponent.
    scaled.DividePow10(static_cast<unsigned int>(divider - (MaxDivider() + 2)));
    divider = MaxDivider() + 2;
  }
  return CDecimal(std::move(scaled), divider);
}

std::string CDecimal::ToString() const {
  if (m_fraction.IsZero()) return m_integer.ToString();
  // One limb per part and at most nine fraction digits: the everyday value,
  // printed without intermediate strings.
  const CBigInteger::Digits& integerLimbs = m_integer.m_digits;
  const CBigInteger::Digits& fractionLimbs = m_fraction.m_digits;
  if (integerLimbs.size() == 1 && fractionLimbs.size() == 1 && m_divider <= static_cast<int>(CBigInteger::LIMB_DIGITS)) {
    char buffer[2 * CBigInteger::LIMB_DIGITS + 2];
    char* p = buffer;
    if (IsNegative()) *p++ = '-';
    p = std::to_chars(p, buffer + sizeof buffer, integerLimbs[0]).ptr;
    *p++ = '.';
    char* fractionStart = p;
    p = std::to_chars(p, buffer + sizeof buffer, fractionLimbs[0]).ptr;
    const int written = static_cast<int>(p - fractionStart);
    if (written < m_divider) {
      const int pad = m_divider - written;
      std::memmove(fractionStart + pad, fractionStart, static_cast<size_t>(written));
      std::memset(fractionStart, '0', static_cast<size_t>(pad));
      p += pad;
    }
    return std::string(buffer, p);
  }
  std::string text = IsNegative() ? "-" : "";
  m_integer.AppendMagnitude(text);
  text += '.';
  std::string fraction;
  m_fraction.AppendMagnitude(fraction);
  if (fraction.size() < static_cast<size_t>(m_divider)) text.append(m_divider - fraction.size(), '0');
  return text += fraction;
}

std::string CDecimal::ToString(int places) const {
  places = std::max(places, 0);
  CBigInteger magnitude = Scaled(m_divider).GetAbs();
  if (places < m_divider) {
    const unsigned int k = static_cast<unsigned int>(m_divider - places);
    // Round half away from zero.
    if (CompareWithHalf(magnitude.DividePow10(k), k) >= 0) magnitude += CBigInteger(1);
  } else {
    magnitude.MultiplyPow10(static_cast<unsigned int>(places - m_divider));
  }
  std::string digits;
  magnitude.AppendMagnitude(digits);
  if (places == 0) return (IsNegative() && !magnitude.IsZero() ? "-" : "") + digits;
  if (digits.size() <= static_cast<size_t>(places)) digits.insert(0, places + 1 - digits.size(), '0');
  digits.insert(digits.size() - places, 1, '.');
  return (IsNegative() ? "-" : "") + digits;
}

// ---- arithmetic ------------------------------------------------------------

CDecimal CDecimal::operator+(const CDecimal& other) const {
  const int divider = std::max(m_divider, other.m_divider);
  return CDecimal(Scaled(divider) + other.Scaled(divider), divider);
}

CDecimal CDecimal::operator-(const CDecimal& other) const { return *this + other.GetNegative(); }

CDecimal CDecimal::operator*(const CDecimal& other) const {
  return CDecimal(Scaled(m_divider) * other.Scaled(other.m_divider), m_divider + other.m_divider);
}

CDecimal CDecimal::operator/(const CDecimal& other) const {
  const int divider = std::max(m_divider, other.m_divider);
  const int quotientDivider = MaxDivider() + 2;
  CBigInteger dividend = Scaled(divider);
  dividend.MultiplyPow10(static_cast<unsigned int>(quotientDivider));
  return CDecimal(dividend / other.Scaled(divider), quotientDivider);
}

CDecimal& CDecimal::operator+=(const CDecimal& other) { return *this = *this + other; }
CDecimal& CDecimal::operator-=(const CDecimal& other) { return *this = *this - other; }
CDecimal& CDecimal::operator*=(const CDecimal& other) { return *this = *this * other; }
CDecimal& CDecimal::operator/=(const CDecimal& other) { return *this = *this / other; }

CDecimal& CDecimal::operator++() { return *this += CDecimal(1); }
CDecimal& CDecimal::operator--() { return *this -= CDecimal(1); }

CDecimal CDecimal::operator++(int) {
  CDecimal previous(*this);
  ++*this;
  return previous;
}

CDecimal CDecimal::operator--(int) {
  CDecimal previous(*this);
  --*this;
  return previous;
}

void CDecimal::Negate() {
  m_integer.Negate();
  m_fraction.Negate();
}

CDecimal CDecimal::GetNegative() const {
  CDecimal copy(*this);
  copy.Negate();
  return copy;
}

// ---- comparison ------------------------------------------------------------

int CDecimal::CompareTo(const CDecimal& other) const {
  // Integer parts decide on their own: the fraction never reaches a unit.
  if (const int order = m_integer.CompareTo(other.m_integer)) return order;
  if (m_divider == other.m_divider) return m_fraction.CompareTo(other.m_fraction);
  const CBigInteger left = Scaled(std::max(m_divider, other.m_divider));
  const CBigInteger right = other.Scaled(std::max(m_divider, other.m_divider));
  return left.CompareTo(right);
}

bool CDecimal::operator==(const CDecimal& other) const { return CompareTo(other) == 0; }
bool CDecimal::operator!=(const CDecimal& other) const { return CompareTo(other) != 0; }
bool CDecimal::operator<(const CDecimal& other) const { return CompareTo(other) < 0; }
bool CDecimal::operator<=(const CDecimal& other) const { return CompareTo(other) <= 0; }
bool CDecimal::operator>(const CDecimal& other) const { return CompareTo(other) > 0; }
bool CDecimal::operator>=(const CDecimal& other) const { return CompareTo(other) >= 0; }

// ---- conversions -----------------------------------------------------------

double CDecimal::ToDouble() const {
  const NumberLimits& limits = GetNumberLimits();
  if (m_integer > limits.maxDouble || m_integer < limits.minDouble)
    throw CKoOverFlowException("The Decimal value if to large to fit into a Double");
  return std::strtod(ToString().c_str(), nullptr);
}

long CDecimal::ToLong() const {
  const CBigInteger value = ToBigInteger();
  const NumberLimits& limits = GetNumberLimits();
  if (value > limits.maxLong || value < limits.minLong)
    throw CKoOverFlowException("The Decimal value if to large to fit into a LONG");
  return std::atoi(value.ToString().c_str());
}

long long CDecimal::ToLongLong() const {
  const CBigInteger value = ToBigInteger();
  const NumberLimits& limits = GetNumberLimits();
  if (value > limits.maxLongLong || value < limits.minLongLong)
    throw CKoOverFlowException("The Decimal value if to large to fit into a LONGLONG");
  return std::strtoll(value.ToString().c_str(), nullptr, 10);
}

CBigInteger CDecimal::ToBigInteger() const {
  CDecimal rounded(*this);
  rounded.ChangeFractionalDivider(0);
  return rounded.m_integer;
}

}  // namespace KoXmlLib10
