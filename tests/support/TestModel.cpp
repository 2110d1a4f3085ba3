#include "support/TestModel.h"

#include <cstdlib>
#include <mutex>


#include "KoXmlLib10/Version.h"
#include "support/TestRecords.h"

namespace testmodel {

namespace {

// Generated code hands the library its generator version before it creates
// any object.
const bool g_versionAnnounced = (SetGeneratorVersion(10, 1), true);

template <class T>
void Get(const std::optional<T>& property, KoVariant& value);
template <>
void Get(const std::optional<std::string>& property, KoVariant& value) {
  if (property)
    value.SetString(*property);
  else
    value.SetInvalid();
}
template <>
void Get(const std::optional<long>& property, KoVariant& value) {
  if (property)
    value.SetI4(*property);
  else
    value.SetInvalid();
}
void Set(std::optional<std::string>& property, const KoVariant& value) {
  if (value.IsValid() && !value.IsNil())
    property = value.GetString();
  else
    property.reset();
}
void Set(std::optional<long>& property, const KoVariant& value) {
  if (value.IsValid() && !value.IsNil())
    property = value.GetI4();
  else
    property.reset();
}
template <class T>
void GetObject(const CSmartPtr<T>& property, KoVariant& value) {
  value.SetXmlObject(property.get());
}
template <class T>
void SetObject(CSmartPtr<T>& property, const KoVariant& value) {
  CXmlObjectBase* object = value.GetXmlObject();
  property = dynamic_cast<T*>(object);
  if (object) object->Release();
}

CParentElementInfo* Sequence(const char* typeName, bool rejectUnknownAttributes, bool writeTypeAttribute,
                             XmlElementType elementType = XmlElementTypeElement) {
  return new CParentElementInfo(XmlElementGroupTypeSequence, elementType, typeName, kNs, rejectUnknownAttributes,
                                writeTypeAttribute, -1, ItemType_none, nullptr, false);
}

}  // namespace

ClassMetaData CAddress::s_meta;
ClassMetaData CPerson::s_meta;
ClassMetaData CMeta::s_meta;
ClassMetaData CShape::s_meta;
ClassMetaData CTeam::s_meta;
ClassMetaData CBag::s_meta;
ClassMetaData CPrice::s_meta;
ClassMetaData CCode::s_meta;

void RegisterCleanupAtExit() {
  static std::once_flag once;
  std::call_once(once, [] { std::atexit(CleanAllMetaData); });
}

void CleanAllMetaData() {
  CInitLock hold;
  for (ClassMetaData* meta : {&CAddress::s_meta, &CPerson::s_meta, &CMeta::s_meta, &CShape::s_meta,
                              &CTeam::s_meta, &CBag::s_meta, &CPrice::s_meta, &CCode::s_meta}) {
    CXmlGeneratedClass::CleanMetaData(meta->info, meta->elements, meta->attributes);
    meta->ready.store(false);
  }
}

CSmartPtr<CXmlObjectBase> CreateObject(int factoryCode, const char* elementName) {
  CSmartPtr<CXmlObjectBase> object;
  switch (factoryCode) {
    case F_Address: object = new CAddress(); break;
    case F_Person: object = new CPerson(); break;
    case F_Shape: object = new CShape(); break;
    default: throw CKoException(FormatString("No class for factory code %d", factoryCode));
  }
  object->SetElementName(elementName);
  return object;
}

// ---- CAddress -----------------------------------------------------------------

namespace {
ClassMetaData& AddressMeta() {
  return Ensure(CAddress::s_meta, [](ClassMetaData& m) {
    m.info = Sequence("Address", true, false);
    m.elements = Elements({new TestSeqPrim("street", kNs, CAddress::P_street, Occurs::Mandatory, ItemType_string),
                           new TestSeqPrim("city", kNs, CAddress::P_city, Occurs::Optional, ItemType_string),
                           new TestSeqPrim("zip", kNs, CAddress::P_zip, Occurs::Optional, ItemType_i4)});
    m.attributes = Attributes({new TestAttrPrim("kind", "", CAddress::P_kind, true, ItemType_string)});
  });
}
}  // namespace

CAddress::CAddress() { SetElementName("address"); }
CParentElementInfo* CAddress::GetClassInfo() { return AddressMeta().info; }
CElementInfo** CAddress::GetClassElementInfo() { return AddressMeta().elements; }
CAttributeInfo** CAddress::GetClassAttributeInfo() { return AddressMeta().attributes; }
void CAddress::Init() {
  street.reset();
  city.reset();
  zip.reset();
  kind.reset();
  m_nil = false;
}
void CAddress::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_street: get ? Get(street, value) : Set(street, value); break;
    case P_city: get ? Get(city, value) : Set(city, value); break;
    case P_zip: get ? Get(zip, value) : Set(zip, value); break;
    case P_kind: get ? Get(kind, value) : Set(kind, value); break;
    default: throw CKoInvalidParamException(FormatString("No property %d", propertyId));
  }
}

