#include "KoXmlLib10/KoZip.h"

#include <zlib.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <memory>

#include "KoXmlLib10/Exceptions.h"

namespace KoXmlLib10 {

namespace {

constexpr int kGzipWindowBits = 15 + 16;  // 32 KiB window, gzip frame
constexpr int kAutoWindowBits = 15 + 32;  // 32 KiB window, zlib or gzip detected
constexpr unsigned long kInflateChunk = 65536;
constexpr unsigned long kMaxInflatedLength = UINT32_MAX;

// zlib counts in 32-bit units; larger buffers are fed in slices.
uInt Slice(unsigned long remaining) { return static_cast<uInt>(std::min<unsigned long>(remaining, UINT_MAX)); }

// Deletes the zlib stream's state on every way out.
struct DeflateEnd {
  void operator()(z_stream* s) const { deflateEnd(s); }
};
struct InflateEnd {
  void operator()(z_stream* s) const { inflateEnd(s); }
};

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
  if (!*data || *length == 0) return;
  std::unique_ptr<unsigned char[]> chunk(new unsigned char[kInflateChunk]);
  CBinaryData result;
  z_stream stream{};
  if (inflateInit2(&stream, kAutoWindowBits) != Z_OK) return;
  std::unique_ptr<z_stream, InflateEnd> guard(&stream);

  stream.next_in = *data;
  unsigned long remaining = *length;
  int status = Z_OK;
  while (status == Z_OK) {
    if (stream.avail_in == 0) {
      stream.avail_in = Slice(remaining);
      remaining -= stream.avail_in;
    }
    stream.next_out = chunk.get();
    stream.avail_out = kInflateChunk;
    status = inflate(&stream, Z_NO_FLUSH);
    if (status < 0 || status > Z_STREAM_END) break;
    const unsigned long produced = kInflateChunk - stream.avail_out;
    if (result.GetLength() + produced > kMaxInflatedLength) return;
    result.Append(chunk.get(), produced);
  }
  if (status != Z_STREAM_END) return;

  const unsigned long inflatedLength = result.GetLength();
  unsigned char* inflated = inflatedLength ? result.ReleaseData() : new unsigned char[1];
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
