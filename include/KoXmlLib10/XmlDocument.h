#ifndef KOXMLLIB10_XMLDOCUMENT_H
#define KOXMLLIB10_XMLDOCUMENT_H

#include <cstdint>
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
class CXmlDocumentStore;
struct CXmlAttributeList;

// Storage of a node's name. A loaded document keeps one per distinct name
// and its nodes point at it; a node built on its own owns its copy. Internal
// to the tree: applications use the getters of the nodes.
struct CXmlNodeName {
  std::string namespaceUri;
  std::string localName;
  const CXmlDocument* owner = nullptr;
  bool isSchemaInstanceType = false;  // xsi:type, as an attribute name
  std::string typeNamespace;          // of an element that owns its name, see GetTypePrefixNamespace
};

class KOXML_API CXmlAttribute {
 public:
  CXmlAttribute(const std::string& localName, const std::string& value, const std::string& namespaceUri);
  CXmlAttribute(const CXmlAttribute&) = delete;
  CXmlAttribute& operator=(const CXmlAttribute&) = delete;
  virtual ~CXmlAttribute();

  const std::string& GetLocalName() const { return Name().localName; }
  const std::string& GetValue() const { return m_value; }
  const std::string& GetNamespaceURI() const { return Name().namespaceUri; }
  // xsi:nil (also accepted in the xmlns namespace).
  bool IsNilAttribute() const;
  // xmlns, xsi:type, xsi:schemaLocation and xsi:noNamespaceSchemaLocation:
  // attributes that belong to the instance machinery, not to the data.
  bool IsNamespaceAttribute() const;

 private:
  friend class CXmlElement;
  friend class CXmlDocument;
  friend class CXmlDocumentStore;
  // A node of a loaded document: the name belongs to the document.
  CXmlAttribute(const CXmlNodeName* sharedName, std::string_view value);
  const CXmlNodeName& Name() const { return *reinterpret_cast<const CXmlNodeName*>(m_name & ~uintptr_t(1)); }
  bool OwnsName() const { return m_name & 1; }

  uintptr_t m_name;  // CXmlNodeName*, low bit set when this attribute owns it
  std::string m_value;
};

// An element of the parsed tree: name, attributes in document order, and all
// its character data concatenated (whitespace between children included).
// It owns its children and attributes.
//
// Elements of a loaded document live in the document's storage and are
// destroyed with it; elements created with `new` (and whatever is built
// under them) are ordinary heap objects that their owner deletes.
class KOXML_API CXmlElement {
 public:
  explicit CXmlElement(const CXmlDocument* owner);
  CXmlElement(const CXmlElement&) = delete;
  CXmlElement& operator=(const CXmlElement&) = delete;
  // Destroys the whole subtree without recursing once per level, so that
  // arbitrarily deep trees cannot exhaust the stack.
  virtual ~CXmlElement();

  const CXmlDocument* GetOwnerDocument() const { return m_name->owner; }
  CXmlElement* GetFirstElement() const { return m_firstChild; }
  CXmlElement* GetNextSiblingElement() const { return m_nextSibling; }
  const std::string& GetNamespaceURI() const { return m_name->namespaceUri; }
  const std::string& GetLocalName() const { return m_name->localName; }
  // The text as a string. A loaded document keeps texts packed together and
  // makes the string on the first call (so a document must not be read from
  // several threads at once); GetTextView needs no allocation.
  const std::string& GetText() const;
  // The same characters, valid until the text changes or the element goes.
  std::string_view GetTextView() const;
  // The attributes in document order. The vector is made on the first call
  // (loaded elements keep their attributes packed), so, as with GetText, a
  // document must not be read from several threads at once.
  const std::vector<CXmlAttribute*>& GetAttributes() const;
  // The same attributes without the vector (beyond the interface the
  // binding contract needs; what the engine uses on every element).
  size_t GetAttributeCount() const;
  CXmlAttribute* GetAttributeAt(size_t index) const;
  // Value of the first attribute with exactly this name and namespace, or
  // an empty string.
  const std::string& GetAttribute(const std::string& localName, const std::string& namespaceUri) const;
  // When the element carries xsi:type with a prefixed value ("p:T"; ":T"
  // stands for the default namespace), the namespace that the declarations
  // in scope at this element, as the document was read, bind the prefix to.
  // False without xsi:type, without a colon in its value, or when no
  // declaration in scope binds the prefix; callers then fall back to the
  // document-wide CXmlDocument::LookupNamespaceFromAlias.
  bool GetTypePrefixNamespace(std::string& namespaceUri) const;

