#ifndef KOXMLLIB10_UNICODE_H
#define KOXMLLIB10_UNICODE_H

#include <cwchar>
#include <string>

#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/Export.h"

// Strict conversions between UTF-8, UTF-16 (host byte order) and wide text
// (wchar_t, UTF-32). Lengths count code units of the form concerned. With a
// null target they only measure: the units the whole source needs, or 0 when
// it is ill-formed anywhere. Otherwise they convert until the source ends, the
// next character does not fit, or ill-formed input is met, and return the
// units written. Ill-formed input never throws.
KOXML_API unsigned long UTF8ToUnicode(unsigned char* src, unsigned long srcLen, wchar_t* dst,
                                      unsigned long dstCap);
KOXML_API unsigned long UnicodeToUTF8(const wchar_t* src, unsigned long srcLen, unsigned char* dst,
                                      unsigned long dstCap);
KOXML_API unsigned long UTF16ToUnicode(unsigned char* src, unsigned long srcUnits, wchar_t* dst,
                                       unsigned long dstCap);
KOXML_API unsigned long UnicodeToUTF16(const wchar_t* src, unsigned long srcLen, unsigned char* dst,
                                       unsigned long dstUnits);

KOXML_API bool DoesUTF8StrContainAnyCharsLargerThanOneByte(unsigned char* s, unsigned long len);
KOXML_API bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(const wchar_t* s, int len);

// The same conversions over [begin, end) ranges; a null target begin measures.
KOXML_API unsigned long ConvertUTF8toUTF32(const unsigned char* srcBegin, const unsigned char* srcEnd,
                                           wchar_t* dstBegin, wchar_t* dstEnd);
KOXML_API unsigned long ConvertUTF32toUTF8(const wchar_t* srcBegin, const wchar_t* srcEnd,
                                           unsigned char* dstBegin, unsigned char* dstEnd);
KOXML_API unsigned long ConvertUTF16toUTF32(const unsigned short* srcBegin, const unsigned short* srcEnd,
                                            wchar_t* dstBegin, wchar_t* dstEnd);
KOXML_API unsigned long ConvertUTF32toUTF16(const wchar_t* srcBegin, const wchar_t* srcEnd,
                                            unsigned short* dstBegin, unsigned short* dstEnd);
KOXML_API unsigned long ConvertUTF16toUTF8(const unsigned short* srcBegin, const unsigned short* srcEnd,
                                           unsigned char* dstBegin, unsigned char* dstEnd);
KOXML_API unsigned long ConvertUTF8toUTF16(const unsigned char* srcBegin, const unsigned char* srcEnd,
                                           unsigned short* dstBegin, unsigned short* dstEnd);

// True when the `length` bytes form one well-formed, shortest-form UTF-8
// character of that length.
KOXML_API bool IsLegalUTF8(const unsigned char* source, int length);
// True when the character starting at source is complete before sourceEnd
// and well-formed.
KOXML_API bool IsLegalUTF8Sequence(const unsigned char* source, const unsigned char* sourceEnd);

namespace KoXmlLib10 {

// While true, CEncoder passes bytes between UTF-8 and the local code page
// unchanged. Set once at start-up through ASCIIOnly(); read without locking.
extern KOXML_API bool ASCII_ONLY;
KOXML_API void ASCIIOnly(bool asciiOnly);

// Wide text in the local code page of the current C locale (the library
// never sets the locale); characters it cannot represent become '?'.
KOXML_API std::string UnicodeToMultiByte(const wchar_t* s);

// Conversions between the local code page, wide text and UTF-8.
class KOXML_API CEncoder {
 public:
  // The bytes of the wchar_t array (4 per character, no terminator).
  static CBinaryData LocalCodePageToUnicodeBinary(const char* s);
  static CBinaryData UnicodeToUtf8Binary(const wchar_t* s);
  static CBinaryData LocalCodePageToUtf8Binary(const char* s);
  // wbuf/cbuf are optional scratch buffers (capacities in elements) that
  // spare an allocation when large enough. The result ends at the first NUL.
  static std::string Utf8ToLocalCodePage(unsigned char* data, int len, wchar_t* wbuf, unsigned long wcap,
                                         char* cbuf, unsigned long ccap);
  static std::string Utf8ToLocalCodePage(unsigned char* data, int len);
  static std::string Utf8ToLocalCodePage(const char* s);
  static std::string Utf8ToLocalCodePage(const char* s, wchar_t* wbuf, unsigned long wcap, char* cbuf,
                                         unsigned long ccap);
  // Not supported: always throws std::logic_error.
  static std::string Utf16ToLocalCodePage(unsigned char* data, int len);
};

}  // namespace KoXmlLib10

#endif
