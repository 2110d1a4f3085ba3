#ifndef TESTS_SUPPORT_RECORDMODEL_H
#define TESTS_SUPPORT_RECORDMODEL_H

// A hand-written "generated" model that uses the library's real member
// records, following the contract that generated code keeps: records are
// created once per class under CXmlGeneratedClass::m_csInit and freed with
// CleanMetaData at exit, properties are reached by id through KoVariant,
// Init resets every property, class and element factories create members,
// and nillable classes implement INillable.
//
// The classes are data-driven (one C++ class per kind of object, one Schema
// per model class) so that the tests can name a class and a property id.
//
// Coverage: every record class of the three families and the three attribute
// records is instantiated in a schema below:
//
//   sequence  PrimMnd Leaf/Pseudo/SeqRoot   PrimOpt Leaf/SeqRoot        EnumMnd SeqRoot
//             EnumOpt Pseudo/SeqRoot        ClsMnd SeqRoot/SeqMisc      ClsOpt SeqRoot/SeqMisc
//             AbsClsMnd SeqRoot            AbsClsOpt SeqRoot           UntpdMnd SeqMisc
//             UntpdOpt SeqRoot             Col SeqRoot                 PrimCol SeqRoot
//             EnumCol SeqRoot              ClsCol SeqRoot              AbsClsCol SeqRoot
//             UntpdCol SeqMisc             NonCol (RecordsTest: abstract, derived there)
//   choice    PrimOpt EnumOpt ClsOpt AbsClsOpt UntpdOpt Col PrimCol EnumCol ClsCol AbsClsCol
//             UntpdCol: ChoiceRoot; PrimCol ClsCol: ChoiceStrict;
//             ClsOpt ClsCol (pseudo content): ChoicePseudo
//   all       PrimMnd PrimOpt EnumMnd EnumOpt ClsMnd ClsOpt UntpdMnd UntpdOpt EnumCol Col
//             PrimCol ClsCol AbsClsCol: AllRoot; AbsClsMnd AbsClsOpt: AllAbs; UntpdCol: AllOpen;
//             NonCol (RecordsTest)
//   attribute Primitive Enum: Leaf/SeqRoot/Pseudo/PseudoQ   Any: SeqRoot

#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <KoXmlLib10.h>

namespace recordmodel {

using namespace KoXmlLib10;
using namespace KoXmlLib10Data;

inline constexpr char kNs[] = "urn:t";

enum ClassId { Leaf, Pseudo, Base, Derived, SeqRoot, SeqMisc, ChoiceRoot, ChoiceStrict, ChoicePseudo, AllRoot,
               AllAbs, PseudoQ, AllOpen, ClassCount };

// What Init puts into a property.
struct Slot {
  enum Kind { Unset, Object, ObjectCol, StringCol, IntCol, Element, ElementCol, AttributeCol } kind = Unset;
  ClassId itemClass = Leaf;  // Object, ObjectCol
  std::string name;          // element name of the object or of the items
  int minOccurs = 0, maxOccurs = -1;
  ElementFactoryFunction factory = nullptr;  // ObjectCol of derivable items
  std::string restriction, target;           // untyped content
};

struct Schema {
  CParentElementInfo* info = nullptr;
  CElementInfo** elements = nullptr;
  CAttributeInfo** attributes = nullptr;
  std::vector<Slot> slots;  // by property id
  bool nillable = false;
};

const Schema& SchemaOf(ClassId id);
CSmartPtr<CXmlObjectBase> New(ClassId id, const char* elementName);

// ---- the enumeration of the model: small, medium, large -----------------------------
inline const char* SizeToText(int v) {
  static const char* const kNames[] = {"small", "medium", "large"};
  return v >= 0 && v < 3 ? kNames[v] : nullptr;
}
inline int TextToSize(const char* t) {
  const std::string s = t ? t : "";
  return s == "small" ? 0 : s == "medium" ? 1 : s == "large" ? 2 : -1;
}

// ---- generated classes ------------------------------------------------------------------
class CObject : public CXmlGeneratedClass {
 public:
  CObject(ClassId id, const char* elementName) : m_id(id) {
    SetElementName(elementName);
    Init();
  }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int id, bool get, KoVariant& value) override {
    if (get)
      value = m_props[id];
    else
      m_props[id] = value;
  }
  CParentElementInfo* GetClassInfo() override { return SchemaOf(m_id).info; }
  CElementInfo** GetClassElementInfo() override { return SchemaOf(m_id).elements; }
  CAttributeInfo** GetClassAttributeInfo() override { return SchemaOf(m_id).attributes; }
  void Init() override;

