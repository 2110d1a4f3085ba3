#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <clocale>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

unsigned long ToWide(Bytes in, wchar_t* out, unsigned long cap) {
  return UTF8ToUnicode(in.data(), in.size(), out, cap);
}

unsigned long Measure(Bytes in) { return UTF8ToUnicode(in.data(), in.size(), nullptr, 0); }

}  // namespace

TEST(Unicode, Utf8ToWideStopsAtIllFormedInput) {
  wchar_t out[8] = {};
  EXPECT_EQ(ToWide({0x41, 0xC3, 0xA9}, out, 8), 2u);
  EXPECT_EQ(out[0], L'A');
  EXPECT_EQ(out[1], 0xE9);
  EXPECT_EQ(ToWide({0xF0, 0x9F, 0x98, 0x80}, out, 8), 1u);
  EXPECT_EQ(out[0], 0x1F600);

  // Overlong NUL, overlong 3-byte, U+D800, above U+10FFFF, 5-byte, truncated (alone and after A),
  // stray continuation, continuation missing: the count is of what came before.
  const std::pair<Bytes, unsigned long> illFormed[] = {
      {{0xC0, 0x80}, 0}, {{0xE0, 0x9F, 0xBF}, 0}, {{0xED, 0xA0, 0x80}, 0}, {{0xF4, 0x90, 0x80, 0x80}, 0},
      {{0xF8, 0x88, 0x80, 0x80, 0x80}, 0}, {{0xE2, 0x82}, 0}, {{0x41, 0xE2, 0x82}, 1}, {{0x41, 0x80, 0x42}, 1},
      {{0x41, 0xC3, 0x41}, 1}};
  for (const auto& [bytes, count] : illFormed) EXPECT_EQ(ToWide(bytes, out, 8), count) << int(bytes[1]);

  EXPECT_EQ(Measure({0x41, 0xE2, 0x82, 0xAC}), 2u);
  EXPECT_EQ(Measure({0x41, 0xE2, 0x82}), 0u);
  EXPECT_EQ(Measure({0x41, 0x42, 0xFF}), 0u);
  // The target end stops too, keeping what was written.
  EXPECT_EQ(ToWide({0x41, 0x42, 0x43}, out, 2), 2u);
  EXPECT_EQ(ToWide({0x41, 0x42}, out, 0), 0u);
}

TEST(Unicode, LegalUtf8Rules) {
  const unsigned char e0[] = {0xE0, 0xA0, 0x80}, ed[] = {0xED, 0x9F, 0xBF}, f4[] = {0xF4, 0x8F, 0xBF, 0xBF};
  EXPECT_TRUE(IsLegalUTF8(e0, 3) && IsLegalUTF8(ed, 3) && IsLegalUTF8(f4, 4));
  const unsigned char c1[] = {0xC1, 0xBF}, f5[] = {0xF5, 0x80, 0x80, 0x80}, bad[] = {0xC3, 0xC0};
  EXPECT_FALSE(IsLegalUTF8(c1, 2) || IsLegalUTF8(f5, 4) || IsLegalUTF8(bad, 2));
  EXPECT_TRUE(IsLegalUTF8Sequence(f4, f4 + 4));
  EXPECT_FALSE(IsLegalUTF8Sequence(f4, f4 + 3));
}

TEST(Unicode, WideToUtf8) {
  const wchar_t text[] = {L'A', 0xE9, 0x20AC, 0x1F600};
  unsigned char out[16] = {};
  EXPECT_EQ(UnicodeToUTF8(text, 4, nullptr, 0), 10u);
  ASSERT_EQ(UnicodeToUTF8(text, 4, out, sizeof out), 10u);
  EXPECT_EQ(Bytes(out, out + 10), (Bytes{0x41, 0xC3, 0xA9, 0xE2, 0x82, 0xAC, 0xF0, 0x9F, 0x98, 0x80}));
  EXPECT_EQ(UnicodeToUTF8(text, 4, out, 5), 3u);  // the euro sign does not fit

  const wchar_t tooLarge[] = {static_cast<wchar_t>(0x110000)};
  EXPECT_EQ(UnicodeToUTF8(tooLarge, 1, nullptr, 0), 3u);
  ASSERT_EQ(UnicodeToUTF8(tooLarge, 1, out, sizeof out), 3u);
  EXPECT_EQ(Bytes(out, out + 3), (Bytes{0xEF, 0xBF, 0xBD}));

  const wchar_t surrogate[] = {L'a', L'b', 0xDC00, L'c'};
  EXPECT_EQ(UnicodeToUTF8(surrogate, 4, nullptr, 0), 0u);
  EXPECT_EQ(UnicodeToUTF8(surrogate, 4, out, sizeof out), 2u);
}

