#include "xml/LocalText.h"

#include <algorithm>
#include <climits>

#include "KoXmlLib10/Unicode.h"

namespace KoXmlLib10 {

void CLocalTextScratch::Allocate() { m_buffer.reset(new unsigned char[kSize]); }

void CLocalTextScratch::Free() { m_buffer.reset(); }

std::string_view CLocalTextScratch::ToLocal(std::string_view utf8, std::string& converted, bool useScratch) const {
  unsigned char* data = reinterpret_cast<unsigned char*>(const_cast<char*>(utf8.data()));
  if (ASCII_ONLY || !DoesUTF8StrContainAnyCharsLargerThanOneByte(data, utf8.size())) return utf8;
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
