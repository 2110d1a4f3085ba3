#include "fastinfoset/FastInfosetReader.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <stdexcept>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/FastInfosetBinaryData.h"
#include "KoXmlLib10/FastInfosetWriter.h"
#include "KoXmlLib10/Unicode.h"

namespace KoXmlLib10 {

namespace {

const char kEndOfFile[] = "Failed to parse FastInfoset. Unexpected End of File.";
const char kInteger1Bit4[] =
    "Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet.";
const char kInteger1Bit3[] =
    "Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet.";
const char kInteger1Bit2[] =
    "Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet.";
const char kInteger0Bit2[] =
    "Failed to parse FastInfoset. Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet.";
const char kLengthBit5[] = "Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the fifth bit of an octet.";
const char kLengthBit2[] =
    "Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the second bit of an octet.";
const char kAlphabetSize[] =
    "Failed to parse FastInfoset. Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 and "
    "2^20 characters.";
const char kAlphabetIndex[] = "Failed to parse FastInfoset. Invalid character index for Restricted Alphabet.";
const char kPrefixWithoutNamespace[] = "Failed to parse FastInfoset. Invalid QName type Prefix without Namespace.";
const char kElementType[] = "Failed to parse FastInfoset. Invalid Encoding of Element type.";
const char kUtf16[] = "Failed to parse FastInfoset. Unsupported Feature UTF16BE in EncodedCharacterString.";
const char kNoElement[] = "Failed to parse FastInfoset. The document has no element.";

const unsigned char kHeader[] = {0xE0, 0x00, 0x00, 0x01};
constexpr size_t kHeaderSize = sizeof(kHeader);
constexpr uint32_t kMaxIndex = uint32_t(1) << 20;
constexpr uint32_t kMaxAlphabet = uint32_t(1) << 20;
constexpr uint32_t kCdataAlgorithm = 10;

// Output may grow to this many times the input, and to this much anyway.
constexpr uint64_t kAmplification = 100;
constexpr uint64_t kMinimumBudget = uint64_t(16) << 20;
// What an element or attribute costs beyond its strings.
constexpr size_t kNodeCost = 16;

[[noreturn]] void Fail(std::string message) { throw CKoException(std::move(message)); }

// Bytes of the character that starts at `p`: its UTF-8 sequence when it is
// a well-formed one, otherwise the single byte.
size_t CharacterLength(const unsigned char* p, const unsigned char* end) {
  size_t length = 1;
  if (*p >= 0xF0)
    length = 4;
  else if (*p >= 0xE0)
    length = 3;
  else if (*p >= 0xC0)
    length = 2;
  if (length > 1 && (static_cast<size_t>(end - p) < length || !IsLegalUTF8(p, static_cast<int>(length)))) return 1;
  return length;
}

}  // namespace

CFastInfosetReader::CFastInfosetReader(const CFastInfosetContext& context, CXmlDocument& document)
    : m_context(context), m_document(document), m_store(*document.m_store) {}

CFastInfosetReader::~CFastInfosetReader() { Cleanup(); }

void CFastInfosetReader::Cleanup() {
  m_alphabets.clear();
  m_spelledNames.clear();
  m_elementNames.clear();
  m_attributeNames.clear();
  m_vocabulary.reset();
  m_scratch.Free();
  m_position = m_end = nullptr;
}

bool CFastInfosetReader::Parse() {
  if (!ReadHeader()) return false;
  try {
    m_scratch.Allocate();
    // Names known by index belong to the vocabulary of one document.
    m_elementNames.clear();
    m_attributeNames.clear();
    m_vocabulary = m_context.GetUseGeneratedVocabulary()
                       ? std::make_unique<CFIVocabulary>(*m_context.GetVocabulary())
                       : std::make_unique<CFIVocabulary>();
    m_budget = std::max(kMinimumBudget, kAmplification * m_document.m_sourceLength);
    ReadOptionalData();
    ReadChildren();
    if (!m_document.GetDocumentElement()) Fail(kNoElement);
  } catch (...) {
    Cleanup();
    throw;
  }
  return true;
}

// ---- header and document ---------------------------------------------------

bool CFastInfosetReader::CheckHeader(size_t offset) {
  const unsigned char* input = m_document.m_source;
  const size_t length = m_document.m_sourceLength;
  if (length <= offset + kHeaderSize || std::memcmp(input + offset, kHeader, kHeaderSize) != 0) return false;
  m_position = input + offset + kHeaderSize;
  m_end = input + length;
  return true;
}

bool CFastInfosetReader::ReadHeader() {
  const unsigned char* input = m_document.m_source;
  const size_t length = m_document.m_sourceLength;
  if (!input) return false;
  if (CheckHeader(0)) return true;
  for (const char* declaration : FI_DECLARATION_LIST) {
    const size_t size = std::strlen(declaration);
    if (length > size && std::memcmp(input, declaration, size) == 0) return CheckHeader(size);
  }
  return false;
}

void CFastInfosetReader::ReadOptionalData() {
  const unsigned char present = Take();
  if (present & 0x40) SkipAdditionalData();
  if (present & 0x20) InitialVocabulary();
  if (present & 0x10) SkipNotations();
  if (present & 0x08) SkipUnparsedEntities();
  if (present & 0x04) SkipNonEmptyOctetStringBit2();  // character encoding scheme
  if (present & 0x02) Take();                          // standalone
  if (present & 0x01) SkipNonIdentifyingStringOrIndexBit1();  // version
}

// Its tables are read past: the vocabulary in force is the one chosen by
// the context, and the external vocabulary is not looked up.
void CFastInfosetReader::InitialVocabulary() {
  const unsigned char first = Take();
  const unsigned char second = Take();
  if (first & 0x10) SkipNonEmptyOctetStringBit2();  // external vocabulary URI
  if (first & 0x08) SkipStringSequence();           // restricted alphabets
  if (first & 0x04) SkipStringSequence();           // encoding algorithms
  if (first & 0x02) SkipStringSequence();           // prefixes
  if (first & 0x01) SkipStringSequence();           // namespace names
  if (second & 0x80) SkipStringSequence();          // local names
  if (second & 0x40) SkipStringSequence();          // other NCNames
  if (second & 0x20) SkipStringSequence();          // other URIs
  if (second & 0x10) SkipEncodedStringSequence();   // attribute values
  if (second & 0x08) SkipEncodedStringSequence();   // character chunks
  if (second & 0x04) SkipEncodedStringSequence();   // other strings
  if (second & 0x02) SkipNameSurrogates();          // element names
  if (second & 0x01) SkipNameSurrogates();          // attribute names
}

void CFastInfosetReader::ReadChildren() {
  for (;;) {
    const unsigned char octet = Take();
    if (octet < 0x80) {
      ElementBit2(octet);
      // A document without its own terminator ends with its element.
      if (m_position == m_end) return;
    } else if (octet == 0xF0 || octet == 0xFF) {
      return;
    } else if (octet == 0xE1) {
      SkipProcessingInstruction();
    } else if (octet == 0xE2) {
      SkipComment();
    } else if ((octet & 0xFC) == 0xC4) {
      SkipDocumentTypeDeclaration(octet);
    } else {
      Fail(kElementType);
    }
    if (m_doubleTerminator) return;
  }
}

// ---- elements --------------------------------------------------------------

// Reads an element and its whole subtree. Nesting is tracked by counting the
// elements still open instead of recursing, so depth costs no stack.
void CFastInfosetReader::ElementBit2(unsigned char octet) {
  size_t open = 0;
  for (;;) {
    if (octet < 0x80) {
      if (StartElement(octet))
        ++open;
      else if (open == 0)
        return;
    } else if (octet == 0xF0 || octet == 0xFF) {
      m_store.End(false);
      --open;
      // FF: this element's terminator and its parent's share the octet.
      if (octet == 0xFF) {
        if (open == 0) {
          m_doubleTerminator = true;
          return;
        }
        m_store.End(false);
        --open;
      }
      if (open == 0) return;
    } else if ((octet & 0xC0) == 0x80) {
      CharacterChunk(octet);
    } else if (octet == 0xE1) {
      SkipProcessingInstruction();
    } else if (octet == 0xE2) {
      SkipComment();
    } else if ((octet & 0xFC) == 0xC8) {
      SkipEntityReference(octet);
    } else {
      Fail(kElementType);
    }
    octet = Take();
  }
}

// Reads an element's namespace declarations, name and attributes and adds it
// to the tree. False when the element already ended with its attributes.
bool CFastInfosetReader::StartElement(unsigned char octet) {
  unsigned char nameOctet = octet;
  if ((octet & 0x3C) == 0x38) {
    unsigned char declaration;
    while (((declaration = Take()) & 0xFC) == 0xCC) NamespaceAttributeBit7(declaration);
    nameOctet = Take();
  }
  const CXmlNodeName* name = QualifiedNameOrIndexBit3(nameOctet);
  Spend(kNodeCost + name->namespaceUri.size() + name->localName.size());
  CXmlElement* element = m_store.Start(name);
  if (!(octet & 0x40)) return true;

  unsigned char next;
  while (((next = Take()) & 0x80) == 0) AtrributeBit2(element, next);
  if (next != 0xFF) return true;
  m_store.End(false);
  return false;
}

void CFastInfosetReader::NamespaceAttributeBit7(unsigned char octet) {
  std::string prefix, namespaceUri;
  if (octet & 0x02) IdentifyingStringOrIndex(m_vocabulary->GetPrefixNamesTable(), prefix);
  if (octet & 0x01) IdentifyingStringOrIndex(m_vocabulary->GetNamespaceNamesTable(), namespaceUri);
  m_store.Declare(prefix, namespaceUri);
}

void CFastInfosetReader::AtrributeBit2(CXmlElement* element, unsigned char octet) {
  const CXmlNodeName* name = QualifiedNameOrIndexBit2(octet);
  const std::string_view value = NonIdentifyingStringOrIndexBit1(m_vocabulary->GetAttributeValuesTable());
  Spend(kNodeCost + name->namespaceUri.size() + name->localName.size() + value.size());
  m_store.AddAttribute(element, name, value);
}

void CFastInfosetReader::CharacterChunk(unsigned char octet) {
  const std::string_view text = NonIdentifyingStringOrIndexBit3(octet, m_vocabulary->GetCharacterChunksTable());
  Spend(text.size());
  m_store.AppendText(m_store.Top(), text);
}

// ---- names -----------------------------------------------------------------

const CXmlNodeName* CFastInfosetReader::QualifiedNameOrIndexBit3(unsigned char octet) {
  CFIQNameTable& names = m_vocabulary->GetElementNamesTable();
  if ((octet & 0x3C) != 0x3C) return NameAt(Integer1To2pw20Bit3(octet), names, m_elementNames);
  ReadQName(octet, names);
  return m_store.Name(m_namespaceUri, m_localName);
}

const CXmlNodeName* CFastInfosetReader::QualifiedNameOrIndexBit2(unsigned char octet) {
  CFIQNameTable& names = m_vocabulary->GetAttributeNamesTable();
  if ((octet & 0x78) != 0x78) return NameAt(Integer1To2pw20Bit2(octet), names, m_attributeNames);
  ReadQName(octet, names);
  return m_store.Name(m_namespaceUri, m_localName);
}

const CXmlNodeName* CFastInfosetReader::NameAt(uint32_t index, const CFIQNameTable& names,
                                               std::vector<const CXmlNodeName*>& known) {
  // A known entry was valid when it was met, and tables only grow.
  if (index < known.size() && known[index]) return known[index];
  NameFromTable(index, names);
  const CXmlNodeName* name = m_store.Name(m_namespaceUri, m_localName);
  if (index >= known.size()) known.resize(std::max<size_t>(index + 1, 2 * known.size()));
  known[index] = name;
  return name;
}

void CFastInfosetReader::ReadQName(unsigned char octet, CFIQNameTable& names) {
  const bool hasPrefix = octet & 0x02;
  const bool hasNamespace = octet & 0x01;
  if (hasPrefix && !hasNamespace) Fail(kPrefixWithoutNamespace);
  m_prefix.clear();
  m_namespaceUri.clear();
  const uint32_t prefix = hasPrefix ? IdentifyingStringOrIndex(m_vocabulary->GetPrefixNamesTable(), m_prefix) : 0;
  const uint32_t namespaceName =
      hasNamespace ? IdentifyingStringOrIndex(m_vocabulary->GetNamespaceNamesTable(), m_namespaceUri) : 0;
  const uint32_t localName = IdentifyingStringOrIndex(m_vocabulary->GetLocalNamesTable(), m_localName);
  if (localName == 0 || (hasPrefix && prefix == 0) || (hasNamespace && namespaceName == 0)) {
    // A part that did not fit its full table has no index. The name still
    // takes the next entry, as every literal name does, and keeps its strings
    // aside; an entry without a local-name index marks it.
    const size_t before = names.size();
    CFIVocabulary::AddQNameToVector(0, 0, 0, names);
    if (names.size() > before)
      m_spelledNames[{&names, static_cast<uint32_t>(names.size())}] = {m_prefix, m_namespaceUri, m_localName};
    return;
  }
  CFIVocabulary::AddQNameToVector(prefix, namespaceName, localName, names);
}

void CFastInfosetReader::NameFromTable(uint32_t index, const CFIQNameTable& names) {
  if (index > names.size()) Fail(FormatString("Failed to parse FastInfoset. Index %u is not in the vocabulary.", index));
  const CQNameParts parts = names[index - 1];
  if (parts.localName == 0) {
    const auto spelled = m_spelledNames.find({&names, index});
    if (spelled != m_spelledNames.end()) {
      m_prefix = spelled->second.prefix;
      m_namespaceUri = spelled->second.namespaceUri;
      m_localName = spelled->second.localName;
      return;
    }
  }
  // Assigned in place: the strings keep their capacity from name to name.
  if (parts.prefix)
    m_prefix = Entry(m_vocabulary->GetPrefixNamesTable(), parts.prefix);
  else
    m_prefix.clear();
  if (parts.namespaceName)
    m_namespaceUri = Entry(m_vocabulary->GetNamespaceNamesTable(), parts.namespaceName);
  else
    m_namespaceUri.clear();
  m_localName = Entry(m_vocabulary->GetLocalNamesTable(), parts.localName);
}

const std::string& CFastInfosetReader::Entry(const CFIStringTable& table, uint32_t index) const {
  if (index == 0 || index > table.size())
    Fail(FormatString("Failed to parse FastInfoset. Index %u is not in the vocabulary.", index));
  return table[index - 1];
}

// Appends a literal to its table and returns its index, 0 once the table is full.
uint32_t CFastInfosetReader::Added(CFIStringTable& table, const std::string& value) {
  const size_t before = table.size();
  CFIVocabulary::AddValueToVector(value, table);
  return table.size() > before ? static_cast<uint32_t>(table.size()) : 0;
}

// ---- strings ---------------------------------------------------------------

uint32_t CFastInfosetReader::IdentifyingStringOrIndex(CFIStringTable& table, std::string& value) {
  const unsigned char octet = Take();
  if (octet & 0x80) {
    const uint32_t index = Integer1To2pw20Bit2(octet);
    value = Entry(table, index);
    return index;
  }
  const uint64_t length = NonEmptyOctetStringBit2Length(octet);
  const char* data = reinterpret_cast<const char*>(Move(length));
  std::string converted;
  const std::string_view local = m_scratch.ToLocal(std::string_view(data, length), converted);
  value.assign(local.data(), local.size());
  return Added(table, value);
}

std::string_view CFastInfosetReader::NonIdentifyingStringOrIndexBit1(CFIStringTable& table) {
  const unsigned char octet = Take();
  if (octet & 0x80) {
    const uint32_t index = Integer0To2pw20Bit2(octet);
    return index == 0 ? std::string_view() : Entry(table, index);
  }
  const bool addToTable = octet & 0x40;
  const std::string_view text = Decode(EncodedCharacterStringBit3(octet));
  if (addToTable) CFIVocabulary::AddValueToVector(std::string(text), table);
  return text;
}

std::string_view CFastInfosetReader::NonIdentifyingStringOrIndexBit3(unsigned char octet, CFIStringTable& table) {
  if (octet & 0x20) return Entry(table, Integer1To2pw20Bit4(octet));
  const bool addToTable = octet & 0x10;
  const std::string_view text = Decode(EncodedCharacterStringBit5(octet));
  if (addToTable) CFIVocabulary::AddValueToVector(std::string(text), table);
  return text;
}

CFastInfosetReader::EncodedString CFastInfosetReader::EncodedCharacterStringBit3(unsigned char octet) {
  const unsigned discriminant = (octet >> 4) & 0x03;
  if (discriminant < 2) {
    const uint64_t length = NonEmptyOctetStringBit5Length(octet);
    return {discriminant == 0 ? EncodedString::Utf8 : EncodedString::Utf16, 0, Move(length), length};
  }
  const unsigned char next = Take();
  const uint32_t table = (((octet & 0x0F) << 4) | (next >> 4)) + 1;
  const uint64_t length = NonEmptyOctetStringBit5Length(next);
  return {discriminant == 2 ? EncodedString::Alphabet : EncodedString::Algorithm, table, Move(length), length};
}

CFastInfosetReader::EncodedString CFastInfosetReader::EncodedCharacterStringBit5(unsigned char octet) {
  const unsigned discriminant = (octet >> 2) & 0x03;
  if (discriminant < 2) {
    const uint64_t length = NonEmptyOctetStringBit7Length(octet);
    return {discriminant == 0 ? EncodedString::Utf8 : EncodedString::Utf16, 0, Move(length), length};
  }
  const unsigned char next = Take();
  const uint32_t table = (((octet & 0x03) << 6) | (next >> 2)) + 1;
  const uint64_t length = NonEmptyOctetStringBit7Length(next);
  return {discriminant == 2 ? EncodedString::Alphabet : EncodedString::Algorithm, table, Move(length), length};
}

// The text of an encoded string in the local representation. The view
// refers to the input buffer or to the last string; it lasts until the
// next string is decoded.
std::string_view CFastInfosetReader::Decode(const EncodedString& encoded) {
  const std::string_view octets(reinterpret_cast<const char*>(encoded.data), encoded.length);
  switch (encoded.kind) {
    case EncodedString::Utf8:
      return m_scratch.ToLocal(octets, m_lastString);
    case EncodedString::Utf16:
      try {
        m_lastString = CEncoder::Utf16ToLocalCodePage(const_cast<unsigned char*>(encoded.data),
                                                      static_cast<int>(std::min<size_t>(encoded.length, INT_MAX)));
      } catch (const std::exception&) {
        Fail(kUtf16);
      }
      return m_lastString;
    case EncodedString::Alphabet:
      NonEmptyOctetRestrictedAlphabetString(encoded);
      return m_lastString;
    case EncodedString::Algorithm:
      if (encoded.table == kCdataAlgorithm) return m_scratch.ToLocal(octets, m_lastString);
      m_lastString = AlgorithmText(encoded.table, encoded.data, encoded.length);
      return m_lastString;
  }
  return std::string_view();
}

std::string CFastInfosetReader::AlgorithmText(uint32_t algorithm, const unsigned char* data, size_t length) {
  return CFastInfosetBinaryData(const_cast<unsigned char*>(data), length, false).GetAsString(algorithm);
}

// The characters of an alphabet, split once per parse. A character is a
// UTF-8 sequence, so alphabets beyond ASCII work in UTF-8 locales.
const std::vector<std::string_view>& CFastInfosetReader::AlphabetCharacters(uint32_t alphabet) {
  const std::vector<std::string>& alphabets = m_vocabulary->GetRestrictedAlphabets();
  if (alphabet == 0 || alphabet > alphabets.size()) Fail(kAlphabetSize);
  if (m_alphabets.size() < alphabets.size()) m_alphabets.resize(alphabets.size());
  std::vector<std::string_view>& characters = m_alphabets[alphabet - 1];
  const std::string& text = alphabets[alphabet - 1];
  if (characters.empty() && !text.empty()) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* end = p + text.size();
    while (p < end && characters.size() <= kMaxAlphabet) {
      const size_t length = CharacterLength(p, end);
      characters.emplace_back(reinterpret_cast<const char*>(p), length);
      p += length;
    }
  }
  if (characters.size() < 2 || characters.size() > kMaxAlphabet) Fail(kAlphabetSize);
  return characters;
}

