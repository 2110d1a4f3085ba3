#include "Orders.h"

#include "OrdersNamespace.h"

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

namespace orders {

namespace {

void CreateRecords(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "OrdersType",
                                kTargetNamespace, false, false, -1, ItemType_none, nullptr, false);
  elements = new CElementInfo*[2]{
      new CElementInfoSeqClsCol("order", kTargetNamespace, COrders::kOrders, XmlElementTypeElement), nullptr};
  attributes = new CAttributeInfo*[1]{nullptr};
}

CGeneratedMetaData g_records(&CreateRecords);

}  // namespace

COrders::COrders(const char* elementName) {
  AnnounceGeneratorVersion();
  SetElementName(elementName);
  Init();
}

CSmartPtr<CXmlObjectBase> COrders::Create(int, const char* elementName) { return new COrders(elementName); }

std::string COrders::GetTargetNamespace() const { return kTargetNamespace; }
std::string COrders::GetNamespace() const { return kTargetNamespace; }
CParentElementInfo* COrders::GetClassInfo() { return g_records.Info(); }
CElementInfo** COrders::GetClassElementInfo() { return g_records.Elements(); }
CAttributeInfo** COrders::GetClassAttributeInfo() { return g_records.Attributes(); }

void COrders::Init() {
  if (IsHeldAlone(m_orders.get()))
    m_orders->Clear();
  else
    m_orders = new COrderCol("order", kTargetNamespace, 0, -1);
}

void COrders::AccessProperty(int propertyId, bool get, KoVariant& value) {
  if (propertyId == kOrders && get) value.SetXmlCollection(m_orders.get());
}

}  // namespace orders
