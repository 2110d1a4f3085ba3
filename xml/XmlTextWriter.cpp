#include "KoXmlLib10/XmlTextWriter.h"

#include <array>
#include <string_view>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Streams.h"

namespace KoXmlLib10 {

namespace {

constexpr char kSchemaInstanceNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
constexpr std::string_view kCDataStart = "<![CDATA[";
constexpr unsigned long kFlushThreshold = 4095;

// What escaping does with a byte; kCopy bytes are copied in runs.
enum Action : unsigned char { kCopy, kEnd, kLineFeed, kDrop, kQuote, kAmp, kLt, kGt };
using ActionTable = std::array<Action, 256>;

constexpr ActionTable MakeActionTable(bool inAttribute) {
  ActionTable table{};
  table['\0'] = kEnd;  // the text counts up to its first NUL
  table['\n'] = kLineFeed;
  table['\r'] = kDrop;
  table['&'] = kAmp;
  table['<'] = kLt;
  table['>'] = kGt;
  if (inAttribute) table['"'] = kQuote;
  return table;
}

constexpr ActionTable kTextActions = MakeActionTable(false);
constexpr ActionTable kAttributeActions = MakeActionTable(true);

const char* EndOfLineText(EOLType type) {
  switch (type) {
    case EOLTypeCRLF: return "\r\n";
    case EOLTypeLF: return "\n";
  }
  throw CKoException("Invalid EOL type.");
}

}  // namespace

CXmlTextWriter::CXmlTextWriter(CTextStream& stream)
    : m_eol("\n"), m_eolType(EOLTypeLF), m_format(true), m_stream(stream) {}

CXmlTextWriter::~CXmlTextWriter() = default;

bool CXmlTextWriter::GetFormat() const { return m_format; }

void CXmlTextWriter::SetFormat(bool format) { m_format = format; }

EOLType CXmlTextWriter::GetEOLType() const { return m_eolType; }

void CXmlTextWriter::SetEOLType(EOLType type) {
  m_eol = EndOfLineText(type);
  m_eolType = type;
}

void CXmlTextWriter::Open() {
  CXmlWriter::Open();
  m_stream.Open();
}

void CXmlTextWriter::Close() {
  m_stream.Close();
  CXmlWriter::Close();
}

void CXmlTextWriter::Commit(bool applyFlushRule) {
  m_stream.Append(m_pending);
  m_pending.clear();
  if (applyFlushRule && m_stream.GetLength() > kFlushThreshold) m_stream.Flush();
}

void CXmlTextWriter::EndLine() { m_pending += m_eol; }

void CXmlTextWriter::Indent(unsigned int depth) { m_pending.append(depth, '\t'); }

void CXmlTextWriter::RequireOpenStartTag() const {
  const CXmlWriterContext* current = GetCurrentContext();
  if (!current || !current->GetStartTagOpen())
    throw CKoException("Attributes must be added before elements");
}

void CXmlTextWriter::WriteDeclaration(const std::string& prefix, const std::string& uri) {
  m_pending += "xmlns:";
  m_pending += prefix;
  m_pending += "=\"";
  m_pending += uri;
  m_pending += '"';
}

void CXmlTextWriter::PadAndAppend(const std::string& text, bool inAttribute) {
  const ActionTable& actions = inAttribute ? kAttributeActions : kTextActions;
  const char* p = text.c_str();
  for (;;) {
    const char* run = p;
    while (actions[static_cast<unsigned char>(*p)] == kCopy) ++p;
    m_pending.append(run, static_cast<size_t>(p - run));
    switch (actions[static_cast<unsigned char>(*p)]) {
      case kEnd: return;
      case kLineFeed: m_pending += inAttribute ? "&#xA;" : m_eol.c_str(); break;
      case kDrop: break;
      case kQuote: m_pending += "&quot;"; break;
      case kAmp: m_pending += "&amp;"; break;
      case kLt: m_pending += "&lt;"; break;
      case kGt: m_pending += "&gt;"; break;
      case kCopy: break;
    }
    ++p;
  }
}

void CXmlTextWriter::WriteStartDocument() {
  m_pending += "<?xml version=\"1.0\"";
  if (m_stream.GetEncoding() == XmlEncoding_UTF8)
    m_pending += " encoding=\"UTF-8\"";
  else if (m_stream.GetEncoding() == XmlEncoding_UTF16)
    m_pending += " encoding=\"UTF-16\"";
  m_pending += "?>";
  EndLine();
  Commit(true);
}

void CXmlTextWriter::WriteHeaderDirective(const std::string& text) {
  if (GetCurrentContext())
    throw CKoException("Headed directives must appear before an Element has been added.");
  m_pending += text;
  EndLine();
  Commit(true);
}

void CXmlTextWriter::WriteComment(const std::string& text) {
  m_pending += "<!--";
  PadAndAppend(text, false);
  m_pending += "-->";
  EndLine();
  Commit(true);
}

void CXmlTextWriter::WritePI(const std::string& text) {
  m_pending += text;
  EndLine();
  EndLine();
  Commit(true);
}

void CXmlTextWriter::WriteInlineSchema(const std::string& text) {
  // The schema becomes the first child: writing it inside the open start tag
  // would not be well-formed.
  CloseParentElm();
  m_pending += ' ';
  EndLine();
  m_pending += text;
  EndLine();
  Commit(true);
}

void CXmlTextWriter::CloseParentElm() {
  CXmlWriterContext* parent = GetCurrentContext();
  if (!parent) return;
  parent->SetChildCount(parent->GetChildCount() + 1);
  if (parent->GetStartTagOpen()) {
    m_pending += '>';
    parent->SetStartTagOpen(false);
    if (m_format) EndLine();
  }
  Commit(false);
}

void CXmlTextWriter::WriteRawElement(const std::string& text) {
  m_pending += text;
  if (m_format) EndLine();
  Commit(false);
}

void CXmlTextWriter::WriteStartElement(const std::string& localName,
                                       const std::string& namespaceUri) {
  CloseParentElm();
  CXmlWriterContext* element = PushContext(localName, namespaceUri);
  const bool outermost = element->GetDepth() == 0;
  if (m_format) Indent(element->GetDepth());
  m_pending += '<';

  if (namespaceUri.empty()) {
    m_pending += localName;
    // Otherwise the element would read back in the inherited default namespace.
    if (!element->GetDefaultNamespace().empty()) {
      m_pending += " xmlns=\"\"";
      element->SetDefaultNamespace(std::string());
    }
  } else if (namespaceUri == element->GetDefaultNamespace()) {
    m_pending += localName;
  } else {
    bool declared = false;
    const std::string& prefix = PrefixInScope(namespaceUri, declared);
    m_pending += prefix;
    m_pending += ':';
    m_pending += localName;
    if (declared) {
      m_pending += ' ';
      WriteDeclaration(prefix, namespaceUri);
    }
  }

  if (outermost) {
    const std::string& defaultNamespace = element->GetDefaultNamespace();
    if (!defaultNamespace.empty()) {
      m_pending += " xmlns=\"";
      m_pending += defaultNamespace;
      m_pending += '"';
    }
    const std::string_view xmlNamespace = XML_NAMESPACE;
    for (const auto& [uri, prefix] : GetRootNamespaceMap()) {
      if (std::string_view(uri).substr(0, xmlNamespace.size()) == xmlNamespace) continue;
      m_pending += ' ';
      WriteDeclaration(prefix, uri);
    }
  }
  Commit(true);
}

void CXmlTextWriter::WriteString(const std::string& text, ItemType) {
  if (text.empty()) return;
  CXmlWriterContext* element = GetCurrentContext();
  if (element && element->GetStartTagOpen()) {
    m_pending += '>';
    element->SetStartTagOpen(false);
  }
  if (text.compare(0, kCDataStart.size(), kCDataStart) == 0)
    m_pending += text;
  else
    PadAndAppend(text, false);
  Commit(true);
}

void CXmlTextWriter::WriteEndElement() {
  CXmlWriterContext* element = GetCurrentContext();
  if (element->GetStartTagOpen()) {
    m_pending += "/>";
  } else {
    if (m_format && element->GetChildCount() > 0) Indent(element->GetDepth());
    m_pending += "</";
    const std::string& namespaceUri = element->GetNamespaceUri();
    if (!namespaceUri.empty() && namespaceUri != element->GetDefaultNamespace()) {
      m_pending += element->GetNamespaceMapValue(namespaceUri);
      m_pending += ':';
    }
    m_pending += element->GetLocalName();
    m_pending += '>';
  }
  if (m_format) EndLine();
  Commit(true);
  PopContext();
}

void CXmlTextWriter::WriteAttributeString(const std::string& localName,
                                          const std::string& namespaceUri,
                                          const std::string& value, ItemType) {
  RequireOpenStartTag();
  m_pending += ' ';
  if (!namespaceUri.empty()) {
    // An attribute without a prefix is in no namespace, whatever the default.
    bool declared = false;
    const std::string& prefix = PrefixInScope(namespaceUri, declared);
    if (declared) {
      WriteDeclaration(prefix, namespaceUri);
      m_pending += ' ';
    }
    m_pending += prefix;
    m_pending += ':';
  }
  m_pending += localName;
  m_pending += "=\"";
  PadAndAppend(value, true);
  m_pending += '"';
  Commit(true);
}

void CXmlTextWriter::WriteAttributeType(const std::string& typeNamespaceUri,
                                        const std::string& typeName, ItemType type) {
  RequireOpenStartTag();
  std::string value;
  if (typeNamespaceUri.empty() || typeNamespaceUri == GetCurrentContext()->GetDefaultNamespace()) {
    value = typeName;
  } else {
    bool declared = false;
    const std::string& prefix = PrefixInScope(typeNamespaceUri, declared);
    if (declared) {
      m_pending += ' ';
      WriteDeclaration(prefix, typeNamespaceUri);
      m_pending += ' ';
    }
    value = prefix + ":" + typeName;
  }
  WriteAttributeString("type", kSchemaInstanceNamespace, value, type);
}

void CXmlTextWriter::WriteAttributeNil() {
  RequireOpenStartTag();
  WriteAttributeString("nil", kSchemaInstanceNamespace, "true", ItemType_boolean);
}

}  // namespace KoXmlLib10
