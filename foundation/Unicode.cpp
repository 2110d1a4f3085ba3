#include "KoXmlLib10/Unicode.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace {

constexpr uint32_t kMaxCodePoint = 0x10FFFF;
constexpr uint32_t kReplacementChar = 0xFFFD;
constexpr uint32_t kHighSurrogateFirst = 0xD800;
constexpr uint32_t kLowSurrogateFirst = 0xDC00;
constexpr uint32_t kLowSurrogateLast = 0xDFFF;

bool IsSurrogate(uint32_t c) { return c >= kHighSurrogateFirst && c <= kLowSurrogateLast; }
bool IsHighSurrogate(uint32_t c) { return c >= kHighSurrogateFirst && c < kLowSurrogateFirst; }
bool IsLowSurrogate(uint32_t c) { return c >= kLowSurrogateFirst && c <= kLowSurrogateLast; }

// Bytes a UTF-8 character takes, judged by its lead byte alone (5 and 6 for
// the obsolete long forms, which are never legal).
int SequenceLength(unsigned char lead) {
  if (lead < 0xC0) return 1;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  if (lead < 0xF8) return 4;
  return lead < 0xFC ? 5 : 6;
}

bool AnyHighBit(const unsigned char* eightBytes) {
  uint64_t word;
  std::memcpy(&word, eightBytes, sizeof word);
  return (word & 0x8080808080808080ull) != 0;
}

// Each reader yields one code point per Next(); false means the character
// is ill-formed or truncated, which ends the conversion.
struct Utf8Reader {
  const unsigned char* p;
  const unsigned char* end;

  bool AtEnd() const { return p >= end; }
  // Steps over the ASCII bytes ahead, 8 at a time where it can; returns how
  // many there were. Text is mostly ASCII, and each such byte is a character.
  unsigned long SkipAscii() {
    const unsigned char* start = p;
    while (end - p >= 8 && !AnyHighBit(p)) p += 8;
    while (p < end && *p < 0x80) ++p;
    return static_cast<unsigned long>(p - start);
  }
  bool Next(uint32_t& c) {
    const unsigned char lead = *p;
    if (lead < 0x80) {
      c = lead;
      ++p;
      return true;
    }
    const int length = SequenceLength(lead);
    if (length > end - p || !IsLegalUTF8(p, length)) return false;
    c = lead & (0xFF >> (length + 1));
    for (int i = 1; i < length; ++i) c = (c << 6) | (p[i] & 0x3F);
    p += length;
    return true;
  }
};

// UTF-16 arrives as bytes that need not be aligned for 16-bit access.
struct Utf16Reader {
  const unsigned char* p;
  const unsigned char* end;

  bool AtEnd() const { return end - p < 2; }
  uint32_t Unit(const unsigned char* at) const {
    uint16_t u;
    std::memcpy(&u, at, sizeof u);
    return u;
  }
  bool Next(uint32_t& c) {
    c = Unit(p);
    if (IsLowSurrogate(c)) return false;
    if (IsHighSurrogate(c)) {
      if (end - p < 4) return false;
      const uint32_t low = Unit(p + 2);
      if (!IsLowSurrogate(low)) return false;
      c = ((c - kHighSurrogateFirst) << 10) + (low - kLowSurrogateFirst) + 0x10000;
      p += 2;
    }
    p += 2;
    return true;
  }
};

// Values above U+10FFFF pass through; each writer decides what they become.
struct Utf32Reader {
  const wchar_t* p;
  const wchar_t* end;

  bool AtEnd() const { return p >= end; }
  bool Next(uint32_t& c) {
    c = static_cast<uint32_t>(*p);
    if (IsSurrogate(c)) return false;
    ++p;
    return true;
  }
};

