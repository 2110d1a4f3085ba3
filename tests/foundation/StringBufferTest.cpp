#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <string>
#include <thread>

using KoXmlLib10::CStringBuffer;

TEST(StringBuffer, BlocksJoinAndReuse) {
  CStringBuffer buffer(4);  // blocks of three characters
  for (char c = 'a'; c <= 'g'; ++c) buffer.Append(c);
  EXPECT_EQ(buffer.GetLength(), 7u);
  EXPECT_STREQ(buffer.GetText(), "abcdefg");
  EXPECT_STREQ(buffer.GetText(), "abcdefg");  // joined once, stable afterwards

  buffer.Append('h');  // opens a new block after the joined one
  buffer.Append("ijklmno");
  EXPECT_EQ(buffer.GetLength(), 15u);
  EXPECT_STREQ(buffer.GetText(), "abcdefghijklmno");

  buffer.Empty();  // one block left: kept and zeroed
  EXPECT_EQ(buffer.GetLength(), 0u);
  EXPECT_STREQ(buffer.GetText(), "");
  buffer.Append(std::string("xy"));
  EXPECT_STREQ(buffer.GetText(), "xy");

  buffer.SetText("replaced");
  EXPECT_STREQ(buffer.GetText(), "replaced");
  buffer.Clear();
  EXPECT_STREQ(buffer.GetText(), "");
  buffer.Append("");
  EXPECT_EQ(buffer.GetLength(), 0u);
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
  buffer.Empty();  // more than one block before the join? No: GetText joined them
  buffer.Append('z');
  EXPECT_STREQ(buffer.GetText(), "z");

  CStringBuffer tiny(0);  // degenerate sizes still hold text
  tiny.Append("abc");
  EXPECT_STREQ(tiny.GetText(), "abc");
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
