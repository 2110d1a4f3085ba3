// What the reading engine takes from an object besides its records: the
// owner's namespace (through GetNamespaceText when the class has a constant
// one), whether it is nillable, and the references it holds on member objects
// while filling them.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <vector>

#include "support/TestModel.h"

using namespace testmodel;

namespace {

const CXmlSerializationContext& Default() { return CXmlSerializationContext::m_defaultContext; }

const std::string kDecl = "xmlns=\"urn:test\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";
const std::string kPersonXml = "<person " + kDecl +
                               " id=\"7\"><name>Ann</name><age>41</age><address><street>Main</street></address>"
                               "<tag>a</tag><tag>b</tag></person>";

// Counts how often the reading engine asks for the namespace as a string.
class CCountingPerson : public CPerson {
 public:
  std::string GetNamespace() const override {
    ++namespaceCalls;
    return CPerson::GetNamespace();
  }
  mutable int namespaceCalls = 0;
};

class CConstantNamespacePerson : public CCountingPerson {
 public:
  const char* GetNamespaceText() const override { return kNs; }
};

// Reads `xml` into `object`, reporting a failure with its full message.
void Read(CXmlObjectBase& object, const std::string& xml) {
  try {
    object.FromXml(xml.c_str(), Default());
  } catch (const CKoException& e) {
    ADD_FAILURE() << e.GetFullMessage();
  }
}

void ExpectPersonRead(const CPerson& person) {
  EXPECT_EQ(person.id, 7);
  EXPECT_EQ(person.name, "Ann");
  EXPECT_EQ(person.age, 41);
  ASSERT_TRUE(person.address);
  EXPECT_EQ(person.address->street, "Main");
  EXPECT_EQ(person.Tags(), "a,b");
}

// The references an object holds: one more than the count before AddRef.
int References(CXmlObjectBase* object) {
  const int count = object->AddRef();
  object->Release();
  return count - 1;
}

// Without a namespace text the string is asked for; a constant one spares it
// and reads the same.
TEST(ReadPath, AConstantNamespaceTextSparesTheString) {
  CSmartPtr<CCountingPerson> asking(new CCountingPerson);
  EXPECT_EQ(asking->GetNamespaceText(), nullptr);  // the base class has no constant
  CSmartPtr<CConstantNamespacePerson> constant(new CConstantNamespacePerson);
  for (CCountingPerson* person : {asking.get(), static_cast<CCountingPerson*>(constant.get())}) {
    Read(*person, kPersonXml);
    ExpectPersonRead(*person);
  }
  EXPECT_GT(asking->namespaceCalls, 0);
  EXPECT_EQ(constant->namespaceCalls, 0);
}

TEST(ReadPath, NillableAndOtherClassesReadInTurnKeepTheirOwnAnswer) {
  // CAddress is nillable through its second base; the others are not.
  // Reading them in turn on one thread must not carry one class's answer to
  // another.
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(round);
    CSmartPtr<CAddress> nil(new CAddress);
    Read(*nil, "<address " + kDecl + " xsi:nil=\"true\"><street>s</street></address>");
    EXPECT_TRUE(nil->IsNil());
    EXPECT_FALSE(nil->street);

    CSmartPtr<CPerson> person(new CPerson);
    Read(*person, kPersonXml);
    ExpectPersonRead(*person);
    EXPECT_FALSE(person->address->IsNil());

    // More classes than the engine remembers answers for.
    CSmartPtr<CShape> shape(new CShape);
    Read(*shape, "<shape " + kDecl + "><radius>1</radius></shape>");
    EXPECT_EQ(shape->radius, 1);
    CSmartPtr<CBag> bag(new CBag);
    Read(*bag, "<bag " + kDecl + "><z>2</z><x>1</x></bag>");
    EXPECT_EQ(bag->x, 1);
    CSmartPtr<CCode> code(new CCode);
    Read(*code, "<code " + kDecl + ">t</code>");
    EXPECT_EQ(code->text, "t");
    CSmartPtr<CPrice> price(new CPrice);
    Read(*price, "<price " + kDecl + ">2</price>");
    CSmartPtr<CTeam> team(new CTeam);
    Read(*team, "<team " + kDecl + " rev=\"3\"><comment>c</comment></team>");
    EXPECT_EQ(team->meta->rev, 3);

    CSmartPtr<CAddress> plain(new CAddress);
    Read(*plain, "<address " + kDecl + "><street>t</street></address>");
    EXPECT_FALSE(plain->IsNil());
    EXPECT_EQ(plain->street, "t");
  }
}

