#include "KoXmlLib10/XmlDocument.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/KoZip.h"
#include "KoXmlLib10/StringUtils.h"
#include "fastinfoset/FastInfosetReader.h"
#include "xml/ExpatReader.h"

namespace KoXmlLib10 {

bool ASYNC_FROMXMLFILE = false;

void AsyncFromXmlFile(bool async) { ASYNC_FROMXMLFILE = async; }

namespace {

const char kSchemaInstanceNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
const char kXmlnsNamespace[] = "http://www.w3.org/2000/xmlns/";

bool IsInstanceNamespace(const std::string& uri) { return uri == kSchemaInstanceNamespace || uri == kXmlnsNamespace; }

// Closes the file before a failure is reported, as every failure path must.
struct FileCloser {
  void operator()(FILE* f) const { std::fclose(f); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

[[noreturn]] void ThrowFileError(FilePtr& file, const char* format, const char* path, const std::string& detail) {
  file.reset();
  throw CKoException(FormatString(format, path) + ": " + detail);
}

const std::string& EmptyString() {
  static const std::string empty;
  return empty;
}

SharedString Share(const std::string& s) { return s.empty() ? nullptr : std::make_shared<const std::string>(s); }

}  // namespace

CXmlAttribute::CXmlAttribute(const std::string& localName, const std::string& value, const std::string& namespaceUri)
    : m_localName(localName), m_value(value), m_namespaceUri(Share(namespaceUri)) {}

CXmlAttribute::CXmlAttribute(std::string_view localName, std::string_view value, SharedString namespaceUri)
    : m_localName(localName), m_value(value), m_namespaceUri(std::move(namespaceUri)) {}

const std::string& CXmlAttribute::GetNamespaceURI() const { return m_namespaceUri ? *m_namespaceUri : EmptyString(); }

CXmlAttribute::~CXmlAttribute() = default;

bool CXmlAttribute::IsNilAttribute() const { return IsInstanceNamespace(GetNamespaceURI()) && m_localName == "nil"; }

bool CXmlAttribute::IsNamespaceAttribute() const {
  return IsInstanceNamespace(GetNamespaceURI()) &&
         (m_localName == "xmlns" || m_localName == "type" || m_localName == "schemaLocation" ||
          m_localName == "noNamespaceSchemaLocation");
}

// ---- CXmlElement -----------------------------------------------------------

CXmlElement::CXmlElement(const CXmlDocument* owner) : m_owner(owner) {}

CXmlElement::~CXmlElement() {
  for (CXmlAttribute* attribute : m_attributes) delete attribute;
  // The descendants form one chain through the sibling links: an element
  // with children splices them in right behind itself before it is deleted,
  // so each deletion finds a childless element and nothing recurses.
  CXmlElement* chain = m_firstChild;
  m_firstChild = m_lastChild = nullptr;
  while (chain) {
    CXmlElement* element = chain;
    if (element->m_firstChild) {
      element->m_lastChild->m_nextSibling = element->m_nextSibling;
      element->m_nextSibling = element->m_firstChild;
      element->m_firstChild = element->m_lastChild = nullptr;
    }
    chain = element->m_nextSibling;
    delete element;
  }
}

const std::string& CXmlElement::GetNamespaceURI() const { return m_namespaceUri ? *m_namespaceUri : EmptyString(); }

void CXmlElement::SetNamespace(const std::string& namespaceUri) { m_namespaceUri = Share(namespaceUri); }

const std::string& CXmlElement::GetAttribute(const std::string& localName, const std::string& namespaceUri) const {
  for (const CXmlAttribute* attribute : m_attributes)
    if (attribute->GetLocalName() == localName && attribute->GetNamespaceURI() == namespaceUri)
      return attribute->GetValue();
  return EmptyString();
}

CXmlElement* CXmlElement::CreateNewChildElement() {
  CXmlElement* child = new CXmlElement(m_owner);
  if (m_lastChild)
    m_lastChild->m_nextSibling = child;
  else
    m_firstChild = child;
  m_lastChild = child;
  return child;
}

CXmlElement* CXmlElement::RemoveLastChildElement() {
  CXmlElement* last = m_lastChild;
  if (!last) return nullptr;
  if (m_firstChild == last) {
    m_firstChild = m_lastChild = nullptr;
    return last;
  }
  CXmlElement* before = m_firstChild;
  while (before->m_nextSibling != last) before = before->m_nextSibling;
  before->m_nextSibling = nullptr;
  m_lastChild = before;
  return last;
}

void CXmlElement::Append(std::string_view text) {
  if (text.empty()) return;
  // Text arrives in many small pieces: grow geometrically.
  const size_t length = m_text.size() + text.size();
  if (!m_text.empty() && length > m_text.capacity()) m_text.reserve(std::max(length, 2 * m_text.capacity()));
  m_text.append(text.data(), text.size());
}

void CXmlElement::AppendText(const char* text, int length) {
  if (text && length > 0) Append(std::string_view(text, static_cast<size_t>(length)));
}

void CXmlElement::AppendText(const char* text) {
  if (text) Append(text);
}

CXmlAttribute* CXmlElement::AddAttribute(const std::string& localName, const std::string& value,
                                         const std::string& namespaceUri) {
  std::unique_ptr<CXmlAttribute> attribute(new CXmlAttribute(localName, value, namespaceUri));
  m_attributes.push_back(attribute.get());
  return attribute.release();
}

// ---- CXmlDocument ----------------------------------------------------------

CXmlDocument::CXmlDocument() : CXmlDocument(nullptr, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(ElementFilter filter) : CXmlDocument(filter, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(const CXmlSerializationContext& context) : CXmlDocument(nullptr, context) {}

CXmlDocument::CXmlDocument(ElementFilter filter, const CXmlSerializationContext& context)
    : m_filter(filter), m_context(&context) {
  Init();
}

CXmlDocument::~CXmlDocument() { CXmlDocument::Cleanup(); }

void CXmlDocument::Init() {
  m_input.reset();
  m_inputLength = 0;
  m_documentElement.reset();
  m_openElements.clear();
  m_schemaType = m_context->GetSchemaType();
}

void CXmlDocument::Cleanup() {
  m_input.reset();
  m_documentElement.reset();
  m_inputLength = 0;
  m_openElements.clear();
  m_aliases.clear();
  m_namespaces.clear();
}

void CXmlDocument::ReplaceInput(unsigned char* data, unsigned long length) {
  m_input.reset(data);
  m_inputLength = length;
}

void CXmlDocument::LoadXml(const char* xml) {
  Cleanup();
  const size_t length = xml ? std::strlen(xml) : 0;
  if (length == 0) throw CKoException("XML String is empty!");
  std::unique_ptr<unsigned char[]> input(new unsigned char[length]);
  std::memcpy(input.get(), xml, length);
  ReplaceInput(input.release(), length);
  ParseText();
}

void CXmlDocument::LoadXml(const wchar_t* xml) {
  Cleanup();
  const size_t length = xml ? std::wcslen(xml) : 0;
  if (length == 0) throw CKoException("XML String is empty!");
  // UTF-16 little-endian after its byte-order mark, so expat needs no hint.
  std::unique_ptr<unsigned char[]> input(new unsigned char[2 * length + 2]);
  input[0] = 0xFF;
  input[1] = 0xFE;
  for (size_t i = 0; i < length; ++i) {
    const unsigned long unit = static_cast<unsigned long>(xml[i]) & 0xFFFF;
    input[2 + 2 * i] = static_cast<unsigned char>(unit & 0xFF);
    input[3 + 2 * i] = static_cast<unsigned char>(unit >> 8);
  }
  ReplaceInput(input.release(), 2 * length + 2);
  ParseText();
}

void CXmlDocument::LoadXmlStream(unsigned char* data, unsigned long size) {
  Cleanup();
  if (!data || size == 0) throw CKoException("XML Stream is empty!");
  std::unique_ptr<unsigned char[]> input(new unsigned char[size]);
  std::memcpy(input.get(), data, size);
  ReplaceInput(input.release(), size);
  Parse();
}

void CXmlDocument::Load(const char* path) {
  Cleanup();
  const char* shownPath = path ? path : "";
  FilePtr file(path ? std::fopen(path, "rb") : nullptr);
  if (!file) throw CKoException(FormatString("Failed to open the file [%s]", shownPath));

  errno = 0;
  const long size = _filelength(file.get());
  if (size < 0)
    ThrowFileError(file, "Failed to get the size of the file [%s]", shownPath,
                   errno ? std::strerror(errno) : "the size cannot be determined");
  if (size == 0) ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath, "the file is empty");
  // A directory opens like a file but reports a meaningless size and cannot
  // be read: read one byte before trusting the size with an allocation.
  unsigned char probe;
  errno = 0;
  if (std::fread(&probe, 1, 1, file.get()) != 1)
    ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath,
                   errno ? std::strerror(errno) : "the file cannot be read");
  errno = 0;
  if (std::fseek(file.get(), 0, SEEK_SET) != 0)
    ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath,
                   errno ? std::strerror(errno) : "the file cannot be read from its start");

