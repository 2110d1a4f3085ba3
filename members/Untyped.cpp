#include "KoXmlLib10/Untyped.h"

#include <memory>
#include <vector>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Streams.h"
#include "KoXmlLib10/XmlDocument.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "KoXmlLib10/XmlTextWriter.h"
#include "members/MembersMessages.h"

namespace KoXmlLib10 {

namespace {

std::string Text(const char* s) { return s ? s : ""; }

bool IsWildcardKeyword(const std::string& text) {
  return text == "##any" || text == "##other" || text == "##local" || text == "##targetNamespace";
}

// The namespace an element collection gives to elements added by name: a
// wildcard keyword stands in for the namespace when none is given.
std::string ElementColNamespace(const char* namespaceUri, const char* namespaceRestriction,
                                const char* targetNamespace) {
  const std::string ns = Text(namespaceUri);
  const std::string restriction = Text(namespaceRestriction);
  CXmlObjectHelper::TestNamespace(ns, restriction, Text(targetNamespace));
  if (ns.empty() && restriction.size() > 1 && restriction.compare(0, 2, "##") == 0) return restriction;
  return ns;
}

// An attribute collection without a namespace of its own takes the first URI
// of its restriction list (never a keyword).
std::string AttributeColNamespace(const char* namespaceUri, const char* namespaceRestriction) {
  const std::string ns = Text(namespaceUri);
  const std::string restriction = Text(namespaceRestriction);
  const std::string first = restriction.substr(0, restriction.find(' '));
  if (ns.empty() && first.size() > 1 && first[0] != '#' && first[1] != '#') return first;
  return ns;
}

// An xmlns attribute of a copied element becomes the element's default
// namespace; written again as an attribute it would declare it twice.
bool IsDefaultNamespaceDeclaration(const CAttribute& attribute) {
  return attribute.GetName() == "xmlns";
}

// An element with a default namespace of its own: its subtree is written by
// a writer of its own whose scope starts with that default, then spliced in
// as markup. The attributes go with it, but not the xmlns attribute that
// carried the default namespace: the separate writer declares it. Its state
// lives on the heap, as the function recurses with nested such elements.
[[gnu::noinline]] void WriteWithOwnDefaultNamespace(const CElement& element, CXmlWriter* writer,
                                                   const char* elementNamespace) {
  auto subtreeCtx = std::make_unique<CXmlSerializationContext>();
  subtreeCtx->SetDefaultNamespaceURI(element.GetDefaultNamespace().c_str());
  auto writeSubtree = [&](CXmlWriter& target) {
    target.WriteStartElement(element.GetName(), element.GetNamespace());
    for (CAttribute* attribute : *element.GetAttributes())
      if (attribute && !IsDefaultNamespaceDeclaration(*attribute))
        CXmlObjectBase::ToXml_Int(attribute, &target, false, elementNamespace, *subtreeCtx, false);
    CXmlObjectBase::ToXml_Int(element.GetElements(), &target, false, elementNamespace, *subtreeCtx, false);
    target.WriteString(element.GetText(), ItemType_string);
    target.WriteEndElement();
  };

  auto* outer = dynamic_cast<CXmlTextWriter*>(writer);
  if (!outer) {
    // Other writers (Fast Infoset) choose prefixes themselves: the same
    // names and namespaces, written in place.
    writeSubtree(*writer);
    return;
  }
  auto stream = std::make_unique<CTextStream>();
  auto separate = std::make_unique<CXmlTextWriter>(*stream);
  separate->Open();
  separate->SetFormat(outer->GetFormat());
  separate->SetEOLType(outer->GetEOLType());
  separate->SetDefaultNamespace(element.GetDefaultNamespace());
  writeSubtree(*separate);
  separate->Close();
  // The outer writer ends the inserted markup with its own line end.
  std::string markup(stream->GetText(), stream->GetLength());
  while (!markup.empty() && (markup.back() == '\n' || markup.back() == '\r')) markup.pop_back();
  outer->CloseParentElm();
  outer->WriteRawElement(markup);
}

// True when the caller's reference is the only one to `object`.
bool IsLastReference(CXmlObjectBase* object) {
  const int count = object->AddRef();
  object->Release();
  return count == 2;
}

}  // namespace

// ==== CAttribute =======================================================================

CAttribute::CAttribute(const char* name, const char* value, const char* namespaceUri)
    : m_name(Text(name)), m_value(Text(value)), m_namespace(Text(namespaceUri)) {
  SetElementName(m_name.c_str());
}

CAttribute::~CAttribute() = default;

CXmlObjectBase* CAttribute::GetBase() { return this; }
std::string CAttribute::GetNamespace() const { return m_namespace; }
std::string CAttribute::GetTargetNamespace() const { return m_namespace; }

void CAttribute::SetName(const char* name) {
  m_name = Text(name);
  SetElementName(m_name.c_str());
  FireOnChangeName();
}

void CAttribute::SetValue(const char* value) { m_value = Text(value); }

CSmartPtr<CAttribute> CAttribute::Clone() const {
  return new CAttribute(m_name.c_str(), m_value.c_str(), m_namespace.c_str());
}

void CAttribute::FireOnChangeName() {}
void CAttribute::FireOnChangeNamespace() {}

void CAttribute::ToXml_Int(CXmlWriter* writer, bool, const char*, const CXmlSerializationContext&, bool) const {
  writer->WriteAttributeString(m_name, m_namespace, m_value, ItemType_string);
}

CXmlElement* CAttribute::FromXml_Int(CXmlElement*, CXmlElement*, const CXmlSerializationContext&, bool) {
  throw CKoException(msg::kAttributeReadByCollection);
}

// ==== CAttributeCol ====================================================================

CAttributeCol::CAttributeCol(const char* namespaceUri, const char* namespaceRestriction,
                             const char* targetNamespace)
    : CXmlCollection(nullptr, AttributeColNamespace(namespaceUri, namespaceRestriction).c_str(), 0, -1),
      m_namespaceRestriction(Text(namespaceRestriction)),
      m_targetNamespace(Text(targetNamespace)) {}

CAttributeCol::~CAttributeCol() = default;

std::string CAttributeCol::GetTargetNamespace() const { return m_namespace; }

CSmartPtr<CAttribute> CAttributeCol::Add(CAttribute* attribute) {
  // Held first: a listener that throws must not leak an adopted attribute.
  CSmartPtr<CAttribute> held(attribute);
  AppendItem(attribute);
  return held;
}

CSmartPtr<CAttribute> CAttributeCol::Add(const char* name) { return Add(name, "", m_namespace.c_str()); }

CSmartPtr<CAttribute> CAttributeCol::Add(const char* name, const char* value) {
  return Add(name, value, m_namespace.c_str());
}

CSmartPtr<CAttribute> CAttributeCol::Add(const char* name, const char* value, const char* namespaceUri) {
  CXmlObjectHelper::TestNamespace(Text(namespaceUri), m_namespaceRestriction, m_targetNamespace);
  return Add(new CAttribute(name, value, namespaceUri));
}

CSmartPtr<CAttribute> CAttributeCol::Item(int index) const {
  return static_cast<CAttribute*>(GetNodeAtIndex(index)->item);
}

CSmartPtr<CAttributeCol> CAttributeCol::Clone() const {
  CSmartPtr<CAttributeCol> copy(
      new CAttributeCol(m_namespace.c_str(), m_namespaceRestriction.c_str(), m_targetNamespace.c_str()));
  copy->SetElementName(GetElementName().c_str());
  for (CAttribute* attribute : *this) copy->AppendItem(attribute ? attribute->Clone().get() : nullptr);
  return copy;
}

void CAttributeCol::ToXml_Int(CXmlWriter* writer, bool, const char* elementNamespace,
                              const CXmlSerializationContext& ctx, bool) const {
  for (CAttribute* attribute : *this)
    if (attribute) CXmlObjectBase::ToXml_Int(attribute, writer, false, elementNamespace, ctx, false);
}

CXmlElement* CAttributeCol::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                        const CXmlSerializationContext&, bool) {
  if (!element) return firstChild;
  for (size_t index = 0, total = element->GetAttributeCount(); index < total; ++index) {
    const CXmlAttribute* attribute = element->GetAttributeAt(index);
    const std::string& ns = attribute->GetNamespaceURI();
    if (!CXmlObjectHelper::IsNamespaceValid(ns, m_namespaceRestriction, m_targetNamespace))
      throw CKoInvalidNamespaceException(
          FormatString(msg::kAttributeNamespaceInappropriate, attribute->GetLocalName().c_str()));
    Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(), ns.c_str());
  }
  return firstChild;
}

