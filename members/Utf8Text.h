#ifndef KOXMLLIB10_MEMBERS_UTF8TEXT_H
#define KOXMLLIB10_MEMBERS_UTF8TEXT_H

#include <string>

namespace KoXmlLib10 {

// Text of the local code page as UTF-8, up to its first NUL. ASCII text is
// the same in both and skips the encoder (and its buffer) altogether.
std::string LocalTextAsUtf8(const std::string& text);

// The same text as LocalTextAsUtf8, without a copy when `text` is plain ASCII
// (no byte above 0x7F, no NUL): then `text` itself, otherwise `scratch`
// filled with the conversion.
const std::string& LocalTextAsUtf8(const std::string& text, std::string& scratch);

}  // namespace KoXmlLib10

#endif
