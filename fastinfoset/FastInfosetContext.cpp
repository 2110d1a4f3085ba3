#include "KoXmlLib10/FastInfosetContext.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace KoXmlLib10 {

// ---- CFIIndexMap -------------------------------------------------------------

namespace {

constexpr size_t kInitialSlots = 16;

uint64_t Load8(const char* p) {
  uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

uint32_t Load4(const char* p) {
  uint32_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// The bytes of a key of at most 8 bytes, little-endian, zero above: loads of
// fixed size (overlapping when they must) rather than a copy of variable size.
uint64_t Packed(const char* p, size_t n) {
  if (n >= 8) return Load8(p);
  if (n >= 4) return Load4(p) | (uint64_t(Load4(p + n - 4)) << (8 * (n - 4)));
  if (n == 0) return 0;
  const auto byte = [p](size_t i) { return uint64_t(static_cast<unsigned char>(p[i])) << (8 * i); };
  return byte(0) | byte(n / 2) | byte(n - 1);
}

// Keys are names and short values: a word at a time, then a final mix so
// that the low bits (the slot) depend on every byte.
uint32_t HashOf(std::string_view key, uint64_t packed) {
  const char* p = key.data();
  const size_t size = key.size();
  uint64_t h = 0x9E3779B97F4A7C15ull ^ (size * 0xFF51AFD7ED558CCDull);
  if (size <= 8) {
    h = (h ^ packed) * 0x94D049BB133111EBull;
  } else {
    size_t n = size;
    for (; n >= 8; n -= 8, p += 8) {
      h = (h ^ Load8(p)) * 0xBF58476D1CE4E5B9ull;
      h ^= h >> 31;
    }
    // The last bytes, taken from the key's last word.
    if (n > 0) h = (h ^ (Load8(key.data() + size - 8) >> (8 * (8 - n)))) * 0x94D049BB133111EBull;
  }
  h ^= h >> 32;
  h *= 0xD6E8FEB86659FD93ull;
  h ^= h >> 32;
  return static_cast<uint32_t>(h);
}

// A slot's index field: the index in the low bits, and above it the key's
// length when the key is short enough to be held in the slot itself.
constexpr uint32_t kIndexBits = 24;
constexpr uint32_t kIndexMask = (1u << kIndexBits) - 1;
constexpr uint32_t kLongKey = 0xFF;
constexpr size_t kShortKey = 8;

uint32_t LengthField(size_t size) { return size <= kShortKey ? static_cast<uint32_t>(size) : kLongKey; }

}  // namespace

CFIIndexMap::CFIIndexMap() : m_slots(kInitialSlots) {}
CFIIndexMap::CFIIndexMap(const CFIIndexMap&) = default;
CFIIndexMap& CFIIndexMap::operator=(const CFIIndexMap&) = default;
CFIIndexMap::CFIIndexMap(CFIIndexMap&& other) noexcept
    : m_slots(std::move(other.m_slots)), m_keys(std::move(other.m_keys)) {
  // Left without slots: the next addition gives it some.
  other.m_slots.clear();
  other.m_keys.clear();
}
CFIIndexMap& CFIIndexMap::operator=(CFIIndexMap&& other) noexcept {
  if (this != &other) {
    m_slots = std::move(other.m_slots);
    m_keys = std::move(other.m_keys);
    other.m_slots.clear();
    other.m_keys.clear();
  }
  return *this;
}
CFIIndexMap::~CFIIndexMap() = default;

void CFIIndexMap::clear() {
  m_keys.clear();
  m_slots.assign(kInitialSlots, Slot());
}

uint32_t CFIIndexMap::Find(std::string_view key) const {
  Hint hint;
  return Find(key, hint);
}

uint32_t CFIIndexMap::Find(std::string_view key, Hint& hint) const {
  const size_t size = key.size();
  const uint64_t packed = size <= kShortKey ? Packed(key.data(), size) : 0;
  const uint32_t hash = HashOf(key, packed);
  hint.hash = hash;
  hint.packed = packed;
  if (m_slots.empty()) return 0;  // a moved-from map
  const uint32_t length = LengthField(size);
  const size_t mask = m_slots.size() - 1;
  for (size_t i = hash & mask;; i = (i + 1) & mask) {
    const Slot& slot = m_slots[i];
    if (slot.index == 0) return 0;
    if (slot.hash != hash || (slot.index >> kIndexBits) != length) continue;
    const uint32_t index = slot.index & kIndexMask;
    if (length != kLongKey) {
      if (slot.key == packed) return index;
      continue;
    }
    const std::string& stored = m_keys[index - 1];
    if (stored.size() == size && std::memcmp(stored.data(), key.data(), size) == 0) return index;
  }
}

void CFIIndexMap::Place(const Slot& slot) {
  const size_t mask = m_slots.size() - 1;
  size_t i = slot.hash & mask;
  while (m_slots[i].index != 0) i = (i + 1) & mask;
  m_slots[i] = slot;
}

void CFIIndexMap::Grow() {
  std::vector<Slot> old(std::max(kInitialSlots, m_slots.size() * 2));
  old.swap(m_slots);
  for (const Slot& slot : old)
    if (slot.index != 0) Place(slot);
}

uint32_t CFIIndexMap::AddNew(std::string_view key, const Hint& hint) {
  // At most seven slots in ten in use keeps the runs short.
  if (m_keys.size() >= kIndexMask) return 0;  // the slots cannot number more
  if ((m_keys.size() + 1) * 10 > m_slots.size() * 7) Grow();
  m_keys.emplace_back(key);
  const uint32_t index = static_cast<uint32_t>(m_keys.size());
  Place(Slot{hint.hash, index | (LengthField(key.size()) << kIndexBits), hint.packed});
  return index;
}

uint32_t CFIIndexMap::Add(std::string_view key) {
  Hint hint;
  if (const uint32_t index = Find(key, hint)) return index;
  return AddNew(key, hint);
}

// ---- CFIVocabulary -------------------------------------------------------------

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
  if (m.size() < MAX_ENTRIES) m.Add(value);
}

bool CFIVocabulary::FindIndex(const IndexMap& m, const std::string& value, unsigned long& index) {
  const uint32_t found = m.Find(value);
  if (found == 0) return false;
  index = found;
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
