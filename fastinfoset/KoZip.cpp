#include "KoXmlLib10/KoZip.h"

#include <zlib.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "KoXmlLib10/Exceptions.h"
#include "fastinfoset/ZipMessages.h"

namespace KoXmlLib10 {

namespace {

constexpr int kGzipWindowBits = 15 + 16;  // 32 KiB window, gzip frame
constexpr int kAutoWindowBits = 15 + 32;  // 32 KiB window, zlib or gzip detected
constexpr size_t kInflateChunk = 65536;
// Limits are checked after each step, so no step may inflate much at once.
constexpr size_t kInflateStep = 1u << 20;
constexpr unsigned long long kMaxInflatedLength = UINT32_MAX;
// Deflate's best ratio, for stored sizes that cannot be true.
constexpr unsigned long long kDeflateMaxRatio = 1032;

// zlib counts in 32-bit units; larger buffers are fed in slices.
uInt Slice(unsigned long remaining) { return static_cast<uInt>(std::min<unsigned long>(remaining, UINT_MAX)); }

// Deletes the zlib stream's state on every way out.
struct DeflateEnd {
  void operator()(z_stream* s) const { deflateEnd(s); }
};
struct InflateEnd {
  void operator()(z_stream* s) const { inflateEnd(s); }
};

// Inflated bytes, in blocks that double the capacity up to a maximum. The
// blocks are never copied while inflating, so a stream stopped by a limit has
// touched no more memory than it inflated.
class CInflatedBytes {
 public:
  CInflatedBytes(unsigned long long maxSize, size_t initialCapacity) : m_maxSize(static_cast<size_t>(maxSize)) {
    AddBlock(std::min(std::max<size_t>(initialCapacity, 1), m_maxSize));
  }

  unsigned char* Free() { return m_blocks.back().get() + m_used; }
  size_t Room() const { return m_blockSize - m_used; }
  size_t Length() const { return m_length; }
  void Commit(size_t produced) {
    m_used += produced;
    m_length += produced;
  }

  // A new block as large as all before it, up to the maximum; false when it is reached.
  bool Grow() {
    const size_t capacity = m_length - m_used + m_blockSize;
    if (capacity >= m_maxSize) return false;
    AddBlock(std::min(capacity, m_maxSize - capacity));
    return true;
  }

  // The bytes as one new[] array of about their size, which the document
  // keeps while it lives.
  unsigned char* Release() {
    if (m_blocks.size() == 1 && m_blockSize - m_used <= m_used / 8) return m_blocks.back().release();
    std::unique_ptr<unsigned char[]> whole = Allocate(std::max<size_t>(m_length, 1));
    size_t at = 0;
    for (size_t i = 0; i < m_blocks.size(); ++i) {
      const size_t used = i + 1 == m_blocks.size() ? m_used : m_sizes[i];
      std::memcpy(whole.get() + at, m_blocks[i].get(), used);
      at += used;
      m_blocks[i].reset();
    }
    return whole.release();
  }

 private:
  static std::unique_ptr<unsigned char[]> Allocate(size_t size) {
    std::unique_ptr<unsigned char[]> block(new (std::nothrow) unsigned char[size]);
    if (!block)
      throw CKoException(FormatString("Failed to inflate the compressed input: no memory for %llu bytes.",
                                      static_cast<unsigned long long>(size)));
    return block;
  }
  void AddBlock(size_t size) {
    std::unique_ptr<unsigned char[]> block = Allocate(size);
    m_sizes.reserve(m_sizes.size() + 1);
    m_blocks.reserve(m_blocks.size() + 1);
    m_sizes.push_back(size);
    m_blocks.push_back(std::move(block));
    m_blockSize = size;
    m_used = 0;
  }

