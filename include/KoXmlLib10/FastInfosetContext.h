#ifndef KOXMLLIB10_FASTINFOSETCONTEXT_H
#define KOXMLLIB10_FASTINFOSETCONTEXT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/ItemType.h"

namespace KoXmlLib10 {

// Indices of a qualified name's parts; 0 in prefix or namespaceName means none.
struct KOXML_API CQNameParts {
  uint32_t prefix = 0;
  uint32_t namespaceName = 0;
  uint32_t localName = 0;
};

// Index-to-string view of a vocabulary table: entry i holds index i + 1.
class KOXML_API CFIStringTable {
 public:
  using Entries = std::vector<std::string>;
  virtual ~CFIStringTable();
  Entries::const_iterator begin() const { return m_entries.begin(); }
  Entries::const_iterator end() const { return m_entries.end(); }
  size_t size() const { return m_entries.size(); }
  const std::string& operator[](size_t i) const { return m_entries[i]; }
  void push_back(std::string value) { m_entries.push_back(std::move(value)); }

 private:
  Entries m_entries;
};

class KOXML_API CFIQNameTable {
 public:
  using Entries = std::vector<CQNameParts>;
  virtual ~CFIQNameTable();
  Entries::const_iterator begin() const { return m_entries.begin(); }
  Entries::const_iterator end() const { return m_entries.end(); }
  size_t size() const { return m_entries.size(); }
  const CQNameParts& operator[](size_t i) const { return m_entries[i]; }
  void push_back(const CQNameParts& value) { m_entries.push_back(value); }

 private:
  Entries m_entries;
};

// String-to-index view of a vocabulary table, for writing. Indexes are given
// in order of addition: the n-th string added has index n, so that they agree
// with a reader's index-to-string table filled in the same order.
//
// Writing looks up every name and short value, and the value tables grow to a
// million entries: an open-addressing table of (hash, index) slots keeps a
// lookup to one probe of a compact array and one string comparison.
class KOXML_API CFIIndexMap {
 public:
  // Answer of Find for the writer: the hash of the key looked up, so that
  // adding the key right after costs no second hashing.
  struct Hint {
    uint32_t hash = 0;
    uint64_t packed = 0;
  };

  CFIIndexMap();
  CFIIndexMap(const CFIIndexMap&);
  CFIIndexMap& operator=(const CFIIndexMap&);
  CFIIndexMap(CFIIndexMap&&) noexcept;
  CFIIndexMap& operator=(CFIIndexMap&&) noexcept;
  ~CFIIndexMap();

  size_t size() const { return m_keys.size(); }
  bool empty() const { return m_keys.empty(); }
  size_t count(std::string_view key) const { return Find(key) != 0 ? 1 : 0; }
  void clear();

  // The index of `key`; 0 when it is absent.
  uint32_t Find(std::string_view key) const;
  uint32_t Find(std::string_view key, Hint& hint) const;
  // Adds `key`, absent until now, with index size() + 1; `hint` comes from
  // the Find that missed it, with no change to the map in between. Returns
  // the index, 0 if the map holds 2^24 - 1 entries already (far beyond the
  // vocabulary's own limit).
  uint32_t AddNew(std::string_view key, const Hint& hint);
  // Adds `key` with index size() + 1 unless it is present; returns its index
  // (0 as for AddNew).
  uint32_t Add(std::string_view key);
  // The string of index `index` (1 to size()).
  const std::string& KeyOf(uint32_t index) const { return m_keys[index - 1]; }

 private:
  // A free slot has index 0. Keys of up to 8 bytes are held in the slot as
  // well, so that finding them reads no other memory; the length of such a
  // key sits in the top bits of `index`.
  struct Slot {
    uint32_t hash = 0;
    uint32_t index = 0;
    uint64_t key = 0;
  };
  void Grow();
  void Place(const Slot& slot);

  std::vector<Slot> m_slots;  // a power of two of them
  std::vector<std::string> m_keys;  // entry i has index i + 1
};

// The tables of a Fast Infoset vocabulary, in two views: string-to-index maps
// for writing and index-to-string tables for reading.
class KOXML_API CFIVocabulary {
 public:
  // Hashed rather than ordered: writing looks up every name and short value,
  // and the value tables grow to a million entries.
  using IndexMap = CFIIndexMap;
  // Every map and table stops growing at this many entries.
  static constexpr size_t MAX_ENTRIES = size_t(1) << 20;
  static const char* const FI_DEFAULT_PREFIX;
  static const char* const FI_DEFAULT_NAMESPACE;

  CFIVocabulary();
  CFIVocabulary(const CFIVocabulary&);
  CFIVocabulary& operator=(const CFIVocabulary&);
  virtual ~CFIVocabulary();

  static void AddValueToMap(const std::string& value, IndexMap& m);
  static bool FindIndex(const IndexMap& m, const std::string& value, unsigned long& index);
  static void AddValueToVector(const std::string& value, CFIStringTable& v);
  static void AddQNameToVector(unsigned long prefix, unsigned long namespaceName,
                               unsigned long localName, CFIQNameTable& v);

  void AddLocalName(const std::string& name);
  void AddNamespaceName(const std::string& name);
  void AddPrefixName(const std::string& name);
  void AddElementValue(const std::string& value);
  void AddAttributeValue(const std::string& value);
  bool FindLocalNameIndex(const std::string& name, unsigned long& index) const;
  bool FindNamespaceNameIndex(const std::string& name, unsigned long& index) const;
  bool FindPrefixNameIndex(const std::string& name, unsigned long& index) const;

