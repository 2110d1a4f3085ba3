#include <gtest/gtest.h>

#include <algorithm>

#include "support/Documents.h"
#include "support/CustomClass.h"
#include "support/TestModel.h"
#include "support/Throws.h"

using namespace testmodel;
using testsupport::EveryEncoding;
using testsupport::ThrowsFull;

namespace {

const CXmlSerializationContext& Default() { return CXmlSerializationContext::m_defaultContext; }

const std::string kDecl = "xmlns=\"urn:test\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"";

// Reads `xml` into `object` through every reader and framing, checking each
// result with `check`.
template <class T, class Check>
void ReadEveryWay(const std::string& xml, const CXmlSerializationContext& ctx, Check check) {
  for (testsupport::EncodedDocument& document : EveryEncoding(xml)) {
    SCOPED_TRACE(document.name);
    CSmartPtr<T> object(new T());
    try {
      object->FromXmlStream(document.bytes, ctx);
    } catch (const CKoException& e) {
      ADD_FAILURE() << e.GetFullMessage();
      continue;
    }
    check(*object);
  }
}

// The same for a document that must fail with `expected` (the full message).
template <class T>
void FailEveryWay(const std::string& xml, const CXmlSerializationContext& ctx, const std::string& expected) {
  for (testsupport::EncodedDocument& document : EveryEncoding(xml)) {
    SCOPED_TRACE(document.name);
    CSmartPtr<T> object(new T());
    EXPECT_TRUE(ThrowsFull<CKoValidationException>([&] { object->FromXmlStream(document.bytes, ctx); }, expected));
  }
}

CXmlSerializationContext IgnoringUnknownElements() {
  CXmlSerializationContext ctx;
  ctx.SetIgnoreUnknownElements(true);
  return ctx;
}

std::string ConversionMessage(const char* text, ItemType type) {
  try {
    KoVariant value;
    value.FromString(text, type, CWhitespaceUtils::WhitespaceRule_Collapse);
  } catch (const CKoException& e) {
    return e.GetFullMessage();
  }
  ADD_FAILURE() << text << " converted";
  return "";
}

// ---- nil ------------------------------------------------------------------------

TEST(EngineRead, NilIsReadWhateverTheCaseAndSkipsTheContent) {
  const std::pair<const char*, bool> values[] = {{"true", true},   {"TRUE", true},   {"True", true}, {"1", true},
                                                 {"false", false}, {"FALSE", false}, {"0", false}};
  for (const auto& [value, nil] : values) {
    SCOPED_TRACE(value);
    ReadEveryWay<CAddress>("<address " + kDecl + " kind=\"k\" xsi:nil=\"" + value + "\"><street>s</street></address>",
                           Default(), [nil = nil](CAddress& address) {
                             EXPECT_EQ(address.IsNil(), nil);
                             EXPECT_EQ(address.kind, "k");  // attributes are read either way
                             // Children are not read under nil.
                             EXPECT_EQ(address.street.value_or("unset"), nil ? "unset" : "s");
                           });
  }
}

// Nil written as text is held byte for byte in the writer's tests.
TEST(EngineRead, NilObjectsRoundTripThroughFastInfoset) {
  CSmartPtr<CAddress> address(new CAddress());
  address->kind = "k";
  address->SetNil(true);
  CSmartPtr<CAddress> back(new CAddress());
  back->FromXmlStream(address->ToFastInfosetStream(FInfoDeclNone, Default(), CompressionTypeNone), Default());
  EXPECT_TRUE(back->IsNil());
  EXPECT_EQ(back->kind, "k");
}

TEST(EngineRead, BadNilAndMissingRequiredAttributeFail) {
  FailEveryWay<CAddress>("<address " + kDecl + " xsi:nil=\"yes\"/>", Default(),
                         "Failed to process the element [address]\nUnexpected Value [yes] for 'nil' Attribute found.");
  FailEveryWay<CPerson>("<person " + kDecl + " id=\"1\" xsi:nil=\"false\"><name>a</name></person>", Default(),
                        "Failed to process the element [person]\n"
                        "Invalid use of 'nil' attibute in non-nillable element [person]");
  // Every attribute record is validated after reading.
  FailEveryWay<CPerson>("<person " + kDecl + " lang=\"en\"><name>a</name></person>", Default(),
                        "Failed to process the element [person]\nFailed to find the required Attribute [id]");
}

// ---- attributes -------------------------------------------------------------------

TEST(EngineRead, UnknownAttributes) {
  const std::string xml = "<person " + kDecl + " id=\"1\" colour=\"red\"><name>a</name></person>";
  FailEveryWay<CPerson>(xml, Default(), "Failed to process the element [person]\nUnexpected Attribute [colour] found.");
  CXmlSerializationContext tolerant;
  tolerant.SetIgnoreUnknownAttributes(true);
  ReadEveryWay<CPerson>(xml, tolerant, [](CPerson& person) {
    EXPECT_EQ(person.id, 1);
    EXPECT_EQ(person.name, "a");
  });
  // A class that does not reject unknown attributes skips them by itself.
  ReadEveryWay<CTeam>("<team " + kDecl + " colour=\"red\" title=\"t\"/>", Default(),
                      [](CTeam& team) { EXPECT_EQ(team.title, "t"); });
}

TEST(EngineRead, InstanceAttributesAreNotUnknown) {
  CSmartPtr<CPerson> person(new CPerson());
  person->FromXml(("<p:boss xmlns:p=\"urn:test\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                   "xsi:type=\"p:person\" xsi:schemaLocation=\"urn:test t.xsd\" "
                   "xsi:noNamespaceSchemaLocation=\"n.xsd\" id=\"5\"><p:name>a</p:name></p:boss>"),
                  Default());
  EXPECT_EQ(person->GetElementName(), "boss");  // the root's name, whatever it is
  EXPECT_EQ(person->id, 5);
}

// ---- sequences ------------------------------------------------------------------

// An element left over after a sequence, and unknown elements skipped before
// a mandatory member, are rows of the records' reading table.

TEST(EngineRead, SkippingAnUnknownElementResumesAtTheLastMemberThatRead) {
  const CXmlSerializationContext tolerant = IgnoringUnknownElements();
  // The run of tags is interrupted twice; its later items still belong to it,
  // and the mandatory name before it is not searched for again.
  ReadEveryWay<CPerson>(
      "<person " + kDecl +
          " id=\"1\"><name>a</name><tag>1</tag><bogus/><tag>2</tag><tag>3</tag><other>x</other><tag>4</tag>"
          "<note>n</note><late/></person>",
      tolerant, [](CPerson& person) {
        EXPECT_EQ(person.name, "a");
        EXPECT_EQ(person.Tags(), "1,2,3,4");
        EXPECT_EQ(person.note, "n");
      });
}

TEST(EngineRead, ResumingAtAMandatoryMemberSearchesForItAgain) {
  const CXmlSerializationContext tolerant = IgnoringUnknownElements();
  // After the unknown <y/> reading resumes at street, the last member that
  // consumed an element; a second street is then required.
  FailEveryWay<CAddress>("<address " + kDecl + "><street>s</street><y/><z/></address>", tolerant,
                         "Failed to process the element [address]\nFailed to find a required element [street]");
  ReadEveryWay<CAddress>("<address " + kDecl + "><street>s</street><y/><street>t</street><city>c</city></address>",
                         tolerant, [](CAddress& address) {
                           EXPECT_EQ(address.street, "t");
                           EXPECT_EQ(address.city, "c");
                         });
}

// A member that does not match hands the decision to the group: with unknown
// elements ignored the element in its way is skipped and it is asked again,
// otherwise the group is left unread.
class CNotMine : public CElementInfoSeqPrimMnd {
 public:
  CNotMine()
      : CElementInfoSeqPrimMnd("v", kNs, 0, false, ItemType_i4, nullptr, CWhitespaceUtils::WhitespaceRule_Collapse,
                               CPrimitiveRestrictions()) {}
  bool ElementFromXml(const CXmlSerializationContext& ctx, CXmlGeneratedClass* owner, CXmlElement* parent,
                      CXmlElement** cursor, const char* ns, XmlElementType type) override {
    return IsThisElement(ctx, *cursor) &&
           CElementInfoSeqPrimMnd::ElementFromXml(ctx, owner, parent, cursor, ns, type);
  }
};

TEST(EngineRead, AMemberThatDoesNotMatch) {
  const CXmlSerializationContext tolerant = IgnoringUnknownElements();
  CSmartPtr<CCustom> object(new CCustom(XmlElementGroupTypeSequence, {new CNotMine()}));
  object->FromXml(("<custom " + kDecl + "><a/><b/><v>5</v></custom>").c_str(), tolerant);
  EXPECT_EQ(object->value.GetI4(), 5);
  object->FromXml(("<custom " + kDecl + "><a/><v>5</v></custom>").c_str(), Default());
  EXPECT_FALSE(object->value.IsValid());
}

// ---- choices ---------------------------------------------------------------------

TEST(EngineRead, ChoiceReadsOneAlternative) {
  ReadEveryWay<CShape>("<shape " + kDecl + "><label>l</label></shape>", Default(), [](CShape& shape) {
    EXPECT_EQ(shape.label, "l");
    EXPECT_FALSE(shape.radius);
  });
  ReadEveryWay<CShape>("<shape " + kDecl + "><inner><inner><radius>4</radius></inner></inner></shape>", Default(),
                       [](CShape& shape) {
                         ASSERT_TRUE(shape.inner);
                         ASSERT_TRUE(shape.inner->inner);
                         EXPECT_EQ(shape.inner->inner->radius, 4);
                       });
  // An optional class alternative may hold an empty choice.
  ReadEveryWay<CShape>("<shape " + kDecl + "><inner/></shape>", Default(), [](CShape& shape) {
    ASSERT_TRUE(shape.inner);
    EXPECT_FALSE(shape.inner->radius);
  });
}

// An element left over after the alternative of an optional choice is still
// reported. (Empty choices, strict or not, and unknown elements before the
// alternative are rows of the records' reading table.)
TEST(EngineRead, OptionalChoiceWithAnElementLeftOver) {
  const std::string leftOver = "<shape " + kDecl + "><radius>1</radius><label>l</label></shape>";
  FailEveryWay<CShape>(leftOver, Default(),
                       "Failed to process the element [shape]\n"
                       "Failed read all the elements held within the element [shape]. The unexpected element "
                       "[label] remains un processed");
  const CXmlSerializationContext tolerant = IgnoringUnknownElements();
  ReadEveryWay<CShape>(leftOver, tolerant, [](CShape& shape) {
    EXPECT_EQ(shape.radius, 1);
    EXPECT_FALSE(shape.label);
  });
}

// ---- all groups ------------------------------------------------------------------

TEST(EngineRead, AllGroupInAnyOrder) {
  ReadEveryWay<CBag>("<bag " + kDecl + "><z>3</z><y>b</y><x>1</x></bag>", Default(), [](CBag& bag) {
    EXPECT_EQ(bag.x, 1);
    EXPECT_EQ(bag.y, "b");
    EXPECT_EQ(bag.z, 3);
  });
  ReadEveryWay<CBag>("<bag " + kDecl + "><z>3</z><x>1</x></bag>", Default(), [](CBag& bag) {
    EXPECT_EQ(bag.x, 1);
    EXPECT_FALSE(bag.y);
  });
}

// A missing mandatory member is a row of the records' reading table.
TEST(EngineRead, AllGroupWithAMemberTwice) {
  const std::string twice = "<bag " + kDecl + "><x>1</x><z>2</z><x>3</x></bag>";
  FailEveryWay<CBag>(twice, Default(),
                     "Failed to process the element [bag]\n"
                     "Failed read all the elements held within the element [bag]. The unexpected element [x] "
                     "remains un processed");
  const CXmlSerializationContext tolerant = IgnoringUnknownElements();
  ReadEveryWay<CBag>(twice, tolerant, [](CBag& bag) { EXPECT_EQ(bag.x, 1); });
}

// ---- nesting, failures and state ------------------------------------------------------

TEST(EngineRead, AFailureThreeLevelsDownReadsAsAPath) {
  const std::string xml = "<team " + kDecl +
                          "><leader id=\"1\"><name>a</name><address><street>s</street><zip>abc</zip></address>"
                          "</leader></team>";
  const std::string innermost = ConversionMessage("abc", ItemType_i4);
  const std::string expected =
      "Failed to process the element [team]\nFailed to process the element [leader]\n"
      "Failed to process the element [address]\n" +
      innermost;
  EXPECT_EQ(std::count(expected.begin(), expected.end(), '\n'), 3) << "four lines";
  FailEveryWay<CTeam>(xml, Default(), expected);
}

TEST(EngineRead, AFailedReadKeepsWhatWasStored) {
  CSmartPtr<CPerson> person(new CPerson());
  person->note = "from before";
  EXPECT_THROW(person->FromXml(("<person " + kDecl + " id=\"7\"><name>kept</name><age>old</age></person>").c_str(),
                               Default()),
               CKoValidationException);
  EXPECT_EQ(person->id, 7);
  EXPECT_EQ(person->name, "kept");
  EXPECT_FALSE(person->note);  // reading started from Init
}

TEST(EngineRead, ReadingTwiceStartsAfresh) {
  CSmartPtr<CPerson> person(new CPerson());
  person->FromXml(("<person " + kDecl + " id=\"1\" lang=\"en\"><name>a</name><tag>x</tag><note>n</note></person>")
                      .c_str(),
                  Default());
  EXPECT_EQ(person->Tags(), "x");
  person->FromXml(("<person " + kDecl + " id=\"2\"><name>b</name><tag>y</tag></person>").c_str(), Default());
  EXPECT_EQ(person->id, 2);
  EXPECT_EQ(person->name, "b");
  EXPECT_EQ(person->Tags(), "y");
  EXPECT_FALSE(person->lang);
  EXPECT_FALSE(person->note);
}

TEST(EngineRead, PseudoChildReadsFromItsOwnersElement) {
  ReadEveryWay<CTeam>("<team " + kDecl + " rev=\"9\" title=\"t\"><comment>c</comment><shape><radius>1</radius></shape></team>",
                      Default(), [](CTeam& team) {
                        EXPECT_EQ(team.title, "t");
                        EXPECT_EQ(team.meta->rev, 9);
                        EXPECT_EQ(team.meta->comment, "c");
                        ASSERT_TRUE(team.shape);
                        EXPECT_EQ(team.shape->radius, 1);
                      });
}

TEST(EngineRead, SimpleContent) {
  ReadEveryWay<CPrice>("<price " + kDecl + " currency=\"EUR\">12.25</price>", Default(), [](CPrice& price) {
    EXPECT_EQ(price.currency, "EUR");
    EXPECT_EQ(price.value.ToString(nullptr), "12.25");
  });
  // Kept as text: neither converted nor trimmed.
  ReadEveryWay<CCode>("<code " + kDecl + ">  12x </code>", Default(),
                      [](CCode& code) { EXPECT_EQ(code.text, "  12x "); });
  FailEveryWay<CPrice>("<price " + kDecl + ">twelve</price>", Default(),
                       "Failed to process the element [price]\n" + ConversionMessage("twelve", ItemType_decimal));
}

TEST(EngineRead, NamesAreMatchedWithTheirNamespaceUnlessTheContextSaysOtherwise) {
  const std::string xml = "<person xmlns=\"urn:other\" id=\"1\"><name>a</name></person>";
  FailEveryWay<CPerson>(xml, Default(),
                        "Failed to process the element [person]\nFailed to find a required element [name]");
  CXmlSerializationContext ignoring;
  ignoring.SetIgnoreNamespaces(true);
  ReadEveryWay<CPerson>(xml, ignoring, [](CPerson& person) { EXPECT_EQ(person.name, "a"); });
  // Without namespace processing names match on their local part, and the
  // declarations are still no data attributes.
  CXmlSerializationContext noNamespaces;
  noNamespaces.SetSchemaType(SchemaTypeNoNamespaces);
  CSmartPtr<CPerson> person(new CPerson());
  person->FromXml("<person xmlns=\"urn:other\" xmlns:q=\"urn:q\" id=\"1\"><name>a</name></person>",
                  noNamespaces);
  EXPECT_EQ(person->name, "a");
}

}  // namespace
