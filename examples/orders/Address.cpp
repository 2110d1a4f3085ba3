#include "Address.h"

#include "OrdersNamespace.h"

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

namespace orders {

namespace {

constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;

void CreateRecords(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "AddressType",
                                kTargetNamespace, false, false, -1, ItemType_none, nullptr, false);
  CPrimitiveRestrictions zip;
  zip.pattern = "[0-9]{5}";
  CPrimitiveRestrictions country;
  country.pattern = "[A-Z]{2}";
  elements = new CElementInfo*[5]{
      new CElementInfoSeqPrimMnd("street", kTargetNamespace, CAddress::kStreet, false, ItemType_string, nullptr,
                                 kPreserve, CPrimitiveRestrictions()),
      new CElementInfoSeqPrimMnd("city", kTargetNamespace, CAddress::kCity, false, ItemType_string, nullptr,
                                 kPreserve, CPrimitiveRestrictions()),
      new CElementInfoSeqPrimMnd("zip", kTargetNamespace, CAddress::kZip, false, ItemType_string, nullptr,
                                 kPreserve, zip),
      new CElementInfoSeqPrimMnd("country", kTargetNamespace, CAddress::kCountry, false, ItemType_string,
                                 nullptr, kPreserve, country),
      nullptr};
  attributes = new CAttributeInfo*[1]{nullptr};
}

CGeneratedMetaData g_records(&CreateRecords);

}  // namespace

CAddress::CAddress(const char* elementName) {
  AnnounceGeneratorVersion();
  SetElementName(elementName);
}

CSmartPtr<CXmlObjectBase> CAddress::Create(int, const char* elementName) { return new CAddress(elementName); }

std::string CAddress::GetTargetNamespace() const { return kTargetNamespace; }
std::string CAddress::GetNamespace() const { return kTargetNamespace; }
CParentElementInfo* CAddress::GetClassInfo() { return g_records.Info(); }
CElementInfo** CAddress::GetClassElementInfo() { return g_records.Elements(); }
CAttributeInfo** CAddress::GetClassAttributeInfo() { return g_records.Attributes(); }

void CAddress::Init() {
  m_street.clear();
  m_city.clear();
  m_zip.clear();
  m_country.clear();
}

void CAddress::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case kStreet: return get ? value.SetString(m_street) : void(m_street = value.GetString());
    case kCity: return get ? value.SetString(m_city) : void(m_city = value.GetString());
    case kZip: return get ? value.SetString(m_zip) : void(m_zip = value.GetString());
    case kCountry: return get ? value.SetString(m_country) : void(m_country = value.GetString());
  }
}

}  // namespace orders
