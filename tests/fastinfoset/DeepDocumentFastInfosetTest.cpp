// Writing Fast Infoset costs O(elements) however deep the nesting.
#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>

#include "support/DeepDocument.h"

using namespace KoXmlLib10;

namespace {

std::string WriteDeep(int depth) {
  CFastInfosetContext context;
  CBinaryStream stream;
  CFastInfosetWriter writer(context, stream);
  writer.WriteStartDocument(FInfoDeclNone);
  DeepDocument::Write(writer, depth);
  writer.WriteEndDocument();
  const CBinaryData data = stream.GetBinaryStream();
  return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

size_t Count(const std::string& text, const std::string& piece) {
  size_t count = 0;
  for (size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + piece.size())) ++count;
  return count;
}

}  // namespace

TEST(DeepDocumentFastInfoset, TwoHundredThousandLevelsAreWrittenExactly) {
  constexpr int kDepth = 200000;
  const std::string octets = WriteDeep(kDepth);
  // From the second node on, every start is the same four octets: the name by
  // index with attributes (41), the attribute name (00) and value (80) by
  // index, and the end of the attribute list (F0).
  const std::string repeated("\x41\x00\x80\xF0", 4);
  const size_t first = octets.find(repeated);
  ASSERT_NE(first, std::string::npos);
  EXPECT_EQ(Count(octets, repeated), static_cast<size_t>(kDepth - 1));
  // Then the text, and the terminators of every element and of the document,
  // two to an octet.
  const std::string text("\x92\x01leaf", 6);
  const size_t leaf = first + repeated.size() * (kDepth - 1);
  ASSERT_EQ(octets.compare(leaf, text.size(), text), 0);
  EXPECT_EQ(octets.substr(leaf + text.size()), std::string((kDepth + 2) / 2, '\xFF'));
}
