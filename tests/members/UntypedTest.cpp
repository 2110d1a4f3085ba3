#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>

#include "support/CollectionEvents.h"
#include "support/GeneratorVersion.h"
#include "support/Throws.h"
#include "support/Trees.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

const CXmlSerializationContext& Default() { return CXmlSerializationContext::m_defaultContext; }

// The element as unformatted text without a declaration.
std::string Text(const CXmlObjectBase& object) { return object.ToXml(false, false, EOLTypeLF, Default()); }

// Parses text and dumps the tree, so that outputs compare by their infoset.
std::string Reparsed(const std::string& xml) {
  CXmlDocument doc;
  if (!LoadText(doc, xml)) return "<not well-formed: " + xml + ">";
  return Dump(doc.GetDocumentElement());
}

std::string ReparsedBytes(const CBinaryData& bytes) {
  CXmlDocument doc;
  if (!LoadBytes(doc, std::string(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength())))
    return "<not loadable>";
  return Dump(doc.GetDocumentElement());
}

// An element e in urn:a with an attribute, text and a child c.
CSmartPtr<CElement> Sample() {
  CSmartPtr<CElement> e = new CElement("e", "urn:a");
  e->GetAttributes()->Add("k", "v", "");
  e->GetElements()->Add("c", "urn:a")->SetText("inner");
  e->SetText("t");
  return e;
}

using Untyped = WithGeneratorVersion;

TEST(UntypedElement, KeywordsAreNoNamespace) {
  for (const char* keyword : {"##any", "##other", "##local", "##targetNamespace"})
    EXPECT_TRUE(Throws<CKoInvalidNamespaceException>([&] { CElement e("e", keyword); },
              std::string("Invalid Namespace [") + keyword + "]"));
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>([] { CElement e(nullptr, "", "##any", ""); },
            "Element Name must have a value"));
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>([] { CElement e("e", "", nullptr, nullptr); },
            "Namespace Restriction must have a value"));
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>([] { CElement e("e", "", "##any", nullptr); },
            "Target Namespace must have a value"));
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>([] { CElement e("e", "urn:t", "##other", "urn:t"); },
            "Invalid namespace [urn:t]. The namespace must be one of [##other] where the target namespace is "
            "[urn:t]"));
  CElement own("e", "urn:a");
  EXPECT_EQ(own.GetTargetNamespace(), "urn:a");
  EXPECT_EQ(own.GetNamespaceRestriction(), "urn:a");
}

// ---- reading under a restriction -------------------------------------------------------

struct Restricted {
  const char* restriction;
  const char* target;
  const char* own;        // a namespace the element may be built with
  const char* document;   // namespace of the element read
  bool consumed;
};

class UntypedRestriction : public ::testing::TestWithParam<Restricted> {};

TEST_P(UntypedRestriction, ReadsOnlyWhatTheRestrictionAdmits) {
  const Restricted& p = GetParam();
  CSmartPtr<CElement> e = new CElement("x", p.own, p.restriction, p.target);
  const std::string ns = p.document;
  CXmlDocument doc;
  ASSERT_TRUE(LoadText(doc, "<r><e" + (ns.empty() ? std::string() : " xmlns=\"" + ns + "\"") +
                                " a=\"1\">text<c/></e><next/></r>"));
  CXmlElement* root = doc.GetDocumentElement();
  CXmlElement* first = root->GetFirstElement();
  CXmlElement* rest = CXmlObjectBase::FromXml_Int(e.get(), root, first, Default());
  if (p.consumed) {
    ASSERT_NE(rest, nullptr);
    EXPECT_EQ(rest->GetLocalName(), "next");
    EXPECT_EQ(e->GetName(), "e");
    EXPECT_EQ(e->GetNamespace(), ns);
    EXPECT_EQ(e->GetText(), "text");
    ASSERT_EQ(e->GetAttributes()->GetCount(), 1);
    EXPECT_EQ(e->GetAttributes()->Item(0)->GetValue(), "1");
    ASSERT_EQ(e->GetElements()->GetCount(), 1);
    EXPECT_EQ(e->GetElements()->Item(0)->GetNamespace(), ns);
  } else {
    EXPECT_EQ(rest, first);  // the cursor stays on it
    EXPECT_EQ(e->GetName(), "x");
    EXPECT_EQ(e->GetAttributes()->GetCount(), 0);
  }
}