  ClassId Id() const { return m_id; }
  KoVariant Get(int id) { return m_props[id]; }
  void Set(int id, const KoVariant& v) { m_props[id] = v; }
  template <class T>
  T* Member(int id) {  // an object or collection property, still owned by this object
    KoVariant v = m_props[id];
    CXmlObjectBase* o = v.GetXmlObject();
    if (!o) return nullptr;
    o->Release();
    return dynamic_cast<T*>(o);
  }

 protected:
  ClassId m_id;
  std::map<int, KoVariant> m_props;
};

class CNillableObject : public CObject, public INillable {
 public:
  using CObject::CObject;
  bool IsNil() override { return m_nil; }
  void SetNil(bool nil) override { m_nil = nil; }
  void Init() override {
    m_nil = false;
    CObject::Init();
  }

 private:
  bool m_nil = false;
};

// A generated collection of class-valued items: element items read while the
// element at the cursor bears the items' name; pseudo items while they consume.
class CObjectCol : public CXmlCollection {
 public:
  CObjectCol(const Slot& slot)
      : CXmlCollection(slot.name.c_str(), kNs, slot.minOccurs, slot.maxOccurs),
        m_item(slot.itemClass),
        m_factory(slot.factory) {}
  CSmartPtr<CObject> AddNew() {
    CSmartPtr<CXmlObjectBase> o = New(m_item, GetElementName().c_str());
    AppendItem(o.get());
    return CSmartPtr<CObject>(static_cast<CObject*>(o.get()));
  }

 protected:
  void ToXml_Int(CXmlWriter* writer, bool, const char* ns, const CXmlSerializationContext& ctx,
                 bool) const override {
    for (CNode* n = GetHead(); n; n = n->next) CXmlObjectBase::ToXml_Int(n->item, writer, false, ns, ctx, false);
  }
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, const CXmlSerializationContext& ctx,
                           bool) override {
    const bool pseudo = SchemaOf(m_item).info->elementType != XmlElementTypeElement;
    while (cursor) {
      if (pseudo) {
        CSmartPtr<CXmlObjectBase> item = New(m_item, "");
        CXmlElement* next = CXmlObjectBase::FromXml_Int(item.get(), parent, cursor, ctx);
        if (next == cursor) break;
        AppendItem(item.get());
        cursor = next;
        continue;
      }
      if (!DoesElementNameMatch(ctx, cursor, GetElementName().c_str(), kNs)) break;
      CSmartPtr<CXmlObjectBase> item = m_factory ? m_factory(cursor) : New(m_item, cursor->GetLocalName().c_str());
      if (!item) break;
      CXmlObjectBase::FromXml_Int(item.get(), cursor, cursor->GetFirstElement(), ctx);
      AppendItem(item.get());
      cursor = cursor->GetNextSiblingElement();
    }
    return cursor;
  }

 private:
  ClassId m_item;
  ElementFactoryFunction m_factory;
};

