#ifndef KOXML_TESTS_SUPPORT_DOCUMENTS_H
#define KOXML_TESTS_SUPPORT_DOCUMENTS_H

// One XML text in every form the readers accept: the text itself, gzip- and
// zlib-compressed, and the same tree as Fast Infoset, plain and compressed.
// Lets a reading test run the same document through every reader.

#include <string>
#include <vector>

#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/ClassFactory.h"
#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/FastInfosetContext.h"
#include "KoXmlLib10/FastInfosetWriter.h"
#include "KoXmlLib10/KoZip.h"
#include "KoXmlLib10/Streams.h"
#include "KoXmlLib10/XmlDocument.h"

namespace testsupport {

struct EncodedDocument {
  std::string name;
  KoXmlLib10::CBinaryData bytes;
};

namespace detail {

// Writes `element` and its subtree; namespace declarations and schema
// location attributes are left out (the writer declares namespaces itself),
// xsi:type is written as the type it names, its prefix resolved in scope.
inline void WriteTree(KoXmlLib10::CXmlWriter& writer, const KoXmlLib10::CXmlElement* element) {
  writer.WriteStartElement(element->GetLocalName(), element->GetNamespaceURI());
  auto* mutableElement = const_cast<KoXmlLib10::CXmlElement*>(element);
  if (!KoXmlLib10::CClassfactoryBase::GetElementType(mutableElement).empty())
    writer.WriteAttributeType(KoXmlLib10::CClassfactoryBase::GetElementTypeNamespaceUri(mutableElement),
                              KoXmlLib10::CClassfactoryBase::GetElementType(mutableElement),
                              KoXmlLib10::ItemType_string);
  for (const KoXmlLib10::CXmlAttribute* attribute : element->GetAttributes()) {
    if (attribute->IsNamespaceAttribute()) continue;
    writer.WriteAttributeString(attribute->GetLocalName(), attribute->GetNamespaceURI(), attribute->GetValue(),
                                KoXmlLib10::ItemType_string);
  }
  if (!element->GetFirstElement() && !element->GetText().empty())
    writer.WriteString(element->GetText(), KoXmlLib10::ItemType_string);
  for (const KoXmlLib10::CXmlElement* child = element->GetFirstElement(); child;
       child = child->GetNextSiblingElement())
    WriteTree(writer, child);
  writer.WriteEndElement();
}

inline KoXmlLib10::CBinaryData Compressed(KoXmlLib10::CBinaryData bytes, KoXmlLib10::CompressionType type) {
  KoXmlLib10::CKoZip::CompressData(bytes, type);
  return bytes;
}

}  // namespace detail

// `xml` must be a document whose elements hold either text or children.
// Compression refuses data that does not shrink, so every form carries
// padding (a comment, or a namespace declaration) that makes it compressible.
inline std::vector<EncodedDocument> EveryEncoding(const std::string& xml) {
  using namespace KoXmlLib10;
  const std::string padding(256, 'x');
  const std::string padded = "<!--" + padding + "-->" + xml;
  CBinaryData text;
  text.Append(padded);

  CXmlDocument document;
  document.LoadXml(xml.c_str());
  CFastInfosetContext fiContext;
  CBinaryStream stream;
  {
    CFastInfosetWriter writer(fiContext, stream);
    writer.Open();
    writer.WriteStartDocument(FInfoDeclNone);
    // Fast Infoset output has no comments: the padding is an unused
    // namespace declaration instead.
    writer.AddNamespace("pad", "urn:" + padding);
    detail::WriteTree(writer, document.GetDocumentElement());
    writer.WriteEndDocument();
    writer.Close();
  }
  const CBinaryData fi = stream.GetBinaryStream();
  return {{"text", text},
          {"text gzip", detail::Compressed(text, CompressionTypeGzip)},
          {"text zlib", detail::Compressed(text, CompressionTypeZlib)},
          {"fast infoset", fi},
          {"fast infoset gzip", detail::Compressed(fi, CompressionTypeGzip)},
          {"fast infoset zlib", detail::Compressed(fi, CompressionTypeZlib)}};
}

}  // namespace testsupport

#endif