void CFastInfosetReader::NonEmptyOctetRestrictedAlphabetString(const EncodedString& encoded) {
  const std::vector<std::string_view>& characters = AlphabetCharacters(encoded.table);
  const uint32_t size = static_cast<uint32_t>(characters.size());
  uint32_t width = 2;
  while ((uint32_t(1) << width) <= size) ++width;
  // The all-ones index ends the string early; it pads the last octet.
  const uint32_t terminator = (uint32_t(1) << width) - 1;

  m_lastString.clear();
  auto append = [&](uint32_t index) {
    if (index >= size) Fail(kAlphabetIndex);
    m_lastString.append(characters[index].data(), characters[index].size());
  };
  if (width == 8) {
    for (size_t i = 0; i < encoded.length && encoded.data[i] != terminator; ++i) append(encoded.data[i]);
  } else if (width == 4) {
    for (size_t i = 0; i < encoded.length; ++i) {
      const uint32_t high = encoded.data[i] >> 4, low = encoded.data[i] & 0x0F;
      if (high == terminator) break;
      append(high);
      if (low == terminator) break;
      append(low);
    }
  } else {
    InitBits(width, encoded.data);
    const uint64_t count = uint64_t(encoded.length) * 8 / width;
    for (uint64_t i = 0; i < count; ++i) {
      const uint32_t index = GetBits();
      if (index == terminator) break;
      append(index);
    }
  }
}

