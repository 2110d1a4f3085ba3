// Generated from orders.xsd: global element orders (type OrdersType).
#ifndef ORDERS_ORDERS_H
#define ORDERS_ORDERS_H

#include <KoXmlLib10.h>

#include <string>

#include "Order.h"

namespace orders {

class COrders : public KoXmlLib10::CXmlGeneratedClass {
 public:
  enum Property { kOrders };

  explicit COrders(const char* elementName = "orders");
  static CSmartPtr<KoXmlLib10::CXmlObjectBase> Create(int factoryCode, const char* elementName);

  COrderCol* GetOrders() const { return m_orders.get(); }

  // The generated-code contract.
  KoXmlLib10::CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override;
  std::string GetNamespace() const override;
  void AccessProperty(int propertyId, bool get, KoXmlLib10::KoVariant& value) override;
  KoXmlLib10::CParentElementInfo* GetClassInfo() override;
  KoXmlLib10::CElementInfo** GetClassElementInfo() override;
  KoXmlLib10::CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;

 private:
  CSmartPtr<COrderCol> m_orders;
};

}  // namespace orders

#endif
