// Inflation of compressed input under limits. The input is tried twice:
// as compressed bytes itself (damaged streams, odd headers, lying trailers),
// and as the content of a stream this target compresses, repeated so that it
// may inflate past the limits. For the second, the outcome is known: the
// content comes back exactly, or a limit was passed and says so; a cut stream
// is left as it was.
#include <zlib.h>

#include <cstring>
#include <string>

#include "FuzzTree.h"

namespace {

using namespace KoXmlLib10;

constexpr char kLimitMessage[] = "Failed to inflate the compressed input: ";
constexpr size_t kMaxExpanded = 256u << 10;

// Runs Decompress over a copy; `thrown` gets the message of a limit.
std::string Inflate(const std::string& bytes, const CInflateLimits& limits, std::string& thrown) {
  unsigned long length = static_cast<unsigned long>(bytes.size());
  unsigned char* buffer = new unsigned char[length ? length : 1];
  std::memcpy(buffer, bytes.data(), bytes.size());
  thrown.clear();
  std::string result;
  try {
    CKoZip::Decompress(&buffer, &length, limits);
    result.assign(reinterpret_cast<char*>(buffer), length);
  } catch (const CKoException& e) {
    thrown = e.GetMessage();
    if (thrown.rfind(kLimitMessage, 0) != 0) __builtin_trap();
    // A failed call leaves the buffer as it was.
    if (length != bytes.size() || std::memcmp(buffer, bytes.data(), bytes.size()) != 0) __builtin_trap();
  }
  delete[] buffer;
  return result;
}

// `content` repeated `repeats` times, deflated in a zlib (windowBits 15) or gzip (31) frame.
std::string Deflate(const std::string& content, size_t repeats, int level, int windowBits) {
  z_stream s{};
  if (deflateInit2(&s, level, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY) != Z_OK) __builtin_trap();
  std::string out;
  unsigned char chunk[1 << 14];
  for (size_t i = 0; i <= repeats; ++i) {
    const bool last = i == repeats;
    s.next_in = reinterpret_cast<unsigned char*>(const_cast<char*>(content.data()));
    s.avail_in = last ? 0 : static_cast<uInt>(content.size());
    int status;
    do {
      s.next_out = chunk;
      s.avail_out = sizeof chunk;
      status = deflate(&s, last ? Z_FINISH : Z_NO_FLUSH);
      out.append(reinterpret_cast<char*>(chunk), sizeof chunk - s.avail_out);
    } while (s.avail_out == 0 || (last && status != Z_STREAM_END));
  }
  deflateEnd(&s);
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string thrown;
  CInflateLimits tight;
  tight.maxInflatedSize = 1u << 20;
  tight.ratioAllowance = 64u << 10;
  tight.maxRatio = 20;
  const std::string raw(reinterpret_cast<const char*>(data), size);
  const std::string inflated = Inflate(raw, tight, thrown);
  if (thrown.empty() && inflated.size() > tight.maxInflatedSize) __builtin_trap();

  if (size < 4) return 0;
  // Control octets: frame and level, repeats, limits, where to cut.
  const int windowBits = data[0] & 1 ? 31 : 15;
  const int level = (data[0] >> 1) % 10;
  const std::string content(reinterpret_cast<const char*>(data) + 4, size - 4);
  if (content.empty()) return 0;
  const size_t repeats = std::min<size_t>(1 + data[1] * 16u, kMaxExpanded / content.size() + 1);
  const unsigned long long expanded = static_cast<unsigned long long>(content.size()) * repeats;
  CInflateLimits limits;
  limits.maxInflatedSize = data[2] & 0x80 ? 0 : 1ull << (8 + (data[2] & 0x0F));  // 256 B .. 8 MiB, or none
  limits.ratioAllowance = 1ull << (8 + ((data[2] >> 4) & 0x07));                 // 256 B .. 32 KiB
  limits.maxRatio = data[3] & 0x80 ? 0 : 1 + (data[3] & 0x7F) * 8u;

  const std::string packed = Deflate(content, repeats, level, windowBits);
  const std::string back = Inflate(packed, limits, thrown);
  const unsigned long long maxSize = limits.maxInflatedSize ? limits.maxInflatedSize : UINT32_MAX;
  if (thrown.empty()) {
    if (back.size() != expanded) __builtin_trap();
    for (size_t at = 0; at < back.size(); at += content.size())
      if (back.compare(at, content.size(), content) != 0) __builtin_trap();
  } else if (expanded <= maxSize && (expanded <= limits.ratioAllowance || limits.maxRatio == 0)) {
    __builtin_trap();  // refused a stream within its limits
  }
  if (expanded > maxSize && thrown.empty()) __builtin_trap();  // past the absolute limit nothing comes back

  // A cut stream is not one complete stream: left as it is, unless a limit stops it first.
  const size_t cut = data[3] % packed.size();
  const std::string shortened = packed.substr(0, cut);
  const std::string left = Inflate(shortened, limits, thrown);
  if (thrown.empty() && left != shortened) __builtin_trap();

  // The same stream through the document loader, with the limits in the context.
  CXmlSerializationContext context;
  context.SetInflateLimits(limits);
  LoadAndWalk(context, reinterpret_cast<const uint8_t*>(packed.data()), packed.size());
  return 0;
}
