#include <gtest/gtest.h>

#include "support/TempFiles.h"
#include "support/Throws.h"

#include <KoXmlLib10.h>

#include "support/Trees.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

unsigned char* Bytes(const std::string& s) { return reinterpret_cast<unsigned char*>(const_cast<char*>(s.data())); }


std::vector<std::string> ChildNames(const CXmlElement* parent) {
  std::vector<std::string> names;
  for (const CXmlElement* e = parent->GetFirstElement(); e; e = e->GetNextSiblingElement())
    names.push_back(e->GetLocalName());
  return names;
}


std::string Nested(size_t depth) {
  std::string xml;
  for (size_t i = 0; i < depth; ++i) xml += "<a>";
  for (size_t i = 0; i < depth; ++i) xml += "</a>";
  return xml;
}

}  // namespace

TEST(XmlDocument, NamespacesAndAttributes) {
  CXmlDocument doc;
  doc.LoadXml(
      "<a xmlns=\"urn:x\"><b/><p:c xmlns:p=\"urn:p\" p:x=\"1\" y=\"2\" z=\"3\"/>"
      "<d xmlns:q=\"urn:q1\"/><e xmlns:q=\"urn:q2\"/></a>");
  const CXmlElement* a = doc.GetDocumentElement();
  ASSERT_NE(a, nullptr);
  // Declarations only fill the alias map; they are no attributes.
  EXPECT_EQ(Dump(a), "(a{urn:x}[](b{urn:x}[])(c{urn:p} x{urn:p}=1 y{}=2 z{}=3[])(d{urn:x}[])(e{urn:x}[]))");
  const CXmlElement* c = a->GetFirstElement()->GetNextSiblingElement();
  EXPECT_EQ(c->GetAttribute("x", "urn:p"), "1");
  EXPECT_EQ(c->GetAttribute("x", ""), "");
  EXPECT_EQ(c->GetAttribute("y", ""), "2");

  // The alias map is document-wide and keeps the last declaration.
  EXPECT_EQ(doc.LookupNamespaceFromAlias(""), "urn:x");
  EXPECT_EQ(doc.LookupNamespaceFromAlias("p"), "urn:p");
  EXPECT_EQ(doc.LookupNamespaceFromAlias("q"), "urn:q2");
  EXPECT_EQ(doc.LookupNamespaceFromAlias("nope"), "");
}

TEST(XmlDocument, WithoutNamespaceProcessing) {
  CXmlSerializationContext ctx;
  ctx.SetSchemaType(SchemaTypeNoNamespaces);
  CXmlDocument doc(ctx);
  ASSERT_TRUE(LoadText(doc, "<a xmlns=\"urn:x\"><p:b xmlns:p=\"urn:p\" p:x=\"1\"/></a>"));
  EXPECT_EQ(Dump(doc.GetDocumentElement()), "(a{} xmlns{}=urn:x[](p:b{} xmlns:p{}=urn:p p:x{}=1[]))");
  EXPECT_EQ(doc.GetDocumentElement()->GetFirstElement()->GetAttribute("p:x", ""), "1");
  EXPECT_EQ(doc.LookupNamespaceFromAlias("p"), "");
  ASSERT_TRUE(LoadText(doc, "<r xmlns:p=\"urn:p\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
                            "xsi:type=\"p:T\"/>"));
  std::string uri;
  EXPECT_FALSE(doc.GetDocumentElement()->GetTypePrefixNamespace(uri));  // no xsi:type in the namespace sense
}

TEST(XmlDocument, TextCdataAndWhitespace) {
  CXmlDocument doc;
  doc.LoadXml("<a>one&amp;two\r\n<b>x&#13;y</b>\n  <c/>three<![CDATA[x<y]]></a>");
  const CXmlElement* a = doc.GetDocumentElement();
  EXPECT_EQ(a->GetText(), "one&two\n\n  threex<y");  // merged CDATA by default
  EXPECT_EQ(a->GetFirstElement()->GetText(), "xy");

  CXmlSerializationContext keep;
  keep.SetStripCDATA(false);
  CXmlDocument kept(keep);
  kept.LoadXml("<a><![CDATA[x<y]]></a>");
  EXPECT_EQ(kept.GetDocumentElement()->GetText(), "<![CDATA[x<y]]>");

  CXmlDocument wide;
  wide.LoadXml(L"<a>\u00e9<b/>\U0001F600</a>");  // only the low 16 bits of U+1F600 reach the parser
  EXPECT_EQ(wide.GetDocumentElement()->GetLocalName(), "a");
  EXPECT_EQ(wide.GetDocumentElement()->GetText().size(), 2u);  // two characters in the C locale: "??"
}

