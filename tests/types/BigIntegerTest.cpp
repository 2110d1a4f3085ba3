#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <KoXmlLib10.h>

#include "support/Throws.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

std::string Str(const CBigInteger& v) { return v.ToString(); }

// Digit text made of 9-digit blocks that favour the awkward limb values of
// long division (0, 1, half the base, all nines) over plain random ones.
std::string AwkwardDigits(std::mt19937_64& rng, int blocks) {
  static const char* const kBlocks[] = {"000000000", "000000001", "500000000", "999999999"};
  std::string text = "1";
  for (int i = 0; i < blocks; ++i) {
    if (rng() % 3 == 0) {
      text += std::to_string(100000000 + rng() % 900000000);
    } else {
      text += kBlocks[rng() % 4];
    }
  }
  return text;
}

}  // namespace

TEST(BigInteger, ParsesIntegerTextAndZeroHasNoSign) {
  const CBigInteger minusZero("-0");
  EXPECT_EQ(Str(minusZero), "0");
  EXPECT_TRUE(minusZero == CBigInteger(0));
  EXPECT_FALSE(minusZero < CBigInteger(0));
  EXPECT_FALSE(CBigInteger(0) < minusZero);
  const char* const texts[][2] = {{"000123", "123"}, {"  -42  ", "-42"}, {"\t-42\n", "-42"}, {"+5", "5"},
                                  {"12 34", "34"}, {"", "0"}, {"-", "0"}, {"999999999999999999", "999999999999999999"},
                                  {"9999999999999999999", "9999999999999999999"},
                                  {"-18446744073709551616", "-18446744073709551616"}, {"1.9", "2"}, {"1.5", "1"},
                                  {"2.5", "2"}, {"2.51", "3"}, {"-1.9", "-2"}, {"-2.5", "-2"}, {"-0.4", "0"},
                                  {"0.99999999999999999999999999999999", "1"}, {"1.5e3", "1500"}};
  for (const auto& t : texts) EXPECT_EQ(Str(CBigInteger(t[0])), t[1]) << t[0];
  EXPECT_EQ(Str(CBigInteger(nullptr)), "0");
  EXPECT_EQ(Str(CBigInteger(INT_MIN)), "-2147483648");
  EXPECT_EQ(Str(CBigInteger(5) - CBigInteger(5)), "0");
  EXPECT_EQ(Str(CBigInteger(-5) + CBigInteger(5)), "0");
  EXPECT_EQ(Str(CBigInteger(0).GetNegative()), "0");
  EXPECT_EQ(Str(CBigInteger(-3) * CBigInteger(0)), "0");
}

TEST(BigInteger, NonIntegerTextIsRoundedHalfTowardZero) {
  EXPECT_TRUE(Throws<CKoInvalidValueException>([] { CBigInteger v("12a"); },
            "The string representing a Decimal, contained an invalid char at position 2 [12a]"));

  // Odd integers from 2^52 on sit next to no half: they stay as they are.
  const std::pair<double, const char*> doubles[] = {
      {2.5, "2"}, {2.6, "3"}, {-2.5, "-2"}, {-2.6, "-3"}, {-0.4, "0"}, {4503599627370497.0, "4503599627370497"},
      {-9007199254740991.0, "-9007199254740991"}, {4503599627370495.5, "4503599627370495"},
      {1e22, "10000000000000000000000"}, {std::ldexp(1.0, 70), "1180591620717411303424"},
      {-std::ldexp(1.0, 64), "-18446744073709551616"}};
  for (const auto& [value, printed] : doubles) EXPECT_EQ(Str(CBigInteger(value)), printed) << printed;
  const std::string nonFinite = "ERROR: Infinity or NaN can not be converted to an integer.";
  EXPECT_TRUE(Throws<CKoInvalidValueException>([] { CBigInteger v(HUGE_VAL); }, nonFinite));
  EXPECT_TRUE(Throws<CKoInvalidValueException>([] { CBigInteger v(std::nan("")); }, nonFinite));
}