// ---- CPerson ------------------------------------------------------------------

namespace {
ClassMetaData& PersonMeta() {
  return Ensure(CPerson::s_meta, [](ClassMetaData& m) {
    m.info = Sequence("person", true, true);
    m.elements = Elements(
        {new TestSeqPrim("name", kNs, CPerson::P_name, Occurs::Mandatory, ItemType_string),
         new TestSeqPrim("age", kNs, CPerson::P_age, Occurs::Optional, ItemType_i4, true),
         new TestSeqCls("address", kNs, CPerson::P_address, Occurs::Optional, XmlElementTypeElement, CreateObject,
                        F_Address),
         new TestSeqRun("tag", kNs, CPerson::P_tags),
         new TestSeqPrim("note", kNs, CPerson::P_note, Occurs::Optional, ItemType_string)});
    m.attributes = Attributes({new TestAttrPrim("id", "", CPerson::P_id, false, ItemType_i4),
                               new TestAttrPrim("lang", "", CPerson::P_lang, true, ItemType_string)});
  });
}
}  // namespace

CPerson::CPerson() { SetElementName("person"); }
CParentElementInfo* CPerson::GetClassInfo() { return PersonMeta().info; }
CElementInfo** CPerson::GetClassElementInfo() { return PersonMeta().elements; }
CAttributeInfo** CPerson::GetClassAttributeInfo() { return PersonMeta().attributes; }
void CPerson::Init() {
  name.reset();
  note.reset();
  lang.reset();
  tags.reset();
  age.reset();
  id.reset();
  ageNil = false;
  address = nullptr;
}
void CPerson::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_name: get ? Get(name, value) : Set(name, value); break;
    case P_age:
      if (get) {
        Get(age, value);
        if (ageNil) value.SetNil();
      } else {
        ageNil = value.IsNil();
        Set(age, value);
      }
      break;
    case P_address: get ? GetObject(address, value) : SetObject(address, value); break;
    case P_tags: get ? Get(tags, value) : Set(tags, value); break;
    case P_note: get ? Get(note, value) : Set(note, value); break;
    case P_id: get ? Get(id, value) : Set(id, value); break;
    case P_lang: get ? Get(lang, value) : Set(lang, value); break;
    default: throw CKoInvalidParamException(FormatString("No property %d", propertyId));
  }
}

// ---- CMeta --------------------------------------------------------------------

namespace {
ClassMetaData& MetaMeta() {
  return Ensure(CMeta::s_meta, [](ClassMetaData& m) {
    m.info = Sequence("Meta", false, false, XmlElementTypePseudo);
    m.elements = Elements({new TestSeqPrim("comment", kNs, CMeta::P_comment, Occurs::Optional, ItemType_string)});
    m.attributes = Attributes({new TestAttrPrim("rev", "", CMeta::P_rev, true, ItemType_i4)});
  });
}
}  // namespace

