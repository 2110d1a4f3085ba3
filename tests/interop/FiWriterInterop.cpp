// Replays the same writer calls into the XML text writer and the Fast Infoset writer, so that
// an independent Fast Infoset decoder can check that both documents carry the same infoset.
//
// usage: fi-writer-interop SCENARIO OUT [DECL]
//   writes OUT.xml and OUT.fi; DECL (0-9) selects the XML declaration of the Fast Infoset form.

#include <KoXmlLib10.h>

#include <OrdersGenerator.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

using namespace KoXmlLib10;

namespace {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

// Element and attribute names enough to take every index form of local names past 8256.
void Names(CXmlWriter& w) {
  w.SetDefaultNamespace("urn:default");
  w.AddNamespace("a", "urn:a");
  w.AddNamespace("xsi", kXsi);
  w.WriteStartElement("root", "urn:default");
  w.WriteAttributeString("plain", "", "1", ItemType_string);
  w.WriteAttributeString("qualified", "urn:a", "2", ItemType_string);
  w.WriteAttributeString("fresh", "urn:attr", "3", ItemType_string);  // declared on first use

  w.WriteStartElement("inA", "urn:a");
  w.WriteStartElement("inB", "urn:b");  // a prefix generated and declared here
  w.WriteStartElement("inB", "urn:b");  // and in scope here
  w.WriteEndElement();
  w.WriteEndElement();
  w.WriteStartElement("inB", "urn:b");  // a sibling declares it again
  w.WriteEndElement();
  w.WriteStartElement("none", "");  // no namespace under a default one
  w.WriteStartElement("back", "urn:default");
  w.WriteEndElement();
  w.WriteEndElement();
  w.WriteEndElement();

  for (const char* typeNamespace : {"urn:default", "urn:a", "urn:types", ""}) {
    w.WriteStartElement("typed", "urn:default");
    w.WriteAttributeType(typeNamespace, "Derived", ItemType_string);
    w.WriteString("value", ItemType_string);
    w.WriteEndElement();
  }
  w.WriteStartElement("nested", "");
  w.WriteStartElement("typed", "urn:c");
  w.WriteAttributeType("urn:types", "Derived", ItemType_string);
  w.WriteEndElement();
  w.WriteStartElement("nil", "urn:default");
  w.WriteAttributeNil();
  w.WriteEndElement();
  w.WriteEndElement();

  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 9000; ++i) {
      const std::string n = std::to_string(i);
      w.WriteStartElement("e" + n, i % 3 ? "urn:default" : "urn:a");
      if (i % 100 == 0) w.WriteAttributeString("at" + std::to_string(i / 100), "", n, ItemType_string);
      w.WriteEndElement();
    }
  }
  w.WriteEndElement();
}

// Text and attribute values across every length boundary, repeated, empty and non-ASCII.
void Strings(CXmlWriter& w) {
  w.WriteStartElement("strings", "");
  for (size_t length : {1, 2, 3, 5, 6, 7, 8, 9, 63, 64, 65, 258, 259, 264, 265, 320, 321, 1000}) {
    const std::string value(length, static_cast<char>('a' + length % 26));
    for (int round = 0; round < 2; ++round) {
      w.WriteStartElement("s", "");
      w.WriteAttributeString("v", "", value, ItemType_string);
      w.WriteString(value, ItemType_string);
      w.WriteEndElement();
    }
  }
  for (const char* text : {"gr\xC3\xBC\xC3\x9F" "e", "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E", "\xF0\x9F\x98\x80",
                           "a & b < c > d \" e ' f", "line one\nline two", "\xC3\xA9"}) {
    w.WriteStartElement("text", "");
    w.WriteAttributeString("attr", "", text, ItemType_string);
    w.WriteString(text, ItemType_string);
    w.WriteString(text, ItemType_string);  // adjacent chunks
    w.WriteEndElement();
  }
  w.WriteStartElement("empty", "");
  w.WriteEndElement();
  w.WriteStartElement("empty", "");
  w.WriteAttributeString("blank", "", "", ItemType_string);
  w.WriteString("", ItemType_string);
  w.WriteEndElement();
  w.WriteStartElement("mixed", "");
  w.WriteString("before", ItemType_string);
  w.WriteStartElement("child", "");
  w.WriteEndElement();
  w.WriteString("after", ItemType_string);
  w.WriteEndElement();
  // Values enough to take attribute-value indexes past 8256 and chunk indexes past 1040.
  for (int i = 0; i < 9000; ++i) {
    const std::string value = std::to_string(i);
    w.WriteStartElement("v", "");
    w.WriteAttributeString("n", "", value, ItemType_string);
    w.WriteAttributeString("m", "", value, ItemType_string);
    w.WriteString(value, ItemType_string);
    w.WriteEndElement();
  }
  w.WriteEndElement();
}

