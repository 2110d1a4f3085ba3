#include <string_view>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/SerializationContext.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "binding/BindingMessages.h"

namespace KoXmlLib10 {

namespace {

bool TokenAdmits(std::string_view token, const std::string& namespaceUri, const std::string& targetNamespace) {
  if (token == "##any") return true;
  if (token == "##other") return namespaceUri != targetNamespace;
  if (token == "##local") return namespaceUri.empty();
  if (token == "##targetNamespace") return namespaceUri == targetNamespace;
  // A listed URI; an element in no namespace passes any listed URI.
  return namespaceUri.empty() || namespaceUri == token;
}

}  // namespace

bool CXmlObjectHelper::IsNamespaceValid(const std::string& namespaceUri, const std::string& restriction,
                                        const std::string& targetNamespace) {
  // Tokens are split on single spaces, so an empty restriction (or an empty
  // token between two spaces) stands for the empty namespace URI.
  std::string_view rest(restriction);
  for (;;) {
    const size_t space = rest.find(' ');
    const std::string_view token = rest.substr(0, space);
    if (TokenAdmits(token, namespaceUri, targetNamespace)) return true;
    if (space == std::string_view::npos) return false;
    rest.remove_prefix(space + 1);
    if (rest.empty()) return false;
  }
}

void CXmlObjectHelper::TestNamespace(const std::string& namespaceUri, const std::string& restriction,
                                     const std::string& targetNamespace) {
  if (!IsNamespaceValid(namespaceUri, restriction, targetNamespace))
    throw CKoInvalidNamespaceException(FormatString(msg::kInvalidNamespace, namespaceUri.c_str(),
                                                    restriction.c_str(), targetNamespace.c_str()));
}

bool CXmlObjectHelper::DoesElementNameMatch(const CXmlSerializationContext& ctx, const CXmlElement* element,
                                            const std::string& localName, const std::string& namespaceUri) {
  if (!element || element->GetLocalName() != localName) return false;
  return ctx.GetIgnoreNamespaces() || element->GetNamespaceURI() == namespaceUri;
}

}  // namespace KoXmlLib10