TEST(BigInteger, DivisionTruncatesAndRejectsDivisors) {
  const int quotients[][3] = {{7, -2, -3}, {-7, 2, -3}, {-7, -2, 3}, {0, -2, 0}};
  for (const auto& q : quotients)
    EXPECT_EQ(Str(CBigInteger(q[0]) / CBigInteger(q[1])), std::to_string(q[2])) << q[0] << "/" << q[1];
  const int remainders[][3] = {{7, 2, 1}, {-7, 2, -1}, {-6, 2, 0}};
  for (const auto& r : remainders)
    EXPECT_EQ(Str(CBigInteger(r[0]) % CBigInteger(r[1])), std::to_string(r[2])) << r[0] << "%" << r[1];

  CBigInteger x(7);
  EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { x / CBigInteger(0); },
            "ERROR: Overflow in operator/."));
  for (int divisor : {0, -2}) {
    EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { x /= CBigInteger(divisor); },
              "ERROR: Overflow in operator /=."));
    EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { x % CBigInteger(divisor); },
              "ERROR: Overflow in operator%."));
    EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { x %= CBigInteger(divisor); },
              "ERROR: Overflow in operator%=."));
  }
  EXPECT_EQ(Str(x), "7");
  x /= CBigInteger(2);
  EXPECT_EQ(Str(x), "3");
  x %= CBigInteger(2);
  EXPECT_EQ(Str(x), "1");
}

TEST(BigInteger, LongDivisionOfManyLimbs) {
  std::mt19937_64 rng(12345);
  for (int round = 0; round < 400; ++round) {
    const CBigInteger a(AwkwardDigits(rng, 2 + static_cast<int>(rng() % 45)).c_str());
    CBigInteger b(AwkwardDigits(rng, static_cast<int>(rng() % 20)).c_str());
    if (round % 2) b.Negate();
    const CBigInteger q = a / b;
    const CBigInteger r = a % b.GetAbs();
    ASSERT_TRUE(q * b + r == a) << Str(a) << " / " << Str(b);
    ASSERT_TRUE(r >= CBigInteger(0) && r < b.GetAbs()) << Str(a) << " % " << Str(b);
  }
  const CBigInteger nines(std::string(300, '9').c_str());
  EXPECT_EQ(Str(nines * nines), std::string(299, '9') + "8" + std::string(299, '0') + "1");
  EXPECT_TRUE((nines * nines) / nines == nines);
  const std::string digits500 = "7" + std::string(498, '0') + "3";
  EXPECT_EQ(Str(CBigInteger(digits500.c_str())), digits500);
  EXPECT_EQ(Str(CBigInteger::Pow10(20)), "100000000000000000000");
}

TEST(BigInteger, SquareRootAndIntConversion) {
  for (const auto& [n, root] : {std::pair{99, 9}, {100, 10}, {3, 1}, {1, 1}, {0, 0}})
    EXPECT_EQ(Str(CBigInteger(n).SquareRoot()), std::to_string(root)) << n;
  const CBigInteger big = CBigInteger::Pow10(100) + CBigInteger(1);
  EXPECT_TRUE((big * big - CBigInteger(1)).SquareRoot() == CBigInteger::Pow10(100));
  EXPECT_TRUE((big * big).SquareRoot() == big);
  EXPECT_TRUE(Throws<CKoInvalidValueException>([] { CBigInteger(-4).SquareRoot(); },
            "ERROR: Negative Number in function SquareRoot()."));

  EXPECT_EQ(static_cast<int>(CBigInteger("2147483647")), INT_MAX);
  EXPECT_EQ(static_cast<int>(CBigInteger("-2147483648")), INT_MIN);
  for (const char* outside : {"2147483648", "-2147483649", "1000000000000000000000"}) {
    EXPECT_TRUE(Throws<CKoInvalidValueException>([&] { (void)static_cast<int>(CBigInteger(outside)); },
              "ERROR: Value out of bound of int."))
        << outside;
  }

  CBigInteger v(5);
  -v;
  EXPECT_EQ(Str(v), "-5");
  v.Abs();
  EXPECT_EQ(Str(v), "5");
  EXPECT_TRUE(CBigInteger(-10) < CBigInteger(-9));
  EXPECT_TRUE(CBigInteger(-1) < CBigInteger(0));
  EXPECT_TRUE(CBigInteger(123456789) * CBigInteger(1000000000) > CBigInteger(999999999));
}

TEST(BigInteger, LimitsAreBuiltFromText) {
  EXPECT_EQ(Str(CBigInteger::MAX_LONG) + " " + Str(CBigInteger::MIN_LONG), "2147483647 -2147483648");
  EXPECT_EQ(Str(CBigInteger::MAX_LONGLONG) + " " + Str(CBigInteger::MIN_LONGLONG),
            "9223372036854775807 -9223372036854775808");
  const std::string zeros(307, '0');
  EXPECT_EQ(Str(CBigInteger::MAX_DOUBLE) + " " + Str(CBigInteger::MIN_DOUBLE), "17" + zeros + " -17" + zeros);
}

