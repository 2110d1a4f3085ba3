#ifndef KOXMLLIB10_FASTINFOSETWRITER_H
#define KOXMLLIB10_FASTINFOSETWRITER_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/FastInfosetContext.h"
#include "KoXmlLib10/XmlWriter.h"

namespace KoXmlLib10 {

class CBinaryStream;

// The XML declaration written before the binary header of a document.
enum FInfoDecl : int32_t {
  FInfoDeclNone = 0,
  FInfoDeclFinf = 1,
  FInfoDeclFinfStandaloneYes = 2,
  FInfoDeclFinfStandaloneNo = 3,
  FInfoDecl10 = 4,
  FInfoDecl10StandaloneYes = 5,
  FInfoDecl10StandaloneNo = 6,
  FInfoDecl11 = 7,
  FInfoDecl11StandaloneYes = 8,
  FInfoDecl11StandaloneNo = 9,
};

// The declarations of FInfoDecl 1 to 9, in that order.
KOXML_API extern const char* const FI_DECLARATION_LIST[9];

// Writes a Fast Infoset document (ITU-T X.891) into a binary stream as the
// calls come in. Names, prefixes, namespaces and short values are written
// literally on first use and as vocabulary indexes after that.
//
// An element's header (its namespace declarations, name and attributes) is
// held back until its first content, child or end: only then are all the
// namespaces it declares known, and they precede its name.
class KOXML_API CFastInfosetWriter : public CXmlWriter {
 public:
  // Announced as the external vocabulary when the context's generated
  // vocabulary is used and names no URI of its own.
  static const char* const FI_DEFAULT_VOCABULARY_URI;

  // Neither the context nor the stream is owned; both must outlive the writer.
  CFastInfosetWriter(const CFastInfosetContext& context, CBinaryStream& stream);
  ~CFastInfosetWriter() override;

  void WriteComment(const std::string& text) override;
  void WritePI(const std::string& text) override;
  void WriteInlineSchema(const std::string& text) override;
  void WriteStartElement(const std::string& localName, const std::string& namespaceUri) override;
  void WriteString(const std::string& text, ItemType type) override;
  void WriteEndElement() override;
  void WriteAttributeString(const std::string& localName, const std::string& namespaceUri,
                            const std::string& value, ItemType type) override;
  void WriteAttributeType(const std::string& typeNamespaceUri, const std::string& typeName,
                          ItemType type) override;
  void WriteAttributeNil() override;
  void WriteSimpleElement(const std::string& localName, const std::string& namespaceUri,
                          const std::string& text, ItemType type) override;

  void WriteStartDocument(FInfoDecl decl);
  void WriteEndDocument();
  // Writes the header of an element whose start is still pending, announcing
  // attributes when `hasAttributes` or when attributes are held back for it
  // (those follow at once). Does nothing when no header is pending.
  void WriteElement(bool hasAttributes);

  // The encoders. `prefix` holds the bits of the current octet that precede
  // the encoding; the suffix of each name tells the bit it starts on.
  void Integer1To2pw20Bit2(unsigned char prefix, unsigned long value);
  void Integer0To2pw20Bit2(unsigned char prefix, unsigned long value);
  void Integer1To2pw20Bit3(unsigned char prefix, unsigned long value);
  void Integer1To2pw20Bit4(unsigned char prefix, unsigned long value);
  void NonEmptyOctetUTF8StringBit2(unsigned char prefix, const std::string& text);
  void NonEmptyOctetStringBit5(unsigned char prefix, const CBinaryData& data);
  void NonEmptyOctetStringBit7(unsigned char prefix, const CBinaryData& data);
  void QualifiedNameOrIndexBit2(unsigned char prefix, const std::string& namePrefix,
                                const std::string& namespaceUri, const std::string& localName,
                                CFIVocabulary::IndexMap& names);
  void QualifiedNameOrIndexBit3(unsigned char prefix, const std::string& namePrefix,
                                const std::string& namespaceUri, const std::string& localName,
                                CFIVocabulary::IndexMap& names);
  void NonIdentifyingStringOrIndexBit1(const std::string& value, CFIVocabulary::IndexMap& values,
                                       unsigned long maxAddLength, ItemType type);
  void NonIdentifyingStringOrIndexBit3(unsigned char prefix, const std::string& text,
                                       CFIVocabulary::IndexMap& chunks, unsigned long maxAddLength,
                                       ItemType type);
  void EncodedCharacterStringBit3(unsigned char prefix, const std::string& text, ItemType type);
  void EncodedCharacterStringBit5(unsigned char prefix, const std::string& text, ItemType type);
  // The characters of `text` as indexes into restricted alphabet `alphabet`.
  CBinaryData AppendRestrictedAlphabetString(unsigned long alphabet, const std::string& text);

