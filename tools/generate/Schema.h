// The schema model the generator works on: what the XML Schema documents
// declare, with every reference still by name, and the loader that builds it
// from schema files with the library's own document reader.
#ifndef KOXML_TOOLS_GENERATE_SCHEMA_H
#define KOXML_TOOLS_GENERATE_SCHEMA_H

#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace koxml::generate {

inline constexpr char kXsdNamespace[] = "http://www.w3.org/2001/XMLSchema";

struct QName {
  std::string ns;
  std::string name;
  bool empty() const { return name.empty(); }
  bool operator<(const QName& o) const { return ns != o.ns ? ns < o.ns : name < o.name; }
  bool operator==(const QName& o) const { return ns == o.ns && name == o.name; }
  bool operator!=(const QName& o) const { return !(*this == o); }
  std::string ToString() const { return ns.empty() ? name : "{" + ns + "}" + name; }
};

struct Location {
  std::string file;
  int line = 0;
  std::string ToString() const { return line > 0 ? file + ":" + std::to_string(line) : file; }
};

// A fault in the schemas; the message starts with the file and line.
struct SchemaError : std::runtime_error {
  SchemaError(const Location& where, const std::string& what) : std::runtime_error(where.ToString() + ": " + what) {}
};

inline constexpr int kUnbounded = -1;

// The facets of one restriction step.
struct Facets {
  std::vector<std::string> patterns;  // alternatives of one step
  std::vector<std::string> enumerations;
  std::optional<std::string> minInclusive, maxInclusive, minExclusive, maxExclusive;
  std::optional<int> length, minLength, maxLength, totalDigits, fractionDigits;
  std::optional<std::string> whiteSpace;
  Location where;
};

struct SimpleType {
  enum class Variety { Restriction, List, Union };
  QName name;  // empty when anonymous
  Location where;
  Variety variety = Variety::Restriction;
  QName base;                                 // restriction base by name
  std::unique_ptr<SimpleType> anonymousBase;  // or given inline
  Facets facets;
};

struct ComplexType;

struct Wildcard {
  std::string namespaces = "##any";
  std::string processContents = "strict";
  Location where;
};

struct ModelGroup;

struct ElementDecl {
  QName name;  // namespace already decided by form/elementFormDefault
  Location where;
  QName type;  // by name; empty with an anonymous type or none at all
  std::unique_ptr<SimpleType> anonymousSimple;
  std::unique_ptr<ComplexType> anonymousComplex;
  QName ref;  // a reference to a global element (local particles only)
  bool nillable = false;
  bool isAbstract = false;
  std::optional<std::string> defaultValue, fixedValue;
  QName substitutionGroup;
  bool global = false;
  bool hasIdentityConstraints = false;
};

struct Particle {
  enum class Kind { Element, Group, GroupRef, Any };
  Kind kind = Kind::Element;
  int minOccurs = 1;
  int maxOccurs = 1;
  Location where;
  std::unique_ptr<ElementDecl> element;
  std::unique_ptr<ModelGroup> group;
  QName ref;  // named group
  Wildcard any;
};

struct ModelGroup {
  enum class Kind { Sequence, Choice, All };
  Kind kind = Kind::Sequence;
  Location where;
  std::vector<Particle> particles;
};

struct AttributeDecl {
  QName name;
  Location where;
  QName type;
  std::unique_ptr<SimpleType> anonymousSimple;
  QName ref;
  std::string use = "optional";
  std::optional<std::string> defaultValue, fixedValue;
};

// Attributes as declared in a type or an attribute group.
struct AttributeSet {
  std::vector<AttributeDecl> attributes;
  std::vector<std::pair<QName, Location>> groupRefs;
  std::optional<Wildcard> anyAttribute;
};

struct ComplexType {
  enum class Content { Elements, Simple };
  enum class Derivation { None, Extension, Restriction };
  QName name;  // empty when anonymous
  Location where;
  bool isAbstract = false;
  bool mixed = false;
  Content content = Content::Elements;
  Derivation derivation = Derivation::None;
  QName base;
  // Elements content: the particle (null when empty), kept with its occurrence.
  std::unique_ptr<Particle> particle;
  // Simple content restriction: the facets and an inline type.
  std::unique_ptr<SimpleType> simpleRestriction;
  AttributeSet attributes;
};

struct NamedGroup {
  QName name;
  Location where;
  std::unique_ptr<ModelGroup> group;
};

struct NamedAttributeGroup {
  QName name;
  Location where;
  AttributeSet attributes;
};

// One schema document as loaded.
struct SchemaDocument {
  std::string path;
  std::string targetNamespace;
  bool elementsQualified = false;
  bool attributesQualified = false;
};

// Everything the given schemas and what they include, import and redefine
// declare, by qualified name.
struct SchemaSet {
  std::vector<std::unique_ptr<SchemaDocument>> documents;
  std::map<QName, std::unique_ptr<SimpleType>> simpleTypes;
  std::map<QName, std::unique_ptr<ComplexType>> complexTypes;
  std::map<QName, std::unique_ptr<ElementDecl>> elements;
  std::map<QName, std::unique_ptr<AttributeDecl>> attributes;
  std::map<QName, std::unique_ptr<NamedGroup>> groups;
  std::map<QName, std::unique_ptr<NamedAttributeGroup>> attributeGroups;
  // Global elements in the order they were declared (files in load order).
  std::vector<QName> elementOrder;
  std::vector<QName> complexTypeOrder;
  std::vector<QName> simpleTypeOrder;
  // Which top-level file each global element came from (for the umbrella headers).
  std::map<QName, std::string> elementRoot;
  std::map<QName, std::string> typeRoot;
  // Constructs mapped with a loss while loading (identity constraints ...).
  std::vector<std::pair<Location, std::string>> notes;
};

struct LoadOptions {
  // Imports without a usable schemaLocation: namespace URI to file.
  std::map<std::string, std::string> locationMap;
};

// Loads every schema file and what it includes, imports and redefines.
// Never touches the network: a location that is not a local file is an error
// unless the location map names a file for its namespace.
void LoadSchemas(const std::vector<std::string>& files, const LoadOptions& options, SchemaSet& set);

}  // namespace koxml::generate

#endif