TEST(Unicode, Utf16RoundTripAndSurrogateRules) {
  const wchar_t text[] = {L'A', 0x20AC, 0x1F600};
  unsigned short units[8] = {};
  unsigned char* bytes = reinterpret_cast<unsigned char*>(units);
  EXPECT_EQ(UnicodeToUTF16(text, 3, nullptr, 0), 4u);
  ASSERT_EQ(UnicodeToUTF16(text, 3, bytes, 8), 4u);
  EXPECT_TRUE(units[2] == 0xD83D && units[3] == 0xDE00);
  EXPECT_EQ(UnicodeToUTF16(text, 3, bytes, 3), 2u);  // the pair does not fit

  wchar_t back[8] = {};
  ASSERT_EQ(UTF16ToUnicode(bytes, 4, back, 8), 3u);
  EXPECT_EQ(back[2], 0x1F600);
  EXPECT_EQ(UTF16ToUnicode(bytes, 4, nullptr, 0), 3u);

  // Unaligned UTF-16 input is fine.
  unsigned char odd[1 + 2 * 2] = {0};
  std::memcpy(odd + 1, units, 4);
  EXPECT_EQ(UTF16ToUnicode(odd + 1, 2, back, 8), 2u);

  const unsigned short loneLow[] = {0x41, 0xDC00, 0x42};
  const unsigned short highThenA[] = {0x41, 0xD83D, 0x41};
  const unsigned short highAtEnd[] = {0x41, 0xD83D};
  EXPECT_EQ(ConvertUTF16toUTF32(loneLow, loneLow + 3, back, back + 8), 1u);
  EXPECT_EQ(ConvertUTF16toUTF32(loneLow, loneLow + 3, nullptr, nullptr), 0u);
  EXPECT_EQ(ConvertUTF16toUTF32(highThenA, highThenA + 3, back, back + 8), 1u);
  EXPECT_EQ(ConvertUTF16toUTF32(highAtEnd, highAtEnd + 2, back, back + 8), 1u);
  EXPECT_EQ(ConvertUTF16toUTF32(highAtEnd, highAtEnd + 2, nullptr, nullptr), 0u);

  const wchar_t tooLarge[] = {L'x', static_cast<wchar_t>(0x110000)};
  EXPECT_EQ(UnicodeToUTF16(tooLarge, 2, bytes, 8), 1u);
  EXPECT_EQ(UnicodeToUTF16(tooLarge, 2, nullptr, 0), 0u);
}

TEST(Unicode, Utf8Utf16Direct) {
  const unsigned char utf8[] = {0x41, 0xF0, 0x9F, 0x98, 0x80};
  unsigned short units[4] = {};
  ASSERT_EQ(ConvertUTF8toUTF16(utf8, utf8 + 5, units, units + 4), 3u);
  unsigned char back[8] = {};
  ASSERT_EQ(ConvertUTF16toUTF8(units, units + 3, back, back + 8), 5u);
  EXPECT_EQ(Bytes(back, back + 5), Bytes(utf8, utf8 + 5));
}

TEST(Unicode, WideCharacterChecks) {
  unsigned char ascii[] = "plain", latin[] = "caf\xC3\xA9";
  EXPECT_FALSE(DoesUTF8StrContainAnyCharsLargerThanOneByte(ascii, 5));
  EXPECT_TRUE(DoesUTF8StrContainAnyCharsLargerThanOneByte(latin, 5));
  const wchar_t negative[] = {static_cast<wchar_t>(-1)};
  EXPECT_FALSE(DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(negative, 1));  // signed comparison
  EXPECT_TRUE(DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(L"\u0080", 1));
}

