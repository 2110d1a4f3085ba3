#include "KoXmlLib10/SerializationContext.h"

#include "KoXmlLib10/Untyped.h"

#include "KoXmlLib10/Exceptions.h"

namespace KoXmlLib10 {

namespace {
const char* const kIgnoreBoth =
    "The parser can only ignore additional elements, or ignore the fact that some required "
    "ones are missing, you can not ignore both\n";
std::string Text(const char* s) { return s ? s : ""; }
}  // namespace

CNamespaceAliasMap::CNamespaceAliasMap() = default;
CNamespaceAliasMap::CNamespaceAliasMap(const CNamespaceAliasMap&) = default;
CNamespaceAliasMap& CNamespaceAliasMap::operator=(const CNamespaceAliasMap&) = default;
CNamespaceAliasMap::~CNamespaceAliasMap() = default;

void CNamespaceAliasMap::Add(const char* alias, const char* namespaceUri) {
  m_aliases[Text(namespaceUri)] = Text(alias);
}

void CNamespaceAliasMap::RemoveNamespace(const char* namespaceUri) {
  m_aliases.erase(Text(namespaceUri));
}

int CNamespaceAliasMap::GetNamespaceCount() const { return static_cast<int>(m_aliases.size()); }

std::string CNamespaceAliasMap::GetNamespaceAt(int index) const {
  if (index < 0 || index >= GetNamespaceCount())
    throw CKoInvalidParamException(
        FormatString("Index %d is out of range, use 0 - %d", index, GetNamespaceCount() - 1));
  auto it = m_aliases.begin();
  std::advance(it, index);
  return it->first;
}

std::string CNamespaceAliasMap::GetAliasFromNamespace(const char* namespaceUri) const {
  return m_aliases[Text(namespaceUri)];
}

std::string CNamespaceAliasMap::GetNamespaceFromAlias(const char* alias) const {
  const std::string wanted = Text(alias);
  for (const auto& [uri, a] : m_aliases)
    if (a == wanted) return uri;
  throw CKoException(FormatString("Namespace alias [%s] not found", wanted.c_str()));
}

bool CNamespaceAliasMap::DoesAliasExist(const char* alias) const {
  const std::string wanted = Text(alias);
  for (const auto& entry : m_aliases)
    if (entry.second == wanted) return true;
  return false;
}

bool CNamespaceAliasMap::DoesNamespaceExist(const char* namespaceUri) const {
  return m_aliases.count(Text(namespaceUri)) != 0;
}

CXmlSerializationContext CXmlSerializationContext::m_defaultContext;

CXmlSerializationContext::CXmlSerializationContext() = default;
CXmlSerializationContext::CXmlSerializationContext(const CXmlSerializationContext&) = default;
CXmlSerializationContext& CXmlSerializationContext::operator=(const CXmlSerializationContext&) =
    default;
CXmlSerializationContext::~CXmlSerializationContext() = default;

void CXmlSerializationContext::SetIgnoreUnknownElements(bool value) {
  if (value && m_ignoreMissingMandatoryElements)
    throw CKoInvalidStateException(
        std::string(kIgnoreBoth) +
        "Set IgnoreMissingMandatoryElements to false before setting IgnoreUnknownElements to true");
  m_ignoreUnknownElements = value;
}

void CXmlSerializationContext::SetIgnoreMissingMandatoryElements(bool value) {
  if (value && m_ignoreUnknownElements)
    throw CKoInvalidStateException(
        std::string(kIgnoreBoth) +
        "Set IgnoreUnknownElements to false before setting IgnoreMissingMandatoryElements to true");
  m_ignoreMissingMandatoryElements = value;
}

bool CXmlSerializationContext::GetIgnoreNamespaces() const {
  return m_ignoreNamespaces || m_schemaType == SchemaTypeNoNamespaces;
}

// Created on first request so that contexts which never add root attributes
// cost nothing; copies made before that call do not share it.
CSmartPtr<CAttributeCol> CXmlSerializationContext::GetAdditionalRootAttributes() const {
  if (!m_additionalRootAttributes) m_additionalRootAttributes = new CAttributeCol("", "##any", "");
  return m_additionalRootAttributes;
}

}  // namespace KoXmlLib10
