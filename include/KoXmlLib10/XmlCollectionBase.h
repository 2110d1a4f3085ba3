#ifndef KOXMLLIB10_XMLCOLLECTIONBASE_H
#define KOXMLLIB10_XMLCOLLECTIONBASE_H

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/XmlObjectBase.h"

namespace KoXmlLib10 {

// Root of every collection of items; a collection is itself a reference
// counted object and travels in a KoVariant by reference.
class KOXML_API CXmlCollectionBase : public CXmlObjectBase {
 public:
  ~CXmlCollectionBase() override;
};

}  // namespace KoXmlLib10

#endif