void CFastInfosetReader::InitBits(uint32_t width, const unsigned char* data) {
  m_bitWidth = width;
  m_bitsLeft = 0;
  m_bitValue = 0;
  m_bitData = data;
}

// The next index of the bit stream; the caller never asks for more bits
// than its octets hold. Widths stay below 24 bits, so the held value never
// needs more than 31 bits.
uint32_t CFastInfosetReader::GetBits() {
  while (m_bitsLeft < m_bitWidth) {
    m_bitValue = (m_bitValue << 8) | *m_bitData++;
    m_bitsLeft += 8;
  }
  m_bitsLeft -= m_bitWidth;
  return (m_bitValue >> m_bitsLeft) & ((uint32_t(1) << m_bitWidth) - 1);
}

// ---- integers and lengths --------------------------------------------------

uint32_t CFastInfosetReader::IntegerOnSecondBit(unsigned char octet, const char* message) {
  const uint32_t bits = octet & 0x7F;
  if (bits < 0x40) return bits + 1;
  if ((bits & 0x60) == 0x40) return (((bits & 0x1F) << 8) | Take()) + 65;
  if ((bits & 0x70) == 0x60) {
    const uint32_t value = (((bits & 0x0F) << 16) | Take16()) + 8257;
    if (value <= kMaxIndex) return value;
  }
  Fail(message);
}

