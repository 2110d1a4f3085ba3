#include <gtest/gtest.h>

#include "support/Throws.h"

#include <KoXmlLib10.h>

#include <string>
#include <thread>

using testsupport::Throws;

using KoXmlLib10::CBinaryData;
using KoXmlLib10::CKoException;

namespace {

std::string Text(const CBinaryData& d) { return std::string(reinterpret_cast<char*>(d.GetData()), d.GetLength()); }


}  // namespace

TEST(BinaryData, Base64) {
  CBinaryData d;
  for (const char* text : {"SGVsbG8=", " SGVs\r\nbG8\t=\n", "\xD3GVsbG8="}) {  // high bit ignored: 0xD3 reads as 'S'
    d.SetAsBase64(text);
    EXPECT_EQ(Text(d), "Hello") << text;
  }
  d.SetAsBase64("SGVsbG8*");
  EXPECT_NE(d.GetData(), nullptr);
  EXPECT_EQ(d.GetLength(), 0u);
  d.SetAsBase64("");
  EXPECT_EQ(d.GetLength(), 0u);

  EXPECT_EQ(CBinaryData("Ma").GetAsBase64() + CBinaryData("M").GetAsBase64() + CBinaryData("Man").GetAsBase64() +
                CBinaryData().GetAsBase64(), "TWE=TQ==TWFu");

  unsigned char all[256];
  for (int i = 0; i < 256; ++i) all[i] = static_cast<unsigned char>(i);
  const CBinaryData original(all, 256, false);
  CBinaryData back;
  back.SetAsBase64(original.GetAsBase64().c_str());
  EXPECT_EQ(back, original);
}

TEST(BinaryData, Hex) {
  CBinaryData d;
  d.SetAsHexString("0aFf");
  EXPECT_EQ(Text(d), "\x0A\xFF");
  EXPECT_EQ(d.GetAsHexString(), "0AFF");
  EXPECT_TRUE(Throws<CKoException>([&] { d.SetAsHexString("ABC"); }, "Invalid length in hex string"));
  EXPECT_TRUE(Throws<CKoException>([&] { d.SetAsHexString("GG"); }, "Invalid char in hex string [G]"));
  EXPECT_TRUE(Throws<CKoException>([&] { d.SetAsHexString("0x"); }, "Invalid char in hex string [x]"));
  EXPECT_EQ(CBinaryData().GetAsHexString(), "");
}

TEST(BinaryData, CopyOnWrite) {
  CBinaryData original("abc");
  CBinaryData copy = original;
  EXPECT_EQ(copy.GetData(), original.GetData());  // shared until written
  copy.Append("def");
  EXPECT_EQ(Text(original), "abc");
  EXPECT_EQ(Text(copy), "abcdef");

  CBinaryData other = original;
  other[0] = 'X';
  EXPECT_EQ(Text(original), "abc");
  EXPECT_EQ(Text(other), "Xbc");

  CBinaryData self("ab");
  self.Append(self);
  self = self;
  EXPECT_EQ(Text(self), "abab");

  CBinaryData grow;
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    grow.Append(static_cast<char>('a' + i % 26));
    grow.Append(static_cast<unsigned char>('0' + i % 10));
    expected += static_cast<char>('a' + i % 26);
    expected += static_cast<char>('0' + i % 10);
  }
  EXPECT_EQ(Text(grow), expected);
}

TEST(BinaryData, ReleaseDataHandsOutTheBytes) {
  CBinaryData d("xyz");
  CBinaryData shared = d;
  unsigned char* bytes = d.ReleaseData();
  EXPECT_EQ(d.GetData(), nullptr);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(bytes), 3), "xyz");
  EXPECT_EQ(Text(shared), "xyz");
  delete[] bytes;
  EXPECT_EQ(CBinaryData().ReleaseData(), nullptr);
}

TEST(BinaryData, IndexAndEquality) {
  CBinaryData d("ab");
  const CBinaryData& constD = d;
  EXPECT_EQ(constD[1], 'b');
  EXPECT_TRUE(Throws<CKoException>([&] { (void)constD[2]; }, "Index Out of range [2]"));
  EXPECT_TRUE(Throws<CKoException>([&] { (void)d[2]; }, "Index Out of range [2]"));
  EXPECT_TRUE(Throws<CKoException>([] { (void)CBinaryData()[0]; }, "Index Out of range [0]"));

  EXPECT_EQ(CBinaryData(), CBinaryData());
  EXPECT_NE(CBinaryData(), CBinaryData(""));
  EXPECT_EQ(CBinaryData(""), CBinaryData(nullptr, 0, false));
  EXPECT_NE(CBinaryData("ab"), CBinaryData("ac"));
  EXPECT_NE(CBinaryData("ab"), CBinaryData("abc"));
}

TEST(BinaryData, HolderRefusesSharedWrites) {
  unsigned char byte = 'q';
  auto* holder = new CBinaryData::CDataHolder(&byte, 1, false);
  holder->AddRef();
  EXPECT_TRUE(Throws<CKoException>([&] { holder->Append(&byte, 1); }, "Failed to append. [RefCount=2]"));
  EXPECT_TRUE(Throws<CKoException>([&] { holder->Release(true); }, "Failed to release data. [RefCount=1]"));
  CBinaryData::CDataHolder* exclusive = holder->GetExclusiveCopy();
  ASSERT_NE(exclusive, holder);
  exclusive->Append(&byte, 1);
  EXPECT_EQ(exclusive->GetLength(), 2u);
  EXPECT_EQ(holder->GetLength(), 1u);
  holder->Release(false);
  exclusive->Release(false);
}

TEST(BinaryData, SharedCopiesOnSeveralThreads) {
  const CBinaryData shared("payload");
  auto work = [&shared] {
    for (int i = 0; i < 20000; ++i) {
      CBinaryData copy = shared;
      if (i % 1000 == 0) copy.Append('!');
    }
  };
  std::thread a(work), b(work);
  a.join();
  b.join();
  EXPECT_EQ(Text(shared), "payload");
}