// Short digit text is read without the general scan; a trailing space sends
// the same text through the general scan, which must agree in every case.
TEST(BigInteger, ShortTextReadsLikeTheGeneralScan) {
  std::mt19937_64 rng(7);
  for (int i = 0; i < 2000; ++i) {
    std::string text = rng() % 3 == 0 ? "-" : "";
    const int digits = static_cast<int>(rng() % 21);
    for (int d = 0; d < digits; ++d) text += static_cast<char>('0' + (d == 0 && rng() % 2 ? 0 : rng() % 10));
    const CBigInteger quick(text.c_str());
    const CBigInteger general((text + " ").c_str());
    ASSERT_EQ(Str(quick), Str(general)) << text;
    ASSERT_TRUE(quick == general) << text;
    ASSERT_EQ(quick < CBigInteger(0), general < CBigInteger(0)) << text;
  }
}

// Up to four limbs live inside the value, more on the heap: copies, moves and
// reuse must give the same results on both sides of that line.
TEST(BigInteger, ValuesAcrossTheInlineLimitCopyAndMove) {
  std::vector<CBigInteger> values;
  for (unsigned int digits : {1u, 9u, 10u, 35u, 36u, 37u, 45u, 90u}) values.push_back(CBigInteger::Pow10(digits - 1));
  for (size_t i = 0; i < values.size(); ++i) {
    for (size_t j = 0; j < values.size(); ++j) {
      CBigInteger target = values[i];
      target = values[j];  // into storage of the other size
      EXPECT_TRUE(target == values[j]);
      CBigInteger moved(std::move(target));
      EXPECT_TRUE(moved == values[j]);
      target = values[i];  // a moved-from value is usable again
      EXPECT_TRUE(target == values[i]);
      target = std::move(moved);
      EXPECT_TRUE(target == values[j]);
      const CBigInteger& self = target;
      target = self;
      EXPECT_TRUE(target == values[j]);
    }
  }
  // Growing in place past the inline room and shrinking back.
  CBigInteger grow(1);
  std::string expected = "1";
  for (int i = 0; i < 60; ++i) {
    grow *= CBigInteger(10);
    expected += '0';
    ASSERT_EQ(Str(grow), expected);
  }
  grow /= CBigInteger::Pow10(59);
  EXPECT_EQ(Str(grow), "10");
  EXPECT_EQ(Str(CBigInteger::Pow10(40) - CBigInteger::Pow10(40) + CBigInteger(7)), "7");
}

// The limb vector behaves as a vector does, and stays in the object while
// four limbs suffice.
TEST(BigInteger, LimbVectorOperations) {
  using Digits = CBigInteger::Digits;
  auto items = [](const Digits& v) { return std::vector<std::uint32_t>(v.begin(), v.end()); };
  Digits v;
  EXPECT_TRUE(v.empty());
  const size_t inlineRoom = v.capacity();
  v.assign(1, 7);
  v.resize(3);
  v.push_back(9);
  EXPECT_EQ(items(v), (std::vector<std::uint32_t>{7, 0, 0, 9}));
  EXPECT_EQ(v.capacity(), inlineRoom);  // no growth while the limbs fit
  v.insert(v.begin(), 3, 1);
  EXPECT_EQ(items(v), (std::vector<std::uint32_t>{1, 1, 1, 7, 0, 0, 9}));
  v.erase(v.begin() + 1, v.begin() + 4);
  EXPECT_EQ(items(v), (std::vector<std::uint32_t>{1, 0, 0, 9}));
  v.assign(v.begin() + 2, v.end());  // from its own storage
  EXPECT_EQ(items(v), (std::vector<std::uint32_t>{0, 9}));
  Digits big(40, 5);
  big.assign(big.begin() + 1, big.begin() + 31);
  EXPECT_EQ(items(big), std::vector<std::uint32_t>(30, 5));
  Digits moved(std::move(big));
  EXPECT_EQ(moved.size(), 30u);
  EXPECT_TRUE(big.empty());
  big = moved;
  v = std::move(moved);
  EXPECT_EQ(items(v), items(big));
  EXPECT_EQ(items(Digits{4, 5}), (std::vector<std::uint32_t>{4, 5}));
  EXPECT_EQ(Digits{0}.back(), 0u);
}
