#include <gtest/gtest.h>

#include <KoXmlLib10.h>
#include <string>
#include <vector>

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
  EXPECT_EQ(std::vector<unsigned long>({x.prefix, x.namespaceName, x.localName}),
            std::vector<unsigned long>({0, 2, 1}));

  v.AddAttribute("p", "urn:a", "x");  // reuses namespace and local name, adds the prefix
  ASSERT_EQ(v.GetAttributeNamesTable().size(), 1u);
  const CQNameParts& a = v.GetAttributeNamesTable()[0];
  EXPECT_EQ(std::vector<unsigned long>({a.prefix, a.namespaceName, a.localName}),
            std::vector<unsigned long>({2, 2, 1}));
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

TEST(FastInfosetContext, DefaultsAndSuggestedValues) {
  CFastInfosetContext c;
  EXPECT_EQ(c.GetDefaultStringEncoding(), 0);
  EXPECT_EQ(c.GetAttributeMaxAddLength(), 6u);
  EXPECT_EQ(c.GetElementMaxAddLength(), 6u);
  EXPECT_FALSE(c.GetUseGeneratedVocabulary());
  EXPECT_EQ(c.GetExternalVocabularyURI(), "");
  for (unsigned long t = 0; t < 29; ++t) EXPECT_EQ(c.GetEncoding(t).kind, 0u) << t;

  c.SetSuggestedValues();
  const struct { ItemType type; uint32_t kind, index; } suggested[] = {
      {ItemType_hexBinary, 2, 1}, {ItemType_ui1, 2, 3}, {ItemType_ui2, 2, 4},   {ItemType_ui4, 2, 5},
      {ItemType_r8, 2, 8},        {ItemType_duration, 0, 0}, {ItemType_time, 1, 2}, {ItemType_boolean, 2, 6},
      {ItemType_integer, 1, 1},   {ItemType_char, 0, 0},    {ItemType_string, 0, 0}};
  for (const auto& e : suggested)
    EXPECT_TRUE(c.GetEncoding(e.type).kind == e.kind && c.GetEncoding(e.type).index == e.index) << e.type;
  EXPECT_EQ(c.GetEncoding(99).kind, 0u);

  // A copy owns a copy of the vocabulary.
  CFastInfosetContext copy(c);
  copy.GetVocabulary()->AddLocalName("generated");
  EXPECT_EQ(c.GetVocabulary()->GetLocalNamesTable().size(), 0u);
  EXPECT_EQ(copy.GetVocabulary()->GetLocalNamesTable().size(), 1u);
}

// Keys of every length up to past a word, with NUL bytes and shared
// prefixes, keep their order-of-addition indexes through the table's growth,
// copies and moves; absent keys stay absent.
TEST(FIIndexMap, IndexesInOrderOfAdditionThroughGrowthCopiesAndMoves) {
  std::vector<std::string> keys;
  for (int i = 0; i < 3000; ++i) {
    std::string key = std::to_string(i * 7919 % 100003);
    key.resize(static_cast<size_t>(i % 19), static_cast<char>(i % 3 == 0 ? '\0' : 'k'));
    if (i % 5 == 0) key.insert(0, 1, '\0');
    keys.push_back(key);
  }
  CFIIndexMap map;
  std::vector<uint32_t> expected;
  for (const std::string& key : keys) {
    const uint32_t known = map.Find(key);
    const uint32_t index = map.Add(key);
    if (known) {
      EXPECT_EQ(index, known) << key;
    } else {
      EXPECT_EQ(index, map.size());
    }
    expected.push_back(index);
  }
  const auto check = [&](const CFIIndexMap& m) {
    for (size_t i = 0; i < keys.size(); ++i) {
      ASSERT_EQ(m.Find(keys[i]), expected[i]) << i;
      EXPECT_EQ(m.KeyOf(expected[i]), keys[i]);
    }
    EXPECT_EQ(m.Find(std::string("absent\0", 7)), 0u);
  };
  check(map);
  const CFIIndexMap copy = map;
  check(copy);
  CFIIndexMap moved = std::move(map);
  check(moved);
  EXPECT_EQ(map.size(), 0u);
  EXPECT_EQ(map.Find(keys[1]), 0u);
  EXPECT_EQ(map.Add("again"), 1u);  // a moved-from map takes new entries
  // "a" and "a\0" differ only by a NUL: two entries.
  CFIIndexMap shortKeys;
  EXPECT_EQ(shortKeys.Add(std::string("a")), 1u);
  EXPECT_EQ(shortKeys.Add(std::string("a\0", 2)), 2u);
  EXPECT_EQ(shortKeys.Find(std::string("a\0\0", 3)), 0u);
}