uint32_t CFastInfosetReader::Integer1To2pw20Bit2(unsigned char octet) { return IntegerOnSecondBit(octet, kInteger1Bit2); }

uint32_t CFastInfosetReader::Integer0To2pw20Bit2(unsigned char octet) {
  if ((octet & 0x7F) == 0x7F) return 0;
  return IntegerOnSecondBit(octet, kInteger0Bit2);
}

uint32_t CFastInfosetReader::Integer1To2pw20Bit3(unsigned char octet) {
  const uint32_t bits = octet & 0x3F;
  if (bits < 0x20) return bits + 1;
  if ((bits & 0x38) == 0x20) return (((bits & 0x07) << 8) | Take()) + 33;
  if ((bits & 0x38) == 0x28) return (((bits & 0x07) << 16) | Take16()) + 2081;
  if (bits == 0x30) {
    const uint32_t high = Take();
    if ((high & 0xF0) == 0) {
      const uint32_t value = ((high << 16) | Take16()) + 526369;
      if (value <= kMaxIndex) return value;
    }
  }
  Fail(kInteger1Bit3);
}

uint32_t CFastInfosetReader::Integer1To2pw20Bit4(unsigned char octet) {
  const uint32_t bits = octet & 0x1F;
  if (bits < 0x10) return bits + 1;
  if ((bits & 0x1C) == 0x10) return (((bits & 0x03) << 8) | Take()) + 17;
  if ((bits & 0x1C) == 0x14) return (((bits & 0x03) << 16) | Take16()) + 1041;
  if (bits == 0x18) {
    const uint32_t high = Take();
    if ((high & 0xF0) == 0) {
      const uint32_t value = ((high << 16) | Take16()) + 263185;
      if (value <= kMaxIndex) return value;
    }
  }
  Fail(kInteger1Bit4);
}

