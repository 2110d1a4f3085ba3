#include "support/TestModel.h"

namespace testmodel {

namespace {

// Generated code hands the library its generator version before it creates
// any object.
const bool g_versionAnnounced = (SetGeneratorVersion(10, 1), true);

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

void Get(const std::optional<std::string>& property, KoVariant& value) {
  property ? value.SetString(*property) : value.SetInvalid();
}
void Get(const std::optional<long>& property, KoVariant& value) {
  property ? value.SetI4(*property) : value.SetInvalid();
}
void Set(std::optional<std::string>& property, const KoVariant& value) {
  if (value.IsValid() && !value.IsNil()) property = value.GetString();
  else property.reset();
}
void Set(std::optional<long>& property, const KoVariant& value) {
  if (value.IsValid() && !value.IsNil()) property = value.GetI4();
  else property.reset();
}
template <class T>
void Access(std::optional<T>& property, bool get, KoVariant& value) {
  get ? Get(property, value) : Set(property, value);
}
template <class T>
void Access(CSmartPtr<T>& property, bool get, KoVariant& value) {
  if (get) value.SetXmlObject(property.get());
  else property = ObjectFromVariant<T>(value);
}
[[noreturn]] void NoProperty(int propertyId) {
  throw CKoInvalidParamException(FormatString("No property %d", propertyId));
}

CParentElementInfo* Info(XmlElementGroupType group, const char* typeName, bool rejectUnknownAttributes,
                         bool writeTypeAttribute = false, XmlElementType elementType = XmlElementTypeElement,
                         int valuePropertyId = -1, ItemType valueType = ItemType_none, bool valueAsText = false) {
  return new CParentElementInfo(group, elementType, typeName, kNs, rejectUnknownAttributes, writeTypeAttribute,
                                valuePropertyId, valueType, nullptr, valueAsText);
}
CElementInfo* Mandatory(const char* name, int id, ItemType type) {
  return new CElementInfoSeqPrimMnd(name, kNs, id, false, type, nullptr, kCollapse, CPrimitiveRestrictions());
}
CElementInfo* Optional(const char* name, int id, ItemType type, bool nillable = false) {
  return new CElementInfoSeqPrimOpt(name, kNs, id, nillable, type, nullptr, kCollapse, CPrimitiveRestrictions());
}
CAttributeInfo* Attribute(const char* name, int id, bool optional, ItemType type) {
  return new CAttributeInfoPrimitive(name, "", id, optional, type, nullptr, kCollapse, CPrimitiveRestrictions(),
                                     nullptr);
}

// One static per class, as generated code keeps them.
CGeneratedMetaData g_address([](CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = Info(XmlElementGroupTypeSequence, "Address", true);
  elements = Elements({Mandatory("street", CAddress::P_street, ItemType_string),
                       Optional("city", CAddress::P_city, ItemType_string),
                       Optional("zip", CAddress::P_zip, ItemType_i4)});
  attributes = Attributes({Attribute("kind", CAddress::P_kind, true, ItemType_string)});
});
CGeneratedMetaData g_person([](CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = Info(XmlElementGroupTypeSequence, "person", true, true);
  elements = Elements({Mandatory("name", CPerson::P_name, ItemType_string),
                       Optional("age", CPerson::P_age, ItemType_i4, true),
                       new CElementInfoSeqClsOpt("address", kNs, CPerson::P_address, XmlElementTypeElement,
                                                 CreateObject, F_Address),
                       new CElementInfoSeqPrimCol("tag", kNs, CPerson::P_tags),
                       Optional("note", CPerson::P_note, ItemType_string)});
  attributes = Attributes({Attribute("id", CPerson::P_id, false, ItemType_i4),
                           Attribute("lang", CPerson::P_lang, true, ItemType_string)});
});
CGeneratedMetaData g_meta([](CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = Info(XmlElementGroupTypeSequence, "Meta", false, false, XmlElementTypePseudo);
  elements = Elements({Optional("comment", CMeta::P_comment, ItemType_string)});
  attributes = Attributes({Attribute("rev", CMeta::P_rev, true, ItemType_i4)});
});
CGeneratedMetaData g_shape([](CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = Info(XmlElementGroupTypeChoice, "shape", true);
  elements = Elements(
      {new CElementInfoChoicePrimOpt("radius", kNs, CShape::P_radius, false, ItemType_i4, nullptr, kCollapse,
                                     CPrimitiveRestrictions()),
       new CElementInfoChoicePrimOpt("label", kNs, CShape::P_label, false, ItemType_string, nullptr, kCollapse,
                                     CPrimitiveRestrictions()),
       new CElementInfoChoiceClsOpt("inner", kNs, CShape::P_inner, XmlElementTypeElement, CreateObject, F_Shape)});
  attributes = Attributes({});
});
CGeneratedMetaData g_team([](CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  // The pseudo child's attribute stands on this element, so unknown
  // attributes are let through.
  info = Info(XmlElementGroupTypeSequence, "team", false);
  elements = Elements({new CElementInfoSeqClsOpt("leader", kNs, CTeam::P_leader, XmlElementTypeElement,
                                                 CreateObject, F_Person),
                       new CElementInfoSeqClsMnd("meta", kNs, CTeam::P_meta, XmlElementTypePseudo, CreateObject,
                                                 F_Meta, false),
                       new CElementInfoSeqClsOpt("shape", kNs, CTeam::P_shape, XmlElementTypeElement,
                                                 CreateObject, F_Shape)});
  attributes = Attributes({Attribute("title", CTeam::P_title, true, ItemType_string)});
});
CGeneratedMetaData g_bag([](CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = Info(XmlElementGroupTypeAll, "bag", true);
  const CPrimitiveRestrictions none;
  elements = Elements({new CElementInfoAllPrimMnd("x", kNs, CBag::P_x, false, ItemType_i4, nullptr, kCollapse, none),
                       new CElementInfoAllPrimOpt("y", kNs, CBag::P_y, false, ItemType_string, nullptr, kCollapse,
                                                  none),
                       new CElementInfoAllPrimMnd("z", kNs, CBag::P_z, false, ItemType_i4, nullptr, kCollapse, none)});
  attributes = Attributes({});
});
CGeneratedMetaData g_price([](CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  info = Info(XmlElementGroupTypeSequence, "price", true, false, XmlElementTypeElement, CPrice::P_value,
              ItemType_decimal);
  elements = Elements({});
  attributes = Attributes({Attribute("currency", CPrice::P_currency, true, ItemType_string)});
});
CGeneratedMetaData g_code([](CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  // Declared as a number, but kept as the text the document holds.
  info = Info(XmlElementGroupTypeSequence, "code", true, false, XmlElementTypeElement, CCode::P_text, ItemType_i4,
              true);
  elements = Elements({});
  attributes = Attributes({});
});

}  // namespace

CSmartPtr<CXmlObjectBase> CreateObject(int factoryCode, const char* elementName) {
  CSmartPtr<CXmlObjectBase> object;
  switch (factoryCode) {
    case F_Address: object = new CAddress(); break;
    case F_Person: object = new CPerson(); break;
    case F_Shape: object = new CShape(); break;
    case F_Meta: object = new CMeta(); break;
    default: throw CKoException(FormatString("No class for factory code %d", factoryCode));
  }
  object->SetElementName(elementName);
  return object;
}

#define TESTMODEL_RECORDS(Class, meta)                                          \
  CParentElementInfo* Class::GetClassInfo() { return meta.Info(); }             \
  CElementInfo** Class::GetClassElementInfo() { return meta.Elements(); }       \
  CAttributeInfo** Class::GetClassAttributeInfo() { return meta.Attributes(); }

TESTMODEL_RECORDS(CAddress, g_address)
CAddress::CAddress() { SetElementName("address"); }
void CAddress::Init() {
  street.reset(), city.reset(), zip.reset(), kind.reset();
  m_nil = false;
}
void CAddress::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_street: return Access(street, get, value);
    case P_city: return Access(city, get, value);
    case P_zip: return Access(zip, get, value);
    case P_kind: return Access(kind, get, value);
    default: NoProperty(propertyId);
  }
}

