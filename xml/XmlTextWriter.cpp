#include "KoXmlLib10/XmlTextWriter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Streams.h"

namespace KoXmlLib10 {

namespace {

const std::string kSchemaInstanceNamespace = "http://www.w3.org/2001/XMLSchema-instance";
const std::string kTypeAttribute = "type";
const std::string kNilAttribute = "nil";
const std::string kTrue = "true";
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

// The markup of one writer operation. Operations append many short pieces, so
// appending is kept inline and the storage is reused from call to call.
class CXmlMarkupBuffer {
 public:
  CXmlMarkupBuffer() { Grow(256); }  // never without storage, even for empty pieces

  void Put(char c) {
    Reserve(1);
    m_data[m_length++] = c;
  }
  void Put(std::string_view text) {
    Reserve(text.size());
    Copy(m_data.get() + m_length, text.data(), text.size());
    m_length += text.size();
  }
  void Repeat(char c, size_t count) {
    Reserve(count);
    std::memset(m_data.get() + m_length, c, count);
    m_length += count;
  }
  // " xmlns:prefix="uri"" without the leading space.
  void Declaration(std::string_view prefix, std::string_view uri) {
    Put("xmlns:");
    Put(prefix);
    Put("=\"");
    Put(uri);
    Put('"');
  }
  void Escape(const std::string& text, bool inAttribute, std::string_view endOfLine) {
    const ActionTable& actions = inAttribute ? kAttributeActions : kTextActions;
    const char* p = text.c_str();
    for (;;) {
      const char* run = p;
      while (actions[static_cast<unsigned char>(*p)] == kCopy) ++p;
      Put(std::string_view(run, static_cast<size_t>(p - run)));
      switch (actions[static_cast<unsigned char>(*p)]) {
        case kEnd: return;
        case kLineFeed: Put(inAttribute ? std::string_view("&#xA;") : endOfLine); break;
        case kQuote: Put("&quot;"); break;
        case kAmp: Put("&amp;"); break;
        case kLt: Put("&lt;"); break;
        case kGt: Put("&gt;"); break;
        case kDrop:
        case kCopy: break;
      }
      ++p;
    }
  }

  const char* Data() const { return m_data.get(); }
  size_t Length() const { return m_length; }
  void Clear() { m_length = 0; }

 private:
  // Most pieces are names and short values: copying them with two overlapping
  // fixed-size moves is much cheaper than a call into the C library.
  static void Copy(char* to, const char* from, size_t count) {
    if (count >= 8 && count <= 16) {
      std::memcpy(to, from, 8);
      std::memcpy(to + count - 8, from + count - 8, 8);
    } else if (count >= 4 && count < 8) {
      std::memcpy(to, from, 4);
      std::memcpy(to + count - 4, from + count - 4, 4);
    } else if (count < 4) {
      for (size_t i = 0; i < count; ++i) to[i] = from[i];
    } else {
      std::memcpy(to, from, count);
    }
  }
  void Reserve(size_t count) {
    if (m_capacity - m_length < count) Grow(m_length + count);
  }
  void Grow(size_t needed) {
    const size_t capacity = std::max(needed, 2 * m_capacity);
    std::unique_ptr<char[]> data(new char[capacity]);
    if (m_length) std::memcpy(data.get(), m_data.get(), m_length);
    m_data = std::move(data);
    m_capacity = capacity;
  }

