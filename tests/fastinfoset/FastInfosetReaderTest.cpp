#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include "support/Throws.h"
#include "support/Trees.h"

using testsupport::Throws;

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

using namespace KoXmlLib10;

namespace {

// Octets of a hand-built document.
struct Octets {
  std::string bytes;
  Octets& operator()(std::initializer_list<int> octets) {
    for (int o : octets) bytes += static_cast<char>(o);
    return *this;
  }
  Octets& operator()(const std::string& text) {
    bytes += text;
    return *this;
  }
  // A short literal: its length-minus-one in the low bits of `prefix`.
  Octets& Literal(int prefix, const std::string& text) {
    bytes += static_cast<char>(prefix | static_cast<int>(text.size() - 1));
    bytes += text;
    return *this;
  }
};

// A string of every octet of a literal, NULs included.
template <size_t N>
std::string S(const char (&octets)[N]) {
  return std::string(octets, N - 1);
}

const std::string kHeader = S("\xE0\x00\x00\x01\x00");  // header, no optional components

void Load(const std::string& bytes, const CXmlSerializationContext& ctx = CXmlSerializationContext()) {
  CXmlDocument doc(ctx);
  doc.LoadXmlStream(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), bytes.size());
}
::testing::AssertionResult LoadFailure(const std::string& bytes, const CXmlSerializationContext& ctx,
                                       const std::string& expected) {
  return Throws([&] { Load(bytes, ctx); }, expected);
}
::testing::AssertionResult LoadFailure(const std::string& bytes, const std::string& expected) {
  return LoadFailure(bytes, CXmlSerializationContext(), expected);
}
// The message of a failure whose exact text another component writes.
std::string LoadMessage(const std::string& bytes) { return testsupport::MessageOf([&] { Load(bytes); }); }

// The document element's text after loading `bytes`, or why the load failed.
std::string TextOf(CXmlDocument& doc, const std::string& bytes) {
  const ::testing::AssertionResult loaded = LoadBytes(doc, bytes);
  return loaded ? doc.GetDocumentElement()->GetText() : loaded.message();
}

// <a>x</a> with the root's body replaced by `body` (after the name).
std::string Root(const std::string& body, int elementOctet = 0x38) {
  Octets o;
  o(kHeader)({elementOctet, 0xF0, 0x3C}).Literal(0x00, "a")(body);
  return o.bytes;
}

}  // namespace

TEST(FastInfosetReader, HeaderRecognition) {
  CXmlDocument doc;
  const std::string ax("\xE0\x00\x00\x01\x00\x38\xF0\x3C\x00\x61\x90\x78\xFF", 13);
  const std::string text = "<?xml version=\"1.0\"?><a>x</a>";
  for (const std::string& bytes : {ax, "<?xml encoding='finf'?>" + ax, text}) {
    ASSERT_TRUE(LoadBytes(doc, bytes));
    EXPECT_EQ(Dump(doc.GetDocumentElement()), "(a{}[x])") << bytes;
  }
  // Four header octets alone are not Fast Infoset: expat rejects them.
  const std::string headerOnly = LoadMessage(ax.substr(0, 4));
  EXPECT_EQ(headerOnly.find("FastInfoset"), std::string::npos);
  EXPECT_NE(headerOnly.find(" at line 1"), std::string::npos);
}

