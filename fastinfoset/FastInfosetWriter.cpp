#include "KoXmlLib10/FastInfosetWriter.h"

#include <cstring>
#include <typeinfo>

#include "KoXmlLib10/Conversions.h"
#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/FastInfosetBinaryData.h"
#include "KoXmlLib10/Streams.h"
#include "KoXmlLib10/Unicode.h"
#include "fastinfoset/NumericOctets.h"
#include "foundation/ShortText.h"

namespace KoXmlLib10 {

const char* const FI_DECLARATION_LIST[9] = {
    "<?xml encoding='finf'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>",
};

const char* const CFastInfosetWriter::FI_DEFAULT_VOCABULARY_URI =
    "urn:tesselbind:koxmllib10:vocabulary";

namespace {

constexpr unsigned long kMaxIndex = 1ul << 20;
// Octets collected before they go to the stream, with batched output.
constexpr size_t kBatchBytes = 64 * 1024;
constexpr size_t kMaxAlphabetLength = size_t(1) << 20;

constexpr unsigned char kTerminator = 0xF0;
constexpr unsigned char kDoubleTerminator = 0xFF;
constexpr unsigned char kElementHasAttributes = 0x40;
constexpr unsigned char kElementHasNamespaceAttributes = 0x38;
constexpr unsigned char kNamespaceAttribute = 0xCC;  // | 0x02 prefix, | 0x01 namespace name
constexpr unsigned char kIdentifyingIndex = 0x80;
constexpr unsigned char kEmptyAttributeValue = 0xFF;  // index 0 on the second bit
constexpr unsigned char kAddToTableBit2 = 0x40;
constexpr unsigned char kCharacterChunkIndex = 0x20;
constexpr unsigned char kAddToTableBit4 = 0x10;

enum EncodingKind : uint32_t { kDefaultString = 0, kRestrictedAlphabet = 1, kAlgorithm = 2 };
constexpr uint32_t kBuiltInAlphabets = 2;
constexpr uint32_t kBuiltInAlgorithms = 10;
constexpr uint32_t kCdataAlgorithm = 10;

// An integer from 1 to 2^20 starting on a given bit: a short form in the bits
// of the first octet, then ever longer forms, each marked by its tag bits.
struct IntegerForm {
  unsigned long small;
  unsigned char mediumTag;
  int mediumBits;
  unsigned char largeTag;
  int largeBits;
  unsigned char hugeTag;  // the 20-bit form in octets of its own
};
constexpr IntegerForm kIntegerOnBit2{64, 0x40, 13, 0x60, 20, 0};
constexpr IntegerForm kIntegerOnBit3{32, 0x20, 11, 0x28, 19, 0x30};
constexpr IntegerForm kIntegerOnBit4{16, 0x10, 10, 0x14, 18, 0x18};

// The length of a non-empty octet string starting on a given bit: short in
// the first octet, medium in one more octet, large in four.
struct LengthForm {
  size_t small;
  unsigned char mediumTag;
  unsigned char largeTag;
};
constexpr LengthForm kLengthOnBit2{64, 0x40, 0x60};
constexpr LengthForm kLengthOnBit5{8, 0x08, 0x0C};
constexpr LengthForm kLengthOnBit7{2, 0x02, 0x03};

const IntegerForm& IntegerFormOn(int startBit) {
  return startBit == 2 ? kIntegerOnBit2 : startBit == 3 ? kIntegerOnBit3 : kIntegerOnBit4;
}

const LengthForm& LengthFormOn(int startBit) {
  return startBit == 2 ? kLengthOnBit2 : startBit == 5 ? kLengthOnBit5 : kLengthOnBit7;
}

void PutByte(std::string& out, unsigned long byte) { out += static_cast<char>(byte & 0xFF); }

std::string_view ViewOf(const CBinaryData& data) {
  return std::string_view(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

// The octets of the numeric and boolean algorithms, as
// CFastInfosetBinaryData::SetAsEncodedString gives them (same conversions,
// same failures), without building a CBinaryData per value. False for the
// other algorithms, and for text with a NUL (the encoder reads up to it).
bool EncodeNumber(uint32_t algorithm, const std::string& text, std::string& out) {
  if (std::memchr(text.data(), 0, text.size())) return false;
  return NumericOctets(algorithm, text, out);
}

// Whether `key` is the name-map key of localName, namespaceUri and prefix.
bool IsQNameKey(std::string_view key, std::string_view localName, std::string_view namespaceUri,
                std::string_view prefix) {
  const size_t local = localName.size();
  const size_t uri = namespaceUri.size();
  return key.size() == local + uri + prefix.size() + 2 && key[local] == '\x01' && key[local + uri + 1] == '\x01' &&
         SameText(key.substr(0, local), localName) && SameText(key.substr(local + 1, uri), namespaceUri) &&
         SameText(key.substr(local + uri + 2), prefix);
}

bool StartsWith(const std::string& text, const char* start) {
  return text.compare(0, std::strlen(start), start) == 0;
}

}  // namespace

// Collects the octets of one public operation and hands them to the stream
// when the outermost operation ends, so that a run of calls costs one append.
class CFastInfosetWriter::COperation {
 public:
  explicit COperation(CFastInfosetWriter& writer) : m_writer(writer) { ++m_writer.m_operationDepth; }
  ~COperation() {
    if (--m_writer.m_operationDepth != 0 || m_done || m_writer.m_out.empty()) return;
    // Only an exception gets here with octets left: they stay written, and
    // a failure to store them must not replace the exception in flight.
    try {
      m_writer.Commit();
    } catch (...) {
    }
  }
  COperation(const COperation&) = delete;
  COperation& operator=(const COperation&) = delete;

  void Done() {
    m_done = true;
    if (m_writer.m_operationDepth != 1) return;
    if (!m_writer.m_batchedOutput || m_writer.m_out.size() >= kBatchBytes) m_writer.Commit();
  }

 private:
  CFastInfosetWriter& m_writer;
  bool m_done = false;  // ended normally: batched octets may stay with the writer
};

CFastInfosetWriter::CFastInfosetWriter(const CFastInfosetContext& context, CBinaryStream& stream)
    : m_stream(stream),
      m_context(context),
      m_vocabulary(context.GetUseGeneratedVocabulary()
                       ? std::make_unique<CFIVocabulary>(*context.GetVocabulary())
                       : std::make_unique<CFIVocabulary>()) {}

CFastInfosetWriter::~CFastInfosetWriter() {
  // Batched octets still belong to the stream, which outlives the writer.
  try {
    Commit();
  } catch (...) {
  }
}

void CFastInfosetWriter::SetBatchedOutput(bool batched) {
  m_batchedOutput = batched;
  if (!batched) Commit();
}

void CFastInfosetWriter::Commit() {
  if (m_out.empty()) return;
  m_stream.Append(reinterpret_cast<unsigned char*>(m_out.data()), m_out.size());
  m_out.clear();
}

// ---- document and element structure ----------------------------------------

void CFastInfosetWriter::WriteStartDocument(FInfoDecl decl) {
  COperation operation(*this);
  if (decl < FInfoDeclNone || decl > FInfoDecl11StandaloneNo)
    throw CKoException(FormatString("Failed to write FastInfoset. Invalid XML declaration [%d]",
                                    static_cast<int>(decl)));
  if (decl != FInfoDeclNone) m_out += FI_DECLARATION_LIST[decl - 1];
  m_out.append("\xE0\x00\x00\x01", 4);
  if (!m_context.GetUseGeneratedVocabulary()) {
    PutByte(m_out, 0x00);  // no optional components
  } else {
    PutByte(m_out, 0x20);  // an initial vocabulary ...
    m_out.append("\x10\x00", 2);  // ... holding only a reference to an external one
    const std::string uri = m_context.GetExternalVocabularyURI();
    PutOctets(0x00, Utf8Of(uri.empty() ? FI_DEFAULT_VOCABULARY_URI : uri), 2);
  }
  operation.Done();
}

void CFastInfosetWriter::WriteEndDocument() {
  COperation operation(*this);
  RequireNoOpenElement();
  PutByte(m_out, m_pendingTerminator ? kDoubleTerminator : kTerminator);
  m_pendingTerminator = false;
  operation.Done();
  Commit();  // the document is complete in the stream, batched or not
}

void CFastInfosetWriter::WriteComment(const std::string&) {}

void CFastInfosetWriter::WritePI(const std::string&) {}

void CFastInfosetWriter::WriteInlineSchema(const std::string&) {}

void CFastInfosetWriter::WriteStartElement(const std::string& localName,
                                           const std::string& namespaceUri) {
  COperation operation(*this);
  CloseStartTag();
  if (CXmlWriterContext* parent = GetCurrentContext())
    parent->SetChildCount(parent->GetChildCount() + 1);
  WritePendingTerminator();

  CXmlWriterContext* element = PushContext(localName, namespaceUri);
  m_pendingElement = element;
  m_pendingPrefix.clear();
  m_declarations.clear();
  m_heldCount = 0;
  if (namespaceUri.empty()) {
    // Otherwise the element would read back in the inherited default namespace.
    if (!element->GetDefaultNamespace().empty()) {
      m_declarations.push_back(CDeclaration{});
      element->SetDefaultNamespace(std::string());
    }
  } else if (namespaceUri != element->GetDefaultNamespace()) {
    m_pendingPrefix = PrefixFor(namespaceUri);
  }
  operation.Done();
}

void CFastInfosetWriter::WriteElement(bool hasAttributes) {
  if (!m_pendingElement) return;
  COperation operation(*this);
  CXmlWriterContext* element = m_pendingElement;
  m_pendingElement = nullptr;
  const bool withAttributes = hasAttributes || m_heldCount > 0;
  element->SetAttributesWritten(withAttributes);

  unsigned char octet = withAttributes ? kElementHasAttributes : 0x00;
  const bool outermost = element->GetParent() == nullptr;
  if (outermost || !m_declarations.empty()) {
    PutByte(m_out, octet | kElementHasNamespaceAttributes);
    if (outermost) {
      if (!element->GetDefaultNamespace().empty())
        WriteNamespaceAttribute(std::string(), element->GetDefaultNamespace());
      for (const auto& [uri, prefix] : GetRootNamespaceMap())
        if (!StartsWith(uri, XML_NAMESPACE)) WriteNamespaceAttribute(prefix, uri);
    }
    for (const CDeclaration& declaration : m_declarations)
      WriteNamespaceAttribute(declaration.prefix, declaration.uri);
    m_declarations.clear();
    PutByte(m_out, kTerminator);
    octet = 0x00;
  }
  PutQualifiedName(octet, 3, m_pendingPrefix, element->GetNamespaceUri(), element->GetLocalName(),
                   m_vocabulary->GetElementNamesMap());

  const size_t held = m_heldCount;
  m_heldCount = 0;
  for (size_t i = 0; i < held; ++i) WriteAttribute(m_heldAttributes[i]);
  operation.Done();
}

void CFastInfosetWriter::CloseStartTag() {
  WriteElement(m_heldCount > 0);
  CXmlWriterContext* current = GetCurrentContext();
  if (!current || !current->GetStartTagOpen()) return;
  current->SetStartTagOpen(false);
  // The attribute list ends in an octet of its own; only element terminators
  // share octets with each other.
  if (current->GetAttributesWritten()) PutByte(m_out, kTerminator);
}

void CFastInfosetWriter::WritePendingTerminator() {
  if (!m_pendingTerminator) return;
  PutByte(m_out, kTerminator);
  m_pendingTerminator = false;
}

void CFastInfosetWriter::WriteString(const std::string& text, ItemType type) {
  if (text.empty() || text[0] == '\0') return;  // a character chunk is never empty
  COperation operation(*this);
  if (!GetCurrentContext())
    throw CKoException("Failed to write FastInfoset. Text must be inside an Element.");
  CloseStartTag();
  WritePendingTerminator();
  PutCharacterChunk(0x80, text, m_vocabulary->GetCharacterChunksMap(),
                    m_context.GetElementMaxAddLength(), type);
  operation.Done();
}

void CFastInfosetWriter::WriteEndElement() {
  COperation operation(*this);
  RequireOpenElement();
  CloseStartTag();
  if (m_pendingTerminator) {
    PutByte(m_out, kDoubleTerminator);  // the one owed and this element's
    m_pendingTerminator = false;
  } else {
    m_pendingTerminator = true;
  }
  PopContext();
  operation.Done();
}

// The octets of WriteStartElement, WriteString and WriteEndElement, without
// opening a scope for the element: a namespace it declares is declared on it
// alone, which is all that scope would have lived for.
void CFastInfosetWriter::WriteSimpleElement(const std::string& localName, const std::string& namespaceUri,
                                            const std::string& text, ItemType type) {
  CXmlWriterContext* parent = GetCurrentContext();
  // The outermost element declares the root namespaces; a derived writer
  // may have operations of its own for the three calls.
  if (!parent || typeid(*this) != typeid(CFastInfosetWriter))
    return CXmlWriter::WriteSimpleElement(localName, namespaceUri, text, type);
  COperation operation(*this);
  CloseStartTag();
  parent->SetChildCount(parent->GetChildCount() + 1);
  WritePendingTerminator();

  static const std::string kNoPrefix;
  CChildNamespace name;
  ChildNamespace(*parent, namespaceUri, name);
  m_declarations.clear();
  if (name.undeclareDefault) m_declarations.push_back(CDeclaration{});
  if (name.declare) m_declarations.push_back(CDeclaration{name.declaredPrefix, namespaceUri});
  if (!m_declarations.empty()) {
    PutByte(m_out, kElementHasNamespaceAttributes);
    for (const CDeclaration& declaration : m_declarations)
      WriteNamespaceAttribute(declaration.prefix, declaration.uri);
    m_declarations.clear();
    PutByte(m_out, kTerminator);
  }
  PutQualifiedName(0x00, 3, name.prefix ? *name.prefix : kNoPrefix, namespaceUri, localName,
                   m_vocabulary->GetElementNamesMap());
  if (!text.empty() && text[0] != '\0')
    PutCharacterChunk(0x80, text, m_vocabulary->GetCharacterChunksMap(), m_context.GetElementMaxAddLength(), type);
  m_pendingTerminator = true;  // none was owed: it was written above
  operation.Done();
}

void CFastInfosetWriter::WriteNamespaceAttribute(const std::string& prefix, const std::string& uri) {
  PutByte(m_out, kNamespaceAttribute | (prefix.empty() ? 0 : 0x02) | (uri.empty() ? 0 : 0x01));
  if (!prefix.empty()) PutIdentifyingString(prefix, m_vocabulary->GetPrefixNamesMap());
  if (!uri.empty()) PutIdentifyingString(uri, m_vocabulary->GetNamespaceNamesMap());
}

std::string CFastInfosetWriter::PrefixFor(const std::string& uri) {
  bool declared = false;
  std::string prefix = PrefixInScope(uri, declared);
  if (declared) m_declarations.push_back(CDeclaration{prefix, uri});
  return prefix;
}

// ---- attributes -------------------------------------------------------------

void CFastInfosetWriter::WriteAttributeString(const std::string& localName,
                                              const std::string& namespaceUri,
                                              const std::string& value, ItemType type) {
  COperation operation(*this);
  RequireOpenStartTag();
  // A header written ahead without attributes takes none.
  RequireOpenStartTag(m_pendingElement || GetCurrentContext()->GetAttributesWritten());
  if (m_heldCount == m_heldAttributes.size()) m_heldAttributes.emplace_back();
  CHeldAttribute& attribute = m_heldAttributes[m_heldCount];
  // The value first: a failure leaves neither the attribute nor a declaration behind.
  const size_t start = m_out.size();
  try {
    PutAttributeValue(value, m_vocabulary->GetAttributeValuesMap(), m_context.GetAttributeMaxAddLength(), type);
  } catch (...) {
    m_out.resize(start);
    throw;
  }
  attribute.encodedValue.assign(m_out, start, std::string::npos);
  m_out.resize(start);
  ++m_heldCount;
  // An attribute without a prefix is in no namespace, whatever the default.
  if (namespaceUri.empty())
    attribute.prefix.clear();
  else
    attribute.prefix = PrefixFor(namespaceUri);
  attribute.namespaceUri = namespaceUri;
  attribute.localName = localName;
  // Held with a pending header; after a header written ahead, written at once.
  if (!m_pendingElement) {
    m_heldCount = 0;
    WriteAttribute(attribute);
  }
  operation.Done();
}

void CFastInfosetWriter::WriteAttribute(const CHeldAttribute& attribute) {
  PutQualifiedName(0x00, 2, attribute.prefix, attribute.namespaceUri, attribute.localName,
                   m_vocabulary->GetAttributeNamesMap());
  m_out += attribute.encodedValue;
}

void CFastInfosetWriter::WriteAttributeType(const std::string& typeNamespaceUri,
                                            const std::string& typeName, ItemType type) {
  COperation operation(*this);
  std::string declaredPrefix;
  const std::string value = TypeAttributeValue(typeNamespaceUri, typeName, declaredPrefix);
  // The value's prefix is declared on this element when it was not in scope,
  // so that a reader can resolve it.
  if (!declaredPrefix.empty()) m_declarations.push_back(CDeclaration{declaredPrefix, typeNamespaceUri});
  WriteTypeAttribute(value, type);
  operation.Done();
}

void CFastInfosetWriter::WriteAttributeNil() { WriteNilAttribute(); }

// ---- encoders ---------------------------------------------------------------

void CFastInfosetWriter::PutInteger(unsigned char prefix, unsigned long value, int startBit) {
  if (value < 1 || value > kMaxIndex)
    throw CKoException(
        FormatString("Failed to write FastInfoset. Invalid integer value [%lu]", value));
  const IntegerForm& form = IntegerFormOn(startBit);
  unsigned long rest = value - 1;
  if (rest < form.small) return PutByte(m_out, prefix | rest);
  rest -= form.small;
  if (rest < (1ul << form.mediumBits)) {
    PutByte(m_out, prefix | form.mediumTag | (rest >> 8));
    return PutByte(m_out, rest);
  }
  rest -= 1ul << form.mediumBits;
  if (rest < (1ul << form.largeBits)) {
    PutByte(m_out, prefix | form.largeTag | (rest >> 16));
  } else {
    rest -= 1ul << form.largeBits;
    PutByte(m_out, prefix | form.hugeTag);
    PutByte(m_out, (rest >> 16) & 0x0F);
  }
  PutByte(m_out, rest >> 8);
  PutByte(m_out, rest);
}

void CFastInfosetWriter::PutLength(unsigned char prefix, size_t length, int startBit) {
  if (length == 0)
    throw CKoException("Failed to write FastInfoset. Empty string in NonEmptyOctetString.");
  const LengthForm& form = LengthFormOn(startBit);
  if (length <= form.small) return PutByte(m_out, prefix | (length - 1));
  if (length <= form.small + 256) {
    PutByte(m_out, prefix | form.mediumTag);
    return PutByte(m_out, length - form.small - 1);
  }
  const unsigned long long rest = length - form.small - 257;
  if (rest > 0xFFFFFFFFull)
    throw CKoException("Failed to write FastInfoset. Octet string too long.");
  PutByte(m_out, prefix | form.largeTag);
  for (int shift = 24; shift >= 0; shift -= 8) PutByte(m_out, static_cast<unsigned long>(rest >> shift));
}

void CFastInfosetWriter::PutOctets(unsigned char prefix, std::string_view octets, int startBit) {
  PutLength(prefix, octets.size(), startBit);
  m_out.append(octets.data(), octets.size());
}

std::string_view CFastInfosetWriter::Utf8Of(const std::string& text) {
  const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text.data());
  size_t i = 0;
  while (i < text.size() && bytes[i] != 0 && bytes[i] < 0x80) ++i;
  // Text counts up to its first NUL, as in every conversion of local text.
  if (i == text.size() || bytes[i] == 0) return std::string_view(text.data(), i);
  const CBinaryData utf8 = CEncoder::LocalCodePageToUtf8Binary(text.c_str());
  m_utf8.assign(ViewOf(utf8));
  return m_utf8;
}

void CFastInfosetWriter::PutIdentifyingString(const std::string& text,
                                              CFIVocabulary::IndexMap& strings) {
  CFIIndexMap::Hint hint;
  if (const uint32_t index = strings.Find(text, hint)) return PutInteger(kIdentifyingIndex, index, 2);
  PutOctets(0x00, Utf8Of(text), 2);
  if (strings.size() < CFIVocabulary::MAX_ENTRIES) strings.AddNew(text, hint);
}

void CFastInfosetWriter::PutQualifiedName(unsigned char prefix, int startBit,
                                          const std::string& namePrefix,
                                          const std::string& namespaceUri,
                                          const std::string& localName,
                                          CFIVocabulary::IndexMap& names) {
  if (m_knownNames.empty()) m_knownNames.resize(kKnownNames);
  CKnownName& known =
      m_knownNames[((reinterpret_cast<uintptr_t>(&localName) >> 3) ^ (reinterpret_cast<uintptr_t>(&namespaceUri) >> 5) ^
                    (reinterpret_cast<uintptr_t>(&names) >> 4)) %
                   kKnownNames];
  if (known.localName == &localName && known.namespaceUri == &namespaceUri && known.names == &names &&
      known.index != 0 && known.index <= names.size() && IsQNameKey(names.KeyOf(known.index), localName, namespaceUri, namePrefix))
    return PutInteger(prefix, known.index, startBit);
  const auto remember = [&](uint32_t index) {
    known.localName = &localName;
    known.namespaceUri = &namespaceUri;
    known.names = &names;
    known.index = index;
  };

  // localName 0x01 namespaceUri 0x01 namePrefix, built in place.
  m_key.resize(localName.size() + namespaceUri.size() + namePrefix.size() + 2);
  char* key = &m_key[0];
  std::memcpy(key, localName.data(), localName.size());
  key += localName.size();
  *key++ = '\x01';
  std::memcpy(key, namespaceUri.data(), namespaceUri.size());
  key += namespaceUri.size();
  *key++ = '\x01';
  std::memcpy(key, namePrefix.data(), namePrefix.size());
  if (const uint32_t index = names.Find(m_key)) {
    remember(index);
    return PutInteger(prefix, index, startBit);
  }

  if (!namePrefix.empty() && namespaceUri.empty())
    throw CKoException("Failed to write FastInfoset. Invalid QName type Prefix without Namespace.");
  const unsigned char literal = startBit == 3 ? 0x3C : 0x78;
  PutByte(m_out, prefix | literal | (namePrefix.empty() ? 0 : 0x02) | (namespaceUri.empty() ? 0 : 0x01));
  if (!namePrefix.empty()) PutIdentifyingString(namePrefix, m_vocabulary->GetPrefixNamesMap());
  if (!namespaceUri.empty())
    PutIdentifyingString(namespaceUri, m_vocabulary->GetNamespaceNamesMap());
  PutIdentifyingString(localName, m_vocabulary->GetLocalNamesMap());
  CFIVocabulary::AddValueToMap(m_key, names);
}

void CFastInfosetWriter::PutAttributeValue(const std::string& value,
                                           CFIVocabulary::IndexMap& values,
                                           unsigned long maxAddLength, ItemType type) {
  if (value.empty() || value[0] == '\0') return PutByte(m_out, kEmptyAttributeValue);
  if (value.size() >= maxAddLength) return PutEncodedCharacterString(0x00, value, type, 3);
  CFIIndexMap::Hint hint;
  if (const uint32_t index = values.Find(value, hint)) return PutInteger(0x80, index, 2);
  // A full table takes no more entries, so the value must not ask to be added.
  if (values.size() >= CFIVocabulary::MAX_ENTRIES) return PutEncodedCharacterString(0x00, value, type, 3);
  PutEncodedCharacterString(kAddToTableBit2, value, type, 3);
  values.AddNew(value, hint);
}

void CFastInfosetWriter::PutCharacterChunk(unsigned char prefix, const std::string& text,
                                           CFIVocabulary::IndexMap& chunks,
                                           unsigned long maxAddLength, ItemType type) {
  if (text.size() >= maxAddLength) return PutEncodedCharacterString(prefix, text, type, 5);
  CFIIndexMap::Hint hint;
  if (const uint32_t index = chunks.Find(text, hint)) return PutInteger(prefix | kCharacterChunkIndex, index, 4);
  if (chunks.size() >= CFIVocabulary::MAX_ENTRIES) return PutEncodedCharacterString(prefix, text, type, 5);
  PutEncodedCharacterString(prefix | kAddToTableBit4, text, type, 5);
  chunks.AddNew(text, hint);
}

void CFastInfosetWriter::PutEncodedCharacterString(unsigned char prefix, const std::string& text,
                                                   ItemType type, int startBit) {
  const bool onBit3 = startBit == 3;
  EncodedCharacterString encoding = m_context.GetEncoding(type);
  // That algorithm marks CDATA sections, which only content has: a value keeps its text.
  if (onBit3 && encoding.kind == kAlgorithm && encoding.index == kCdataAlgorithm) encoding = {};
  std::string_view octets;
  switch (encoding.kind) {
    case kDefaultString:
      if (m_context.GetDefaultStringEncoding() != 0)
        throw CKoException(
            "Failed to write FastInfoset. Unsupported Feature UTF16BE in EncodedCharacterStringBit5.");
      break;
    case kRestrictedAlphabet:
      if (encoding.index < 1 || encoding.index > kBuiltInAlphabets)
        throw CKoException(FormatString(
            "Failed to write FastInfoset. Invalid Restricted Alphabet value [%d]", encoding.index));
      PackRestrictedAlphabet(encoding.index, text);
      octets = m_packed;
      break;
    case kAlgorithm: {
      if (encoding.index < 1 || encoding.index > kBuiltInAlgorithms)
        throw CKoException(FormatString(
            "Failed to write FastInfoset. Invalid Encoding Algorithm value [%d]", encoding.index));
      if (!EncodeNumber(encoding.index, text, m_packed)) {
        CFastInfosetBinaryData data;
        data.SetAsEncodedString(encoding.index, text.c_str());
        m_packed.assign(ViewOf(data));
      }
      octets = m_packed;
      break;
    }
    default:
      throw CKoException(onBit3
                             ? "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5."
                             : "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7.");
  }
  // A value that encodes to no octets at all (blank base64, say) keeps its text.
  if (encoding.kind == kDefaultString || octets.empty())
    return PutOctets(prefix, Utf8Of(text), onBit3 ? 5 : 7);

  // The discriminant, then the table index (a - 1) in eight bits split over two octets.
  const unsigned long tableIndex = encoding.index - 1;
  const bool alphabet = encoding.kind == kRestrictedAlphabet;
  if (onBit3) {
    PutByte(m_out, prefix | (alphabet ? 0x20 : 0x30) | (tableIndex >> 4));
    PutOctets(static_cast<unsigned char>((tableIndex << 4) & 0xFF), octets, 5);
  } else {
    PutByte(m_out, prefix | (alphabet ? 0x08 : 0x0C) | (tableIndex >> 6));
    PutOctets(static_cast<unsigned char>((tableIndex << 2) & 0xFF), octets, 7);
  }
}

void CFastInfosetWriter::PackRestrictedAlphabet(unsigned long alphabet, const std::string& text) {
  const std::vector<std::string>& alphabets = m_vocabulary->GetRestrictedAlphabets();
  if (alphabet < 1 || alphabet > alphabets.size())
    throw CKoException(FormatString(
        "Failed to write FastInfoset. Invalid Restricted Alphabet value [%d]", static_cast<int>(alphabet)));
  const std::string& characters = alphabets[alphabet - 1];
  const size_t count = characters.size();
  if (count < 2 || count > kMaxAlphabetLength)
    throw CKoException(
        "Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain between 2 "
        "and 2^20 characters.");
  int bits = 3;
  while ((size_t(1) << bits) <= count) ++bits;
  if (bits != 4 && bits != 8)
    throw CKoException("Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.");

  m_packed.clear();
  unsigned long pending = 0;  // characters waiting for the other half of an octet
  for (const char c : text) {
    const size_t position = characters.find(c);
    if (position == std::string::npos)
      throw CKoException("Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.");
    if (bits == 8) {
      PutByte(m_packed, position);
    } else if (pending & 0x100) {
      PutByte(m_packed, ((pending & 0x0F) << 4) | position);
      pending = 0;
    } else {
      pending = 0x100 | position;
    }
  }
  if (pending & 0x100) PutByte(m_packed, ((pending & 0x0F) << 4) | 0x0F);  // all ones: padding
}

// ---- the encoders as operations of their own ----------------------------------

void CFastInfosetWriter::Integer1To2pw20Bit2(unsigned char prefix, unsigned long value) {
  COperation operation(*this);
  PutInteger(prefix, value, 2);
  operation.Done();
}

void CFastInfosetWriter::Integer0To2pw20Bit2(unsigned char prefix, unsigned long value) {
  COperation operation(*this);
  if (value == 0)
    PutByte(m_out, prefix | 0x7F);
  else
    PutInteger(prefix, value, 2);
  operation.Done();
}

void CFastInfosetWriter::Integer1To2pw20Bit3(unsigned char prefix, unsigned long value) {
  COperation operation(*this);
  PutInteger(prefix, value, 3);
  operation.Done();
}

void CFastInfosetWriter::Integer1To2pw20Bit4(unsigned char prefix, unsigned long value) {
  COperation operation(*this);
  PutInteger(prefix, value, 4);
  operation.Done();
}

void CFastInfosetWriter::NonEmptyOctetUTF8StringBit2(unsigned char prefix, const std::string& text) {
  COperation operation(*this);
  PutOctets(prefix, Utf8Of(text), 2);
  operation.Done();
}

void CFastInfosetWriter::NonEmptyOctetStringBit5(unsigned char prefix, const CBinaryData& data) {
  COperation operation(*this);
  PutOctets(prefix, ViewOf(data), 5);
  operation.Done();
}

void CFastInfosetWriter::NonEmptyOctetStringBit7(unsigned char prefix, const CBinaryData& data) {
  COperation operation(*this);
  PutOctets(prefix, ViewOf(data), 7);
  operation.Done();
}

void CFastInfosetWriter::QualifiedNameOrIndexBit2(unsigned char prefix, const std::string& namePrefix,
                                                  const std::string& namespaceUri,
                                                  const std::string& localName,
                                                  CFIVocabulary::IndexMap& names) {
  COperation operation(*this);
  PutQualifiedName(prefix, 2, namePrefix, namespaceUri, localName, names);
  operation.Done();
}

void CFastInfosetWriter::QualifiedNameOrIndexBit3(unsigned char prefix, const std::string& namePrefix,
                                                  const std::string& namespaceUri,
                                                  const std::string& localName,
                                                  CFIVocabulary::IndexMap& names) {
  COperation operation(*this);
  PutQualifiedName(prefix, 3, namePrefix, namespaceUri, localName, names);
  operation.Done();
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit1(const std::string& value,
                                                         CFIVocabulary::IndexMap& values,
                                                         unsigned long maxAddLength, ItemType type) {
  COperation operation(*this);
  PutAttributeValue(value, values, maxAddLength, type);
  operation.Done();
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit3(unsigned char prefix, const std::string& text,
                                                         CFIVocabulary::IndexMap& chunks,
                                                         unsigned long maxAddLength, ItemType type) {
  COperation operation(*this);
  PutCharacterChunk(prefix, text, chunks, maxAddLength, type);
  operation.Done();
}

void CFastInfosetWriter::EncodedCharacterStringBit3(unsigned char prefix, const std::string& text,
                                                    ItemType type) {
  COperation operation(*this);
  PutEncodedCharacterString(prefix, text, type, 3);
  operation.Done();
}

void CFastInfosetWriter::EncodedCharacterStringBit5(unsigned char prefix, const std::string& text,
                                                    ItemType type) {
  COperation operation(*this);
  PutEncodedCharacterString(prefix, text, type, 5);
  operation.Done();
}

CBinaryData CFastInfosetWriter::AppendRestrictedAlphabetString(unsigned long alphabet,
                                                               const std::string& text) {
  PackRestrictedAlphabet(alphabet, text);
  CBinaryData packed;
  packed.Append(reinterpret_cast<unsigned char*>(m_packed.data()), m_packed.size());
  return packed;
}

}  // namespace KoXmlLib10