uint64_t CFastInfosetReader::NonEmptyOctetStringBit2Length(unsigned char octet) {
  const uint32_t bits = octet & 0x7F;
  if (bits < 0x40) return bits + 1;
  if (bits == 0x40) return uint64_t(Take()) + 65;
  if (bits == 0x60) return uint64_t(Take32()) + 321;
  Fail(kLengthBit2);
}

uint64_t CFastInfosetReader::NonEmptyOctetStringBit5Length(unsigned char octet) {
  const uint32_t bits = octet & 0x0F;
  if (bits < 0x08) return bits + 1;
  if (bits == 0x08) return uint64_t(Take()) + 9;
  if (bits == 0x0C) return uint64_t(Take32()) + 265;
  Fail(kLengthBit5);
}

uint64_t CFastInfosetReader::NonEmptyOctetStringBit7Length(unsigned char octet) {
  const uint32_t bits = octet & 0x03;
  if (bits < 0x02) return bits + 1;
  if (bits == 0x02) return uint64_t(Take()) + 3;
  return uint64_t(Take32()) + 259;
}

uint32_t CFastInfosetReader::LengthOfSequence() {
  const uint32_t octet = Take();
  if (octet < 0x80) return octet + 1;
  return (((octet & 0x0F) << 16) | Take16()) + 129;
}