// ==== CElement ===========================================================================

CElement::CElement(const char* name, const char* namespaceUri, const char* namespaceRestriction,
                   const char* targetNamespace) {
  Init(name, namespaceUri, namespaceRestriction, targetNamespace);
}

CElement::CElement(const char* name, const char* namespaceUri) {
  if (IsWildcardKeyword(Text(namespaceUri)))
    throw CKoInvalidNamespaceException(FormatString(msg::kKeywordAsNamespace, namespaceUri));
  Init(name, namespaceUri, namespaceUri ? namespaceUri : "", "");
}

CElement::CElement(const char* name) { Init(name, "", "##any", ""); }

CElement::CElement(CXmlObjectBase* object, const char* defaultNamespace) {
  Init("", "", "##any", "");
  if (!object) throw CKoInvalidParamException(msg::kNoObjectToCopy);
  m_defaultNamespace = Text(defaultNamespace);
  CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI(m_defaultNamespace.c_str());
  CBinaryData bytes =
      object->ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, ctx, CompressionTypeNone);
  CXmlDocument document(ctx);
  document.LoadXmlStream(bytes.GetData(), bytes.GetLength());
  CopyXmlElement(document.GetDocumentElement());
}

// Releasing a deep tree would recurse once per level. The children that go
// with this element are taken out of their collections first and released
// one at a time, each emptied the same way before it goes; shared ones (held
// elsewhere too) are left whole.
CElement::~CElement() {
  std::vector<CSmartPtr<CElement>> pending;
  auto takeChildren = [&pending](CElement& element) {
    CElementCol* children = element.m_elements.get();
    if (!children || !IsLastReference(children)) return;
    for (CElement* child : *children)
      if (child) pending.push_back(child);
    try {
      children->Clear();
    } catch (...) {
      // A listener's failure cannot leave a destructor; the collection's
      // own destructor releases what is left.
    }
  };
  takeChildren(*this);
  while (!pending.empty()) {
    CSmartPtr<CElement> next = pending.back();
    pending.pop_back();
    if (IsLastReference(next.get())) takeChildren(*next);
  }
}

