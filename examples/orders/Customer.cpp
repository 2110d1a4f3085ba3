#include "Customer.h"

#include "OrdersNamespace.h"

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

namespace orders {

namespace {

constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

void CreateRecords(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "CustomerType",
                                kTargetNamespace, false, false, -1, ItemType_none, nullptr, false);
  CPrimitiveRestrictions email;
  email.pattern = "[^@\\s]+@[^@\\s]+";
  elements = new CElementInfo*[5]{
      new CElementInfoSeqPrimMnd("name", kTargetNamespace, CCustomer::kName, false, ItemType_string, nullptr,
                                 kPreserve, CPrimitiveRestrictions()),
      new CElementInfoSeqPrimMnd("email", kTargetNamespace, CCustomer::kEmail, false, ItemType_string, nullptr,
                                 kPreserve, email),
      new CElementInfoSeqPrimOpt("phone", kTargetNamespace, CCustomer::kPhone, false, ItemType_string, nullptr,
                                 kPreserve, CPrimitiveRestrictions()),
      new CElementInfoSeqClsMnd("address", kTargetNamespace, CCustomer::kAddress, XmlElementTypeElement,
                                &CAddress::Create, 0, false),
      nullptr};
  attributes = new CAttributeInfo*[2]{
      new CAttributeInfoPrimitive("vip", "", CCustomer::kVip, true, ItemType_boolean, nullptr, kCollapse,
                                  CPrimitiveRestrictions(), nullptr),
      nullptr};
}

CGeneratedMetaData g_records(&CreateRecords);

}  // namespace

CCustomer::CCustomer(const char* elementName) {
  AnnounceGeneratorVersion();
  SetElementName(elementName);
  Init();
}

CSmartPtr<CXmlObjectBase> CCustomer::Create(int, const char* elementName) { return new CCustomer(elementName); }

std::string CCustomer::GetTargetNamespace() const { return kTargetNamespace; }
std::string CCustomer::GetNamespace() const { return kTargetNamespace; }
CParentElementInfo* CCustomer::GetClassInfo() { return g_records.Info(); }
CElementInfo** CCustomer::GetClassElementInfo() { return g_records.Elements(); }
CAttributeInfo** CCustomer::GetClassAttributeInfo() { return g_records.Attributes(); }

void CCustomer::Init() {
  m_name.clear();
  m_email.clear();
  m_phone.reset();
  if (IsHeldAlone(m_address.get())) {
    m_address->SetElementName("address");
    m_address->Init();
  } else {
    m_address = new CAddress("address");
  }
  m_vip.reset();
}

void CCustomer::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case kName: return get ? value.SetString(m_name) : void(m_name = value.GetString());
    case kEmail: return get ? value.SetString(m_email) : void(m_email = value.GetString());
    case kPhone:
      if (get) return m_phone ? value.SetString(*m_phone) : value.SetInvalid();
      return value.IsValid() ? void(m_phone = value.GetString()) : m_phone.reset();
    case kAddress: return get ? value.SetXmlObject(m_address.get()) : void(m_address = ObjectFromVariant<CAddress>(value));
    case kVip:
      if (get) return m_vip ? value.SetBoolean(*m_vip) : value.SetInvalid();
      return value.IsValid() ? void(m_vip = value.GetBoolean()) : m_vip.reset();
  }
}

}  // namespace orders