const unsigned char* CFastInfosetReader::Move(uint64_t count) {
  if (count > static_cast<uint64_t>(m_end - m_position)) Fail(kEndOfFile);
  const unsigned char* start = m_position;
  m_position += count;
  return start;
}

uint32_t CFastInfosetReader::Take16() {
  const unsigned char* p = Move(2);
  return (uint32_t(p[0]) << 8) | p[1];
}

uint32_t CFastInfosetReader::Take32() {
  const unsigned char* p = Move(4);
  return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | p[3];
}

void CFastInfosetReader::Spend(size_t bytes) {
  if (bytes > m_budget)
    Fail(FormatString("Failed to parse FastInfoset. The document expands to more than %lu times its size.",
                      static_cast<unsigned long>(kAmplification)));
  m_budget -= bytes;
}

// ---- components read past --------------------------------------------------

void CFastInfosetReader::SkipNonEmptyOctetStringBit2() { Move(NonEmptyOctetStringBit2Length(Take())); }

void CFastInfosetReader::SkipIdentifyingStringOrIndex() {
  const unsigned char octet = Take();
  if (octet & 0x80)
    Integer1To2pw20Bit2(octet);
  else
    Move(NonEmptyOctetStringBit2Length(octet));
}

void CFastInfosetReader::SkipNonIdentifyingStringOrIndexBit1() {
  const unsigned char octet = Take();
  if (octet & 0x80)
    Integer0To2pw20Bit2(octet);
  else
    EncodedCharacterStringBit3(octet);
}

