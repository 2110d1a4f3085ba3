// Loading a document from a file or from a source of pieces. XML text, plain
// or gzip'd, is parsed as it is read, so that a file of any size costs the
// tree (or, with a filter that drops what it has consumed, hardly anything)
// and never a copy of the whole input; other formats are read whole.
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <vector>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/FastInfosetWriter.h"
#include "KoXmlLib10/StringUtils.h"
#include "KoXmlLib10/XmlDocument.h"
#include "fastinfoset/ZipMessages.h"
#include "xml/ExpatReader.h"

namespace KoXmlLib10 {

namespace {

// Bytes asked of a source at a time; expat takes them in smaller pieces.
constexpr size_t kReadBlock = size_t(256) << 10;
// Enough of the start of an input to tell XML text from the other formats:
// the longest declaration that may precede a Fast Infoset header is far
// shorter.
constexpr size_t kHeadBytes = 4096;
// Inflated bytes handed to the parser at a time.
constexpr size_t kInflateBlock = size_t(256) << 10;
constexpr int kGzipWindowBits = 15 + 16;  // 32 KiB window, gzip frame only

const char* const kNoLoadInPieces = "No document is being read in pieces.";
const char* const kSourceOverrun = "The source of the document delivered more bytes than it was asked for.";
const char* const kEmptyStream = "XML Stream is empty!";

const unsigned char kFastInfosetHeader[] = {0xE0, 0x00, 0x00, 0x01};

bool IsGzip(const unsigned char* data, size_t size) { return size >= 2 && data[0] == 0x1F && data[1] == 0x8B; }

// A zlib header: deflate, a window of at most 32 KiB, and the check bits.
bool IsZlib(const unsigned char* data, size_t size) {
  return size >= 2 && (data[0] & 0x0F) == 8 && (data[0] >> 4) <= 7 && ((data[0] << 8) | data[1]) % 31 == 0;
}

// Whether the start of an input may be Fast Infoset: its header, or one of
// the declarations that may precede it. Anything else is read as text.
bool MayBeFastInfoset(const unsigned char* data, size_t size) {
  if (size >= sizeof kFastInfosetHeader && std::memcmp(data, kFastInfosetHeader, sizeof kFastInfosetHeader) == 0)
    return true;
  for (const char* declaration : FI_DECLARATION_LIST) {
    const size_t length = std::strlen(declaration);
    if (size >= length && std::memcmp(data, declaration, length) == 0) return true;
  }
  return false;
}

struct FileCloser {
  void operator()(FILE* f) const { std::fclose(f); }
};
using FilePtr = std::unique_ptr<FILE, FileCloser>;

// Closes the file before a failure is reported, as every failure path must.
[[noreturn]] void ThrowFileError(FilePtr& file, const char* format, const char* path, const std::string& detail) {
  file.reset();
  throw CKoException(FormatString(format, path) + ": " + detail);
}

struct InflateEnd {
  void operator()(z_stream* s) const { inflateEnd(s); }
};

// Inflates a gzip stream piece by piece, within the context's limits, and
// hands the text to the document as it comes. The start is inflated first:
// when it is not XML text (Fast Infoset), or the stream ends or breaks
// before that, nothing has been parsed and the caller reads the input
// whole instead, as a buffer holding it would be read.
class CGzipPieces {
 public:
  using Read = std::function<size_t(unsigned char*, size_t)>;

  CGzipPieces(CXmlDocument& document, const CInflateLimits& limits, Read read)
      : m_document(document), m_limits(limits), m_read(std::move(read)) {}

