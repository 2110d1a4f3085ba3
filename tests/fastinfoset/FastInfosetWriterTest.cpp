#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <cstdio>
#include <string>

#include "support/Throws.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

std::string HexOf(const std::string& text) {
  std::string hex;
  char octet[4];
  for (unsigned char c : text) {
    std::snprintf(octet, sizeof octet, "%02X ", c);
    hex += octet;
  }
  return hex;
}

// A writer over a memory stream; Hex() shows what it wrote, optionally from an offset.
struct Fi {
  explicit Fi(CFastInfosetContext c = CFastInfosetContext()) : context(std::move(c)) {}
  std::string Hex(size_t from = 0) const {
    const CBinaryData data = stream.GetBinaryStream();
    const auto* octets = reinterpret_cast<const char*>(data.GetData());
    const std::string hex = HexOf(std::string(octets + from, data.GetLength() - from));
    return hex.substr(0, hex.size() ? hex.size() - 1 : 0);
  }

  CFastInfosetContext context;
  CBinaryStream stream;
  CFastInfosetWriter writer{context, stream};
};

}  // namespace

TEST(FastInfosetWriter, WorkedExample) {
  Fi fi;
  fi.writer.WriteStartDocument(FInfoDeclNone);
  fi.writer.WriteComment("not written");
  fi.writer.WriteStartElement("a", "");
  fi.writer.WriteString("x", ItemType_string);
  fi.writer.WriteEndElement();
  fi.writer.WriteEndDocument();
  EXPECT_EQ(fi.Hex(), "E0 00 00 01 00 38 F0 3C 00 61 90 78 FF");
}

TEST(FastInfosetWriter, IntegersAtEveryRangeBoundary) {
  using Encoder = void (CFastInfosetWriter::*)(unsigned char, unsigned long);
  const Encoder bit2 = &CFastInfosetWriter::Integer1To2pw20Bit2, bit3 = &CFastInfosetWriter::Integer1To2pw20Bit3,
                bit4 = &CFastInfosetWriter::Integer1To2pw20Bit4, zero = &CFastInfosetWriter::Integer0To2pw20Bit2;
  const unsigned long max = 1ul << 20;
  const struct { Encoder encode; unsigned char prefix; unsigned long value; const char* octets; } cases[] = {
      {bit2, 0x80, 1, "80"}, {bit2, 0x80, 64, "BF"}, {bit2, 0x80, 65, "C0 00"}, {bit2, 0, 8256, "5F FF"},
      {bit2, 0, 8257, "60 00 00"}, {bit2, 0, max, "6F DF BF"}, {bit3, 0x40, 32, "5F"}, {bit3, 0, 33, "20 00"},
      {bit3, 0, 2080, "27 FF"}, {bit3, 0, 2081, "28 00 00"}, {bit3, 0, 526368, "2F FF FF"},
      {bit3, 0, 526369, "30 00 00 00"}, {bit3, 0x40, max, "70 07 F7 DF"}, {bit4, 0xA0, 16, "AF"},
      {bit4, 0xA0, 17, "B0 00"}, {bit4, 0xA0, 1040, "B3 FF"}, {bit4, 0xA0, 1041, "B4 00 00"},
      {bit4, 0xA0, 263184, "B7 FF FF"}, {bit4, 0xA0, 263185, "B8 00 00 00"}, {bit4, 0xA0, max, "B8 0B FB EF"},
      {zero, 0x80, 0, "FF"}, {zero, 0x80, 65, "C0 00"}};
  for (const auto& c : cases) {
    Fi fi;
    (fi.writer.*c.encode)(c.prefix, c.value);
    EXPECT_EQ(fi.Hex(), c.octets) << c.value;
  }
  Fi fi;
  EXPECT_TRUE(Throws<CKoException>([&] { fi.writer.Integer1To2pw20Bit2(0, 0); },
            "Failed to write FastInfoset. Invalid integer value [0]"));
  EXPECT_THROW(fi.writer.Integer1To2pw20Bit3(0, max + 1), CKoException);
}