TEST(FastInfosetReader, NamesAttributesAndIndexes) {
  Octets o;
  o(kHeader)({0x78});                     // root: attributes and namespace declarations
  o({0xCD}).Literal(0x00, "urn:x");       // xmlns="urn:x" (namespace 2)
  o({0xCF}).Literal(0x00, "p").Literal(0x00, "urn:p");  // xmlns:p="urn:p" (prefix 2, namespace 3)
  o({0xF0, 0x3D, 0x81}).Literal(0x00, "a");  // name: namespace 2, local name "a"
  o({0x7B, 0x81, 0x82}).Literal(0x00, "x").Literal(0x40, "1");  // p:x="1", value added
  o({0x78}).Literal(0x00, "y")({0x80});    // y= value index 1
  o({0x78}).Literal(0x00, "z")({0xFF});    // z= value index 0: empty
  o({0xF0});                               // end of attributes
  o({0x00}).Literal(0x90, "hi")({0xF0});   // <a>hi</a> through element name 1
  o({0x00, 0xA0, 0xE2, 0x00, 0x63, 0xC8, 0x00, 0x65, 0xE1, 0x00, 0x74, 0x00, 0x63});  // chunk 1, comment, entity, PI
  o({0xFF, 0xF0});
  CXmlDocument doc;
  ASSERT_TRUE(LoadBytes(doc, o.bytes));
  EXPECT_EQ(Dump(doc.GetDocumentElement()), "(a{urn:x} x{urn:p}=1 y{}=1 z{}=[](a{urn:x}[hi])(a{urn:x}[hi]))");
  EXPECT_EQ(doc.LookupNamespaceFromAlias(""), "urn:x");
  EXPECT_EQ(doc.LookupNamespaceFromAlias("p"), "urn:p");
}

TEST(FastInfosetReader, AlphabetsAndAlgorithms) {
  CXmlDocument doc;
  // Numeric alphabet, four bits a character: "12.5" and "-3" padded with F.
  EXPECT_EQ(TextOf(doc, Root(S("\x88\x01\x12\xC5\x88\x00\xA3\xFF"))), "12.5-3");
  EXPECT_EQ(TextOf(doc, Root(S("\x8C\x26\x00" "a<b\xFF"))), "a<b");  // the cdata algorithm is UTF-8 text
  // int values "1 2" and boolean "true" as chunks; int 42 as an attribute value.
  EXPECT_EQ(TextOf(doc, Root(S("\x8C\x0E\x05\x00\x00\x00\x01\x00\x00\x00\x02\x8C\x14\x38\xFF"))), "1 2true");
  ASSERT_TRUE(LoadBytes(doc, Root(S("\x78\x00\x76\x30\x33\x00\x00\x00\x2A\xFF"), 0x78)));
  EXPECT_EQ(doc.GetDocumentElement()->GetAttribute("v", ""), "42");
  EXPECT_TRUE(LoadFailure(Root(S("\x8C\x28\x00\xFF")), "Unknown byte encoding."));  // algorithm 11
  EXPECT_TRUE(LoadFailure(Root(S("\x8C\x0E\x03\x00\x00\x00\x01\x00\x00\xFF")),
            "Invalid value for INT byte encoding."));

  CXmlSerializationContext ctx;
  ctx.GetFIContext().SetUseGeneratedVocabulary(true);
  std::vector<std::string>& alphabets = ctx.GetFIContext().GetVocabulary()->GetRestrictedAlphabets();
  alphabets.push_back("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefgh");  // 3: 34 characters, six bits each
  alphabets.push_back("abcde");                               // 4: three bits
  alphabets.push_back("xyz");                                 // 5: two bits
  std::string wide;
  for (int c = 0; c < 200; ++c) wide += static_cast<char>(c < 100 ? 'A' + c % 26 : 'a' + c % 26);
  alphabets.push_back(wide);                                  // 6: eight bits
  alphabets.push_back("x");                                   // 7: too short
  CXmlDocument custom(ctx);
  // "Bad" = 1, 26, 29 in six bits, then the all-ones padding.
  EXPECT_EQ(TextOf(custom, Root(S("\x88\x0A\x00\x05\xA7\x7F\xFF"))), "Bad");
  // "eab" = 4, 0, 1 in three bits (9 bits, padded with ones): 100 000 001 1111111.
  EXPECT_EQ(TextOf(custom, Root(std::string("\x88\x0D\x80\xFF\xFF", 5))), "eab");
  // "zyx" = 2, 1, 0 in two bits, then 11: 10 01 00 11.
  EXPECT_EQ(TextOf(custom, Root("\x88\x10\x93\xFF")), "zyx");
  EXPECT_EQ(TextOf(custom, Root(std::string("\x88\x15\x00\x01\xFF", 5))), "AB");  // eight bits: indices 0 and 1
  EXPECT_TRUE(LoadFailure(Root("\x88\x0C\xBF\xFF"), ctx,  // three bits: 101 is beyond "abcde"
            "Failed to parse FastInfoset. Invalid character index for Restricted Alphabet."));
  EXPECT_TRUE(LoadFailure(Root(S("\x88\x18\x00\xFF")), ctx,
            "Failed to parse FastInfoset. Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 "
            "and 2^20 characters."));
  EXPECT_TRUE(LoadFailure(Root(S("\x88\x08\x00\xFF")),  // alphabet 3 does not exist by default
            "Failed to parse FastInfoset. Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 "
            "and 2^20 characters."));
}