CXmlObjectBase* CElement::GetBase() { return this; }
std::string CElement::GetNamespace() const { return m_namespace; }
std::string CElement::GetTargetNamespace() const { return m_namespace; }

void CElement::Init(const char* name, const char* namespaceUri, const char* namespaceRestriction,
                    const char* targetNamespace) {
  if (!name) throw CKoInvalidNamespaceException(msg::kElementNameRequired);
  if (!namespaceRestriction) throw CKoInvalidNamespaceException(msg::kRestrictionRequired);
  if (!targetNamespace) throw CKoInvalidNamespaceException(msg::kTargetNamespaceRequired);
  CXmlObjectHelper::TestNamespace(Text(namespaceUri), namespaceRestriction, targetNamespace);
  m_name = name;
  SetElementName(name);
  m_namespace = Text(namespaceUri);
  m_namespaceRestriction = namespaceRestriction;
  m_targetNamespace = targetNamespace;
  m_attributes = new CAttributeCol(m_namespace.c_str(), "##any", targetNamespace);
  m_elements = new CElementCol(m_namespace.c_str(), "##any", targetNamespace, 0, -1);
}

void CElement::SetName(const char* name) {
  m_name = Text(name);
  SetElementName(m_name.c_str());
  FireOnChangeName();
}

void CElement::SetText(const char* text) {
  m_text = Text(text);
  FireOnChangeText();
}

void CElement::FireOnChangeName() {}
void CElement::FireOnChangeNamespace() {}
void CElement::FireOnChangeText() {}

void CElement::FromXml(const char* xml) {
  const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext;
  CXmlDocument document(ctx);
  document.LoadXml(xml);
  CXmlElement* root = document.GetDocumentElement();
  FromXml_Int(root, root, ctx, false);
}