void CFastInfosetReader::SkipAdditionalData() {
  for (uint32_t items = LengthOfSequence(); items > 0; --items) {
    SkipNonEmptyOctetStringBit2();  // id
    SkipNonEmptyOctetStringBit2();  // data
  }
}

void CFastInfosetReader::SkipStringSequence() {
  for (uint32_t items = LengthOfSequence(); items > 0; --items) SkipNonEmptyOctetStringBit2();
}

void CFastInfosetReader::SkipEncodedStringSequence() {
  for (uint32_t items = LengthOfSequence(); items > 0; --items) EncodedCharacterStringBit3(Take());
}

void CFastInfosetReader::SkipNameSurrogates() {
  for (uint32_t items = LengthOfSequence(); items > 0; --items) {
    const unsigned char present = Take();
    if (present & 0x02) Integer1To2pw20Bit2(Take());  // prefix
    if (present & 0x01) Integer1To2pw20Bit2(Take());  // namespace name
    Integer1To2pw20Bit2(Take());                      // local name
  }
}

void CFastInfosetReader::SkipNotations() {
  for (unsigned char octet = Take(); octet != 0xF0; octet = Take()) {
    if ((octet & 0xFC) != 0xC0) Fail(kElementType);
    SkipIdentifyingStringOrIndex();                    // name
    if (octet & 0x02) SkipIdentifyingStringOrIndex();  // system identifier
    if (octet & 0x01) SkipIdentifyingStringOrIndex();  // public identifier
  }
}