  size_t m_maxSize;
  std::vector<std::unique_ptr<unsigned char[]>> m_blocks;
  std::vector<size_t> m_sizes;  // of each block, all full but the last
  size_t m_blockSize = 0;       // of the last block
  size_t m_used = 0;            // in the last block
  size_t m_length = 0;
};

// Room for the first bytes. A gzip stream states its inflated size (modulo
// 2^32) in its last four octets: trusted as far as deflate could reach and
// the ratio allowance, so that most documents inflate without a copy.
size_t InitialCapacity(const unsigned char* data, unsigned long length, const CInflateLimits& limits,
                       unsigned long long maxSize) {
  size_t capacity = kInflateChunk;
  if (length >= 18 && data[0] == 0x1F && data[1] == 0x8B) {
    const unsigned char* tail = data + length - 4;
    const unsigned long long stated = tail[0] | (tail[1] << 8) | (tail[2] << 16) | (static_cast<unsigned long long>(tail[3]) << 24);
    unsigned long long trusted = std::min<unsigned long long>(stated, kDeflateMaxRatio * length);
    if (limits.ratioAllowance != 0) trusted = std::min(trusted, limits.ratioAllowance);
    capacity = static_cast<size_t>(std::max<unsigned long long>(std::min(trusted, maxSize), 1));
  }
  return capacity;
}

int DeflateInit(z_stream& stream, CompressionType type) {
  if (type == CompressionTypeGzip)
    return deflateInit2(&stream, 1, Z_DEFLATED, kGzipWindowBits, 8, Z_DEFAULT_STRATEGY);
  return deflateInit(&stream, 1);
}

}  // namespace

CKoZip::~CKoZip() = default;

void CKoZip::Compress(unsigned char** data, unsigned long* length, CompressionType type) {
  if (type != CompressionTypeGzip && type != CompressionTypeZlib) return;
  std::unique_ptr<unsigned char[]> out(new unsigned char[*length]);
  z_stream stream{};
  stream.next_out = out.get();
  stream.avail_out = Slice(*length);
  int result = DeflateInit(stream, type);
  if (result != Z_OK) throw CKoException(FormatString("Failed to compress data. [Error Code: %d]", result));
  std::unique_ptr<z_stream, DeflateEnd> guard(&stream);

  // Normally one pass without flushing; inputs beyond zlib's 32-bit counts
  // take one pass per slice.
  stream.next_in = *data;
  unsigned long remaining = *length;
  do {
    stream.avail_in = Slice(remaining);
    remaining -= stream.avail_in;
    deflate(&stream, Z_NO_FLUSH);
  } while (remaining > 0 && stream.avail_in == 0 && stream.avail_out > 0);
  result = remaining > 0 ? Z_BUF_ERROR : deflate(&stream, Z_FINISH);
  if (result != Z_STREAM_END)
    throw CKoException(FormatString("Failed to compress data. [Error Code: %d]", result));

  const unsigned long produced = stream.total_out;
  guard.reset();
  delete[] *data;
  *data = out.release();
  *length = produced;
}

void CKoZip::Decompress(unsigned char** data, unsigned long* length) {
  Decompress(data, length, CInflateLimits());
}

void CKoZip::Decompress(unsigned char** data, unsigned long* length, const CInflateLimits& limits) {
  if (!*data || *length == 0) return;
  z_stream stream{};
  if (inflateInit2(&stream, kAutoWindowBits) != Z_OK) return;
  std::unique_ptr<z_stream, InflateEnd> guard(&stream);

  const unsigned long long maxSize = limits.maxInflatedSize == 0
                                         ? kMaxInflatedLength
                                         : std::min<unsigned long long>(limits.maxInflatedSize, kMaxInflatedLength);
  CInflatedBytes out(maxSize, InitialCapacity(*data, *length, limits, maxSize));
  stream.next_in = *data;
  unsigned long remaining = *length;
  int status = Z_OK;
  while (status == Z_OK) {
    if (stream.avail_in == 0) {
      stream.avail_in = Slice(remaining);
      remaining -= stream.avail_in;
    }
    // A full buffer at the limit gets one byte more of room: if inflate
    // fills it, the stream is over the limit; if it ends, it fitted exactly.
    unsigned char spare;
    const bool atLimit = out.Room() == 0 && !out.Grow();
    stream.next_out = atLimit ? &spare : out.Free();
    stream.avail_out = atLimit ? 1 : static_cast<uInt>(std::min<size_t>(out.Room(), kInflateStep));
    const uInt room = stream.avail_out;
    status = inflate(&stream, Z_NO_FLUSH);
    if (status < 0 || status > Z_STREAM_END) return;  // not one complete stream: left as it is
    const size_t produced = room - stream.avail_out;
    if (atLimit && produced > 0)
      throw CKoException(FormatString(ZipMessages::kInflatedTooLarge, maxSize));
    out.Commit(produced);
    if (limits.maxRatio != 0 && out.Length() > limits.ratioAllowance &&
        out.Length() / limits.maxRatio > stream.total_in)
      throw CKoException(FormatString(ZipMessages::kInflateRatio, static_cast<unsigned long long>(out.Length()),
                                      static_cast<unsigned long long>(stream.total_in), limits.maxRatio,
                                      limits.ratioAllowance));
  }

  const unsigned long inflatedLength = static_cast<unsigned long>(out.Length());
  unsigned char* inflated = out.Release();
  delete[] *data;
  *data = inflated;
  *length = inflatedLength;
}

void CKoZip::CompressData(CBinaryData& data, CompressionType type) {
  if (data.GetLength() == 0) return;
  unsigned long length = data.GetLength();
  unsigned char* buffer = data.ReleaseData();
  try {
    Compress(&buffer, &length, type);
  } catch (...) {
    data = CBinaryData(buffer, length, true);
    throw;
  }
  data = CBinaryData(buffer, length, true);
}

}  // namespace KoXmlLib10
