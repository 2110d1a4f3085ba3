#ifndef KOXMLLIB10_KOZIP_H
#define KOXMLLIB10_KOZIP_H

#include <cstdint>

#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// How serialized output is wrapped: not at all, or deflate in a gzip or
// zlib frame.
enum CompressionType : int32_t {
  CompressionTypeNone = 0,
  CompressionTypeGzip = 1,
  CompressionTypeZlib = 2,
};

// Limits on inflating compressed input, so that a document of a few
// megabytes cannot take a server's memory: deflate reaches about 1000:1, so
// 1 GiB of zeros fits in 1 MiB. Inflation stops with a CKoException as soon
// as the inflated bytes pass either limit; memory stays bounded by them.
//
// The defaults are far beyond real documents. A field set to 0 lifts its
// limit; inflated sizes beyond 4 GiB are never accepted, since documents hold
// their input length in 32 bits.
struct CInflateLimits {
  static constexpr unsigned long long DEFAULT_MAX_INFLATED_SIZE = 1ull << 30;  // 1 GiB
  static constexpr unsigned long long DEFAULT_RATIO_ALLOWANCE = 64ull << 20;   // 64 MiB
  static constexpr unsigned long DEFAULT_MAX_RATIO = 100;

  // No input inflates to more than this many bytes.
  unsigned long long maxInflatedSize = DEFAULT_MAX_INFLATED_SIZE;
  // Up to this many inflated bytes, any ratio is accepted.
  unsigned long long ratioAllowance = DEFAULT_RATIO_ALLOWANCE;
  // Beyond the allowance, the bytes inflated so far may be at most this many
  // times the compressed bytes read so far. Real documents come to about
  // 10:1; runs of one byte, the cheapest bombs, to 200:1 at the fastest
  // compression level and about 1000:1 at the best.
  unsigned long maxRatio = DEFAULT_MAX_RATIO;
};

// Deflate of serialized output and transparent inflation of loaded input.
class KOXML_API CKoZip {
 public:
  virtual ~CKoZip();

  // Replaces *data (a new[] array) and *length with the compressed form.
  // The result may not be longer than the input: data that does not shrink
  // throws "Failed to compress data. [Error Code: %d]". Other types leave
  // both unchanged.
  static void Compress(unsigned char** data, unsigned long* length, CompressionType type);
  // Replaces *data and *length with the inflated bytes when the buffer holds
  // one complete zlib or gzip stream; anything else (plain text, Fast
  // Infoset, a damaged or cut stream) is left as it is. A stream that
  // inflates beyond the limits throws CKoException and leaves the buffer as
  // it was. The first form applies the default limits.
  static void Decompress(unsigned char** data, unsigned long* length);
  static void Decompress(unsigned char** data, unsigned long* length, const CInflateLimits& limits);
  // Compresses the bytes of `data` in place; empty data stays empty.
  static void CompressData(CBinaryData& data, CompressionType type);
};

}  // namespace KoXmlLib10

#endif
