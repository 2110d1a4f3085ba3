#include "KoXmlLib10/XmlDocument.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/FastInfosetWriter.h"
#include "KoXmlLib10/KoZip.h"
#include "KoXmlLib10/StringUtils.h"
#include "fastinfoset/FastInfosetReader.h"
#include "xml/DocumentStore.h"
#include "xml/ExpatReader.h"
#include "xml/XmlNames.h"

namespace KoXmlLib10 {

bool ASYNC_FROMXMLFILE = false;

void AsyncFromXmlFile(bool async) { ASYNC_FROMXMLFILE = async; }

namespace {

bool IsInstanceNamespace(const std::string& uri) {
  return uri == XmlNames::kSchemaInstanceNamespace || uri == XmlNames::kXmlnsNamespace;
}

const std::string& EmptyString() {
  static const std::string empty;
  return empty;
}

const std::vector<CXmlAttribute*>& NoAttributes() {
  static const std::vector<CXmlAttribute*> none;
  return none;
}

std::unique_ptr<CXmlNodeName> OwnName(std::string_view namespaceUri, std::string_view localName,
                                      const CXmlDocument* owner) {
  auto name = std::make_unique<CXmlNodeName>();
  name->namespaceUri.assign(namespaceUri.data(), namespaceUri.size());
  name->localName.assign(localName.data(), localName.size());
  name->owner = owner;
  name->isSchemaInstanceType = namespaceUri == XmlNames::kSchemaInstanceNamespace && localName == "type";
  return name;
}

// Whether a byte stream can only be XML text: it starts a tag, so it is
// neither a gzip stream (1F 8B), nor a zlib stream (the low nibble of the
// first octet would be 8), nor Fast Infoset (E0 or one of its declarations,
// which start with "<?xml").
bool IsPlainText(const unsigned char* data, unsigned long size) {
  if (size == 0 || data[0] != '<') return false;
  for (const char* declaration : FI_DECLARATION_LIST) {
    const size_t length = std::strlen(declaration);
    if (size >= length && std::memcmp(data, declaration, length) == 0) return false;
  }
  return true;
}

}  // namespace

// ---- CXmlAttribute ---------------------------------------------------------

CXmlAttribute::CXmlAttribute(const std::string& localName, const std::string& value, const std::string& namespaceUri)
    : m_name(0), m_value(value) {
  m_name = reinterpret_cast<uintptr_t>(OwnName(namespaceUri, localName, nullptr).release()) | 1;
}

CXmlAttribute::CXmlAttribute(const CXmlNodeName* sharedName, std::string_view value)
    : m_name(reinterpret_cast<uintptr_t>(sharedName)), m_value(value) {}

CXmlAttribute::~CXmlAttribute() {
  if (OwnsName()) delete &Name();
}

bool CXmlAttribute::IsNilAttribute() const {
  return IsInstanceNamespace(GetNamespaceURI()) && GetLocalName() == "nil";
}

bool CXmlAttribute::IsNamespaceAttribute() const {
  const std::string& localName = GetLocalName();
  return IsInstanceNamespace(GetNamespaceURI()) &&
         (localName == "xmlns" || localName == "type" || localName == "schemaLocation" ||
          localName == "noNamespaceSchemaLocation");
}

// ---- CXmlElement -----------------------------------------------------------

CXmlElement::CXmlElement(const CXmlDocument* owner) : m_name(nullptr), m_flags(kOwnsName) {
  m_name = OwnName("", "", owner).release();
}

CXmlElement::CXmlElement(const CXmlNodeName* sharedName, InStoreTag) : m_name(sharedName), m_flags(kInStore) {}

// Only elements on the heap get here: those in a document's store are
// given back to it by the document.
CXmlElement::~CXmlElement() {
  ReleaseParts();
  // The descendants form one chain through the sibling links: an element
  // with children splices them in right behind itself before it is deleted,
  // so each deletion finds a childless element and nothing recurses.
  CXmlElement* chain = m_firstChild;
  m_firstChild = nullptr;
  while (chain) {
    CXmlElement* element = chain;
    if (CXmlElement* first = element->m_firstChild) {
      first->m_prevSibling->m_nextSibling = element->m_nextSibling;
      element->m_nextSibling = first;
      element->m_firstChild = nullptr;
    }
    chain = element->m_nextSibling;
    delete element;
  }
}

void CXmlElement::ReleaseParts() {
  if (m_flags & kTextString) delete reinterpret_cast<std::string*>(const_cast<char*>(m_text));
  m_text = nullptr;
  m_flags &= ~kTextString;
  if (m_attributes) {
    for (uint32_t i = 0; i < m_attributes->count; ++i) delete m_attributes->Items()[i];
    delete m_attributes->view;
    CXmlAttributeList::DeleteFromHeap(m_attributes);
    m_attributes = nullptr;
  }
  if (m_flags & kOwnsName) delete m_name;
  m_name = nullptr;
}

CXmlDocumentStore* CXmlElement::Store() const { return const_cast<CXmlDocument*>(m_name->owner)->m_store.get(); }

std::string& CXmlElement::TextString() const {
  if (!(m_flags & kTextString)) {
    if (m_flags & kTextPending) return Store()->FlushPending(this), TextString();
    auto text = std::make_unique<std::string>(m_text ? m_text : "", m_textLength);
    m_text = reinterpret_cast<const char*>(text.release());
    m_textLength = 0;
    m_flags |= kTextString;
    if (m_flags & kInStore) Store()->NoteHeapParts(const_cast<CXmlElement*>(this));
  }
  return *reinterpret_cast<std::string*>(const_cast<char*>(m_text));
}

const std::string& CXmlElement::GetText() const {
  if (!(m_flags & (kTextString | kTextPending)) && m_textLength == 0) return EmptyString();
  return TextString();
}

std::string_view CXmlElement::GetTextView() const {
  if (m_flags & (kTextString | kTextPending)) return TextString();
  return std::string_view(m_text, m_textLength);
}

const std::vector<CXmlAttribute*>& CXmlElement::GetAttributes() const {
  CXmlAttributeList* list = m_attributes;
  if (!list) return NoAttributes();
  if (!list->view) {
    list->view = new std::vector<CXmlAttribute*>(list->Items(), list->Items() + list->count);
    if (m_flags & kInStore) Store()->NoteHeapParts(const_cast<CXmlElement*>(this));
  }
  return *list->view;
}

size_t CXmlElement::GetAttributeCount() const { return m_attributes ? m_attributes->count : 0; }

CXmlAttribute* CXmlElement::GetAttributeAt(size_t index) const {
  return index < GetAttributeCount() ? m_attributes->Items()[index] : nullptr;
}

const std::string& CXmlElement::GetAttribute(const std::string& localName, const std::string& namespaceUri) const {
  for (size_t i = 0, n = GetAttributeCount(); i < n; ++i) {
    const CXmlAttribute* attribute = m_attributes->Items()[i];
    if (attribute->GetLocalName() == localName && attribute->GetNamespaceURI() == namespaceUri)
      return attribute->GetValue();
  }
  return EmptyString();
}

bool CXmlElement::GetTypePrefixNamespace(std::string& namespaceUri) const {
  if (!(m_flags & kTypeNamespace)) return false;
  if (m_flags & kOwnsName) {
    namespaceUri = m_name->typeNamespace;
    return true;
  }
  return Store()->TypeNamespace(this, namespaceUri);
}

void CXmlElement::LinkChild(CXmlElement* child) {
  if (!m_firstChild) {
    m_firstChild = child;
  } else {
    CXmlElement* last = m_firstChild->m_prevSibling;
    last->m_nextSibling = child;
    child->m_prevSibling = last;
  }
  m_firstChild->m_prevSibling = child;
}

CXmlElement* CXmlElement::UnlinkLastChild() {
  CXmlElement* last = LastChild();
  if (!last) return nullptr;
  if (last == m_firstChild) {
    m_firstChild = nullptr;
  } else {
    CXmlElement* before = last->m_prevSibling;
    before->m_nextSibling = nullptr;
    m_firstChild->m_prevSibling = before;
  }
  last->m_prevSibling = nullptr;
  return last;
}

CXmlElement* CXmlElement::CreateNewChildElement() {
  CXmlElement* child;
  if (m_flags & kInStore) {
    CXmlDocumentStore* store = Store();
    child = store->NewElement(store->Name("", ""));
  } else {
    child = new CXmlElement(m_name->owner);
  }
  LinkChild(child);
  return child;
}

CXmlElement* CXmlElement::RemoveLastChildElement() {
  CXmlElement* last = UnlinkLastChild();
  if (!last || !(last->m_flags & kInStore)) return last;
  // A loaded document's element lives in the document's storage: the
  // caller gets a copy on the heap that it owns and may keep.
  std::unique_ptr<CXmlElement> copy;
  try {
    if (last->m_flags & kOpen) throw CKoException("An element that is still being read cannot be removed.");
    copy.reset(last->CopyToHeap());
  } catch (...) {
    LinkChild(last);
    throw;
  }
  Store()->DestroySubtree(last);
  return copy.release();
}

// A heap copy of this element and its subtree, built without recursion.
CXmlElement* CXmlElement::CopyToHeap() const {
  auto copyNode = [](const CXmlElement& from, CXmlElement& to) {
    CXmlNodeName& name = const_cast<CXmlNodeName&>(*to.m_name);
    name.namespaceUri = from.GetNamespaceURI();
    name.localName = from.GetLocalName();
    if (from.GetTypePrefixNamespace(name.typeNamespace)) to.m_flags |= kTypeNamespace;
    to.Append(from.GetTextView());
    for (size_t i = 0, n = from.GetAttributeCount(); i < n; ++i) {
      const CXmlAttribute* attribute = from.GetAttributeAt(i);
      to.AddAttribute(attribute->GetLocalName(), attribute->GetValue(), attribute->GetNamespaceURI());
    }
  };
  auto root = std::make_unique<CXmlElement>(m_name->owner);
  copyNode(*this, *root);
  std::vector<std::pair<const CXmlElement*, CXmlElement*>> pending{{this, root.get()}};
  while (!pending.empty()) {
    const auto [from, to] = pending.back();
    pending.pop_back();
    for (const CXmlElement* child = from->m_firstChild; child; child = child->m_nextSibling) {
      CXmlElement* copy = to->CreateNewChildElement();
      copyNode(*child, *copy);
      pending.emplace_back(child, copy);
    }
  }
  return root.release();
}

void CXmlElement::SetName(std::string_view namespaceUri, std::string_view localName) {
  if (m_flags & kOwnsName) {
    CXmlNodeName& name = const_cast<CXmlNodeName&>(*m_name);
    name.namespaceUri.assign(namespaceUri.data(), namespaceUri.size());
    name.localName.assign(localName.data(), localName.size());
  } else {
    m_name = Store()->Name(namespaceUri, localName);
  }
}

void CXmlElement::SetElementName(const std::string& name) { SetName(m_name->namespaceUri, name); }

void CXmlElement::SetNamespace(const std::string& namespaceUri) { SetName(namespaceUri, m_name->localName); }

void CXmlElement::Append(std::string_view text) {
  if (text.empty()) return;
  // While a load gathers this element's text, pieces join it in order.
  if ((m_flags & kTextPending) && (m_flags & kInStore) && Store()->AppendIfGathering(this, text)) return;
  std::string& own = TextString();
  // Text arrives in many small pieces: grow geometrically.
  const size_t length = own.size() + text.size();
  if (!own.empty() && length > own.capacity()) own.reserve(std::max(length, 2 * own.capacity()));
  own.append(text.data(), text.size());
}

void CXmlElement::AppendText(const char* text, int length) {
  if (text && length > 0) Append(std::string_view(text, static_cast<size_t>(length)));
}

void CXmlElement::AppendText(const char* text) {
  if (text) Append(text);
}

CXmlAttribute* CXmlElement::AddAttribute(const std::string& localName, const std::string& value,
                                         const std::string& namespaceUri) {
  if (m_flags & kInStore) {
    CXmlDocumentStore* store = Store();
    return store->AddAttribute(this, store->Name(namespaceUri, localName), value);
  }
  const size_t count = GetAttributeCount();
  if (!m_attributes || m_attributes->capacity == count) {
    CXmlAttributeList* grown = CXmlAttributeList::NewOnHeap(std::max<size_t>(4, 2 * count));
    CXmlAttributeList::Fill(grown, std::max<size_t>(4, 2 * count), m_attributes);
    if (m_attributes) CXmlAttributeList::DeleteFromHeap(m_attributes);
    m_attributes = grown;
  }
  if (m_attributes->view) m_attributes->view->reserve(count + 1);
  auto attribute = std::make_unique<CXmlAttribute>(localName, value, namespaceUri);
  m_attributes->Append(attribute.get());
  return attribute.release();
}

// ---- CXmlDocument ----------------------------------------------------------

CXmlDocument::CXmlDocument() : CXmlDocument(nullptr, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(ElementFilter filter) : CXmlDocument(filter, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(const CXmlSerializationContext& context) : CXmlDocument(nullptr, context) {}

CXmlDocument::CXmlDocument(ElementFilter filter, const CXmlSerializationContext& context)
    : m_store(std::make_unique<CXmlDocumentStore>(*this)), m_filter(filter), m_context(&context) {
  Init();
}

CXmlDocument::CXmlDocument(ElementFilterWithState filter, void* state)
    : CXmlDocument(filter, state, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(ElementFilterWithState filter, void* state, const CXmlSerializationContext& context)
    : CXmlDocument(nullptr, context) {
  SetElementFilter(filter, state);
}

CXmlDocument::~CXmlDocument() { CXmlDocument::Cleanup(); }

void CXmlDocument::SetElementFilter(ElementFilter filter) {
  m_filter = filter;
  m_filterWithState = nullptr;
  m_filterState = nullptr;
}

void CXmlDocument::SetElementFilter(ElementFilterWithState filter, void* state) {
  // The tree calls a plain filter; this one finds its way back to the
  // document (and so to the state) through the element's owner.
  m_filter = filter ? CallFilterWithState : nullptr;
  m_filterWithState = filter;
  m_filterState = state;
}

bool CXmlDocument::CallFilterWithState(CXmlElement* element) {
  const CXmlDocument* document = element->GetOwnerDocument();
  return document->m_filterWithState(element, document->m_filterState);
}

void CXmlDocument::Init() {
  m_input.reset();
  m_inputLength = 0;
  m_source = nullptr;
  m_sourceLength = 0;
  ReleaseTree();
  m_schemaType = m_context->GetSchemaType();
}

void CXmlDocument::Cleanup() {
  m_pieceReader.reset();
  m_pieceBytes = 0;
  m_input.reset();
  m_inputLength = 0;
  m_source = nullptr;
  m_sourceLength = 0;
  ReleaseTree();
  m_aliases.clear();
}

void CXmlDocument::ReleaseTree() { m_store->Clear(); }

void CXmlDocument::ReplaceInput(unsigned char* data, unsigned long length) {
  m_input.reset(data);
  m_inputLength = length;
}

void CXmlDocument::ParseTextFrom(const unsigned char* data, unsigned long length) {
  m_source = data;
  m_sourceLength = length;
  try {
    ParseText();
  } catch (...) {
    m_source = nullptr;
    m_sourceLength = 0;
    throw;
  }
  m_source = nullptr;
  m_sourceLength = 0;
}

void CXmlDocument::LoadXml(const char* xml) {
  Cleanup();
  const size_t length = xml ? std::strlen(xml) : 0;
  if (length == 0) throw CKoException("XML String is empty!");
  // The text is read where the caller keeps it: a copy would only add a
  // second document's worth of memory to the load.
  ParseTextFrom(reinterpret_cast<const unsigned char*>(xml), length);
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
  if (IsPlainText(data, size)) {
    ParseTextFrom(data, size);
    return;
  }
  std::unique_ptr<unsigned char[]> input(new unsigned char[size]);
  std::memcpy(input.get(), data, size);
  ReplaceInput(input.release(), size);
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
  m_source = m_input.get();
  m_sourceLength = m_inputLength;
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

CXmlElement* CXmlDocument::AddDocElement(const char* namespaceUri, const char* localName) {
  ReleaseTree();
  return m_store->Start(m_store->Name(namespaceUri ? namespaceUri : "", localName ? localName : ""));
}

CXmlElement* CXmlDocument::AddChildElement(const char* namespaceUri, const char* localName) {
  if (!m_store->Top()) throw CKoException("A document can have only one document element.");
  return m_store->Start(m_store->Name(namespaceUri ? namespaceUri : "", localName ? localName : ""));
}

void CXmlDocument::EndElement() { m_store->End(true); }

void CXmlDocument::AddElementAttribute(CXmlElement* element, const std::string& localName,
                                       const std::string& value, const std::string& namespaceUri) {
  element->AddAttribute(localName, value, namespaceUri);
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, const char* text, unsigned long length) {
  if (text) m_store->AppendText(element, std::string_view(text, length));
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, const char* text) {
  if (text) AppendTextExcludingCR(element, text, std::strlen(text));
}

}  // namespace KoXmlLib10
