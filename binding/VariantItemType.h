#ifndef KOXMLLIB10_BINDING_VARIANTITEMTYPE_H
#define KOXMLLIB10_BINDING_VARIANTITEMTYPE_H

#include <string>

#include "KoXmlLib10/ItemType.h"
#include "KoXmlLib10/Variant.h"
#include "types/VariantAccess.h"

namespace KoXmlLib10 {

// The item type a variant holds, for the writers, which encode a value by its
// kind. The type tag of a primitive kind is its ItemType. Throws, as GetType
// does, when the variant holds no primitive value.
inline ItemType ItemTypeOf(const KoVariant& value) {
  if (!KoVariantAccess::IsPrimitive(value)) value.GetType();  // throws
  return static_cast<ItemType>(KoVariantAccess::Type(value));
}

}  // namespace KoXmlLib10

#endif
