#include "KoXmlLib10/Exceptions.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <vector>

namespace KoXmlLib10 {

CKoException::CKoException() = default;

CKoException::CKoException(std::string message) : m_message(std::move(message)) {}

CKoException::CKoException(std::string message, const CKoException& inner)
    : m_message(std::move(message)), m_inner(inner.Clone()) {}

CKoException::CKoException(const CKoException& other)
    : m_message(other.m_message),
      m_inner(other.m_inner ? other.m_inner->Clone() : nullptr) {}

CKoException::~CKoException() = default;

CKoException* CKoException::Clone() const { return new CKoException(*this); }

CKoException& CKoException::operator=(const CKoException& other) {
  // Clone first, so that self-assignment keeps the inner exception alive.
  std::unique_ptr<CKoException> inner(other.m_inner ? other.m_inner->Clone() : nullptr);
  m_message = other.m_message;
  m_inner = std::move(inner);
  return *this;
}

std::string CKoException::GetMessage() const { return m_message; }

const CKoException* CKoException::GetInnerException() const { return m_inner.get(); }

std::string CKoException::GetFullMessage() const {
  std::string text = m_message;
  for (const CKoException* e = m_inner.get(); e; e = e->m_inner.get()) {
    text += '\n';
    text += e->m_message;
  }
  return text;
}

#define KOXML_DEFINE_EXCEPTION(Name, Base)                                            \
  Name::Name() = default;                                                             \
  Name::Name(std::string message) : Base(std::move(message)) {}                       \
  Name::Name(std::string message, const CKoException& inner)                          \
      : Base(std::move(message), inner) {}                                            \
  Name::Name(const CKoException& other) : Base(other) {}                              \
  Name::Name(const Name& other) : Base(static_cast<const CKoException&>(other)) {}    \
  Name::~Name() = default;                                                            \
  CKoException* Name::Clone() const { return new Name(*this); }

KOXML_DEFINE_EXCEPTION(CKoValidationException, CKoException)
KOXML_DEFINE_EXCEPTION(CKoInvalidValueException, CKoValidationException)
KOXML_DEFINE_EXCEPTION(CKoInvalidNamespaceException, CKoValidationException)
KOXML_DEFINE_EXCEPTION(CKoInvalidParamException, CKoException)
KOXML_DEFINE_EXCEPTION(CKoInvalidStateException, CKoException)
KOXML_DEFINE_EXCEPTION(CKoOverFlowException, CKoException)

#undef KOXML_DEFINE_EXCEPTION

namespace {

// Widths and precisions saturate instead of overflowing; no real format comes
// near the bound.
constexpr int kMaxFieldSize = 1 << 20;

int ReadNumber(const char*& p) {
  int n = 0;
  while (std::isdigit(static_cast<unsigned char>(*p))) n = std::min(n * 10 + (*p++ - '0'), kMaxFieldSize);
  return n;
}

// The argument an integer or floating conversion takes, by its size prefix.
enum class ArgSize { Default, Long, LongLong, IntMax, SizeT, PtrDiff, LongDouble };

// Length of a string or character item: a precision caps it, a wider width raises it.
size_t Clamp(size_t length, int width, int precision) {
  if (precision > 0 && length > static_cast<size_t>(precision)) length = precision;
  if (width > 0 && static_cast<size_t>(width) > length) length = width;
  return length;
}

// Upper bound of the output length of `format`, stepping over the arguments
// exactly as printf would consume them.
size_t EstimateLength(const char* format, va_list args) {
  size_t total = 0;
  for (const char* p = format; *p; ++p) {
    if (*p != '%') { ++total; continue; }
    ++p;
    if (*p == '\0') break;
    if (*p == '%') { ++total; continue; }

    int width = 0;
    bool widthFromArg = false;
    for (; *p && std::strchr("#*-+0 ", *p); ++p) {
      if (*p == '#') total += 2;
      if (*p == '*') { width = va_arg(args, int); widthFromArg = true; }
    }
    if (!widthFromArg) width = ReadNumber(p);
    int precision = 0;
    const bool hasPrecision = *p == '.';
    if (hasPrecision) {
      ++p;
      if (*p == '*') { precision = va_arg(args, int); ++p; }
      else precision = ReadNumber(p);
    }
    // Besides I64, h and l, the C library's own size prefixes (ll, j, z, t)
    // are honoured: stepping over an argument by the wrong size would make
    // every later argument, and any later string pointer, misread.
    bool narrow = false, wide = false;
    ArgSize size = ArgSize::Default;
    for (;;) {
      if (std::strncmp(p, "I64", 3) == 0) { size = ArgSize::LongLong; p += 3; }
      else if (*p == 'h') { narrow = true; ++p; }
      else if (*p == 'l') { size = wide ? ArgSize::LongLong : ArgSize::Long; wide = true; ++p; }
      else if (*p == 'q') { size = ArgSize::LongLong; ++p; }
      else if (*p == 'j') { size = ArgSize::IntMax; ++p; }
      else if (*p == 'z') { size = ArgSize::SizeT; ++p; }
      else if (*p == 't') { size = ArgSize::PtrDiff; ++p; }
      else if (*p == 'L') { size = ArgSize::LongDouble; ++p; }
      else if (*p == 'F' || *p == 'N') ++p;
      else break;
    }
    width = std::min(width < 0 ? -std::max(width, -kMaxFieldSize) : width, kMaxFieldSize);  // negative: left-justified
    precision = std::min(std::max(precision, 0), kMaxFieldSize);
    const size_t numeric = std::max<size_t>(32, static_cast<size_t>(width) + precision);
    size_t item = 0;
    switch (*p) {
      case 'c': case 'C':
        (void)va_arg(args, int);
        item = Clamp(2, width, precision);
        break;
      case 's': case 'S': {
        const bool isWide = (*p == 'S' && !narrow) || (*p == 's' && wide);
        const void* s = va_arg(args, const void*);
        // With a precision the text need not be terminated: printf reads no
        // further than the precision, and neither may the estimate.
        if (!s) item = 6;
        else if (isWide && hasPrecision) item = std::max<size_t>(1, wcsnlen(static_cast<const wchar_t*>(s), precision));
        else if (isWide) item = std::max<size_t>(1, std::wcslen(static_cast<const wchar_t*>(s)));
        else if (hasPrecision) item = std::max<size_t>(1, strnlen(static_cast<const char*>(s), precision));
        else item = std::max<size_t>(1, std::strlen(static_cast<const char*>(s)));
        item = Clamp(item, width, precision);
        break;
      }
      case 'd': case 'i': case 'o': case 'u': case 'x': case 'X':
        switch (size) {
          case ArgSize::Long: (void)va_arg(args, long); break;
          case ArgSize::LongLong:
          case ArgSize::LongDouble:  // the C library reads %Ld as long long
            (void)va_arg(args, long long);
            break;
          case ArgSize::IntMax: (void)va_arg(args, intmax_t); break;
          case ArgSize::SizeT: (void)va_arg(args, size_t); break;
          case ArgSize::PtrDiff: (void)va_arg(args, ptrdiff_t); break;
          default: (void)va_arg(args, int); break;
        }
        item = numeric;
        break;
      case 'p':
        (void)va_arg(args, void*);
        item = numeric;
        break;
      case 'e': case 'g': case 'G':
        if (size == ArgSize::LongDouble) (void)va_arg(args, long double);
        else (void)va_arg(args, double);
        item = std::max<size_t>(128, static_cast<size_t>(width) + precision);
        break;
      case 'f': {
        // A long double can print far longer than the scratch buffer holds;
        // snprintf still reports the full length.
        const bool isLong = size == ArgSize::LongDouble;
        const long double value = isLong ? va_arg(args, long double) : va_arg(args, double);
        std::vector<char> scratch(static_cast<size_t>(std::max(width, precision)) + 318);
        const int n = isLong ? std::snprintf(scratch.data(), scratch.size(), "%*.*Lf", width, precision + 6, value)
                             : std::snprintf(scratch.data(), scratch.size(), "%*.*f", width, precision + 6,
                                             static_cast<double>(value));
        item = n > 0 ? static_cast<size_t>(n) : 0;
        break;
      }
      case 'n':
        (void)va_arg(args, void*);
        break;
      case '\0':
        return total;
      default:
        break;
    }
    total += item;
  }
  return total;
}

}  // namespace

std::string FormatV(const char* format, va_list args) {
  if (!format) return std::string();
  va_list measure;
  va_copy(measure, args);
  const size_t estimate = EstimateLength(format, measure);
  va_end(measure);

  std::string text(estimate + 1, 'X');
  std::vsnprintf(&text[0], estimate + 1, format, args);
  text.resize(std::strlen(text.c_str()));
  return text;
}

std::string FormatString(const char* format, ...) {
  va_list args;
  va_start(args, format);
  std::string text = FormatV(format, args);
  va_end(args);
  return text;
}

}  // namespace KoXmlLib10
