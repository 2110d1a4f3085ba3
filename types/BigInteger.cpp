#include "KoXmlLib10/BigInteger.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <string_view>
#include <utility>

#include "KoXmlLib10/Decimal.h"
#include "KoXmlLib10/Exceptions.h"
#include "types/NumberLimits.h"

namespace KoXmlLib10 {

namespace {

using Digits = CBigInteger::Digits;
using Limb = std::uint32_t;
using Wide = std::uint64_t;

constexpr Limb kBase = CBigInteger::LIMB_BASE;
constexpr unsigned int kLimbDigits = CBigInteger::LIMB_DIGITS;
constexpr Limb kPow10[kLimbDigits + 1] = {1,      10,      100,      1000,      10000,
                                          100000, 1000000, 10000000, 100000000, 1000000000};
constexpr std::string_view kWhitespace = " \t\n\r";

bool IsZeroMagnitude(const Digits& v) {
  return std::all_of(v.begin(), v.end(), [](Limb limb) { return limb == 0; });
}

size_t SignificantSize(const Digits& v) {
  size_t n = v.size();
  while (n > 0 && v[n - 1] == 0) --n;
  return n;
}

unsigned int DigitsInLimb(Limb limb) {
  unsigned int n = 1;
  while (n < kLimbDigits && limb >= kPow10[n]) ++n;
  return n;
}

// Reads a run of decimal digits (most significant first) into limbs.
void BuildFromDigitText(std::string_view text, Digits& v) {
  v.clear();
  v.reserve(text.size() / kLimbDigits + 1);
  for (size_t end = text.size(); end > 0;) {
    const size_t begin = end > kLimbDigits ? end - kLimbDigits : 0;
    Limb limb = 0;
    for (size_t i = begin; i < end; ++i) limb = limb * 10 + static_cast<Limb>(text[i] - '0');
    v.push_back(limb);
    end = begin;
  }
  CBigInteger::Clean(v);
}

// v /= divisor in place; returns the remainder. divisor must not be 0.
Limb DivideByLimb(Digits& v, Limb divisor) {
  // Loops work on raw limb pointers: a store through Digits' accessors could
  // alias its size fields, which would be reloaded on every step.
  Limb* limbs = v.data();
  Wide remainder = 0;
  for (size_t i = v.size(); i-- > 0;) {
    const Wide current = limbs[i] + remainder * kBase;
    limbs[i] = static_cast<Limb>(current / divisor);
    remainder = current % divisor;
  }
  CBigInteger::Clean(v);
  return static_cast<Limb>(remainder);
}

// Long division of magnitudes with a divisor of at least two limbs (Knuth's
// algorithm D): each quotient limb is estimated from the top limbs and
// corrected at most twice, so the cost is quotient size times divisor size.
void DivideLong(const Digits& a, const Digits& b, Digits& quotient, Digits& remainder) {
  const size_t n = b.size();
  const size_t m = a.size() - n;
  // Scale both so that the divisor's top limb is at least half the base,
  // which keeps the estimates close.
  const Limb scale = static_cast<Limb>(kBase / (Wide{b.back()} + 1));
  Digits u = a;
  Digits v = b;
  CBigInteger::Multiply(u, scale);
  CBigInteger::Multiply(v, scale);
  u.resize(a.size() + 1, 0);
  v.resize(n, 0);

  quotient.assign(m + 1, 0);
  Limb* const uLimbs = u.data();
  const Limb* const vLimbs = v.data();
  Limb* const qLimbs = quotient.data();
  const Wide vTop = vLimbs[n - 1];
  const Wide vNext = vLimbs[n - 2];
  for (size_t j = m + 1; j-- > 0;) {
    const Wide top = Wide{uLimbs[j + n]} * kBase + uLimbs[j + n - 1];
    Wide qhat = top / vTop;
    Wide rhat = top % vTop;
    while (qhat >= kBase || qhat * vNext > rhat * kBase + uLimbs[j + n - 2]) {
      --qhat;
      rhat += vTop;
      if (rhat >= kBase) break;
    }
    // u[j .. j+n] -= qhat * v
    Wide carry = 0;
    std::int64_t borrow = 0;
    for (size_t i = 0; i < n; ++i) {
      const Wide product = qhat * vLimbs[i] + carry;
      carry = product / kBase;
      std::int64_t t = static_cast<std::int64_t>(uLimbs[i + j]) - static_cast<std::int64_t>(product % kBase) - borrow;
      borrow = t < 0 ? 1 : 0;
      uLimbs[i + j] = static_cast<Limb>(t + borrow * static_cast<std::int64_t>(kBase));
    }
    std::int64_t t = static_cast<std::int64_t>(uLimbs[j + n]) - static_cast<std::int64_t>(carry) - borrow;
    if (t < 0) {
      // The estimate was one too large: add the divisor back.
      --qhat;
      Wide back = 0;
      for (size_t i = 0; i < n; ++i) {
        const Wide sum = Wide{uLimbs[i + j]} + vLimbs[i] + back;
        uLimbs[i + j] = static_cast<Limb>(sum % kBase);
        back = sum / kBase;
      }
      t += static_cast<std::int64_t>(back);
    }
    uLimbs[j + n] = static_cast<Limb>(t);
    qLimbs[j] = static_cast<Limb>(qhat);
  }
  CBigInteger::Clean(quotient);
  u.resize(n);
  DivideByLimb(u, scale);
  remainder = std::move(u);
}

}  // namespace

// ---- limits ----------------------------------------------------------------

const NumberLimits& GetNumberLimits() {
  static const NumberLimits limits{
      CDecimal("2147483647").ToBigInteger(),          CDecimal("-2147483648").ToBigInteger(),
      CDecimal("9223372036854775807").ToBigInteger(), CDecimal("-9223372036854775808").ToBigInteger(),
      CDecimal("1.7E+308").ToBigInteger(),            CDecimal("-1.7E+308").ToBigInteger()};
  return limits;
}

const CBigInteger& CBigInteger::MAX_LONG = GetNumberLimits().maxLong;
const CBigInteger& CBigInteger::MIN_LONG = GetNumberLimits().minLong;
const CBigInteger& CBigInteger::MAX_LONGLONG = GetNumberLimits().maxLongLong;
const CBigInteger& CBigInteger::MIN_LONGLONG = GetNumberLimits().minLongLong;
const CBigInteger& CBigInteger::MAX_DOUBLE = GetNumberLimits().maxDouble;
const CBigInteger& CBigInteger::MIN_DOUBLE = GetNumberLimits().minDouble;

// ---- construction ----------------------------------------------------------

CBigInteger::CBigInteger(int i) : m_sign(i < 0 ? -1 : 1) {
  const long long value = i;
  BuildDWORDLONG(static_cast<unsigned long long>(value < 0 ? -value : value), m_digits);
}

CBigInteger::CBigInteger(double d) : m_sign(d < 0 ? -1 : 1) {
  if (!std::isfinite(d))
    throw CKoInvalidValueException("ERROR: Infinity or NaN can not be converted to an integer.");
  // ceil(|d| - 0.5) sends halves down. From 2^52 on every double is an
  // integer already, and |d| - 0.5 would round to an even neighbour there.
  const double magnitude = std::fabs(d);
  BuildDouble(magnitude >= 4503599627370496.0 ? magnitude : std::ceil(magnitude - 0.5), m_digits);
  FixZeroSign();
}

CBigInteger::CBigInteger(const char* s) : m_sign(1), m_digits{0} { Parse(s); }

CBigInteger::CBigInteger(const CDecimal& d) : CBigInteger(d.ToBigInteger()) {}

CBigInteger::CBigInteger(std::int32_t sign, Digits&& digits) : m_sign(sign), m_digits(std::move(digits)) {
  Clean(m_digits);
  FixZeroSign();
}

// ---- text ------------------------------------------------------------------

void CBigInteger::Parse(const char* s) {
  // Plain short text ("4", "-120"): an optional "-" and up to 18 digits.
  if (s) {
    const char* p = s + (*s == '-' ? 1 : 0);
    const char* digits = p;
    unsigned long long value = 0;
    for (; *p >= '0' && *p <= '9' && p - digits <= 18; ++p) value = value * 10 + static_cast<unsigned long long>(*p - '0');
    if (*p == '\0' && p - digits <= 18) {
      BuildDWORDLONG(value, m_digits);
      m_sign = *s == '-' && value != 0 ? -1 : 1;
      return;
    }
  }
  std::string_view text = s ? s : "";
  if (text.find_first_not_of("0123456789+- \t\n\r") != std::string_view::npos) {
    *this = CDecimal(s).ToBigInteger();
    return;
  }
  const size_t first = text.find_first_not_of(kWhitespace);
  text = first == std::string_view::npos ? std::string_view() : text.substr(first, text.find_last_not_of(kWhitespace) - first + 1);
  std::int32_t sign = 1;
  if (!text.empty() && text.front() == '-') {
    sign = -1;
    text.remove_prefix(1);
  }
  // Only the run of digits at the end counts ("12 34" is 34).
  const size_t lastNonDigit = text.find_last_not_of("0123456789");
  if (lastNonDigit != std::string_view::npos) text.remove_prefix(lastNonDigit + 1);
  Digits digits;
  BuildFromDigitText(text, digits);
  *this = CBigInteger(sign, std::move(digits));
}

std::string CBigInteger::ToString() const {
  if (m_digits.size() == 1) {
    char buffer[kLimbDigits + 2];
    char* p = buffer;
    if (IsNegative()) *p++ = '-';
    return std::string(buffer, std::to_chars(p, buffer + sizeof buffer, m_digits[0]).ptr);
  }
  std::string text;
  if (IsNegative()) text = "-";
  AppendMagnitude(text);
  return text;
}

void CBigInteger::AppendMagnitude(std::string& out) const {
  const size_t top = SignificantSize(m_digits);
  if (top == 0) {
    out += '0';
    return;
  }
  out.reserve(out.size() + top * kLimbDigits);
  out += std::to_string(m_digits[top - 1]);
  char block[kLimbDigits];
  for (size_t i = top - 1; i-- > 0;) {
    Limb limb = m_digits[i];
    for (size_t k = kLimbDigits; k-- > 0; limb /= 10) block[k] = static_cast<char>('0' + limb % 10);
    out.append(block, kLimbDigits);
  }
}

// ---- sign and small helpers ------------------------------------------------

bool CBigInteger::IsZero() const { return IsZeroMagnitude(m_digits); }

bool CBigInteger::IsNegative() const { return m_sign < 0 && !IsZero(); }

void CBigInteger::FixZeroSign() {
  if (IsZero()) m_sign = 1;
}

void CBigInteger::MultiplyPow10(unsigned int n) {
  ShiftLeft(m_digits, n);
}

CBigInteger CBigInteger::DividePow10(unsigned int n) {
  if (n == 0) return CBigInteger();
  if (n >= Position(m_digits)) {
    CBigInteger remainder(std::move(*this));
    *this = CBigInteger();
    return remainder;
  }
  const size_t wholeLimbs = n / kLimbDigits;
  Digits low(m_digits.begin(), m_digits.begin() + static_cast<std::ptrdiff_t>(wholeLimbs));
  m_digits.erase(m_digits.begin(), m_digits.begin() + static_cast<std::ptrdiff_t>(wholeLimbs));
  low.push_back(DivideByLimb(m_digits, kPow10[n % kLimbDigits]));
  CBigInteger remainder(m_sign, std::move(low));
  FixZeroSign();
  return remainder;
}

unsigned int CBigInteger::TrailingZeros() const {
  unsigned int zeros = 0;
  size_t i = 0;
  while (i < m_digits.size() && m_digits[i] == 0) {
    zeros += kLimbDigits;
    ++i;
  }
  if (i == m_digits.size()) return 0;
  for (Limb limb = m_digits[i]; limb % 10 == 0; limb /= 10) ++zeros;
  return zeros;
}

void CBigInteger::AddSigned(std::int32_t sign, const Digits& digits) {
  if (m_sign == sign) {
    Add(m_digits, digits);
  } else if (Compare(m_digits, digits) >= 0) {
    Subtract(m_digits, digits);
  } else {
    Digits larger = digits;
    Subtract(larger, m_digits);
    m_digits = std::move(larger);
    m_sign = sign;
  }
  FixZeroSign();
}

// ---- arithmetic ------------------------------------------------------------

CBigInteger CBigInteger::operator+(const CBigInteger& other) const {
  CBigInteger sum(*this);
  return sum += other;
}

CBigInteger CBigInteger::operator-(const CBigInteger& other) const {
  CBigInteger difference(*this);
  return difference -= other;
}

CBigInteger CBigInteger::operator*(const CBigInteger& other) const {
  return CBigInteger(m_sign * other.m_sign, Multiply(m_digits, other.m_digits));
}

CBigInteger CBigInteger::operator/(const CBigInteger& other) const {
  if (other.IsZero()) throw CKoInvalidValueException("ERROR: Overflow in operator/.");
  Digits quotient, remainder;
  Divide(m_digits, other.m_digits, quotient, remainder);
  return CBigInteger(m_sign * other.m_sign, std::move(quotient));
}

CBigInteger CBigInteger::operator%(const CBigInteger& other) const {
  if (other.IsZero() || other.IsNegative()) throw CKoInvalidValueException("ERROR: Overflow in operator%.");
  Digits quotient, remainder;
  Divide(m_digits, other.m_digits, quotient, remainder);
  return CBigInteger(m_sign, std::move(remainder));
}

CBigInteger& CBigInteger::operator+=(const CBigInteger& other) {
  if (this == &other) return *this = *this * CBigInteger(2);
  AddSigned(other.m_sign, other.m_digits);
  return *this;
}

CBigInteger& CBigInteger::operator-=(const CBigInteger& other) {
  if (this == &other) return *this = CBigInteger();
  AddSigned(-other.m_sign, other.m_digits);
  return *this;
}

CBigInteger& CBigInteger::operator*=(const CBigInteger& other) { return *this = *this * other; }

CBigInteger& CBigInteger::operator/=(const CBigInteger& other) {
  if (other.IsZero() || other.IsNegative()) throw CKoInvalidValueException("ERROR: Overflow in operator /=.");
  return *this = *this / other;
}

CBigInteger& CBigInteger::operator%=(const CBigInteger& other) {
  if (other.IsZero() || other.IsNegative()) throw CKoInvalidValueException("ERROR: Overflow in operator%=.");
  return *this = *this % other;
}

CBigInteger& CBigInteger::operator-() {
  Negate();
  return *this;
}

void CBigInteger::Negate() {
  if (!IsZero()) m_sign = -m_sign;
}

void CBigInteger::Abs() { m_sign = 1; }

CBigInteger CBigInteger::GetNegative() const {
  CBigInteger copy(*this);
  copy.Negate();
  return copy;
}

CBigInteger CBigInteger::GetAbs() const {
  CBigInteger copy(*this);
  copy.Abs();
  return copy;
}

CBigInteger CBigInteger::SquareRoot() const {
  if (IsNegative()) throw CKoInvalidValueException("ERROR: Negative Number in function SquareRoot().");
  if (IsZero()) return CBigInteger();
  // Newton's iteration from a start above the root decreases monotonically
  // to floor(sqrt(n)); 10^ceil(digits / 2) is such a start.
  CBigInteger x = Pow10((Position(m_digits) + 1) / 2);
  const CBigInteger two(2);
  for (;;) {
    CBigInteger next = (x + *this / x) / two;
    if (!(next < x)) return x;
    x = std::move(next);
  }
}

CBigInteger CBigInteger::Pow10(unsigned int n) {
  Digits digits;
  Pow10(n, digits);
  return CBigInteger(1, std::move(digits));
}

// ---- comparison ------------------------------------------------------------

int CBigInteger::CompareTo(const CBigInteger& other) const {
  // Signs first (a zero has none), then magnitudes, reversed below zero.
  const bool negative = IsNegative();
  if (negative != other.IsNegative()) return negative ? -1 : 1;
  const int order = Compare(m_digits, other.m_digits);
  return negative ? -order : order;
}

bool CBigInteger::operator==(const CBigInteger& other) const {
  return Compare(m_digits, other.m_digits) == 0 && (IsZero() || m_sign == other.m_sign);
}

bool CBigInteger::operator!=(const CBigInteger& other) const { return !(*this == other); }

bool CBigInteger::operator<(const CBigInteger& other) const { return CompareTo(other) < 0; }

bool CBigInteger::operator<=(const CBigInteger& other) const { return !(other < *this); }
bool CBigInteger::operator>(const CBigInteger& other) const { return other < *this; }
bool CBigInteger::operator>=(const CBigInteger& other) const { return !(*this < other); }

CBigInteger::operator int() const {
  // Two limbs hold anything below 10^18, which covers every int.
  const size_t size = SignificantSize(m_digits);
  std::int64_t value = 0;
  if (size <= 2) {
    for (size_t i = size; i-- > 0;) value = value * kBase + m_digits[i];
    if (IsNegative()) value = -value;
  }
  if (size > 2 || value < INT32_MIN || value > INT32_MAX)
    throw CKoInvalidValueException("ERROR: Value out of bound of int.");
  return static_cast<int>(value);
}

// ---- magnitude helpers -----------------------------------------------------

int CBigInteger::Compare(const Digits& a, const Digits& b) {
  const size_t sizeA = SignificantSize(a);
  const size_t sizeB = SignificantSize(b);
  if (sizeA != sizeB) return sizeA < sizeB ? -1 : 1;
  for (size_t i = sizeA; i-- > 0;)
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  return 0;
}

void CBigInteger::Add(Digits& a, const Digits& b) {
  if (a.size() < b.size()) a.resize(b.size(), 0);
  Limb* const pa = a.data();
  const Limb* const pb = b.data();
  const size_t sizeA = a.size();
  const size_t sizeB = b.size();
  Limb carry = 0;
  for (size_t i = 0; i < sizeA; ++i) {
    if (i >= sizeB && carry == 0) break;
    Limb sum = pa[i] + carry + (i < sizeB ? pb[i] : 0);
    carry = sum >= kBase ? 1 : 0;
    pa[i] = sum - carry * kBase;
  }
  if (carry) a.push_back(carry);
  Clean(a);
}

void CBigInteger::Subtract(Digits& a, const Digits& b) {
  Limb* const pa = a.data();
  const Limb* const pb = b.data();
  const size_t sizeA = a.size();
  const size_t sizeB = b.size();
  Limb borrow = 0;
  for (size_t i = 0; i < sizeA; ++i) {
    if (i >= sizeB && borrow == 0) break;
    const Limb take = borrow + (i < sizeB ? pb[i] : 0);
    borrow = pa[i] < take ? 1 : 0;
    pa[i] = pa[i] + borrow * kBase - take;
  }
  Clean(a);
}

void CBigInteger::Multiply(Digits& a, std::uint32_t factor) {
  Wide carry = 0;
  Limb* const end = a.end();
  for (Limb* limb = a.begin(); limb != end; ++limb) {
    Limb& digit = *limb;
    const Wide product = Wide{digit} * factor + carry;
    digit = static_cast<Limb>(product % kBase);
    carry = product / kBase;
  }
  for (; carry != 0; carry /= kBase) a.push_back(static_cast<Limb>(carry % kBase));
  Clean(a);
}

CBigInteger::Digits CBigInteger::Multiply(const Digits& a, const Digits& b) {
  const size_t sizeA = SignificantSize(a);
  const size_t sizeB = SignificantSize(b);
  if (sizeA == 0 || sizeB == 0) return Digits{0};
  Digits product(sizeA + sizeB, 0);
  Limb* const out = product.data();
  const Limb* const pa = a.data();
  const Limb* const pb = b.data();
  for (size_t i = 0; i < sizeA; ++i) {
    Wide carry = 0;
    const Wide left = pa[i];
    for (size_t j = 0; j < sizeB; ++j) {
      const Wide current = out[i + j] + left * pb[j] + carry;
      out[i + j] = static_cast<Limb>(current % kBase);
      carry = current / kBase;
    }
    out[i + sizeB] = static_cast<Limb>(carry);
  }
  Clean(product);
  return product;
}

void CBigInteger::Divide(const Digits& a, const Digits& b, Digits& quotient, Digits& remainder) {
  Digits dividend(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(SignificantSize(a)));
  Digits divisor(b.begin(), b.begin() + static_cast<std::ptrdiff_t>(SignificantSize(b)));
  Clean(dividend);
  if (divisor.empty() || Compare(dividend, divisor) < 0) {
    remainder = std::move(dividend);
    quotient.assign(1, 0);
  } else if (divisor.size() == 1) {
    const Limb rest = DivideByLimb(dividend, divisor[0]);
    quotient = std::move(dividend);
    remainder.assign(1, rest);
  } else {
    DivideLong(dividend, divisor, quotient, remainder);
  }
}

void CBigInteger::ShiftLeft(Digits& v, unsigned int n) {
  if (IsZeroMagnitude(v)) return;
  Multiply(v, kPow10[n % kLimbDigits]);
  v.insert(v.begin(), n / kLimbDigits, 0);
}

void CBigInteger::Pow10(unsigned int n, Digits& v) {
  v.assign(1, 1);
  ShiftLeft(v, n);
}

unsigned int CBigInteger::Position(const Digits& v) {
  const size_t size = SignificantSize(v);
  if (size == 0) return 1;
  return static_cast<unsigned int>((size - 1) * kLimbDigits) + DigitsInLimb(v[size - 1]);
}

void CBigInteger::Clean(Digits& v) {
  v.resize(SignificantSize(v));
  if (v.empty()) v.push_back(0);
}

void CBigInteger::Build(unsigned int value, Digits& v) { BuildDWORDLONG(value, v); }

void CBigInteger::Build(const std::string& digits, Digits& v) {
  if (std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; })) {
    BuildFromDigitText(digits, v);
    return;
  }
  std::string only;
  std::copy_if(digits.begin(), digits.end(), std::back_inserter(only),
               [](char c) { return c >= '0' && c <= '9'; });
  BuildFromDigitText(only, v);
}

void CBigInteger::BuildDouble(double value, Digits& v) {
  value = std::floor(std::fabs(value));
  constexpr double kTwoTo64 = 18446744073709551616.0;
  if (!std::isfinite(value)) {
    v.assign(1, 0);
  } else if (value < kTwoTo64) {
    BuildDWORDLONG(static_cast<unsigned long long>(value), v);
  } else {
    // value = mantissa * 2^exponent exactly, with a 53-bit mantissa.
    int exponent = 0;
    const double fraction = std::frexp(value, &exponent);
    BuildDWORDLONG(static_cast<unsigned long long>(std::ldexp(fraction, 53)), v);
    for (exponent -= 53; exponent > 0;) {
      const int step = std::min(exponent, 31);
      Multiply(v, Limb{1} << step);
      exponent -= step;
    }
  }
}

void CBigInteger::BuildDWORDLONG(unsigned long long value, Digits& v) {
  if (value < kBase) {
    v.assign(1, static_cast<Limb>(value));
    return;
  }
  Limb limbs[3];  // 2^64 < 10^27
  size_t count = 0;
  for (; value != 0; value /= kBase) limbs[count++] = static_cast<Limb>(value % kBase);
  v.assign(limbs, limbs + count);
}

}  // namespace KoXmlLib10