// In the "C" locale only ASCII is representable, so every other character
// turns into '?'.
TEST(Encoder, CLocaleConversions) {
  using KoXmlLib10::CEncoder;
  EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("plain text"), "plain text");
  EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("caf\xC3\xA9!"), "caf?!");
  EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("ok\xE2\x82"), "ok");  // stops at a truncated character
  unsigned char withNul[] = {'a', 0, 'b'};
  EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(withNul, 3), "a");

  wchar_t wbuf[4];
  char cbuf[4];
  EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("x\xC3\xA9y", wbuf, 4, cbuf, 4), "x?y");
  EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("longer \xC3\xA9 text", wbuf, 4, cbuf, 4), "longer ? text");

  EXPECT_EQ(KoXmlLib10::UnicodeToMultiByte(L"a\u00E9b"), "a?b");
  KoXmlLib10::CBinaryData utf8 = CEncoder::UnicodeToUtf8Binary(L"\u00E9");
  EXPECT_EQ(utf8, KoXmlLib10::CBinaryData("\xC3\xA9"));
  EXPECT_EQ(CEncoder::UnicodeToUtf8Binary(L"").GetData(), nullptr);
  EXPECT_EQ(CEncoder::LocalCodePageToUtf8Binary("abc"), KoXmlLib10::CBinaryData("abc"));
  EXPECT_EQ(CEncoder::LocalCodePageToUtf8Binary("a\xFF"), KoXmlLib10::CBinaryData("a?"));

  KoXmlLib10::CBinaryData wide = CEncoder::LocalCodePageToUnicodeBinary("hi");
  ASSERT_EQ(wide.GetLength(), 2 * sizeof(wchar_t));
  EXPECT_EQ(reinterpret_cast<const wchar_t*>(wide.GetData())[1], L'i');

  EXPECT_THROW(CEncoder::Utf16ToLocalCodePage(withNul, 2), std::logic_error);
}

TEST(Encoder, AsciiOnlyPassesBytesThrough) {
  using KoXmlLib10::CEncoder;
  KoXmlLib10::ASCIIOnly(true);
  unsigned char data[] = {'a', 0xC3, 0xA9, 0xFF};
  EXPECT_EQ(CEncoder::Utf8ToLocalCodePage(data, 4), std::string("a\xC3\xA9\xFF"));
  EXPECT_EQ(CEncoder::LocalCodePageToUtf8Binary("\xFF\xFE"), KoXmlLib10::CBinaryData("\xFF\xFE"));
  KoXmlLib10::ASCIIOnly(false);
  EXPECT_FALSE(KoXmlLib10::ASCII_ONLY);
}

TEST(Encoder, Utf8LocaleRoundTrip) {
  const char* previous = std::setlocale(LC_CTYPE, nullptr);
  const std::string saved = previous ? previous : "C";
  if (!std::setlocale(LC_CTYPE, "C.UTF-8")) GTEST_SKIP() << "no C.UTF-8 locale";
  using KoXmlLib10::CEncoder;
  EXPECT_EQ(CEncoder::Utf8ToLocalCodePage("gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80"), "gr\xC3\xBC\xC3\x9F \xF0\x9F\x98\x80");
  EXPECT_EQ(CEncoder::LocalCodePageToUtf8Binary("\xE2\x82\xAC\xFF"), KoXmlLib10::CBinaryData("\xE2\x82\xAC?"));
  EXPECT_EQ(CEncoder::LocalCodePageToUtf8Binary("a\xE2\x82\xAC\xF0\x9F\x98\x80"),
            KoXmlLib10::CBinaryData("a\xE2\x82\xAC\xF0\x9F\x98\x80"));
  EXPECT_EQ(CEncoder::LocalCodePageToUtf8Binary("\xED\xA0\x80"), KoXmlLib10::CBinaryData("???"));  // a surrogate
  EXPECT_EQ(KoXmlLib10::UnicodeToMultiByte(L"\u20AC"), "\xE2\x82\xAC");
  std::setlocale(LC_CTYPE, saved.c_str());
}