void CElement::CopyXmlElement(CXmlElement* source) {
  if (!source) throw CKoInvalidParamException(msg::kNoObjectToCopy);
  m_name = source->GetLocalName();
  SetElementName(m_name.c_str());
  m_namespace = source->GetNamespaceURI();
  m_text = source->GetText();
  m_attributes->Clear();
  m_elements->Clear();
  for (size_t index = 0, total = source->GetAttributeCount(); index < total; ++index) {
    const CXmlAttribute* attribute = source->GetAttributeAt(index);
    m_attributes->Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(),
                      attribute->GetNamespaceURI().c_str());
    if (attribute->GetLocalName() == "xmlns") m_defaultNamespace = attribute->GetValue();
  }
  for (CXmlElement* child = source->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
    CSmartPtr<CElement> copy(new CElement(child->GetLocalName().c_str()));
    copy->CopyXmlElement(child);
    m_elements->Add(copy.get());
  }
}

void CElement::SetNamespaceRestrictions(const char* namespaceRestriction, const char* targetNamespace) {
  const std::string restriction = Text(namespaceRestriction);
  const std::string target = Text(targetNamespace);
  try {
    CXmlObjectHelper::TestNamespace(m_namespace, restriction, target);
  } catch (const CKoException& e) {
    throw CKoInvalidNamespaceException(FormatString(msg::kNamespaceAgainstRestriction, m_namespace.c_str(),
                                                    m_name.c_str(), restriction.c_str()),
                                       e);
  }
  for (CAttribute* attribute : *m_attributes)
    if (attribute) CXmlObjectHelper::TestNamespace(attribute->GetNamespace(), restriction, target);
  for (CElement* child : *m_elements)
    if (child) child->SetNamespaceRestrictions(namespaceRestriction, targetNamespace);
}

CSmartPtr<CElement> CElement::Clone() const {
  CSmartPtr<CElement> copy(new CElement(m_name.c_str(), m_namespace.c_str(), m_namespaceRestriction.c_str(),
                                        m_targetNamespace.c_str()));
  copy->m_attributes = m_attributes->Clone();
  copy->m_elements = m_elements->Clone();
  copy->m_text = m_text;
  return copy;
}

void CElement::ToXml_Int(CXmlWriter* writer, bool, const char* elementNamespace,
                         const CXmlSerializationContext& ctx, bool) const {
  // Kept small: it recurses once per level of the tree.
  if (!m_defaultNamespace.empty()) {
    WriteWithOwnDefaultNamespace(*this, writer, elementNamespace);
    return;
  }
  writer->WriteStartElement(m_name, m_namespace);
  CXmlObjectBase::ToXml_Int(m_attributes.get(), writer, false, elementNamespace, ctx, false);
  CXmlObjectBase::ToXml_Int(m_elements.get(), writer, false, elementNamespace, ctx, false);
  writer->WriteString(m_text, ItemType_string);
  writer->WriteEndElement();
}

CXmlElement* CElement::FromXml_Int(CXmlElement*, CXmlElement* element, const CXmlSerializationContext& ctx,
                                   bool) {
  if (!element) return nullptr;
  if (!CXmlObjectHelper::IsNamespaceValid(element->GetNamespaceURI(), m_namespaceRestriction, m_targetNamespace))
    return element;
  const std::string nameBefore = m_name;
  // Reading replaces what the element held, as for any other object.
  m_attributes->Clear();
  m_elements->Clear();
  CXmlObjectBase::FromXml_Int(m_attributes.get(), element, nullptr, ctx);
  if (CXmlObjectBase::FromXml_Int(m_elements.get(), element, element->GetFirstElement(), ctx))
    throw CKoValidationException(
        FormatString(msg::kInvalidElementInElement, element->GetLocalName().c_str(), nameBefore.c_str()));
  m_text = element->GetText();
  m_name = element->GetLocalName();
  SetElementName(m_name.c_str());
  m_namespace = element->GetNamespaceURI();
  return element->GetNextSiblingElement();
}

// ==== CElementCol ====================================================================