void CFastInfosetReader::SkipUnparsedEntities() {
  for (unsigned char octet = Take(); octet != 0xF0; octet = Take()) {
    if ((octet & 0xFE) != 0xD0) Fail(kElementType);
    SkipIdentifyingStringOrIndex();                    // name
    SkipIdentifyingStringOrIndex();                    // system identifier
    if (octet & 0x01) SkipIdentifyingStringOrIndex();  // public identifier
    SkipIdentifyingStringOrIndex();                    // notation name
  }
}

void CFastInfosetReader::SkipProcessingInstruction() {
  SkipIdentifyingStringOrIndex();  // target
  SkipNonIdentifyingStringOrIndexBit1();  // content
}

void CFastInfosetReader::SkipComment() { SkipNonIdentifyingStringOrIndexBit1(); }

void CFastInfosetReader::SkipEntityReference(unsigned char octet) {
  SkipIdentifyingStringOrIndex();                    // name
  if (octet & 0x02) SkipIdentifyingStringOrIndex();  // system identifier
  if (octet & 0x01) SkipIdentifyingStringOrIndex();  // public identifier
}

void CFastInfosetReader::SkipDocumentTypeDeclaration(unsigned char octet) {
  if (octet & 0x02) SkipIdentifyingStringOrIndex();  // system identifier
  if (octet & 0x01) SkipIdentifyingStringOrIndex();  // public identifier
  for (;;) {
    const unsigned char child = Take();
    if (child == 0xE1) {
      SkipProcessingInstruction();
    } else if (child == 0xF0 || child == 0xFF) {
      // FF: the declaration's terminator and the document's.
      m_doubleTerminator = child == 0xFF;
      return;
    } else {
      Fail(kElementType);
    }
  }
}

}  // namespace KoXmlLib10
