// The generator's front half on small schemas written by the tests: errors
// that name file and line, names that never collide, output that does not
// depend on anything but the input.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "Binding.h"
#include "Emit.h"
#include "Names.h"
#include "Schema.h"
#include "SourceScan.h"

using namespace koxml::generate;

namespace {

std::string WriteSchema(const std::string& name, const std::string& body) {
  const std::string path = name;
  std::ofstream(path, std::ios::binary) << body;
  return path;
}

std::string Xsd(const std::string& content, const std::string& extra = "") {
  return "<?xml version='1.0'?>\n<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t'\n"
         "  targetNamespace='urn:t' elementFormDefault='qualified'" + extra + ">\n" + content + "</xs:schema>\n";
}

std::map<std::string, std::string> Generate(const std::vector<std::string>& files, BindingModel& model,
                                            MappingOptions mapping = {}) {
  SchemaSet set;
  LoadSchemas(files, LoadOptions{}, set);
  MapSchemas(set, files, mapping, model);
  return Emit(model, EmitOptions{});
}

TEST(SourceScan, FindsLinesAndDeclarationsOfStartTags) {
  const auto tags = ScanStartTags(
      "<?xml version='1.0'?>\n<!-- <no/> -->\n<a xmlns:p='urn:p'>\n<![CDATA[<no>]]>\n  <b\n x='>'/><c xmlns='u&amp;v'/></a>");
  ASSERT_EQ(tags.size(), 3u);
  EXPECT_EQ(tags[0].line, 3);
  ASSERT_EQ(tags[0].declarations.size(), 1u);
  EXPECT_EQ(tags[0].declarations[0].second, "urn:p");
  EXPECT_EQ(tags[1].line, 5);
  EXPECT_EQ(tags[2].line, 6);
  EXPECT_EQ(tags[2].declarations[0].first, "");
  EXPECT_EQ(tags[2].declarations[0].second, "u&v");
}

TEST(SchemaLoader, ErrorsNameTheFileAndLine) {
  const std::string path = WriteSchema("bad-type.xsd", Xsd("\n\n  <xs:element name='a' type='t:Missing'/>\n"));
  BindingModel model;
  try {
    Generate({path}, model);
    FAIL() << "no error";
  } catch (const SchemaError& e) {
    EXPECT_NE(std::string(e.what()).find("bad-type.xsd:6: unknown"), std::string::npos) << e.what();
  }
  const std::string undeclared = WriteSchema("bad-prefix.xsd", Xsd("  <xs:element name='a' type='q:x'/>\n"));
  try {
    BindingModel other;
    Generate({undeclared}, other);
    FAIL() << "no error";
  } catch (const SchemaError& e) {
    EXPECT_NE(std::string(e.what()).find("bad-prefix.xsd:4: undeclared prefix 'q'"), std::string::npos) << e.what();
  }
  const std::string remote =
      WriteSchema("remote.xsd", Xsd("  <xs:import namespace='urn:r' schemaLocation='http://example.org/r.xsd'/>\n"));
  try {
    BindingModel other;
    Generate({remote}, other);
    FAIL() << "no error";
  } catch (const SchemaError& e) {
    EXPECT_NE(std::string(e.what()).find("network is never used"), std::string::npos) << e.what();
  }
  const std::string broken = WriteSchema("broken.xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n<a>");
  BindingModel other;
  EXPECT_THROW(Generate({broken}, other), SchemaError);
}

TEST(SchemaLoader, ChameleonIncludeTakesTheIncludersNamespace) {
  WriteSchema("chameleon-part.xsd",
              "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n"
              "  <xs:complexType name='PartType'><xs:sequence><xs:element name='v' type='xs:int'/></xs:sequence>"
              "</xs:complexType>\n</xs:schema>\n");
  const std::string main = WriteSchema(
      "chameleon-main.xsd", Xsd("  <xs:include schemaLocation='chameleon-part.xsd'/>\n"
                                "  <xs:element name='root' type='t:PartType'/>\n"));
  BindingModel model;
  Generate({main}, model);
  ASSERT_EQ(model.classes.size(), 1u);
  EXPECT_EQ(model.classes[0]->typeNamespace, "urn:t");
  EXPECT_EQ(model.classes[0]->cxxName, "CPart");
  EXPECT_EQ(model.classes[0]->defaultElement, "root");
}

TEST(Names, AreCollisionFreeAndDeterministic) {
  const std::string path = WriteSchema(
      "names.xsd",
      Xsd("  <xs:complexType name='Item'><xs:sequence>\n"
          "    <xs:element name='item' type='xs:string'/>\n"
          "    <xs:element name='class' type='xs:string'/>\n"
          "    <xs:element name='Namespace' type='xs:string'/>\n"
          "    <xs:element name='value' type='xs:int'/><xs:element name='Value' type='xs:int'/>\n"
          "  </xs:sequence><xs:attribute name='value'/></xs:complexType>\n"
          "  <xs:complexType name='item'><xs:sequence/></xs:complexType>\n"
          "  <xs:complexType name='ItemType'><xs:sequence/></xs:complexType>\n"
          "  <xs:simpleType name='Kind'><xs:restriction base='xs:string'>\n"
          "    <xs:enumeration value='a-b'/><xs:enumeration value='a_b'/><xs:enumeration value='delete'/>"
          "<xs:enumeration value='1'/>\n"
          "  </xs:restriction></xs:simpleType>\n"));
  BindingModel model;
  const auto first = Generate({path}, model);
  ASSERT_EQ(model.classes.size(), 3u);
  std::set<std::string> classNames;
  for (const auto& c : model.classes) classNames.insert(Lower(c->cxxName));
  EXPECT_EQ(classNames.size(), 3u);
  const ClassModel& item = *model.classes[0];
  std::vector<std::string> properties;
  for (const Member& m : item.elements) properties.push_back(m.property);
  for (const Member& m : item.attributes) properties.push_back(m.property);
  EXPECT_EQ(properties, (std::vector<std::string>{"Item", "Class", "NamespaceValue", "Value", "Value2", "Value3"}));
  ASSERT_EQ(model.enums.size(), 1u);
  EXPECT_EQ(model.enums[0]->identifiers, (std::vector<std::string>{"a_b", "a_b_2", "delete_", "n1"}));
  BindingModel again;
  EXPECT_EQ(Generate({path}, again), first);
}

}  // namespace
