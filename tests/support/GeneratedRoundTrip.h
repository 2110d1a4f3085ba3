#ifndef TESTS_SUPPORT_GENERATEDROUNDTRIP_H
#define TESTS_SUPPORT_GENERATEDROUNDTRIP_H

// Round trips of documents through generated classes: a canonical form that
// does not depend on prefixes, xmllint's verdict on the output, and the
// check that text, Fast Infoset and gzip all give the same document back.

#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include "TempFiles.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

// Numbers as values rather than lexical forms: no sign '+', no leading
// zeros, no trailing fractional zeros.
inline std::string CanonicalNumber(const std::string& text) {
  size_t i = 0;
  std::string sign;
  if (!text.empty() && (text[0] == '+' || text[0] == '-')) sign = text[0] == '-' ? "-" : "", i = 1;
  const size_t digitsStart = i;
  while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i;
  if (i == digitsStart) return text;
  std::string whole = text.substr(digitsStart, i - digitsStart), fraction;
  if (i < text.size() && text[i] == '.') {
    const size_t f = ++i;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i;
    fraction = text.substr(f, i - f);
  }
  if (i != text.size()) return text;
  whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size() - 1));
  fraction.erase(fraction.find_last_not_of('0') + 1);
  std::string out = whole + (fraction.empty() ? "" : "." + fraction);
  return out == "0" ? out : sign + out;
}

// Every name with its namespace URI, attributes sorted, namespace
// declarations left out, text without surrounding whitespace, xsi:type
// values as {namespace}name, and numbers by value.
inline std::string CanonicalTree(const std::string& xml) {
  using namespace KoXmlLib10;
  static const std::string kXsi = "http://www.w3.org/2001/XMLSchema-instance";
  CXmlDocument doc;
  doc.LoadXml(xml.c_str());
  std::string out;
  struct Walk {
    std::string& out;
    void operator()(CXmlElement* e, int depth) {
      out += std::string(static_cast<size_t>(depth) * 2, ' ') + "{" + e->GetNamespaceURI() + "}" + e->GetLocalName();
      std::vector<std::string> attributes;
      for (const CXmlAttribute* a : e->GetAttributes()) {
        if (a->IsNamespaceAttribute()) continue;
        std::string value = a->GetValue();
        if (a->GetNamespaceURI() == kXsi && a->GetLocalName() == "type")
          value = "{" + CClassfactoryBase::GetElementTypeNamespaceUri(e) + "}" + CClassfactoryBase::GetElementType(e);
        attributes.push_back("{" + a->GetNamespaceURI() + "}" + a->GetLocalName() + "=" + CanonicalNumber(value));
      }
      std::sort(attributes.begin(), attributes.end());
      for (const std::string& a : attributes) out += " " + a;
      std::string text = e->GetText();
      text.erase(0, text.find_first_not_of(" \t\r\n"));
      text.erase(text.find_last_not_of(" \t\r\n") + 1);
      if (!text.empty()) out += " [" + CanonicalNumber(text) + "]";
      out += "\n";
      for (CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) (*this)(c, depth + 1);
    }
  };
  Walk{out}(doc.GetDocumentElement(), 0);
  return out;
}

// xmllint's verdict on a document against a schema; true when xmllint is
// not installed (an empty path).
inline bool ValidAgainstSchema(const std::string& xmllint, const std::string& xml, const std::string& schema,
                               const std::string& name) {
  if (xmllint.empty()) return true;
  const std::string path = testsupport::TempPath(name + "-out.xml");
  std::ofstream(path, std::ios::binary) << xml;
  const std::string command = xmllint + " --noout --schema '" + schema + "' '" + path + "' 2>/dev/null";
  const bool valid = std::system(command.c_str()) == 0;
  std::remove(path.c_str());
  return valid;
}

// Reads `input` into a T (named `elementName` when not empty) and checks
// that every way of writing it keeps the document.
template <class T>
void ExpectGeneratedRoundTripOrThrow(const std::string& input, const std::string& elementName,
                                     const std::string& xmllint, const std::string& schema, const std::string& name) {
  using namespace KoXmlLib10;
  const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext;
  auto make = [&] { return elementName.empty() ? CSmartPtr<T>(new T) : CSmartPtr<T>(new T(elementName.c_str())); };
  CSmartPtr<T> doc = make();
  doc->FromXml(input.c_str(), ctx);
  const std::string text = doc->ToXml(false, false, EOLTypeLF, ctx);
  EXPECT_EQ(CanonicalTree(text), CanonicalTree(input)) << name << ":\n" << text;
  EXPECT_TRUE(ValidAgainstSchema(xmllint, text, schema, name)) << name << ":\n" << text;
  for (CompressionType compression : {CompressionTypeNone, CompressionTypeGzip}) {
    // A tiny document may not compress to anything smaller: the library
    // refuses it, and there is nothing to round-trip.
    CBinaryData stream;
    try {
      stream = doc->ToFastInfosetStream(FInfoDeclNone, ctx, compression);
    } catch (const CKoException& e) {
      if (compression != CompressionTypeNone && e.GetFullMessage().rfind("Failed to compress data", 0) == 0) continue;
      throw;
    }
    CSmartPtr<T> fi = make();
    fi->FromXmlStream(stream, ctx);
    EXPECT_EQ(fi->ToXml(false, false, EOLTypeLF, ctx), text) << name << ": Fast Infoset, compression " << compression;
    CSmartPtr<T> gz = make();
    gz->FromXmlStream(doc->ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, ctx, compression), ctx);
    EXPECT_EQ(gz->ToXml(false, false, EOLTypeLF, ctx), text) << name << ": XML text, compression " << compression;
  }
}

template <class T>
void ExpectGeneratedRoundTrip(const std::string& input, const std::string& elementName, const std::string& xmllint,
                              const std::string& schema, const std::string& name) {
  try {
    ExpectGeneratedRoundTripOrThrow<T>(input, elementName, xmllint, schema, name);
  } catch (const KoXmlLib10::CKoException& e) {
    ADD_FAILURE() << name << ": " << e.GetFullMessage();
  }
}

#endif
