#ifndef KOXML_TESTS_SUPPORT_TESTMODEL_H
#define KOXML_TESTS_SUPPORT_TESTMODEL_H

// A small hand-written model in the shape the code generator produces, built
// from the library's own member records: each class derives from
// CXmlGeneratedClass, reads and writes its properties by id through
// KoVariant, keeps its static records in a CGeneratedMetaData (created once,
// on first use, under CXmlGeneratedClass::m_csInit, freed with CleanMetaData
// at exit) and resets itself in Init. Linking it announces generator 10.1.
//
//   <team title="..." rev="...">          CTeam    sequence, root
//     <leader xsi:type="person" id="..">  CPerson  sequence, optional
//       <name/> <age/> <address/> <tag/>{0,4} <note/>
//     <comment/>                          CMeta    pseudo element (rev, comment)
//     <shape/>                            CShape   choice, optional
//   <address kind="..">                   CAddress sequence, nillable
//     <street/> <city/> <zip/>
//   <shape> <radius/> | <label/> | <inner/>   CShape (inner is a CShape)
//   <bag> <x/> <y/> <z/> in any order     CBag     all group (x, z mandatory)
//   <price currency="..">12.50</price>    CPrice   simple content (decimal)
//   <code>text kept as is</code>          CCode    simple content read as text
//
// Every element is in kNs; attributes are unqualified. The data-driven model
// of RecordModel.h covers every record class; this one gives the engine's
// tests named, typed members.

#include <initializer_list>
#include <optional>
#include <string>

#include <KoXmlLib10.h>

namespace testmodel {

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

inline constexpr char kNs[] = "urn:test";

// Null-terminated record arrays, as generated code lays them out.
template <class Record>
Record** NullTerminated(std::initializer_list<Record*> records) {
  auto** array = new Record*[records.size() + 1];
  size_t i = 0;
  for (Record* record : records) array[i++] = record;
  array[i] = nullptr;
  return array;
}
inline CElementInfo** Elements(std::initializer_list<CElementInfo*> r) { return NullTerminated(r); }
inline CAttributeInfo** Attributes(std::initializer_list<CAttributeInfo*> r) { return NullTerminated(r); }

// What every generated class declares.
#define TESTMODEL_GENERATED_MEMBERS                                              \
  CXmlObjectBase* GetBase() override { return this; }                            \
  std::string GetTargetNamespace() const override { return kNs; }               \
  std::string GetNamespace() const override { return kNs; }                     \
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;      \
  CParentElementInfo* GetClassInfo() override;                                   \
  CElementInfo** GetClassElementInfo() override;                                 \
  CAttributeInfo** GetClassAttributeInfo() override;                             \
  void Init() override;

class CAddress : public CXmlGeneratedClass, public INillable {
 public:
  enum { P_street, P_city, P_zip, P_kind };
  CAddress();
  std::optional<std::string> street, city, kind;
  std::optional<long> zip;
  TESTMODEL_GENERATED_MEMBERS
  bool IsNil() override { return m_nil; }
  void SetNil(bool nil) override { m_nil = nil; }

 private:
  bool m_nil = false;
};

class CPerson : public CXmlGeneratedClass {
 public:
  enum { P_name, P_age, P_address, P_tags, P_note, P_id, P_lang };
  CPerson();
  std::optional<std::string> name, note, lang;
  std::optional<long> age, id;
  bool ageNil = false;
  CSmartPtr<CAddress> address;
  CSmartPtr<CstringCol> tags;  // always present, at most four
  std::string Tags() const;    // the tags joined by commas
  TESTMODEL_GENERATED_MEMBERS
};

// A pseudo element: its attribute goes on the owner's element, its child
// among the owner's children.
class CMeta : public CXmlGeneratedClass {
 public:
  enum { P_comment, P_rev };
  CMeta();
  std::optional<std::string> comment;
  std::optional<long> rev;
  TESTMODEL_GENERATED_MEMBERS
};

class CShape : public CXmlGeneratedClass {
 public:
  enum { P_radius, P_label, P_inner };
  CShape();
  std::optional<long> radius;
  std::optional<std::string> label;
  CSmartPtr<CShape> inner;
  TESTMODEL_GENERATED_MEMBERS
};

class CTeam : public CXmlGeneratedClass {
 public:
  enum { P_leader, P_meta, P_shape, P_title };
  CTeam();
  std::optional<std::string> title;
  CSmartPtr<CPerson> leader;
  CSmartPtr<CMeta> meta;  // always present
  CSmartPtr<CShape> shape;
  TESTMODEL_GENERATED_MEMBERS
};

class CBag : public CXmlGeneratedClass {
 public:
  enum { P_x, P_y, P_z };
  CBag();
  std::optional<long> x, z;
  std::optional<std::string> y;
  TESTMODEL_GENERATED_MEMBERS
};

class CPrice : public CXmlGeneratedClass {
 public:
  enum { P_value, P_currency };
  CPrice();
  KoVariant value;  // decimal, nil or unset
  std::optional<std::string> currency;
  TESTMODEL_GENERATED_MEMBERS
};

class CCode : public CXmlGeneratedClass {
 public:
  enum { P_text };
  CCode();
  std::optional<std::string> text;
  TESTMODEL_GENERATED_MEMBERS
};

#undef TESTMODEL_GENERATED_MEMBERS

// Factory codes of the classes, for class-valued members.
enum FactoryCode { F_Address, F_Person, F_Shape, F_Meta };
CSmartPtr<CXmlObjectBase> CreateObject(int factoryCode, const char* elementName);

}  // namespace testmodel

#endif
