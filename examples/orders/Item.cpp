#include "Item.h"

#include "OrdersNamespace.h"

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

namespace orders {

namespace {

constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

void CreateRecords(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "LineItemType",
                                kTargetNamespace, false, false, -1, ItemType_none, nullptr, false);
  // Money: xs:decimal with fractionDigits 2 (not held by the run time) and minInclusive 0.
  CPrimitiveRestrictions money;
  money.minInclusive = "0";
  CPrimitiveRestrictions sku;
  sku.pattern = "[A-Z]{3}-[0-9]{4}";
  // xs:positiveInteger: xs:integer from 1 up.
  CPrimitiveRestrictions positive;
  positive.minInclusive = "1";
  elements = new CElementInfo*[5]{
      new CElementInfoSeqPrimMnd("description", kTargetNamespace, CItem::kDescription, false, ItemType_string,
                                 nullptr, kPreserve, CPrimitiveRestrictions()),
      new CElementInfoSeqPrimMnd("price", kTargetNamespace, CItem::kPrice, false, ItemType_decimal, nullptr,
                                 kCollapse, money),
      new CElementInfoSeqPrimOpt("weight", kTargetNamespace, CItem::kWeight, false, ItemType_r8, nullptr,
                                 kCollapse, CPrimitiveRestrictions()),
      new CElementInfoSeqPrimOpt("shipBy", kTargetNamespace, CItem::kShipBy, false, ItemType_date, nullptr,
                                 kCollapse, CPrimitiveRestrictions()),
      nullptr};
  attributes = new CAttributeInfo*[3]{
      new CAttributeInfoPrimitive("sku", "", CItem::kSku, false, ItemType_string, nullptr, kPreserve, sku, nullptr),
      new CAttributeInfoPrimitive("qty", "", CItem::kQty, false, ItemType_integer, nullptr, kCollapse, positive,
                                  nullptr),
      nullptr};
}

CGeneratedMetaData g_records(&CreateRecords);

}  // namespace

CItem::CItem(const char* elementName) {
  AnnounceGeneratorVersion();
  SetElementName(elementName);
}

CSmartPtr<CXmlObjectBase> CItem::Create(int, const char* elementName) { return new CItem(elementName); }

std::string CItem::GetTargetNamespace() const { return kTargetNamespace; }
std::string CItem::GetNamespace() const { return kTargetNamespace; }
CParentElementInfo* CItem::GetClassInfo() { return g_records.Info(); }
CElementInfo** CItem::GetClassElementInfo() { return g_records.Elements(); }
CAttributeInfo** CItem::GetClassAttributeInfo() { return g_records.Attributes(); }

void CItem::Init() {
  m_description.clear();
  m_price = CDecimal();
  m_weight.reset();
  m_shipBy.reset();
  m_sku.clear();
  m_qty = CBigInteger();
}

void CItem::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case kDescription: return get ? value.SetString(m_description) : void(m_description = value.GetString());
    case kPrice: return get ? value.SetDecimal(m_price) : void(m_price = value.GetDecimal());
    case kWeight:
      if (get) return m_weight ? value.SetR8(*m_weight) : value.SetInvalid();
      return value.IsValid() ? void(m_weight = value.GetR8()) : m_weight.reset();
    case kShipBy:
      if (get) return m_shipBy ? value.SetDate(*m_shipBy) : value.SetInvalid();
      return value.IsValid() ? void(m_shipBy = value.GetDate()) : m_shipBy.reset();
    case kSku: return get ? value.SetString(m_sku) : void(m_sku = value.GetString());
    case kQty: return get ? value.SetInteger(m_qty) : void(m_qty = value.GetInteger());
  }
}

CItemCol::CItemCol(const char* elementName, const char* elementNamespace, int minOccurs, int maxOccurs)
    : CXmlClassCollection(elementName, elementNamespace, minOccurs, maxOccurs, &CItem::Create, 0) {}

CSmartPtr<CItem> CItemCol::Add() {
  CSmartPtr<CItem> item(new CItem(GetElementName().c_str()));
  AppendItem(item.get());
  return item;
}

}  // namespace orders
