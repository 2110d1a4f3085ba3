#ifndef KOXMLLIB10_BIGINTEGER_H
#define KOXMLLIB10_BIGINTEGER_H

#include <cstdint>
#include <string>
#include <vector>

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

class CDecimal;

// Unbounded signed integer behind xs:integer values and the two halves of a
// CDecimal. Zero never carries a negative sign.
//
// The magnitude is held in base 10^9 limbs: decimal text converts in linear
// time, and values of hundreds of digits multiply and divide cheaply.
class KOXML_API CBigInteger {
 public:
  // A magnitude: limbs below 10^9, least significant first. Zero is {0};
  // a non-zero value never has a zero limb on top.
  using Digits = std::vector<std::uint32_t>;
  static constexpr std::uint32_t LIMB_BASE = 1000000000u;
  static constexpr unsigned int LIMB_DIGITS = 9;

  CBigInteger(int i = 0);
  // Rounds to the nearest integer, halves toward zero (2.5 gives 2).
  // Infinity and NaN throw CKoInvalidValueException.
  CBigInteger(double d);
  CBigInteger(const char* s);
  // Rounds to the nearest integer, halves toward zero.
  CBigInteger(const CDecimal& d);
  CBigInteger(const CBigInteger& other);
  CBigInteger(CBigInteger&& other) noexcept;
  CBigInteger& operator=(const CBigInteger& other);
  CBigInteger& operator=(CBigInteger&& other) noexcept;
  virtual ~CBigInteger();

  // Plain integer text ("-0042", "  7  ") is read directly; anything else
  // goes through CDecimal and is rounded like CBigInteger(const CDecimal&).
  void Parse(const char* s);
  std::string ToString() const;

  CBigInteger operator+(const CBigInteger& other) const;
  CBigInteger operator-(const CBigInteger& other) const;
  CBigInteger operator*(const CBigInteger& other) const;
  // Truncates toward zero; throws on a zero divisor.
  CBigInteger operator/(const CBigInteger& other) const;
  // Takes the dividend's sign; throws on a divisor that is not positive.
  CBigInteger operator%(const CBigInteger& other) const;
  CBigInteger& operator+=(const CBigInteger& other);
  CBigInteger& operator-=(const CBigInteger& other);
  CBigInteger& operator*=(const CBigInteger& other);
  // Both throw on a divisor that is not positive.
  CBigInteger& operator/=(const CBigInteger& other);
  CBigInteger& operator%=(const CBigInteger& other);

  // Unary minus negates this value in place and returns it.
  CBigInteger& operator-();
  void Negate();
  void Abs();
  CBigInteger GetNegative() const;
  CBigInteger GetAbs() const;
  // The integer square root (rounded down); throws for a negative value.
  CBigInteger SquareRoot() const;
  static CBigInteger Pow10(unsigned int n);

  bool operator==(const CBigInteger& other) const;
  bool operator!=(const CBigInteger& other) const;
  bool operator<(const CBigInteger& other) const;
  bool operator<=(const CBigInteger& other) const;
  bool operator>(const CBigInteger& other) const;
  bool operator>=(const CBigInteger& other) const;

  // Throws CKoInvalidValueException outside the range of int.
  operator int() const;

  // Magnitude helpers. Inputs are limb vectors as described at Digits.
  static int Compare(const Digits& a, const Digits& b);  // -1, 0 or 1
  static void Add(Digits& a, const Digits& b);            // a += b
  static void Subtract(Digits& a, const Digits& b);       // a -= b, needs a >= b
  static void Multiply(Digits& a, std::uint32_t factor);  // a *= factor
  static Digits Multiply(const Digits& a, const Digits& b);
  // Truncated quotient and remainder; a zero divisor gives q = 0, r = a.
  static void Divide(const Digits& a, const Digits& b, Digits& quotient, Digits& remainder);
  static void ShiftLeft(Digits& v, unsigned int n);  // v *= 10^n
  static void Pow10(unsigned int n, Digits& v);      // v = 10^n
  static unsigned int Position(const Digits& v);     // decimal digits, at least 1
  static void Clean(Digits& v);                      // drops zero limbs on top
  static void Build(unsigned int value, Digits& v);
  static void Build(const std::string& digits, Digits& v);  // non-digits are skipped
  static void BuildDouble(double value, Digits& v);  // integral part of |value|; 0 if not finite
  static void BuildDWORDLONG(unsigned long long value, Digits& v);

  // Range limits of the decimal conversions, built from their text once the
  // library is loaded. The library itself reaches them through accessors
  // that build them on first use, so that no static initialiser depends on
  // the order in which translation units are initialised.
  static const CBigInteger& MAX_LONG;
  static const CBigInteger& MIN_LONG;
  static const CBigInteger& MAX_LONGLONG;
  static const CBigInteger& MIN_LONGLONG;
  static const CBigInteger& MAX_DOUBLE;
  static const CBigInteger& MIN_DOUBLE;

 private:
  friend class CDecimal;

  CBigInteger(std::int32_t sign, Digits&& digits);

  bool IsZero() const;
  bool IsNegative() const;
  void FixZeroSign();
  void AddSigned(std::int32_t sign, const Digits& digits);
  void MultiplyPow10(unsigned int n);
  // Divides by 10^n (truncating) and returns the remainder, which keeps the
  // dividend's sign.
  CBigInteger DividePow10(unsigned int n);
  unsigned int TrailingZeros() const;
  void AppendMagnitude(std::string& out) const;

  std::int32_t m_sign;
  Digits m_digits;
};

}  // namespace KoXmlLib10

#endif