TEST(FastInfosetWriter, LengthsAtEveryRangeBoundary) {
  using Encoder = void (CFastInfosetWriter::*)(unsigned char, const CBinaryData&);
  const Encoder bit5 = &CFastInfosetWriter::NonEmptyOctetStringBit5, bit7 = &CFastInfosetWriter::NonEmptyOctetStringBit7;
  const struct { Encoder encode; unsigned char prefix; size_t length; const char* octets; } cases[] = {
      {nullptr, 0, 1, "00"}, {nullptr, 0, 64, "3F"}, {nullptr, 0, 65, "40 00"}, {nullptr, 0, 320, "40 FF"},
      {nullptr, 0, 321, "60 00 00 00 00"}, {nullptr, 0, 322, "60 00 00 00 01"}, {bit5, 0x30, 8, "37"},
      {bit5, 0x30, 9, "38 00"}, {bit5, 0x30, 264, "38 FF"}, {bit5, 0x30, 265, "3C 00 00 00 00"},
      {bit7, 0x0C, 2, "0D"}, {bit7, 0x0C, 3, "0E 00"}, {bit7, 0x0C, 258, "0E FF"}, {bit7, 0x0C, 259, "0F 00 00 00 00"}};
  for (const auto& c : cases) {
    Fi fi;
    const std::string text(c.length, 'a');
    if (c.encode)
      (fi.writer.*c.encode)(c.prefix, CBinaryData(text.c_str()));
    else
      fi.writer.NonEmptyOctetUTF8StringBit2(c.prefix, text);
    const std::string hex = fi.Hex();
    EXPECT_EQ(hex.substr(0, hex.size() - 3 * c.length), c.octets) << c.length;  // the text follows
  }
  Fi fi;
  EXPECT_TRUE(Throws<CKoException>([&] { fi.writer.NonEmptyOctetStringBit5(0, CBinaryData()); },
            "Failed to write FastInfoset. Empty string in NonEmptyOctetString."));
}

TEST(FastInfosetWriter, NamesAreIndexedFromTheirSecondOccurrence) {
  Fi fi;
  CFastInfosetWriter& w = fi.writer;
  w.WriteStartDocument(FInfoDeclNone);
  w.SetDefaultNamespace("urn:a");
  w.AddNamespace("p", "urn:a");
  w.WriteStartElement("r", "urn:a");
  w.WriteStartElement("r", "urn:a");  // the same name: an index on the third bit
  w.WriteEndElement();
  w.WriteStartElement("c", "");
  w.WriteStartElement("r", "urn:a");  // the same name with a prefix: a new literal
  w.WriteEndElement();
  w.WriteEndElement();
  w.WriteEndElement();
  w.WriteEndDocument();
  EXPECT_EQ(fi.Hex(5),
            "38 CD 04 75 72 6E 3A 61 CF 00 70 81 F0 3D 81 00 72 "  // <r xmlns="urn:a" xmlns:p="urn:a">
            "00 "                                                  // <r/>
            "F0 38 CC F0 3C 00 63 "                                // <c xmlns="">
            "3F 81 81 80 "                                         // <p:r/>
            "FF FF");

  EXPECT_TRUE(Throws<CKoException>([&] {
              w.QualifiedNameOrIndexBit3(0, "p", "", "x", w.GetVocabulary()->GetElementNamesMap());
            },
            "Failed to write FastInfoset. Invalid QName type Prefix without Namespace."));
}