  CXmlElement* CreateNewChildElement();
  // Unlinks the last child and hands it to the caller, who deletes it; null
  // without children. Constant time. The child of a loaded document is
  // handed over as a copy of its subtree on the heap (the original goes back
  // to the document's storage), so it may outlive the document.
  CXmlElement* RemoveLastChildElement();
  void SetElementName(const std::string& name);
  void SetNamespace(const std::string& namespaceUri);
  void AppendText(const char* text, int length);
  void AppendText(const char* text);
  CXmlAttribute* AddAttribute(const std::string& localName, const std::string& value,
                              const std::string& namespaceUri);

 private:
  friend class CXmlDocument;
  friend class CXmlDocumentStore;

  enum Flags : uint32_t {
    kInStore = 1u << 0,        // lives in its document's storage
    kOwnsName = 1u << 1,       // m_name was allocated for this element alone
    kTextString = 1u << 2,     // m_text is a std::string* owned by the element
    kTextPending = 1u << 3,    // open in a load: its text is still being gathered
    kTypeNamespace = 1u << 4,  // xsi:type prefix resolved in scope (see the document)
    kOpen = 1u << 5,           // started and not yet ended in a load
    kPooledAttributes = 1u << 6,  // m_attributes lives in the document's storage
    kHeapParts = 1u << 7,         // holds something its document must free one by one
  };
  struct InStoreTag {};
  CXmlElement(const CXmlNodeName* sharedName, InStoreTag);

  void Append(std::string_view text);
  std::string& TextString() const;
  CXmlDocumentStore* Store() const;
  void SetName(std::string_view namespaceUri, std::string_view localName);
  void ReleaseParts();
  CXmlElement* LastChild() const { return m_firstChild ? m_firstChild->m_prevSibling : nullptr; }
  void LinkChild(CXmlElement* child);
  CXmlElement* UnlinkLastChild();
  CXmlElement* CopyToHeap() const;

  const CXmlNodeName* m_name;
  CXmlElement* m_nextSibling = nullptr;
  CXmlElement* m_firstChild = nullptr;
  // Previous sibling; the first child's is the last child, so that both
  // appending and removing the last child take constant time.
  CXmlElement* m_prevSibling = nullptr;
  CXmlAttributeList* m_attributes = nullptr;
  mutable const char* m_text = nullptr;  // packed bytes, or a std::string* with kTextString
  mutable uint32_t m_textLength = 0;
  mutable uint32_t m_flags = 0;
};

// The parsed tree and its loader. Byte streams and files may hold XML text
// or Fast Infoset, either of them gzip- or zlib-compressed; strings are
// always XML text.
//
// The document keeps a pointer to the serialization context it was given:
// the context must outlive the document.
class KOXML_API CXmlDocument {
 public:
  using ElementFilter = bool (*)(CXmlElement*);

  // Deepest element nesting a document may have. Deeper input fails with a
  // CKoException instead of building a tree that the code walking it
  // recursively could not handle.
  static constexpr size_t MAX_ELEMENT_DEPTH = 10000;

  CXmlDocument();
  // The filter sees every element read from XML text once it has ended;
  // when it returns true the element is dropped from its parent at once
  // (in constant time), so large documents can be consumed element by
  // element in bounded memory.
  explicit CXmlDocument(ElementFilter filter);
  explicit CXmlDocument(const CXmlSerializationContext& context);
  CXmlDocument(ElementFilter filter, const CXmlSerializationContext& context);
  // A filter that reaches the caller's state: `state` is handed back on
  // every call, untouched (the document neither reads nor owns it). Apart
  // from that it works as ElementFilter does.
  using ElementFilterWithState = bool (*)(CXmlElement* element, void* state);
  CXmlDocument(ElementFilterWithState filter, void* state);
  CXmlDocument(ElementFilterWithState filter, void* state, const CXmlSerializationContext& context);
  // Replace the filter between loads; null removes it.
  void SetElementFilter(ElementFilter filter);
  void SetElementFilter(ElementFilterWithState filter, void* state);
  CXmlDocument(const CXmlDocument&) = delete;
  CXmlDocument& operator=(const CXmlDocument&) = delete;
  virtual ~CXmlDocument();