TEST(FastInfosetReader, IndexesAtEveryRangeBoundary) {
  // Tables filled in advance so that indexes reach the last range of every
  // integer form; the entries at the boundaries carry their own index.
  CXmlSerializationContext ctx;
  CFastInfosetContext& fi = ctx.GetFIContext();
  fi.SetUseGeneratedVocabulary(true);
  CFIVocabulary& v = *fi.GetVocabulary();
  const unsigned long max = 1ul << 20;
  const std::vector<unsigned long> elementNames = {32, 33, 2080, 2081, 526368, 526369, max};  // third bit
  const std::vector<unsigned long> attributeNames = {64, 65, 8256, 8257, max};                // second bit
  const std::vector<unsigned long> values = {64, 65, 8256, 8257};                             // second bit
  const std::vector<unsigned long> chunks = {16, 17, 1040, 1041, 263184, 263185, 16};         // fourth bit
  CFIVocabulary::AddValueToVector("filler", v.GetLocalNamesTable());
  auto fillNames = [&](CFIQNameTable& table, const std::vector<unsigned long>& marked) {
    for (unsigned long i = 1; i <= max; ++i) {
      unsigned long local = 1;
      if (std::find(marked.begin(), marked.end(), i) != marked.end()) {
        CFIVocabulary::AddValueToVector("n" + std::to_string(i), v.GetLocalNamesTable());
        local = v.GetLocalNamesTable().size();
      }
      CFIVocabulary::AddQNameToVector(0, 0, local, table);
    }
  };
  fillNames(v.GetElementNamesTable(), elementNames);
  fillNames(v.GetAttributeNamesTable(), attributeNames);
  auto fillStrings = [](CFIStringTable& table, const std::vector<unsigned long>& marked, const char* stem) {
    for (unsigned long i = 1; i <= *std::max_element(marked.begin(), marked.end()); ++i)
      CFIVocabulary::AddValueToVector(
          std::find(marked.begin(), marked.end(), i) != marked.end() ? stem + std::to_string(i) : "", table);
  };
  fillStrings(v.GetAttributeValuesTable(), values, "v");
  fillStrings(v.GetCharacterChunksTable(), chunks, "c");

  // The octets of each index come from the writer's encoders.
  CFastInfosetContext plain;
  CBinaryStream encoded;
  CFastInfosetWriter writer(plain, encoded);
  for (size_t i = 0; i < attributeNames.size(); ++i) {
    writer.Integer1To2pw20Bit2(0x00, attributeNames[i]);
    writer.Integer0To2pw20Bit2(0x80, values[i < values.size() ? i : 0]);
  }
  encoded.Append(static_cast<unsigned char>(0xF0));
  for (size_t i = 0; i < elementNames.size(); ++i) {
    if (i > 0) encoded.Append(static_cast<unsigned char>(0xF0));
    writer.Integer1To2pw20Bit3(0x00, elementNames[i]);
    writer.Integer1To2pw20Bit4(0xA0, chunks[i]);
  }
  encoded.Append(static_cast<unsigned char>(0xFF));
  encoded.Append(static_cast<unsigned char>(0xF0));
  const CBinaryData data = encoded.GetBinaryStream();
  const std::string body(reinterpret_cast<const char*>(data.GetData()), data.GetLength());

  CXmlDocument doc(ctx);
  ASSERT_TRUE(LoadBytes(doc, Root(body, 0x78)));
  const CXmlElement* root = doc.GetDocumentElement();
  ASSERT_NE(root, nullptr);
  std::string seen;
  for (const CXmlAttribute* a : root->GetAttributes()) seen += a->GetLocalName() + "=" + a->GetValue() + " ";
  for (const CXmlElement* e = root->GetFirstElement(); e; e = e->GetNextSiblingElement())
    seen += e->GetLocalName() + "[" + e->GetText() + "] ";
  EXPECT_EQ(seen,
            "n64=v64 n65=v65 n8256=v8256 n8257=v8257 n1048576=v64 "
            "n32[c16] n33[c17] n2080[c1040] n2081[c1041] n526368[c263184] n526369[c263185] n1048576[c16] ");

  // One past the largest index is no index at all.
  EXPECT_TRUE(LoadFailure(Root(S("\x30\x07\xF7\xE0\xFF")), ctx,
            "Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet."));
}