TEST(FastInfosetWriter, ValuesBelowTheMaxAddLengthAreIndexed) {
  Fi fi;
  fi.writer.WriteStartDocument(FInfoDeclNone);
  fi.writer.WriteStartElement("a", "");
  fi.writer.WriteAttributeString("b", "", "abcde", ItemType_string);
  fi.writer.WriteAttributeString("c", "", "abcdef", ItemType_string);
  fi.writer.WriteAttributeString("d", "", "", ItemType_string);
  fi.writer.WriteAttributeString("e", "", "abcde", ItemType_string);
  fi.writer.WriteAttributeString("f", "", "abcdef", ItemType_string);
  fi.writer.WriteString("abcde", ItemType_string);
  fi.writer.WriteString("abcdef", ItemType_string);
  fi.writer.WriteString("abcde", ItemType_string);
  fi.writer.WriteString("abcdef", ItemType_string);
  fi.writer.WriteEndElement();
  fi.writer.WriteEndDocument();
  EXPECT_EQ(fi.Hex(5),
            "78 F0 3C 00 61 "
            "78 00 62 44 61 62 63 64 65 "     // b: added to the table
            "78 00 63 05 61 62 63 64 65 66 "  // c: exactly the limit, literal
            "78 00 64 FF "                    // d: empty
            "78 00 65 80 "                    // e: index 1
            "78 00 66 05 61 62 63 64 65 66 "  // f: literal again
            "F0 "                             // end of the attributes, content follows
            "92 02 61 62 63 64 65 "           // added to the table
            "82 03 61 62 63 64 65 66 "        // literal
            "A0 "                             // index 1 on the fourth bit
            "82 03 61 62 63 64 65 66 FF");
}

TEST(FastInfosetWriter, FullValueTablesTakeNoMoreEntries) {
  Fi fi;
  CFIVocabulary::IndexMap values;
  for (size_t i = 0; i < CFIVocabulary::MAX_ENTRIES; ++i) CFIVocabulary::AddValueToMap(std::to_string(i), values);
  fi.writer.NonIdentifyingStringOrIndexBit1("x", values, 6, ItemType_string);
  fi.writer.NonIdentifyingStringOrIndexBit1("7", values, 6, ItemType_string);
  fi.writer.NonIdentifyingStringOrIndexBit3(0x80, "x", values, 6, ItemType_string);
  EXPECT_EQ(fi.Hex(), "00 78 87 80 78");  // literals without the add-to-table bit; known values stay indexed
  EXPECT_EQ(values.size(), CFIVocabulary::MAX_ENTRIES);
}

TEST(FastInfosetWriter, AnAttributeValueFailsInTheCallThatWritesIt) {
  Fi fi;
  fi.context.SetSuggestedValues();
  CFastInfosetWriter& w = fi.writer;
  w.WriteStartDocument(FInfoDeclNone);
  w.WriteStartElement("a", "");
  EXPECT_TRUE(Throws<CKoException>([&] { w.WriteAttributeString("t", "urn:n", "10:00:00.5", ItemType_time); },
            "Failed to write FastInfoset. Invalid character not found for Restricted Alphabet."));
  w.WriteAttributeString("u", "", "1", ItemType_string);
  w.WriteEndElement();
  w.WriteEndDocument();
  // Neither the failed attribute nor its namespace is written.
  EXPECT_EQ(fi.Hex(5), "78 F0 3C 00 61 78 00 75 40 31 F0 FF");
}

