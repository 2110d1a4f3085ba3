#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>

#include "support/Throws.h"

using namespace KoXmlLib10;

namespace {

const std::string kText = [] {
  std::string text;
  for (int i = 0; i < 200; ++i) text += "<item>value</item>";
  return text;
}();

CBinaryData BytesOf(const std::string& s) {
  return CBinaryData(reinterpret_cast<unsigned char*>(const_cast<char*>(s.data())), s.size(), false);
}

// Runs Decompress over a copy of the bytes and returns what it leaves.
std::string Inflated(const CBinaryData& data) {
  unsigned long length = data.GetLength();
  unsigned char* buffer = new unsigned char[length];
  std::copy(data.GetData(), data.GetData() + length, buffer);
  CKoZip::Decompress(&buffer, &length);
  std::string out(reinterpret_cast<char*>(buffer), length);
  delete[] buffer;
  return out;
}

}  // namespace

TEST(KoZip, FramesAndRoundTrips) {
  const std::string& text = kText;
  CBinaryData gzip = BytesOf(text);
  CKoZip::CompressData(gzip, CompressionTypeGzip);
  EXPECT_EQ(gzip.GetAsHexString().substr(0, 4), "1F8B");
  EXPECT_LT(gzip.GetLength(), text.size());
  EXPECT_EQ(Inflated(gzip), text);

  CBinaryData zlib = BytesOf(text);
  CKoZip::CompressData(zlib, CompressionTypeZlib);
  EXPECT_EQ(zlib.GetAsHexString().substr(0, 4), "7801");
  EXPECT_EQ(Inflated(zlib), text);

  CBinaryData none = BytesOf(text);
  CKoZip::CompressData(none, CompressionTypeNone);
  EXPECT_EQ(none, BytesOf(text));

  CBinaryData empty;
  CKoZip::CompressData(empty, CompressionTypeGzip);
  EXPECT_EQ(empty.GetLength(), 0u);
}

TEST(KoZip, DataThatDoesNotShrinkFails) {
  CBinaryData tiny("abc");
  const std::string message = testsupport::MessageOf([&] { CKoZip::CompressData(tiny, CompressionTypeZlib); });
  EXPECT_EQ(message.rfind("Failed to compress data. [Error Code: ", 0), 0u) << message;
  EXPECT_EQ(message.back(), ']');
  EXPECT_EQ(tiny, CBinaryData("abc"));  // the caller keeps its bytes
}

TEST(KoZip, AnythingButOneCompleteStreamStaysAsItIs) {
  const std::string& text = kText;
  EXPECT_EQ(Inflated(BytesOf(text)), text);
  const std::string fastInfoset("\xE0\x00\x00\x01\x00\x38\xF0\x3C\x00\x61\x90\x78\xFF", 13);
  EXPECT_EQ(Inflated(BytesOf(fastInfoset)), fastInfoset);

  CBinaryData zlib = BytesOf(text);
  CKoZip::CompressData(zlib, CompressionTypeZlib);
  const std::string whole(reinterpret_cast<char*>(zlib.GetData()), zlib.GetLength());
  const std::string cut = whole.substr(0, whole.size() / 2);
  EXPECT_EQ(Inflated(BytesOf(cut)), cut);
  std::string damaged = whole;
  damaged[damaged.size() - 1] ^= 0x55;  // the checksum no longer matches
  EXPECT_EQ(Inflated(BytesOf(damaged)), damaged);
}
