#include "Order.h"

#include "OrdersNamespace.h"

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

namespace orders {

namespace {

constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

void CreateRecords(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "OrderType", kTargetNamespace,
                                false, false, -1, ItemType_none, nullptr, false);
  // UtcDateTime: xs:dateTime always written with the Z designator.
  CPrimitiveRestrictions utc;
  utc.pattern = ".+Z";
  // Money: xs:decimal with fractionDigits 2 (not held by the run time) and minInclusive 0.
  CPrimitiveRestrictions money;
  money.minInclusive = "0";
  CPrimitiveRestrictions currency;
  currency.pattern = "[A-Z]{3}";
  elements = new CElementInfo*[8]{
      new CElementInfoSeqPrimMnd("placed", kTargetNamespace, COrder::kPlaced, false, ItemType_datetime, nullptr,
                                 kCollapse, utc),
      new CElementInfoSeqClsMnd("customer", kTargetNamespace, COrder::kCustomer, XmlElementTypeElement,
                                &CCustomer::Create, 0, false),
      new CElementInfoSeqClsCol("item", kTargetNamespace, COrder::kItems, XmlElementTypeElement),
      new CElementInfoSeqPrimOpt("note", kTargetNamespace, COrder::kNote, false, ItemType_string, nullptr,
                                 kPreserve, CPrimitiveRestrictions()),
      new CElementInfoSeqPrimMnd("total", kTargetNamespace, COrder::kTotal, false, ItemType_decimal, nullptr,
                                 kCollapse, money),
      new CElementInfoSeqPrimMnd("paid", kTargetNamespace, COrder::kPaid, false, ItemType_boolean, nullptr,
                                 kCollapse, CPrimitiveRestrictions()),
      new CElementInfoSeqPrimCol("tag", kTargetNamespace, COrder::kTags),
      nullptr};
  attributes = new CAttributeInfo*[4]{
      new CAttributeInfoPrimitive("id", "", COrder::kId, false, ItemType_i4, nullptr, kCollapse,
                                  CPrimitiveRestrictions(), nullptr),
      new CAttributeInfoEnum("status", "", COrder::kStatus, true, &OrderStatusToText, &OrderStatusFromText, nullptr),
      new CAttributeInfoPrimitive("currency", "", COrder::kCurrency, true, ItemType_string, nullptr, kPreserve,
                                  currency, nullptr),
      nullptr};
}

CGeneratedMetaData g_records(&CreateRecords);

}  // namespace

COrder::COrder(const char* elementName) {
  AnnounceGeneratorVersion();
  SetElementName(elementName);
  Init();
}

CSmartPtr<CXmlObjectBase> COrder::Create(int, const char* elementName) { return new COrder(elementName); }

std::string COrder::GetTargetNamespace() const { return kTargetNamespace; }
std::string COrder::GetNamespace() const { return kTargetNamespace; }
CParentElementInfo* COrder::GetClassInfo() { return g_records.Info(); }
CElementInfo** COrder::GetClassElementInfo() { return g_records.Elements(); }
CAttributeInfo** COrder::GetClassAttributeInfo() { return g_records.Attributes(); }

void COrder::Init() {
  m_placed = CDateTime();
  if (IsHeldAlone(m_customer.get())) {
    m_customer->SetElementName("customer");
    m_customer->Init();
  } else {
    m_customer = new CCustomer("customer");
  }
  if (IsHeldAlone(m_items.get()))
    m_items->Clear();
  else
    m_items = new CItemCol("item", kTargetNamespace, 1, 8);
  m_note.reset();
  m_total = CDecimal();
  m_paid = false;
  if (IsHeldAlone(m_tags.get()))
    m_tags->Clear();
  else
    m_tags = new CstringCol("tag", kTargetNamespace, 0, 3, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1,
                            CWhitespaceUtils::WhitespaceRule_Preserve, nullptr);
  m_id = 0;
  m_status.reset();
  m_currency.reset();
}

void COrder::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case kPlaced: return get ? value.SetDateTime(m_placed) : void(m_placed = value.GetDateTime());
    case kCustomer:
      return get ? value.SetXmlObject(m_customer.get()) : void(m_customer = ObjectFromVariant<CCustomer>(value));
    case kItems: return get ? value.SetXmlCollection(m_items.get()) : void();
    case kNote:
      if (get) return m_note ? value.SetString(*m_note) : value.SetInvalid();
      return value.IsValid() ? void(m_note = value.GetString()) : m_note.reset();
    case kTotal: return get ? value.SetDecimal(m_total) : void(m_total = value.GetDecimal());
    case kPaid: return get ? value.SetBoolean(m_paid) : void(m_paid = value.GetBoolean());
    case kTags: return get ? value.SetXmlCollection(m_tags.get()) : void();
    case kId: return get ? value.SetI4(m_id) : void(m_id = value.GetI4());
    case kStatus:
      if (get) return m_status ? value.SetI4(static_cast<long>(*m_status)) : value.SetInvalid();
      return value.IsValid() ? void(m_status = static_cast<OrderStatus>(value.GetI4())) : m_status.reset();
    case kCurrency:
      if (get) return m_currency ? value.SetString(*m_currency) : value.SetInvalid();
      return value.IsValid() ? void(m_currency = value.GetString()) : m_currency.reset();
  }
}

COrderCol::COrderCol(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs)
    : CXmlClassCollection(elementName, elementNamespace, minOccurs, maxOccurs, &COrder::Create, 0) {}

CSmartPtr<COrder> COrderCol::Add() {
  CSmartPtr<COrder> order(new COrder(GetElementName().c_str()));
  AppendItem(order.get());
  return order;
}

}  // namespace orders
