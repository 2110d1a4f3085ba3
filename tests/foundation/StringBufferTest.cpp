#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>
#include <thread>

using KoXmlLib10::CStringBuffer;

TEST(StringBuffer, BlocksJoinAndReuse) {
  CStringBuffer buffer(4);  // blocks of three characters
  for (char c = 'a'; c <= 'g'; ++c) buffer.Append(c);
  EXPECT_EQ(buffer.GetLength(), 7u);
  char* joined = buffer.GetText();
  EXPECT_STREQ(joined, "abcdefg");
  EXPECT_EQ(buffer.GetText(), joined);  // now a single block: no second join

  buffer.Append('h');  // the joined block is full, so a new one opens
  buffer.Append("ijklmno");
  EXPECT_EQ(buffer.GetLength(), 15u);
  EXPECT_STREQ(buffer.GetText(), "abcdefghijklmno");

  buffer.Append(std::string("pq"));
  buffer.Empty();  // two blocks: everything is freed
  EXPECT_EQ(buffer.GetLength(), 0u);
  EXPECT_STREQ(buffer.GetText(), "");

  buffer.Append("abc");
  char* block = buffer.GetText();
  buffer.Empty();  // a single block is zeroed and kept
  EXPECT_STREQ(buffer.GetText(), "");
  buffer.Append("xy");
  EXPECT_EQ(buffer.GetText(), block);
  EXPECT_STREQ(block, "xy");

  buffer.SetText("replaced");
  EXPECT_STREQ(buffer.GetText(), "replaced");
  buffer.Clear();
  buffer.Append("");
  EXPECT_EQ(buffer.GetLength(), 0u);
  EXPECT_STREQ(buffer.GetText(), "");
}

TEST(StringBuffer, LongAppendsSpanBlocks) {
  CStringBuffer buffer;
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    const std::string piece = "item " + std::to_string(i) + ";";
    buffer.Append(piece.c_str());
    expected += piece;
  }
  EXPECT_EQ(buffer.GetLength(), expected.size());
  EXPECT_EQ(std::string(buffer.GetText()), expected);

  CStringBuffer tiny(0);  // a degenerate block size still holds text
  tiny.Append("abc");
  EXPECT_STREQ(tiny.GetText(), "abc");
}

TEST(StringBuffer, BlockOpenedEarlyJoinsOnlyItsText) {
  CStringBuffer buffer(8);
  buffer.Append("ab");
  buffer.AddNewBlock();
  buffer.Append("cd");
  buffer.AddNewBlock();
  EXPECT_EQ(buffer.GetLength(), 4u);
  EXPECT_STREQ(buffer.GetText(), "abcd");
}

TEST(CriticalSection, GuardsSharedCounter) {
  CKOCriticalSection lock;
  int counter = 0;
  auto work = [&] {
    for (int i = 0; i < 10000; ++i) {
      lock.Enter();
      ++counter;
      lock.Leave();
    }
  };
  std::thread a(work), b(work);
  a.join();
  b.join();
  EXPECT_EQ(counter, 20000);
}