CMeta::CMeta() = default;
CParentElementInfo* CMeta::GetClassInfo() { return MetaMeta().info; }
CElementInfo** CMeta::GetClassElementInfo() { return MetaMeta().elements; }
CAttributeInfo** CMeta::GetClassAttributeInfo() { return MetaMeta().attributes; }
void CMeta::Init() {
  comment.reset();
  rev.reset();
}
void CMeta::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_comment: get ? Get(comment, value) : Set(comment, value); break;
    case P_rev: get ? Get(rev, value) : Set(rev, value); break;
    default: throw CKoInvalidParamException(FormatString("No property %d", propertyId));
  }
}

// ---- CShape -------------------------------------------------------------------

namespace {
ClassMetaData& ShapeMeta() {
  return Ensure(CShape::s_meta, [](ClassMetaData& m) {
    m.info = new CParentElementInfo(XmlElementGroupTypeChoice, XmlElementTypeElement, "shape", kNs, true, false,
                                    -1, ItemType_none, nullptr, false);
    m.elements = Elements({new TestChoicePrim("radius", kNs, CShape::P_radius, ItemType_i4),
                           new TestChoicePrim("label", kNs, CShape::P_label, ItemType_string),
                           new TestChoiceCls("inner", kNs, CShape::P_inner, CreateObject, F_Shape)});
    m.attributes = Attributes({});
  });
}
}  // namespace

CShape::CShape() { SetElementName("shape"); }
CParentElementInfo* CShape::GetClassInfo() { return ShapeMeta().info; }
CElementInfo** CShape::GetClassElementInfo() { return ShapeMeta().elements; }
CAttributeInfo** CShape::GetClassAttributeInfo() { return ShapeMeta().attributes; }
void CShape::Init() {
  radius.reset();
  label.reset();
  inner = nullptr;
}
void CShape::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_radius: get ? Get(radius, value) : Set(radius, value); break;
    case P_label: get ? Get(label, value) : Set(label, value); break;
    case P_inner: get ? GetObject(inner, value) : SetObject(inner, value); break;
    default: throw CKoInvalidParamException(FormatString("No property %d", propertyId));
  }
}

// ---- CTeam --------------------------------------------------------------------

namespace {
ClassMetaData& TeamMeta() {
  return Ensure(CTeam::s_meta, [](ClassMetaData& m) {
    // The pseudo child's attribute stands on this element, so unknown
    // attributes are let through.
    m.info = Sequence("team", false, false);
    m.elements = Elements({new TestSeqCls("leader", kNs, CTeam::P_leader, Occurs::Optional, XmlElementTypeElement,
                                          CreateObject, F_Person),
                           new TestSeqCls("meta", kNs, CTeam::P_meta, Occurs::Mandatory, XmlElementTypePseudo,
                                          nullptr, 0),
                           new TestSeqCls("shape", kNs, CTeam::P_shape, Occurs::Optional, XmlElementTypeElement,
                                          CreateObject, F_Shape)});
    m.attributes = Attributes({new TestAttrPrim("title", "", CTeam::P_title, true, ItemType_string)});
  });
}
}  // namespace

CTeam::CTeam() : meta(new CMeta()) { SetElementName("team"); }
CParentElementInfo* CTeam::GetClassInfo() { return TeamMeta().info; }
CElementInfo** CTeam::GetClassElementInfo() { return TeamMeta().elements; }
CAttributeInfo** CTeam::GetClassAttributeInfo() { return TeamMeta().attributes; }
void CTeam::Init() {
  title.reset();
  leader = nullptr;
  shape = nullptr;
  meta->Init();
}
void CTeam::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_leader: get ? GetObject(leader, value) : SetObject(leader, value); break;
    case P_meta: get ? GetObject(meta, value) : SetObject(meta, value); break;
    case P_shape: get ? GetObject(shape, value) : SetObject(shape, value); break;
    case P_title: get ? Get(title, value) : Set(title, value); break;
    default: throw CKoInvalidParamException(FormatString("No property %d", propertyId));
  }
}

