#ifndef KOXMLLIB10_SERIALIZATIONCONTEXT_H
#define KOXMLLIB10_SERIALIZATIONCONTEXT_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/FastInfosetContext.h"
#include "KoXmlLib10/KoZip.h"
#include "KoXmlLib10/SmartPtr.h"

namespace KoXmlLib10 {

class CAttributeCol;

// Which schema-language rules apply; only SchemaTypeNoNamespaces changes
// behaviour (no namespace processing, names matched on the local name alone).
enum SchemaType : int32_t {
  SchemaTypeDefault = 0,
  SchemaTypeAlternate = 1,
  SchemaTypeNoNamespaces = 2,
};

// Namespace URI -> prefix to declare for it on the root element, in URI order.
class KOXML_API CNamespaceAliasMap {
 public:
  CNamespaceAliasMap();
  CNamespaceAliasMap(const CNamespaceAliasMap&);
  CNamespaceAliasMap& operator=(const CNamespaceAliasMap&);
  virtual ~CNamespaceAliasMap();

  void Add(const char* alias, const char* namespaceUri);
  void RemoveNamespace(const char* namespaceUri);
  int GetNamespaceCount() const;
  std::string GetNamespaceAt(int index) const;
  // Adds an empty alias for a namespace not yet in the map.
  std::string GetAliasFromNamespace(const char* namespaceUri) const;
  std::string GetNamespaceFromAlias(const char* alias) const;
  bool DoesAliasExist(const char* alias) const;
  bool DoesNamespaceExist(const char* namespaceUri) const;

 private:
  mutable std::map<std::string, std::string> m_aliases;
};

// The options of one serialization or deserialization call.
class KOXML_API CXmlSerializationContext {
 public:
  CXmlSerializationContext();
  CXmlSerializationContext(const CXmlSerializationContext&);
  CXmlSerializationContext& operator=(const CXmlSerializationContext&);
  virtual ~CXmlSerializationContext();

  static CXmlSerializationContext m_defaultContext;

  std::string GetDefaultNamespaceURI() const { return m_defaultNamespaceURI; }
  void SetDefaultNamespaceURI(const char* uri) { m_defaultNamespaceURI = uri ? uri : ""; }
  bool GetWriteTypeAttribute() const { return m_writeTypeAttribute; }
  void SetWriteTypeAttribute(bool value) { m_writeTypeAttribute = value; }
  CNamespaceAliasMap& GetNamespaceAliases() { return m_namespaceAliases; }
  const CNamespaceAliasMap& GetNamespaceAliases() const { return m_namespaceAliases; }
  std::vector<std::string>& GetProcessingInstructions() { return m_processingInstructions; }
  const std::vector<std::string>& GetProcessingInstructions() const { return m_processingInstructions; }
  // Attributes written on the root element of every document written with
  // this context. Created empty (any namespace) on the first call; copies of
  // the context share it. Not synchronised: call it once before sharing a
  // context between threads.
  CSmartPtr<CAttributeCol> GetAdditionalRootAttributes() const;
  // The same collection if it was ever requested, else null; creates nothing,
  // so writers that only look at it can share a context between threads.
  // The pointer is valid while the context holds the collection.
  CAttributeCol* PeekAdditionalRootAttributes() const { return m_additionalRootAttributes.get(); }

  std::string GetInLineSchema() const { return m_inLineSchema; }
  void SetInLineSchema(const char* schema) { m_inLineSchema = schema ? schema : ""; }

  bool GetIgnoreInvalidCollectionCounts() const { return m_ignoreInvalidCollectionCounts; }
  void SetIgnoreInvalidCollectionCounts(bool value) { m_ignoreInvalidCollectionCounts = value; }
  bool GetIgnoreMissingChoice() const { return m_ignoreMissingChoice; }
  void SetIgnoreMissingChoice(bool value) { m_ignoreMissingChoice = value; }
  bool GetIgnoreMissingMandatoryElements() const { return m_ignoreMissingMandatoryElements; }
  void SetIgnoreMissingMandatoryElements(bool value);
  bool GetIgnoreUnknownElements() const { return m_ignoreUnknownElements; }
  void SetIgnoreUnknownElements(bool value);
  bool GetIgnoreUnknownAttributes() const { return m_ignoreUnknownAttributes; }
  void SetIgnoreUnknownAttributes(bool value) { m_ignoreUnknownAttributes = value; }
  // True also whenever documents are parsed without namespaces.
  bool GetIgnoreNamespaces() const;
  void SetIgnoreNamespaces(bool value) { m_ignoreNamespaces = value; }
  SchemaType GetSchemaType() const { return m_schemaType; }
  void SetSchemaType(SchemaType value) { m_schemaType = value; }
  bool GetNoOptionalAttributeDefaultOutput() const { return m_noOptionalAttributeDefaultOutput; }
  void SetNoOptionalAttributeDefaultOutput(bool value) { m_noOptionalAttributeDefaultOutput = value; }
  CFastInfosetContext& GetFIContext() { return m_fiContext; }
  const CFastInfosetContext& GetFIContext() const { return m_fiContext; }
  bool GetStripCDATA() const { return m_stripCDATA; }
  void SetStripCDATA(bool value) { m_stripCDATA = value; }

  // How far compressed input may inflate when a document is loaded with this
  // context (see CInflateLimits for the defaults). An addition of this
  // library to the context's options; copies of the context carry it.
  const CInflateLimits& GetInflateLimits() const { return m_inflateLimits; }
  void SetInflateLimits(const CInflateLimits& limits) { m_inflateLimits = limits; }

 private:
  std::string m_defaultNamespaceURI;
  bool m_writeTypeAttribute = true;
  CNamespaceAliasMap m_namespaceAliases;
  std::vector<std::string> m_processingInstructions;
  mutable CSmartPtr<CAttributeCol> m_additionalRootAttributes;
  std::string m_inLineSchema;
  bool m_ignoreInvalidCollectionCounts = false;
  bool m_ignoreMissingChoice = false;
  bool m_ignoreMissingMandatoryElements = false;
  bool m_ignoreUnknownElements = false;
  bool m_ignoreUnknownAttributes = false;
  bool m_ignoreNamespaces = false;
  SchemaType m_schemaType = SchemaTypeDefault;
  bool m_noOptionalAttributeDefaultOutput = false;
  CFastInfosetContext m_fiContext;
  bool m_stripCDATA = true;
  CInflateLimits m_inflateLimits;
};

}  // namespace KoXmlLib10

#endif
