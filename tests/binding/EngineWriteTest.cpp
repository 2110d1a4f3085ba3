#include <gtest/gtest.h>

#include <iterator>

#include "KoXmlLib10/Untyped.h"
#include "KoXmlLib10/XmlDocument.h"
#include "support/CustomClass.h"
#include "support/TestModel.h"
#include "support/Throws.h"

using namespace testmodel;
using testsupport::Throws;
using testsupport::ThrowsFull;

namespace {

const CXmlSerializationContext& Default() { return CXmlSerializationContext::m_defaultContext; }

std::string Text(const CXmlObjectBase& object, const CXmlSerializationContext& ctx = Default()) {
  return object.ToXml(false, false, EOLTypeLF, ctx);
}

CSmartPtr<CPerson> Person() {
  CSmartPtr<CPerson> person(new CPerson());
  person->id = 1;
  person->name = "Ada";
  return person;
}

size_t Find(const std::string& text, const std::string& part) {
  const size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part << " is missing from " << text;
  return at;
}

TEST(EngineWrite, RootOutputComesInItsOrder) {
  CXmlSerializationContext ctx;
  ctx.GetProcessingInstructions().push_back("<?first one?>");
  ctx.GetProcessingInstructions().push_back("<?second two?>");
  ctx.GetNamespaceAliases().Add("zz", "urn:b");
  ctx.GetNamespaceAliases().Add("yy", "urn:a");
  ctx.SetDefaultNamespaceURI("urn:d");
  ctx.SetInLineSchema("<schema-here/>");
  ctx.GetAdditionalRootAttributes()->Add("extra", "e");
  CSmartPtr<CPerson> person = Person();
  person->SetElementName("boss");  // differs from the type name
  person->lang = "en";
  const std::string text = Text(*person, ctx);

  // Declarations in namespace order, not in the order added; the caller's
  // extra attributes before the type and the class's own attributes.
  const char* const inOrder[] = {"<?first one?>", "<?second two?>", "<AA:boss ", "xmlns:yy=\"urn:a\"",
                                 "xmlns:zz=\"urn:b\"", "extra=\"e\"", ":type=\"AA:person\"", "id=\"1\"",
                                 "lang=\"en\"", "<schema-here/>", "<AA:name>Ada</AA:name>"};
  for (size_t i = 1; i < std::size(inOrder); ++i)
    EXPECT_LT(Find(text, inOrder[i - 1]), Find(text, inOrder[i])) << inOrder[i - 1] << " before " << inOrder[i];
  EXPECT_LT(Find(text, "xmlns=\"urn:d\""), Find(text, "extra=\"e\""));
}

TEST(EngineWrite, NamespaceWithoutAliasIsNotDeclared) {
  CXmlSerializationContext ctx;
  ctx.GetNamespaceAliases().Add("k", "urn:known");
  // Asking for an unknown namespace leaves an entry with an empty alias.
  EXPECT_EQ(ctx.GetNamespaceAliases().GetAliasFromNamespace("urn:unknown"), "");
  ASSERT_EQ(ctx.GetNamespaceAliases().GetNamespaceCount(), 2);
  const std::string text = Text(*Person(), ctx);
  EXPECT_EQ(text,
            "<AA:person xmlns:AA=\"urn:test\" xmlns:k=\"urn:known\" id=\"1\"><AA:name>Ada</AA:name></AA:person>");
  EXPECT_EQ(text.find("xmlns:="), std::string::npos);
  // The text still reads back, through both writers.
  CSmartPtr<CPerson> back(new CPerson());
  back->FromXml(text.c_str(), Default());
  EXPECT_EQ(back->name, "Ada");
  back->FromXmlStream(Person()->ToFastInfosetStream(FInfoDeclNone, ctx, CompressionTypeNone), Default());
  EXPECT_EQ(back->name, "Ada");
}

TEST(EngineWrite, RootExtrasOnlyOnTheRoot) {
  CXmlSerializationContext ctx;
  ctx.GetAdditionalRootAttributes()->Add("extra", "e", "urn:x");
  ctx.GetProcessingInstructions().push_back("<?once?>");
  ctx.SetInLineSchema("<schema-once/>");
  CSmartPtr<CTeam> team(new CTeam());
  team->leader = Person();
  team->leader->SetElementName("leader");
  const std::string text = Text(*team, ctx);
  EXPECT_EQ(text.find("<?once?>"), text.rfind("<?once?>"));
  EXPECT_EQ(text.find("<schema-once/>"), text.rfind("<schema-once/>"));
  EXPECT_EQ(text.find("extra=\"e\""), text.rfind("extra=\"e\""));
}

TEST(EngineWrite, TypeAttributeOnlyWhereTheNameDiffersFromTheType) {
  // The root is named as its type: no xsi:type.
  EXPECT_EQ(Text(*Person()), "<AA:person xmlns:AA=\"urn:test\" id=\"1\"><AA:name>Ada</AA:name></AA:person>");
  CSmartPtr<CPerson> renamed = Person();
  renamed->SetElementName("boss");
  EXPECT_NE(Text(*renamed).find("type=\"AA:person\""), std::string::npos);
  CXmlSerializationContext noTypes;
  noTypes.SetWriteTypeAttribute(false);
  EXPECT_EQ(Text(*renamed, noTypes), "<AA:boss xmlns:AA=\"urn:test\" id=\"1\"><AA:name>Ada</AA:name></AA:boss>");
  // A class that does not ask for it never gets one.
  CSmartPtr<CAddress> address(new CAddress());
  address->SetElementName("home");
  address->street = "x";
  EXPECT_EQ(Text(*address), "<AA:home xmlns:AA=\"urn:test\"><AA:street>x</AA:street></AA:home>");
}

TEST(EngineWrite, NilObjectWritesItsAttributesAndNoContent) {
  CSmartPtr<CAddress> address(new CAddress());
  address->street = "1 Main St";
  address->kind = "home";
  address->SetNil(true);
  EXPECT_EQ(Text(*address),
            "<AA:address xmlns:AA=\"urn:test\" kind=\"home\" "
            "xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" AB:nil=\"true\"/>");
}

TEST(EngineWrite, SimpleContent) {
  CSmartPtr<CPrice> price(new CPrice());
  price->currency = "EUR";
  EXPECT_EQ(Text(*price), "<AA:price xmlns:AA=\"urn:test\" currency=\"EUR\"/>");  // unset: no text
  price->value.SetDecimal(CDecimal("12.25"));
  EXPECT_EQ(Text(*price), "<AA:price xmlns:AA=\"urn:test\" currency=\"EUR\">12.25</AA:price>");
  price->value.SetNil();
  EXPECT_EQ(Text(*price),
            "<AA:price xmlns:AA=\"urn:test\" currency=\"EUR\" "
            "xmlns:AB=\"http://www.w3.org/2001/XMLSchema-instance\" AB:nil=\"true\"/>");
}

TEST(EngineWrite, PseudoChildAttributesFollowTheOwnersAndItsChildrenStandAmongTheOwners) {
  CSmartPtr<CTeam> team(new CTeam());
  team->title = "t";
  team->meta->rev = 3;
  team->meta->comment = "c";
  CSmartPtr<CShape> shape(new CShape());
  shape->radius = 2;
  team->shape = shape;
  EXPECT_EQ(Text(*team),
            "<AA:team xmlns:AA=\"urn:test\" title=\"t\" rev=\"3\"><AA:comment>c</AA:comment>"
            "<AA:shape><AA:radius>2</AA:radius></AA:shape></AA:team>");
}

TEST(EngineWrite, ChoiceWritesTheFirstAlternativeSet) {
  CSmartPtr<CShape> shape(new CShape());
  shape->label = "l";
  shape->radius = 5;
  EXPECT_EQ(Text(*shape), "<AA:shape xmlns:AA=\"urn:test\"><AA:radius>5</AA:radius></AA:shape>");
}

// A choice of optional alternatives may be written empty, also as the value
// of an optional alternative. (Choices that must hold an alternative are
// written in the records' tests.)
TEST(EngineWrite, EmptyChoice) {
  CSmartPtr<CShape> shape(new CShape());
  EXPECT_EQ(Text(*shape), "<AA:shape xmlns:AA=\"urn:test\"/>");
  shape->inner = new CShape();
  shape->inner->SetElementName("inner");
  EXPECT_EQ(Text(*shape), "<AA:shape xmlns:AA=\"urn:test\"><AA:inner/></AA:shape>");
  CSmartPtr<CShape> back(new CShape());
  back->FromXml(Text(*shape).c_str(), Default());
  ASSERT_TRUE(back->inner);
  EXPECT_FALSE(back->inner->radius);
}

// A failure deep down reads as the path to it: see the records' writing tests.

class CThrowingAttribute : public CAttributeInfo {
 public:
  CThrowingAttribute() : CAttributeInfo("bad", "", 0, true, nullptr) {}
  void AttributeToXml(const CXmlSerializationContext&, const CXmlGeneratedClass*, CXmlWriter*) const override {
    throw CKoInvalidValueException("cannot write this attribute");
  }
  bool AttributeFromXml(const CXmlSerializationContext&, CXmlGeneratedClass*, CXmlAttribute*) override {
    return false;
  }
  void Validate(const CXmlSerializationContext&, bool) const override {}
};

TEST(EngineWrite, AttributeFailuresAreWrappedTwice) {
  CSmartPtr<CCustom> custom(new CCustom(XmlElementGroupTypeSequence, {}, {new CThrowingAttribute()}));
  try {
    Text(*custom);
    FAIL() << "nothing thrown";
  } catch (const CKoValidationException& e) {
    EXPECT_EQ(e.GetFullMessage(),
              "Failed to convert the element [custom] to XML\nFailed to convert attributes to XML\n"
              "cannot write this attribute");
    const CKoException* attributes = e.GetInnerException();
    ASSERT_NE(attributes, nullptr);
    // The attribute wrapper is a plain library exception, the element one a validation exception.
    EXPECT_EQ(dynamic_cast<const CKoValidationException*>(attributes), nullptr);
    EXPECT_NE(dynamic_cast<const CKoInvalidValueException*>(attributes->GetInnerException()), nullptr);
  }
}

TEST(EngineWrite, UnknownGroupType) {
  CSmartPtr<CCustom> custom(new CCustom(static_cast<XmlElementGroupType>(3), {}));
  EXPECT_TRUE(ThrowsFull<CKoValidationException>(
      [&] { Text(*custom); }, "Failed to convert the element [custom] to XML\nUnknown XML Group Type"));
  EXPECT_TRUE(ThrowsFull<CKoValidationException>(
      [&] { custom->FromXml("<custom/>", Default()); }, "Failed to process the element [custom]\nUnknow Group Type"));
}

TEST(EngineWrite, AllGroupWritesEveryMemberInRecordOrder) {
  CSmartPtr<CBag> bag(new CBag());
  bag->z = 3;
  bag->x = 1;
  EXPECT_EQ(Text(*bag), "<AA:bag xmlns:AA=\"urn:test\"><AA:x>1</AA:x><AA:z>3</AA:z></AA:bag>");
}

TEST(EngineWrite, DocumentHeaderAndLineEnds) {
  const std::string plain = Person()->ToXml(false, true, EOLTypeLF, Default());
  EXPECT_EQ(plain.rfind("<?xml", 0), std::string::npos);
  const std::string withHeader = Person()->ToXml(true, true, EOLTypeCRLF, Default());
  EXPECT_EQ(withHeader.rfind("<?xml version=\"1.0\"?>\r\n", 0), 0u);
  EXPECT_NE(withHeader.find("\r\n\t<AA:name>"), std::string::npos);
}

}  // namespace
