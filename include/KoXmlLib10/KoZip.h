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
  // one complete zlib or gzip stream; anything else is left as it is. An
  // inflated size beyond 4 GiB counts as not inflatable, since documents
  // hold their input length in 32 bits.
  static void Decompress(unsigned char** data, unsigned long* length);
  // Compresses the bytes of `data` in place; empty data stays empty.
  static void CompressData(CBinaryData& data, CompressionType type);
};

}  // namespace KoXmlLib10

#endif
