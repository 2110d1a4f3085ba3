#include "KoXmlLib10/Streams.h"

#include <climits>
#include <cstring>
#include <memory>
#include <vector>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Unicode.h"
#include "foundation/LocalText.h"

namespace KoXmlLib10 {

namespace {

const unsigned char kByteOrderMark[] = {0xFF, 0xFE};  // U+FEFF as a little-endian unit

bool IsUtf16(XmlEncoding encoding) {
  return encoding == XmlEncoding_UTF16 || encoding == XmlEncoding_UTF16NoDecl;
}

bool WriteAll(FILE* file, const void* data, size_t length) {
  return length == 0 || fwrite(data, 1, length, file) == length;
}

CKoException FileWriteError(const std::string& fileName) {
  return CKoException(FormatString("Failed to write data to the file [%s]", fileName.c_str()));
}

// Local code page -> wide characters -> UTF-16 code units in host order.
CBinaryData LocalCodePageToUtf16(const char* text) {
  CBinaryData wide = CEncoder::LocalCodePageToUnicodeBinary(text);
  const unsigned long count = wide.GetLength() / sizeof(wchar_t);
  if (count == 0) return CBinaryData();
  std::vector<wchar_t> characters(count);
  std::memcpy(characters.data(), wide.GetData(), count * sizeof(wchar_t));
  // Every character takes at most two units.
  const unsigned long capacity = 2 * count;
  std::unique_ptr<unsigned char[]> units(new unsigned char[capacity * 2]);
  const unsigned long written = UnicodeToUTF16(characters.data(), count, units.get(), capacity);
  return CBinaryData(units.release(), written * 2, true);
}

}  // namespace

// ---- CTextStream ------------------------------------------------------------

CTextStream::CTextStream() : m_encoding(XmlEncoding_None) {}

CTextStream::CTextStream(XmlEncoding encoding) : m_encoding(encoding) {}

CTextStream::~CTextStream() = default;

void CTextStream::Open() { m_buffer.Empty(); }

void CTextStream::Close() {}

void CTextStream::Flush() {}

void CTextStream::Append(const std::string& text) { m_buffer.Append(text); }

void CTextStream::Append(const char* text) { m_buffer.Append(text); }

void CTextStream::Append(char c) { m_buffer.Append(c); }

void CTextStream::Append(const char* text, unsigned long length) { m_buffer.Append(text, length); }

const char* CTextStream::GetText() { return m_buffer.GetText(); }

unsigned long CTextStream::GetLength() const { return m_buffer.GetLength(); }

XmlEncoding CTextStream::GetEncoding() const { return m_encoding; }

CBinaryData CTextStream::GetEncodedStream() {
  switch (m_encoding) {
    case XmlEncoding_UTF8:
      if (CBinaryData bytes; EncodeOwnUtf8Blocks(bytes)) return bytes;
      return CEncoder::LocalCodePageToUtf8Binary(GetText());
    case XmlEncoding_UTF16:
    case XmlEncoding_UTF16NoDecl:
      return LocalCodePageToUtf16(GetText());
    default:
      throw CKoException(
          "Unknown Encoding, select UTF-8 (contact support@tesselbind.example for support)");
  }
}

// Text that is its own UTF-8 encoding is copied once, block by block,
// instead of being joined first and copied again. As the encoders do, it
// ends at the first NUL. False, having done nothing, when a block needs the
// character conversion (or a character spans two blocks).
bool CTextStream::EncodeOwnUtf8Blocks(CBinaryData& bytes) const {
  const CStringBuffer& buffer = m_buffer;
  const size_t count = buffer.m_blocks.size();
  if (count < 2) return false;  // one block is already joined: nothing to save
  std::vector<std::pair<const char*, size_t>> pieces;
  pieces.reserve(count);
  size_t total = 0;
  for (size_t i = 0; i < count; ++i) {
    const char* block = buffer.m_blocks[i];
    size_t size = i + 1 < count ? buffer.m_blockSizes[i] : buffer.m_used;
    const void* nul = std::memchr(block, '\0', size);
    if (nul) size = static_cast<const char*>(nul) - block;
    if (!LocalTextIsItsOwnUtf8(block, size)) return false;
    pieces.emplace_back(block, size);
    total += size;
    if (nul) break;
  }
  if (total == 0 || total > ULONG_MAX) return false;
  std::unique_ptr<unsigned char[]> copy(new unsigned char[total]);
  unsigned char* out = copy.get();
  for (const auto& [block, size] : pieces) {
    std::memcpy(out, block, size);
    out += size;
  }
  bytes = CBinaryData(copy.release(), static_cast<unsigned long>(total), true);
  return true;
}

// ---- CFileTextStream --------------------------------------------------------

CFileTextStream::CFileTextStream(const char* fileName, XmlEncoding encoding)
    : CTextStream(encoding), m_fileName(fileName ? fileName : "") {}

CFileTextStream::~CFileTextStream() {
  if (m_file) fclose(m_file);
}

void CFileTextStream::CloseFile() {
  FILE* file = m_file;
  m_file = nullptr;
  if (file && fclose(file) != 0) throw CKoException("Failed to write data to the file");
}

void CFileTextStream::Open() {
  CTextStream::Open();
  if (m_file) fclose(m_file);
  m_file = fopen(m_fileName.c_str(), "wt");
  if (!m_file) throw FileWriteError(m_fileName);
  if (IsUtf16(m_encoding) && !WriteAll(m_file, kByteOrderMark, sizeof kByteOrderMark)) {
    fclose(m_file);
    m_file = nullptr;
    throw FileWriteError(m_fileName);
  }
}

void CFileTextStream::Flush() {
  if (GetLength() == 0) return;
  if (!m_file) throw CKoException("Failed to write data to the file");
  bool written;
  const char* text = GetText();
  const size_t length = std::strlen(text);  // the encoders read up to the first NUL
  if (m_encoding == XmlEncoding_UTF8 && LocalTextIsItsOwnUtf8(text, length)) {
    // The encoded bytes would be the text itself: write it without the copy.
    written = WriteAll(m_file, text, length);
  } else {
    m_work = GetEncodedStream();
    written = WriteAll(m_file, m_work.GetData(), m_work.GetLength());
  }
  if (!written) {
    fclose(m_file);
    m_file = nullptr;
    throw CKoException("Failed to write data to the file");
  }
  m_buffer.Empty();
}

void CFileTextStream::Close() {
  Flush();
  // Data still in the C library's buffer can fail to reach the file here.
  CloseFile();
  CTextStream::Close();
}

// ---- CBinaryStream ----------------------------------------------------------

CBinaryStream::CBinaryStream() = default;

CBinaryStream::CBinaryStream(CBinaryData& initial) : m_data(initial) {}

CBinaryStream::~CBinaryStream() = default;

void CBinaryStream::Append(unsigned char* data, unsigned long length) {
  m_data.Append(data, length);
}

void CBinaryStream::Append(const CBinaryData& data) { m_data.Append(data); }

void CBinaryStream::Append(unsigned char byte) { m_data.Append(byte); }

CBinaryData CBinaryStream::GetBinaryStream() const { return m_data; }

// ---- CFileBinaryStream ------------------------------------------------------

CFileBinaryStream::CFileBinaryStream(const char* fileName, XmlEncoding encoding)
    : m_fileName(fileName ? fileName : ""), m_encoding(encoding) {}

CFileBinaryStream::CFileBinaryStream(const char* fileName, XmlEncoding encoding, CBinaryData& data)
    : CBinaryStream(data), m_fileName(fileName ? fileName : ""), m_encoding(encoding) {}

CFileBinaryStream::~CFileBinaryStream() = default;

void CFileBinaryStream::ToFile() {
  FILE* file = fopen(m_fileName.c_str(), "wt");
  if (!file) throw FileWriteError(m_fileName);
  const bool written =
      (!IsUtf16(m_encoding) || WriteAll(file, kByteOrderMark, sizeof kByteOrderMark)) &&
      WriteAll(file, m_data.GetData(), m_data.GetLength());
  const bool closed = fclose(file) == 0;
  if (!written || !closed) throw FileWriteError(m_fileName);
}

}  // namespace KoXmlLib10
