#ifndef KOXMLLIB10_DECIMAL_H
#define KOXMLLIB10_DECIMAL_H

#include <string>

#include "KoXmlLib10/BigInteger.h"
#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// Exact decimal number behind xs:decimal values and the decimal facets:
// integer part + fraction / 10^divider. Both parts carry the sign of the
// whole value (zero parts are unsigned, so -0.5 is integer 0, fraction -5).
//
// After parsing and after every arithmetic operation the divider is at least
// 1 and at most m_maxDivider, and the fraction has no trailing zero digit
// beyond the first (1.500 is held as 1, 5, 1). Results that need more
// fraction digits are rounded to the nearest, halves toward zero.
class KOXML_API CDecimal {
 public:
  // The greatest number of fraction digits kept.
  static int m_maxDivider;

  CDecimal();
  CDecimal(int i);
  // The value printed with 13 fraction digits, then parsed.
  CDecimal(double d);
  CDecimal(const char* s);
  CDecimal(const CBigInteger& integerPart);
  // The value integerPart + fraction / 10^divider, brought to the invariants
  // above (a divider below 1 scales the fraction up instead).
  CDecimal(const CBigInteger& integerPart, const CBigInteger& fraction, int divider);
  // Defined here so that the values of a document are copied and destroyed
  // without a call into the library.
  CDecimal(const CDecimal& other) = default;
  CDecimal(CDecimal&& other) noexcept = default;
  CDecimal& operator=(const CDecimal& other) = default;
  CDecimal& operator=(CDecimal&& other) noexcept = default;
  virtual ~CDecimal() = default;

  // Throws CKoInvalidValueException naming the position of the first bad
  // character; the value is unchanged then.
  void Parse(const char* s);
  std::string ToString() const;
  // Exactly `places` fraction digits, rounded half away from zero; a negative
  // value keeps its sign even when it prints as zero ("-0.0"). With no places
  // the rounded integer is printed without a point, and zero without a sign.
  std::string ToString(int places) const;

  CDecimal operator+(const CDecimal& other) const;
  CDecimal operator-(const CDecimal& other) const;
  CDecimal operator*(const CDecimal& other) const;
  // Truncated after m_maxDivider + 2 fraction digits, then rounded.
  CDecimal operator/(const CDecimal& other) const;
  CDecimal& operator+=(const CDecimal& other);
  CDecimal& operator-=(const CDecimal& other);
  CDecimal& operator*=(const CDecimal& other);
  CDecimal& operator/=(const CDecimal& other);
  CDecimal& operator++();
  CDecimal operator++(int);
  CDecimal& operator--();
  CDecimal operator--(int);
  void Negate();
  CDecimal GetNegative() const;

  bool operator==(const CDecimal& other) const;
  bool operator!=(const CDecimal& other) const;
  bool operator<(const CDecimal& other) const;
  bool operator<=(const CDecimal& other) const;
  bool operator>(const CDecimal& other) const;
  bool operator>=(const CDecimal& other) const;

  // Each throws CKoOverFlowException when the value is out of range. ToLong
  // checks the 32-bit range of MIN_LONG..MAX_LONG; ToLong, ToLongLong and
  // ToBigInteger round to the nearest integer, halves toward zero.
  double ToDouble() const;
  long ToLong() const;
  long long ToLongLong() const;
  CBigInteger ToBigInteger() const;

  // Rescales to exactly d fraction digits (d below 0 counts as 0), rounding
  // to the nearest with halves toward zero when digits are dropped.
  void ChangeFractionalDivider(int d);
  static void Normalize(CDecimal& a, CDecimal& b);
  void Rationalise();

 private:
  // The value scaled / 10^divider (divider >= 0), brought to the invariants.
  CDecimal(CBigInteger&& scaled, int divider);
  static CDecimal FromText(const char* s);

  bool IsNegative() const;
  // The value times 10^divider (divider >= m_divider): an exact integer.
  CBigInteger Scaled(int divider) const;
  void Finish();
  int CompareTo(const CDecimal& other) const;

  CBigInteger m_integer;
  CBigInteger m_fraction;
  int m_divider;
};

}  // namespace KoXmlLib10

#endif
