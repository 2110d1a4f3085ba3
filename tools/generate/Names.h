// Deterministic C++ names for schema names.
#ifndef KOXML_TOOLS_GENERATE_NAMES_H
#define KOXML_TOOLS_GENERATE_NAMES_H

#include <initializer_list>
#include <set>
#include <string>

namespace koxml::generate {

std::string Lower(std::string s);
// A C++ identifier for any text: letters and digits kept, other characters
// dropped or replaced, keywords suffixed with an underscore.
std::string Identifier(const std::string& text);
// UpperCamel from XML names: "line-item_no" gives "LineItemNo".
std::string UpperCamel(const std::string& name);
std::string LowerCamel(const std::string& name);
std::string Plural(const std::string& name);
// The enumerator for an enumeration value.
std::string EnumIdentifier(const std::string& value);
bool IsKeyword(const std::string& word);

// Names that must differ from each other even in case (they become file
// names too).
class NameSet {
 public:
  bool Taken(const std::string& name) const { return m_used.count(Lower(name)) != 0; }
  void Reserve(const std::string& name) { m_used.insert(Lower(name)); }
  // `wanted`, or with the first suffix that frees it, or with a number.
  std::string Unique(const std::string& wanted, std::initializer_list<const char*> suffixes);

 private:
  std::set<std::string> m_used;
};

}  // namespace koxml::generate

#endif
