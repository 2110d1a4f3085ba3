#ifndef KOXMLLIB10_XMLDOCUMENT_H
#define KOXMLLIB10_XMLDOCUMENT_H

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/SerializationContext.h"

namespace KoXmlLib10 {

class CXmlDocument;
class CExpatReader;
class CFastInfosetReader;

// Namespace URIs repeat on nearly every node: the readers let the nodes
// share one string per URI.
using SharedString = std::shared_ptr<const std::string>;

class KOXML_API CXmlAttribute {
 public:
  CXmlAttribute(const std::string& localName, const std::string& value, const std::string& namespaceUri);
  virtual ~CXmlAttribute();

  const std::string& GetLocalName() const { return m_localName; }
  const std::string& GetValue() const { return m_value; }
  const std::string& GetNamespaceURI() const;
  // xsi:nil (also accepted in the xmlns namespace).
  bool IsNilAttribute() const;
  // xmlns, xsi:type, xsi:schemaLocation and xsi:noNamespaceSchemaLocation:
  // attributes that belong to the instance machinery, not to the data.
  bool IsNamespaceAttribute() const;

 private:
  friend class CXmlDocument;
  CXmlAttribute(std::string_view localName, std::string_view value, SharedString namespaceUri);

  std::string m_localName;
  std::string m_value;
  SharedString m_namespaceUri;
};

// An element of the parsed tree: name, attributes in document order, and all
// its character data concatenated (whitespace between children included).
// It owns its children and attributes.
class KOXML_API CXmlElement {
 public:
  explicit CXmlElement(const CXmlDocument* owner);
  CXmlElement(const CXmlElement&) = delete;
  CXmlElement& operator=(const CXmlElement&) = delete;
  // Destroys the whole subtree without recursing once per level, so that
  // arbitrarily deep trees cannot exhaust the stack.
  virtual ~CXmlElement();

  const CXmlDocument* GetOwnerDocument() const { return m_owner; }
  CXmlElement* GetFirstElement() const { return m_firstChild; }
  CXmlElement* GetNextSiblingElement() const { return m_nextSibling; }
  const std::string& GetNamespaceURI() const;
  const std::string& GetLocalName() const { return m_localName; }
  const std::string& GetText() const { return m_text; }
  const std::vector<CXmlAttribute*>& GetAttributes() const { return m_attributes; }
  // Value of the first attribute with exactly this name and namespace, or
  // an empty string.
  const std::string& GetAttribute(const std::string& localName, const std::string& namespaceUri) const;

  CXmlElement* CreateNewChildElement();
  // Unlinks the last child and hands it to the caller; null without children.
  CXmlElement* RemoveLastChildElement();
  void SetElementName(const std::string& name) { m_localName = name; }
  void SetNamespace(const std::string& namespaceUri);
  void AppendText(const char* text, int length);
  void AppendText(const char* text);
  CXmlAttribute* AddAttribute(const std::string& localName, const std::string& value,
                              const std::string& namespaceUri);

 private:
  friend class CXmlDocument;
  void Append(std::string_view text);

  const CXmlDocument* const m_owner;
  CXmlElement* m_nextSibling = nullptr;
  CXmlElement* m_firstChild = nullptr;
  CXmlElement* m_lastChild = nullptr;
  std::vector<CXmlAttribute*> m_attributes;
  std::string m_text;
  std::string m_localName;
  SharedString m_namespaceUri;  // null for no namespace
};

// The parsed tree and its loader. Byte streams and files may hold XML text
// or Fast Infoset, either of them gzip- or zlib-compressed; strings are
// always XML text.
class KOXML_API CXmlDocument {
 public:
  using ElementFilter = bool (*)(CXmlElement*);

  // Deepest element nesting a document may have. Deeper input fails with a
  // CKoException instead of building a tree that the code walking it
  // recursively could not handle.
  static constexpr size_t MAX_ELEMENT_DEPTH = 10000;

  CXmlDocument();
  // The filter sees every element read from XML text once it has ended;
  // when it returns true the element is dropped from its parent at once,
  // so large documents can be consumed element by element.
  explicit CXmlDocument(ElementFilter filter);
  explicit CXmlDocument(const CXmlSerializationContext& context);
  CXmlDocument(ElementFilter filter, const CXmlSerializationContext& context);
  CXmlDocument(const CXmlDocument&) = delete;
  CXmlDocument& operator=(const CXmlDocument&) = delete;
  virtual ~CXmlDocument();

  void Init();
  // Destroys the tree and the input; the document can be loaded again.
  virtual void Cleanup();

  void LoadXml(const char* xml);
  void LoadXml(const wchar_t* xml);
  void LoadXmlStream(unsigned char* data, unsigned long size);
  void Load(const char* path);
  // Inflates the input if it is compressed, then reads it as Fast Infoset or
  // as XML text.
  void Parse();
  void ParseText();

  CXmlElement* GetDocumentElement() const { return m_documentElement.get(); }
  // Document-wide: the last declaration of the prefix anywhere in the input.
  std::string LookupNamespaceFromAlias(const char* alias) const;

  // Building operations used by the readers.
  CXmlElement* AddDocElement(const char* namespaceUri, const char* localName);
  CXmlElement* AddChildElement(const char* namespaceUri, const char* localName);
  void EndElement();
  void AddElementAttribute(CXmlElement* element, const std::string& localName, const std::string& value,
                           const std::string& namespaceUri);
  void AppendTextExcludingCR(CXmlElement* element, const char* text, unsigned long length);
  void AppendTextExcludingCR(CXmlElement* element, const char* text);

 private:
  friend class CExpatReader;
  friend class CFastInfosetReader;

  CXmlElement* StartElement(std::string_view namespaceUri, std::string_view localName);
  // The shared copy of a namespace URI; null for the empty one.
  SharedString Shared(std::string_view namespaceUri);
  void AddAttribute(CXmlElement* element, std::string_view localName, std::string_view value,
                    std::string_view namespaceUri);
  CXmlElement* TopElement() const { return m_openElements.empty() ? nullptr : m_openElements.back(); }
  void PopElement() { m_openElements.pop_back(); }
  void SetAlias(std::string prefix, std::string namespaceUri);
  void ReplaceInput(unsigned char* data, unsigned long length);

  std::unique_ptr<CXmlElement> m_documentElement;
  std::vector<CXmlElement*> m_openElements;
  std::map<std::string, std::string> m_aliases;
  std::vector<SharedString> m_namespaces;
  std::unique_ptr<unsigned char[]> m_input;
  unsigned long m_inputLength = 0;
  SchemaType m_schemaType = SchemaTypeDefault;
  ElementFilter m_filter = nullptr;
  const CXmlSerializationContext* m_context;
};

// Process-wide switch (initially false) kept for callers that set it; files
// are loaded synchronously whatever its value.
extern KOXML_API bool ASYNC_FROMXMLFILE;
KOXML_API void AsyncFromXmlFile(bool async);

}  // namespace KoXmlLib10

#endif
