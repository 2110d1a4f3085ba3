#include <gtest/gtest.h>

#include <KoXmlLib10.h>

using namespace KoXmlLib10;

namespace {

// A writer that only keeps the scopes, so they can be inspected directly.
class ScopeWriter : public CXmlWriter {
 public:
  using CXmlWriter::PopContext;
  using CXmlWriter::PushContext;
  void WriteComment(const std::string&) override {}
  void WritePI(const std::string&) override {}
  void WriteInlineSchema(const std::string&) override {}
  void WriteStartElement(const std::string& name, const std::string& ns) override {
    PushContext(name, ns);
  }
  void WriteString(const std::string&, ItemType) override {}
  void WriteEndElement() override { PopContext(); }
  void WriteAttributeString(const std::string&, const std::string&, const std::string&,
                            ItemType) override {}
  void WriteAttributeType(const std::string&, const std::string&, ItemType) override {}
  void WriteAttributeNil() override {}
};

CXmlWriter::NamespaceMap MapWithPrefixes(int count) {
  CXmlWriter::NamespaceMap map;
  for (int n = 0; n < count; ++n) map["urn:" + std::to_string(n)] = CXmlWriter::NsIntToString(n);
  return map;
}

}  // namespace

TEST(XmlWriter, GeneratedPrefixes) {
  EXPECT_EQ(CXmlWriter::NsIntToString(0), "AA");
  EXPECT_EQ(CXmlWriter::NsIntToString(25), "AZ");
  EXPECT_EQ(CXmlWriter::NsIntToString(26), "BA");
  EXPECT_EQ(CXmlWriter::NsIntToString(675), "ZZ");
  EXPECT_EQ(CXmlWriter::NsIntToString(676), "AAA");
  EXPECT_EQ(CXmlWriter::NsIntToString(676 + 26 * 26 * 26 - 1), "ZZZ");
  EXPECT_EQ(CXmlWriter::NsIntToString(676 + 26 * 26 * 26), "AAAA");
  EXPECT_THROW(CXmlWriter::NsIntToString(-1), CKoInvalidParamException);

  ScopeWriter writer;
  CXmlWriter::NamespaceMap map = {{CXmlWriter::XML_NAMESPACE, "xml"}, {"urn:a", "AA"}, {"urn:c", "AC"}};
  EXPECT_EQ(writer.GetUniquePrefix(map), "AB");
  EXPECT_EQ(writer.GetUniquePrefix(MapWithPrefixes(26)), "BA");
  EXPECT_EQ(writer.GetUniquePrefix(MapWithPrefixes(676)), "AAA");
}

TEST(XmlWriter, RootLevelNamespaces) {
  ScopeWriter writer;
  ASSERT_EQ(writer.GetRootNamespaceMap().size(), 1u);
  EXPECT_EQ(writer.GetRootNamespaceMap().at(CXmlWriter::XML_NAMESPACE), "xml");
  writer.AddNamespace("p", "urn:u");
  writer.AddNamespace("q", "urn:u");
  EXPECT_EQ(writer.GetRootNamespaceMap().size(), 2u);
  EXPECT_EQ(writer.GetRootNamespaceMap().at("urn:u"), "q");
  writer.SetDefaultNamespace("urn:d");

  writer.WriteStartElement("root", "");
  auto* root = writer.GetCurrentContext();
  EXPECT_EQ(root->GetDepth(), 0u);
  EXPECT_EQ(root->GetDefaultNamespace(), "urn:d");
  // With an element open the calls change its scope, not the root data.
  writer.AddNamespace("r", "urn:r");
  writer.SetDefaultNamespace("urn:e");
  EXPECT_EQ(root->GetNamespaceMapValue("urn:r"), "r");
  EXPECT_EQ(root->GetDefaultNamespace(), "urn:e");
  EXPECT_EQ(writer.GetRootNamespaceMap().count("urn:r"), 0u);
  EXPECT_EQ(writer.GetRootDefaultNamespace(), "urn:d");
  EXPECT_THROW(writer.Close(), CKoException);
  writer.WriteEndElement();
  EXPECT_NO_THROW(writer.Close());
}

TEST(XmlWriter, NestedScopeCopiesOnFirstChangeAndNeverLeaks) {
  ScopeWriter writer;
  writer.SetDefaultNamespace("urn:d");
  writer.WriteStartElement("root", "");
  auto* root = writer.GetCurrentContext();
  writer.WriteStartElement("child", "");
  auto* child = writer.GetCurrentContext();
  EXPECT_EQ(child->GetDepth(), 1u);
  EXPECT_TRUE(child->GetInherits());
  EXPECT_EQ(child->GetNamespaceMap(), root->GetNamespaceMap());

  child->SetNamespaceMapValue("urn:x", "X");
  EXPECT_FALSE(child->GetInherits());
  EXPECT_TRUE(child->GetOwnsMap());
  EXPECT_EQ(child->GetDefaultNamespace(), "urn:d");  // inherited default copied along
  EXPECT_EQ(root->GetNamespaceMap()->count("urn:x"), 0u);

  writer.WriteStartElement("grandchild", "");
  auto* grandchild = writer.GetCurrentContext();
  EXPECT_EQ(grandchild->GetNamespaceMapValue("urn:x"), "X");
  grandchild->SetDefaultNamespace("");
  EXPECT_EQ(grandchild->GetDefaultNamespace(), "");
  EXPECT_EQ(child->GetDefaultNamespace(), "urn:d");
  writer.WriteEndElement();
  writer.WriteEndElement();
  EXPECT_EQ(writer.GetCurrentContext(), root);
  EXPECT_EQ(root->GetNamespaceMap()->size(), 1u);
  // Looking up an absent URI adds an empty entry to the effective map.
  writer.WriteStartElement("other", "");
  EXPECT_EQ(writer.GetCurrentContext()->GetNamespaceMapValue("urn:new"), "");
  EXPECT_EQ(root->GetNamespaceMap()->count("urn:new"), 1u);
  // Destroying the writer with elements open frees the whole chain.
}