// ---- CBag ---------------------------------------------------------------------

namespace {
ClassMetaData& BagMeta() {
  return Ensure(CBag::s_meta, [](ClassMetaData& m) {
    m.info = new CParentElementInfo(XmlElementGroupTypeAll, XmlElementTypeElement, "bag", kNs, true, false, -1,
                                    ItemType_none, nullptr, false);
    m.elements = Elements({new TestAllPrim("x", kNs, CBag::P_x, true, ItemType_i4),
                           new TestAllPrim("y", kNs, CBag::P_y, false, ItemType_string),
                           new TestAllPrim("z", kNs, CBag::P_z, true, ItemType_i4)});
    m.attributes = Attributes({});
  });
}
}  // namespace

CBag::CBag() { SetElementName("bag"); }
CParentElementInfo* CBag::GetClassInfo() { return BagMeta().info; }
CElementInfo** CBag::GetClassElementInfo() { return BagMeta().elements; }
CAttributeInfo** CBag::GetClassAttributeInfo() { return BagMeta().attributes; }
void CBag::Init() {
  x.reset();
  y.reset();
  z.reset();
}
void CBag::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_x: get ? Get(x, value) : Set(x, value); break;
    case P_y: get ? Get(y, value) : Set(y, value); break;
    case P_z: get ? Get(z, value) : Set(z, value); break;
    default: throw CKoInvalidParamException(FormatString("No property %d", propertyId));
  }
}

// ---- CPrice -------------------------------------------------------------------

namespace {
ClassMetaData& PriceMeta() {
  return Ensure(CPrice::s_meta, [](ClassMetaData& m) {
    m.info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "price", kNs, true, false,
                                    CPrice::P_value, ItemType_decimal, nullptr, false);
    m.elements = Elements({});
    m.attributes = Attributes({new TestAttrPrim("currency", "", CPrice::P_currency, true, ItemType_string)});
  });
}
}  // namespace

CPrice::CPrice() { SetElementName("price"); }
CParentElementInfo* CPrice::GetClassInfo() { return PriceMeta().info; }
CElementInfo** CPrice::GetClassElementInfo() { return PriceMeta().elements; }
CAttributeInfo** CPrice::GetClassAttributeInfo() { return PriceMeta().attributes; }
void CPrice::Init() {
  value.SetInvalid();
  currency.reset();
}
void CPrice::AccessProperty(int propertyId, bool get, KoVariant& v) {
  switch (propertyId) {
    case P_value: get ? (void)(v = value) : (void)(value = v); break;
    case P_currency: get ? Get(currency, v) : Set(currency, v); break;
    default: throw CKoInvalidParamException(FormatString("No property %d", propertyId));
  }
}

// ---- CCode --------------------------------------------------------------------

namespace {
ClassMetaData& CodeMeta() {
  return Ensure(CCode::s_meta, [](ClassMetaData& m) {
    // Declared as a number, but kept as the text the document holds.
    m.info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "code", kNs, true, false,
                                    CCode::P_text, ItemType_i4, nullptr, true);
    m.elements = Elements({});
    m.attributes = Attributes({});
  });
}
}  // namespace

CCode::CCode() { SetElementName("code"); }
CParentElementInfo* CCode::GetClassInfo() { return CodeMeta().info; }
CElementInfo** CCode::GetClassElementInfo() { return CodeMeta().elements; }
CAttributeInfo** CCode::GetClassAttributeInfo() { return CodeMeta().attributes; }
void CCode::Init() { text.reset(); }
void CCode::AccessProperty(int propertyId, bool get, KoVariant& value) {
  switch (propertyId) {
    case P_text: get ? Get(text, value) : Set(text, value); break;
    default: throw CKoInvalidParamException(FormatString("No property %d", propertyId));
  }
}

}  // namespace testmodel