TEST(FastInfosetReader, ComponentsReadPast) {
  Octets o;
  o({0xE0, 0x00, 0x00, 0x01, 0x7F});
  o({0x00}).Literal(0x00, "i").Literal(0x00, "d");  // additional data: one pair
  o({0x1F, 0xFF}).Literal(0x00, "u");              // initial vocabulary: every table
  for (int table = 0; table < 7; ++table) o({0x00}).Literal(0x00, "s");
  for (int table = 0; table < 3; ++table) o({0x00}).Literal(0x00, "v");
  o({0x00, 0x03, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00});  // name surrogates
  o({0xC3}).Literal(0x00, "n").Literal(0x00, "s").Literal(0x00, "p")({0xF0});  // notation
  o({0xD1}).Literal(0x00, "e").Literal(0x00, "s").Literal(0x00, "p").Literal(0x00, "n")({0xF0});  // entity
  o.Literal(0x00, "UTF-8")({0x01}).Literal(0x00, "1");  // encoding scheme, standalone, version
  o({0xC6}).Literal(0x00, "sys")({0xE1}).Literal(0x00, "t").Literal(0x00, "c")({0xF0});  // doctype
  o({0xE2}).Literal(0x00, "comment");
  o({0x38, 0xF0, 0x3C}).Literal(0x00, "a")({0xCB}).Literal(0x00, "e").Literal(0x00, "s").Literal(0x00, "p");
  o({0xF0, 0xE2}).Literal(0x00, "after")({0xF0});
  CXmlDocument doc;
  ASSERT_TRUE(LoadBytes(doc, o.bytes));
  EXPECT_EQ(doc.GetDocumentElement()->GetLocalName(), "a");
  EXPECT_EQ(doc.GetDocumentElement()->GetText(), "");

  // The initial vocabulary's tables were not entered: element name 1 does not exist.
  Octets indexed;
  indexed({0xE0, 0x00, 0x00, 0x01, 0x20, 0x00, 0x82, 0x00}).Literal(0x00, "a")({0x00, 0x00, 0x00});  // a, (0, 0, 1)
  indexed({0x00, 0xFF});
  EXPECT_TRUE(LoadFailure(indexed.bytes, "Failed to parse FastInfoset. Index 1 is not in the vocabulary."));
}

TEST(FastInfosetReader, NamesWhosePartsNoLongerFitKeepTheirIndex) {
  CXmlSerializationContext ctx;
  ctx.GetFIContext().SetUseGeneratedVocabulary(true);
  CFIStringTable& localNames = ctx.GetFIContext().GetVocabulary()->GetLocalNamesTable();
  for (size_t i = 0; i < CFIVocabulary::MAX_ENTRIES; ++i) CFIVocabulary::AddValueToVector("v", localNames);
  // <a><b/><a/><b/></a>: the literal names are element names 1 and 2 although
  // their local names find no room.
  CXmlDocument doc(ctx);
  ASSERT_TRUE(LoadBytes(doc, Root(S("\x3C\x00\x62\xF0\x00\xF0\x01\xF0\xFF"))));
  std::string names = doc.GetDocumentElement()->GetLocalName();
  for (const CXmlElement* e = doc.GetDocumentElement()->GetFirstElement(); e; e = e->GetNextSiblingElement())
    names += " " + e->GetLocalName();
  EXPECT_EQ(names, "a b a b");
}

