#include "xml/ExpatReader.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Unicode.h"

namespace KoXmlLib10 {

namespace {

constexpr char kNameSeparator = '|';

}  // namespace

CExpatReader::CExpatReader(CXmlDocument& document) : m_document(document) {}

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
  // expat counts in int; a larger buffer goes in as several pieces.
  const char* data = reinterpret_cast<const char*>(m_document.m_input.get());
  unsigned long remaining = m_document.m_inputLength;
  XML_Status status = XML_STATUS_OK;
  do {
    const int piece = static_cast<int>(std::min<unsigned long>(remaining, INT_MAX));
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

// expat joins a namespace URI and a local name with the separator; local
// names cannot contain it, so the last one is the split point.
void CExpatReader::SplitName(const XML_Char* name, std::string& uri, std::string& local,
                             std::string_view& uriView, std::string_view& localView, bool useScratch) {
  const std::string_view whole(name);
  const void* last = memrchr(whole.data(), kNameSeparator, whole.size());
  const size_t separator = last ? static_cast<const char*>(last) - whole.data() : std::string_view::npos;
  if (separator == std::string_view::npos) {
    uriView = std::string_view();
    localView = m_scratch.ToLocal(whole, local, useScratch);
    return;
  }
  uriView = m_scratch.ToLocal(whole.substr(0, separator), uri, useScratch);
  localView = m_scratch.ToLocal(whole.substr(separator + 1), local, useScratch);
}

void XMLCALL CExpatReader::FnStartElement(void* userData, const XML_Char* name, const XML_Char** attributes) {
  Guarded(userData, [&](CExpatReader& reader) {
    std::string uri, local, value;
    std::string_view uriView, localView;
    reader.SplitName(name, uri, local, uriView, localView, true);
    CXmlDocument& document = reader.m_document;
    CXmlElement* element = document.StartElement(uriView, localView);
    for (const XML_Char** pair = attributes; pair[0]; pair += 2) {
      reader.SplitName(pair[0], uri, local, uriView, localView, false);
      const std::string_view valueView = reader.m_scratch.ToLocal(pair[1], value, false);
      document.AddAttribute(element, localView, valueView, uriView);
    }
  });
}

void XMLCALL CExpatReader::FnEndElement(void* userData, const XML_Char*) {
  Guarded(userData, [](CExpatReader& reader) { reader.m_document.EndElement(); });
}

void XMLCALL CExpatReader::FnText(void* userData, const XML_Char* text, int length) {
  if (length <= 0) return;
  Guarded(userData, [&](CExpatReader& reader) {
    std::string converted;
    const std::string_view local = reader.m_scratch.ToLocal(std::string_view(text, length), converted);
    reader.m_document.AppendTextExcludingCR(reader.m_document.TopElement(), local.data(), local.size());
  });
}

void XMLCALL CExpatReader::FnStartCDATA(void* userData) {
  Guarded(userData, [](CExpatReader& reader) {
    reader.m_document.AppendTextExcludingCR(reader.m_document.TopElement(), "<![CDATA[");
  });
}

void XMLCALL CExpatReader::FnEndCDATA(void* userData) {
  Guarded(userData, [](CExpatReader& reader) {
    reader.m_document.AppendTextExcludingCR(reader.m_document.TopElement(), "]]>");
  });
}

void XMLCALL CExpatReader::FnStartNamespace(void* userData, const XML_Char* prefix, const XML_Char* uri) {
  Guarded(userData, [&](CExpatReader& reader) {
    std::string convertedPrefix, convertedUri;
    const std::string_view prefixView = reader.m_scratch.ToLocal(prefix ? prefix : "", convertedPrefix, false);
    const std::string_view uriView = reader.m_scratch.ToLocal(uri ? uri : "", convertedUri, false);
    reader.m_document.SetAlias(std::string(prefixView), std::string(uriView));
  });
}

void XMLCALL CExpatReader::FnEndNamespace(void*, const XML_Char*) {}

}  // namespace KoXmlLib10
