#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include <KoXmlLib10.h>

using namespace KoXmlLib10;

// The format edge cases below are deliberate.
#pragma GCC diagnostic ignored "-Wformat-zero-length"
#pragma GCC diagnostic ignored "-Wformat-overflow"

TEST(Exceptions, FullMessageJoinsChainOutermostFirst) {
  CKoException plain("only");
  EXPECT_EQ(plain.GetFullMessage(), plain.GetMessage());

  CKoException chain("a", CKoValidationException("b", CKoInvalidValueException("c")));
  EXPECT_EQ(chain.GetFullMessage(), "a\nb\nc");

  CKoException emptyInner("outer", CKoException(""));
  EXPECT_EQ(emptyInner.GetFullMessage(), "outer\n");
}

TEST(Exceptions, InnerKeepsDynamicClassAndIsAPrivateClone) {
  auto* inner = new CKoInvalidValueException("x");
  CKoValidationException outer("outer", *inner);
  delete inner;
  ASSERT_NE(outer.GetInnerException(), nullptr);
  EXPECT_NE(dynamic_cast<const CKoInvalidValueException*>(outer.GetInnerException()), nullptr);
  EXPECT_EQ(outer.GetInnerException()->GetMessage(), "x");

  std::unique_ptr<CKoException> clone(outer.Clone());
  EXPECT_NE(dynamic_cast<CKoValidationException*>(clone.get()), nullptr);
  EXPECT_NE(clone->GetInnerException(), outer.GetInnerException());
  EXPECT_EQ(clone->GetFullMessage(), "outer\nx");
}

TEST(Exceptions, ConversionAndSelfAssignment) {
  CKoException base("m", CKoInvalidStateException("s"));
  CKoOverFlowException converted(base);
  EXPECT_EQ(converted.GetFullMessage(), "m\ns");

  CKoException e("self", CKoException("inner"));
  const CKoException& alias = e;
  e = alias;
  EXPECT_EQ(e.GetFullMessage(), "self\ninner");

  e = CKoException("u");  // assigning an exception without an inner one drops the old inner
  EXPECT_EQ(e.GetInnerException(), nullptr);
  EXPECT_EQ(e.GetFullMessage(), "u");
}

TEST(Exceptions, CaughtThroughTheHierarchy) {
  try {
    throw CKoInvalidNamespaceException("ns");
  } catch (const CKoValidationException& e) {
    EXPECT_EQ(e.GetMessage(), "ns");
    return;
  }
  FAIL();
}

TEST(FormatString, Placeholders) {
  EXPECT_EQ(FormatString("Index %d is out of range, use 0 - %d", 5, 3),
            "Index 5 is out of range, use 0 - 3");
  EXPECT_EQ(FormatString("") + FormatString("100%%") + FormatString("[%s]", "abc") + FormatString("%c%c", 'o', 'k'),
            "100%[abc]ok");
}

TEST(FormatString, EstimateNeverTruncatesKnownConversions) {
  const char* none = nullptr;
  EXPECT_EQ(FormatString("%s", none), "(null)");
  EXPECT_EQ(FormatString("%.2s|%5s", "abcdef", "ab"), "ab|   ab");
  EXPECT_EQ(FormatString("%*d", 40, 7), std::string(39, ' ') + "7");
  EXPECT_EQ(FormatString("%-*d|", 35, 7), "7" + std::string(34, ' ') + "|");
  EXPECT_EQ(FormatString("%.40d", 1), std::string(39, '0') + "1");
  EXPECT_EQ(FormatString("%f", 1e300).size(), std::string("1").size() + 300 + 7);
  EXPECT_EQ(FormatString("%.3f", -2.5), "-2.500");
  EXPECT_EQ(FormatString("%30.20f", 3.0), std::string(8, ' ') + "3.00000000000000000000");
  EXPECT_EQ(FormatString("%g", 1e-300), "1e-300");
  EXPECT_EQ(FormatString("%ls", L"wide"), "wide");
  EXPECT_EQ(FormatString("%#x", 255), "0xff");
}

TEST(FormatString, ReadsArgumentsOnlyAsPrintfDoes) {
  // Later string arguments are only found when earlier ones are stepped
  // over by their real size.
  EXPECT_EQ(FormatString("%zu %s", static_cast<size_t>(5), "tail"), "5 tail");
  EXPECT_EQ(FormatString("%lld %s", -(1LL << 40), "tail"), "-1099511627776 tail");
  EXPECT_EQ(FormatString("%lu %jd %td %s", 7ul, static_cast<intmax_t>(-8), static_cast<ptrdiff_t>(9), "tail"),
            "7 -8 9 tail");
  EXPECT_EQ(FormatString("%.2Lf %s", 2.5L, "tail"), "2.50 tail");
  // A precision bounds the reading of an unterminated string.
  const std::unique_ptr<char[]> unterminated(new char[3]{'a', 'b', 'c'});
  EXPECT_EQ(FormatString("%.*s|%.2s", 3, unterminated.get(), unterminated.get()), "abc|ab");
  // An absurd width neither overflows the estimate nor crashes.
  (void)FormatString("%99999999999d|", 1);
}