// Each writer encodes one code point into at most four units, or returns 0
// when the code point cannot be represented (which ends the conversion).
struct Utf8Writer {
  using Unit = unsigned char;
  static int Encode(uint32_t c, Unit* out) {
    if (c > kMaxCodePoint) c = kReplacementChar;
    if (c < 0x80) {
      out[0] = static_cast<Unit>(c);
      return 1;
    }
    int length = c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    static const Unit kLeadMarks[] = {0x00, 0x00, 0xC0, 0xE0, 0xF0};
    for (int i = length - 1; i > 0; --i, c >>= 6) out[i] = static_cast<Unit>(0x80 | (c & 0x3F));
    out[0] = static_cast<Unit>(kLeadMarks[length] | c);
    return length;
  }

  unsigned char* p;
  unsigned char* end;
  long Room() const { return end - p; }
  void Put(const Unit* units, int n) {
    std::memcpy(p, units, n);
    p += n;
  }
};

struct Utf16Writer {
  using Unit = uint16_t;
  static int Encode(uint32_t c, Unit* out) {
    if (c > kMaxCodePoint) return 0;
    if (c < 0x10000) {
      out[0] = static_cast<Unit>(c);
      return 1;
    }
    c -= 0x10000;
    out[0] = static_cast<Unit>(kHighSurrogateFirst + (c >> 10));
    out[1] = static_cast<Unit>(kLowSurrogateFirst + (c & 0x3FF));
    return 2;
  }

  unsigned char* p;  // bytes, two per unit, possibly unaligned
  unsigned char* end;
  long Room() const { return (end - p) / 2; }
  void Put(const Unit* units, int n) {
    std::memcpy(p, units, n * sizeof(Unit));
    p += n * sizeof(Unit);
  }
};

struct Utf32Writer {
  using Unit = wchar_t;
  static int Encode(uint32_t c, Unit* out) {
    out[0] = static_cast<Unit>(c);
    return 1;
  }

  wchar_t* p;
  wchar_t* end;
  long Room() const { return end - p; }
  void Put(const Unit* units, int n) {
    std::memcpy(p, units, n * sizeof(Unit));
    p += n;
  }
};

template <class Reader, class Writer>
unsigned long Convert(Reader in, Writer out) {
  const bool measure = out.p == nullptr;
  unsigned long written = 0;
  while (!in.AtEnd()) {
    if constexpr (std::is_same_v<Reader, Utf8Reader>) {
      // An ASCII byte is one unit in every target form.
      if (measure) {
        written += in.SkipAscii();
        if (in.AtEnd()) break;
      }
    }
    uint32_t c;
    typename Writer::Unit units[4];
    const int n = in.Next(c) ? Writer::Encode(c, units) : 0;
    if (n == 0) return measure ? 0 : written;
    if (!measure) {
      if (out.Room() < n) return written;
      out.Put(units, n);
    }
    written += n;
  }
  return written;
}

// The public forms take counts; a null buffer is an empty one.
template <class T>
T* EndOf(T* begin, unsigned long count) {
  return begin ? begin + count : nullptr;
}

const unsigned char* Bytes(const unsigned short* p) { return reinterpret_cast<const unsigned char*>(p); }
unsigned char* Bytes(unsigned short* p) { return reinterpret_cast<unsigned char*>(p); }

}  // namespace

bool IsLegalUTF8(const unsigned char* source, int length) {
  if (length < 1 || length > 4 || SequenceLength(source[0]) != length) return false;
  const unsigned char lead = source[0];
  if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4) return false;
  for (int i = 1; i < length; ++i)
    if (source[i] < 0x80 || source[i] > 0xBF) return false;
  if (length == 1) return true;
  const unsigned char second = source[1];
  switch (lead) {
    case 0xE0: return second >= 0xA0;  // shorter form exists
    case 0xED: return second < 0xA0;   // surrogates
    case 0xF0: return second >= 0x90;  // shorter form exists
    case 0xF4: return second < 0x90;   // above U+10FFFF
    default: return true;
  }
}

