// The reader accepts both placements of an attribute list's terminator: in an
// octet of its own (what the writer emits) and shared with the element's
// terminator in one FF (what earlier writers emitted, and what X.891 allows).
#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <cstdio>
#include <sstream>
#include <string>

#include "support/Trees.h"

using namespace KoXmlLib10;

namespace {

std::string FromHex(const std::string& hex) {
  std::istringstream in(hex);
  std::string bytes;
  unsigned int octet;
  while (in >> std::hex >> octet) bytes += static_cast<char>(octet);
  return bytes;
}

std::string HexOf(const CBinaryData& data) {
  std::string hex;
  char octet[4];
  for (unsigned long i = 0; i < data.GetLength(); ++i) {
    std::snprintf(octet, sizeof octet, i ? " %02X" : "%02X", data.GetData()[i]);
    hex += octet;
  }
  return hex;
}

std::string Loaded(const std::string& hex) {
  std::string bytes = FromHex(hex);
  CXmlDocument doc;
  try {
    doc.LoadXmlStream(reinterpret_cast<unsigned char*>(&bytes[0]), static_cast<unsigned long>(bytes.size()));
  } catch (const CKoException& e) {
    return "failed: " + e.GetMessage();
  }
  // A document the Fast Infoset reader rejects may still load as text; that is not a pass.
  const CXmlElement* root = doc.GetDocumentElement();
  return root ? Dump(root) : "no document element";
}

struct Forms {
  const char* tree;
  const char* current;  // attribute lists end in F0 of their own
  const char* older;    // attribute list and element end shared in one FF
};

const Forms kForms[] = {
    // <r a="v"/>
    {"(r{} a{}=v[])",
     "E0 00 00 01 00 78 F0 3C 00 72 78 00 61 40 76 F0 FF",
     "E0 00 00 01 00 78 F0 3C 00 72 78 00 61 40 76 FF F0"},
    // <r><c x="1"/><c x="1"/></r>
    {"(r{}[](c{} x{}=1[])(c{} x{}=1[]))",
     "E0 00 00 01 00 38 F0 3C 00 72 7C 00 63 78 00 78 40 31 F0 F0 41 00 80 F0 FF F0",
     "E0 00 00 01 00 38 F0 3C 00 72 7C 00 63 78 00 78 40 31 FF 41 00 80 FF FF"},
    // <r><c x="1"/>t</r>: text after an element whose attributes ended it
    {"(r{}[t](c{} x{}=1[]))",
     "E0 00 00 01 00 38 F0 3C 00 72 7C 00 63 78 00 78 40 31 F0 F0 90 74 FF",
     "E0 00 00 01 00 38 F0 3C 00 72 7C 00 63 78 00 78 40 31 FF 90 74 FF"},
};

}  // namespace

TEST(FastInfosetTerminatorForms, BothPlacementsReadAsTheSameTree) {
  for (const Forms& f : kForms) {
    EXPECT_EQ(Loaded(f.current), f.tree) << f.current;
    EXPECT_EQ(Loaded(f.older), f.tree) << f.older;
  }
}

TEST(FastInfosetTerminatorForms, TheWriterEmitsTheCurrentForm) {
  // The same three documents through the writer give exactly the current
  // octets (the writer's own tests cover the other placements of terminators).
  const auto document = [](bool attribute, int children, bool text) {
    CFastInfosetContext context;
    CBinaryStream stream;
    CFastInfosetWriter w(context, stream);
    w.WriteStartDocument(FInfoDeclNone);
    w.WriteStartElement("r", "");
    if (attribute) w.WriteAttributeString("a", "", "v", ItemType_string);
    for (int i = 0; i < children; ++i) {
      w.WriteStartElement("c", "");
      w.WriteAttributeString("x", "", "1", ItemType_string);
      w.WriteEndElement();
    }
    if (text) w.WriteString("t", ItemType_string);
    w.WriteEndElement();
    w.WriteEndDocument();
    return HexOf(stream.GetBinaryStream());
  };
  EXPECT_EQ(document(true, 0, false), kForms[0].current);
  EXPECT_EQ(document(false, 2, false), kForms[1].current);
  EXPECT_EQ(document(false, 1, true), kForms[2].current);
}