// The rule itself is one table in the namespace rules' tests; here one row
// each that admits and refuses, with the namespaces the element is built with.
INSTANTIATE_TEST_SUITE_P(
    Keywords, UntypedRestriction,
    ::testing::Values(Restricted{"##other", "urn:t", "", "urn:x", true},
                      Restricted{"##other", "urn:t", "", "urn:t", false},
                      Restricted{"##targetNamespace", "urn:t", "urn:t", "urn:t", true},
                      Restricted{"urn:a urn:b", "", "urn:a", "", true},
                      Restricted{"", "", "", "urn:a", false}));

TEST_F(Untyped, ReadingReplacesAndKeepsNestedContent) {
  CSmartPtr<CElement> e = new CElement("x");
  e->FromXml("<p:e xmlns:p=\"urn:p\" a=\"1\" p:b=\"2\">one<c>two<d/></c>three</p:e>");
  EXPECT_EQ(Reparsed(Text(*e)), Reparsed("<p:e xmlns:p=\"urn:p\" a=\"1\" p:b=\"2\"><c>two<d/></c>onethree</p:e>"));
  e->FromXml("<f/>");
  EXPECT_EQ(Text(*e), "<f/>");
  EXPECT_EQ(e->GetAttributes()->GetCount(), 0);
  EXPECT_EQ(e->GetElements()->GetCount(), 0);
}

// ---- xs:anyAttribute --------------------------------------------------------------------

TEST(UntypedAttributes, AnAttributeOutsideTheRestrictionFailsTheRead) {
  CXmlDocument doc;
  ASSERT_TRUE(LoadText(doc, "<e xmlns:t=\"urn:t\" xmlns:x=\"urn:x\" x:a=\"1\" b=\"2\" t:c=\"3\" d=\"4\"/>"));
  CSmartPtr<CAttributeCol> other = new CAttributeCol("", "##other", "urn:t");
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>(
                [&] { CXmlObjectBase::FromXml_Int(other.get(), doc.GetDocumentElement(), nullptr, Default()); },
            "Invalid Attribute [c]. The attributes namespace is Inappropriate."));
  ASSERT_EQ(other->GetCount(), 2);  // those before it, in document order
  EXPECT_EQ(other->Item(0)->GetName(), "a");
  EXPECT_EQ(other->Item(0)->GetNamespace(), "urn:x");
  EXPECT_EQ(other->Item(1)->GetName(), "b");

  CSmartPtr<CAttributeCol> listed = new CAttributeCol("", "urn:t urn:x", "");
  EXPECT_EQ(listed->GetNamespace(), "urn:t");  // the first URI of the list
  EXPECT_EQ(listed->GetTargetNamespace(), "urn:t");
  CXmlElement* cursor = doc.GetDocumentElement()->GetFirstElement();
  EXPECT_EQ(CXmlObjectBase::FromXml_Int(listed.get(), doc.GetDocumentElement(), cursor, Default()), cursor);
  EXPECT_EQ(listed->GetCount(), 4);
  // Added by name, checked against the restriction.
  EXPECT_EQ(listed->Add("n", "v")->GetNamespace(), "urn:t");
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>([&] { listed->Add("n", "v", "urn:y"); },
            "Invalid namespace [urn:y]. The namespace must be one of [urn:t urn:x] where the target namespace is "
            "[]"));
  // Handed over whole, an attribute is not checked.
  listed->Add(new CAttribute("n", "v", "urn:y"));
  EXPECT_EQ(listed->GetCount(), 6);
  EXPECT_EQ(CSmartPtr<CAttributeCol>(new CAttributeCol("", "##other", ""))->GetNamespace(), "");
  EXPECT_EQ(CSmartPtr<CAttributeCol>(new CAttributeCol("urn:o", "urn:t", ""))->GetNamespace(), "urn:o");
}

