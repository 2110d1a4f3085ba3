#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <functional>
#include <map>
#include <string>

#include "support/Trees.h"

using namespace KoXmlLib10;

namespace {

const char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

// What the factory functions make of each child of the document element:
// "name -> type name {namespace}".
std::map<std::string, std::string> Resolved(const CXmlDocument& doc) {
  std::map<std::string, std::string> out;
  for (CXmlElement* e = doc.GetDocumentElement()->GetFirstElement(); e; e = e->GetNextSiblingElement())
    out[e->GetLocalName()] = CClassfactoryBase::GetElementType(e) + " {" +
                             CClassfactoryBase::GetElementTypeNamespaceUri(e) + "}";
  return out;
}

TEST(ClassFactory, PrefixesDeclaredAnywhereInScopeUndeclaredAndAbsent) {
  CXmlDocument doc;
  ASSERT_TRUE(LoadText(doc,
                       "<r xmlns='urn:d' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns:t='urn:root'>"
                       "<a xmlns:p='urn:v'/>"
                       "<b xsi:type='p:Car'/>"           // declared elsewhere in the document
                       "<c xsi:type='Car'/>"             // no prefix: the element's own namespace
                       "<d xsi:type='q:Car'/>"           // never declared
                       "<e/>"                            // no xsi:type
                       "<f xmlns:a='urn:two' xsi:type='a:b:c'/>"  // two colons
                       "<g xmlns:s='urn:s1' xsi:type='s:Car'/>"   // one prefix, two namespaces in siblings
                       "<h xmlns:s='urn:s2' xsi:type='s:Car'/>"
                       "<i xmlns:t='urn:other' xsi:type='t:Car'/>"  // rebinds the root's prefix
                       "<j xsi:type='t:Car'/>"           // the root's binding, whatever was declared last
                       "<k xmlns:x='urn:x'><x:l xsi:type='x:Car'/></k>"
                       "<m xmlns='urn:m' xsi:type='Car'/>"
                       "</r>"));
  EXPECT_EQ(Resolved(doc), (std::map<std::string, std::string>{
                               {"a", " {urn:d}"},
                               {"b", "Car {urn:v}"},
                               {"c", "Car {urn:d}"},
                               {"d", "Car {urn:d}"},
                               {"e", " {urn:d}"},
                               {"f", "b:c {urn:two}"},
                               {"g", "Car {urn:s1}"},
                               {"h", "Car {urn:s2}"},
                               {"i", "Car {urn:other}"},
                               {"j", "Car {urn:root}"},
                               {"k", " {urn:d}"},
                               {"m", "Car {urn:m}"},
                           }));
  const CXmlElement* l = doc.GetDocumentElement()->GetFirstElement();
  while (l->GetLocalName() != "k") l = l->GetNextSiblingElement();
  EXPECT_EQ(CClassfactoryBase::GetElementTypeNamespaceUri(l->GetFirstElement()), "urn:x");
  EXPECT_THROW(CClassfactoryBase::GetElementType(nullptr), CKoInvalidParamException);
}

// ---- the same through our own writers, text and Fast Infoset ---------------------------

// The writers choose the prefixes: `elsewhere` is the one that element a
// got for urn:w in its own scope, used by b outside that scope.
void Build(CXmlWriter& w, const std::string& elsewhere) {
  w.SetDefaultNamespace("urn:d");
  w.AddNamespace("xsi", kXsi);
  w.AddNamespace("p", "urn:v");
  w.WriteStartElement("r", "urn:d");
  auto typed = [&](const char* name, const std::string& value) {
    w.WriteStartElement(name, "urn:d");
    if (!value.empty()) w.WriteAttributeString("type", kXsi, value, ItemType_string);
    w.WriteEndElement();
  };
  auto typeAttribute = [&](const char* name, const char* typeNamespace) {
    w.WriteStartElement(name, "urn:d");
    w.WriteAttributeType(typeNamespace, "Car", ItemType_string);
    w.WriteEndElement();
  };
  typeAttribute("a", "urn:w");
  typed("b", elsewhere + ":Car");
  typed("c", "Car");
  typed("d", "ZZZ:Car");
  typed("e", "");
  typed("f", "p:b:c");
  typeAttribute("g", "urn:s1");
  typeAttribute("h", "urn:s2");
  typed("i", "p:Car");
  w.WriteEndElement();
}

struct Format {
  const char* name;
  std::function<std::string(const std::string& elsewhere)> write;
};

std::string WrittenAsText(const std::string& elsewhere) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.Open();
  Build(writer, elsewhere);
  writer.Close();
  return std::string(stream.GetText(), stream.GetLength());
}

std::string WrittenAsFastInfoset(const std::string& elsewhere) {
  CFastInfosetContext context;
  CBinaryStream stream;
  {
    CFastInfosetWriter writer(context, stream);
    writer.Open();
    writer.WriteStartDocument(FInfoDeclNone);
    Build(writer, elsewhere);
    writer.WriteEndDocument();
    writer.Close();
  }
  CBinaryData bytes = stream.GetBinaryStream();
  return std::string(reinterpret_cast<const char*>(bytes.GetData()), bytes.GetLength());
}

// The prefix of the xsi:type value of the child named `name`.
std::string TypePrefix(const CXmlDocument& doc, const std::string& name) {
  for (CXmlElement* e = doc.GetDocumentElement()->GetFirstElement(); e; e = e->GetNextSiblingElement())
    if (e->GetLocalName() == name) {
      const std::string& value = e->GetAttribute("type", kXsi);
      return value.substr(0, value.find(':'));
    }
  return "<no " + name + ">";
}

class ClassFactoryThroughWriters : public ::testing::TestWithParam<Format> {};

TEST_P(ClassFactoryThroughWriters, EachTypeResolvesInItsOwnScope) {
  std::string elsewhere;
  {
    CXmlDocument first;
    ASSERT_TRUE(LoadBytes(first, GetParam().write("unused")));
    elsewhere = TypePrefix(first, "a");
    // Sibling scopes bind one generated prefix to different namespaces.
    ASSERT_EQ(TypePrefix(first, "g"), TypePrefix(first, "h"));
    ASSERT_EQ(TypePrefix(first, "h"), elsewhere);
  }
  CXmlDocument doc;
  ASSERT_TRUE(LoadBytes(doc, GetParam().write(elsewhere)));
  EXPECT_EQ(Resolved(doc), (std::map<std::string, std::string>{
                               {"a", "Car {urn:w}"},
                               // Not in scope at b: the document-wide map, whose
                               // binding of the prefix is its last declaration (h's).
                               {"b", "Car {urn:s2}"},
                               {"c", "Car {urn:d}"},
                               {"d", "Car {urn:d}"},
                               {"e", " {urn:d}"},
                               {"f", "b:c {urn:v}"},
                               {"g", "Car {urn:s1}"},
                               {"h", "Car {urn:s2}"},
                               {"i", "Car {urn:v}"},
                           }));
}

INSTANTIATE_TEST_SUITE_P(Both, ClassFactoryThroughWriters,
                         ::testing::Values(Format{"Text", WrittenAsText}, Format{"FastInfoset", WrittenAsFastInfoset}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
