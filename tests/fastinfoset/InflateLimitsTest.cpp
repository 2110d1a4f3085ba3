// Compressed input inflates only as far as the limits allow, fails fast with
// a clear message beyond them, and stays within memory bounded by them.
#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <sys/resource.h>
#include <zlib.h>

#include <chrono>
#include <cstring>
#include <string>
#include <vector>

using namespace KoXmlLib10;

namespace {

// A gzip stream of `mebibytes` MiB of zeros, built in a few milliseconds: one
// MiB is deflated once with a full flush, which makes its octets independent
// of what came before, and repeated.
std::string ZeroBomb(unsigned mebibytes) {
  const std::vector<unsigned char> zeros(1u << 20, 0);
  z_stream s{};
  EXPECT_EQ(deflateInit2(&s, 9, Z_DEFLATED, -15, 9, Z_DEFAULT_STRATEGY), Z_OK);
  std::vector<unsigned char> out(1u << 16);
  const auto run = [&](const unsigned char* in, size_t size, int flush) {
    s.next_in = const_cast<unsigned char*>(in);
    s.avail_in = static_cast<uInt>(size);
    s.next_out = out.data();
    s.avail_out = static_cast<uInt>(out.size());
    deflate(&s, flush);
    return std::string(reinterpret_cast<char*>(out.data()), out.size() - s.avail_out);
  };
  const std::string segment = run(zeros.data(), zeros.size(), Z_FULL_FLUSH);
  const std::string last = run(nullptr, 0, Z_FINISH);
  deflateEnd(&s);

  uLong crcOfSegment = crc32(0, zeros.data(), static_cast<uInt>(zeros.size()));
  uLong crc = 0;
  std::string bomb("\x1F\x8B\x08\x00\x00\x00\x00\x00\x02\x03", 10);
  bomb.reserve(10 + segment.size() * mebibytes + 16);
  for (unsigned i = 0; i < mebibytes; ++i) {
    bomb += segment;
    crc = crc32_combine(crc, crcOfSegment, static_cast<z_off_t>(zeros.size()));
  }
  bomb += last;
  const unsigned long long size = static_cast<unsigned long long>(mebibytes) << 20;
  for (int i = 0; i < 4; ++i) bomb += static_cast<char>((crc >> (8 * i)) & 0xFF);
  for (int i = 0; i < 4; ++i) bomb += static_cast<char>((size >> (8 * i)) & 0xFF);
  return bomb;
}

// A document of `count` records, as text.
std::string Records(int count) {
  std::string text = "<records>";
  for (int i = 0; i < count; ++i) text += "<record id=\"" + std::to_string(i) + "\">value</record>";
  return text + "</records>";
}

std::string Compressed(const std::string& text, CompressionType type) {
  CBinaryData data(reinterpret_cast<unsigned char*>(const_cast<char*>(text.data())),
                   static_cast<unsigned long>(text.size()), false);
  CKoZip::CompressData(data, type);
  return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

// Inflates a copy with the limits; returns the bytes, or the message thrown.
std::string Inflate(const std::string& bytes, const CInflateLimits& limits, bool& threw) {
  unsigned long length = static_cast<unsigned long>(bytes.size());
  unsigned char* buffer = new unsigned char[length];
  std::copy(bytes.begin(), bytes.end(), buffer);
  threw = false;
  std::string result;
  try {
    CKoZip::Decompress(&buffer, &length, limits);
    result.assign(reinterpret_cast<char*>(buffer), length);
  } catch (const CKoException& e) {
    threw = true;
    result = e.GetMessage();
    EXPECT_EQ(length, bytes.size()) << "the buffer is left as it was";
    EXPECT_EQ(std::memcmp(bytes.data(), buffer, bytes.size()), 0);
  }
  delete[] buffer;
  return result;
}

std::string LoadFailure(const std::string& bytes, const CXmlSerializationContext& context) {
  CXmlDocument doc(context);
  try {
    doc.LoadXmlStream(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())),
                      static_cast<unsigned long>(bytes.size()));
  } catch (const CKoException& e) {
    return e.GetMessage();
  }
  return "";
}

long PeakResidentKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

}  // namespace

TEST(InflateLimits, AGibibyteOfZerosFailsFastWithinBoundedMemory) {
  bool threw = false;
  ASSERT_EQ(Inflate(ZeroBomb(3), CInflateLimits(), threw), std::string(3u << 20, '\0'));  // a sound stream
  const std::string bomb = ZeroBomb(1024);
  ASSERT_LT(bomb.size(), 2u << 20);  // about a thousand to one
  const long before = PeakResidentKiB();
  const auto start = std::chrono::steady_clock::now();
  const std::string message = LoadFailure(bomb, CXmlSerializationContext());
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(message.rfind("Failed to inflate the compressed input: ", 0), 0u) << message;
  EXPECT_NE(message.find("more than 100 times the compressed size, beyond the first 67108864 bytes."),
            std::string::npos)
      << message;
  // Stopped just past the allowance of 64 MiB, not after inflating 1 GiB: the
  // peak grows by a small multiple of the allowance at most (a loose bound,
  // so that sanitizer builds pass too).
  EXPECT_LT(PeakResidentKiB() - before, 400L * 1024) << "KiB more at the peak";
  EXPECT_LT(std::chrono::duration_cast<std::chrono::seconds>(elapsed).count(), 30);
}