inline void CObject::Init() {
  m_props.clear();
  const Schema& s = SchemaOf(m_id);
  for (size_t i = 0; i < s.slots.size(); ++i) {
    const Slot& slot = s.slots[i];
    // Untyped content lives in a namespace its restriction allows.
    const char* anyNs = slot.restriction == "##other" ? "urn:o" : slot.restriction == "urn:x" ? "urn:x" : kNs;
    KoVariant v;
    switch (slot.kind) {
      case Slot::Unset: break;
      case Slot::Object: v.SetXmlObject(New(slot.itemClass, slot.name.c_str()).get()); break;
      case Slot::ObjectCol: v.SetXmlCollection(CSmartPtr<CXmlCollectionBase>(new CObjectCol(slot)).get()); break;
      case Slot::StringCol:
        v.SetXmlCollection(CSmartPtr<CXmlCollectionBase>(
                               new CstringCol(slot.name.c_str(), kNs, slot.minOccurs, slot.maxOccurs, nullptr, -1,
                                              -1, nullptr, nullptr, nullptr, nullptr, -1,
                                              CWhitespaceUtils::WhitespaceRule_Preserve, nullptr))
                               .get());
        break;
      case Slot::IntCol:
        v.SetXmlCollection(CSmartPtr<CXmlCollectionBase>(
                               new Ci4Col(slot.name.c_str(), kNs, slot.minOccurs, slot.maxOccurs, nullptr, -1, -1,
                                          nullptr, "100", nullptr, nullptr, -1,
                                          CWhitespaceUtils::WhitespaceRule_Collapse, nullptr))
                               .get());
        break;
      case Slot::Element:
        v.SetXmlObject(CSmartPtr<CElement>(new CElement(slot.name.c_str(), anyNs, slot.restriction.c_str(),
                                                        slot.target.c_str()))
                           .get());
        break;
      case Slot::ElementCol:
        v.SetXmlCollection(CSmartPtr<CElementCol>(
                               new CElementCol(anyNs, slot.restriction.c_str(), slot.target.c_str(), 0, -1))
                               .get());
        break;
      case Slot::AttributeCol:
        v.SetXmlCollection(
            CSmartPtr<CAttributeCol>(new CAttributeCol(anyNs, slot.restriction.c_str(), slot.target.c_str())).get());
        break;
    }
    m_props[static_cast<int>(i)] = v;
  }
}

inline CSmartPtr<CXmlObjectBase> New(ClassId id, const char* elementName) {
  if (SchemaOf(id).nillable) return CSmartPtr<CXmlObjectBase>(new CNillableObject(id, elementName));
  return CSmartPtr<CXmlObjectBase>(new CObject(id, elementName));
}

// Class factory of the model: the factory code is the class id.
inline CSmartPtr<CXmlObjectBase> MakeByCode(int code, const char* elementName) {
  return New(static_cast<ClassId>(code), elementName);
}

// Element factory of the derivable member "shape", as a generator writes one:
// no xsi:type or BaseType gives Base, DerivedType gives Derived (both in the
// model's namespace), anything else no class.
inline CSmartPtr<CXmlObjectBase> MakeShape(CXmlElement* element) {
  const std::string type = CClassfactoryBase::GetElementType(element);
  const std::string typeNs = CClassfactoryBase::GetElementTypeNamespaceUri(element);
  const char* name = element->GetLocalName().c_str();
  if (type.empty()) return New(Base, name);
  if (typeNs != kNs) return CSmartPtr<CXmlObjectBase>();
  if (type == "BaseType") return New(Base, name);
  if (type == "DerivedType") return New(Derived, name);
  return CSmartPtr<CXmlObjectBase>();
}

// ---- the static records -----------------------------------------------------------------
inline CPrimitiveRestrictions NoFacets() { return CPrimitiveRestrictions(); }
inline CPrimitiveRestrictions MaxLength(int n) {
  CPrimitiveRestrictions r;
  r.maxLength = n;
  return r;
}
inline CPrimitiveRestrictions MaxInclusive(const char* v) {
  CPrimitiveRestrictions r;
  r.maxInclusive = v;
  return r;
}

