#ifndef KOXMLLIB10_TYPES_VARIANTTEXT_H
#define KOXMLLIB10_TYPES_VARIANTTEXT_H

// The text of a variant's value for the writers. Internal: not installed.

#include <string>

#include "KoXmlLib10/Variant.h"

namespace KoXmlLib10 {

// The text value.ToString(format) gives, byte for byte, and with the same
// exceptions. A held string is answered with itself; every other kind is
// written into `scratch`, whose storage is reused, so that writing a value
// costs no allocation in the common kinds.
const std::string& VariantText(const KoVariant& value, const char* format, std::string& scratch);

}  // namespace KoXmlLib10

#endif