TEST_F(Untyped, AttributesWrittenInOrderAndCloned) {
  CSmartPtr<CElement> e = new CElement("e");
  e->GetAttributes()->Add("a", "1", "urn:x");
  e->GetAttributes()->Add("b", "<&\"", "");
  CSmartPtr<CAttributeCol> copy = e->GetAttributes()->Clone();
  copy->Item(0)->SetValue("changed");
  EXPECT_EQ(e->GetAttributes()->Item(0)->GetValue(), "1");
  std::string names;
  for (CAttribute* a : *copy) names += a->GetName() + "=" + a->GetValue() + ";";
  EXPECT_EQ(names, "a=changed;b=<&\";");
  EXPECT_EQ(Reparsed(Text(*e)), "(e{} a{urn:x}=1 b{}=<&\"[])");
  EXPECT_TRUE(Throws<CKoException>(
                [&] { CXmlObjectBase::FromXml_Int(copy->Item(0).get(), nullptr, nullptr, Default()); },
            "This should be done by the collection"));
}

// ---- element collections -----------------------------------------------------------------

TEST(UntypedElements, ACollectionReadsElementsOfAnyNamespace) {
  CSmartPtr<CElementCol> col = new CElementCol("", "urn:a", "urn:t", 5, 7);
  EXPECT_EQ(col->GetNamespaceRestriction(), "##any");
  EXPECT_EQ(col->GetNamespace(), "urn:t");
  EXPECT_EQ(col->GetMinOccurs(), 0);
  EXPECT_EQ(col->GetMaxOccurs(), -1);
  CXmlDocument doc;
  ASSERT_TRUE(LoadText(doc, "<r><x:e xmlns:x=\"urn:x\"/><f>1</f><g/></r>"));
  CXmlElement* root = doc.GetDocumentElement();
  EXPECT_EQ(CXmlObjectBase::FromXml_Int(col.get(), root, root->GetFirstElement(), Default()), nullptr);
  std::string names;
  for (CElement* e : *col) names += e->GetName() + "{" + e->GetNamespace() + "}" + e->GetText() + ";";
  EXPECT_EQ(names, "e{urn:x};f{}1;g{};");

  // Locked to one name and namespace, a run stops at the first other element.
  CSmartPtr<CElementCol> locked = new CElementCol("", "##any", "", 0, -1);
  ASSERT_TRUE(LoadText(doc, "<r><f>1</f><f>2</f><g/><f/></r>"));
  root = doc.GetDocumentElement();
  CXmlElement* rest = locked->FromXmlLockElementName_Int("f", "", root, root->GetFirstElement(), Default());
  ASSERT_NE(rest, nullptr);
  EXPECT_EQ(rest->GetLocalName(), "g");
  EXPECT_EQ(locked->GetCount(), 2);
  EXPECT_EQ(locked->Item(1)->GetText(), "2");
  EXPECT_EQ(locked->FromXmlLockElementName_Int("g", "urn:x", root, rest, Default()), rest);
}

TEST(UntypedElements, AddingByName) {
  EXPECT_TRUE(Throws<CKoInvalidNamespaceException>([] { CElementCol c("urn:q", "urn:a", "", 0, -1); },
            "Invalid namespace [urn:q]. The namespace must be one of [urn:a] where the target namespace is []"));
  CSmartPtr<CElementCol> named = new CElementCol("urn:n", "##any", "", 0, -1);
  EXPECT_EQ(named->Add("a")->GetNamespace(), "urn:n");
  EXPECT_EQ(named->Add("b", "urn:m")->GetNamespace(), "urn:m");
  CSmartPtr<CElementCol> none = new CElementCol("", "urn:a", "", 0, -1);
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { none->Add("a"); },
            "A Namespace has not been set for this Collection"));
  // A wildcard keyword is kept as the collection's namespace but is no
  // namespace to put an element in.
  CSmartPtr<CElementCol> wildcard = new CElementCol("", "##other", "urn:t", 0, -1);
  EXPECT_TRUE(Throws<CKoInvalidStateException>([&] { wildcard->Add("a"); },
            "A Namespace has not been set for this Collection"));
  CEventRecorder events;
  named->AddEventListener(&events);
  CSmartPtr<CElement> added = named->Add(new CElement("c"));
  EXPECT_EQ(events.Types(), "1 2 0");
  EXPECT_EQ(events.events[0].data, added.get());
  named->RemoveEventListener(&events);
}

