// Documents written once through the text writer and once through the Fast
// Infoset writer must load into identical trees.
#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include "support/Trees.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

using namespace KoXmlLib10;

namespace {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

using Script = std::function<void(CXmlWriter&)>;

std::string WriteText(const Script& script) {
  CTextStream stream(XmlEncoding_UTF8);
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(false);
  writer.WriteStartDocument();
  script(writer);
  writer.Close();
  return stream.GetText();
}

CBinaryData WriteFastInfoset(const Script& script, const CFastInfosetContext& context, FInfoDecl decl) {
  CBinaryStream stream;
  CFastInfosetWriter writer(context, stream);
  writer.WriteStartDocument(decl);
  script(writer);
  writer.WriteEndDocument();
  return stream.GetBinaryStream();
}

// Loads both forms (the binary one also zlib-compressed) and compares them.
void ExpectSameTrees(const Script& script, const CFastInfosetContext& fi = CFastInfosetContext(),
                     FInfoDecl decl = FInfoDeclNone) {
  CXmlSerializationContext context;
  context.GetFIContext() = fi;
  CXmlDocument text(context), binary(context), packed(context);
  ASSERT_TRUE(LoadText(text, WriteText(script)));
  CBinaryData bytes = WriteFastInfoset(script, fi, decl);
  const std::string octets(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
  ASSERT_TRUE(LoadBytes(binary, octets));
  CKoZip::CompressData(bytes, CompressionTypeZlib);
  ASSERT_TRUE(LoadBytes(packed, std::string(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength())));
  const std::string expected = Dump(text.GetDocumentElement());
  EXPECT_EQ(Mismatch(expected, Dump(binary.GetDocumentElement())), "");
  EXPECT_EQ(Mismatch(expected, Dump(packed.GetDocumentElement())), "");
}

std::string Numbered(const char* stem, int i) { return stem + std::to_string(i); }

}  // namespace

TEST(FastInfosetRoundTrip, IndexedNamesAndValuesInEveryRange) {
  // 2100 distinct names and values, each used twice: the second use is an
  // index, up to the third range of every integer encoding.
  ExpectSameTrees([](CXmlWriter& w) {
    w.WriteStartElement("root", "");
    for (int pass = 0; pass < 2; ++pass)
      for (int i = 0; i < 2100; ++i) {
        w.WriteStartElement(Numbered("e", i), "");
        w.WriteAttributeString(Numbered("a", i % 300), "", Numbered("v", i), ItemType_string);
        w.WriteString(Numbered("t", i), ItemType_string);
        w.WriteEndElement();
      }
    w.WriteEndElement();
  });
}

TEST(FastInfosetRoundTrip, NamespacesTypesAndLiterals) {
  const std::string longText(70000, 'x'), longName(400, 'n');
  ExpectSameTrees([&](CXmlWriter& w) {
    w.SetDefaultNamespace("urn:d");
    w.AddNamespace("p", "urn:p");
    w.WriteStartElement("root", "urn:d");
    w.WriteAttributeString("x", "urn:p", "1", ItemType_string);
    w.WriteAttributeString("empty", "", "", ItemType_string);
    w.WriteStartElement("child", "urn:p");
    w.WriteAttributeType("urn:p", "T", ItemType_string);
    w.WriteString("a < b & c\r\n", ItemType_string);  // neither tree keeps the carriage return
    w.WriteStartElement("inner", "urn:late");  // a namespace first used here
    w.WriteAttributeNil();
    w.WriteEndElement();
    w.WriteString("after", ItemType_string);
    w.WriteEndElement();
    w.WriteStartElement(longName, "");
    w.WriteAttributeString(longName, "", longText.substr(0, 300), ItemType_string);
    w.WriteString(longText, ItemType_string);
    w.WriteEndElement();
    w.WriteStartElement("nothing", kXsi);
    w.WriteEndElement();
    w.WriteEndElement();
  });
}

TEST(FastInfosetRoundTrip, AlphabetsAlgorithmsAndDeclarations) {
  CFastInfosetContext typed;
  typed.SetSuggestedValues();
  const std::vector<std::pair<ItemType, std::string>> values = {
      {ItemType_i4, "-42"},         {ItemType_i8, "9000000000"},  {ItemType_i2, "7"},
      {ItemType_boolean, "true"},   {ItemType_base64Binary, "AQID"}, {ItemType_hexBinary, "0A0B"},
      {ItemType_date, "2024-05-01"}, {ItemType_datetime, "2024-05-01T10:20:30Z"},
      {ItemType_decimal, "-12.5"},  {ItemType_r8, CConversions::r8ToString(1.5)},
      {ItemType_r4, CConversions::r4ToString(0.25f)}};
  const Script script = [&](CXmlWriter& w) {
    w.WriteStartElement("values", "");
    for (const auto& [type, text] : values) {
      w.WriteStartElement("v", "");
      w.WriteAttributeString("a", "", text, type);
      w.WriteString(text, type);
      w.WriteEndElement();
    }
    w.WriteEndElement();
  };
  ExpectSameTrees(script, typed);

  for (int decl = FInfoDeclFinf; decl <= FInfoDecl11StandaloneNo; ++decl)
    ExpectSameTrees(script, CFastInfosetContext(), static_cast<FInfoDecl>(decl));

  // A vocabulary filled in advance is announced, and the reader starts from it too.
  CFastInfosetContext generated;
  generated.SetUseGeneratedVocabulary(true);
  generated.GetVocabulary()->AddElement("", "", "v");
  generated.GetVocabulary()->AddAttribute("", "", "a");
  generated.GetVocabulary()->AddAttributeValue("true");
  ExpectSameTrees(script, generated, FInfoDecl10);
}