  // False when the input is to be read whole; `raw` then holds the
  // compressed bytes read so far, `block` (the first `headSize` of them
  // included).
  bool Run(unsigned char* block, size_t headSize, std::vector<unsigned char>& raw) {
    z_stream stream{};
    if (inflateInit2(&stream, kGzipWindowBits) != Z_OK) {
      raw.assign(block, block + headSize);
      return false;
    }
    std::unique_ptr<z_stream, InflateEnd> guard(&stream);
    std::unique_ptr<unsigned char[]> out(new unsigned char[kInflateBlock]);
    raw.assign(block, block + headSize);
    stream.next_in = block;
    stream.avail_in = static_cast<uInt>(headSize);

    // The start, kept with the compressed bytes behind it until it is known
    // to be text.
    size_t produced = 0;
    int status = Z_OK;
    while (produced < kHeadBytes) {
      if (stream.avail_in == 0 && !Refill(stream, block, &raw)) return false;
      stream.next_out = out.get() + produced;
      stream.avail_out = static_cast<uInt>(kInflateBlock - produced);
      status = Step(stream);
      produced = kInflateBlock - stream.avail_out;
      if (status != Z_OK) return false;  // ended early or damaged: read whole
    }
    if (MayBeFastInfoset(out.get(), produced)) return false;
    raw.clear();
    raw.shrink_to_fit();

    m_document.BeginXmlChunks();
    m_document.LoadXmlChunk(reinterpret_cast<const char*>(out.get()), produced);
    while (status != Z_STREAM_END) {
      if (stream.avail_in == 0 && !Refill(stream, block, nullptr))
        throw CKoException(ZipMessages::kInflateDamaged);
      stream.next_out = out.get();
      stream.avail_out = static_cast<uInt>(kInflateBlock);
      status = Step(stream);
      if (status != Z_OK && status != Z_STREAM_END) throw CKoException(ZipMessages::kInflateDamaged);
      produced = kInflateBlock - stream.avail_out;
      if (produced > 0) m_document.LoadXmlChunk(reinterpret_cast<const char*>(out.get()), produced);
    }
    m_document.EndXmlChunks();
    return true;
  }

 private:
  bool Refill(z_stream& stream, unsigned char* block, std::vector<unsigned char>* raw) {
    const size_t read = m_read(block, kReadBlock);
    if (read == 0) return false;
    if (raw) raw->insert(raw->end(), block, block + read);
    stream.next_in = block;
    stream.avail_in = static_cast<uInt>(read);
    return true;
  }

  // One call of inflate, counted and checked against the limits as the
  // whole-buffer inflation checks them. A damaged stream is reported as it
  // is, before any limit.
  int Step(z_stream& stream) {
    const uInt inBefore = stream.avail_in, outBefore = stream.avail_out;
    const int status = inflate(&stream, Z_NO_FLUSH);
    if (status != Z_OK && status != Z_STREAM_END) return status;
    m_compressed += inBefore - stream.avail_in;
    m_inflated += outBefore - stream.avail_out;
    if (m_limits.maxInflatedSize != 0 && m_inflated > m_limits.maxInflatedSize)
      throw CKoException(FormatString(ZipMessages::kInflatedTooLarge, m_limits.maxInflatedSize));
    if (m_limits.maxRatio != 0 && m_inflated > m_limits.ratioAllowance && m_inflated / m_limits.maxRatio > m_compressed)
      throw CKoException(FormatString(ZipMessages::kInflateRatio, m_inflated, m_compressed, m_limits.maxRatio,
                                      m_limits.ratioAllowance));
    return status;
  }

  CXmlDocument& m_document;
  const CInflateLimits& m_limits;
  Read m_read;
  unsigned long long m_compressed = 0;
  unsigned long long m_inflated = 0;
};

}  // namespace

// ---- sources -----------------------------------------------------------------

// Where a load in pieces takes its bytes from.
class CXmlDocument::CPieceSource {
 public:
  using Reader = std::function<size_t(unsigned char* buffer, size_t capacity)>;
  // The whole input in one new[] array, for the formats read whole, given
  // the bytes read so far, from the start.
  using ReadWhole = std::function<std::unique_ptr<unsigned char[]>(
      CPieceSource& self, const std::vector<unsigned char>& consumed, unsigned long& length)>;

  CPieceSource(Reader read, ReadWhole readWhole) : m_read(std::move(read)), m_readWhole(std::move(readWhole)) {}

