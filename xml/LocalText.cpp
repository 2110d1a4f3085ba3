#include "xml/LocalText.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>

#include "KoXmlLib10/Unicode.h"

namespace KoXmlLib10 {

namespace {

// Eight bytes at a time: names and text chunks are short but numerous.
bool IsAscii(std::string_view text) {
  const char* p = text.data();
  size_t n = text.size();
  uint64_t any = 0;
  for (; n >= 8; p += 8, n -= 8) {
    uint64_t word;
    std::memcpy(&word, p, 8);
    any |= word;
  }
  for (; n > 0; ++p, --n) any |= static_cast<unsigned char>(*p);
  return (any & 0x8080808080808080ull) == 0;
}

}  // namespace

void CLocalTextScratch::Allocate() { m_buffer.reset(new unsigned char[kSize]); }

void CLocalTextScratch::Free() { m_buffer.reset(); }

std::string_view CLocalTextScratch::ToLocal(std::string_view utf8, std::string& converted, bool useScratch) const {
  if (ASCII_ONLY || IsAscii(utf8)) return utf8;
  unsigned char* data = reinterpret_cast<unsigned char*>(const_cast<char*>(utf8.data()));
  const int length = static_cast<int>(std::min<size_t>(utf8.size(), INT_MAX));
  if (useScratch && m_buffer) {
    wchar_t* wide = reinterpret_cast<wchar_t*>(m_buffer.get());
    char* narrow = reinterpret_cast<char*>(m_buffer.get() + kSize / 2);
    converted = CEncoder::Utf8ToLocalCodePage(data, length, wide, kSize / 8, narrow, kSize / 2);
  } else {
    converted = CEncoder::Utf8ToLocalCodePage(data, length);
  }
  return converted;
}

}  // namespace KoXmlLib10
