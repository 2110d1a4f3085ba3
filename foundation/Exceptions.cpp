#include "KoXmlLib10/Exceptions.h"

#include <cctype>
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

int ReadNumber(const char*& p) {
  int n = 0;
  while (std::isdigit(static_cast<unsigned char>(*p))) n = n * 10 + (*p++ - '0');
  return n;
}

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
    if (*p == '.') {
      ++p;
      if (*p == '*') { precision = va_arg(args, int); ++p; }
      else precision = ReadNumber(p);
    }
    bool is64 = false, narrow = false, wide = false;
    for (;;) {
      if (std::strncmp(p, "I64", 3) == 0) { is64 = true; p += 3; }
      else if (*p == 'h') { narrow = true; ++p; }
      else if (*p == 'l') { wide = true; ++p; }
      else if (*p == 'F' || *p == 'L' || *p == 'N') ++p;
      else break;
    }
    if (width < 0) width = -width;  // a negative '*' width means left-justified
    if (precision < 0) precision = 0;
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
        if (!s) item = 6;
        else if (isWide) item = std::max<size_t>(1, std::wcslen(static_cast<const wchar_t*>(s)));
        else item = std::max<size_t>(1, std::strlen(static_cast<const char*>(s)));
        item = Clamp(item, width, precision);
        break;
      }
      case 'd': case 'i': case 'o': case 'u': case 'x': case 'X':
        if (is64) (void)va_arg(args, long long);
        else (void)va_arg(args, int);
        item = numeric;
        break;
      case 'p':
        (void)va_arg(args, void*);
        item = numeric;
        break;
      case 'e': case 'g': case 'G':
        (void)va_arg(args, double);
        item = std::max<size_t>(128, static_cast<size_t>(width) + precision);
        break;
      case 'f': {
        const double value = va_arg(args, double);
        std::vector<char> scratch(std::max(width, precision) + 318);
        const int n = std::snprintf(scratch.data(), scratch.size(), "%*.*f", width,
                                    precision + 6, value);
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