template <class... R>
CElementInfo** Elements(R*... records) {
  return new CElementInfo* [sizeof...(R) + 1] { records..., nullptr };
}
template <class... R>
CAttributeInfo** Attributes(R*... records) {
  return new CAttributeInfo* [sizeof...(R) + 1] { records..., nullptr };
}
inline CParentElementInfo* Info(XmlElementGroupType g, XmlElementType t, const char* typeName,
                                bool rejectUnknownAttributes = true, bool writeType = false) {
  return new CParentElementInfo(g, t, typeName, kNs, rejectUnknownAttributes, writeType, -1, ItemType_none, nullptr,
                                false);
}
inline Slot Col(Slot::Kind k, const char* name, int mn = 0, int mx = -1, ClassId c = Leaf,
                ElementFactoryFunction f = nullptr) {
  Slot s;
  s.kind = k;
  s.itemClass = c;
  s.name = name;
  s.minOccurs = mn;
  s.maxOccurs = mx;
  s.factory = f;
  return s;
}
inline Slot Obj(ClassId c, const char* name) { return Col(Slot::Object, name, 0, -1, c); }
inline Slot Untyped(Slot::Kind k, const char* name, const char* restriction, const char* target = kNs) {
  Slot s = Col(k, name);
  s.restriction = restriction;
  s.target = target;
  return s;
}

constexpr auto S = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto C = CWhitespaceUtils::WhitespaceRule_Collapse;
constexpr auto E = XmlElementTypeElement;
constexpr auto P = XmlElementTypePseudo;
constexpr auto SEQ = XmlElementGroupTypeSequence;
constexpr auto CHO = XmlElementGroupTypeChoice;
constexpr auto ALL = XmlElementGroupTypeAll;

// Property ids of the classes the tests name.
namespace leafp { enum { code, colour, text }; }
namespace pseudop { enum { pa, p1, p2 }; }
namespace pseudoq { enum { qa, q1 }; }
namespace shapep { enum { b, d }; }
namespace seqroot {
enum { id, ratio, kind, anyAttr, name, note, size, shade, leaf, extra, pseudo, shape, shape2, blob, tag, level, item,
       figure, raw };
}
namespace seqmisc { enum { any, named, pseudoReq, pseudoOpt, notes, rest }; }
namespace choiceroot { enum { c1, c2, c3, c4, c5, c6, c7, c8, c9, c10, c11 }; }
namespace choicestrict { enum { s1, s2 }; }
namespace choicepseudo { enum { alt, other }; }
namespace allroot { enum { a1, a2, a3, a4, a5, a6, a8, a9, a10, a11, a12, a13, a14, p }; }
namespace allopen { enum { k, rest }; }
namespace allabs { enum { m, o }; }

