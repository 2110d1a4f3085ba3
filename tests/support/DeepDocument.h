// A document of `depth` nested elements, written through any writer and
// checked after loading: the shape recursive types give generated objects.
#ifndef TESTS_SUPPORT_DEEPDOCUMENT_H
#define TESTS_SUPPORT_DEEPDOCUMENT_H

#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>

namespace DeepDocument {

constexpr char kNamespace[] = "urn:deep";
constexpr char kLeafText[] = "leaf";

// <d:root xmlns:d="urn:deep"> holding `depth` nested <d:node n="1">, the
// innermost with a text.
inline void Write(KoXmlLib10::CXmlWriter& writer, int depth) {
  using KoXmlLib10::ItemType_string;
  const std::string ns = kNamespace, node = "node", name = "n", value = "1", none;
  writer.AddNamespace("d", ns);
  writer.WriteStartElement("root", ns);
  for (int i = 0; i < depth; ++i) {
    writer.WriteStartElement(node, ns);
    writer.WriteAttributeString(name, none, value, ItemType_string);
  }
  writer.WriteString(kLeafText, ItemType_string);
  for (int i = 0; i <= depth; ++i) writer.WriteEndElement();
}

// Checks a loaded document against Write(writer, depth).
inline ::testing::AssertionResult HasShape(const KoXmlLib10::CXmlDocument& doc, int depth) {
  const KoXmlLib10::CXmlElement* e = doc.GetDocumentElement();
  if (!e || e->GetLocalName() != "root" || e->GetNamespaceURI() != kNamespace)
    return ::testing::AssertionFailure() << "no root d:root";
  for (int level = 1; level <= depth; ++level) {
    const KoXmlLib10::CXmlElement* child = e->GetFirstElement();
    if (!child || child->GetNextSiblingElement())
      return ::testing::AssertionFailure() << "level " << level << ": not exactly one child";
    if (child->GetLocalName() != "node" || child->GetNamespaceURI() != kNamespace)
      return ::testing::AssertionFailure() << "level " << level << ": " << child->GetLocalName();
    if (child->GetAttributes().size() != 1 || child->GetAttribute("n", "") != "1")
      return ::testing::AssertionFailure() << "level " << level << ": attributes differ";
    if (level < depth && !child->GetText().empty())
      return ::testing::AssertionFailure() << "level " << level << ": unexpected text";
    e = child;
  }
  if (e->GetFirstElement()) return ::testing::AssertionFailure() << "deeper than " << depth;
  if (e->GetText() != kLeafText) return ::testing::AssertionFailure() << "leaf text: " << e->GetText();
  return ::testing::AssertionSuccess();
}

}  // namespace DeepDocument

#endif
