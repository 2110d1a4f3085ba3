#include <gtest/gtest.h>

#include <KoXmlLib10.h>

using namespace KoXmlLib10;

TEST(XmlWriter, GeneratedPrefixes) {
  for (const auto& [n, prefix] :
       {std::pair{0, "AA"}, {25, "AZ"}, {26, "BA"}, {675, "ZZ"}, {676, "AAA"}, {676 + 26 * 26 * 26, "AAAA"}})
    EXPECT_EQ(CXmlWriter::NsIntToString(n), prefix) << n;
  EXPECT_THROW(CXmlWriter::NsIntToString(-1), CKoInvalidParamException);

  CTextStream stream;
  CXmlTextWriter writer(stream);
  CXmlWriter::NamespaceMap map = {{CXmlWriter::XML_NAMESPACE, "xml"}, {"urn:a", "AA"}, {"urn:c", "AC"}};
  EXPECT_EQ(writer.GetUniquePrefix(map), "AB");
  map.clear();
  for (int n = 0; n < 676; ++n) map["urn:" + std::to_string(n)] = CXmlWriter::NsIntToString(n);
  EXPECT_EQ(writer.GetUniquePrefix(map), "AAA");
  map.erase("urn:26");
  EXPECT_EQ(writer.GetUniquePrefix(map), "BA");
}

TEST(XmlWriter, RootDataAndScopes) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  ASSERT_EQ(writer.GetRootNamespaceMap().size(), 1u);
  EXPECT_EQ(writer.GetRootNamespaceMap().at(CXmlWriter::XML_NAMESPACE), "xml");
  writer.AddNamespace("p", "urn:u");
  writer.AddNamespace("q", "urn:u");
  EXPECT_EQ(writer.GetRootNamespaceMap().size(), 2u);
  EXPECT_EQ(writer.GetRootNamespaceMap().at("urn:u"), "q");
  writer.SetDefaultNamespace("urn:d");

  writer.WriteStartElement("root", "urn:d");
  auto* root = writer.GetCurrentContext();
  writer.WriteStartElement("child", "urn:d");
  auto* child = writer.GetCurrentContext();
  EXPECT_EQ(child->GetDepth(), 1u);
  EXPECT_TRUE(child->GetInherits());
  EXPECT_EQ(child->GetNamespaceMap(), root->GetNamespaceMap());
  // With an element open, the calls change that element's scope only.
  writer.AddNamespace("x", "urn:x");
  EXPECT_FALSE(child->GetInherits());
  EXPECT_EQ(child->GetDefaultNamespace(), "urn:d");  // the inherited default comes along
  writer.WriteStartElement("grandchild", "urn:d");
  EXPECT_EQ(writer.GetCurrentContext()->GetNamespaceMapValue("urn:x"), "x");
  writer.SetDefaultNamespace("urn:e");
  EXPECT_EQ(child->GetDefaultNamespace(), "urn:d");
  writer.WriteEndElement();
  writer.WriteEndElement();
  EXPECT_EQ(writer.GetCurrentContext(), root);
  EXPECT_EQ(root->GetNamespaceMap()->count("urn:x"), 0u);
  EXPECT_EQ(writer.GetRootNamespaceMap().count("urn:x"), 0u);
  EXPECT_EQ(writer.GetRootDefaultNamespace(), "urn:d");

  // Looking up an absent URI adds an empty entry to the effective map.
  writer.WriteStartElement("other", "urn:d");
  EXPECT_EQ(writer.GetCurrentContext()->GetNamespaceMapValue("urn:new"), "");
  EXPECT_EQ(root->GetNamespaceMap()->count("urn:new"), 1u);
  // Destroying the writer with elements open frees the whole chain.
}
