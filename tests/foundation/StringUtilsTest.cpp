#include <gtest/gtest.h>

#include <KoXmlLib10.h>

using namespace KoXmlLib10;

TEST(StringUtils, FractionSuffix) {
  EXPECT_EQ(ToFracString(0, 0, 0), "");
  EXPECT_EQ(ToFracString(500, 0, 0), ".5");
  EXPECT_EQ(ToFracString(120, 0, 0), ".12");
  EXPECT_EQ(ToFracString(0, 250, 0), ".00025");
  EXPECT_EQ(ToFracString(1, 2, 3), ".001002003");
  EXPECT_EQ(ToFracString(0, 0, 5), ".000000005");
}

TEST(StringUtils, TrimAndPad) {
  EXPECT_EQ(TrimTrainingZeros("500"), "5");
  EXPECT_EQ(TrimTrainingZeros("000"), "0");
  EXPECT_EQ(TrimTrainingZeros("0"), "0");
  EXPECT_EQ(TrimTrainingZeros(""), "");
  EXPECT_EQ(PadZero(7, 3), "007");
  EXPECT_EQ(PadZero(-7, 3), "-07");
  EXPECT_EQ(PadZero(12345, 2), "12345");
}

TEST(StringUtils, FindReplaceRestartsAndTerminates) {
  std::string s = "aaab";
  FindReplace(s, "ab", "b");  // restarting from the front collapses every 'a'
  EXPECT_EQ(s, "b");
  std::string t = "x&y&";
  FindReplace(t, "&", "&amp;");  // replacement contains the search text
  EXPECT_EQ(t, "x&amp;y&amp;");
  std::string u = "abc";
  FindReplace(u, "", "z");
  EXPECT_EQ(u, "abc");
  std::wstring w = L"a-b-c";
  FindReplace(w, L"-", L"+");
  EXPECT_EQ(w, L"a+b+c");
  char up[] = "abc1z";
  EXPECT_STREQ(strupr(up), "ABC1Z");
}

TEST(StringUtils, FileLengthKeepsPosition) {
  FILE* f = std::tmpfile();
  ASSERT_NE(f, nullptr);
  std::fputs("hello world", f);
  std::fseek(f, 3, SEEK_SET);
  EXPECT_EQ(_filelength(f), 11);
  EXPECT_EQ(std::ftell(f), 3);
  std::fclose(f);
}
