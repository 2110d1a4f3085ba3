// Generated from orders.xsd: complex type OrderType.
#ifndef ORDERS_ORDER_H
#define ORDERS_ORDER_H

#include <KoXmlLib10.h>

#include <optional>
#include <string>

#include "Customer.h"
#include "Item.h"
#include "OrderStatus.h"

namespace orders {

class COrder : public KoXmlLib10::CXmlGeneratedClass {
 public:
  enum Property { kPlaced, kCustomer, kItems, kNote, kTotal, kPaid, kTags, kId, kStatus, kCurrency };

  explicit COrder(const char* elementName = "order");
  static CSmartPtr<KoXmlLib10::CXmlObjectBase> Create(int factoryCode, const char* elementName);

  const KoXmlLib10::CDateTime& GetPlaced() const { return m_placed; }
  void SetPlaced(const KoXmlLib10::CDateTime& value) { m_placed = value; }
  CCustomer* GetCustomer() const { return m_customer.get(); }
  // Between 1 and 8 items.
  CItemCol* GetItems() const { return m_items.get(); }
  bool IsSetNote() const { return m_note.has_value(); }
  std::string GetNote() const { return m_note.value_or(""); }
  void SetNote(const std::string& value) { m_note = value; }
  void ClearNote() { m_note.reset(); }
  const KoXmlLib10::CDecimal& GetTotal() const { return m_total; }
  void SetTotal(const KoXmlLib10::CDecimal& value) { m_total = value; }
  bool GetPaid() const { return m_paid; }
  void SetPaid(bool value) { m_paid = value; }
  // At most three tags.
  KoXmlLib10::CstringCol* GetTags() const { return m_tags.get(); }
  long GetId() const { return m_id; }
  void SetId(long value) { m_id = value; }
  bool IsSetStatus() const { return m_status.has_value(); }
  OrderStatus GetStatus() const { return m_status.value_or(OrderStatus::open); }
  void SetStatus(OrderStatus value) { m_status = value; }
  void ClearStatus() { m_status.reset(); }
  bool IsSetCurrency() const { return m_currency.has_value(); }
  std::string GetCurrency() const { return m_currency.value_or(""); }
  void SetCurrency(const std::string& value) { m_currency = value; }
  void ClearCurrency() { m_currency.reset(); }

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
  KoXmlLib10::CDateTime m_placed;
  CSmartPtr<CCustomer> m_customer;
  CSmartPtr<CItemCol> m_items;
  std::optional<std::string> m_note;
  KoXmlLib10::CDecimal m_total;
  bool m_paid = false;
  CSmartPtr<KoXmlLib10::CstringCol> m_tags;
  long m_id = 0;
  std::optional<OrderStatus> m_status;
  std::optional<std::string> m_currency;
};

// The repeated order member of the orders document.
class COrderCol : public KoXmlLib10::CXmlClassCollection {
 public:
  COrderCol(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs);
  CSmartPtr<COrder> Add();
  void Add(COrder* order) { AppendItem(order); }
  COrder* Item(int index) const { return static_cast<COrder*>(GetNodeAtIndex(index)->item); }
  KoXmlLib10::CXmlCollectionIterator<COrder> begin() const {
    return KoXmlLib10::CXmlCollectionIterator<COrder>(GetHead());
  }
  KoXmlLib10::CXmlCollectionIterator<COrder> end() const {
    return KoXmlLib10::CXmlCollectionIterator<COrder>(nullptr);
  }
};

}  // namespace orders

#endif
