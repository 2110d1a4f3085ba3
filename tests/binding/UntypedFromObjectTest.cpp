#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>

#include "support/TestModel.h"
#include "support/Trees.h"

using namespace testmodel;

namespace {

const CXmlSerializationContext& Default() { return CXmlSerializationContext::m_defaultContext; }

std::string Text(const CXmlObjectBase& object) { return object.ToXml(false, false, EOLTypeLF, Default()); }

CSmartPtr<CTeam> SampleTeam() {
  CSmartPtr<CTeam> team(new CTeam());
  team->title = "Blue & <Gold>";
  team->meta->rev = 7;
  team->meta->comment = "first";
  CSmartPtr<CPerson> leader(new CPerson());
  leader->SetElementName("leader");
  leader->id = 42;
  leader->name = "Ada";
  leader->tags->Add("a"), leader->tags->Add("b");
  CSmartPtr<CAddress> address(new CAddress());
  address->street = "1 Main St";
  address->city = "Oslo";
  address->kind = "home";
  leader->address = address;
  team->leader = leader;
  CSmartPtr<CShape> shape(new CShape());
  shape->radius = 3;
  team->shape = shape;
  return team;
}

// A generated object turned into untyped content, written, read back as
// untyped content and turned into an object again.
TEST(UntypedFromObject, WrittenReadBackAndTurnedBackIntoTheObject) {
  CSmartPtr<CTeam> team = SampleTeam();
  const std::string original = Text(*team);
  CSmartPtr<CElement> element = new CElement(team.get(), nullptr);
  EXPECT_EQ(element->GetName(), "team");
  EXPECT_EQ(element->GetNamespace(), kNs);
  EXPECT_EQ(element->GetDefaultNamespace(), "");
  EXPECT_EQ(element->GetAttributes()->GetCount(), 2);  // title, and rev of the pseudo element
  EXPECT_EQ(Text(*element), original);

  CSmartPtr<CElement> read = new CElement("x");
  read->FromXml(Text(*element).c_str());
  CSmartPtr<CTeam> back(new CTeam());
  back->FromXmlElement(read.get(), Default());
  EXPECT_EQ(Text(*back), original);  // every field, city and radius included
}

TEST(UntypedFromObject, ThroughFastInfosetAndWithADefaultNamespace) {
  CSmartPtr<CTeam> team = SampleTeam();
  const std::string original = Text(*team);
  for (const char* defaultNamespace : {"", kNs}) {
    SCOPED_TRACE(defaultNamespace);
    CSmartPtr<CElement> element = new CElement(team.get(), defaultNamespace);
    EXPECT_EQ(element->GetDefaultNamespace(), defaultNamespace);
    // Fast Infoset out, a parsed tree in.
    CBinaryData bytes = element->ToFastInfosetStream(FInfoDeclNone, Default(), CompressionTypeNone);
    CXmlDocument doc;
    ASSERT_TRUE(LoadBytes(doc, std::string(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength())));
    CSmartPtr<CElement> copy = new CElement("x");
    copy->CopyXmlElement(doc.GetDocumentElement());
    CSmartPtr<CTeam> back(new CTeam());
    back->FromXmlElement(copy.get(), Default());
    EXPECT_EQ(Text(*back), original);
    // Text straight from the untyped element, its own default namespace included.
    CSmartPtr<CTeam> fromText(new CTeam());
    fromText->FromXmlElement(element.get(), Default());
    EXPECT_EQ(Text(*fromText), original);
  }
}

}  // namespace
