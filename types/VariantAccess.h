#ifndef KOXMLLIB10_TYPES_VARIANTACCESS_H
#define KOXMLLIB10_TYPES_VARIANTACCESS_H

// Read access to a variant's value in place, for the writing paths: the
// public getters hand out copies, which costs an allocation per value for
// every kind held on the heap. Internal: not installed.

#include <cstdint>
#include <string>

#include "KoXmlLib10/Variant.h"

namespace KoXmlLib10 {

struct KoVariantAccess {
  // The type tag: an ItemType for primitive kinds, 0 for none.
  static std::int32_t Type(const KoVariant& value) { return value.m_type; }
  static bool IsPrimitive(const KoVariant& value) {
    return value.m_type >= ItemType_hexBinary && value.m_type <= ItemType_integer;
  }
  // The held object of a heap kind; null when the variant holds another kind
  // or is nil (the getters then give a default value).
  static const std::string* String(const KoVariant& value) { return Held<std::string>(value, ItemType_string); }
  static const CDecimal* Decimal(const KoVariant& value) { return Held<CDecimal>(value, ItemType_decimal); }
  static const CBigInteger* Integer(const KoVariant& value) { return Held<CBigInteger>(value, ItemType_integer); }
  // Every date and time kind holds a CDateTime.
  static const CDateTime* DateTime(const KoVariant& value) {
    switch (value.m_type) {
      case ItemType_yearMonth:
      case ItemType_monthDay:
      case ItemType_date:
      case ItemType_datetime:
      case ItemType_time:
        return static_cast<const CDateTime*>(value.m_pointer);
      default:
        return nullptr;
    }
  }

  // The object or collection held, borrowed: the variant's own reference
  // keeps it alive for as long as the variant holds it. Null for none.
  static CXmlObjectBase* Object(const KoVariant& value) {
    const bool reference = value.m_type == KoVariant::TypeXmlObject || value.m_type == KoVariant::TypeXmlCollection;
    return reference ? static_cast<CXmlObjectBase*>(value.m_pointer) : nullptr;
  }

 private:
  template <class T>
  static const T* Held(const KoVariant& value, std::int32_t type) {
    return value.m_type == type ? static_cast<const T*>(value.m_pointer) : nullptr;
  }
};

}  // namespace KoXmlLib10

#endif