  std::unique_ptr<unsigned char[]> input(new (std::nothrow) unsigned char[static_cast<size_t>(size)]);
  if (!input)
    ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath,
                   FormatString("no memory for %ld bytes", size));
  errno = 0;
  const size_t read = std::fread(input.get(), 1, static_cast<size_t>(size), file.get());
  if (read < static_cast<size_t>(size)) {
    const std::string detail = std::ferror(file.get()) && errno
                                   ? std::string(std::strerror(errno))
                                   : FormatString("only %lu of %ld bytes could be read",
                                                  static_cast<unsigned long>(read), size);
    ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath, detail);
  }
  file.reset();
  ReplaceInput(input.release(), static_cast<unsigned long>(size));
  Parse();
}

void CXmlDocument::Parse() {
  unsigned char* data = m_input.get();
  unsigned long length = m_inputLength;
  CKoZip::Decompress(&data, &length, m_context->GetInflateLimits());
  if (data != m_input.get()) {
    (void)m_input.release();  // Decompress has freed it
    ReplaceInput(data, length);
  }
  CFastInfosetReader reader(m_context->GetFIContext(), *this);
  if (!reader.Parse()) ParseText();
}

void CXmlDocument::ParseText() {
  CExpatReader reader(*this);
  reader.CreateParser();
  reader.Parse(true);
}

