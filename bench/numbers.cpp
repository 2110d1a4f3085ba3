// Big integers and decimals. The everyday case is a price with two fraction
// digits read from a document, written back and compared with a limit; its
// baseline does the same with strtod, snprintf and a double comparison. The
// large cases (hundreds of digits) show that size costs stay polynomial.
#include <benchmark/benchmark.h>

#include <KoXmlLib10.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using KoXmlLib10::CBigInteger;
using KoXmlLib10::CDecimal;

std::vector<std::string> MakePrices() {
  std::vector<std::string> prices;
  unsigned int seed = 12345;
  for (int i = 0; i < 256; ++i) {
    seed = seed * 1103515245u + 12345u;
    char text[32];
    std::snprintf(text, sizeof text, "%u.%02u", (seed >> 8) % 100000, (seed >> 20) % 100);
    prices.push_back(text);
  }
  return prices;
}

const std::vector<std::string> kPrices = MakePrices();

// Digits that cycle through 1..9, so no limb is trivially zero.
std::string Digits(size_t count) {
  std::string text;
  for (size_t i = 0; i < count; ++i) text += static_cast<char>('1' + i % 9);
  return text;
}

void BM_Price_ParsePrintCompare(benchmark::State& state) {
  const CDecimal limit("50000.00");
  for (auto _ : state) {
    for (const std::string& price : kPrices) {
      const CDecimal value(price.c_str());
      std::string text = value.ToString();
      bool above = value > limit;
      benchmark::DoNotOptimize(text);
      benchmark::DoNotOptimize(above);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPrices.size()));
}

void BM_Price_Baseline_strtod_snprintf(benchmark::State& state) {
  const double limit = std::strtod("50000.00", nullptr);
  for (auto _ : state) {
    for (const std::string& price : kPrices) {
      const double value = std::strtod(price.c_str(), nullptr);
      char buffer[64];
      std::snprintf(buffer, sizeof buffer, "%.2f", value);
      std::string text = buffer;
      bool above = value > limit;
      benchmark::DoNotOptimize(text);
      benchmark::DoNotOptimize(above);
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kPrices.size()));
}

void BM_Decimal500Digits_ParsePrint(benchmark::State& state) {
  // 470 integer and 30 fraction digits: all 500 survive the round trip.
  const std::string text = Digits(470) + "." + Digits(30);
  for (auto _ : state) {
    std::string printed = CDecimal(text.c_str()).ToString();
    benchmark::DoNotOptimize(printed);
  }
}

void BM_BigInteger300x300_Multiply(benchmark::State& state) {
  const CBigInteger a(Digits(300).c_str());
  const CBigInteger b(("9" + Digits(299)).c_str());
  for (auto _ : state) benchmark::DoNotOptimize(a * b);
}

void BM_BigInteger400By7_Divide(benchmark::State& state) {
  const CBigInteger a(Digits(400).c_str());
  const CBigInteger b("9876543");
  for (auto _ : state) benchmark::DoNotOptimize(a / b);
}

void BM_BigInteger400By150_Divide(benchmark::State& state) {
  const CBigInteger a(Digits(400).c_str());
  const CBigInteger b(("7" + Digits(149)).c_str());
  for (auto _ : state) benchmark::DoNotOptimize(a / b);
}

}  // namespace

BENCHMARK(BM_Price_ParsePrintCompare);
BENCHMARK(BM_Price_Baseline_strtod_snprintf);
BENCHMARK(BM_Decimal500Digits_ParsePrint);
BENCHMARK(BM_BigInteger300x300_Multiply);
BENCHMARK(BM_BigInteger400By7_Divide);
BENCHMARK(BM_BigInteger400By150_Divide);
BENCHMARK_MAIN();
