#ifndef KOXMLLIB10_XMLTEXTWRITER_H
#define KOXMLLIB10_XMLTEXTWRITER_H

#include <cstdint>
#include <string>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/XmlWriter.h"

namespace KoXmlLib10 {

class CTextStream;
class CXmlMarkupOutput;

// The line ends of written XML text.
enum EOLType : int32_t {
  EOLTypeCRLF = 0,
  EOLTypeLF = 1,
};

// Writes XML 1.0 text straight into a text stream as the calls come in.
class KOXML_API CXmlTextWriter : public CXmlWriter {
 public:
  // The stream is not owned; the writer neither flushes nor closes it when destroyed.
  explicit CXmlTextWriter(CTextStream& stream);
  ~CXmlTextWriter() override;

  void Open() override;
  void Close() override;
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

  bool GetFormat() const;
  void SetFormat(bool format);
  EOLType GetEOLType() const;
  void SetEOLType(EOLType type);

  void WriteStartDocument();
  void WriteHeaderDirective(const std::string& text);
  // Inserts ready-made markup; pair it with CloseParentElm().
  void WriteRawElement(const std::string& text);
  // Counts a child of the open element and closes its start tag.
  void CloseParentElm();

 private:
  void PadAndAppend(CXmlMarkupOutput& out, const std::string& text, bool inAttribute);
  void CloseStartTagForChild(CXmlMarkupOutput& out);
  // Hands the markup of one operation to the stream, flushing a full stream if
  // asked. Nothing may be put into `out` afterwards.
  void Commit(CXmlMarkupOutput& out, bool applyFlushRule);

  std::string m_eol;
  EOLType m_eolType;
  bool m_format;
  CTextStream& m_stream;
  // False for a plain memory stream, whose Flush() does nothing.
  bool m_streamFlushes;
};

}  // namespace KoXmlLib10

#endif
