// Generated from orders.xsd: complex type AddressType.
#ifndef ORDERS_ADDRESS_H
#define ORDERS_ADDRESS_H

#include <KoXmlLib10.h>

#include <string>

namespace orders {

class CAddress : public KoXmlLib10::CXmlGeneratedClass {
 public:
  enum Property { kStreet, kCity, kZip, kCountry };

  explicit CAddress(const char* elementName = "address");
  static CSmartPtr<KoXmlLib10::CXmlObjectBase> Create(int factoryCode, const char* elementName);

  const std::string& GetStreet() const { return m_street; }
  void SetStreet(const std::string& value) { m_street = value; }
  const std::string& GetCity() const { return m_city; }
  void SetCity(const std::string& value) { m_city = value; }
  const std::string& GetZip() const { return m_zip; }
  void SetZip(const std::string& value) { m_zip = value; }
  const std::string& GetCountry() const { return m_country; }
  void SetCountry(const std::string& value) { m_country = value; }

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
  std::string m_street;
  std::string m_city;
  std::string m_zip;
  std::string m_country;
};

}  // namespace orders

#endif