TEST(ReadPath, MemberObjectsAreLeftWithTheOwnersReferenceAlone) {
  CSmartPtr<CPerson> person(new CPerson);
  Read(*person, kPersonXml);
  EXPECT_EQ(References(person->tags.get()), 1);     // a collection filled in place
  EXPECT_EQ(References(person->address.get()), 1);  // an object made by the factory

  CSmartPtr<CTeam> team(new CTeam);
  Read(*team, "<team " + kDecl + " rev=\"3\"><comment>c</comment></team>");
  ASSERT_TRUE(team->meta);
  EXPECT_EQ(team->meta->rev, 3);
  EXPECT_EQ(References(team->meta.get()), 1);  // a mandatory member filled in place
}

// Offers of a value's text, with what each answers.
using Offer = std::tuple<int, ItemType, std::string, CWhitespaceUtils::WhitespaceRule>;

// Declines every offer, so the engine falls back to a KoVariant.
template <class Base>
class CDeclining : public Base {
 public:
  bool StorePropertyText(int id, ItemType type, const std::string& text, CWhitespaceUtils::WhitespaceRule rule) override {
    offers.emplace_back(id, type, text, rule);
    return false;
  }
  std::vector<Offer> offers;
};
using CDecliningPerson = CDeclining<CPerson>;
using CDecliningPrice = CDeclining<CPrice>;

// Takes the name itself and declines the rest.
class CNameTakingPerson : public CDecliningPerson {
 public:
  bool StorePropertyText(int id, ItemType type, const std::string& text, CWhitespaceUtils::WhitespaceRule rule) override {
    CDecliningPerson::StorePropertyText(id, type, text, rule);
    if (id != P_name) return false;
    name = "taken:" + text;
    return true;
  }
};

TEST(ReadPath, PrimitiveValuesAreOfferedAsTextBeforeAVariant) {
  CSmartPtr<CDecliningPerson> declining(new CDecliningPerson);
  Read(*declining, kPersonXml);
  ExpectPersonRead(*declining);  // every value still arrives through AccessProperty
  const std::vector<Offer>& offers = declining->offers;
  EXPECT_NE(std::find(offers.begin(), offers.end(), Offer(CPerson::P_id, ItemType_i4, "7",
                                                          CWhitespaceUtils::WhitespaceRule_Collapse)),
            offers.end());  // an attribute
  EXPECT_NE(std::find_if(offers.begin(), offers.end(),
                         [](const Offer& o) { return std::get<0>(o) == CPerson::P_age && std::get<2>(o) == "41"; }),
            offers.end());  // an element
  EXPECT_EQ(std::count_if(offers.begin(), offers.end(), [](const Offer& o) { return std::get<2>(o) == "a"; }), 0)
      << "collection items are not offered";

  CSmartPtr<CNameTakingPerson> taking(new CNameTakingPerson);
  Read(*taking, kPersonXml);
  EXPECT_EQ(taking->name, "taken:Ann");  // what the class stored, not the variant's value
  EXPECT_EQ(taking->age, 41);

  CSmartPtr<CDecliningPrice> price(new CDecliningPrice);
  Read(*price, "<price " + kDecl + " currency=\"EUR\"> 12.50 </price>");
  EXPECT_EQ(price->value.GetDecimal().ToString(), "12.5");
  EXPECT_NE(std::find(price->offers.begin(), price->offers.end(),
                      Offer(CPrice::P_value, ItemType_decimal, " 12.50 ", CWhitespaceUtils::WhitespaceRule_None)),
            price->offers.end());  // simple content, with its text unchanged
}

}  // namespace
