#ifndef KOXMLLIB10_MEMBERS_UTF8TEXT_H
#define KOXMLLIB10_MEMBERS_UTF8TEXT_H

#include <string>

namespace KoXmlLib10 {

// Text of the local code page as UTF-8, up to its first NUL. ASCII text is
// the same in both and skips the encoder (and its buffer) altogether.
std::string LocalTextAsUtf8(const std::string& text);

}  // namespace KoXmlLib10

#endif