TEST(FastInfosetWriter, TerminatorsShareOctetsWhenTheyFollowEachOther) {
  Fi fi;
  CFastInfosetWriter& w = fi.writer;
  w.WriteStartDocument(FInfoDeclNone);
  w.WriteStartElement("r", "");
  w.WriteStartElement("a", "");  // attributes and nothing else
  w.WriteAttributeString("n", "", "", ItemType_string);
  w.WriteEndElement();
  w.WriteStartElement("a", "");  // attributes and a child
  w.WriteAttributeString("n", "", "", ItemType_string);
  w.WriteStartElement("e", "");
  w.WriteEndElement();
  w.WriteString("t", ItemType_string);  // text after a child
  w.WriteEndElement();
  w.WriteStartElement("a", "");  // attributes and text
  w.WriteAttributeString("n", "", "", ItemType_string);
  w.WriteString("t", ItemType_string);
  w.WriteString("", ItemType_string);  // writes nothing
  w.WriteEndElement();
  w.WriteStartElement("e", "");  // after an element with content
  w.WriteEndElement();
  w.WriteEndElement();
  w.WriteEndDocument();
  EXPECT_EQ(fi.Hex(5),
            "38 F0 3C 00 72 "
            "7C 00 61 78 00 6E FF F0 "  // attributes end in an octet of their own
            "F0 "                       // the element's end, padded before a start
            "41 00 FF F0 "              // attributes, then a child
            "3C 00 65 F0 90 74 "        // whose end is padded before the text
            "F0 41 00 FF F0 A0 "        // attributes, then text
            "F0 02 FF F0");             // the last three ends
}

// An attribute list always ends with F0 when its start tag closes; the
// element's own terminator then pairs with the next terminator, if any.
// (<r a="v"/> and two such siblings: FastInfosetTerminatorForms.)
TEST(FastInfosetWriter, AttributeListsEndBeforeTheElementTerminator) {
  Fi nested;  // the attribute list of an element closed by a child, then by text
  CFastInfosetWriter& n = nested.writer;
  n.WriteStartDocument(FInfoDeclNone);
  n.WriteStartElement("r", "");
  n.WriteAttributeString("a", "", "v", ItemType_string);
  n.WriteStartElement("c", "");
  n.WriteAttributeNil();
  n.WriteString("t", ItemType_string);
  n.WriteEndElement();
  n.WriteEndElement();
  n.WriteEndDocument();
  const std::string hex = nested.Hex(5);
  EXPECT_EQ(hex.substr(0, 27), "78 F0 3C 00 72 78 00 61 40 ");
  EXPECT_EQ(hex.substr(27, 9), "76 F0 78 ");  // r's attributes end, then <c xmlns:AA=...>
  // "true" ends, then c's attributes end, the text, both ends and the document's end.
  EXPECT_EQ(hex.substr(hex.size() - 17), "65 F0 90 74 FF F0");
}

TEST(FastInfosetWriter, RestrictedAlphabetsAndAlgorithms) {
  Fi fi;
  fi.context.SetSuggestedValues();
  EXPECT_EQ(fi.writer.AppendRestrictedAlphabetString(1, "-1.5E3").GetAsHexString(), "A1C5D3");
  EXPECT_EQ(fi.writer.AppendRestrictedAlphabetString(1, "1.5").GetAsHexString(), "1C5F");
  fi.writer.EncodedCharacterStringBit5(0x80, "2024-05", ItemType_yearMonth);
  fi.writer.EncodedCharacterStringBit3(0x40, "2024-05", ItemType_yearMonth);
  fi.writer.EncodedCharacterStringBit5(0x90, "5", ItemType_i4);
  fi.writer.EncodedCharacterStringBit3(0x40, "5", ItemType_i4);
  fi.writer.EncodedCharacterStringBit3(0x00, "true", ItemType_boolean);
  fi.context.SetEncoding(ItemType_string, EncodedCharacterString{2, 10});
  fi.writer.EncodedCharacterStringBit5(0x80, "<x>", ItemType_string);
  fi.writer.EncodedCharacterStringBit3(0x00, "<x>", ItemType_string);  // not for values
  EXPECT_EQ(fi.Hex(),
            "88 06 01 20 24 A0 5F "   // date-time alphabet (index 2) on the fifth bit
            "60 13 20 24 A0 5F "      // and on the third
            "9C 0E 01 00 00 00 05 "   // int (algorithm 4) on the fifth bit
            "70 33 00 00 00 05 "      // and on the third
            "30 50 38 "               // boolean (algorithm 6)
            "8C 26 00 3C 78 3E "      // cdata (algorithm 10)
            "02 3C 78 3E");

  auto fails = [&](EncodedCharacterString encoding, const char* text, bool onBit3, const std::string& expected) {
    fi.context.SetEncoding(ItemType_string, encoding);
    return Throws([&] {
      if (onBit3)
        fi.writer.EncodedCharacterStringBit3(0, text, ItemType_string);
      else
        fi.writer.EncodedCharacterStringBit5(0, text, ItemType_string);
    }, expected);
  };
  EXPECT_TRUE(fails({3, 0}, "x", true,
            "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5."));
  EXPECT_TRUE(fails({3, 0}, "x", false,
            "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7."));
  EXPECT_TRUE(fails({1, 3}, "1", true, "Failed to write FastInfoset. Invalid Restricted Alphabet value [3]"));
  EXPECT_TRUE(fails({2, 11}, "1", false, "Failed to write FastInfoset. Invalid Encoding Algorithm value [11]"));
  EXPECT_TRUE(fails({1, 2}, "10:00:00.5", true,
            "Failed to write FastInfoset. Invalid character not found for Restricted Alphabet."));
  std::vector<std::string>& alphabets = fi.writer.GetVocabulary()->GetRestrictedAlphabets();
  alphabets[0] = "0123456789ABCDEFGHIJ";
  EXPECT_TRUE(fails({1, 1}, "1", true,
            "Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString."));
  alphabets[0] = "0";
  EXPECT_TRUE(fails({1, 1}, "0", true,
            "Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain between "
            "2 and 2^20 characters."));
}