  std::unique_ptr<char[]> m_data;
  size_t m_length = 0;
  size_t m_capacity = 0;
};

CXmlTextWriter::CXmlTextWriter(CTextStream& stream)
    : m_eol("\n"),
      m_eolType(EOLTypeLF),
      m_format(true),
      m_stream(stream),
      m_markup(std::make_unique<CXmlMarkupBuffer>()) {}

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
  if (m_markup->Length()) {
    m_stream.Append(m_markup->Data(), m_markup->Length());
    m_markup->Clear();
  }
  if (applyFlushRule && m_stream.GetLength() > kFlushThreshold) m_stream.Flush();
}

void CXmlTextWriter::RequireOpenStartTag() const {
  const CXmlWriterContext* current = GetCurrentContext();
  if (!current || !current->GetStartTagOpen())
    throw CKoException("Attributes must be added before elements");
}

void CXmlTextWriter::PadAndAppend(const std::string& text, bool inAttribute) {
  m_markup->Escape(text, inAttribute, m_eol);
}

void CXmlTextWriter::WriteStartDocument() {
  m_markup->Put("<?xml version=\"1.0\"");
  if (m_stream.GetEncoding() == XmlEncoding_UTF8)
    m_markup->Put(" encoding=\"UTF-8\"");
  else if (m_stream.GetEncoding() == XmlEncoding_UTF16)
    m_markup->Put(" encoding=\"UTF-16\"");
  m_markup->Put("?>");
  m_markup->Put(m_eol);
  Commit(true);
}

void CXmlTextWriter::WriteHeaderDirective(const std::string& text) {
  if (GetCurrentContext())
    throw CKoException("Headed directives must appear before an Element has been added.");
  m_markup->Put(text);
  m_markup->Put(m_eol);
  Commit(true);
}

void CXmlTextWriter::WriteComment(const std::string& text) {
  m_markup->Put("<!--");
  PadAndAppend(text, false);
  m_markup->Put("-->");
  m_markup->Put(m_eol);
  Commit(true);
}

void CXmlTextWriter::WritePI(const std::string& text) {
  m_markup->Put(text);
  m_markup->Put(m_eol);
  m_markup->Put(m_eol);
  Commit(true);
}

void CXmlTextWriter::WriteInlineSchema(const std::string& text) {
  // The schema becomes the first child: writing it inside the open start tag
  // would not be well-formed.
  CloseStartTagForChild();
  m_markup->Put(' ');
  m_markup->Put(m_eol);
  m_markup->Put(text);
  m_markup->Put(m_eol);
  Commit(true);
}

void CXmlTextWriter::CloseStartTagForChild() {
  CXmlWriterContext* parent = GetCurrentContext();
  if (!parent) return;
  parent->SetChildCount(parent->GetChildCount() + 1);
  if (parent->GetStartTagOpen()) {
    m_markup->Put('>');
    parent->SetStartTagOpen(false);
    if (m_format) m_markup->Put(m_eol);
  }
}

void CXmlTextWriter::CloseParentElm() {
  CloseStartTagForChild();
  Commit(false);
}

void CXmlTextWriter::WriteRawElement(const std::string& text) {
  m_markup->Put(text);
  if (m_format) m_markup->Put(m_eol);
  Commit(false);
}

void CXmlTextWriter::WriteStartElement(const std::string& localName,
                                       const std::string& namespaceUri) {
  CloseStartTagForChild();
  CXmlWriterContext* element = PushContext(localName, namespaceUri);
  const bool outermost = element->GetDepth() == 0;
  CXmlMarkupBuffer& out = *m_markup;
  if (m_format) out.Repeat('\t', element->GetDepth());
  out.Put('<');

  if (namespaceUri.empty()) {
    out.Put(localName);
    // Otherwise the element would read back in the inherited default namespace.
    if (!element->GetDefaultNamespace().empty()) {
      out.Put(" xmlns=\"\"");
      element->SetDefaultNamespace(std::string());
    }
  } else if (namespaceUri == element->GetDefaultNamespace()) {
    out.Put(localName);
  } else {
    bool declared = false;
    const std::string& prefix = PrefixInScope(namespaceUri, declared);
    out.Put(prefix);
    out.Put(':');
    out.Put(localName);
    if (declared) {
      out.Put(' ');
      out.Declaration(prefix, namespaceUri);
    }
  }

  if (outermost) {
    const std::string& defaultNamespace = element->GetDefaultNamespace();
    if (!defaultNamespace.empty()) {
      out.Put(" xmlns=\"");
      out.Put(defaultNamespace);
      out.Put('"');
    }
    const std::string_view xmlNamespace = XML_NAMESPACE;
    for (const auto& [uri, prefix] : GetRootNamespaceMap()) {
      if (std::string_view(uri).substr(0, xmlNamespace.size()) == xmlNamespace) continue;
      out.Put(' ');
      out.Declaration(prefix, uri);
    }
  }
  Commit(true);
}

void CXmlTextWriter::WriteString(const std::string& text, ItemType) {
  if (text.empty()) return;
  CXmlWriterContext* element = GetCurrentContext();
  if (element && element->GetStartTagOpen()) {
    m_markup->Put('>');
    element->SetStartTagOpen(false);
  }
  if (text[0] == '<' && text.compare(0, kCDataStart.size(), kCDataStart) == 0)
    m_markup->Put(text);
  else
    PadAndAppend(text, false);
  Commit(true);
}

void CXmlTextWriter::WriteEndElement() {
  CXmlWriterContext* element = GetCurrentContext();
  if (!element) throw CKoException("There is no open Element to end.");
  CXmlMarkupBuffer& out = *m_markup;
  if (element->GetStartTagOpen()) {
    out.Put("/>");
  } else {
    if (m_format && element->GetChildCount() > 0) out.Repeat('\t', element->GetDepth());
    out.Put("</");
    const std::string& namespaceUri = element->GetNamespaceUri();
    if (!namespaceUri.empty() && namespaceUri != element->GetDefaultNamespace()) {
      out.Put(element->GetNamespaceMapValue(namespaceUri));
      out.Put(':');
    }
    out.Put(element->GetLocalName());
    out.Put('>');
  }
  if (m_format) out.Put(m_eol);
  Commit(true);
  PopContext();
}

void CXmlTextWriter::WriteAttributeString(const std::string& localName,
                                          const std::string& namespaceUri,
                                          const std::string& value, ItemType) {
  RequireOpenStartTag();
  CXmlMarkupBuffer& out = *m_markup;
  out.Put(' ');
  if (!namespaceUri.empty()) {
    // An attribute without a prefix is in no namespace, whatever the default.
    bool declared = false;
    const std::string& prefix = PrefixInScope(namespaceUri, declared);
    if (declared) {
      out.Declaration(prefix, namespaceUri);
      out.Put(' ');
    }
    out.Put(prefix);
    out.Put(':');
  }
  out.Put(localName);
  out.Put("=\"");
  PadAndAppend(value, true);
  out.Put('"');
  Commit(true);
}

void CXmlTextWriter::WriteAttributeType(const std::string& typeNamespaceUri,
                                        const std::string& typeName, ItemType type) {
  RequireOpenStartTag();
  if (typeNamespaceUri.empty() || typeNamespaceUri == GetCurrentContext()->GetDefaultNamespace()) {
    WriteAttributeString(kTypeAttribute, kSchemaInstanceNamespace, typeName, type);
    return;
  }
  bool declared = false;
  const std::string& prefix = PrefixInScope(typeNamespaceUri, declared);
  if (declared) {
    m_markup->Put(' ');
    m_markup->Declaration(prefix, typeNamespaceUri);
    m_markup->Put(' ');
  }
  WriteAttributeString(kTypeAttribute, kSchemaInstanceNamespace, prefix + ":" + typeName, type);
}

void CXmlTextWriter::WriteAttributeNil() {
  RequireOpenStartTag();
  WriteAttributeString(kNilAttribute, kSchemaInstanceNamespace, kTrue, ItemType_boolean);
}

}  // namespace KoXmlLib10
