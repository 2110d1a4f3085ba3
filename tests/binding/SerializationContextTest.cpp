#include <gtest/gtest.h>

#include "support/Throws.h"

#include <KoXmlLib10.h>

using namespace KoXmlLib10;
using testsupport::Throws;

TEST(SerializationContext, Defaults) {
  CXmlSerializationContext c;
  EXPECT_TRUE(c.GetWriteTypeAttribute());
  EXPECT_TRUE(c.GetStripCDATA());
  EXPECT_FALSE(c.GetIgnoreUnknownElements());
  EXPECT_FALSE(c.GetIgnoreMissingMandatoryElements());
  EXPECT_FALSE(c.GetIgnoreUnknownAttributes());
  EXPECT_FALSE(c.GetIgnoreMissingChoice());
  EXPECT_FALSE(c.GetIgnoreInvalidCollectionCounts());
  EXPECT_FALSE(c.GetIgnoreNamespaces());
  EXPECT_FALSE(c.GetNoOptionalAttributeDefaultOutput());
  EXPECT_EQ(c.GetSchemaType(), SchemaTypeDefault);
  EXPECT_EQ(c.GetDefaultNamespaceURI(), "");
  EXPECT_EQ(c.GetInLineSchema(), "");
  EXPECT_TRUE(c.GetProcessingInstructions().empty());
  EXPECT_EQ(c.GetFIContext().GetElementMaxAddLength(), 6u);
  EXPECT_TRUE(CXmlSerializationContext::m_defaultContext.GetStripCDATA());
}

TEST(SerializationContext, IgnoringUnknownAndMissingExcludeEachOther) {
  CXmlSerializationContext c;
  c.SetIgnoreUnknownElements(true);
  EXPECT_TRUE(Throws<CKoInvalidStateException>(
      [&] { c.SetIgnoreMissingMandatoryElements(true); },
      "The parser can only ignore additional elements, or ignore the fact that some "
              "required ones are missing, you can not ignore both\nSet IgnoreUnknownElements to "
              "false before setting IgnoreMissingMandatoryElements to true"));
  EXPECT_FALSE(c.GetIgnoreMissingMandatoryElements());
  c.SetIgnoreMissingMandatoryElements(false);
  c.SetIgnoreUnknownElements(false);
  c.SetIgnoreMissingMandatoryElements(true);
  EXPECT_THROW(c.SetIgnoreUnknownElements(true), CKoInvalidStateException);
  EXPECT_FALSE(c.GetIgnoreUnknownElements());
}

TEST(SerializationContext, NoNamespacesImpliesIgnoreNamespaces) {
  CXmlSerializationContext c;
  c.SetSchemaType(SchemaTypeNoNamespaces);
  EXPECT_TRUE(c.GetIgnoreNamespaces());
  c.SetSchemaType(SchemaTypeAlternate);
  EXPECT_FALSE(c.GetIgnoreNamespaces());
}

TEST(SerializationContext, CopiesOwnTheirOptions) {
  CXmlSerializationContext a;
  a.GetProcessingInstructions().push_back("<?pi x?>");
  a.GetNamespaceAliases().Add("p", "urn:p");
  CXmlSerializationContext b(a);
  b.GetProcessingInstructions().clear();
  b.GetNamespaceAliases().RemoveNamespace("urn:p");
  EXPECT_EQ(a.GetProcessingInstructions().size(), 1u);
  EXPECT_TRUE(a.GetNamespaceAliases().DoesNamespaceExist("urn:p"));
}

TEST(NamespaceAliasMap, OrderReplacementAndLookups) {
  CNamespaceAliasMap m;
  m.Add("z", "urn:z");
  m.Add("a", "urn:a");
  m.Add("a2", "urn:a");
  ASSERT_EQ(m.GetNamespaceCount(), 2);
  EXPECT_EQ(m.GetNamespaceAt(0), "urn:a");
  EXPECT_EQ(m.GetNamespaceAt(1), "urn:z");
  EXPECT_EQ(m.GetAliasFromNamespace("urn:a"), "a2");
  EXPECT_TRUE(m.DoesAliasExist("z"));
  EXPECT_FALSE(m.DoesAliasExist("a"));
  EXPECT_EQ(m.GetNamespaceFromAlias("z"), "urn:z");
  EXPECT_THROW(m.GetNamespaceAt(2), CKoInvalidParamException);

  // Asking for an unknown namespace's alias enters it with an empty alias.
  EXPECT_EQ(m.GetAliasFromNamespace("urn:new"), "");
  EXPECT_EQ(m.GetNamespaceCount(), 3);
  m.RemoveNamespace("urn:unknown");
  EXPECT_EQ(m.GetNamespaceCount(), 3);

  EXPECT_TRUE(Throws([&] { m.GetNamespaceFromAlias("nope"); }, "Namespace alias [nope] not found"));
}
