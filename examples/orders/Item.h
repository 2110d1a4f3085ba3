// Generated from orders.xsd: complex type LineItemType.
#ifndef ORDERS_ITEM_H
#define ORDERS_ITEM_H

#include <KoXmlLib10.h>

#include <optional>
#include <string>

namespace orders {

class CItem : public KoXmlLib10::CXmlGeneratedClass {
 public:
  enum Property { kDescription, kPrice, kWeight, kShipBy, kSku, kQty };

  explicit CItem(const char* elementName = "item");
  static CSmartPtr<KoXmlLib10::CXmlObjectBase> Create(int factoryCode, const char* elementName);

  const std::string& GetDescription() const { return m_description; }
  void SetDescription(const std::string& value) { m_description = value; }
  const KoXmlLib10::CDecimal& GetPrice() const { return m_price; }
  void SetPrice(const KoXmlLib10::CDecimal& value) { m_price = value; }
  bool IsSetWeight() const { return m_weight.has_value(); }
  double GetWeight() const { return m_weight.value_or(0.0); }
  void SetWeight(double value) { m_weight = value; }
  void ClearWeight() { m_weight.reset(); }
  bool IsSetShipBy() const { return m_shipBy.has_value(); }
  KoXmlLib10::CDateTime GetShipBy() const { return m_shipBy.value_or(KoXmlLib10::CDateTime()); }
  void SetShipBy(const KoXmlLib10::CDateTime& value) { m_shipBy = value; }
  void ClearShipBy() { m_shipBy.reset(); }
  const std::string& GetSku() const { return m_sku; }
  void SetSku(const std::string& value) { m_sku = value; }
  const KoXmlLib10::CBigInteger& GetQty() const { return m_qty; }
  void SetQty(const KoXmlLib10::CBigInteger& value) { m_qty = value; }

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
  std::string m_description;
  KoXmlLib10::CDecimal m_price;
  std::optional<double> m_weight;
  std::optional<KoXmlLib10::CDateTime> m_shipBy;
  std::string m_sku;
  KoXmlLib10::CBigInteger m_qty;
};

// The repeated item member of an order.
class CItemCol : public KoXmlLib10::CXmlClassCollection {
 public:
  CItemCol(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs);
  CSmartPtr<CItem> Add();
  void Add(CItem* item) { AppendItem(item); }
  CItem* Item(int index) const { return static_cast<CItem*>(GetNodeAtIndex(index)->item); }
  KoXmlLib10::CXmlCollectionIterator<CItem> begin() const {
    return KoXmlLib10::CXmlCollectionIterator<CItem>(GetHead());
  }
  KoXmlLib10::CXmlCollectionIterator<CItem> end() const { return KoXmlLib10::CXmlCollectionIterator<CItem>(nullptr); }
};

}  // namespace orders

#endif
