// Classes generated from small schemas, each exercising a group of schema
// constructs, read their instance documents into typed members and write
// them back with the same information, as XML text, Fast Infoset and gzip.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/GeneratedRoundTrip.h"

#include "DeriveBinding.h"
#include "GroupsBinding.h"
#include "NamesBinding.h"

using namespace KoXmlLib10;

namespace {

const CXmlSerializationContext& Ctx() { return CXmlSerializationContext::m_defaultContext; }

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string Instance(const std::string& name) {
  return ReadFile(std::string(KOXML_GENERATOR_DATA) + "/schemas/" + name + ".xml");
}

std::string SchemaPath(const std::string& name) { return std::string(KOXML_GENERATOR_DATA) + "/schemas/" + name + ".xsd"; }

bool ValidAgainst(const std::string& xml, const std::string& schema, const std::string& name) {
  return ValidAgainstSchema(KOXML_XMLLINT, xml, SchemaPath(schema), name);
}

template <class T>
void ExpectRoundTrip(const std::string& name) {
  ExpectGeneratedRoundTrip<T>(Instance(name), "", KOXML_XMLLINT, SchemaPath(name), name);
}

TEST(GeneratedConstructs, DerivationRoundTrips) { ExpectRoundTrip<derive::CDrawing>("derive"); }
TEST(GeneratedConstructs, GroupsAndWildcardsRoundTrip) { ExpectRoundTrip<groups::CBook>("groups"); }
TEST(GeneratedConstructs, LoadingAndNamesRoundTrip) { ExpectRoundTrip<names::CCatalog>("names"); }

}  // namespace

