#ifndef KOXML_TESTS_SUPPORT_TESTMODEL_H
#define KOXML_TESTS_SUPPORT_TESTMODEL_H

// A small hand-written model in the shape the code generator produces: each
// class derives from CXmlGeneratedClass, reads and writes its properties by
// id through KoVariant, creates its static records once, on first use, under
// CXmlGeneratedClass::m_csInit (null-terminated arrays in schema order), and
// resets itself in Init. The records are released with CleanMetaData at exit.
//
//   <team title="..." rev="...">          CTeam    sequence, root
//     <leader xsi:type="person" id="..">  CPerson  sequence, optional
//       <name/> <age/> <address/> <tag/>* <note/>
//     <comment/>                          CMeta    pseudo element (rev, comment)
//     <shape/>                            CShape   choice, optional
//   <address kind="..">                   CAddress sequence, nillable
//     <street/> <city/> <zip/>
//   <shape> <radius/> | <label/> | <inner/>   CShape (inner is a CShape)
//   <bag> <x/> <y/> <z/> in any order     CBag     all group (x, z mandatory)
//   <price currency="..">12.50</price>    CPrice   simple content (decimal)
//   <code>text kept as is</code>          CCode    simple content read as text
//
// Every element is in kNs; attributes are unqualified.

#include <atomic>
#include <initializer_list>
#include <optional>
#include <string>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/XmlGeneratedClass.h"
#include "KoXmlLib10/XmlObjectBase.h"

namespace testmodel {

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

inline constexpr char kNs[] = "urn:test";

// The static records of one class, created once.
struct ClassMetaData {
  std::atomic<bool> ready{false};
  std::atomic<int> builds{0};  // how many times the records were created
  CParentElementInfo* info = nullptr;
  CElementInfo** elements = nullptr;
  CAttributeInfo** attributes = nullptr;
};

// Frees the records of every class (also registered to run at exit); the
// next use of a class creates them again.
void CleanAllMetaData();

// Holds the class-creation lock for a scope.
class CInitLock {
 public:
  CInitLock() { CXmlGeneratedClass::m_csInit.Enter(); }
  ~CInitLock() { CXmlGeneratedClass::m_csInit.Leave(); }
  CInitLock(const CInitLock&) = delete;
  CInitLock& operator=(const CInitLock&) = delete;
};

// Creates a class's records on its first use: the flag is read without the
// lock, and set under it only once the records are complete. The first
// creation registers CleanAllMetaData to run at exit.
void RegisterCleanupAtExit();
template <class Build>
ClassMetaData& Ensure(ClassMetaData& meta, Build build) {
  if (meta.ready.load(std::memory_order_acquire)) return meta;
  CInitLock hold;
  if (!meta.ready.load(std::memory_order_relaxed)) {
    build(meta);
    meta.builds.fetch_add(1);
    RegisterCleanupAtExit();
    meta.ready.store(true, std::memory_order_release);
  }
  return meta;
}

// Null-terminated record arrays, as generated code lays them out.
inline CElementInfo** Elements(std::initializer_list<CElementInfo*> records) {
  auto** array = new CElementInfo*[records.size() + 1];
  size_t i = 0;
  for (CElementInfo* record : records) array[i++] = record;
  array[i] = nullptr;
  return array;
}
inline CAttributeInfo** Attributes(std::initializer_list<CAttributeInfo*> records) {
  auto** array = new CAttributeInfo*[records.size() + 1];
  size_t i = 0;
  for (CAttributeInfo* record : records) array[i++] = record;
  array[i] = nullptr;
  return array;
}

class CAddress;
class CPerson;
class CMeta;
class CShape;

class CAddress : public CXmlGeneratedClass, public INillable {
 public:
  enum { P_street, P_city, P_zip, P_kind };
  CAddress();
  std::optional<std::string> street, city, kind;
  std::optional<long> zip;

  static ClassMetaData s_meta;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;
  CParentElementInfo* GetClassInfo() override;
  CElementInfo** GetClassElementInfo() override;
  CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;
  bool IsNil() override { return m_nil; }
  void SetNil(bool nil) override { m_nil = nil; }

 private:
  bool m_nil = false;
};

class CPerson : public CXmlGeneratedClass {
 public:
  enum { P_name, P_age, P_address, P_tags, P_note, P_id, P_lang };
  CPerson();
  std::optional<std::string> name, note, lang, tags;
  std::optional<long> age, id;
  bool ageNil = false;
  CSmartPtr<CAddress> address;

  static ClassMetaData s_meta;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;
  CParentElementInfo* GetClassInfo() override;
  CElementInfo** GetClassElementInfo() override;
  CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;
};

// A pseudo element: its attribute goes on the owner's element, its child
// among the owner's children.
class CMeta : public CXmlGeneratedClass {
 public:
  enum { P_comment, P_rev };
  CMeta();
  std::optional<std::string> comment;
  std::optional<long> rev;

  static ClassMetaData s_meta;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;
  CParentElementInfo* GetClassInfo() override;
  CElementInfo** GetClassElementInfo() override;
  CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;
};

class CShape : public CXmlGeneratedClass {
 public:
  enum { P_radius, P_label, P_inner };
  CShape();
  std::optional<long> radius;
  std::optional<std::string> label;
  CSmartPtr<CShape> inner;

  static ClassMetaData s_meta;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;
  CParentElementInfo* GetClassInfo() override;
  CElementInfo** GetClassElementInfo() override;
  CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;
};

class CTeam : public CXmlGeneratedClass {
 public:
  enum { P_leader, P_meta, P_shape, P_title };
  CTeam();
  std::optional<std::string> title;
  CSmartPtr<CPerson> leader;
  CSmartPtr<CMeta> meta;  // always present
  CSmartPtr<CShape> shape;

  static ClassMetaData s_meta;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;
  CParentElementInfo* GetClassInfo() override;
  CElementInfo** GetClassElementInfo() override;
  CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;
};

class CBag : public CXmlGeneratedClass {
 public:
  enum { P_x, P_y, P_z };
  CBag();
  std::optional<long> x, z;
  std::optional<std::string> y;

  static ClassMetaData s_meta;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;
  CParentElementInfo* GetClassInfo() override;
  CElementInfo** GetClassElementInfo() override;
  CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;
};

class CPrice : public CXmlGeneratedClass {
 public:
  enum { P_value, P_currency };
  CPrice();
  KoVariant value;  // decimal, nil or unset
  std::optional<std::string> currency;

  static ClassMetaData s_meta;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;
  CParentElementInfo* GetClassInfo() override;
  CElementInfo** GetClassElementInfo() override;
  CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;
};

class CCode : public CXmlGeneratedClass {
 public:
  enum { P_text };
  CCode();
  std::optional<std::string> text;

  static ClassMetaData s_meta;
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int propertyId, bool get, KoVariant& value) override;
  CParentElementInfo* GetClassInfo() override;
  CElementInfo** GetClassElementInfo() override;
  CAttributeInfo** GetClassAttributeInfo() override;
  void Init() override;
};

// Factory codes of the classes, for class-valued members.
enum FactoryCode { F_Address, F_Person, F_Shape };
CSmartPtr<CXmlObjectBase> CreateObject(int factoryCode, const char* elementName);

}  // namespace testmodel

#endif
