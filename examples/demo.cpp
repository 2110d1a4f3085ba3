// A tour of the library: parse a document, compute with XSD value types,
// write the result as XML text and as compressed Fast Infoset, read it back.
#include <KoXmlLib10.h>

#include <clocale>
#include <cstdio>
#include <string>

using namespace KoXmlLib10;

namespace {

const char kOrder[] =
    "<?xml version='1.0' encoding='UTF-8'?>"
    "<order xmlns='urn:example:orders' id='42'>"
    "<placed>2024-02-28T23:30:00Z</placed>"
    "<item sku='ABC-1234' qty='3'><price>19.99</price></item>"
    "<item sku='XYZ-0001' qty='1'><price>1234.50</price></item>"
    "</order>";

const char kNs[] = "urn:example:orders";
using CW = CWhitespaceUtils;

// Sums qty * price over the items, exactly.
CDecimal Total(const CXmlElement* order) {
  CDecimal total;
  for (const CXmlElement* e = order->GetFirstElement(); e; e = e->GetNextSiblingElement()) {
    if (e->GetLocalName() != "item") continue;
    const long qty = CConversions::i4FromString(e->GetAttribute("qty", ""), CW::WhitespaceRule_Collapse);
    const CDecimal price = CConversions::decimalFromString(e->GetFirstElement()->GetText(),
                                                           CW::WhitespaceRule_Collapse);
    total += price * CDecimal(static_cast<int>(qty));
  }
  return total;
}

// Writes the summary document through any writer.
void WriteSummary(CXmlWriter& w, const CDecimal& total, const CDateTime& shipBy) {
  w.SetDefaultNamespace(kNs);
  w.WriteStartElement("summary", kNs);
  w.WriteAttributeString("order", "", "42", ItemType_i4);
  w.WriteStartElement("total", kNs);
  w.WriteString(CConversions::decimalToString(total), ItemType_decimal);
  w.WriteEndElement();
  w.WriteStartElement("shipBy", kNs);
  w.WriteString(CConversions::datetimeToString(shipBy), ItemType_datetime);
  w.WriteEndElement();
  w.WriteEndElement();
}

}  // namespace

int main() {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  SetGeneratorVersion(RUNTIME_VERSION_MAJOR, RUNTIME_VERSION_MINOR);
  std::printf("KoXmlLib10 %d.%d\n\n", RUNTIME_VERSION_MAJOR, RUNTIME_VERSION_MINOR);
  try {
    CXmlDocument document;
    document.LoadXml(kOrder);
    const CXmlElement* order = document.GetDocumentElement();
    const CDecimal total = Total(order);
    CDateTime shipBy = CConversions::datetimeFromString(order->GetFirstElement()->GetText(),
                                                        CW::WhitespaceRule_Collapse);
    shipBy += CConversions::durationFromString("P1DT2H", CW::WhitespaceRule_Collapse);
    std::printf("order total %s, ship by %s (across the leap day)\n\n", total.ToString().c_str(),
                shipBy.ToString().c_str());

    CTextStream text(XmlEncoding_UTF8);
    CXmlTextWriter xml(text);
    xml.Open();
    xml.SetFormat(true);
    xml.WriteStartDocument();
    WriteSummary(xml, total, shipBy);
    xml.Close();
    std::printf("%s\n\n", text.GetText());

    CBinaryStream bytes;
    CXmlSerializationContext context;
    context.GetFIContext().SetSuggestedValues();
    CFastInfosetWriter fi(context.GetFIContext(), bytes);
    fi.WriteStartDocument(FInfoDeclNone);
    WriteSummary(fi, total, shipBy);
    fi.WriteEndDocument();
    CBinaryData encoded = bytes.GetBinaryStream();
    std::printf("as Fast Infoset: %lu bytes (XML text: %lu)\n", encoded.GetLength(),
                static_cast<unsigned long>(text.GetLength()));

    CXmlDocument back(context);
    back.LoadXmlStream(encoded.GetData(), encoded.GetLength());
    const CXmlElement* totalElement = back.GetDocumentElement()->GetFirstElement();
    std::printf("read back: <%s> = %s\n\n", totalElement->GetLocalName().c_str(),
                totalElement->GetText().c_str());

    // Failures are exceptions whose full message is the chain of causes.
    CConversions::i2FromString("70000", CW::WhitespaceRule_Collapse);
  } catch (const CKoException& e) {
    std::printf("expected failure: %s\n", e.GetFullMessage().c_str());
  }
  return 0;
}