TEST(XmlDocument, AttributeKinds) {
  const std::string xsi = "http://www.w3.org/2001/XMLSchema-instance";
  EXPECT_TRUE(CXmlAttribute("nil", "true", "http://www.w3.org/2000/xmlns/").IsNilAttribute());
  EXPECT_FALSE(CXmlAttribute("nil", "true", "").IsNilAttribute());
  EXPECT_TRUE(CXmlAttribute("noNamespaceSchemaLocation", "s", xsi).IsNamespaceAttribute());
  EXPECT_FALSE(CXmlAttribute("nil", "true", xsi).IsNamespaceAttribute());
}

TEST(XmlDocument, LoadErrors) {
  CXmlDocument doc;
  EXPECT_TRUE(Throws<CKoException>([&] { doc.LoadXml(""); }, "XML String is empty!"));
  EXPECT_TRUE(Throws<CKoException>([&] { doc.LoadXml(L""); }, "XML String is empty!"));
  unsigned char byte = '<';
  EXPECT_TRUE(Throws<CKoException>([&] { doc.LoadXmlStream(&byte, 0); }, "XML Stream is empty!"));

  const std::string missing = testsupport::TempPath("no-such-file.xml");
  EXPECT_TRUE(Throws<CKoException>([&] { doc.Load(missing.c_str()); }, "Failed to open the file [" + missing + "]"));
  const std::string empty = testsupport::TempPath("empty-file.xml");
  std::ofstream(empty).close();
  EXPECT_TRUE(Throws<CKoException>([&] { doc.Load(empty.c_str()); },
            "Failed to read the contents of the file [" + empty + "]: the file is empty"));
  // A directory opens but cannot be read; its reported size must not be allocated.
  const std::string directory = ::testing::TempDir();
  EXPECT_TRUE(Throws<CKoException>([&] { doc.Load(directory.c_str()); },
            "Failed to read the contents of the file [" + directory + "]: " + std::strerror(EISDIR)));

  for (const auto& [xml, message] :
       {std::pair{"<a>\n<b>\n</a>", "mismatched tag at line 3"}, {"<a>\n\n", "no element found at line 3"},
        {"<a/>\n<b/>", "junk after document element at line 2"}, {"<p:a/>", "unbound prefix at line 1"}})
    EXPECT_TRUE(Throws<CKoException>([&, xml = xml] { doc.LoadXml(xml); }, message));

  // The document stays usable after a failure.
  doc.LoadXml("<ok/>");
  EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "ok");
}

TEST(XmlDocument, DeepNesting) {
  CXmlDocument ok;
  ok.LoadXml(Nested(CXmlDocument::MAX_ELEMENT_DEPTH).c_str());
  EXPECT_NE(ok.GetDocumentElement(), nullptr);

  const std::string tooDeep = Nested(200000);
  CXmlDocument deep;
  EXPECT_TRUE(Throws<CKoException>([&] { deep.LoadXml(tooDeep.c_str()); },
            "The document is nested too deeply: more than 10000 levels of elements."));
  EXPECT_TRUE(Throws<CKoException>([&] { deep.LoadXmlStream(Bytes(tooDeep), tooDeep.size()); },
            "The document is nested too deeply: more than 10000 levels of elements."));

  // Destroying a tree far deeper than any stack could recurse through.
  auto root = std::make_unique<CXmlElement>(nullptr);
  CXmlElement* e = root.get();
  for (int i = 0; i < 1000000; ++i) {
    e->CreateNewChildElement();
    e = e->CreateNewChildElement();
  }
  root.reset();
}

