#ifndef KOXMLLIB10_FOUNDATION_LOCALTEXT_H
#define KOXMLLIB10_FOUNDATION_LOCALTEXT_H

#include <cstddef>

namespace KoXmlLib10 {

// True when the `length` bytes of local-code-page text are already their own
// UTF-8 encoding, so that CEncoder::LocalCodePageToUtf8Binary would return
// them unchanged.
bool LocalTextIsItsOwnUtf8(const char* text, size_t length);

}  // namespace KoXmlLib10

#endif