namespace {

// xsi:type chooses the derived class; the classes keep their own members.
TEST(GeneratedConstructs, DerivedTypesAndSubstitutionGroupsGiveTheirClasses) {
  CSmartPtr<derive::CDrawing> doc(new derive::CDrawing);
  doc->FromXml(Instance("derive").c_str(), Ctx());
  auto* circle = dynamic_cast<derive::CCircle*>(doc->GetMain());
  ASSERT_NE(circle, nullptr);
  EXPECT_EQ(circle->GetRadius(), 2.5);
  EXPECT_EQ(circle->GetLabel(), "sun");
  ASSERT_EQ(doc->GetShapes()->GetCount(), 3);
  auto* square = dynamic_cast<derive::CSquare*>(doc->GetShapes()->Item(1));
  ASSERT_NE(square, nullptr);
  EXPECT_TRUE(square->GetRotated());
  EXPECT_EQ(square->GetWidth().ToString(), "2");
  EXPECT_EQ(dynamic_cast<derive::CNamedPoint*>(doc->GetOrigin()), nullptr);
  ASSERT_NE(dynamic_cast<derive::CNamedPoint*>(doc->GetMarker()), nullptr);
  ASSERT_EQ(doc->GetAnimals()->GetCount(), 3);
  ASSERT_NE(doc->GetAnimals()->Item(0)->GetDog(), nullptr);
  EXPECT_EQ(doc->GetAnimals()->Item(0)->GetDog()->GetBreed(), "collie");
  ASSERT_NE(doc->GetAnimals()->Item(2)->GetKitten(), nullptr);
  EXPECT_TRUE(doc->IsNilNote());
  EXPECT_TRUE(doc->GetOwner()->IsNil());

  // An unknown xsi:type, or none for an abstract type, has no class.
  std::string unknown = Instance("derive");
  unknown.replace(unknown.find("\"CircleType\""), 12, "\"OvalType\"");
  CSmartPtr<derive::CDrawing> bad(new derive::CDrawing);
  EXPECT_THROW(bad->FromXml(unknown.c_str(), Ctx()), CKoValidationException);
  std::string untyped = Instance("derive");
  untyped.erase(untyped.find(" xsi:type=\"CircleType\""), 22);
  EXPECT_THROW(bad->FromXml(untyped.c_str(), Ctx()), CKoValidationException);
}

// Reading takes a generated class's namespace from its constant text; it is
// the same namespace GetNamespace() gives, for base and derived classes alike.
TEST(GeneratedConstructs, NamespaceTextIsTheNamespace) {
  CSmartPtr<derive::CDrawing> doc(new derive::CDrawing);
  doc->FromXml(Instance("derive").c_str(), Ctx());
  const CXmlGeneratedClass* classes[] = {doc.get(), dynamic_cast<derive::CCircle*>(doc->GetMain()),
                                         dynamic_cast<derive::CSquare*>(doc->GetShapes()->Item(1))};
  for (const CXmlGeneratedClass* object : classes) {
    ASSERT_NE(object, nullptr);
    ASSERT_NE(object->GetNamespaceText(), nullptr);
    EXPECT_EQ(object->GetNamespaceText(), object->GetNamespace());
  }
}

// Reading stores primitive values straight from their text: the same value,
// nil flag and failure as through a KoVariant, including properties a
// derived class inherits.
TEST(GeneratedConstructs, PropertiesStoredFromTextAsThroughAVariant) {
  using WS = CWhitespaceUtils;
  CSmartPtr<derive::CCircle> circle(new derive::CCircle);
  EXPECT_TRUE(circle->StorePropertyText(derive::CCircle::kRadius, ItemType_r8, " 2.5 ", WS::WhitespaceRule_Collapse));
  EXPECT_EQ(circle->GetRadius(), 2.5);
  EXPECT_TRUE(circle->StorePropertyText(derive::CShape::kLabel, ItemType_string, " a  b ", WS::WhitespaceRule_Replace));
  KoVariant expected;
  expected.FromString(" a  b ", ItemType_string, WS::WhitespaceRule_Replace);
  EXPECT_EQ(circle->GetLabel(), expected.GetString());

  // Another item type than the member's, or a property without a shortcut:
  // nothing changes and the caller goes through a variant.
  EXPECT_FALSE(circle->StorePropertyText(derive::CCircle::kRadius, ItemType_string, "7", WS::WhitespaceRule_Collapse));
  EXPECT_FALSE(circle->StorePropertyText(derive::CCircle::kPropertyCount, ItemType_r8, "7", WS::WhitespaceRule_Collapse));
  EXPECT_EQ(circle->GetRadius(), 2.5);

  // Bad text fails as the variant's conversion fails, leaving the value.
  std::string viaVariant;
  try {
    KoVariant value;
    value.FromString("wide", ItemType_r8, WS::WhitespaceRule_Collapse);
  } catch (const CKoException& e) {
    viaVariant = e.GetFullMessage();
  }
  try {
    circle->StorePropertyText(derive::CCircle::kRadius, ItemType_r8, "wide", WS::WhitespaceRule_Collapse);
    ADD_FAILURE() << "converted";
  } catch (const CKoInvalidValueException& e) {
    EXPECT_EQ(e.GetFullMessage(), viaVariant);
  }
  EXPECT_EQ(circle->GetRadius(), 2.5);

  // A nillable member stored from text is no longer nil.
  CSmartPtr<derive::CDrawing> doc(new derive::CDrawing);
  doc->FromXml(Instance("derive").c_str(), Ctx());
  ASSERT_TRUE(doc->IsNilNote());
  EXPECT_TRUE(doc->StorePropertyText(derive::CDrawing::kNote, ItemType_string, "n", WS::WhitespaceRule_Preserve));
  EXPECT_FALSE(doc->IsNilNote());
  EXPECT_EQ(doc->GetNote(), "n");
}

// A class derived by hand from a generated one sees every property that
// reading stores through its AccessProperty.
class CWatchedCircle : public derive::CCircle {
 public:
  void AccessProperty(int propertyId, bool get, KoVariant& value) override {
    if (!get) stored.push_back(propertyId);
    derive::CCircle::AccessProperty(propertyId, get, value);
  }
  std::vector<int> stored;
};

TEST(GeneratedConstructs, HandDerivedClassesSeeEveryStoreThroughAccessProperty) {
  CSmartPtr<CWatchedCircle> circle(new CWatchedCircle);
  EXPECT_FALSE(circle->StorePropertyText(derive::CCircle::kRadius, ItemType_r8, "1", CWhitespaceUtils::WhitespaceRule_Collapse));
  std::string xml = Instance("derive");
  const size_t start = xml.find("<main");
  const size_t end = xml.find("</main>", start);
  ASSERT_NE(end, std::string::npos);
  std::string main = xml.substr(start, end + 7 - start);
  main.insert(main.find('>'), " xmlns=\"urn:test:derive\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"");
  circle->FromXml(main.c_str(), Ctx());
  EXPECT_EQ(circle->GetRadius(), 2.5);
  EXPECT_EQ(circle->GetLabel(), "sun");
  EXPECT_NE(std::find(circle->stored.begin(), circle->stored.end(), int(derive::CCircle::kRadius)), circle->stored.end());
  EXPECT_NE(std::find(circle->stored.begin(), circle->stored.end(), int(derive::CShape::kLabel)), circle->stored.end());
}

// An object built in code writes xsi:type for the derived class.
TEST(GeneratedConstructs, DerivedObjectsSetInCodeWriteTheirType) {
  CSmartPtr<derive::CDrawing> doc(new derive::CDrawing);
  doc->FromXml(Instance("derive").c_str(), Ctx());
  CSmartPtr<derive::CRectangle> rectangle(new derive::CRectangle("main"));
  rectangle->SetId("r9");
  rectangle->SetLabel("new");
  rectangle->SetWidth(CDecimal("1.5"));
  rectangle->SetHeight(CDecimal("2"));
  doc->SetMain(rectangle.get());
  const std::string text = doc->ToXml(false, false, EOLTypeLF, Ctx());
  EXPECT_TRUE(ValidAgainst(text, "derive", "derive-code")) << text;
  CSmartPtr<derive::CDrawing> back(new derive::CDrawing);
  back->FromXml(text.c_str(), Ctx());
  ASSERT_NE(dynamic_cast<derive::CRectangle*>(back->GetMain()), nullptr);
  EXPECT_EQ(dynamic_cast<derive::CSquare*>(back->GetMain()), nullptr);
}

TEST(GeneratedConstructs, GroupsReadIntoTheirMembers) {
  CSmartPtr<groups::CBook> doc(new groups::CBook);
  doc->FromXml(Instance("groups").c_str(), Ctx());
  groups::CEntry* entry = doc->GetEntries()->Item(0);
  EXPECT_EQ(entry->GetKind(), groups::Color::green);
  EXPECT_EQ(entry->GetPerson()->GetAge().ToString(), "41");
  ASSERT_EQ(entry->GetSequences()->GetCount(), 2);
  EXPECT_EQ(entry->GetSequences()->Item(1)->GetValue(), "two");
  ASSERT_EQ(entry->GetChoices()->GetCount(), 3);
  EXPECT_EQ(entry->GetChoices()->Item(1)->GetSize(), "1 2 3");
  EXPECT_EQ(entry->GetPayments()->Item(1)->GetVouchers()->GetCount(), 2);
  ASSERT_NE(entry->GetExtra(), nullptr);
  EXPECT_EQ(entry->GetExtra()->GetAnyElements()->GetCount(), 2);
  EXPECT_EQ(entry->GetExtra()->GetAnyAttributes()->GetCount(), 2);
  groups::CEntry* second = doc->GetEntries()->Item(1);
  EXPECT_EQ(second->GetKind(), groups::Color::red);  // the default
  EXPECT_EQ(second->GetChoices()->GetCount(), 0);
  EXPECT_EQ(second->GetExtra(), nullptr);

  // An all group is read in any order.
  const std::string shuffled =
      "<person xmlns='urn:test:groups'><age>3</age><last>L</last><first>F</first></person>";
  CSmartPtr<groups::CPerson> person(new groups::CPerson("person"));
  person->FromXml(shuffled.c_str(), Ctx());
  EXPECT_EQ(person->GetFirst(), "F");
  EXPECT_EQ(person->GetLast(), "L");
  // Facets implied by built-ins are checked when writing.
  person->SetAge(CBigInteger(0));
  EXPECT_THROW(person->ToXml(false, false, EOLTypeLF, Ctx()), CKoException);
}

TEST(GeneratedConstructs, CollidingNamesStayApart) {
  CSmartPtr<names::CCatalog> doc(new names::CCatalog);
  doc->FromXml(Instance("names").c_str(), Ctx());
  names::CItemType* item = doc->GetItems()->Item(0);
  EXPECT_EQ(item->GetItem(), "i");
  EXPECT_EQ(item->GetClass(), "c");
  EXPECT_EQ(item->GetValue(), 1);
  EXPECT_EQ(item->GetValue2(), 2);
  EXPECT_EQ(item->GetInt(), 3);
  EXPECT_TRUE(item->GetNew());
  EXPECT_EQ(doc->GetItem()->GetLabel(), "L");
  EXPECT_EQ(doc->GetItem2()->GetCode(), "X1");
  EXPECT_EQ(doc->GetUnit()->GetValue(), "metre");
  EXPECT_EQ(doc->GetUnit()->GetSystem(), "SI");
  EXPECT_EQ(doc->GetVersion()->GetPatch(), 3);
  EXPECT_EQ(doc->GetVersion()->GetMinor(), 2);
  EXPECT_EQ(doc->GetStamp(), 17u);
  EXPECT_EQ(doc->GetLocal(), "plain");
}

}  // namespace