// The suggested encodings: values in the restricted alphabets and the built-in algorithms,
// each written twice so that the second is an index.
void Encodings(CXmlWriter& w) {
  const std::map<ItemType, std::vector<const char*>> values = {
      {ItemType_hexBinary, {"0AFF", "00"}},
      {ItemType_base64Binary, {"AQID", "SGVsbG8gd29ybGQ="}},
      {ItemType_i1, {"-128", "5"}},
      {ItemType_i2, {"-32768", "32767"}},
      {ItemType_ui1, {"255"}},
      {ItemType_i4, {"-2147483648", "7"}},
      {ItemType_ui2, {"65535"}},
      {ItemType_i8, {"-9223372036854775808", "123456789012"}},
      {ItemType_ui4, {"4294967295"}},
      {ItemType_ui8, {"9223372036854775807"}},
      {ItemType_r4, {"1.5", "-0.25", "1.0E10"}},
      {ItemType_r8, {"2.5", "-1.0E-300"}},
      {ItemType_boolean, {"true", "false"}},
      {ItemType_duration, {"P1Y2M3DT4H5M6S"}},
      {ItemType_yearMonth, {"2024-05"}},
      {ItemType_monthDay, {"--05-01"}},
      {ItemType_year, {"2024"}},
      {ItemType_month, {"--05"}},
      {ItemType_day, {"---01"}},
      {ItemType_date, {"2024-05-01", "2024-05-01Z"}},
      {ItemType_datetime, {"2024-05-01T08:00:00Z", "2024-05-01T08:00:00-05:00"}},
      {ItemType_time, {"08:00:00"}},
      {ItemType_decimal, {"-123.450", "7", "+1.5"}},
      {ItemType_integer, {"123456789012345678901234567890", "1.5E3"}},
      {ItemType_char, {"a<b&c", "d]]>e"}},  // set to the cdata algorithm
      {ItemType_string, {"plain"}},
  };
  w.WriteStartElement("encodings", "");
  for (int round = 0; round < 2; ++round) {
    for (const auto& [type, texts] : values) {
      for (const char* text : texts) {
        w.WriteStartElement("value", "");
        w.WriteAttributeString("v", "", text, type);
        w.WriteString(text, type);
        w.WriteEndElement();
      }
    }
  }
  w.WriteStartElement("nil", "");
  w.WriteAttributeNil();
  w.WriteEndElement();
  w.WriteEndElement();
}

// A realistic document: the orders corpus.
class WriterSink final : public OrdersGen::IEventSink {
 public:
  explicit WriterSink(CXmlWriter& writer) : m_writer(writer) {}
  void StartElement(std::string_view namespaceUri, std::string_view localName) override {
    m_writer.WriteStartElement(std::string(localName), std::string(namespaceUri));
  }
  void Attribute(std::string_view localName, std::string_view value) override {
    m_writer.WriteAttributeString(std::string(localName), "", std::string(value), ItemType_string);
  }
  void Text(std::string_view text) override { m_writer.WriteString(std::string(text), ItemType_string); }
  void EndElement(std::string_view, std::string_view) override { m_writer.WriteEndElement(); }

 private:
  CXmlWriter& m_writer;
};

void Orders(CXmlWriter& w) {
  w.SetDefaultNamespace(std::string(OrdersGen::kNamespace));
  WriterSink sink(w);
  OrdersGen::GenerateEvents(2u << 20, sink);
}

bool WriteFile(const std::string& path, const CBinaryData& data) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return false;
  const bool ok = std::fwrite(data.GetData(), 1, data.GetLength(), file) == data.GetLength();
  return std::fclose(file) == 0 && ok;
}

}  // namespace

int main(int argc, char** argv) {
  const std::map<std::string, std::function<void(CXmlWriter&)>> scenarios = {
      {"names", Names}, {"strings", Strings}, {"encodings", Encodings}, {"orders", Orders}};
  if (argc < 3 || !scenarios.count(argv[1])) {
    std::fprintf(stderr, "usage: fi-writer-interop names|strings|encodings|orders OUT [DECL]\n");
    return 2;
  }
  std::setlocale(LC_CTYPE, "C.UTF-8");  // the texts above are UTF-8
  const auto& scenario = scenarios.at(argv[1]);
  const std::string out = argv[2];
  const FInfoDecl decl = static_cast<FInfoDecl>(argc > 3 ? std::atoi(argv[3]) : 0);
  try {
    CTextStream text(XmlEncoding_UTF8);
    CXmlTextWriter xml(text);
    xml.Open();
    xml.SetFormat(false);  // indentation would add text to mixed content
    xml.WriteStartDocument();
    scenario(xml);
    xml.Close();

    CFastInfosetContext context;
    context.SetSuggestedValues();
    context.SetEncoding(ItemType_char, EncodedCharacterString{2, 10});
    CBinaryStream binary;
    CFastInfosetWriter fi(context, binary);
    fi.WriteStartDocument(decl);
    scenario(fi);
    fi.WriteEndDocument();

    if (!WriteFile(out + ".xml", text.GetEncodedStream()) || !WriteFile(out + ".fi", binary.GetBinaryStream())) {
      std::fprintf(stderr, "fi-writer-interop: cannot write %s.*\n", out.c_str());
      return 1;
    }
  } catch (const CKoException& e) {
    std::fprintf(stderr, "fi-writer-interop: %s\n", e.GetFullMessage().c_str());
    return 1;
  }
  return 0;
}