TESTMODEL_RECORDS(CPerson, g_person)
CPerson::CPerson()
    : tags(new CstringCol("tag", kNs, 0, 4, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1, kCollapse,
                          nullptr)) {
  SetElementName("person");
}
std::string CPerson::Tags() const {
  std::string joined;
  for (const std::string& tag : *tags) joined += (joined.empty() ? "" : ",") + tag;
  return joined;
}
void CPerson::Init() {
  name.reset(), note.reset(), lang.reset(), age.reset(), id.reset();
  ageNil = false;
  address = nullptr;
  tags->Clear();
}
void CPerson::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_name: return Access(name, get, value);
    case P_age:
      if (!get) ageNil = value.IsNil();
      Access(age, get, value);
      if (get && ageNil) value.SetNil();
      return;
    case P_address: return Access(address, get, value);
    case P_tags:
      if (get) value.SetXmlCollection(tags.get());
      return;
    case P_note: return Access(note, get, value);
    case P_id: return Access(id, get, value);
    case P_lang: return Access(lang, get, value);
    default: NoProperty(propertyId);
  }
}

TESTMODEL_RECORDS(CMeta, g_meta)
CMeta::CMeta() = default;
void CMeta::Init() { comment.reset(), rev.reset(); }
void CMeta::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_comment: return Access(comment, get, value);
    case P_rev: return Access(rev, get, value);
    default: NoProperty(propertyId);
  }
}

