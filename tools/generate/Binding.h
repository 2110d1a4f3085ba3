// The binding model: the C++ classes, enumerations and members that the
// generator emits, with every name decided, built from the schema model.
#ifndef KOXML_TOOLS_GENERATE_BINDING_H
#define KOXML_TOOLS_GENERATE_BINDING_H

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Schema.h"

namespace koxml::generate {

// The facets the run time holds for a simple-typed member.
struct Restrictions {
  std::string pattern;
  int minLength = -1, maxLength = -1, length = -1;
  std::string minInclusive, maxInclusive, minExclusive, maxExclusive;
  bool Empty() const {
    return pattern.empty() && minLength < 0 && maxLength < 0 && length < 0 && minInclusive.empty() &&
           maxInclusive.empty() && minExclusive.empty() && maxExclusive.empty();
  }
};

struct NamespaceModel;

struct EnumModel {
  std::string cxxName;
  NamespaceModel* ns = nullptr;
  std::string origin;  // for the file comment
  std::vector<std::string> values;
  std::vector<std::string> identifiers;
  bool collapse = true;  // leading and trailing whitespace is not significant
};

// How a simple type is held.
struct SimpleMapping {
  int itemType = 23;    // KoXmlLib10::ItemType
  int whitespace = 1;   // CWhitespaceUtils::WhitespaceRule
  Restrictions restrictions;
  EnumModel* enumeration = nullptr;
};

struct ClassModel;

enum class MemberKind { Prim, Enum, Cls, AbsCls, Untyped, AnyAttribute };
enum class Occurrence { Mandatory, Optional, Collection };

struct Member {
  MemberKind kind = MemberKind::Prim;
  Occurrence occurrence = Occurrence::Mandatory;
  std::string xmlName;
  std::string xmlNamespace;
  std::string property;  // UpperCamel, unique in the class and its bases
  SimpleMapping simple;
  ClassModel* cls = nullptr;  // Cls and AbsCls
  int minOccurs = 1, maxOccurs = 1;
  bool nillable = false;
  std::optional<std::string> defaultValue;  // attributes: default or fixed text
  bool fixedValue = false;
  bool contentRequired = false;  // pseudo content that must consume an element
  std::string wildcard;  // Untyped and AnyAttribute: namespace restriction
  std::string comment;
};

struct ClassModel {
  std::string cxxName;  // with the C prefix
  std::string fileBase;
  NamespaceModel* ns = nullptr;
  std::string origin;  // "complex type X", "global element y", ...
  std::string typeName, typeNamespace;
  std::string defaultElement;
  std::string elementNamespace;  // of the element it is written as at the root
  int groupType = 0;             // XmlElementGroupType
  bool pseudo = false;
  bool isAbstract = false;
  ClassModel* base = nullptr;
  std::vector<ClassModel*> derived;
  std::vector<Member> elements, attributes;
  std::optional<SimpleMapping> simpleContent;
  std::string valueProperty = "Value";
  bool nillable = false;
  bool needsCollection = false;
  bool writeTypeAttribute = false;
  // Members of this type may hold a derived class named by xsi:type: the
  // class has an element factory that chooses among itself and its derived
  // classes.
  bool elementFactory = false;
  bool mapped = false;  // content filled in
  std::set<std::string> inherited;  // lower-case property names of the bases
  std::string rootFile;
  // Schema source, for mapping on demand.
  const ComplexType* source = nullptr;
  QName sourceName;
};

struct NamespaceModel {
  std::string uri;
  std::string cxx;       // C++ namespace, possibly nested with ::
  std::string fileBase;  // <fileBase>Namespace.h
  std::vector<ClassModel*> classes;
  std::vector<EnumModel*> enums;
};

struct Loss {
  Location where;
  std::string text;
};

struct BindingModel {
  std::vector<std::unique_ptr<NamespaceModel>> namespaces;
  std::vector<std::unique_ptr<ClassModel>> classes;
  std::vector<std::unique_ptr<EnumModel>> enums;
  std::vector<Loss> losses;
  // Umbrella header per schema file given on the command line: its file
  // name and the headers it includes.
  std::vector<std::pair<std::string, std::vector<std::string>>> umbrellas;
};

struct MappingOptions {
  std::map<std::string, std::string> namespaceMap;  // URI -> C++ namespace
  std::vector<std::string> roots;                   // global elements to start from; empty: everything
};

void MapSchemas(const SchemaSet& set, const std::vector<std::string>& rootFiles, const MappingOptions& options,
                BindingModel& model);

}  // namespace koxml::generate

#endif