CElementCol::CElementCol(const char* namespaceUri, const char* namespaceRestriction, const char* targetNamespace,
                         int, int)
    : CXmlCollection(nullptr, ElementColNamespace(namespaceUri, namespaceRestriction, targetNamespace).c_str(), 0,
                     -1),
      m_namespaceRestriction("##any"),
      m_targetNamespace(Text(targetNamespace)) {}

CElementCol::~CElementCol() = default;

std::string CElementCol::GetNamespace() const { return m_targetNamespace; }
std::string CElementCol::GetTargetNamespace() const { return m_targetNamespace; }

CSmartPtr<CElement> CElementCol::Add(CElement* element) {
  CSmartPtr<CElement> held(element);
  if (element) CXmlObjectHelper::TestNamespace(element->m_namespace, m_namespaceRestriction, m_targetNamespace);
  AppendItem(element);
  return held;
}

CSmartPtr<CElement> CElementCol::Add(const char* name) {
  // A wildcard keyword is no namespace to put an element in.
  if (m_namespace.empty() || IsWildcardKeyword(m_namespace))
    throw CKoInvalidStateException(msg::kCollectionWithoutNamespace);
  return Add(new CElement(name, m_namespace.c_str(), m_namespaceRestriction.c_str(), m_targetNamespace.c_str()));
}

CSmartPtr<CElement> CElementCol::Add(const char* name, const char* namespaceUri) {
  CXmlObjectHelper::TestNamespace(Text(namespaceUri), m_namespaceRestriction, m_targetNamespace);
  return Add(new CElement(name, namespaceUri ? namespaceUri : "", m_namespaceRestriction.c_str(),
                          m_targetNamespace.c_str()));
}

CSmartPtr<CElement> CElementCol::Item(int index) const {
  return static_cast<CElement*>(GetNodeAtIndex(index)->item);
}

CSmartPtr<CElementCol> CElementCol::Clone() const {
  CSmartPtr<CElementCol> copy(new CElementCol(m_namespace.c_str(), m_namespaceRestriction.c_str(),
                                              m_targetNamespace.c_str(), 0, -1));
  copy->SetElementName(GetElementName().c_str());
  for (CElement* element : *this) copy->AppendItem(element ? element->Clone().get() : nullptr);
  return copy;
}

void CElementCol::ToXml_Int(CXmlWriter* writer, bool, const char* elementNamespace,
                            const CXmlSerializationContext& ctx, bool) const {
  for (CElement* element : *this)
    if (element) CXmlObjectBase::ToXml_Int(element, writer, false, elementNamespace, ctx, false);
}

CXmlElement* CElementCol::FromXml_Int(CXmlElement* parentElement, CXmlElement* cursor,
                                      const CXmlSerializationContext& ctx, bool) {
  while (cursor &&
         CXmlObjectHelper::IsNamespaceValid(cursor->GetNamespaceURI(), m_namespaceRestriction, m_targetNamespace)) {
    CSmartPtr<CElement> element(new CElement(cursor->GetLocalName().c_str(), cursor->GetNamespaceURI().c_str(),
                                             m_namespaceRestriction.c_str(), m_targetNamespace.c_str()));
    CXmlElement* next = CXmlObjectBase::FromXml_Int(element.get(), parentElement, cursor, ctx);
    if (next == cursor) break;
    Add(element.get());
    cursor = next;
  }
  return cursor;
}

CXmlElement* CElementCol::FromXmlLockElementName_Int(std::string name, std::string namespaceUri,
                                                     CXmlElement* parentElement, CXmlElement* cursor,
                                                     const CXmlSerializationContext& ctx) {
  while (cursor && cursor->GetLocalName() == name && cursor->GetNamespaceURI() == namespaceUri) {
    CSmartPtr<CElement> element(new CElement(cursor->GetLocalName().c_str(), cursor->GetNamespaceURI().c_str(),
                                             "##any", m_targetNamespace.c_str()));
    CXmlElement* next = CXmlObjectBase::FromXml_Int(element.get(), parentElement, cursor, ctx);
    if (next == cursor) break;
    Add(element.get());
    cursor = next;
  }
  return cursor;
}

}  // namespace KoXmlLib10
