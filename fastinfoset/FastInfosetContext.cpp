#include "KoXmlLib10/FastInfosetContext.h"

namespace KoXmlLib10 {

CFIStringTable::~CFIStringTable() = default;
CFIQNameTable::~CFIQNameTable() = default;

const char* const CFIVocabulary::FI_DEFAULT_PREFIX = "xml";
const char* const CFIVocabulary::FI_DEFAULT_NAMESPACE = "http://www.w3.org/XML/1998/namespace";

CFIVocabulary::CFIVocabulary() {
  // The two built-in alphabets of Fast Infoset: numeric and date-time.
  m_restrictedAlphabets = {"0123456789-+.E ", "0123456789-:TZ "};
  AddPrefixName(FI_DEFAULT_PREFIX);
  AddNamespaceName(FI_DEFAULT_NAMESPACE);
}

CFIVocabulary::CFIVocabulary(const CFIVocabulary&) = default;
CFIVocabulary& CFIVocabulary::operator=(const CFIVocabulary&) = default;
CFIVocabulary::~CFIVocabulary() = default;

void CFIVocabulary::AddValueToMap(const std::string& value, IndexMap& m) {
  if (m.size() < MAX_ENTRIES) m.emplace(value, static_cast<uint32_t>(m.size() + 1));
}

bool CFIVocabulary::FindIndex(const IndexMap& m, const std::string& value, unsigned long& index) {
  const auto it = m.find(value);
  if (it == m.end()) return false;
  index = it->second;
  return true;
}

void CFIVocabulary::AddValueToVector(const std::string& value, CFIStringTable& v) {
  if (v.size() < MAX_ENTRIES) v.push_back(value);
}

void CFIVocabulary::AddQNameToVector(unsigned long prefix, unsigned long namespaceName,
                                     unsigned long localName, CFIQNameTable& v) {
  if (v.size() < MAX_ENTRIES)
    v.push_back(CQNameParts{static_cast<uint32_t>(prefix), static_cast<uint32_t>(namespaceName),
                            static_cast<uint32_t>(localName)});
}

void CFIVocabulary::AddLocalName(const std::string& name) {
  IndexOrAdd(name, m_localNames, m_localNamesTable);
}

void CFIVocabulary::AddNamespaceName(const std::string& name) {
  IndexOrAdd(name, m_namespaceNames, m_namespaceNamesTable);
}

void CFIVocabulary::AddPrefixName(const std::string& name) {
  IndexOrAdd(name, m_prefixNames, m_prefixNamesTable);
}

void CFIVocabulary::AddElementValue(const std::string& value) {
  IndexOrAdd(value, m_characterChunks, m_characterChunksTable);
}

void CFIVocabulary::AddAttributeValue(const std::string& value) {
  IndexOrAdd(value, m_attributeValues, m_attributeValuesTable);
}

bool CFIVocabulary::FindLocalNameIndex(const std::string& name, unsigned long& index) const {
  return FindIndex(m_localNames, name, index);
}

bool CFIVocabulary::FindNamespaceNameIndex(const std::string& name, unsigned long& index) const {
  return FindIndex(m_namespaceNames, name, index);
}

bool CFIVocabulary::FindPrefixNameIndex(const std::string& name, unsigned long& index) const {
  return FindIndex(m_prefixNames, name, index);
}

std::string CFIVocabulary::QNameKey(const std::string& prefix, const std::string& namespaceUri,
                                    const std::string& localName) {
  std::string key;
  key.reserve(localName.size() + namespaceUri.size() + prefix.size() + 2);
  key += localName;
  key += '\x01';
  key += namespaceUri;
  key += '\x01';
  key += prefix;
  return key;
}

unsigned long CFIVocabulary::IndexOrAdd(const std::string& value, IndexMap& m,
                                        CFIStringTable& table) {
  unsigned long index = 0;
  if (FindIndex(m, value, index)) return index;
  if (m.size() >= MAX_ENTRIES) return 0;
  AddValueToMap(value, m);
  AddValueToVector(value, table);
  return table.size();
}

void CFIVocabulary::AddQName(const std::string& prefix, const std::string& namespaceUri,
                             const std::string& localName, IndexMap& names,
                             CFIQNameTable& table) {
  const std::string key = QNameKey(prefix, namespaceUri, localName);
  if (names.count(key)) return;
  const unsigned long prefixIndex =
      prefix.empty() ? 0 : IndexOrAdd(prefix, m_prefixNames, m_prefixNamesTable);
  const unsigned long namespaceIndex =
      namespaceUri.empty() ? 0 : IndexOrAdd(namespaceUri, m_namespaceNames, m_namespaceNamesTable);
  const unsigned long localIndex = IndexOrAdd(localName, m_localNames, m_localNamesTable);
  // A part that no longer fits its full table cannot be referenced by index.
  if (localIndex == 0 || (!prefix.empty() && prefixIndex == 0) ||
      (!namespaceUri.empty() && namespaceIndex == 0))
    return;
  AddValueToMap(key, names);
  AddQNameToVector(prefixIndex, namespaceIndex, localIndex, table);
}

void CFIVocabulary::AddElement(const std::string& prefix, const std::string& namespaceUri,
                               const std::string& localName) {
  AddQName(prefix, namespaceUri, localName, m_elementNames, m_elementNamesTable);
}

void CFIVocabulary::AddAttribute(const std::string& prefix, const std::string& namespaceUri,
                                 const std::string& localName) {
  AddQName(prefix, namespaceUri, localName, m_attributeNames, m_attributeNamesTable);
}

CFastInfosetContext::CFastInfosetContext() = default;
CFastInfosetContext::CFastInfosetContext(const CFastInfosetContext&) = default;
CFastInfosetContext& CFastInfosetContext::operator=(const CFastInfosetContext&) = default;
CFastInfosetContext::~CFastInfosetContext() = default;

EncodedCharacterString CFastInfosetContext::GetEncoding(unsigned long itemType) const {
  return itemType < ENCODING_COUNT ? m_encodings[itemType] : EncodedCharacterString{};
}

void CFastInfosetContext::SetEncoding(unsigned long itemType, EncodedCharacterString encoding) {
  if (itemType < ENCODING_COUNT) m_encodings[itemType] = encoding;
}

void CFastInfosetContext::SetSuggestedValues() {
  constexpr uint32_t kAlphabet = 1, kAlgorithm = 2;
  const struct { ItemType type; uint32_t kind; uint32_t index; } suggested[] = {
      {ItemType_hexBinary, kAlgorithm, 1}, {ItemType_base64Binary, kAlgorithm, 2},
      {ItemType_i1, kAlgorithm, 3},        {ItemType_i2, kAlgorithm, 3},
      {ItemType_ui1, kAlgorithm, 3},       {ItemType_i4, kAlgorithm, 4},
      {ItemType_ui2, kAlgorithm, 4},       {ItemType_i8, kAlgorithm, 5},
      {ItemType_ui4, kAlgorithm, 5},       {ItemType_ui8, kAlgorithm, 5},
      {ItemType_r4, kAlgorithm, 7},        {ItemType_r8, kAlgorithm, 8},
      {ItemType_duration, 0, 0},           {ItemType_yearMonth, kAlphabet, 2},
      {ItemType_monthDay, kAlphabet, 2},   {ItemType_year, kAlphabet, 2},
      {ItemType_month, kAlphabet, 2},      {ItemType_day, kAlphabet, 2},
      {ItemType_date, kAlphabet, 2},       {ItemType_datetime, kAlphabet, 2},
      {ItemType_time, kAlphabet, 2},       {ItemType_boolean, kAlgorithm, 6},
      {ItemType_decimal, kAlphabet, 1},    {ItemType_integer, kAlphabet, 1},
  };
  for (const auto& s : suggested) m_encodings[s.type] = EncodedCharacterString{s.kind, s.index};
}

}  // namespace KoXmlLib10