TEST(InflateLimits, EachLimitCanBeSetAndLifted) {
  const std::string text = Records(20000);  // about 780 KB of very repetitive text
  const std::string gzip = Compressed(text, CompressionTypeGzip);
  const std::string zlib = Compressed(text, CompressionTypeZlib);
  bool threw = false;

  for (const std::string* packed : {&gzip, &zlib}) {
    // An absolute limit: exactly the inflated size passes, a byte less does not.
    CInflateLimits exact;
    exact.maxInflatedSize = text.size();
    EXPECT_EQ(Inflate(*packed, exact, threw), text);
    exact.maxInflatedSize = text.size() - 1;
    EXPECT_EQ(Inflate(*packed, exact, threw),
              "Failed to inflate the compressed input: it inflates to more than " +
                  std::to_string(text.size() - 1) + " bytes, the limit on the inflated size.");

    // A ratio: the text compresses far better than 2:1, so past a small
    // allowance it fails; lifting either the ratio or raising the allowance lets it through.
    CInflateLimits ratio;
    ratio.ratioAllowance = 4096;
    ratio.maxRatio = 2;
    const std::string message = Inflate(*packed, ratio, threw);
    EXPECT_NE(message.find("more than 2 times the compressed size, beyond the first 4096 bytes."),
              std::string::npos)
        << message;
    ratio.maxRatio = 0;
    EXPECT_EQ(Inflate(*packed, ratio, threw), text);
    ratio.maxRatio = 2;
    ratio.ratioAllowance = text.size();
    EXPECT_EQ(Inflate(*packed, ratio, threw), text);

    // Lifting the absolute limit leaves the default ratio in force (and the
    // default limits let it through unchanged).
    CInflateLimits lifted;
    lifted.maxInflatedSize = 0;
    EXPECT_EQ(Inflate(*packed, lifted, threw), text);
  }
}

TEST(InflateLimits, TheContextCarriesThemIntoLoading) {
  const std::string text = Records(2000);
  const std::string gzip = Compressed(text, CompressionTypeGzip);

  CXmlSerializationContext context;
  EXPECT_EQ(context.GetInflateLimits().maxInflatedSize, CInflateLimits::DEFAULT_MAX_INFLATED_SIZE);
  EXPECT_EQ(context.GetInflateLimits().ratioAllowance, CInflateLimits::DEFAULT_RATIO_ALLOWANCE);
  EXPECT_EQ(context.GetInflateLimits().maxRatio, CInflateLimits::DEFAULT_MAX_RATIO);
  EXPECT_EQ(LoadFailure(gzip, context), "");

  CInflateLimits small;
  small.maxInflatedSize = 1000;
  context.SetInflateLimits(small);
  EXPECT_EQ(LoadFailure(gzip, context),
            "Failed to inflate the compressed input: it inflates to more than 1000 bytes, the limit on "
            "the inflated size.");

  // Copies keep the limits, and each copy has its own.
  CXmlSerializationContext copy(context), assigned;
  assigned = context;
  EXPECT_EQ(copy.GetInflateLimits().maxInflatedSize + assigned.GetInflateLimits().maxInflatedSize, 2000u);
  assigned.SetInflateLimits(CInflateLimits());
  EXPECT_EQ(context.GetInflateLimits().maxInflatedSize, 1000u);
  EXPECT_EQ(LoadFailure(gzip, assigned), "");

  // Uncompressed input is not subject to them.
  EXPECT_EQ(LoadFailure(text, context), "");
}

TEST(InflateLimits, AStatedSizeThatLiesChangesNothing) {
  // The size a gzip stream states at its end only sizes the first buffer.
  const std::string text = Records(3000);
  std::string gzip = Compressed(text, CompressionTypeGzip);
  bool threw = false;
  for (const char* stated : {"\x00\x00\x00\x00", "\x01\x00\x00\x00", "\xFF\xFF\xFF\xFF", "\x00\x00\x00\x40"}) {
    std::string lying = gzip;
    lying.replace(lying.size() - 4, 4, stated, 4);
    // zlib checks the stated size, so the stream no longer inflates completely.
    EXPECT_EQ(Inflate(lying, CInflateLimits(), threw), lying);
  }
  EXPECT_EQ(Inflate(gzip, CInflateLimits(), threw), text);
  // An empty stream inflates to nothing.
  const std::string empty = ZeroBomb(0);
  EXPECT_EQ(Inflate(empty, CInflateLimits(), threw), "");
  EXPECT_FALSE(threw);  // an empty result is no message
}