TEST(FastInfosetReader, CorruptInput) {
  const std::string ax("\xE0\x00\x00\x01\x00\x38\xF0\x3C\x00\x61\x90\x78\xFF", 13);
  for (size_t length = 5; length < ax.size(); ++length)
    EXPECT_TRUE(LoadFailure(ax.substr(0, length), "Failed to parse FastInfoset. Unexpected End of File.")) << length;

  const std::string prefix = "Failed to parse FastInfoset. ";
  EXPECT_TRUE(LoadFailure(Root("\xC0"), prefix + "Invalid Encoding of Element type."));
  EXPECT_TRUE(LoadFailure(kHeader + "\x38\xF0\x3E", prefix + "Invalid QName type Prefix without Namespace."));
  EXPECT_TRUE(LoadFailure(Root("\x31"), prefix + "Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet."));
  EXPECT_TRUE(LoadFailure(Root("\xBC"), prefix + "Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet."));
  EXPECT_TRUE(LoadFailure(Root("\x70", 0x78),
            prefix + "Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet."));
  EXPECT_TRUE(LoadFailure(Root(std::string("\x78\x00\x79\xF0", 4), 0x78),
            prefix + "Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet."));
  EXPECT_TRUE(LoadFailure(Root(std::string("\x78\x00\x79\x09", 4), 0x78),
            prefix + "Invalid NonEmptyOctetString type  on the fifth bit of an octet."));
  EXPECT_TRUE(LoadFailure(kHeader + "\x38\xF0\x3C\x41", prefix + "Invalid NonEmptyOctetString type  on the second bit of an octet."));
  EXPECT_EQ(LoadMessage(Root(S("\x94\x00\x78"))).rfind(prefix, 0), 0u);  // UTF-16 cannot be read
  EXPECT_TRUE(LoadFailure(Root("\xA5"), prefix + "Index 6 is not in the vocabulary."));
  EXPECT_TRUE(LoadFailure(kHeader + "\xF0", prefix + "The document has no element."));
  EXPECT_TRUE(LoadFailure(Root(S("\xF0\x00\xFF")), "A document can have only one document element."));

  // A chunk entered once and referred to over and over is cut off.
  std::string many = Root("\x92\xC5" + std::string(200, 'x') + std::string(100000, '\xA0') + "\xFF");
  EXPECT_TRUE(LoadFailure(many, prefix + "The document expands to more than 100 times its size."));
}

TEST(FastInfosetReader, DeepNesting) {
  const std::string tooDeep = Root(std::string(200000, '\x00') + std::string(100001, '\xFF'));
  EXPECT_TRUE(LoadFailure(tooDeep, "The document is nested too deeply: more than 10000 levels of elements."));
  const std::string deepest = Root(std::string(CXmlDocument::MAX_ELEMENT_DEPTH - 1, '\x00') +
                                   std::string(CXmlDocument::MAX_ELEMENT_DEPTH / 2, '\xFF'));
  CXmlDocument doc;
  ASSERT_TRUE(LoadBytes(doc, deepest));
  size_t depth = 0;
  for (const CXmlElement* e = doc.GetDocumentElement(); e; e = e->GetFirstElement()) ++depth;
  EXPECT_EQ(depth, CXmlDocument::MAX_ELEMENT_DEPTH);
}

