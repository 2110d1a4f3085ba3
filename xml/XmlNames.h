#ifndef KOXMLLIB10_XML_XMLNAMES_H
#define KOXMLLIB10_XML_XMLNAMES_H

namespace KoXmlLib10 {
namespace XmlNames {

// Namespace URIs the document layer recognises.
constexpr char kSchemaInstanceNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
constexpr char kXmlnsNamespace[] = "http://www.w3.org/2000/xmlns/";
// Bound to the prefix "xml" in every document, without a declaration.
constexpr char kXmlNamespace[] = "http://www.w3.org/XML/1998/namespace";

}  // namespace XmlNames
}  // namespace KoXmlLib10

#endif
