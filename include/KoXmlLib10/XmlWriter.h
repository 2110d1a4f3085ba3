#ifndef KOXMLLIB10_XMLWRITER_H
#define KOXMLLIB10_XMLWRITER_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/ItemType.h"

namespace KoXmlLib10 {

// The abstract output writer every serialization goes through. It keeps what
// all concrete writers share: the root-level namespace data, the stack of open
// elements and the namespace scope of each of them.
class KOXML_API CXmlWriter {
 public:
  // Namespace URI -> prefix, in byte-wise URI order.
  typedef std::map<std::string, std::string> NamespaceMap;

  static constexpr char XML_NAMESPACE[] = "http://www.w3.org/XML/1998/namespace";
  // The XML Schema instance namespace, of the xsi:type and xsi:nil attributes.
  static constexpr char XSI_NAMESPACE[] = "http://www.w3.org/2001/XMLSchema-instance";

  // One open element. A scope inherits its parent's namespace data until it
  // changes it; the first change gives it a copy of its own.
  //
  // A context finds the scope it inherits in constant time: it remembers the
  // nearest ancestor with namespace data of its own when it is opened. The
  // writers change only the innermost open element's namespace data, so that
  // ancestor stays the right one; changing the data of an element that has
  // open descendants is not supported (they keep the scope they started with).
  class KOXML_API CXmlWriterContext {
   public:
    // Nested element: adopts `parent` (the whole chain above is owned).
    CXmlWriterContext(const std::string& localName, const std::string& namespaceUri,
                      CXmlWriterContext* parent);
    // Outermost element: starts with copies of the root-level namespace data.
    CXmlWriterContext(const std::string& localName, const std::string& namespaceUri,
                      const std::string& defaultNamespace, const NamespaceMap* namespaceMap,
                      CXmlWriterContext* parent);
    ~CXmlWriterContext();
    CXmlWriterContext(const CXmlWriterContext&) = delete;
    CXmlWriterContext& operator=(const CXmlWriterContext&) = delete;

    NamespaceMap* GetNamespaceMap() { return Scope()->m_namespaceMap.get(); }
    const std::string& GetDefaultNamespace() const { return Scope()->m_defaultNamespace; }
    void SetDefaultNamespace(const std::string& uri);
    void SetNamespaceMapValue(const std::string& uri, const std::string& prefix);
    // The prefix of `uri` in the effective map; an absent URI gets an empty entry.
    std::string& GetNamespaceMapValue(const std::string& uri);
    std::string& GetNamespaceMapValue(const char* uri);

    unsigned int GetChildCount() const { return m_childCount; }
    void SetChildCount(unsigned int count) { m_childCount = count; }
    bool GetStartTagOpen() const { return m_startTagOpen; }
    void SetStartTagOpen(bool open) { m_startTagOpen = open; }
    unsigned int GetDepth() const { return m_depth; }
    const std::string& GetNamespaceUri() const { return m_namespaceUri; }
    const std::string& GetLocalName() const { return m_localName; }
    CXmlWriterContext* GetParent() const { return m_parent.get(); }
    // Gives up ownership of the parent and clears the link (used when popping).
    CXmlWriterContext* DetachParent() { return m_parent.release(); }
    bool GetAttributesWritten() const { return m_attributesWritten; }
    void SetAttributesWritten(bool written) { m_attributesWritten = written; }
    bool GetInherits() const { return m_inherits; }
    bool GetOwnsMap() const { return m_ownsMap; }

   private:
    friend class CXmlWriter;

    // The nearest context, from this one up, that has namespace data of its own.
    const CXmlWriterContext* Scope() const { return m_inherits ? m_inheritedScope : this; }
    CXmlWriterContext* Scope() { return m_inherits ? m_inheritedScope : this; }
    void TakeOwnCopyOfScope();
    // Turns a popped context into a fresh nested one, reusing its storage.
    void Reuse(const std::string& localName, const std::string& namespaceUri,
               CXmlWriterContext* parent);

    unsigned int m_childCount = 0;
    bool m_startTagOpen = true;
    unsigned int m_depth = 0;
    std::string m_namespaceUri;
    std::string m_localName;
    std::unique_ptr<CXmlWriterContext> m_parent;
    bool m_attributesWritten = false;
    std::string m_defaultNamespace;
    std::unique_ptr<NamespaceMap> m_namespaceMap;
    bool m_inherits = true;
    bool m_ownsMap = false;
    // While inheriting: the nearest ancestor with namespace data of its own.
    CXmlWriterContext* m_inheritedScope = nullptr;
  };

  CXmlWriter();
  virtual ~CXmlWriter();
  CXmlWriter(const CXmlWriter&) = delete;
  CXmlWriter& operator=(const CXmlWriter&) = delete;

