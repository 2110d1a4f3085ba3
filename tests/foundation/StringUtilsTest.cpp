#include <gtest/gtest.h>

#include <KoXmlLib10.h>

using namespace KoXmlLib10;

TEST(StringUtils, FractionSuffix) {
  const struct { int milli, micro, nano; const char* suffix; } cases[] = {
      {0, 0, 0, ""}, {500, 0, 0, ".5"}, {120, 0, 0, ".12"}, {0, 250, 0, ".00025"},
      {1, 2, 3, ".001002003"}, {0, 0, 5, ".000000005"}};
  for (const auto& c : cases) EXPECT_EQ(ToFracString(c.milli, c.micro, c.nano), c.suffix) << c.suffix;
}

TEST(StringUtils, TrimAndPad) {
  for (const auto& [text, trimmed] : {std::pair{"500", "5"}, {"000", "0"}, {"0", "0"}, {"", ""}})
    EXPECT_EQ(TrimTrainingZeros(text), trimmed) << text;
  EXPECT_EQ(PadZero(7, 3) + " " + PadZero(-7, 3) + " " + PadZero(12345, 2), "007 -07 12345");
}

TEST(StringUtils, FindReplaceRestartsAndTerminates) {
  // Restarting from the front collapses every 'a'; a replacement may contain
  // the search text; an empty search text changes nothing.
  const char* const cases[][4] = {
      {"aaab", "ab", "b", "b"}, {"x&y&", "&", "&amp;", "x&amp;y&amp;"}, {"abc", "", "z", "abc"}};
  for (const auto& c : cases) {
    std::string s = c[0];
    FindReplace(s, c[1], c[2]);
    EXPECT_EQ(s, c[3]) << c[0];
  }
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