TEST(FastInfosetWriter, DeclarationsAndExternalVocabulary) {
  const char* const declarations[] = {
      "<?xml encoding='finf'?>",
      "<?xml encoding='finf' standalone='yes'?>",
      "<?xml encoding='finf' standalone='no'?>",
      "<?xml version='1.0' encoding='finf'?>",
      "<?xml version='1.0' encoding='finf' standalone='yes'?>",
      "<?xml version='1.0' encoding='finf' standalone='no'?>",
      "<?xml version='1.1' encoding='finf'?>",
      "<?xml version='1.1' encoding='finf' standalone='yes'?>",
      "<?xml version='1.1' encoding='finf' standalone='no'?>"};
  for (int decl = FInfoDeclFinf; decl <= FInfoDecl11StandaloneNo; ++decl) {
    Fi fi;
    fi.writer.WriteStartDocument(static_cast<FInfoDecl>(decl));
    EXPECT_EQ(fi.Hex(), HexOf(declarations[decl - 1]) + "E0 00 00 01 00") << decl;
  }
  Fi bad;
  EXPECT_THROW(bad.writer.WriteStartDocument(static_cast<FInfoDecl>(10)), CKoException);

  CFastInfosetContext generated;
  generated.SetUseGeneratedVocabulary(true);
  generated.GetVocabulary()->AddElement("", "", "a");
  Fi byDefault(generated);
  byDefault.writer.WriteStartDocument(FInfoDeclNone);
  byDefault.writer.WriteStartElement("a", "");  // known from the generated vocabulary
  byDefault.writer.WriteEndElement();
  byDefault.writer.WriteEndDocument();
  const std::string uri = CFastInfosetWriter::FI_DEFAULT_VOCABULARY_URI;
  EXPECT_EQ(byDefault.Hex(0).substr(0, 23), "E0 00 00 01 20 10 00 23");
  EXPECT_EQ(byDefault.Hex(8 + uri.size()), "38 F0 00 FF");
  generated.SetExternalVocabularyURI("urn:v");
  Fi named(generated);
  named.writer.WriteStartDocument(FInfoDeclNone);
  EXPECT_EQ(named.Hex(), "E0 00 00 01 20 10 00 04 75 72 6E 3A 76");
}