  // Up to `capacity` bytes; 0 once the input has ended.
  size_t Read(unsigned char* buffer, size_t capacity) {
    if (m_ended) return 0;
    const size_t read = m_read(buffer, capacity);
    if (read > capacity) throw CKoException(kSourceOverrun);
    if (read == 0) m_ended = true;
    return read;
  }
  // Reads until `atLeast` bytes are in or the input ends.
  size_t Fill(unsigned char* buffer, size_t capacity, size_t atLeast) {
    size_t filled = 0;
    while (filled < atLeast) {
      const size_t read = Read(buffer + filled, capacity - filled);
      if (read == 0) break;
      filled += read;
    }
    return filled;
  }
  std::unique_ptr<unsigned char[]> Whole(const std::vector<unsigned char>& consumed, unsigned long& length) {
    return m_readWhole(*this, consumed, length);
  }

 private:
  Reader m_read;
  ReadWhole m_readWhole;
  bool m_ended = false;
};

void CXmlDocument::ReadPieces(CPieceSource& source) {
  std::unique_ptr<unsigned char[]> block(new unsigned char[kReadBlock]);
  const size_t headSize = source.Fill(block.get(), kReadBlock, kHeadBytes);
  if (headSize == 0) throw CKoException(kEmptyStream);

  std::vector<unsigned char> consumed;
  try {
    if (IsGzip(block.get(), headSize)) {
      CGzipPieces gzip(*this, m_context->GetInflateLimits(),
                       [&source](unsigned char* buffer, size_t capacity) { return source.Read(buffer, capacity); });
      if (gzip.Run(block.get(), headSize, consumed)) return;
    } else if (!IsZlib(block.get(), headSize) && !MayBeFastInfoset(block.get(), headSize)) {
      BeginXmlChunks();
      LoadXmlChunk(reinterpret_cast<const char*>(block.get()), headSize);
      while (const size_t read = source.Read(block.get(), kReadBlock))
        LoadXmlChunk(reinterpret_cast<const char*>(block.get()), read);
      EndXmlChunks();
      return;
    } else {
      consumed.assign(block.get(), block.get() + headSize);
    }
  } catch (...) {
    m_pieceReader.reset();  // the load is over, whatever broke it
    throw;
  }

  // Fast Infoset, zlib, and gzip that is not text (or not a whole stream):
  // read as one buffer, as LoadXmlStream reads them.
  block.reset();
  unsigned long length = 0;
  std::unique_ptr<unsigned char[]> whole = source.Whole(consumed, length);
  consumed = std::vector<unsigned char>();
  ReplaceInput(whole.release(), length);
  Parse();
}

// ---- loaders ---------------------------------------------------------------------

void CXmlDocument::Load(const char* path) {
  Cleanup();
  const char* shownPath = path ? path : "";
  FilePtr file(path ? std::fopen(path, "rb") : nullptr);
  if (!file) throw CKoException(FormatString("Failed to open the file [%s]", shownPath));

  errno = 0;
  const long size = _filelength(file.get());
  if (size < 0)
    ThrowFileError(file, "Failed to get the size of the file [%s]", shownPath,
                   errno ? std::strerror(errno) : "the size cannot be determined");
  if (size == 0) ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath, "the file is empty");
  // A directory opens like a file but reports a meaningless size and cannot
  // be read: read one byte before trusting the size.
  unsigned char probe;
  errno = 0;
  if (std::fread(&probe, 1, 1, file.get()) != 1)
    ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath,
                   errno ? std::strerror(errno) : "the file cannot be read");
  auto rewind = [&] {
    errno = 0;
    if (std::fseek(file.get(), 0, SEEK_SET) != 0)
      ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath,
                     errno ? std::strerror(errno) : "the file cannot be read from its start");
  };
  rewind();

  // The file is read up to the size it had when it was opened: one that
  // shrinks meanwhile fails as a short read.
  size_t done = 0;
  auto readExactly = [&](unsigned char* buffer, size_t wanted) {
    errno = 0;
    const size_t read = std::fread(buffer, 1, wanted, file.get());
    done += read;
    if (read < wanted) {
      const std::string detail = std::ferror(file.get()) && errno
                                     ? std::string(std::strerror(errno))
                                     : FormatString("only %lu of %ld bytes could be read",
                                                    static_cast<unsigned long>(done), size);
      ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath, detail);
    }
  };
  CPieceSource source(
      [&](unsigned char* buffer, size_t capacity) {
        const size_t wanted = std::min(capacity, static_cast<size_t>(size) - done);
        if (wanted > 0) readExactly(buffer, wanted);
        return wanted;
      },
      [&](CPieceSource&, const std::vector<unsigned char>&, unsigned long& length) {
        rewind();
        done = 0;
        std::unique_ptr<unsigned char[]> input(new (std::nothrow) unsigned char[static_cast<size_t>(size)]);
        if (!input)
          ThrowFileError(file, "Failed to read the contents of the file [%s]", shownPath,
                         FormatString("no memory for %ld bytes", size));
        readExactly(input.get(), static_cast<size_t>(size));
        file.reset();
        length = static_cast<unsigned long>(size);
        return input;
      });
  ReadPieces(source);
}