  // The writer's own vocabulary, grown as the document is written.
  CFIVocabulary* GetVocabulary() { return m_vocabulary.get(); }

 private:
  // The entry points read their stream only once the document is ended.
  friend class CXmlObjectBase;

  // For writers whose stream is read only once the document is ended: the
  // octets of consecutive operations collect in the writer, up to a block of
  // them, before they go to the stream, sparing a call into the stream per
  // operation. Whatever is collected goes to the stream at WriteEndDocument,
  // when an operation fails, and when the writer is destroyed. Off by
  // default: every operation hands its octets to the stream before it returns.
  void SetBatchedOutput(bool batched);

  class COperation;

  // An attribute held back with its element's header. Its value is encoded
  // when the attribute is written, so that a value its encoding cannot carry
  // fails in that call; the name waits, since the element's name enters the
  // name tables first.
  struct CHeldAttribute {
    std::string prefix;
    std::string namespaceUri;
    std::string localName;
    std::string encodedValue;
  };
  // A namespace attribute due on the pending element: an empty prefix is the
  // default namespace, an empty prefix and URI undeclares it.
  struct CDeclaration {
    std::string prefix;
    std::string uri;
  };

  // Writes a pending header with its held attributes and closes the current
  // start tag, ending its attribute list (F0) if it has one.
  void CloseStartTag();
  // Writes an owed terminator on its own (padded to the end of the octet).
  void WritePendingTerminator();
  // The prefix of `uri` in the current scope; a generated one is declared on the element.
  std::string PrefixFor(const std::string& uri);
  void WriteNamespaceAttribute(const std::string& prefix, const std::string& uri);
  void WriteAttribute(const CHeldAttribute& attribute);
  void PutInteger(unsigned char prefix, unsigned long value, int startBit);
  void PutLength(unsigned char prefix, size_t length, int startBit);
  void PutOctets(unsigned char prefix, std::string_view octets, int startBit);
  void PutIdentifyingString(const std::string& text, CFIVocabulary::IndexMap& strings);
  void PutQualifiedName(unsigned char prefix, int startBit, const std::string& namePrefix,
                        const std::string& namespaceUri, const std::string& localName,
                        CFIVocabulary::IndexMap& names);
  void PutAttributeValue(const std::string& value, CFIVocabulary::IndexMap& values,
                         unsigned long maxAddLength, ItemType type);
  void PutCharacterChunk(unsigned char prefix, const std::string& text,
                         CFIVocabulary::IndexMap& chunks, unsigned long maxAddLength, ItemType type);
  void PutEncodedCharacterString(unsigned char prefix, const std::string& text, ItemType type,
                                 int startBit);
  // The UTF-8 octets of local text, without a copy when it is ASCII.
  std::string_view Utf8Of(const std::string& text);
  // Packs `text` into m_packed.
  void PackRestrictedAlphabet(unsigned long alphabet, const std::string& text);
  void Commit();

  CBinaryStream& m_stream;
  const CFastInfosetContext& m_context;
  // The element whose header is held back (always the current element), or null.
  CXmlWriterContext* m_pendingElement = nullptr;
  // An element's terminator is owed: it shares an octet with an element or
  // document terminator that follows at once, else it is padded.
  bool m_pendingTerminator = false;
  std::unique_ptr<CFIVocabulary> m_vocabulary;

  // Octets of the operation in progress, handed to the stream when it ends.
  std::string m_out;
  unsigned m_operationDepth = 0;
  bool m_batchedOutput = false;
  // Held with the pending element: its name's prefix, declarations and attributes.
  std::string m_pendingPrefix;
  std::vector<CDeclaration> m_declarations;
  std::vector<CHeldAttribute> m_heldAttributes;
  size_t m_heldCount = 0;  // entries in use; the rest keep their storage
  // Qualified names recently written as an index, by the addresses of the
  // strings they were given in (members hand over the same strings for every
  // element); an entry counts only while its map still holds that name at
  // that index.
  struct CKnownName {
    const std::string* localName = nullptr;
    const std::string* namespaceUri = nullptr;
    const CFIVocabulary::IndexMap* names = nullptr;
    uint32_t index = 0;
  };
  static constexpr size_t kKnownNames = 64;
  std::vector<CKnownName> m_knownNames;
  // Scratch space reused from value to value.
  std::string m_key;
  std::string m_utf8;
  std::string m_packed;
};

}  // namespace KoXmlLib10

#endif