TEST(XmlDocument, EntityExpansionIsBounded) {
  std::string xml = "<?xml version=\"1.0\"?>\n<!DOCTYPE lolz [\n<!ENTITY lol0 \"lollollollollollollollollollol\">\n";
  for (int i = 1; i < 10; ++i)
    xml += "<!ENTITY lol" + std::to_string(i) + " \"" + [&] {
      std::string refs;
      for (int j = 0; j < 10; ++j) refs += "&lol" + std::to_string(i - 1) + ";";
      return refs;
    }() + "\">\n";
  xml += "]>\n<lolz>&lol9;</lolz>";
  const auto start = std::chrono::steady_clock::now();
  CXmlDocument doc;
  std::string message;
  try {
    doc.LoadXml(xml.c_str());
  } catch (const CKoException& e) {
    message = e.GetMessage();
  }
  EXPECT_EQ(message.rfind("limit on input amplification factor", 0), 0u) << message;
  EXPECT_NE(message.find(" at line "), std::string::npos) << message;
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

namespace {

int g_filterCalls = 0;
std::string g_filterTexts;
std::vector<std::string> g_filtered;

// Drops every other child of the root, reading each one first.
bool DropEveryOtherChild(CXmlElement* element) {
  if (element->GetLocalName() != "c") return false;
  g_filterTexts += element->GetText();
  return g_filterCalls++ % 2 == 1;
}

bool DropEverything(CXmlElement* element) {
  g_filtered.push_back(element->GetLocalName());
  return true;
}

}  // namespace

// A dropped element goes with its subtree. Every element is offered once it
// ends, the document element last; that one has no parent to be dropped
// from, so it stays, empty.
TEST(XmlDocument, ElementFilter) {
  CXmlDocument some([](CXmlElement* e) { return e->GetLocalName() == "drop"; });
  ASSERT_TRUE(LoadText(some, "<r><keep/><drop><keep/></drop><keep/><drop/></r>"));
  EXPECT_EQ(ChildNames(some.GetDocumentElement()), (std::vector<std::string>{"keep", "keep"}));
  g_filtered.clear();
  CXmlDocument doc(DropEverything);
  ASSERT_TRUE(LoadText(doc, "<r><a><b/></a><c/></r>"));
  EXPECT_EQ(g_filtered, (std::vector<std::string>{"b", "a", "c", "r"}));
  EXPECT_EQ(Dump(doc.GetDocumentElement()), "(r{}[])");
}

TEST(XmlDocument, FilterDroppingEveryOtherOfManyChildren) {
  constexpr int kChildren = 50000;
  std::string xml = "<r>";
  for (int i = 0; i < kChildren; ++i)
    xml += "<c i=\"" + std::to_string(i) + "\">" + std::to_string(i) + "<g/></c>" + (i % 1000 == 0 ? " " : "");
  xml += "<last/></r>";
  g_filterCalls = 0;
  g_filterTexts.clear();
  CXmlDocument doc(DropEveryOtherChild);
  ASSERT_TRUE(LoadText(doc, xml));
  EXPECT_EQ(g_filterCalls, kChildren);
  EXPECT_EQ(g_filterTexts.substr(0, 5), "01234");

  // What the walking algorithm leaves: the even children, in order, each
  // with its own subtree, then the element after them.
  int expected = 0;
  const CXmlElement* child = doc.GetDocumentElement()->GetFirstElement();
  for (; child && child->GetLocalName() == "c"; child = child->GetNextSiblingElement(), expected += 2) {
    ASSERT_EQ(child->GetAttribute("i", ""), std::to_string(expected));
    ASSERT_EQ(child->GetText(), std::to_string(expected));
    ASSERT_NE(child->GetFirstElement(), nullptr);
    ASSERT_EQ(child->GetFirstElement()->GetLocalName(), "g");
  }
  EXPECT_EQ(expected, kChildren);
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(Dump(child), "(last{}[])");
  EXPECT_EQ(child->GetNextSiblingElement(), nullptr);
  EXPECT_EQ(doc.GetDocumentElement()->GetText(), std::string(kChildren / 1000, ' '));
}

TEST(XmlDocument, RemovedChildOfALoadedTreeIsTheCallersAndOutlivesTheDocument) {
  std::unique_ptr<CXmlElement> removed;
  {
    CXmlDocument doc;
    ASSERT_TRUE(LoadText(doc, "<r xmlns:p=\"urn:p\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">"
                              "<a/><b x=\"1\" p:y=\"2\" xsi:type=\"p:T\">text<c>inner</c>tail</b></r>"));
    CXmlElement* root = doc.GetDocumentElement();
    removed.reset(root->RemoveLastChildElement());
    ASSERT_NE(removed, nullptr);
    EXPECT_EQ(Dump(root), "(r{}[](a{}[]))");
    // The list stays consistent: a new child follows the one left.
    CXmlElement* added = root->CreateNewChildElement();
    added->SetElementName("z");
    added->SetNamespace("urn:z");
    added->AppendText("new");
    added->AddAttribute("k", "v", "");
    EXPECT_EQ(Dump(root), "(r{}[](a{}[])(z{urn:z} k{}=v[new]))");
    delete root->RemoveLastChildElement();
    delete root->RemoveLastChildElement();
    EXPECT_EQ(root->RemoveLastChildElement(), nullptr);
  }
  EXPECT_EQ(Dump(removed.get()),
            "(b{} x{}=1 y{urn:p}=2 type{http://www.w3.org/2001/XMLSchema-instance}=p:T[texttail](c{}[inner]))");
  std::string uri;
  EXPECT_TRUE(removed->GetTypePrefixNamespace(uri));
  EXPECT_EQ(uri, "urn:p");
  // It can still be changed and extended as any heap element.
  removed->AppendText("!");
  removed->CreateNewChildElement()->SetElementName("d");
  EXPECT_EQ(removed->GetText(), "texttail!");
  EXPECT_EQ(removed->GetFirstElement()->GetNextSiblingElement()->GetLocalName(), "d");
}

TEST(XmlDocument, TextsAcrossReadPiecesAndChangesAfterLoading) {
  // Longer than a piece handed to the parser, with carriage returns from
  // character references along the way.
  std::string body;
  for (int i = 0; i < 30000; ++i) body += "ab&#13;cd";
  CXmlDocument doc;
  ASSERT_TRUE(LoadText(doc, "<r>" + body + "<c/>" + body + "</r>"));
  const CXmlElement* root = doc.GetDocumentElement();
  std::string expected;
  for (int i = 0; i < 60000; ++i) expected += "abcd";
  EXPECT_EQ(root->GetTextView(), expected);
  EXPECT_EQ(root->GetText(), expected);
  EXPECT_EQ(&root->GetText(), &root->GetText());  // one string, kept

  CXmlElement* child = root->GetFirstElement();
  EXPECT_EQ(child->GetTextView(), "");
  child->AppendText("x", 1);
  child->AppendText("y");
  // Names set after loading are the element's alone.
  child->SetElementName("renamed");
  EXPECT_EQ(Dump(child) + root->GetLocalName(), "(renamed{}[xy])r");
}

TEST(XmlDocument, AttributeListsOfEverySizeStayInStepWithTheirVector) {
  const std::string longValue(40, 'v');  // beyond a string's own small buffer
  std::string tag = "<r";
  for (int i = 0; i < 9; ++i) tag += " a" + std::to_string(i) + "=\"" + (i == 4 ? longValue : std::to_string(i)) + "\"";
  const std::string xml = tag + "><c one=\"1\"/><c/></r>";
  for (bool filtered : {false, true}) {
    CXmlDocument doc;
    // A filter keeps what it is shown here, but makes the document free
    // every part of a dropped element on its own.
    if (filtered) doc.SetElementFilter([](CXmlElement*) { return false; });
    ASSERT_TRUE(LoadText(doc, xml));
    CXmlElement* root = doc.GetDocumentElement();
    ASSERT_EQ(root->GetAttributeCount(), 9u);
    EXPECT_EQ(root->GetAttributeAt(4)->GetValue(), longValue);
    EXPECT_EQ(root->GetAttributeAt(9), nullptr);
    EXPECT_EQ(root->GetAttribute("a8", ""), "8");

    const std::vector<CXmlAttribute*>& all = root->GetAttributes();
    ASSERT_EQ(all.size(), 9u);
    for (size_t i = 0; i < all.size(); ++i) EXPECT_EQ(all[i], root->GetAttributeAt(i));
    // Attributes added after loading join both, and the vector handed out
    // before is the one that grows.
    for (int i = 0; i < 5; ++i) root->AddAttribute("late" + std::to_string(i), longValue, "urn:x");
    EXPECT_EQ(&all, &root->GetAttributes());
    ASSERT_EQ(all.size(), 14u);
    EXPECT_EQ(all[13], root->GetAttributeAt(13));
    EXPECT_EQ(root->GetAttribute("late4", "urn:x"), longValue);

    CXmlElement* child = root->GetFirstElement();
    EXPECT_EQ(child->GetAttributeCount(), 1u);
    EXPECT_EQ(child->GetNextSiblingElement()->GetAttributeCount(), 0u);
  }

  // Elements built on the heap keep the same promises.
  CXmlElement heap(nullptr);
  for (int i = 0; i < 20; ++i) heap.AddAttribute("h" + std::to_string(i), longValue, "");
  const std::vector<CXmlAttribute*>& list = heap.GetAttributes();
  heap.AddAttribute("last", "1", "");
  ASSERT_EQ(list.size(), 21u);
  EXPECT_EQ(heap.GetAttributeAt(20)->GetLocalName(), "last");
}
