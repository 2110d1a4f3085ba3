#include "KoXmlLib10/XmlCollectionBase.h"

namespace KoXmlLib10 {

CXmlCollectionBase::~CXmlCollectionBase() = default;

}  // namespace KoXmlLib10
