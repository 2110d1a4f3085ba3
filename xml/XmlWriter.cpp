#include "KoXmlLib10/XmlWriter.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "KoXmlLib10/Exceptions.h"
#include "foundation/ShortText.h"

namespace KoXmlLib10 {

namespace {

// Messages of the writers. Their wording is part of the library's interface:
// callers match on it, so keep it exactly as it is.
const char kAttributesAfterContent[] = "Attributes must be added before elements";
const char kElementNotClosed[] = "An Element has not been closed.";
const char kNoElementToEnd[] = "There is no open Element to end.";

const std::string kSchemaInstanceNamespace = CXmlWriter::XSI_NAMESPACE;
const std::string kTypeAttribute = "type";
const std::string kNilAttribute = "nil";
const std::string kTrue = "true";

}  // namespace

using Context = CXmlWriter::CXmlWriterContext;

// ---- CXmlWriterContext ------------------------------------------------------

Context::CXmlWriterContext(const std::string& localName, const std::string& namespaceUri,
                           CXmlWriterContext* parent)
    : m_depth(parent ? parent->m_depth + 1 : 0),
      m_namespaceUri(namespaceUri),
      m_localName(localName),
      m_parent(parent),
      m_inheritedScope(parent ? parent->Scope() : nullptr) {
  if (!parent) {
    // Without a parent there is nothing to inherit from.
    m_namespaceMap = std::make_unique<NamespaceMap>();
    m_inherits = false;
    m_ownsMap = true;
  }
}

Context::CXmlWriterContext(const std::string& localName, const std::string& namespaceUri,
                           const std::string& defaultNamespace, const NamespaceMap* namespaceMap,
                           CXmlWriterContext* parent)
    : m_namespaceUri(namespaceUri),
      m_localName(localName),
      m_defaultNamespace(defaultNamespace),
      m_namespaceMap(namespaceMap ? std::make_unique<NamespaceMap>(*namespaceMap)
                                  : std::make_unique<NamespaceMap>()),
      m_inherits(false),
      m_ownsMap(true) {
  // Adopt the parent last, so that a failed copy above cannot free it.
  m_parent.reset(parent);
}

Context::~CXmlWriterContext() {
  // Unlink the chain one context at a time: a deep document must not recurse.
  std::unique_ptr<CXmlWriterContext> next = std::move(m_parent);
  while (next) next.reset(next->DetachParent());
}

void Context::TakeOwnCopyOfScope() {
  m_namespaceMap = std::make_unique<NamespaceMap>(*GetNamespaceMap());
  m_ownsMap = true;
  m_inherits = false;
  m_inheritedScope = nullptr;
}

void Context::Reuse(const std::string& localName, const std::string& namespaceUri,
                    CXmlWriterContext* parent) {
  m_childCount = 0;
  m_startTagOpen = true;
  m_depth = parent->m_depth + 1;
  // A reused context mostly comes from the previous sibling, which often had
  // the same name and namespace: comparing is cheaper than copying.
  if (!SameText(m_namespaceUri, namespaceUri)) m_namespaceUri = namespaceUri;
  if (!SameText(m_localName, localName)) m_localName = localName;
  m_attributesWritten = false;
  m_defaultNamespace.clear();
  m_namespaceMap.reset();
  m_inherits = true;
  m_ownsMap = false;
  m_inheritedScope = parent->Scope();
  m_parent.reset(parent);
}

void Context::SetDefaultNamespace(const std::string& uri) {
  if (m_inherits) TakeOwnCopyOfScope();
  m_defaultNamespace = uri;
}

void Context::SetNamespaceMapValue(const std::string& uri, const std::string& prefix) {
  if (m_inherits) {
    std::string inheritedDefault = GetDefaultNamespace();
    TakeOwnCopyOfScope();
    m_defaultNamespace = std::move(inheritedDefault);
  }
  (*m_namespaceMap)[uri] = prefix;
}

std::string& Context::GetNamespaceMapValue(const std::string& uri) {
  return (*GetNamespaceMap())[uri];
}

std::string& Context::GetNamespaceMapValue(const char* uri) {
  return GetNamespaceMapValue(std::string(uri ? uri : ""));
}

// ---- CXmlWriter -------------------------------------------------------------

CXmlWriter::CXmlWriter() { AddNamespace("xml", XML_NAMESPACE); }

CXmlWriter::~CXmlWriter() {
  while (m_current) PopContext();
}

void CXmlWriter::Open() {}

void CXmlWriter::Close() {
  RequireNoOpenElement();
}

void CXmlWriter::SetDefaultNamespace(const std::string& uri) {
  if (m_current)
    m_current->SetDefaultNamespace(uri);
  else
    m_rootDefaultNamespace = uri;
}

void CXmlWriter::AddNamespace(const std::string& prefix, const std::string& uri) {
  if (m_current)
    m_current->SetNamespaceMapValue(uri, prefix);
  else
    m_rootNamespaces[uri] = prefix;
}

void CXmlWriter::WriteSimpleElement(const std::string& localName, const std::string& namespaceUri,
                                    const std::string& text, ItemType type) {
  WriteStartElement(localName, namespaceUri);
  WriteString(text, type);
  WriteEndElement();
}

std::string CXmlWriter::NsIntToString(int n) {
  if (n < 0) throw CKoInvalidParamException(FormatString("Invalid prefix index [%d]", n));
  // Names of 2 letters cover 26^2 indexes, then 26^3 names of 3 letters, ...
  unsigned long long index = static_cast<unsigned long long>(n);
  size_t length = 2;
  for (unsigned long long count = 26 * 26; index >= count; count *= 26) {
    index -= count;
    ++length;
  }
  std::string name(length, 'A');
  for (size_t i = length; i-- > 0; index /= 26) name[i] = static_cast<char>('A' + index % 26);
  return name;
}

std::string CXmlWriter::GetUniquePrefix(const NamespaceMap& namespaceMap) {
  std::vector<std::string_view> used;
  used.reserve(namespaceMap.size());
  for (const auto& entry : namespaceMap) used.emplace_back(entry.second);
  std::sort(used.begin(), used.end());
  // At most size() candidates can be taken, so the loop ends by size() + 1.
  for (int n = 0;; ++n) {
    std::string candidate = NsIntToString(n);
    if (!std::binary_search(used.begin(), used.end(), std::string_view(candidate)))
      return candidate;
  }
}

Context* CXmlWriter::PushContext(const std::string& localName, const std::string& namespaceUri) {
  std::unique_ptr<CXmlWriterContext> context;
  if (!m_current) {
    context = std::make_unique<CXmlWriterContext>(localName, namespaceUri, m_rootDefaultNamespace,
                                                  &m_rootNamespaces, nullptr);
  } else if (m_spareContexts.empty()) {
    context = std::make_unique<CXmlWriterContext>(localName, namespaceUri, m_current.get());
  } else {
    context = std::move(m_spareContexts.back());
    m_spareContexts.pop_back();
    try {
      context->Reuse(localName, namespaceUri, m_current.get());
    } catch (...) {
      m_spareContexts.push_back(std::move(context));
      throw;
    }
  }
  m_current.release();  // now owned through the new context's parent link
  m_current = std::move(context);
  return m_current.get();
}

void CXmlWriter::PopContext() {
  std::unique_ptr<CXmlWriterContext> popped(m_current.release());
  m_current.reset(popped->DetachParent());
  if (m_current) m_spareContexts.push_back(std::move(popped));
}

const std::string& CXmlWriter::PrefixInScope(const std::string& uri, bool& declared) {
  NamespaceMap& scope = *m_current->GetNamespaceMap();
  auto found = scope.find(uri);
  declared = found == scope.end();
  if (!declared) return found->second;
  m_current->SetNamespaceMapValue(uri, GetUniquePrefix(scope));
  return m_current->GetNamespaceMapValue(uri);
}

void CXmlWriter::ChildNamespace(CXmlWriterContext& parent, const std::string& namespaceUri, CChildNamespace& name) {
  const std::string& defaultNamespace = parent.GetDefaultNamespace();
  if (namespaceUri.empty()) {
    // Otherwise the element would read back in the inherited default namespace.
    name.undeclareDefault = !defaultNamespace.empty();
    return;
  }
  if (namespaceUri == defaultNamespace) return;
  const NamespaceMap& scope = *parent.GetNamespaceMap();
  const auto found = scope.find(namespaceUri);
  if (found != scope.end()) {
    name.prefix = &found->second;
    return;
  }
  name.declaredPrefix = GetUniquePrefix(scope);
  name.declare = true;
  name.prefix = &name.declaredPrefix;
}

// ---- rules of the concrete writers -----------------------------------------

void CXmlWriter::RequireOpenStartTag(bool accepting) const {
  if (!accepting || !m_current || !m_current->GetStartTagOpen())
    throw CKoException(kAttributesAfterContent);
}

void CXmlWriter::RequireNoOpenElement() const {
  if (m_current) throw CKoException(kElementNotClosed);
}

void CXmlWriter::RequireOpenElement() const {
  if (!m_current) throw CKoException(kNoElementToEnd);
}

void CXmlWriter::WriteNilAttribute() {
  RequireOpenStartTag();
  WriteAttributeString(kNilAttribute, kSchemaInstanceNamespace, kTrue, ItemType_boolean);
}

std::string CXmlWriter::TypeAttributeValue(const std::string& typeNamespaceUri,
                                           const std::string& typeName,
                                           std::string& declaredPrefix) {
  RequireOpenStartTag();
  declaredPrefix.clear();
  if (typeNamespaceUri.empty() || typeNamespaceUri == m_current->GetDefaultNamespace())
    return typeName;
  bool declared = false;
  const std::string& prefix = PrefixInScope(typeNamespaceUri, declared);
  if (declared) declaredPrefix = prefix;
  std::string value;
  value.reserve(prefix.size() + 1 + typeName.size());
  value.append(prefix).append(1, ':').append(typeName);
  return value;
}

void CXmlWriter::WriteTypeAttribute(const std::string& value, ItemType type) {
  WriteAttributeString(kTypeAttribute, kSchemaInstanceNamespace, value, type);
}

}  // namespace KoXmlLib10
