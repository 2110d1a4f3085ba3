// Writing costs O(elements) however deep the nesting: a recursive type nests
// generated objects as deep as the user's data.
#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <algorithm>
#include <string>

#include "support/DeepDocument.h"

using namespace KoXmlLib10;

namespace {

std::string WriteDeep(int depth) {
  CTextStream stream(XmlEncoding_UTF8);
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(false);  // indented, the tabs alone grow with the square of the depth
  DeepDocument::Write(writer, depth);
  writer.Close();
  return stream.GetText();
}

}  // namespace

TEST(DeepDocumentText, TwoHundredThousandLevelsAreWrittenExactly) {
  constexpr int kDepth = 200000;
  const std::string text = WriteDeep(kDepth);
  std::string expected = "<d:root xmlns:d=\"urn:deep\">";
  expected.reserve(text.size());
  for (int i = 0; i < kDepth; ++i) expected += "<d:node n=\"1\">";
  expected += "leaf";
  for (int i = 0; i < kDepth; ++i) expected += "</d:node>";
  expected += "</d:root>";
  // Compared by size first, so that a mismatch does not print megabytes.
  ASSERT_EQ(text.size(), expected.size());
  EXPECT_TRUE(text == expected) << "first difference at byte "
                                << std::mismatch(text.begin(), text.end(), expected.begin()).first - text.begin();
}

TEST(DeepDocumentText, RoundTripsJustUnderTheReadersDepthLimit) {
  // The root is one level more than the nodes.
  const int depth = static_cast<int>(CXmlDocument::MAX_ELEMENT_DEPTH) - 1;
  std::string text = WriteDeep(depth);
  CXmlDocument doc;
  doc.LoadXmlStream(reinterpret_cast<unsigned char*>(&text[0]), static_cast<unsigned long>(text.size()));
  EXPECT_TRUE(DeepDocument::HasShape(doc, depth));
}

TEST(DeepDocumentText, ANamespaceDeclaredDeepIsInScopeOnlyBelow) {
  // Scopes are found without walking the chain: a declaration made deep down
  // serves the descendants and is gone for the siblings of its element.
  const std::string text = []() -> std::string {
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.SetFormat(false);
    writer.WriteStartElement("r", "");
    for (int i = 0; i < 1000; ++i) writer.WriteStartElement("e", "");
    writer.WriteStartElement("a", "urn:x");  // declares AA here
    writer.WriteStartElement("b", "urn:x");  // inherits it
    writer.WriteEndElement();
    writer.WriteEndElement();
    writer.WriteStartElement("c", "urn:x");  // the sibling declares it again
    writer.WriteEndElement();
    for (int i = 0; i <= 1000; ++i) writer.WriteEndElement();
    return stream.GetText();
  }();
  EXPECT_NE(text.find("<e><AA:a xmlns:AA=\"urn:x\"><AA:b/></AA:a><AA:c xmlns:AA=\"urn:x\"/></e>"),
            std::string::npos);
}
