#include "xml/ExpatReader.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Unicode.h"

namespace KoXmlLib10 {

namespace {

constexpr char kNameSeparator = '|';
// expat copies what it is given into its own buffer: pieces of this size
// keep that buffer small and warm in the cache.
constexpr unsigned long kPieceBytes = 64 * 1024;

}  // namespace

CExpatReader::CExpatReader(CXmlDocument& document) : m_document(document), m_store(*document.m_store) {}

CExpatReader::~CExpatReader() {
  Cleanup();
  ReleaseParser();
}

void CExpatReader::Cleanup() { m_scratch.Free(); }

void CExpatReader::ReleaseParser() {
  if (m_parser) XML_ParserFree(m_parser);
  m_parser = nullptr;
}

void CExpatReader::CreateParser() {
  m_scratch.Allocate();
  ReleaseParser();
  m_parser = m_document.m_schemaType == SchemaTypeNoNamespaces ? XML_ParserCreate(nullptr)
                                                               : XML_ParserCreateNS(nullptr, kNameSeparator);
  if (!m_parser) throw std::bad_alloc();
  XML_SetUserData(m_parser, this);
  XML_SetElementHandler(m_parser, FnStartElement, FnEndElement);
  XML_SetNamespaceDeclHandler(m_parser, FnStartNamespace, FnEndNamespace);
  XML_SetCharacterDataHandler(m_parser, FnText);
  if (!m_document.m_context->GetStripCDATA()) XML_SetCdataSectionHandler(m_parser, FnStartCDATA, FnEndCDATA);
}

void CExpatReader::Parse(bool isFinal) {
  const bool fromSource = m_document.m_source != nullptr;
  const char* data = reinterpret_cast<const char*>(fromSource ? m_document.m_source : m_document.m_input.get());
  unsigned long remaining = fromSource ? m_document.m_sourceLength : m_document.m_inputLength;
  XML_Status status = XML_STATUS_OK;
  do {
    const int piece = static_cast<int>(std::min<unsigned long>(remaining, kPieceBytes));
    remaining -= piece;
    status = XML_Parse(m_parser, data, piece, remaining == 0 && isFinal);
    data += piece;
  } while (status == XML_STATUS_OK && remaining > 0);

  if (status == XML_STATUS_OK) {
    if (isFinal) ReleaseParser();
    return;
  }
  const std::string message =
      FormatString("%s at line %lu", XML_ErrorString(XML_GetErrorCode(m_parser)),
                   static_cast<unsigned long>(XML_GetCurrentLineNumber(m_parser)));
  Cleanup();
  ReleaseParser();
  if (m_failure) std::rethrow_exception(m_failure);
  throw CKoException(message);
}

template <typename Work>
void CExpatReader::Guarded(void* userData, Work&& work) {
  CExpatReader& reader = *static_cast<CExpatReader*>(userData);
  // A stopped parser may still deliver a few events; they are not wanted.
  if (reader.m_failure) return;
  try {
    work(reader);
  } catch (...) {
    reader.m_failure = std::current_exception();
    XML_StopParser(reader.m_parser, XML_FALSE);
  }
}

namespace {

// A cheap slot for the recent-names cache: the length and the last bytes,
// where names in one namespace differ (they share the URI in front). A poor
// spread only costs misses that the full map then answers.
size_t RecentSlot(std::string_view name, size_t slots) {
  uint64_t tail = 0;
  const size_t n = std::min<size_t>(name.size(), 8);
  std::memcpy(&tail, name.data() + name.size() - n, n);
  const uint64_t mixed = (tail ^ (name.size() * 0x9E3779B97F4A7C15ull)) * 0xFF51AFD7ED558CCDull;
  return static_cast<size_t>(mixed >> 58) & (slots - 1);
}

// Whether text is ASCII holding no carriage return and no NUL, eight bytes
// at a time.
bool IsPlainAscii(const char* p, size_t n) {
  constexpr uint64_t kOnes = 0x0101010101010101ull, kHigh = 0x8080808080808080ull;
  constexpr uint64_t kCr = 0x0D0D0D0D0D0D0D0Dull;
  uint64_t found = 0;
  for (; n >= 8; p += 8, n -= 8) {
    uint64_t word;
    std::memcpy(&word, p, 8);
    const uint64_t cr = word ^ kCr;
    found |= word | ((word - kOnes) & ~word) | ((cr - kOnes) & ~cr);
  }
  for (; n > 0; ++p, --n) {
    const unsigned char c = static_cast<unsigned char>(*p);
    if (c == '\r' || c == 0) return false;
    found |= c;
  }
  return (found & kHigh) == 0;
}

}  // namespace

const CXmlNodeName* CExpatReader::NameOf(const XML_Char* name) {
  const std::string_view whole(name);
  RecentName& recent = m_recent[RecentSlot(whole, kRecentNames)];
  if (recent.name && recent.key == whole) return recent.name;
  const CXmlNodeName* found = LookUpName(whole);
  recent.key.assign(whole.data(), whole.size());
  recent.name = found;
  return found;
}

const CXmlNodeName* CExpatReader::LookUpName(std::string_view whole) {
  const size_t hash = CStringMap::Hash(whole);
  if (const void* known = m_names.Find(whole, hash)) return static_cast<const CXmlNodeName*>(known);
  // expat joins a namespace URI and a local name with the separator; local
  // names cannot contain it, so the last one is the split point.
  const void* last = memrchr(whole.data(), kNameSeparator, whole.size());
  std::string uri, local;
  std::string_view uriView, localView = whole;
  if (last) {
    const size_t separator = static_cast<const char*>(last) - whole.data();
    uriView = m_scratch.ToLocal(whole.substr(0, separator), uri, false);
    localView = whole.substr(separator + 1);
  }
  localView = m_scratch.ToLocal(localView, local, false);
  const CXmlNodeName* shared = m_store.Name(uriView, localView);
  m_names.Insert(whole, hash, shared);
  return shared;
}

void XMLCALL CExpatReader::FnStartElement(void* userData, const XML_Char* name, const XML_Char** attributes) {
  Guarded(userData, [&](CExpatReader& reader) {
    CXmlDocumentStore& store = reader.m_store;
    CXmlElement* element = store.Start(reader.NameOf(name));
    if (!attributes[0]) return;
    size_t count = 0;
    while (attributes[2 * count]) ++count;
    store.ReserveAttributes(element, count);
    std::string converted;
    for (const XML_Char** pair = attributes; pair[0]; pair += 2) {
      const CXmlNodeName* attributeName = reader.NameOf(pair[0]);
      store.AddAttribute(element, attributeName, reader.m_scratch.ToLocal(pair[1], converted, false));
    }
  });
}

void XMLCALL CExpatReader::FnEndElement(void* userData, const XML_Char*) {
  Guarded(userData, [](CExpatReader& reader) { reader.m_store.End(true); });
}

void XMLCALL CExpatReader::FnText(void* userData, const XML_Char* text, int length) {
  if (length <= 0) return;
  Guarded(userData, [&](CExpatReader& reader) {
    const std::string_view utf8(text, static_cast<size_t>(length));
    // Most text is ASCII without carriage returns: one scan tells, and it
    // goes straight to the element's gathered text.
    if (IsPlainAscii(utf8.data(), utf8.size())) {
      reader.m_store.AppendToTop(utf8, true);
      return;
    }
    std::string converted;
    reader.m_store.AppendToTop(reader.m_scratch.ToLocal(utf8, converted), false);
  });
}

void XMLCALL CExpatReader::FnStartCDATA(void* userData) {
  Guarded(userData, [](CExpatReader& reader) { reader.m_store.AppendText(reader.m_store.Top(), "<![CDATA["); });
}

void XMLCALL CExpatReader::FnEndCDATA(void* userData) {
  Guarded(userData, [](CExpatReader& reader) { reader.m_store.AppendText(reader.m_store.Top(), "]]>"); });
}

void XMLCALL CExpatReader::FnStartNamespace(void* userData, const XML_Char* prefix, const XML_Char* uri) {
  Guarded(userData, [&](CExpatReader& reader) {
    std::string convertedPrefix, convertedUri;
    const std::string_view prefixView = reader.m_scratch.ToLocal(prefix ? prefix : "", convertedPrefix, false);
    const std::string_view uriView = reader.m_scratch.ToLocal(uri ? uri : "", convertedUri, false);
    reader.m_store.Declare(prefixView, uriView);
  });
}

void XMLCALL CExpatReader::FnEndNamespace(void*, const XML_Char*) {}

}  // namespace KoXmlLib10
