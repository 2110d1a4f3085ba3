#ifndef KOXMLLIB10_FACETS_H
#define KOXMLLIB10_FACETS_H

#include <string>

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// The XSD facets of a simple-typed member, filled in directly by generated
// code. Bounds are kept as the lexical text of the member's type and
// converted whenever a value is checked; a negative length facet and an
// empty text mean "not set", which is what a default-constructed value holds.
class KOXML_API CPrimitiveRestrictions {
 public:
  CPrimitiveRestrictions();
  // Arguments in the order of the fields; null texts count as empty.
  CPrimitiveRestrictions(const char* pattern, int minLength, int maxLength, const char* minInclusive,
                         const char* maxInclusive, const char* minExclusive, const char* maxExclusive,
                         int length);
  CPrimitiveRestrictions(const CPrimitiveRestrictions& other) = default;
  CPrimitiveRestrictions& operator=(const CPrimitiveRestrictions& other) = default;
  virtual ~CPrimitiveRestrictions();

  std::string pattern;
  int minLength = -1;
  int maxLength = -1;
  std::string minInclusive;
  std::string maxInclusive;
  std::string minExclusive;
  std::string maxExclusive;
  int length = -1;
};

// True when the whole of value matches the xs:pattern regular expression
// (XSD dialect). Throws CKoException when the pattern does not compile.
KOXML_API bool TestRegEx(std::string pattern, std::string value);

}  // namespace KoXmlLib10

#endif