std::string CXmlDocument::LookupNamespaceFromAlias(const char* alias) const {
  const auto found = m_aliases.find(alias ? alias : "");
  return found == m_aliases.end() ? std::string() : found->second;
}

void CXmlDocument::SetAlias(std::string prefix, std::string namespaceUri) {
  m_aliases[std::move(prefix)] = std::move(namespaceUri);
}

CXmlElement* CXmlDocument::StartElement(std::string_view namespaceUri, std::string_view localName) {
  CXmlElement* element;
  if (!m_documentElement) {
    m_documentElement.reset(new CXmlElement(this));
    element = m_documentElement.get();
  } else {
    CXmlElement* parent = TopElement();
    if (!parent) throw CKoException("A document can have only one document element.");
    if (m_openElements.size() >= MAX_ELEMENT_DEPTH)
      throw CKoException(FormatString("The document is nested too deeply: more than %lu levels of elements.",
                                      static_cast<unsigned long>(MAX_ELEMENT_DEPTH)));
    element = parent->CreateNewChildElement();
  }
  element->m_namespaceUri = Shared(namespaceUri);
  element->m_localName.assign(localName.data(), localName.size());
  m_openElements.push_back(element);
  return element;
}

CXmlElement* CXmlDocument::AddDocElement(const char* namespaceUri, const char* localName) {
  m_documentElement.reset();
  m_openElements.clear();
  return StartElement(namespaceUri ? namespaceUri : "", localName ? localName : "");
}

CXmlElement* CXmlDocument::AddChildElement(const char* namespaceUri, const char* localName) {
  if (!TopElement()) throw CKoException("A document can have only one document element.");
  return StartElement(namespaceUri ? namespaceUri : "", localName ? localName : "");
}

void CXmlDocument::EndElement() {
  if (m_openElements.empty()) return;
  CXmlElement* element = m_openElements.back();
  m_openElements.pop_back();
  if (!m_filter || !m_filter(element) || m_openElements.empty()) return;
  std::unique_ptr<CXmlElement> dropped(m_openElements.back()->RemoveLastChildElement());
}

SharedString CXmlDocument::Shared(std::string_view namespaceUri) {
  // Documents use a handful of namespaces; a short list of the recent ones
  // finds nearly every URI without hashing.
  constexpr size_t kRemembered = 16;
  if (namespaceUri.empty()) return nullptr;
  for (const SharedString& known : m_namespaces)
    if (*known == namespaceUri) return known;
  SharedString added = std::make_shared<const std::string>(namespaceUri);
  if (m_namespaces.size() == kRemembered) m_namespaces.erase(m_namespaces.begin());
  m_namespaces.push_back(added);
  return added;
}

void CXmlDocument::AddAttribute(CXmlElement* element, std::string_view localName, std::string_view value,
                                std::string_view namespaceUri) {
  std::vector<CXmlAttribute*>& attributes = element->m_attributes;
  if (attributes.size() == attributes.capacity()) attributes.reserve(std::max<size_t>(4, 2 * attributes.size()));
  attributes.push_back(new CXmlAttribute(localName, value, Shared(namespaceUri)));
}

void CXmlDocument::AddElementAttribute(CXmlElement* element, const std::string& localName,
                                       const std::string& value, const std::string& namespaceUri) {
  element->AddAttribute(localName, value, namespaceUri);
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, const char* text, unsigned long length) {
  if (!element || !text) return;
  // One pass over the chunk: carriage returns are left out, a NUL ends it.
  const char* start = text;
  const char* end = text + length;
  for (const char* p = text; p < end; ++p) {
    if (*p != '\r' && *p != '\0') continue;
    element->Append(std::string_view(start, static_cast<size_t>(p - start)));
    if (*p == '\0') return;
    start = p + 1;
  }
  element->Append(std::string_view(start, static_cast<size_t>(end - start)));
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, const char* text) {
  if (text) AppendTextExcludingCR(element, text, std::strlen(text));
}

}  // namespace KoXmlLib10
