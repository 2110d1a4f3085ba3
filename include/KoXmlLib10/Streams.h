#ifndef KOXMLLIB10_STREAMS_H
#define KOXMLLIB10_STREAMS_H

#include <cstdint>
#include <cstdio>
#include <string>

#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/StringBuffer.h"

namespace KoXmlLib10 {

// The encoding of a text stream or of a file.
enum XmlEncoding : int32_t {
  XmlEncoding_None = 0,
  XmlEncoding_UTF8 = 1,
  XmlEncoding_UTF16 = 2,        // host byte order, with a byte-order mark in files
  XmlEncoding_UTF16NoDecl = 3,  // as UTF16, but the XML declaration names no encoding
};

// Collects text in memory and turns it into the bytes of its encoding.
class KOXML_API CTextStream {
 public:
  CTextStream();
  explicit CTextStream(XmlEncoding encoding);
  virtual ~CTextStream();
  CTextStream(const CTextStream&) = delete;
  CTextStream& operator=(const CTextStream&) = delete;

  virtual void Open();
  virtual void Close();
  virtual void Flush();

  void Append(const std::string& text);
  void Append(const char* text);
  void Append(char c);
  void Append(const char* text, unsigned long length);

  const char* GetText();
  unsigned long GetLength() const;
  XmlEncoding GetEncoding() const;
  CBinaryData GetEncodedStream();

 protected:
  friend class CXmlTextWriter;  // writes its markup straight into the buffer

  CStringBuffer m_buffer;
  XmlEncoding m_encoding;

 private:
  bool EncodeOwnUtf8Blocks(CBinaryData& bytes) const;
};

// A text stream that moves its text to a file whenever it is flushed.
class KOXML_API CFileTextStream : public CTextStream {
 public:
  CFileTextStream(const char* fileName, XmlEncoding encoding);
  // Closes a file left open, without writing the text still buffered.
  ~CFileTextStream() override;

  void Open() override;
  void Close() override;
  void Flush() override;

 private:
  void CloseFile();

  std::string m_fileName;
  CBinaryData m_work;
  FILE* m_file = nullptr;
};

// Bytes collected in memory (shared with copies until one of them changes).
class KOXML_API CBinaryStream {
 public:
  CBinaryStream();
  explicit CBinaryStream(CBinaryData& initial);
  virtual ~CBinaryStream();

  void Append(unsigned char* data, unsigned long length);
  void Append(const CBinaryData& data);
  void Append(unsigned char byte);

  CBinaryData GetBinaryStream() const;

 protected:
  CBinaryData m_data;
};

// Writes a finished byte buffer to a file.
class KOXML_API CFileBinaryStream : public CBinaryStream {
 public:
  CFileBinaryStream(const char* fileName, XmlEncoding encoding);
  CFileBinaryStream(const char* fileName, XmlEncoding encoding, CBinaryData& data);
  ~CFileBinaryStream() override;

  void ToFile();

 private:
  std::string m_fileName;
  XmlEncoding m_encoding;
};

}  // namespace KoXmlLib10

#endif
