#include "KoXmlLib10/ClassFactory.h"

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/XmlDocument.h"
#include "binding/BindingMessages.h"
#include "xml/XmlNames.h"

namespace KoXmlLib10 {

namespace {

const std::string& TypeAttribute(CXmlElement* element) {
  if (!element) throw CKoInvalidParamException(msg::kNullElement);
  static const std::string kType = "type";
  static const std::string kInstanceNamespace = XmlNames::kSchemaInstanceNamespace;
  return element->GetAttribute(kType, kInstanceNamespace);
}

}  // namespace

CClassfactoryBase::CClassfactoryBase() = default;
CClassfactoryBase::~CClassfactoryBase() = default;

std::string CClassfactoryBase::GetElementType(CXmlElement* element) {
  const std::string& value = TypeAttribute(element);
  const size_t colon = value.find(':');
  return colon == std::string::npos ? value : value.substr(colon + 1);
}

// One prefix may stand for different namespaces in sibling subtrees (our own
// writers declare generated prefixes per scope), so the declarations in
// scope at the element decide; the document-wide map only answers for a
// prefix that none of them binds.
std::string CClassfactoryBase::GetElementTypeNamespaceUri(CXmlElement* element) {
  const std::string& value = TypeAttribute(element);
  const size_t colon = value.find(':');
  if (colon == std::string::npos) return element->GetNamespaceURI();
  std::string namespaceUri;
  if (!element->GetTypePrefixNamespace(namespaceUri)) {
    const CXmlDocument* document = element->GetOwnerDocument();
    if (document) namespaceUri = document->LookupNamespaceFromAlias(value.substr(0, colon).c_str());
  }
  return namespaceUri.empty() ? element->GetNamespaceURI() : namespaceUri;
}

}  // namespace KoXmlLib10