TESTMODEL_RECORDS(CShape, g_shape)
CShape::CShape() { SetElementName("shape"); }
void CShape::Init() {
  radius.reset(), label.reset();
  inner = nullptr;
}
void CShape::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_radius: return Access(radius, get, value);
    case P_label: return Access(label, get, value);
    case P_inner: return Access(inner, get, value);
    default: NoProperty(propertyId);
  }
}

TESTMODEL_RECORDS(CTeam, g_team)
CTeam::CTeam() : meta(new CMeta()) { SetElementName("team"); }
void CTeam::Init() {
  title.reset();
  leader = nullptr;
  shape = nullptr;
  meta->Init();
}
void CTeam::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_leader: return Access(leader, get, value);
    case P_meta: return Access(meta, get, value);
    case P_shape: return Access(shape, get, value);
    case P_title: return Access(title, get, value);
    default: NoProperty(propertyId);
  }
}

TESTMODEL_RECORDS(CBag, g_bag)
CBag::CBag() { SetElementName("bag"); }
void CBag::Init() { x.reset(), y.reset(), z.reset(); }
void CBag::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_x: return Access(x, get, value);
    case P_y: return Access(y, get, value);
    case P_z: return Access(z, get, value);
    default: NoProperty(propertyId);
  }
}

TESTMODEL_RECORDS(CPrice, g_price)
CPrice::CPrice() { SetElementName("price"); }
void CPrice::Init() {
  value.SetInvalid();
  currency.reset();
}
void CPrice::AccessProperty(int propertyId, bool get, KoVariant& v) {
  switch (propertyId) {
    case P_value: get ? (void)(v = value) : (void)(value = v); return;
    case P_currency: return Access(currency, get, v);
    default: NoProperty(propertyId);
  }
}

TESTMODEL_RECORDS(CCode, g_code)
CCode::CCode() { SetElementName("code"); }
void CCode::Init() { text.reset(); }
void CCode::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_text: return Access(text, get, value);
    default: NoProperty(propertyId);
  }
}

}  // namespace testmodel
