#ifndef KOXMLLIB10_XML_EXPATREADER_H
#define KOXMLLIB10_XML_EXPATREADER_H

#include <expat.h>

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "KoXmlLib10/XmlDocument.h"
#include "xml/DocumentStore.h"
#include "xml/LocalText.h"

namespace KoXmlLib10 {

// Builds a document's tree from XML text. The text is handed to expat in
// pieces, so that expat's own copy of it stays small.
class CExpatReader {
 public:
  explicit CExpatReader(CXmlDocument& document);
  CExpatReader(const CExpatReader&) = delete;
  CExpatReader& operator=(const CExpatReader&) = delete;
  virtual ~CExpatReader();

  void CreateParser();
  // Throws "<expat's message> at line N" when the text is not well-formed,
  // or whatever a building operation of the document threw.
  void Parse(bool isFinal);
  void Cleanup();

  static void XMLCALL FnStartElement(void* userData, const XML_Char* name, const XML_Char** attributes);
  static void XMLCALL FnEndElement(void* userData, const XML_Char* name);
  static void XMLCALL FnText(void* userData, const XML_Char* text, int length);
  static void XMLCALL FnStartCDATA(void* userData);
  static void XMLCALL FnEndCDATA(void* userData);
  static void XMLCALL FnStartNamespace(void* userData, const XML_Char* prefix, const XML_Char* uri);
  static void XMLCALL FnEndNamespace(void* userData, const XML_Char* prefix);

 private:
  // Runs a callback's work; an exception must not unwind through expat, so
  // it is kept, the parser stopped, and the exception rethrown by Parse.
  template <typename Work>
  static void Guarded(void* userData, Work&& work);
  // The document's shared name for a name as expat reports it ("uri|local"
  // or a name without namespace), converted and split once per load.
  const CXmlNodeName* NameOf(const XML_Char* name);
  const CXmlNodeName* LookUpName(std::string_view whole);
  void ReleaseParser();

  CXmlDocument& m_document;
  CXmlDocumentStore& m_store;
  CLocalTextScratch m_scratch;
  CStringMap m_names;
  // A document uses few names over and over: the last one seen in each
  // slot answers most lookups with one comparison, before the full map.
  struct RecentName {
    std::string key;
    const CXmlNodeName* name = nullptr;
  };
  static constexpr size_t kRecentNames = 64;
  RecentName m_recent[kRecentNames];
  XML_Parser m_parser = nullptr;
  std::exception_ptr m_failure;
};

}  // namespace KoXmlLib10

#endif
