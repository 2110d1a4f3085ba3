#ifndef KOXMLLIB10_CLASSFACTORY_H
#define KOXMLLIB10_CLASSFACTORY_H

#include <string>

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

class CXmlElement;

// Base of generated factories, which choose the class of a member of a
// derivable type from the element's xsi:type while reading.
class KOXML_API CClassfactoryBase {
 public:
  CClassfactoryBase();
  virtual ~CClassfactoryBase();

  // The local part of the element's xsi:type (after the first colon); empty
  // when the element has none.
  static std::string GetElementType(CXmlElement* element);
  // The namespace of the element's xsi:type: its prefix resolved in the
  // element's scope first, then in the document-wide map; the element's own
  // namespace when the value has no prefix or the prefix is unknown.
  static std::string GetElementTypeNamespaceUri(CXmlElement* element);
};

}  // namespace KoXmlLib10

#endif
