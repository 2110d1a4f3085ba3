// Generated from orders.xsd: simple type OrderStatus.
#ifndef ORDERS_ORDERSTATUS_H
#define ORDERS_ORDERSTATUS_H

namespace orders {

enum class OrderStatus { open = 0, shipped = 1, cancelled = 2 };

// The two text functions the records call; an unknown text or value throws
// KoXmlLib10::CKoInvalidValueException.
const char* OrderStatusToText(int value);
int OrderStatusFromText(const char* text);

}  // namespace orders

#endif