  void Init();
  // Destroys the tree and the input; the document can be loaded again.
  virtual void Cleanup();

  void LoadXml(const char* xml);
  void LoadXml(const wchar_t* xml);
  void LoadXmlStream(unsigned char* data, unsigned long size);
  // Plain and gzip'd XML text is read from the file in pieces as it is
  // parsed, so the file is never held whole; Fast Infoset and
  // zlib-compressed files are read whole first.
  void Load(const char* path);

  // ---- Reading a document in pieces ----
  // For documents larger than memory, or made while they are read: with an
  // element filter that drops what it has consumed, the memory a load uses
  // stays flat whatever the size of the input. The tree and the failures
  // are those of a load from one buffer (a failed load keeps the part of
  // the tree built so far); the filter runs as the elements end, inside the
  // calls below.
  //
  // Pushed pieces of XML text: BeginXmlChunks() empties the document and
  // starts a load, each LoadXmlChunk() parses the bytes given (split
  // anywhere, even inside a character; they need not outlive the call), and
  // EndXmlChunks() ends the input, failing when the document is incomplete,
  // and with "XML Stream is empty!" when no byte came. After a failure the
  // load is over: LoadXmlChunk and EndXmlChunks without a load in progress
  // throw CKoException.
  void BeginXmlChunks();
  void LoadXmlChunk(const char* data, size_t size);
  void EndXmlChunks();
  bool IsReadingChunks() const { return m_pieceReader != nullptr; }

  // Pulled pieces: the source fills up to `capacity` bytes of `buffer` with
  // the next bytes of the input and returns how many it wrote, 0 at the end
  // of the input. It may throw; the exception ends the load and reaches the
  // caller unchanged. The bytes are what LoadXmlStream takes: XML text,
  // plain or gzip'd, is parsed as it arrives; Fast Infoset and zlib streams
  // are gathered and loaded whole.
  using XmlSource = size_t (*)(void* state, unsigned char* buffer, size_t capacity);
  void LoadXmlFromSource(XmlSource read, void* state);
  // Inflates the input if it is compressed, then reads it as Fast Infoset or
  // as XML text.
  void Parse();
  void ParseText();

  CXmlElement* GetDocumentElement() const { return m_documentElement; }
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
  friend class CXmlElement;
  friend class CExpatReader;
  friend class CFastInfosetReader;
  friend class CXmlDocumentStore;

  void ReleaseTree();
  void ReplaceInput(unsigned char* data, unsigned long length);
  // Where a load in pieces takes its bytes from (a file, a caller's source).
  class CPieceSource;
  // Parses plain and gzip'd text piece by piece; anything else is read
  // whole and given to Parse().
  void ReadPieces(CPieceSource& source);
  static bool CallFilterWithState(CXmlElement* element);
  // Reads text straight from bytes the caller keeps during the call.
  void ParseTextFrom(const unsigned char* data, unsigned long length);

  CXmlElement* m_documentElement = nullptr;  // in the store
  std::unique_ptr<CXmlDocumentStore> m_store;
  std::map<std::string, std::string> m_aliases;
  std::unique_ptr<unsigned char[]> m_input;
  unsigned long m_inputLength = 0;
  // The bytes being read: the input buffer, or the caller's own bytes.
  const unsigned char* m_source = nullptr;
  unsigned long m_sourceLength = 0;
  SchemaType m_schemaType = SchemaTypeDefault;
  ElementFilter m_filter = nullptr;
  const CXmlSerializationContext* m_context;
  // A filter with state is called through CallFilterWithState.
  ElementFilterWithState m_filterWithState = nullptr;
  void* m_filterState = nullptr;
  // The parser of a load in pieces, between BeginXmlChunks and its end.
  std::unique_ptr<CExpatReader> m_pieceReader;
  unsigned long long m_pieceBytes = 0;
};

// Process-wide switch (initially false) kept for callers that set it; files
// are loaded synchronously whatever its value.
extern KOXML_API bool ASYNC_FROMXMLFILE;
KOXML_API void AsyncFromXmlFile(bool async);

}  // namespace KoXmlLib10

#endif