  virtual void Open();
  virtual void Close();
  virtual void SetDefaultNamespace(const std::string& uri);
  virtual void AddNamespace(const std::string& prefix, const std::string& uri);
  virtual void WriteComment(const std::string& text) = 0;
  virtual void WritePI(const std::string& text) = 0;
  virtual void WriteInlineSchema(const std::string& text) = 0;
  virtual void WriteStartElement(const std::string& localName, const std::string& namespaceUri) = 0;
  virtual void WriteString(const std::string& text, ItemType type) = 0;
  virtual void WriteEndElement() = 0;
  virtual void WriteAttributeString(const std::string& localName, const std::string& namespaceUri,
                                    const std::string& value, ItemType type) = 0;
  virtual void WriteAttributeType(const std::string& typeNamespaceUri, const std::string& typeName,
                                  ItemType type) = 0;
  virtual void WriteAttributeNil() = 0;
  // Addition beyond the operations above, in the last slot: an element in
  // the open element that holds only `text` (nothing when it is empty),
  // exactly as WriteStartElement, WriteString and WriteEndElement write it.
  // This implementation makes those three calls; a writer may override it to
  // write such an element, the most common one, in one go.
  virtual void WriteSimpleElement(const std::string& localName, const std::string& namespaceUri,
                                  const std::string& text, ItemType type);

  // "AA", "AB", ... "ZZ" for 0..675; beyond that the names grow a letter
  // ("AAA" for 676), so every index has a distinct name.
  static std::string NsIntToString(int n);
  // The first generated name that no entry of `namespaceMap` uses as its prefix.
  std::string GetUniquePrefix(const NamespaceMap& namespaceMap);

  const std::string& GetRootDefaultNamespace() const { return m_rootDefaultNamespace; }
  const NamespaceMap& GetRootNamespaceMap() const { return m_rootNamespaces; }
  CXmlWriterContext* GetCurrentContext() const { return m_current.get(); }

 protected:
  // Opens a context for a new element and makes it current.
  CXmlWriterContext* PushContext(const std::string& localName, const std::string& namespaceUri);
  // Closes the current context; its parent becomes current.
  void PopContext();
  // The prefix of `uri` in the current scope. A URI without one gets a
  // generated prefix recorded in the current scope; `declared` tells whether
  // that happened, so the caller can emit the declaration.
  const std::string& PrefixInScope(const std::string& uri, bool& declared);

  // How a child of `parent` that opens no scope of its own (a simple
  // element written in one operation) names `namespaceUri`: unprefixed in no
  // namespace (undeclaring a default namespace it would otherwise inherit)
  // or in the default one; with the prefix the scope has for it; or with a
  // new prefix it declares for itself alone.
  struct CChildNamespace {
    const std::string* prefix = nullptr;  // null: the name has no prefix
    bool undeclareDefault = false;        // declare xmlns=""
    bool declare = false;                 // declare declaredPrefix for the namespace
    std::string declaredPrefix;
  };
  void ChildNamespace(CXmlWriterContext& parent, const std::string& namespaceUri, CChildNamespace& name);

  // Rules both concrete writers follow.
  // Throws "Attributes must be added before elements" unless the current
  // element's start tag is open and, as far as the writer knows, can still
  // take attributes (`accepting`).
  void RequireOpenStartTag(bool accepting = true) const;
  // Throws "An Element has not been closed." while an element is open.
  void RequireNoOpenElement() const;
  // Throws "There is no open Element to end." while no element is open.
  void RequireOpenElement() const;
  // xsi:nil="true" on the open start tag, through WriteAttributeString.
  void WriteNilAttribute();
  // The value of xsi:type, after the open-start-tag check: `typeName` alone
  // when `typeNamespaceUri` is empty or the default namespace in scope,
  // otherwise its prefix in scope, ":" and `typeName`. A namespace without a
  // prefix in scope gets a generated one recorded in the current scope; then
  // `declaredPrefix` names it so that the writer declares it, else it is left empty.
  std::string TypeAttributeValue(const std::string& typeNamespaceUri, const std::string& typeName,
                                 std::string& declaredPrefix);
  // xsi:type with a value from TypeAttributeValue, through WriteAttributeString.
  void WriteTypeAttribute(const std::string& value, ItemType type);

 private:
  std::string m_rootDefaultNamespace;
  std::unique_ptr<CXmlWriterContext> m_current;
  NamespaceMap m_rootNamespaces;
  // Popped contexts kept for reuse: a context per element is the common case,
  // and reusing them spares an allocation for it and its strings.
  std::vector<std::unique_ptr<CXmlWriterContext>> m_spareContexts;
};

}  // namespace KoXmlLib10

#endif