TEST(FastInfosetWriter, NamespacesAreDeclaredWhereTheyAreIntroduced) {
  Fi fi;
  CFastInfosetWriter& w = fi.writer;
  w.WriteStartDocument(FInfoDeclNone);
  w.SetDefaultNamespace("urn:d");
  w.AddNamespace("x", kXsi);
  w.WriteStartElement("r", "urn:d");
  w.WriteAttributeNil();
  w.WriteStartElement("c", "");  // no namespace: undeclares the default
  w.WriteAttributeType("urn:t", "T", ItemType_string);
  w.WriteStartElement("c", "urn:d");  // the default namespace is undeclared: a prefix
  w.WriteEndElement();
  w.WriteEndElement();
  w.WriteEndElement();
  w.WriteEndDocument();
  EXPECT_EQ(fi.Hex(5),
            "78 CD 04 75 72 6E 3A 64 CF 00 78 28 " + HexOf(kXsi) +  // <r xmlns="urn:d" xmlns:x=...
                "F0 3D 81 00 72 "                                    // name of r
                "7B 81 82 02 6E 69 6C 43 74 72 75 65 F0 "            // x:nil="true"
                "78 CC CF 01 41 41 04 75 72 6E 3A 74 F0 3C 00 63 "   // <c xmlns="" xmlns:AA="urn:t"
                "7B 81 82 03 74 79 70 65 43 41 41 3A 54 F0 "         // x:type="AA:T"
                "38 CF 01 41 42 81 F0 3F 83 81 82 "                  // <AB:c xmlns:AB="urn:d"/>
                "FF FF");
  EXPECT_TRUE(Throws<CKoException>([&] { w.WriteAttributeNil(); },
            "Attributes must be added before elements"));
}

TEST(FastInfosetWriter, MisuseFails) {
  Fi fi;
  CFastInfosetWriter& w = fi.writer;
  w.WriteStartDocument(FInfoDeclNone);
  EXPECT_TRUE(Throws<CKoException>([&] { w.WriteEndElement(); }, "There is no open Element to end."));
  EXPECT_THROW(w.WriteString("x", ItemType_string), CKoException);
  w.WriteStartElement("a", "");
  w.WriteString("x", ItemType_string);
  EXPECT_TRUE(Throws<CKoException>([&] { w.WriteAttributeString("b", "", "1", ItemType_string); },
            "Attributes must be added before elements"));
  EXPECT_TRUE(Throws<CKoException>([&] { w.WriteAttributeType("", "T", ItemType_string); },
            "Attributes must be added before elements"));
  EXPECT_TRUE(Throws<CKoException>([&] { w.WriteEndDocument(); }, "An Element has not been closed."));
  w.WritePI("<?pi?>");
  w.WriteInlineSchema("<schema/>");
  EXPECT_EQ(fi.Hex(5), "38 F0 3C 00 61 90 78");
}

// A simple element written in one call gives exactly the octets of the three
// calls: after a parent with held attributes, after a sibling's end (shared
// terminators), with a namespace declared on the element alone, in no
// namespace under a default one, empty, and with encoded values.
TEST(FastInfosetWriter, SimpleElementWritesWhatTheThreeCallsWrite) {
  const auto document = [](bool oneCall) {
    CFastInfosetContext context;
    context.SetSuggestedValues();
    Fi fi(context);
    CFastInfosetWriter& w = fi.writer;
    const auto simple = [&](const std::string& name, const std::string& ns, const std::string& text, ItemType type) {
      if (oneCall) {
        w.WriteSimpleElement(name, ns, text, type);
      } else {
        w.WriteStartElement(name, ns);
        w.WriteString(text, type);
        w.WriteEndElement();
      }
    };
    w.WriteStartDocument(FInfoDeclNone);
    w.AddNamespace("p", "urn:p");
    w.SetDefaultNamespace("urn:d");
    w.WriteStartElement("root", "urn:d");
    w.WriteAttributeString("id", "", "7", ItemType_string);
    simple("a", "urn:d", "text", ItemType_string);
    simple("a", "urn:d", "text", ItemType_string);
    simple("b", "", "", ItemType_string);
    simple("c", "urn:p", "12", ItemType_i4);
    simple("d", "urn:new", "2024-05-01", ItemType_date);
    simple("e", "urn:new", std::string("\0x", 2), ItemType_string);
    w.WriteStartElement("inner", "urn:other");
    simple("f", "urn:other", "x", ItemType_string);
    w.WriteEndElement();
    simple("g", "urn:d", "last", ItemType_string);
    w.WriteEndElement();
    w.WriteEndDocument();
    return fi.Hex();
  };
  EXPECT_EQ(document(true), document(false));
}

