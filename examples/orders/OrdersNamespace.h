// Generated from orders.xsd: names shared by the classes of the schema.
#ifndef ORDERS_ORDERSNAMESPACE_H
#define ORDERS_ORDERSNAMESPACE_H

namespace orders {

// targetNamespace of orders.xsd; elementFormDefault is qualified, so every
// element is in it, and attributeFormDefault unqualified: attributes are in none.
inline constexpr char kTargetNamespace[] = "urn:example:orders";

// Announces the generator version to the library; every class calls it
// before its first object is created.
void AnnounceGeneratorVersion();

}  // namespace orders

#endif
