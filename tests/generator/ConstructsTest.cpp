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

// A canonical form that does not depend on prefixes: every name with its
// namespace URI, attributes sorted, namespace declarations left out, text
// without surrounding whitespace, and xsi:type values as {namespace}name.
std::string Canonical(const std::string& xml) {
  static const std::string kXsi = "http://www.w3.org/2001/XMLSchema-instance";
  CXmlDocument doc;
  doc.LoadXml(xml.c_str());
  std::string out;
  struct Walk {
    std::string& out;
    void operator()(CXmlElement* e, int depth) {
      out += std::string(static_cast<size_t>(depth) * 2, ' ') + "{" + e->GetNamespaceURI() + "}" + e->GetLocalName();
      std::vector<std::string> attributes;
      for (const CXmlAttribute* a : e->GetAttributes()) {
        if (a->IsNamespaceAttribute()) continue;
        std::string value = a->GetValue();
        if (a->GetNamespaceURI() == kXsi && a->GetLocalName() == "type")
          value = "{" + CClassfactoryBase::GetElementTypeNamespaceUri(e) + "}" + CClassfactoryBase::GetElementType(e);
        attributes.push_back("{" + a->GetNamespaceURI() + "}" + a->GetLocalName() + "=" + value);
      }
      std::sort(attributes.begin(), attributes.end());
      for (const std::string& a : attributes) out += " " + a;
      std::string text = e->GetText();
      text.erase(0, text.find_first_not_of(" \t\r\n"));
      text.erase(text.find_last_not_of(" \t\r\n") + 1);
      if (!text.empty()) out += " [" + text + "]";
      out += "\n";
      for (CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) (*this)(c, depth + 1);
    }
  };
  Walk{out}(doc.GetDocumentElement(), 0);
  return out;
}

// xmllint's verdict on a document against a schema; true when xmllint is
// not installed.
bool ValidAgainst(const std::string& xml, const std::string& schema, const std::string& name) {
  const std::string xmllint = KOXML_XMLLINT;
  if (xmllint.empty()) return true;
  const std::string path = name + "-out.xml";
  std::ofstream(path, std::ios::binary) << xml;
  const std::string command = xmllint + " --noout --schema " + std::string(KOXML_GENERATOR_DATA) + "/schemas/" +
                              schema + ".xsd " + path + " 2>/dev/null";
  return std::system(command.c_str()) == 0;
}

// Reads the instance document of `name` into a T and checks that every
// way of writing it keeps the document.
template <class T>
void ExpectRoundTrip(const std::string& name) {
  const std::string input = Instance(name);
  CSmartPtr<T> doc(new T);
  doc->FromXml(input.c_str(), Ctx());
  const std::string text = doc->ToXml(false, false, EOLTypeLF, Ctx());
  EXPECT_EQ(Canonical(text), Canonical(input)) << text;
  EXPECT_TRUE(ValidAgainst(text, name, name)) << text;
  for (CompressionType compression : {CompressionTypeNone, CompressionTypeGzip}) {
    CSmartPtr<T> fi(new T);
    fi->FromXmlStream(doc->ToFastInfosetStream(FInfoDeclNone, Ctx(), compression), Ctx());
    EXPECT_EQ(fi->ToXml(false, false, EOLTypeLF, Ctx()), text) << "Fast Infoset, compression " << compression;
    CSmartPtr<T> gz(new T);
    gz->FromXmlStream(doc->ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, Ctx(), compression), Ctx());
    EXPECT_EQ(gz->ToXml(false, false, EOLTypeLF, Ctx()), text) << "XML text, compression " << compression;
  }
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