bool IsLegalUTF8Sequence(const unsigned char* source, const unsigned char* sourceEnd) {
  if (source >= sourceEnd) return false;
  const int length = SequenceLength(*source);
  return length <= sourceEnd - source && IsLegalUTF8(source, length);
}

unsigned long ConvertUTF8toUTF32(const unsigned char* srcBegin, const unsigned char* srcEnd,
                                 wchar_t* dstBegin, wchar_t* dstEnd) {
  return Convert(Utf8Reader{srcBegin, srcEnd}, Utf32Writer{dstBegin, dstEnd});
}

unsigned long ConvertUTF32toUTF8(const wchar_t* srcBegin, const wchar_t* srcEnd, unsigned char* dstBegin,
                                 unsigned char* dstEnd) {
  return Convert(Utf32Reader{srcBegin, srcEnd}, Utf8Writer{dstBegin, dstEnd});
}

unsigned long ConvertUTF16toUTF32(const unsigned short* srcBegin, const unsigned short* srcEnd,
                                  wchar_t* dstBegin, wchar_t* dstEnd) {
  return Convert(Utf16Reader{Bytes(srcBegin), Bytes(srcEnd)}, Utf32Writer{dstBegin, dstEnd});
}

unsigned long ConvertUTF32toUTF16(const wchar_t* srcBegin, const wchar_t* srcEnd, unsigned short* dstBegin,
                                  unsigned short* dstEnd) {
  return Convert(Utf32Reader{srcBegin, srcEnd}, Utf16Writer{Bytes(dstBegin), Bytes(dstEnd)});
}

unsigned long ConvertUTF16toUTF8(const unsigned short* srcBegin, const unsigned short* srcEnd,
                                 unsigned char* dstBegin, unsigned char* dstEnd) {
  return Convert(Utf16Reader{Bytes(srcBegin), Bytes(srcEnd)}, Utf8Writer{dstBegin, dstEnd});
}

unsigned long ConvertUTF8toUTF16(const unsigned char* srcBegin, const unsigned char* srcEnd,
                                 unsigned short* dstBegin, unsigned short* dstEnd) {
  return Convert(Utf8Reader{srcBegin, srcEnd}, Utf16Writer{Bytes(dstBegin), Bytes(dstEnd)});
}

unsigned long UTF8ToUnicode(unsigned char* src, unsigned long srcLen, wchar_t* dst, unsigned long dstCap) {
  return Convert(Utf8Reader{src, EndOf(src, srcLen)}, Utf32Writer{dst, EndOf(dst, dstCap)});
}

unsigned long UnicodeToUTF8(const wchar_t* src, unsigned long srcLen, unsigned char* dst,
                            unsigned long dstCap) {
  return Convert(Utf32Reader{src, EndOf(src, srcLen)}, Utf8Writer{dst, EndOf(dst, dstCap)});
}

unsigned long UTF16ToUnicode(unsigned char* src, unsigned long srcUnits, wchar_t* dst,
                             unsigned long dstCap) {
  return Convert(Utf16Reader{src, EndOf(src, srcUnits * 2)}, Utf32Writer{dst, EndOf(dst, dstCap)});
}

unsigned long UnicodeToUTF16(const wchar_t* src, unsigned long srcLen, unsigned char* dst,
                             unsigned long dstUnits) {
  return Convert(Utf32Reader{src, EndOf(src, srcLen)}, Utf16Writer{dst, EndOf(dst, dstUnits * 2)});
}

bool DoesUTF8StrContainAnyCharsLargerThanOneByte(unsigned char* s, unsigned long len) {
  unsigned long i = 0;
  for (; len - i >= 8; i += 8)
    if (AnyHighBit(s + i)) return true;
  for (; i < len; ++i)
    if (s[i] >= 0x80) return true;
  return false;
}

bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(const wchar_t* s, int len) {
  for (int i = 0; i < len; ++i)
    if (static_cast<int32_t>(s[i]) > 0x7F) return true;
  return false;
}