// Numbers and booleans are encoded by the writer itself: the octets and the
// failures must be those of CFastInfosetBinaryData::SetAsEncodedString.
TEST(FastInfosetWriter, AlgorithmOctetsAreThoseOfTheEncodedValueClass) {
  const struct {
    ItemType type;
    unsigned long algorithm;
    std::string text;
  } cases[] = {{ItemType_i2, 3, "-2"},         {ItemType_i4, 4, " 70000 "},       {ItemType_i8, 5, "-9000000000"},
               {ItemType_boolean, 6, "true"},  {ItemType_boolean, 6, "0"},        {ItemType_r4, 7, "0.25"},
               {ItemType_r8, 8, "-1.5E300"},   {ItemType_r8, 8, "NaN"},           {ItemType_i4, 4, "x"},
               {ItemType_i2, 3, "70000"},      {ItemType_boolean, 6, "yes"},      {ItemType_r8, 8, ""}};
  for (const auto& c : cases) {
    CFastInfosetContext context;
    context.SetEncoding(c.type, EncodedCharacterString{2, static_cast<uint32_t>(c.algorithm)});
    Fi fi(context);
    std::string expected, failure, expectedFailure;
    try {
      CFastInfosetBinaryData data;
      data.SetAsEncodedString(c.algorithm, c.text.c_str());
      expected = HexOf(std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength()));
    } catch (const CKoException& e) {
      expectedFailure = e.GetFullMessage();
    }
    try {
      fi.writer.EncodedCharacterStringBit5(0x80, c.text, c.type);
    } catch (const CKoException& e) {
      failure = e.GetFullMessage();
    }
    EXPECT_EQ(failure, expectedFailure) << c.text;
    if (expectedFailure.empty() && !expected.empty()) {
      const std::string hex = fi.Hex() + " ";
      // The discriminant octet and the length come first; the octets end the string.
      ASSERT_GE(hex.size(), expected.size()) << c.text;
      EXPECT_EQ(hex.substr(hex.size() - expected.size()), expected) << c.text;
    }
  }
}

// A name written as an index is looked up again once its map no longer
// holds it, even when given in the very same strings.
TEST(FastInfosetWriter, ANameIsAnIndexOnlyWhileItsMapHoldsIt) {
  Fi fi;
  CFIVocabulary::IndexMap names;
  const std::string local = "x", uri = "urn:a", prefix = "p";
  fi.writer.QualifiedNameOrIndexBit3(0, prefix, uri, local, names);
  const size_t literal = fi.Hex().size();
  fi.writer.QualifiedNameOrIndexBit3(0, prefix, uri, local, names);
  EXPECT_EQ(fi.Hex().substr(literal), " 00");  // index 1 on the third bit
  names.clear();
  fi.writer.QualifiedNameOrIndexBit3(0, prefix, uri, local, names);
  EXPECT_EQ(fi.Hex().substr(literal + 3, 3), " 3F");  // a literal name again
  CFIVocabulary::IndexMap other;
  other.Add("y\x01urn:a\x01p");
  const size_t before = fi.Hex().size();
  fi.writer.QualifiedNameOrIndexBit3(0, prefix, uri, local, other);
  EXPECT_EQ(fi.Hex().substr(before, 3), " 3F");  // index 1 of that map is another name
}
