// Generated from orders.xsd: names shared by the classes of the schema.
#ifndef ORDERS_ORDERSNAMESPACE_H
#define ORDERS_ORDERSNAMESPACE_H

namespace KoXmlLib10 {
class CXmlObjectBase;
}

namespace orders {

// targetNamespace of orders.xsd; elementFormDefault is qualified, so every
// element is in it, and attributeFormDefault unqualified: attributes are in none.
inline constexpr char kTargetNamespace[] = "urn:example:orders";

// Announces the generator version to the library; every class calls it
// before its first object is created.
void AnnounceGeneratorVersion();

// Whether the member object `member` is held by its owner alone. Init empties
// such a member in place rather than building a new one (reading calls Init
// on every object it fills); a member the application also holds is
// replaced, so that it does not change under the application.
bool IsHeldAlone(KoXmlLib10::CXmlObjectBase* member);

}  // namespace orders

#endif