inline Schema Build(ClassId id) {
  Schema s;
  switch (id) {
    case Leaf:
      s.nillable = true;
      s.info = Info(SEQ, E, "Leaf");
      s.attributes = Attributes(
          new CAttributeInfoPrimitive("code", "", leafp::code, true, ItemType_i4, nullptr, C, NoFacets(), "7"),
          new CAttributeInfoEnum("colour", "", leafp::colour, true, SizeToText, TextToSize, nullptr));
      s.elements = Elements(new CElementInfoSeqPrimOpt("text", kNs, leafp::text, true, ItemType_string, nullptr, S,
                                                       MaxLength(10)));
      s.slots = {Slot{}, Slot{}, Slot{}};
      break;
    case Pseudo:
      s.info = Info(SEQ, P, "Pseudo", false);  // its attributes share the owner's element
      s.attributes = Attributes(
          new CAttributeInfoPrimitive("pa", "", pseudop::pa, true, ItemType_string, nullptr, S, NoFacets(), nullptr));
      s.elements = Elements(
          new CElementInfoSeqPrimMnd("p1", kNs, pseudop::p1, false, ItemType_i4, nullptr, C, NoFacets()),
          new CElementInfoSeqEnumOpt("p2", kNs, pseudop::p2, false, SizeToText, TextToSize));
      s.slots = {Slot{}, Slot{}, Slot{}};
      break;
    case PseudoQ:
      s.info = Info(SEQ, P, "PseudoQ", false);
      s.attributes = Attributes(
          new CAttributeInfoPrimitive("qa", "", pseudoq::qa, true, ItemType_string, nullptr, S, NoFacets(), nullptr));
      s.elements = Elements(
          new CElementInfoSeqPrimMnd("q1", kNs, pseudoq::q1, false, ItemType_i4, nullptr, C, NoFacets()));
      s.slots = {Slot{}, Slot{}};
      break;
    case Base:
    case Derived:
      s.info = Info(SEQ, E, id == Base ? "BaseType" : "DerivedType", true, true);
      s.attributes = Attributes();
      if (id == Base)
        s.elements = Elements(new CElementInfoSeqPrimOpt("b", kNs, shapep::b, false, ItemType_string, nullptr, S,
                                                         NoFacets()));
      else
        s.elements = Elements(
            new CElementInfoSeqPrimOpt("b", kNs, shapep::b, false, ItemType_string, nullptr, S, NoFacets()),
            new CElementInfoSeqPrimOpt("d", kNs, shapep::d, false, ItemType_i4, nullptr, C, NoFacets()));
      s.slots = {Slot{}, Slot{}};
      break;
    case SeqRoot:
      s.nillable = true;
      s.info = Info(SEQ, E, "SeqRoot");
      s.attributes = Attributes(
          new CAttributeInfoPrimitive("id", "", seqroot::id, false, ItemType_i4, nullptr, C, MaxInclusive("999"),
                                      nullptr),
          new CAttributeInfoPrimitive("ratio", "", seqroot::ratio, true, ItemType_r8, nullptr, C, NoFacets(), "1"),
          new CAttributeInfoEnum("kind", "", seqroot::kind, true, SizeToText, TextToSize, "small"),
          new CAttributeInfoAny("", "", seqroot::anyAttr, true, "##other", kNs, nullptr));
      s.elements = Elements(
          new CElementInfoSeqPrimMnd("name", kNs, seqroot::name, false, ItemType_string, nullptr, S, MaxLength(8)),
          new CElementInfoSeqPrimOpt("note", kNs, seqroot::note, true, ItemType_string, nullptr, S, NoFacets()),
          new CElementInfoSeqEnumMnd("size", kNs, seqroot::size, true, SizeToText, TextToSize),
          new CElementInfoSeqEnumOpt("shade", kNs, seqroot::shade, false, SizeToText, TextToSize),
          new CElementInfoSeqClsMnd("leaf", kNs, seqroot::leaf, E, MakeByCode, Leaf, false),
          new CElementInfoSeqClsOpt("extra", kNs, seqroot::extra, E, MakeByCode, Leaf),
          new CElementInfoSeqClsMnd("pseudo", kNs, seqroot::pseudo, P, MakeByCode, Pseudo, false),
          new CElementInfoSeqAbsClsMnd("shape", kNs, seqroot::shape, E, MakeShape),
          new CElementInfoSeqAbsClsOpt("shape2", kNs, seqroot::shape2, E, MakeShape),
          new CElementInfoSeqUntpdOpt("blob", kNs, seqroot::blob, "##any", kNs),
          new CElementInfoSeqPrimCol("tag", kNs, seqroot::tag),
          new CElementInfoSeqEnumCol("level", kNs, seqroot::level),
          new CElementInfoSeqClsCol("item", kNs, seqroot::item, E),
          new CElementInfoSeqAbsClsCol("figure", kNs, seqroot::figure, E),
          new CElementInfoSeqCol("raw", kNs, seqroot::raw));
      s.slots = {Slot{}, Slot{}, Slot{}, Untyped(Slot::AttributeCol, "", "##other"), Slot{}, Slot{}, Slot{}, Slot{},
                 Obj(Leaf, "leaf"), Slot{}, Obj(Pseudo, ""), Slot{}, Slot{}, Slot{},
                 Col(Slot::StringCol, "tag", 0, 3), Col(Slot::StringCol, "level"), Col(Slot::ObjectCol, "item"),
                 Col(Slot::ObjectCol, "figure", 0, -1, Base, MakeShape), Col(Slot::IntCol, "raw", 0, 2)};
      break;
    case SeqMisc:
      s.info = Info(SEQ, E, "SeqMisc");
      s.attributes = Attributes();
      s.elements = Elements(new CElementInfoSeqUntpdMnd("AnyElement", kNs, seqmisc::any, "##other", kNs),
                            new CElementInfoSeqUntpdMnd("named", kNs, seqmisc::named, "##any", kNs),
                            new CElementInfoSeqClsMnd("req", kNs, seqmisc::pseudoReq, P, MakeByCode, Pseudo, true),
                            new CElementInfoSeqClsOpt("opt", kNs, seqmisc::pseudoOpt, P, MakeByCode, Pseudo),
                            new CElementInfoSeqUntpdCol("note", kNs, seqmisc::notes),
                            new CElementInfoSeqUntpdCol("AnyElement", kNs, seqmisc::rest));
      // The restriction of the last collection does not filter what it reads.
      s.slots = {Untyped(Slot::Element, "AnyElement", "##other"), Untyped(Slot::Element, "named", "##any"),
                 Obj(Pseudo, ""), Slot{}, Untyped(Slot::ElementCol, "", "##any"),
                 Untyped(Slot::ElementCol, "", "##other")};
      break;
    case ChoiceRoot:
      s.info = Info(CHO, E, "ChoiceRoot");
      s.attributes = Attributes();
      s.elements = Elements(
          new CElementInfoChoicePrimOpt("c1", kNs, choiceroot::c1, true, ItemType_i4, nullptr, C, NoFacets()),
          new CElementInfoChoiceEnumOpt("c2", kNs, choiceroot::c2, true, SizeToText, TextToSize),
          new CElementInfoChoiceClsOpt("c3", kNs, choiceroot::c3, E, MakeByCode, Leaf),
          new CElementInfoChoiceAbsClsOpt("c4", kNs, choiceroot::c4, E, MakeShape),
          new CElementInfoChoiceUntpdOpt("c5", kNs, choiceroot::c5, "##any", kNs),
          new CElementInfoChoicePrimCol("c6", kNs, choiceroot::c6),
          new CElementInfoChoiceEnumCol("c7", kNs, choiceroot::c7),
          new CElementInfoChoiceClsCol("c8", kNs, choiceroot::c8, E),
          new CElementInfoChoiceAbsClsCol("c9", kNs, choiceroot::c9, E),
          new CElementInfoChoiceCol("c10", kNs, choiceroot::c10),
          new CElementInfoChoiceUntpdCol("c11", kNs, choiceroot::c11));
      s.slots = {Slot{}, Slot{}, Slot{}, Slot{}, Slot{}, Col(Slot::StringCol, "c6", 2, 3),
                 Col(Slot::StringCol, "c7"), Col(Slot::ObjectCol, "c8"),
                 Col(Slot::ObjectCol, "c9", 0, -1, Base, MakeShape), Col(Slot::IntCol, "c10"),
                 Untyped(Slot::ElementCol, "", "##any")};
      break;
    case ChoiceStrict:
      s.info = Info(CHO, E, "ChoiceStrict");
      s.attributes = Attributes();
      s.elements = Elements(new CElementInfoChoicePrimCol("s1", kNs, choicestrict::s1),
                            new CElementInfoChoiceClsCol("s2", kNs, choicestrict::s2, E));
      s.slots = {Col(Slot::StringCol, "s1", 1, 2), Col(Slot::ObjectCol, "s2", 1)};
      break;
    case ChoicePseudo:
      s.info = Info(CHO, E, "ChoicePseudo");
      s.attributes = Attributes();
      s.elements = Elements(new CElementInfoChoiceClsOpt("alt", kNs, choicepseudo::alt, P, MakeByCode, Pseudo),
                            new CElementInfoChoiceClsCol("other", kNs, choicepseudo::other, P));
      s.slots = {Slot{}, Col(Slot::ObjectCol, "other", 0, -1, PseudoQ)};
      break;
    case AllRoot:
      s.info = Info(ALL, E, "AllRoot");
      s.attributes = Attributes();
      s.elements = Elements(
          new CElementInfoAllPrimMnd("a1", kNs, allroot::a1, true, ItemType_i4, nullptr, C, NoFacets()),
          new CElementInfoAllPrimOpt("a2", kNs, allroot::a2, false, ItemType_string, nullptr, S, NoFacets()),
          new CElementInfoAllEnumMnd("a3", kNs, allroot::a3, false, SizeToText, TextToSize),
          new CElementInfoAllEnumOpt("a4", kNs, allroot::a4, true, SizeToText, TextToSize),
          new CElementInfoAllClsMnd("a5", kNs, allroot::a5, E, MakeByCode, Leaf, false),
          new CElementInfoAllClsOpt("a6", kNs, allroot::a6, E, MakeByCode, Leaf),
          new CElementInfoAllUntpdMnd("a8", kNs, allroot::a8, "##any", kNs),
          new CElementInfoAllUntpdOpt("a9", kNs, allroot::a9, "##any", kNs),
          new CElementInfoAllEnumCol("a10", kNs, allroot::a10), new CElementInfoAllCol("a11", kNs, allroot::a11),
          new CElementInfoAllPrimCol("a12", kNs, allroot::a12),
          new CElementInfoAllClsCol("a13", kNs, allroot::a13, E),
          new CElementInfoAllAbsClsCol("a14", kNs, allroot::a14, E),
          new CElementInfoAllClsMnd("p", kNs, allroot::p, P, MakeByCode, Pseudo, false));
      s.slots = {Slot{}, Slot{}, Slot{}, Slot{}, Obj(Leaf, "a5"), Slot{},
                 Untyped(Slot::Element, "a8", "##any"), Slot{}, Col(Slot::StringCol, "a10"),
                 Col(Slot::IntCol, "a11"), Col(Slot::StringCol, "a12", 0, 2), Col(Slot::ObjectCol, "a13"),
                 Col(Slot::ObjectCol, "a14", 0, -1, Base, MakeShape), Obj(Pseudo, "")};
      break;
    case AllAbs:
      s.info = Info(ALL, E, "AllAbs");
      s.attributes = Attributes();
      s.elements = Elements(new CElementInfoAllAbsClsMnd("m", kNs, allabs::m, E, MakeShape, 0),
                            new CElementInfoAllAbsClsOpt("o", kNs, allabs::o, E, MakeShape));
      s.slots = {Slot{}, Slot{}};
      break;
    case AllOpen:
      // An untyped collection takes every element left at the cursor when
      // its turn comes, of any name and namespace: alone with one member.
      s.info = Info(ALL, E, "AllOpen");
      s.attributes = Attributes();
      s.elements = Elements(new CElementInfoAllPrimMnd("k", kNs, allopen::k, false, ItemType_i4, nullptr, C,
                                                       NoFacets()),
                            new CElementInfoAllUntpdCol("rest", kNs, allopen::rest));
      s.slots = {Slot{}, Untyped(Slot::ElementCol, "", "urn:x")};
      break;
    case ClassCount: break;
  }
  return s;
}

// The records of every class, created on first use under the library's lock
// and freed at exit.
struct Registry {
  Schema schemas[ClassCount];
  bool built[ClassCount] = {};
  ~Registry() {
    for (Schema& s : schemas) CXmlGeneratedClass::CleanMetaData(s.info, s.elements, s.attributes);
  }
};

inline Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

inline const Schema& SchemaOf(ClassId id) {
  Registry& r = TheRegistry();
  CXmlGeneratedClass::m_csInit.Enter();
  if (!r.built[id]) {
    r.schemas[id] = Build(id);
    r.built[id] = true;
  }
  CXmlGeneratedClass::m_csInit.Leave();
  return r.schemas[id];
}

}  // namespace recordmodel

#endif
