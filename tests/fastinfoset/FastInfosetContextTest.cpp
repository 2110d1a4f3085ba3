#include <gtest/gtest.h>

#include <KoXmlLib10.h>

using namespace KoXmlLib10;

TEST(FIVocabulary, InitialContentAndFirstAdditions) {
  CFIVocabulary v;
  unsigned long index = 0;
  EXPECT_TRUE(v.FindPrefixNameIndex("xml", index));
  EXPECT_EQ(index, 1u);
  EXPECT_TRUE(v.FindNamespaceNameIndex("http://www.w3.org/XML/1998/namespace", index));
  EXPECT_EQ(index, 1u);
  EXPECT_FALSE(v.FindLocalNameIndex("xml", index));
  EXPECT_EQ(v.GetRestrictedAlphabets().at(0), "0123456789-+.E ");
  EXPECT_EQ(v.GetRestrictedAlphabets().at(1), "0123456789-:TZ ");

  v.AddPrefixName("p");
  EXPECT_TRUE(v.FindPrefixNameIndex("p", index));
  EXPECT_EQ(index, 2u);
  v.AddPrefixName("p");  // an existing key keeps its index and adds no row
  EXPECT_EQ(v.GetPrefixNamesTable().size(), 2u);
}

TEST(FIVocabulary, QualifiedNamesShareTheirParts) {
  CFIVocabulary v;
  v.AddElement("", "urn:a", "x");
  v.AddElement("", "urn:a", "x");
  ASSERT_EQ(v.GetElementNamesTable().size(), 1u);
  const CQNameParts& x = v.GetElementNamesTable()[0];
  EXPECT_EQ(x.prefix, 0u);
  EXPECT_EQ(x.namespaceName, 2u);
  EXPECT_EQ(x.localName, 1u);

  v.AddAttribute("p", "urn:a", "x");  // reuses namespace and local name, adds the prefix
  ASSERT_EQ(v.GetAttributeNamesTable().size(), 1u);
  const CQNameParts& a = v.GetAttributeNamesTable()[0];
  EXPECT_EQ(a.prefix, 2u);
  EXPECT_EQ(a.namespaceName, 2u);
  EXPECT_EQ(a.localName, 1u);
  EXPECT_EQ(v.GetLocalNamesTable().size(), 1u);
  unsigned long index = 0;
  EXPECT_TRUE(CFIVocabulary::FindIndex(v.GetAttributeNamesMap(),
                                       CFIVocabulary::QNameKey("p", "urn:a", "x"), index));
  EXPECT_EQ(index, 1u);
}

TEST(FIVocabulary, FullTablesStopGrowing) {
  CFIVocabulary v;
  CFIVocabulary::IndexMap& m = v.GetElementNamesMap();
  CFIStringTable t;
  for (size_t i = 0; i < CFIVocabulary::MAX_ENTRIES; ++i) {
    CFIVocabulary::AddValueToMap(std::to_string(i), m);
    CFIVocabulary::AddValueToVector("v", t);
  }
  CFIVocabulary::AddValueToMap("one more", m);
  CFIVocabulary::AddValueToVector("one more", t);
  EXPECT_EQ(m.size(), CFIVocabulary::MAX_ENTRIES);
  EXPECT_EQ(t.size(), CFIVocabulary::MAX_ENTRIES);
  unsigned long index = 0;
  EXPECT_FALSE(CFIVocabulary::FindIndex(m, "one more", index));

  // A name that no longer fits still enters its parts.
  v.AddElement("p", "urn:a", "x");
  EXPECT_EQ(m.size(), CFIVocabulary::MAX_ENTRIES);
  EXPECT_TRUE(v.FindPrefixNameIndex("p", index));
  EXPECT_EQ(index, 2u);
  EXPECT_TRUE(v.FindNamespaceNameIndex("urn:a", index));
  EXPECT_TRUE(v.FindLocalNameIndex("x", index));
}

TEST(FIVocabulary, CopiesAreIndependent) {
  CFIVocabulary original;
  original.AddLocalName("a");
  CFIVocabulary copy(original);
  copy.AddLocalName("b");
  EXPECT_EQ(original.GetLocalNamesTable().size(), 1u);
  EXPECT_EQ(copy.GetLocalNamesTable().size(), 2u);
}

TEST(FastInfosetContext, DefaultsAndSuggestedValues) {
  CFastInfosetContext c;
  EXPECT_EQ(c.GetDefaultStringEncoding(), 0);
  EXPECT_EQ(c.GetAttributeMaxAddLength(), 6u);
  EXPECT_EQ(c.GetElementMaxAddLength(), 6u);
  EXPECT_FALSE(c.GetUseGeneratedVocabulary());
  EXPECT_EQ(c.GetExternalVocabularyURI(), "");
  for (unsigned long t = 0; t < 29; ++t) EXPECT_EQ(c.GetEncoding(t).kind, 0u) << t;

  c.SetSuggestedValues();
  auto is = [&](ItemType t, uint32_t kind, uint32_t index) {
    return c.GetEncoding(t).kind == kind && c.GetEncoding(t).index == index;
  };
  EXPECT_TRUE(is(ItemType_hexBinary, 2, 1));
  EXPECT_TRUE(is(ItemType_ui1, 2, 3));
  EXPECT_TRUE(is(ItemType_ui2, 2, 4));
  EXPECT_TRUE(is(ItemType_ui4, 2, 5));
  EXPECT_TRUE(is(ItemType_r8, 2, 8));
  EXPECT_TRUE(is(ItemType_duration, 0, 0));
  EXPECT_TRUE(is(ItemType_time, 1, 2));
  EXPECT_TRUE(is(ItemType_boolean, 2, 6));
  EXPECT_TRUE(is(ItemType_integer, 1, 1));
  EXPECT_TRUE(is(ItemType_char, 0, 0));
  EXPECT_TRUE(is(ItemType_string, 0, 0));
  EXPECT_EQ(c.GetEncoding(99).kind, 0u);

  CFastInfosetContext copy(c);
  copy.GetVocabulary()->AddLocalName("generated");
  EXPECT_EQ(c.GetVocabulary()->GetLocalNamesTable().size(), 0u);
}