void CXmlDocument::LoadXmlFromSource(XmlSource read, void* state) {
  Cleanup();
  if (!read) throw CKoException(kEmptyStream);
  // The rest joins what was read, in one buffer that doubles as it fills.
  auto whole = [](CPieceSource& self, const std::vector<unsigned char>& consumed, unsigned long& length) {
    size_t capacity = std::max(2 * consumed.size(), kReadBlock), filled = consumed.size();
    std::unique_ptr<unsigned char[]> input(new unsigned char[capacity]);
    if (filled > 0) std::memcpy(input.get(), consumed.data(), filled);
    for (;;) {
      if (filled == capacity) {
        std::unique_ptr<unsigned char[]> larger(new unsigned char[2 * capacity]);
        std::memcpy(larger.get(), input.get(), filled);
        input = std::move(larger);
        capacity *= 2;
      }
      const size_t read = self.Read(input.get() + filled, capacity - filled);
      if (read == 0) break;
      filled += read;
    }
    length = static_cast<unsigned long>(filled);
    return input;
  };
  CPieceSource source([read, state](unsigned char* buffer, size_t capacity) { return read(state, buffer, capacity); },
                      whole);
  ReadPieces(source);
}

// ---- pushed pieces ----------------------------------------------------------------

void CXmlDocument::BeginXmlChunks() {
  Cleanup();
  auto reader = std::make_unique<CExpatReader>(*this);
  reader->CreateParser();
  m_pieceReader = std::move(reader);
}

void CXmlDocument::LoadXmlChunk(const char* data, size_t size) {
  if (!m_pieceReader) throw CKoException(kNoLoadInPieces);
  if (size == 0) return;
  if (!data) throw CKoInvalidParamException("A piece of a document cannot be a null pointer.");
  m_pieceBytes += size;
  // expat counts in int: larger pieces are handed over in slices.
  constexpr size_t kSlice = size_t(1) << 30;
  try {
    for (size_t offset = 0; offset < size; offset += kSlice) {
      m_source = reinterpret_cast<const unsigned char*>(data) + offset;
      m_sourceLength = static_cast<unsigned long>(std::min(kSlice, size - offset));
      m_pieceReader->Parse(false);
    }
  } catch (...) {
    m_source = nullptr;
    m_sourceLength = 0;
    m_pieceReader.reset();
    throw;
  }
  m_source = nullptr;
  m_sourceLength = 0;
}

void CXmlDocument::EndXmlChunks() {
  if (!m_pieceReader) throw CKoException(kNoLoadInPieces);
  std::unique_ptr<CExpatReader> reader = std::move(m_pieceReader);
  if (m_pieceBytes == 0) throw CKoException(kEmptyStream);
  static const unsigned char kNothing = 0;
  m_source = &kNothing;
  m_sourceLength = 0;
  try {
    reader->Parse(true);
  } catch (...) {
    m_source = nullptr;
    throw;
  }
  m_source = nullptr;
}

}  // namespace KoXmlLib10
