#include "Replay.h"

#include <utility>
#include <vector>

using namespace KoXmlLib10;

namespace koxml {

namespace {

const char* const kXsiNamespace = CXmlWriter::XSI_NAMESPACE;
const char kXmlnsNamespace[] = "http://www.w3.org/2000/xmlns/";

bool IsDeclaration(const CXmlAttribute& a) {
  const std::string& name = a.GetLocalName();
  return a.GetNamespaceURI() == kXmlnsNamespace || name == "xmlns" ||
         name.compare(0, 6, "xmlns:") == 0;
}

// Walks the tree depth first without recursion, so that the deepest
// document the reader accepts cannot exhaust the stack.
template <class Enter, class Leave>
void Walk(const CXmlElement* root, Enter enter, Leave leave) {
  std::vector<const CXmlElement*> path;
  const CXmlElement* next = root;
  while (next) {
    enter(*next, path.size());
    path.push_back(next);
    next = next->GetFirstElement();
    while (!next && !path.empty()) {
      const CXmlElement* done = path.back();
      path.pop_back();
      leave(*done);
      if (!path.empty()) next = done->GetNextSiblingElement();
    }
  }
}

void WriteTypeAttribute(const CXmlDocument& document, const std::string& value,
                        CXmlWriter& writer) {
  const size_t colon = value.find(':');
  const std::string prefix = colon == std::string::npos ? "" : value.substr(0, colon);
  const std::string local = colon == std::string::npos ? value : value.substr(colon + 1);
  writer.WriteAttributeType(document.LookupNamespaceFromAlias(prefix.c_str()), local,
                            ItemType_string);
}

}  // namespace

bool IsWhitespaceOnly(const std::string& text) {
  return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

void ReplayTree(const CXmlDocument& document, CXmlWriter& writer, bool stripWhitespace) {
  const CXmlElement* root = document.GetDocumentElement();
  if (!root) throw CKoException("The document has no root element");
  // The root's namespace as the default keeps the common single-namespace
  // document free of prefixes.
  if (!root->GetNamespaceURI().empty()) writer.SetDefaultNamespace(root->GetNamespaceURI());
  auto enter = [&](const CXmlElement& e, size_t) {
    writer.WriteStartElement(e.GetLocalName(), e.GetNamespaceURI());
    for (const CXmlAttribute* a : e.GetAttributes()) {
      if (IsDeclaration(*a)) continue;
      if (a->GetNamespaceURI() == kXsiNamespace && a->GetLocalName() == "type")
        WriteTypeAttribute(document, a->GetValue(), writer);
      else
        writer.WriteAttributeString(a->GetLocalName(), a->GetNamespaceURI(), a->GetValue(),
                                    ItemType_string);
    }
    const std::string& text = e.GetText();
    if (!text.empty() && !(stripWhitespace && IsWhitespaceOnly(text)))
      writer.WriteString(text, ItemType_string);
  };
  Walk(root, enter, [&](const CXmlElement&) { writer.WriteEndElement(); });
}

TreeStats CollectStats(const CXmlElement* root) {
  TreeStats stats;
  auto name = [](const std::string& ns, const std::string& local) {
    return "{" + ns + "}" + local;
  };
  auto enter = [&](const CXmlElement& e, size_t depth) {
    ++stats.elements;
    if (depth + 1 > stats.maxDepth) stats.maxDepth = depth + 1;
    stats.names.insert(name(e.GetNamespaceURI(), e.GetLocalName()));
    if (!e.GetNamespaceURI().empty()) stats.namespaces.insert(e.GetNamespaceURI());
    for (const CXmlAttribute* a : e.GetAttributes()) {
      if (IsDeclaration(*a)) continue;
      ++stats.attributes;
      stats.names.insert(name(a->GetNamespaceURI(), a->GetLocalName()));
      if (!a->GetNamespaceURI().empty()) stats.namespaces.insert(a->GetNamespaceURI());
    }
  };
  if (root) Walk(root, enter, [](const CXmlElement&) {});
  return stats;
}

}  // namespace koxml
