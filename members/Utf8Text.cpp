#include "members/Utf8Text.h"

#include <algorithm>
#include <string_view>

#include "KoXmlLib10/Unicode.h"

namespace KoXmlLib10 {

std::string LocalTextAsUtf8(const std::string& text) {
  const std::string_view upToNul = std::string_view(text).substr(0, text.find('\0'));
  const bool ascii = std::all_of(upToNul.begin(), upToNul.end(),
                                 [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (ascii || ASCII_ONLY) return std::string(upToNul);
  const CBinaryData utf8 = CEncoder::LocalCodePageToUtf8Binary(text.c_str());
  if (utf8.GetLength() == 0) return std::string();
  const std::string converted(reinterpret_cast<const char*>(utf8.GetData()), utf8.GetLength());
  return converted.substr(0, converted.find('\0'));
}

const std::string& LocalTextAsUtf8(const std::string& text, std::string& scratch) {
  const bool plain = std::all_of(text.begin(), text.end(), [](char c) {
    return c != '\0' && static_cast<unsigned char>(c) < 0x80;
  });
  if (plain) return text;
  scratch = LocalTextAsUtf8(text);
  return scratch;
}

}  // namespace KoXmlLib10