TEST(UntypedElement, CloneIsDeepAndRestrictionsAreChecked) {
  CSmartPtr<CElement> e = Sample();
  CSmartPtr<CElement> copy = e->Clone();
  copy->GetElements()->Item(0)->SetText("changed");
  copy->GetAttributes()->Item(0)->SetValue("w");
  EXPECT_EQ(e->GetElements()->Item(0)->GetText(), "inner");
  EXPECT_EQ(e->GetAttributes()->Item(0)->GetValue(), "v");
  EXPECT_EQ(copy->GetText(), "t");
  EXPECT_EQ(copy->GetNamespace(), "urn:a");

  EXPECT_NO_THROW(e->SetNamespaceRestrictions("urn:a urn:b", ""));
  EXPECT_EQ(e->GetNamespaceRestriction(), "urn:a");  // checked, not stored
  try {
    e->SetNamespaceRestrictions("##local", "");
    ADD_FAILURE() << "nothing thrown";
  } catch (const CKoInvalidNamespaceException& ex) {
    EXPECT_EQ(ex.GetMessage(), "The namespace urn:a in the class e is invalid against restriction ##local");
    ASSERT_NE(ex.GetInnerException(), nullptr);
    EXPECT_EQ(ex.GetInnerException()->GetMessage(),
              "Invalid namespace [urn:a]. The namespace must be one of [##local] where the target namespace is []");
  }
  // A descendant that does not conform fails the check too.
  CSmartPtr<CElement> root = new CElement("r");
  root->GetElements()->Add("c", "urn:c");
  EXPECT_THROW(root->SetNamespaceRestrictions("##local", ""), CKoInvalidNamespaceException);
}

TEST(UntypedElement, SettersAndTheirHooks) {
  struct CCounting : CElement {
    CCounting() : CElement("e") {}
    void FireOnChangeName() override { ++names; }
    void FireOnChangeText() override { ++texts; }
    int names = 0, texts = 0;
  };
  CSmartPtr<CCounting> e = new CCounting;
  e->SetName("f");
  e->SetText("x");
  EXPECT_EQ(e->names, 1);
  EXPECT_EQ(e->texts, 1);
  EXPECT_EQ(e->GetName(), "f");
  EXPECT_EQ(e->GetElementName(), "f");
  EXPECT_EQ(CSmartPtr<CAttribute>(new CAttribute("a", "1", "urn:x"))->GetTargetNamespace(), "urn:x");
}

// ---- writing --------------------------------------------------------------------------------

TEST_F(Untyped, WrittenAndReadBack) {
  CSmartPtr<CElement> e = Sample();
  const std::string xml = Text(*e);
  EXPECT_EQ(Reparsed(xml), "(e{urn:a} k{}=v[t](c{urn:a}[inner]))");
  CSmartPtr<CElement> back = new CElement("x");
  back->FromXml(xml.c_str());
  EXPECT_EQ(Text(*back), xml);
}

// An element with a default namespace of its own is written by a separate
// writer whose scope starts with that default.
TEST_F(Untyped, ElementWithItsOwnDefaultNamespace) {
  CSmartPtr<CElement> copy = new CElement(Sample().get(), "urn:a");
  EXPECT_EQ(copy->GetDefaultNamespace(), "urn:a");
  EXPECT_EQ(Text(*copy), "<e xmlns=\"urn:a\" k=\"v\"><c>inner</c>t</e>");

  CSmartPtr<CElement> outer = new CElement("root", "urn:o");
  outer->GetAttributes()->Add("n", "1", "");
  outer->GetElements()->Add(copy.get());
  outer->GetElements()->Add("z", "urn:o");
  const std::string expected = "(root{urn:o} n{}=1[](e{urn:a} k{}=v[t](c{urn:a}[inner]))(z{urn:o}[]))";
  EXPECT_EQ(Reparsed(Text(*outer)), expected);
  // Formatted, the spliced text is still well-formed where it lands.
  const std::string formatted = outer->ToXml(true, true, EOLTypeCRLF, Default());
  EXPECT_EQ(Reparsed(formatted).rfind("(root{urn:o} n{}=1[", 0), 0u) << formatted;
  EXPECT_EQ(formatted.find("\r\n\r\n"), std::string::npos) << formatted;
  // Fast Infoset has no separate text to splice in: the same infoset.
  EXPECT_EQ(ReparsedBytes(outer->ToFastInfosetStream(FInfoDeclNone, Default(), CompressionTypeNone)), expected);
}

