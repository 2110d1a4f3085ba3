// Reading an orders document of any size order by order: the element filter
// binds each completed <order> into a COrder, adds it to running totals and
// drops it, so that memory stays flat however long the document is.
#ifndef ORDERS_STREAMTOTALS_H
#define ORDERS_STREAMTOTALS_H

#include <cstdint>
#include <string>
#include <string_view>

#include "OrdersBinding.h"
#include "OrdersGenerator.h"

namespace orders {

// What the stream adds up.
struct COrderTotals {
  unsigned long long orders = 0;
  unsigned long long items = 0;
  unsigned long long unpaid = 0;
  // Orders whose total is not the sum of their items' price x quantity.
  unsigned long long mismatched = 0;
  KoXmlLib10::CDecimal revenue;      // the order totals
  KoXmlLib10::CDecimal outstanding;  // the totals of the unpaid orders

  void Add(const COrder& order) {
    ++orders;
    KoXmlLib10::CDecimal fromItems;
    for (const CLineItem* item : *order.GetItems()) {
      ++items;
      fromItems += item->GetPrice() * KoXmlLib10::CDecimal(item->GetQty());
    }
    if (!(fromItems == order.GetTotal())) ++mismatched;
    revenue += order.GetTotal();
    if (!order.GetPaid()) {
      ++unpaid;
      outstanding += order.GetTotal();
    }
  }

  bool operator==(const COrderTotals& other) const {
    return orders == other.orders && items == other.items && unpaid == other.unpaid &&
           mismatched == other.mismatched && revenue == other.revenue && outstanding == other.outstanding;
  }

  std::string ToString() const {
    return std::to_string(orders) + " orders, " + std::to_string(items) + " items, revenue " + revenue.ToString() +
           ", " + std::to_string(unpaid) + " unpaid (" + outstanding.ToString() + " outstanding), " +
           std::to_string(mismatched) + " totals differ from their items";
  }
};

// The state of the element filter: the context to bind with and the totals.
struct COrderStream {
  explicit COrderStream(const KoXmlLib10::CXmlSerializationContext& context) : ctx(context) {}

  // The filter (CXmlDocument::ElementFilterWithState). Elements inside an
  // order stay in the tree until their order ends; the order is then bound,
  // counted and dropped. An order that does not bind stops the load with
  // the binding's exception.
  static bool OnElement(KoXmlLib10::CXmlElement* element, void* state) {
    if (element->GetLocalName() != "order" || element->GetNamespaceURI() != OrdersGen::kNamespace) return false;
    COrderStream& stream = *static_cast<COrderStream*>(state);
    CSmartPtr<COrder> order(new COrder);
    order->FromXmlElement(element, stream.ctx);
    stream.totals.Add(*order);
    return true;
  }

  const KoXmlLib10::CXmlSerializationContext& ctx;
  COrderTotals totals;
};

// The same totals taken from the generator's own events, with integer cents
// and no part of the library: what the stream must come to.
class COrderEventTotals final : public OrdersGen::IEventSink {
 public:
  COrderTotals Totals() const {
    COrderTotals totals = m_totals;
    totals.revenue = Money(m_revenueCents);
    totals.outstanding = Money(m_outstandingCents);
    return totals;
  }

  void StartElement(std::string_view, std::string_view name) override {
    m_element = name;
    m_text.clear();
    if (name == "order") {
      ++m_totals.orders;
      m_itemCents = 0;
    } else if (name == "item") {
      ++m_totals.items;
      m_quantity = 0;
    }
  }
  void Attribute(std::string_view name, std::string_view value) override {
    if (m_element == "item" && name == "qty") m_quantity = Number(value);
  }
  void Text(std::string_view text) override { m_text.append(text); }
  void EndElement(std::string_view, std::string_view name) override {
    if (name == "price") {
      m_itemCents += Number(m_text) * m_quantity;
    } else if (name == "total") {
      m_orderCents = Number(m_text);
      m_revenueCents += m_orderCents;
      if (m_orderCents != m_itemCents) ++m_totals.mismatched;
    } else if (name == "paid" && m_text == "false") {
      ++m_totals.unpaid;
      m_outstandingCents += m_orderCents;
    }
    m_element.clear();
    m_text.clear();
  }

 private:
  // The digits of a number, ignoring its decimal point: the amounts all
  // have two decimals.
  static unsigned long long Number(std::string_view text) {
    unsigned long long value = 0;
    for (char c : text)
      if (c >= '0' && c <= '9') value = value * 10 + static_cast<unsigned long long>(c - '0');
    return value;
  }
  static KoXmlLib10::CDecimal Money(unsigned long long cents) {
    std::string text = std::to_string(cents / 100) + "." + std::to_string(cents % 100 / 10) + std::to_string(cents % 10);
    return KoXmlLib10::CDecimal(text.c_str());
  }

  COrderTotals m_totals;
  std::string m_element;
  std::string m_text;
  unsigned long long m_quantity = 0;
  unsigned long long m_itemCents = 0;
  unsigned long long m_orderCents = 0;
  unsigned long long m_revenueCents = 0;
  unsigned long long m_outstandingCents = 0;
};

}  // namespace orders

#endif
