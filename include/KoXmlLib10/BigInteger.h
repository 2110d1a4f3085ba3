#ifndef KOXMLLIB10_BIGINTEGER_H
#define KOXMLLIB10_BIGINTEGER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>

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
  static constexpr std::uint32_t LIMB_BASE = 1000000000u;
  static constexpr unsigned int LIMB_DIGITS = 9;

  // A magnitude: limbs below 10^9, least significant first. Zero is {0};
  // a non-zero value never has a zero limb on top.
  //
  // A vector of limbs with room for the first few inside the object, so the
  // values documents are made of (up to 36 digits) never touch the heap to
  // be built, copied or destroyed. It offers the vector operations the
  // arithmetic uses, with the same meaning as std::vector's.
  class Digits {
   public:
    using value_type = std::uint32_t;
    using size_type = std::size_t;
    using iterator = value_type*;
    using const_iterator = const value_type*;

    Digits() noexcept : m_size(0), m_capacity(kInlineLimbs) {}
    Digits(size_type count, value_type value) : Digits() { assign(count, value); }
    Digits(std::initializer_list<value_type> limbs) : Digits() { assign(limbs.begin(), limbs.end()); }
    Digits(const_iterator first, const_iterator last) : Digits() { assign(first, last); }
    Digits(const Digits& other) : Digits() { assign(other.begin(), other.end()); }
    Digits(Digits&& other) noexcept : Digits() { Steal(other); }
    Digits& operator=(const Digits& other) {
      if (this != &other) assign(other.begin(), other.end());
      return *this;
    }
    Digits& operator=(Digits&& other) noexcept {
      if (this != &other) {
        Release();
        Steal(other);
      }
      return *this;
    }
    ~Digits() { Release(); }

    size_type size() const noexcept { return m_size; }
    bool empty() const noexcept { return m_size == 0; }
    size_type capacity() const noexcept { return m_capacity; }
    value_type* data() noexcept { return IsInline() ? m_inline : m_heap; }
    const value_type* data() const noexcept { return IsInline() ? m_inline : m_heap; }
    iterator begin() noexcept { return data(); }
    iterator end() noexcept { return data() + m_size; }
    const_iterator begin() const noexcept { return data(); }
    const_iterator end() const noexcept { return data() + m_size; }
    value_type& operator[](size_type i) noexcept { return data()[i]; }
    const value_type& operator[](size_type i) const noexcept { return data()[i]; }
    value_type& back() noexcept { return data()[m_size - 1]; }
    const value_type& back() const noexcept { return data()[m_size - 1]; }

    void clear() noexcept { m_size = 0; }
    void reserve(size_type count) {
      if (count > m_capacity) Reallocate(count);
    }
    void push_back(value_type value) {
      if (m_size == m_capacity) Reallocate(Grown(m_size + 1));
      data()[m_size++] = value;
    }
    void resize(size_type count, value_type value = 0) {
      if (count > m_size) {
        if (count > m_capacity) Reallocate(Grown(count));
        std::fill(data() + m_size, data() + count, value);
      }
      m_size = static_cast<std::uint32_t>(count);
    }
    void assign(size_type count, value_type value) {
      m_size = 0;
      resize(count, value);
    }
    void assign(const_iterator first, const_iterator last) {
      const size_type count = static_cast<size_type>(last - first);
      // The source may live in this vector's own storage.
      if (count > m_capacity) {
        Digits copy;
        copy.Reallocate(count);
        std::memcpy(copy.data(), first, count * sizeof(value_type));
        copy.m_size = static_cast<std::uint32_t>(count);
        *this = std::move(copy);
        return;
      }
      if (count) std::memmove(data(), first, count * sizeof(value_type));
      m_size = static_cast<std::uint32_t>(count);
    }
    iterator insert(const_iterator position, size_type count, value_type value) {
      const size_type at = static_cast<size_type>(position - begin());
      if (m_size + count > m_capacity) Reallocate(Grown(m_size + count));
      value_type* p = data();
      std::memmove(p + at + count, p + at, (m_size - at) * sizeof(value_type));
      std::fill(p + at, p + at + count, value);
      m_size += static_cast<std::uint32_t>(count);
      return p + at;
    }
    iterator erase(const_iterator first, const_iterator last) {
      value_type* p = data();
      const size_type from = static_cast<size_type>(first - p);
      const size_type to = static_cast<size_type>(last - p);
      std::memmove(p + from, p + to, (m_size - to) * sizeof(value_type));
      m_size -= static_cast<std::uint32_t>(to - from);
      return p + from;
    }

   private:
    static constexpr std::uint32_t kInlineLimbs = 4;

    // Heap storage always has more room than the inline storage.
    bool IsInline() const noexcept { return m_capacity == kInlineLimbs; }
    size_type Grown(size_type needed) const noexcept {
      return needed > 2 * size_type{m_capacity} ? needed : 2 * size_type{m_capacity};
    }
    void Reallocate(size_type count) {
      std::allocator<value_type> allocator;
      value_type* fresh = allocator.allocate(count);
      if (m_size) std::memcpy(fresh, data(), m_size * sizeof(value_type));
      Release();
      m_heap = fresh;
      m_capacity = static_cast<std::uint32_t>(count);
    }
    void Release() noexcept {
      if (!IsInline()) std::allocator<value_type>().deallocate(m_heap, m_capacity);
      m_capacity = kInlineLimbs;
    }
    // Takes other's limbs; other is left empty. This storage must be inline.
    void Steal(Digits& other) noexcept {
      if (other.IsInline()) {
        std::memcpy(m_inline, other.m_inline, other.m_size * sizeof(value_type));
      } else {
        m_heap = other.m_heap;
        m_capacity = other.m_capacity;
        other.m_capacity = kInlineLimbs;
      }
      m_size = other.m_size;
      other.m_size = 0;
    }

    std::uint32_t m_size;
    std::uint32_t m_capacity;
    union {
      value_type m_inline[kInlineLimbs];
      value_type* m_heap;
    };
  };

  CBigInteger(int i = 0);
  // Rounds to the nearest integer, halves toward zero (2.5 gives 2).
  // Infinity and NaN throw CKoInvalidValueException.
  CBigInteger(double d);
  CBigInteger(const char* s);
  // Rounds to the nearest integer, halves toward zero.
  CBigInteger(const CDecimal& d);
  // Defined here so that the values of a document are copied and destroyed
  // without a call into the library.
  CBigInteger(const CBigInteger& other) = default;
  CBigInteger(CBigInteger&& other) noexcept = default;
  CBigInteger& operator=(const CBigInteger& other) = default;
  CBigInteger& operator=(CBigInteger&& other) noexcept = default;
  virtual ~CBigInteger() = default;

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
  // -1, 0 or 1 as this value is below, equal to or above other.
  int CompareTo(const CBigInteger& other) const;
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