  void AddQName(const std::string& prefix, const std::string& namespaceUri,
                const std::string& localName, IndexMap& names, CFIQNameTable& table);
  void AddElement(const std::string& prefix, const std::string& namespaceUri,
                  const std::string& localName);
  void AddAttribute(const std::string& prefix, const std::string& namespaceUri,
                    const std::string& localName);
  // Key of a qualified name in the element and attribute name maps.
  static std::string QNameKey(const std::string& prefix, const std::string& namespaceUri,
                              const std::string& localName);

  CFIQNameTable& GetAttributeNamesTable() { return m_attributeNamesTable; }
  CFIStringTable& GetAttributeValuesTable() { return m_attributeValuesTable; }
  CFIQNameTable& GetElementNamesTable() { return m_elementNamesTable; }
  CFIStringTable& GetCharacterChunksTable() { return m_characterChunksTable; }
  CFIStringTable& GetLocalNamesTable() { return m_localNamesTable; }
  CFIStringTable& GetNamespaceNamesTable() { return m_namespaceNamesTable; }
  CFIStringTable& GetPrefixNamesTable() { return m_prefixNamesTable; }
  std::vector<std::string>& GetRestrictedAlphabets() { return m_restrictedAlphabets; }

  IndexMap& GetAttributeNamesMap() { return m_attributeNames; }
  IndexMap& GetAttributeValuesMap() { return m_attributeValues; }
  IndexMap& GetElementNamesMap() { return m_elementNames; }
  IndexMap& GetCharacterChunksMap() { return m_characterChunks; }
  IndexMap& GetLocalNamesMap() { return m_localNames; }
  IndexMap& GetNamespaceNamesMap() { return m_namespaceNames; }
  IndexMap& GetPrefixNamesMap() { return m_prefixNames; }

 private:
  // Index of `value` in `m`, adding it to both views when absent (so the two
  // views never disagree); 0 if the tables are full.
  unsigned long IndexOrAdd(const std::string& value, IndexMap& m, CFIStringTable& table);

  std::vector<std::string> m_restrictedAlphabets;
  IndexMap m_attributeNames;
  IndexMap m_attributeValues;
  IndexMap m_elementNames;
  IndexMap m_characterChunks;
  IndexMap m_localNames;
  IndexMap m_namespaceNames;
  IndexMap m_prefixNames;
  CFIQNameTable m_attributeNamesTable;
  CFIStringTable m_attributeValuesTable;
  CFIQNameTable m_elementNamesTable;
  CFIStringTable m_characterChunksTable;
  CFIStringTable m_localNamesTable;
  CFIStringTable m_namespaceNamesTable;
  CFIStringTable m_prefixNamesTable;
};

// How a value is carried: kind 0 default string encoding, 1 restricted
// alphabet number `index`, 2 encoding algorithm number `index`.
struct KOXML_API EncodedCharacterString {
  uint32_t kind = 0;
  uint32_t index = 0;
};

class KOXML_API CFastInfosetContext {
 public:
  static constexpr unsigned long ENCODING_COUNT = 29;  // ItemType values 0-28

  CFastInfosetContext();
  CFastInfosetContext(const CFastInfosetContext&);
  CFastInfosetContext& operator=(const CFastInfosetContext&);
  virtual ~CFastInfosetContext();

  // Entries beyond the table read as "default string encoding" and are not stored.
  EncodedCharacterString GetEncoding(unsigned long itemType) const;
  void SetEncoding(unsigned long itemType, EncodedCharacterString encoding);
  void SetSuggestedValues();

  unsigned char GetDefaultStringEncoding() const { return m_defaultStringEncoding; }
  unsigned long GetAttributeMaxAddLength() const { return m_attributeMaxAddLength; }
  void SetAttributeMaxAddLength(unsigned long n) { m_attributeMaxAddLength = static_cast<uint32_t>(n); }
  unsigned long GetElementMaxAddLength() const { return m_elementMaxAddLength; }
  void SetElementMaxAddLength(unsigned long n) { m_elementMaxAddLength = static_cast<uint32_t>(n); }
  bool GetUseGeneratedVocabulary() const { return m_useGeneratedVocabulary; }
  void SetUseGeneratedVocabulary(bool use) { m_useGeneratedVocabulary = use; }
  CFIVocabulary* GetVocabulary() { return &m_vocabulary; }
  const CFIVocabulary* GetVocabulary() const { return &m_vocabulary; }
  std::string GetExternalVocabularyURI() const { return m_externalVocabularyURI; }
  void SetExternalVocabularyURI(std::string uri) { m_externalVocabularyURI = std::move(uri); }

 private:
  uint8_t m_defaultStringEncoding = 0;  // 0 UTF-8, 1 UTF-16BE
  EncodedCharacterString m_encodings[ENCODING_COUNT];
  uint32_t m_attributeMaxAddLength = 6;
  uint32_t m_elementMaxAddLength = 6;
  bool m_useGeneratedVocabulary = false;
  CFIVocabulary m_vocabulary;
  std::string m_externalVocabularyURI;
};

}  // namespace KoXmlLib10

#endif
