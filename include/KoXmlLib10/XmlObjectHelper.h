#ifndef KOXMLLIB10_XMLOBJECTHELPER_H
#define KOXMLLIB10_XMLOBJECTHELPER_H

#include <string>

#include "KoXmlLib10/BigInteger.h"
#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/DateTime.h"
#include "KoXmlLib10/DateTimeSpan.h"
#include "KoXmlLib10/Decimal.h"
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/Facets.h"
#include "KoXmlLib10/ItemType.h"
#include "KoXmlLib10/Variant.h"

namespace KoXmlLib10 {

class CXmlSerializationContext;
class CXmlElement;

// Static helpers of the binding engine. The facet checks throw CKoException
// "Invalid Value for <name> [<value>]" for the first facet the value breaks;
// `name` is the member's element or attribute name.
class KOXML_API CXmlObjectHelper {
 public:
  // True when namespaceUri passes the wildcard restriction: a space-separated
  // list of URIs and the keywords ##any, ##other, ##local, ##targetNamespace.
  static bool IsNamespaceValid(const std::string& namespaceUri, const std::string& restriction,
                               const std::string& targetNamespace);
  // Throws CKoInvalidNamespaceException when IsNamespaceValid is false.
  static void TestNamespace(const std::string& namespaceUri, const std::string& restriction,
                            const std::string& targetNamespace);
  // Local name, and the namespace unless the context ignores namespaces
  // (always when documents are parsed without them).
  static bool DoesElementNameMatch(const CXmlSerializationContext& ctx, const CXmlElement* element,
                                   const std::string& localName, const std::string& namespaceUri);

  // Takes the value out of the variant as `type` and checks it; a type
  // without facets (char, none) throws CKoInvalidValueException.
  static void CheckRestriction(const char* name, const KoVariant& value, ItemType type,
                               const CPrimitiveRestrictions& r);

  static void CheckRestrictionFori1(const char* name, char value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionFori2(const char* name, short value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionFori4(const char* name, long value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionFori8(const char* name, long long value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionForui1(const char* name, unsigned char value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionForui2(const char* name, unsigned short value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionForui4(const char* name, unsigned long value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionForui8(const char* name, unsigned long long value,
                                     const CPrimitiveRestrictions& r);
  // A NaN breaks every bound that is set.
  static void CheckRestrictionForr4(const char* name, float value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionForr8(const char* name, double value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionFordecimal(const char* name, const CDecimal& value,
                                         const CPrimitiveRestrictions& r);
  static void CheckRestrictionForinteger(const char* name, const CBigInteger& value,
                                         const CPrimitiveRestrictions& r);
  // Booleans have no facets to break.
  static void CheckRestrictionForboolean(const char* name, bool value, const CPrimitiveRestrictions& r);
  // Lengths count bytes; the pattern must match the whole value.
  static void CheckRestrictionForstring(const char* name, std::string value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionForbase64Binary(const char* name, const CBinaryData& value,
                                              const CPrimitiveRestrictions& r);
  static void CheckRestrictionForhexBinary(const char* name, const CBinaryData& value,
                                           const CPrimitiveRestrictions& r);
  // Date and duration bounds use the XSD partial order: a bound whose
  // comparison is indeterminate is never broken.
  static void CheckRestrictionForduration(const char* name, const CDateTimeSpan& value,
                                          const CPrimitiveRestrictions& r);
  static void CheckRestrictionFordate(const char* name, const CDateTime& value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionFordatetime(const char* name, const CDateTime& value,
                                          const CPrimitiveRestrictions& r);
  static void CheckRestrictionFortime(const char* name, const CDateTime& value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionForyearMonth(const char* name, const CDateTime& value,
                                           const CPrimitiveRestrictions& r);
  static void CheckRestrictionFormonthYear(const char* name, const CDateTime& value,
                                           const CPrimitiveRestrictions& r);
  static void CheckRestrictionFormonthDay(const char* name, const CDateTime& value,
                                          const CPrimitiveRestrictions& r);
  static void CheckRestrictionForday(const char* name, unsigned char value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionFormonth(const char* name, unsigned char value, const CPrimitiveRestrictions& r);
  static void CheckRestrictionForyear(const char* name, unsigned short value, const CPrimitiveRestrictions& r);
};

}  // namespace KoXmlLib10

#endif
