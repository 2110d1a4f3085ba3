#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>
#include <vector>

#include "support/Throws.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

std::vector<unsigned char> Encoded(unsigned long algorithm, const char* text) {
  CFastInfosetBinaryData data;
  data.SetAsEncodedString(algorithm, text);
  return std::vector<unsigned char>(data.GetData(), data.GetData() + data.GetLength());
}

std::string Decoded(unsigned long algorithm, std::vector<unsigned char> octets) {
  return CFastInfosetBinaryData(octets.data(), octets.size(), false).GetAsString(algorithm);
}

using Octets = std::vector<unsigned char>;

}  // namespace

TEST(FastInfosetBinaryData, EachAlgorithmEncodesOneValue) {
  EXPECT_EQ(Encoded(1, "0AFF"), (Octets{0x0A, 0xFF}));
  EXPECT_EQ(Encoded(2, "AQI="), (Octets{0x01, 0x02}));
  EXPECT_EQ(Encoded(3, "-2"), (Octets{0xFF, 0xFE}));
  EXPECT_EQ(Encoded(4, "-1"), (Octets{0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(Encoded(4, " 258 "), (Octets{0x00, 0x00, 0x01, 0x02}));
  EXPECT_EQ(Encoded(5, "1"), (Octets{0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ(Encoded(6, "true"), Octets{0x38});
  EXPECT_EQ(Encoded(6, "false"), Octets{0x30});
  EXPECT_EQ(Encoded(7, "1.5"), (Octets{0x3F, 0xC0, 0x00, 0x00}));
  EXPECT_EQ(Encoded(8, "-2"), (Octets{0xC0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Encoded(9, "00112233445566778899AABBCCDDEEFF"),
            (Octets{0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}));
  EXPECT_EQ(Encoded(10, "a<b"), (Octets{'a', '<', 'b'}));

  CFastInfosetBinaryData data("stale");
  data.SetAsEncodedString(3, "7");
  EXPECT_EQ(data.GetLength(), 2u);  // replaced, not appended
}

TEST(FastInfosetBinaryData, DecodesEveryValueJoinedBySpaces) {
  EXPECT_EQ(Decoded(1, {0x0A, 0xFF}), "0AFF");
  EXPECT_EQ(Decoded(2, {0x01, 0x02}), "AQI=");
  EXPECT_EQ(Decoded(3, {0xFF, 0xFE, 0x7F, 0xFF}), "-2 32767");
  EXPECT_EQ(Decoded(4, {0, 0, 0, 1, 0, 0, 0, 2}), "1 2");
  EXPECT_EQ(Decoded(4, {0x80, 0, 0, 0}), "-2147483648");
  EXPECT_EQ(Decoded(5, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}), "-2");
  EXPECT_EQ(Decoded(7, {0x3F, 0xC0, 0, 0}), CConversions::r4ToString(1.5f));
  EXPECT_EQ(Decoded(8, {0xC0, 0, 0, 0, 0, 0, 0, 0}), CConversions::r8ToString(-2.0));
  std::string sixteen;
  for (int i = 0; i < 16; ++i) sixteen += "AB";
  EXPECT_EQ(Decoded(9, Octets(32, 0xAB)), sixteen + " " + sixteen);
  EXPECT_EQ(Decoded(3, {}), "");

  // Booleans: the first four bits count the unused bits at the end.
  EXPECT_EQ(Decoded(6, {0x38}), "true");
  EXPECT_EQ(Decoded(6, {0x30}), "false");
  EXPECT_EQ(Decoded(6, {0x1A}), "true false true");
  EXPECT_EQ(Decoded(6, {0x05, 0x80}), "false true false true true false false false false false "
                                      "false false");
}

TEST(FastInfosetBinaryData, Failures) {
  auto decodeFails = [](unsigned long algorithm, Octets octets, const std::string& expected) {
    return Throws([&] { Decoded(algorithm, octets); }, expected);
  };
  EXPECT_TRUE(decodeFails(3, Octets(3), "Invalid value for SHORT byte encoding."));
  EXPECT_TRUE(decodeFails(4, Octets(6), "Invalid value for INT byte encoding."));
  EXPECT_TRUE(decodeFails(5, Octets(7), "Invalid value for LONG byte encoding."));
  EXPECT_TRUE(decodeFails(7, Octets(5), "Invalid value for FLOAT byte encoding."));
  EXPECT_TRUE(decodeFails(8, Octets(4), "Invalid value for DOUBLE byte encoding."));
  EXPECT_TRUE(decodeFails(9, Octets(15), "Invalid value for UUID byte encoding."));
  EXPECT_TRUE(decodeFails(6, Octets{0x50}, "Invalid value for BOOLEAN byte encoding."));
  EXPECT_TRUE(decodeFails(6, Octets{0x80, 0}, "Invalid value for BOOLEAN byte encoding."));
  for (unsigned long algorithm : {0ul, 10ul, 11ul})
    EXPECT_TRUE(decodeFails(algorithm, Octets{1}, "Unknown byte encoding.")) << algorithm;

  CFastInfosetBinaryData data;
  for (unsigned long algorithm : {0ul, 11ul})
    EXPECT_TRUE(Throws<CKoException>([&] { data.SetAsEncodedString(algorithm, "1"); },
              "Unknown byte encoding."));
  EXPECT_TRUE(Throws<CKoException>([&] { data.SetAsEncodedString(9, "0011"); },
            "Invalid value for UUID byte encoding."));
  EXPECT_THROW(data.SetAsEncodedString(3, "40000"), CKoInvalidValueException);
  EXPECT_THROW(data.SetAsEncodedString(4, "abc"), CKoInvalidValueException);
  EXPECT_THROW(data.SetAsEncodedString(1, "ABC"), CKoException);
}
