#ifndef KOXMLLIB10_FACETS_H
#define KOXMLLIB10_FACETS_H

#include <string>

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// The XSD facets of a simple-typed member. Bounds are kept as the lexical
// text of the member's type and converted whenever a value is checked; a
// negative length facet and an empty text mean "not set".
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

  const std::string& GetPattern() const { return m_pattern; }
  void SetPattern(const std::string& pattern) { m_pattern = pattern; }
  int GetMinLength() const { return m_minLength; }
  void SetMinLength(int minLength) { m_minLength = minLength; }
  int GetMaxLength() const { return m_maxLength; }
  void SetMaxLength(int maxLength) { m_maxLength = maxLength; }
  const std::string& GetMinInclusive() const { return m_minInclusive; }
  void SetMinInclusive(const std::string& bound) { m_minInclusive = bound; }
  const std::string& GetMaxInclusive() const { return m_maxInclusive; }
  void SetMaxInclusive(const std::string& bound) { m_maxInclusive = bound; }
  const std::string& GetMinExclusive() const { return m_minExclusive; }
  void SetMinExclusive(const std::string& bound) { m_minExclusive = bound; }
  const std::string& GetMaxExclusive() const { return m_maxExclusive; }
  void SetMaxExclusive(const std::string& bound) { m_maxExclusive = bound; }
  int GetLength() const { return m_length; }
  void SetLength(int length) { m_length = length; }

 private:
  std::string m_pattern;
  int m_minLength;
  int m_maxLength;
  std::string m_minInclusive;
  std::string m_maxInclusive;
  std::string m_minExclusive;
  std::string m_maxExclusive;
  int m_length;
};

// True when the whole of value matches the xs:pattern regular expression
// (XSD dialect). Throws CKoException when the pattern does not compile.
KOXML_API bool TestRegEx(std::string pattern, std::string value);

}  // namespace KoXmlLib10

#endif
