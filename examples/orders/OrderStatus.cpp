#include "OrderStatus.h"

#include <KoXmlLib10.h>

#include <cstring>

namespace orders {

namespace {
const char* const kTexts[] = {"open", "shipped", "cancelled"};
}  // namespace

const char* OrderStatusToText(int value) {
  if (value < 0 || value >= 3)
    throw KoXmlLib10::CKoInvalidValueException(
        KoXmlLib10::FormatString("Invalid value [%d] for enumeration OrderStatus", value));
  return kTexts[value];
}

int OrderStatusFromText(const char* text) {
  for (int i = 0; i < 3; ++i)
    if (std::strcmp(text, kTexts[i]) == 0) return i;
  throw KoXmlLib10::CKoInvalidValueException(
      KoXmlLib10::FormatString("Invalid value [%s] for enumeration OrderStatus", text));
}

}  // namespace orders
