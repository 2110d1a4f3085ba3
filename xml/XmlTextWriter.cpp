#include "KoXmlLib10/XmlTextWriter.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <typeinfo>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Streams.h"
#include "foundation/ShortText.h"
#include "foundation/StringBufferCursor.h"

namespace KoXmlLib10 {

namespace {

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

constexpr uint64_t kOnes = 0x0101010101010101ull;
constexpr uint64_t kHighBits = 0x8080808080808080ull;

// True when a byte of `word` is below `limit` (at most 0x80).
constexpr bool AnyByteBelow(uint64_t word, unsigned limit) {
  return ((word - kOnes * limit) & ~word & kHighBits) != 0;
}

constexpr bool AnyByteEquals(uint64_t word, unsigned char value) {
  return AnyByteBelow(word ^ (kOnes * value), 1);
}

// False only when none of the 8 bytes needs escaping in either mode: every
// such byte is a control byte (NUL, line feed, carriage return) or one of
// " & < >, and OR-ing a bit pairs the last four up.
constexpr bool MayNeedEscaping(uint64_t word) {
  return AnyByteBelow(word, 0x0E) || AnyByteEquals(word | kOnes * 0x04, '&') ||
         AnyByteEquals(word | kOnes * 0x02, '>');
}

uint64_t LoadWord(const char* p) {
  uint64_t word;
  std::memcpy(&word, p, sizeof word);
  return word;
}

// The first byte in [p, end) that escaping does not copy unchanged, or end.
// Plain text is checked 8 bytes at a time.
const char* SkipPlainText(const char* p, const char* end, const ActionTable& actions) {
  const auto plain = [&actions](char c) { return actions[static_cast<unsigned char>(c)] == kCopy; };
  if (end - p >= 8) {
    while (end - p >= 8) {
      if (MayNeedEscaping(LoadWord(p))) {
        for (const char* stop = p + 8; p < stop; ++p)
          if (!plain(*p)) return p;
      } else {
        p += 8;
      }
    }
    // The last word may overlap bytes already known to be plain.
    if (p == end || !MayNeedEscaping(LoadWord(end - 8))) return end;
  }
  while (p < end && plain(*p)) ++p;
  return p;
}

}  // namespace

// The markup of one writer operation, written in place into the stream's
// buffer: operations append many short pieces, so appending stays inline.
class CXmlMarkupOutput : public CStringBufferCursor {
 public:
  using CStringBufferCursor::CStringBufferCursor;

