#ifndef KOXMLLIB10_FASTINFOSET_FASTINFOSETREADER_H
#define KOXMLLIB10_FASTINFOSET_FASTINFOSETREADER_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KoXmlLib10/FastInfosetContext.h"
#include "KoXmlLib10/XmlDocument.h"
#include "xml/DocumentStore.h"
#include "xml/LocalText.h"

namespace KoXmlLib10 {

// Builds a document's tree from its input buffer when that holds a Fast
// Infoset document (ITU-T X.891). Only elements, attributes, character data
// and namespace declarations reach the tree; processing instructions,
// comments, document type declarations, entity references, notations,
// unparsed entities and the other document properties are read and dropped.
//
// Bit numbering follows X.891: bit 1 is the most significant bit of an octet.
// Every read is checked against the end of the buffer, every loop consumes
// input, and element nesting is handled without recursion.
class CFastInfosetReader {
 public:
  CFastInfosetReader(const CFastInfosetContext& context, CXmlDocument& document);
  CFastInfosetReader(const CFastInfosetReader&) = delete;
  CFastInfosetReader& operator=(const CFastInfosetReader&) = delete;
  virtual ~CFastInfosetReader();

  // False, with nothing changed, when the buffer does not start with a Fast
  // Infoset header (optionally behind one of the 'finf' XML declarations).
  bool Parse();
  void Cleanup();

 private:
  // A character string as encoded: how, and where its octets lie.
  struct EncodedString {
    enum Kind { Utf8, Utf16, Alphabet, Algorithm } kind;
    uint32_t table;  // restricted alphabet or encoding algorithm number
    const unsigned char* data;
    size_t length;
  };

  bool ReadHeader();
  bool CheckHeader(size_t offset);
  void ReadOptionalData();
  void InitialVocabulary();
  void ReadChildren();
  void ElementBit2(unsigned char octet);
  bool StartElement(unsigned char octet);
  void NamespaceAttributeBit7(unsigned char octet);
  void AtrributeBit2(CXmlElement* element, unsigned char octet);
  void CharacterChunk(unsigned char octet);
  // The document's shared name for an attribute (Bit2) or element (Bit3)
  // name, literal or by index.
  const CXmlNodeName* QualifiedNameOrIndexBit2(unsigned char octet);
  const CXmlNodeName* QualifiedNameOrIndexBit3(unsigned char octet);
  void ReadQName(unsigned char octet, CFIQNameTable& names);
  void NameFromTable(uint32_t index, const CFIQNameTable& names);
  // The shared name of table entry `index`, looked up once per entry:
  // entries never change while a document is read.
  const CXmlNodeName* NameAt(uint32_t index, const CFIQNameTable& names, std::vector<const CXmlNodeName*>& known);
  uint32_t IdentifyingStringOrIndex(CFIStringTable& table, std::string& value);
  std::string_view NonIdentifyingStringOrIndexBit1(CFIStringTable& table);
  std::string_view NonIdentifyingStringOrIndexBit3(unsigned char octet, CFIStringTable& table);
  EncodedString EncodedCharacterStringBit3(unsigned char octet);
  EncodedString EncodedCharacterStringBit5(unsigned char octet);
  std::string_view Decode(const EncodedString& encoded);
  void NonEmptyOctetRestrictedAlphabetString(const EncodedString& encoded);
  std::string AlgorithmText(uint32_t algorithm, const unsigned char* data, size_t length);
  const std::vector<std::string_view>& AlphabetCharacters(uint32_t alphabet);
  const std::string& Entry(const CFIStringTable& table, uint32_t index) const;
  static uint32_t Added(CFIStringTable& table, const std::string& value);

  // Integers and lengths, the inverses of the writer's encoders; each is
  // entered with the octet holding its first bits already taken.
  uint32_t Integer1To2pw20Bit2(unsigned char octet);
  uint32_t Integer1To2pw20Bit3(unsigned char octet);
  uint32_t Integer1To2pw20Bit4(unsigned char octet);
  uint32_t Integer0To2pw20Bit2(unsigned char octet);
  uint32_t IntegerOnSecondBit(unsigned char octet, const char* message);
  uint64_t NonEmptyOctetStringBit2Length(unsigned char octet);
  uint64_t NonEmptyOctetStringBit5Length(unsigned char octet);
  uint64_t NonEmptyOctetStringBit7Length(unsigned char octet);
  uint32_t LengthOfSequence();

  const unsigned char* Move(uint64_t count);
  unsigned char Take() { return *Move(1); }
  uint32_t Take16();
  uint32_t Take32();
  void InitBits(uint32_t width, const unsigned char* data);
  uint32_t GetBits();

  // Components that are read past.
  void SkipAdditionalData();
  void SkipNotations();
  void SkipUnparsedEntities();
  void SkipProcessingInstruction();
  void SkipComment();
  void SkipDocumentTypeDeclaration(unsigned char octet);
  void SkipEntityReference(unsigned char octet);
  void SkipIdentifyingStringOrIndex();
  void SkipNonIdentifyingStringOrIndexBit1();
  void SkipNonEmptyOctetStringBit2();
  void SkipStringSequence();
  void SkipEncodedStringSequence();
  void SkipNameSurrogates();

  // Charges bytes put into the tree against a budget proportional to the
  // input, so that table references cannot blow a small input up.
  void Spend(size_t bytes);

  const CFastInfosetContext& m_context;
  CXmlDocument& m_document;
  CXmlDocumentStore& m_store;
  const unsigned char* m_position = nullptr;
  const unsigned char* m_end = nullptr;
  uint32_t m_bitWidth = 0;
  uint32_t m_bitsLeft = 0;
  uint32_t m_bitValue = 0;
  const unsigned char* m_bitData = nullptr;
  std::string m_prefix;
  std::string m_namespaceUri;
  std::string m_localName;
  bool m_doubleTerminator = false;
  std::string m_lastString;
  CLocalTextScratch m_scratch;
  std::unique_ptr<CFIVocabulary> m_vocabulary;
  std::vector<std::vector<std::string_view>> m_alphabets;
  // Names whose parts did not fit their full tables, by name table and index.
  struct SpelledName {
    std::string prefix;
    std::string namespaceUri;
    std::string localName;
  };
  std::map<std::pair<const CFIQNameTable*, uint32_t>, SpelledName> m_spelledNames;
  // Shared names of the element and attribute name table entries met so
  // far, by index.
  std::vector<const CXmlNodeName*> m_elementNames;
  std::vector<const CXmlNodeName*> m_attributeNames;
  uint64_t m_budget = 0;
};

}  // namespace KoXmlLib10

#endif
