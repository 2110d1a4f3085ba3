#ifndef KOXMLLIB10_BINDING_VARIANTITEMTYPE_H
#define KOXMLLIB10_BINDING_VARIANTITEMTYPE_H

#include <string>

#include "KoXmlLib10/ItemType.h"
#include "KoXmlLib10/Variant.h"

namespace KoXmlLib10 {

// The item type a variant holds, for the writers, which encode a value by its
// kind. The variant names its kind only by token, so the token is looked up
// in the order of the ItemType enumeration. Throws, as GetType does, when
// the variant holds no primitive value.
inline ItemType ItemTypeOf(const KoVariant& value) {
  static const char* const kTokens[] = {
      "hexBinary", "base64Binary", "i1",   "i2",   "i4",   "i8",       "ui1",  "ui2",    "ui4",
      "ui8",       "r4",           "r8",   "duration", "yearMonth", "monthDay", "year", "month", "day",
      "date",      "datetime",     "time", "char", "string", "boolean", "decimal", "integer"};
  const std::string token = value.GetType();
  for (int i = 0; i < static_cast<int>(sizeof kTokens / sizeof kTokens[0]); ++i)
    if (token == kTokens[i]) return static_cast<ItemType>(i + 1);
  return ItemType_none;
}

}  // namespace KoXmlLib10

#endif