TEST_F(Untyped, CopiedXmlnsAttributeBecomesTheDefaultNamespace) {
  CXmlSerializationContext plain;
  plain.SetSchemaType(SchemaTypeNoNamespaces);  // declarations stay attributes
  CXmlDocument doc(plain);
  ASSERT_TRUE(LoadText(doc, "<e xmlns=\"urn:a\" k=\"v\"><c>x</c></e>"));
  CSmartPtr<CElement> e = new CElement("x");
  e->CopyXmlElement(doc.GetDocumentElement());
  EXPECT_EQ(e->GetDefaultNamespace(), "urn:a");
  ASSERT_EQ(e->GetAttributes()->GetCount(), 2);
  EXPECT_EQ(e->GetAttributes()->Item(0)->GetName(), "xmlns");
  EXPECT_EQ(e->GetAttributes()->Item(0)->GetValue(), "urn:a");
  // Written once, not twice, and well-formed.
  EXPECT_EQ(Reparsed(Text(*e)), "(e{} k{}=v[](c{}[x]))");
}

TEST_F(Untyped, AdditionalRootAttributesAreSharedByCopiesOfTheContext) {
  CXmlSerializationContext ctx;
  CSmartPtr<CAttributeCol> first = ctx.GetAdditionalRootAttributes();
  EXPECT_EQ(first.get(), ctx.GetAdditionalRootAttributes().get());
  EXPECT_EQ(first->GetNamespaceRestriction(), "##any");
  CXmlSerializationContext copy(ctx);
  copy.GetAdditionalRootAttributes()->Add("a", "1", "urn:any");
  EXPECT_EQ(first->GetCount(), 1);
  CXmlSerializationContext fresh;
  CXmlSerializationContext early(fresh);  // copied before the collection existed
  EXPECT_NE(early.GetAdditionalRootAttributes().get(), fresh.GetAdditionalRootAttributes().get());
}

// As deep as a document may be: read, cloned, written and destroyed.
TEST_F(Untyped, DeepestDocument) {
#if defined(__SANITIZE_THREAD__)
  // ThreadSanitizer keeps the full call stack of every lock it sees; with one
  // reference-count lock per level of a recursion this deep that alone is
  // quadratic in memory. The depth itself is checked by the other builds.
  GTEST_SKIP() << "recursion depth is not checked under ThreadSanitizer";
#endif
  const size_t depth = CXmlDocument::MAX_ELEMENT_DEPTH;
  std::string xml;
  for (size_t i = 0; i < depth; ++i) xml += "<e>";
  for (size_t i = 0; i < depth; ++i) xml += "</e>";
  CSmartPtr<CElement> e = new CElement("x");
  e->FromXml(xml.c_str());
  CSmartPtr<CElement> copy = e->Clone();
  EXPECT_EQ(Text(*copy).size(), 7 * depth - 3);  // <e>…<e/>…</e>
  size_t levels = 0;
  for (CElement* at = copy.get(); at; at = at->GetElements()->GetCount() ? at->GetElements()->Item(0).get() : nullptr)
    ++levels;
  EXPECT_EQ(levels, depth);
}

TEST(UntypedElement, ASharedSubtreeOutlivesItsParentWhole) {
  CSmartPtr<CElement> parent = new CElement("p");
  CSmartPtr<CElement> kept = parent->GetElements()->Add("k", "");
  kept->GetElements()->Add("g", "")->GetElements()->Add("h", "");
  CSmartPtr<CElementCol> keptCollection = parent->GetElements()->Add("c", "")->GetElements();
  keptCollection->Add("d", "");
  parent = nullptr;
  ASSERT_EQ(kept->GetElements()->GetCount(), 1);
  EXPECT_EQ(kept->GetElements()->Item(0)->GetElements()->Item(0)->GetName(), "h");
  ASSERT_EQ(keptCollection->GetCount(), 1);  // a collection held elsewhere keeps its items
  EXPECT_EQ(keptCollection->Item(0)->GetName(), "d");
}

}  // namespace