  // One tab per level, put in pieces: a few tabs are not worth a call.
  void Indent(unsigned int depth) {
    constexpr std::string_view kTabs = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
    for (; depth > kTabs.size(); depth -= kTabs.size()) Put(kTabs);
    Put(kTabs.substr(0, depth));
  }
  // " xmlns:prefix="uri"" without the leading space.
  void Declaration(std::string_view prefix, std::string_view uri) {
    Put("xmlns:");
    Put(prefix);
    Put("=\"");
    Put(uri);
    Put('"');
  }
  // The text counts up to its first NUL.
  void Escape(const std::string& text, bool inAttribute, std::string_view endOfLine) {
    const ActionTable& actions = inAttribute ? kAttributeActions : kTextActions;
    const char* p = text.data();
    const char* const end = p + text.size();
    for (;;) {
      const char* run = p;
      p = SkipPlainText(p, end, actions);
      Put(std::string_view(run, static_cast<size_t>(p - run)));
      if (p == end) return;
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
};

CXmlTextWriter::CXmlTextWriter(CTextStream& stream)
    : m_eol("\n"),
      m_eolType(EOLTypeLF),
      m_format(true),
      m_stream(stream),
      m_streamFlushes(typeid(stream) != typeid(CTextStream)) {}

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

inline void CXmlTextWriter::Commit(CXmlMarkupOutput& out, bool applyFlushRule) {
  out.Sync();
  if (applyFlushRule && m_streamFlushes && out.Length() > kFlushThreshold) m_stream.Flush();
}

inline void CXmlTextWriter::PadAndAppend(CXmlMarkupOutput& out, const std::string& text,
                                  bool inAttribute) {
  out.Escape(text, inAttribute, m_eol);
}

void CXmlTextWriter::WriteStartDocument() {
  CXmlMarkupOutput out(m_stream.m_buffer);
  out.Put("<?xml version=\"1.0\"");
  if (m_stream.GetEncoding() == XmlEncoding_UTF8)
    out.Put(" encoding=\"UTF-8\"");
  else if (m_stream.GetEncoding() == XmlEncoding_UTF16)
    out.Put(" encoding=\"UTF-16\"");
  out.Put("?>");
  out.Put(m_eol);
  Commit(out, true);
}

void CXmlTextWriter::WriteHeaderDirective(const std::string& text) {
  if (GetCurrentContext())
    throw CKoException("Headed directives must appear before an Element has been added.");
  CXmlMarkupOutput out(m_stream.m_buffer);
  out.Put(text);
  out.Put(m_eol);
  Commit(out, true);
}

void CXmlTextWriter::WriteComment(const std::string& text) {
  CXmlMarkupOutput out(m_stream.m_buffer);
  out.Put("<!--");
  PadAndAppend(out, text, false);
  out.Put("-->");
  out.Put(m_eol);
  Commit(out, true);
}

void CXmlTextWriter::WritePI(const std::string& text) {
  CXmlMarkupOutput out(m_stream.m_buffer);
  out.Put(text);
  out.Put(m_eol);
  out.Put(m_eol);
  Commit(out, true);
}

void CXmlTextWriter::WriteInlineSchema(const std::string& text) {
  // The schema becomes the first child: writing it inside the open start tag
  // would not be well-formed.
  CXmlMarkupOutput out(m_stream.m_buffer);
  CloseStartTagForChild(out);
  out.Put(' ');
  out.Put(m_eol);
  out.Put(text);
  out.Put(m_eol);
  Commit(out, true);
}

inline void CXmlTextWriter::CloseStartTagForChild(CXmlMarkupOutput& out) {
  CXmlWriterContext* parent = GetCurrentContext();
  if (!parent) return;
  parent->SetChildCount(parent->GetChildCount() + 1);
  if (parent->GetStartTagOpen()) {
    out.Put('>');
    parent->SetStartTagOpen(false);
    if (m_format) out.Put(m_eol);
  }
}

void CXmlTextWriter::CloseParentElm() {
  CXmlMarkupOutput out(m_stream.m_buffer);
  CloseStartTagForChild(out);
  Commit(out, false);
}

void CXmlTextWriter::WriteRawElement(const std::string& text) {
  CXmlMarkupOutput out(m_stream.m_buffer);
  out.Put(text);
  if (m_format) out.Put(m_eol);
  Commit(out, false);
}

void CXmlTextWriter::WriteStartElement(const std::string& localName,
                                       const std::string& namespaceUri) {
  CXmlMarkupOutput out(m_stream.m_buffer);
  CloseStartTagForChild(out);
  CXmlWriterContext* element = PushContext(localName, namespaceUri);
  const bool outermost = element->GetDepth() == 0;
  if (m_format) out.Indent(element->GetDepth());
  out.Put('<');

  if (namespaceUri.empty()) {
    out.Put(localName);
    // Otherwise the element would read back in the inherited default namespace.
    if (!element->GetDefaultNamespace().empty()) {
      out.Put(" xmlns=\"\"");
      element->SetDefaultNamespace(std::string());
    }
  } else if (SameText(namespaceUri, element->GetDefaultNamespace())) {
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
  Commit(out, true);
}

void CXmlTextWriter::WriteString(const std::string& text, ItemType) {
  if (text.empty()) return;
  CXmlMarkupOutput out(m_stream.m_buffer);
  CXmlWriterContext* element = GetCurrentContext();
  if (element && element->GetStartTagOpen()) {
    out.Put('>');
    element->SetStartTagOpen(false);
  }
  if (text[0] == '<' && text.compare(0, kCDataStart.size(), kCDataStart) == 0)
    out.Put(text);
  else
    PadAndAppend(out, text, false);
  Commit(out, true);
}

void CXmlTextWriter::WriteEndElement() {
  RequireOpenElement();
  CXmlWriterContext* element = GetCurrentContext();
  CXmlMarkupOutput out(m_stream.m_buffer);
  if (element->GetStartTagOpen()) {
    out.Put("/>");
  } else {
    if (m_format && element->GetChildCount() > 0) out.Indent(element->GetDepth());
    out.Put("</");
    const std::string& namespaceUri = element->GetNamespaceUri();
    if (!namespaceUri.empty() && !SameText(namespaceUri, element->GetDefaultNamespace())) {
      out.Put(element->GetNamespaceMapValue(namespaceUri));
      out.Put(':');
    }
    out.Put(element->GetLocalName());
    out.Put('>');
  }
  if (m_format) out.Put(m_eol);
  Commit(out, true);
  PopContext();
}

void CXmlTextWriter::WriteAttributeString(const std::string& localName,
                                          const std::string& namespaceUri,
                                          const std::string& value, ItemType) {
  RequireOpenStartTag();
  CXmlMarkupOutput out(m_stream.m_buffer);
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
  PadAndAppend(out, value, true);
  out.Put('"');
  Commit(out, true);
}

void CXmlTextWriter::WriteAttributeType(const std::string& typeNamespaceUri,
                                        const std::string& typeName, ItemType type) {
  std::string declaredPrefix;
  const std::string value = TypeAttributeValue(typeNamespaceUri, typeName, declaredPrefix);
  if (!declaredPrefix.empty()) {
    // Handed to the stream before the attribute call writes its own markup.
    CXmlMarkupOutput out(m_stream.m_buffer);
    out.Put(' ');
    out.Declaration(declaredPrefix, typeNamespaceUri);
    out.Put(' ');
  }
  WriteTypeAttribute(value, type);
}

void CXmlTextWriter::WriteAttributeNil() { WriteNilAttribute(); }

// The markup of WriteStartElement, WriteString and WriteEndElement, without
// opening a scope for the element: a namespace it declares is declared on it
// alone, which is all that scope would have lived for.
void CXmlTextWriter::WriteSimpleElement(const std::string& localName, const std::string& namespaceUri,
                                        const std::string& text, ItemType type) {
  CXmlWriterContext* parent = GetCurrentContext();
  // The outermost element declares the root namespaces; a derived writer
  // may have operations of its own for the three calls.
  if (!parent || typeid(*this) != typeid(CXmlTextWriter))
    return CXmlWriter::WriteSimpleElement(localName, namespaceUri, text, type);
  CXmlMarkupOutput out(m_stream.m_buffer);
  CloseStartTagForChild(out);
  if (m_format) out.Indent(parent->GetDepth() + 1);
  out.Put('<');

  CChildNamespace name;
  ChildNamespace(*parent, namespaceUri, name);
  if (name.prefix) {
    out.Put(*name.prefix);
    out.Put(':');
  }
  out.Put(localName);
  if (name.undeclareDefault) out.Put(" xmlns=\"\"");
  if (name.declare) {
    out.Put(' ');
    out.Declaration(name.declaredPrefix, namespaceUri);
  }

  if (text.empty()) {
    out.Put("/>");
  } else {
    out.Put('>');
    if (text[0] == '<' && text.compare(0, kCDataStart.size(), kCDataStart) == 0)
      out.Put(text);
    else
      PadAndAppend(out, text, false);
    out.Put("</");
    if (name.prefix) {
      out.Put(*name.prefix);
      out.Put(':');
    }
    out.Put(localName);
    out.Put('>');
  }
  if (m_format) out.Put(m_eol);
  Commit(out, true);
}

}  // namespace KoXmlLib10
