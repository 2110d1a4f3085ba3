// Generated from orders.xsd: complex type CustomerType.
#ifndef ORDERS_CUSTOMER_H
#define ORDERS_CUSTOMER_H

#include <KoXmlLib10.h>

#include <optional>
#include <string>

#include "Address.h"

namespace orders {

class CCustomer : public KoXmlLib10::CXmlGeneratedClass {
 public:
  enum Property { kName, kEmail, kPhone, kAddress, kVip };

  explicit CCustomer(const char* elementName = "customer");
  static CSmartPtr<KoXmlLib10::CXmlObjectBase> Create(int factoryCode, const char* elementName);

  const std::string& GetName() const { return m_name; }
  void SetName(const std::string& value) { m_name = value; }
  const std::string& GetEmail() const { return m_email; }
  void SetEmail(const std::string& value) { m_email = value; }
  bool IsSetPhone() const { return m_phone.has_value(); }
  std::string GetPhone() const { return m_phone.value_or(""); }
  void SetPhone(const std::string& value) { m_phone = value; }
  void ClearPhone() { m_phone.reset(); }
  CAddress* GetAddress() const { return m_address.get(); }
  bool IsSetVip() const { return m_vip.has_value(); }
  bool GetVip() const { return m_vip.value_or(false); }
  void SetVip(bool value) { m_vip = value; }
  void ClearVip() { m_vip.reset(); }

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
  std::string m_name;
  std::string m_email;
  std::optional<std::string> m_phone;
  CSmartPtr<CAddress> m_address;
  std::optional<bool> m_vip;
};

}  // namespace orders

#endif