namespace {

// One child of the xsi:type document: its declarations, its xsi:type value
// (none when empty) and the namespace its prefix must resolve to ("" when
// GetTypePrefixNamespace must answer false).
struct TypedChild {
  std::vector<std::pair<std::string, std::string>> declarations;  // prefix ("" for default), URI
  std::string type;
  std::string expected;
};

const char kXsiUri[] = "http://www.w3.org/2001/XMLSchema-instance";

const std::vector<TypedChild>& TypedChildren() {
  static const std::vector<TypedChild> children = {
      {{}, "a:T", "urn:a"},                      // declared on the root
      {{{"b", "urn:b"}}, "b:T", "urn:b"},        // declared on the element itself
      {{{"p", "urn:p1"}}, "p:T", "urn:p1"},      // two siblings rebinding p
      {{{"p", "urn:p2"}}, "p:T", "urn:p2"},
      {{}, "p:T", ""},                           // p is out of scope here
      {{}, "q:T", ""},                           // never declared
      {{}, "", ""},                              // no xsi:type
      {{}, "T", ""},                             // no prefix
      {{}, "a:b:c", "urn:a"},                    // the prefix ends at the first colon
      {{{"", "urn:d"}}, ":T", "urn:d"},          // the empty prefix is the default namespace
      {{}, ":T", ""},                            // and no default is in scope here
  };
  return children;
}

std::string TypedText() {
  std::string xml = std::string("<r xmlns:a=\"urn:a\" xmlns:xsi=\"") + kXsiUri + "\">";
  for (size_t i = 0; i < TypedChildren().size(); ++i) {
    const TypedChild& child = TypedChildren()[i];
    xml += "<c" + std::to_string(i);
    for (const auto& [prefix, uri] : child.declarations)
      xml += (prefix.empty() ? std::string(" xmlns") : " xmlns:" + prefix) + "=\"" + uri + "\"";
    if (!child.type.empty()) xml += " xsi:type=\"" + child.type + "\"";
    xml += "/>";
  }
  return xml + "</r>";
}

// The same document in Fast Infoset, every name and string a literal.
std::string TypedFastInfoset() {
  auto element = [](Octets& o, const std::vector<std::pair<std::string, std::string>>& declarations,
                    const std::string& name, const std::string& type) {
    const int attributes = type.empty() ? 0 : 0x40;
    std::string defaultNamespace;  // an element under a default declaration is in that namespace
    for (const auto& [prefix, uri] : declarations)
      if (prefix.empty()) defaultNamespace = uri;
    const int nameOctet = defaultNamespace.empty() ? 0x3C : 0x3D;
    if (declarations.empty()) {
      o({0x3C | attributes});
    } else {
      o({0x38 | attributes});
      for (const auto& [prefix, uri] : declarations) {
        if (prefix.empty()) {
          o({0xCD}).Literal(0x00, uri);
        } else {
          o({0xCF}).Literal(0x00, prefix).Literal(0x00, uri);
        }
      }
      o({0xF0, nameOctet});
    }
    if (!defaultNamespace.empty()) o.Literal(0x00, defaultNamespace);
    o.Literal(0x00, name);
    if (!type.empty()) {
      o({0x7B}).Literal(0x00, "xsi").Literal(0x00, kXsiUri).Literal(0x00, "type");
      o.Literal(0x00, type)({0xF0});
    }
  };
  Octets o;
  o(kHeader);
  element(o, {{"a", "urn:a"}, {"xsi", kXsiUri}}, "r", "");
  for (size_t i = 0; i < TypedChildren().size(); ++i) {
    const TypedChild& child = TypedChildren()[i];
    element(o, child.declarations, "c" + std::to_string(i), child.type);
    o({0xF0});
  }
  o({0xF0});
  return o.bytes;
}

void ExpectTypePrefixes(const CXmlDocument& doc) {
  const CXmlElement* child = doc.GetDocumentElement()->GetFirstElement();
  for (const TypedChild& expected : TypedChildren()) {
    ASSERT_NE(child, nullptr);
    std::string uri = "untouched";
    const bool bound = child->GetTypePrefixNamespace(uri);
    EXPECT_EQ(bound, !expected.expected.empty()) << child->GetLocalName() << " " << expected.type;
    EXPECT_EQ(uri, bound ? expected.expected : std::string("untouched")) << child->GetLocalName();
    child = child->GetNextSiblingElement();
  }
  EXPECT_EQ(child, nullptr);
  // The document-wide map keeps its meaning: the last declaration of p.
  EXPECT_EQ(doc.LookupNamespaceFromAlias("p"), "urn:p2");
}

}  // namespace

TEST(FastInfosetReader, TypePrefixesResolvedInScopeLikeText) {
  CXmlDocument text, binary;
  ASSERT_TRUE(LoadText(text, TypedText()));
  ASSERT_TRUE(LoadBytes(binary, TypedFastInfoset()));
  EXPECT_EQ(Mismatch(Dump(text.GetDocumentElement()), Dump(binary.GetDocumentElement())), "");
  ExpectTypePrefixes(text);
  ExpectTypePrefixes(binary);
}
