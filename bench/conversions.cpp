// The conversions a reader and writer run on every value, each next to the
// bare C library call it wraps (the baseline), and the pattern facet with the
// per-thread compiled-pattern cache against compiling on every check.
#include <benchmark/benchmark.h>

#include <KoXmlLib10.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using KoXmlLib10::CConversions;
using KoXmlLib10::TestRegEx;
constexpr auto kCollapse = KoXmlLib10::CWhitespaceUtils::WhitespaceRule_Collapse;

void BM_i4FromString(benchmark::State& state) {
  const std::string text = "1234567";
  for (auto _ : state) benchmark::DoNotOptimize(CConversions::i4FromString(text, kCollapse));
}

void BM_strtol_Baseline(benchmark::State& state) {
  const std::string text = "1234567";
  for (auto _ : state) benchmark::DoNotOptimize(std::strtol(text.c_str(), nullptr, 10));
}

void BM_decimalFromString(benchmark::State& state) {
  const std::string text = "12345.678";
  for (auto _ : state) benchmark::DoNotOptimize(CConversions::decimalFromString(text, kCollapse));
}

void BM_datetimeFromString(benchmark::State& state) {
  const std::string text = "2001-10-26T21:32:52.125Z";
  for (auto _ : state) benchmark::DoNotOptimize(CConversions::datetimeFromString(text, kCollapse));
}

void BM_booleanFromString(benchmark::State& state) {
  const std::string text = "true";
  for (auto _ : state) benchmark::DoNotOptimize(CConversions::booleanFromString(text, kCollapse));
}

void BM_r8ToString(benchmark::State& state) {
  double value = 1234.5678;
  for (auto _ : state) {
    benchmark::DoNotOptimize(value);
    benchmark::DoNotOptimize(CConversions::r8ToString(value));
  }
}

void BM_snprintf_Baseline(benchmark::State& state) {
  double value = 1234.5678;
  char buffer[48];
  for (auto _ : state) {
    benchmark::DoNotOptimize(value);
    benchmark::DoNotOptimize(std::snprintf(buffer, sizeof buffer, "%.16g", value));
  }
}

void BM_dateFromString(benchmark::State& state) {
  const std::string text = "2001-10-26";
  for (auto _ : state) benchmark::DoNotOptimize(CConversions::dateFromString(text, kCollapse));
}

void BM_dateToString(benchmark::State& state) {
  const auto value = CConversions::dateFromString("2001-10-26", kCollapse);
  for (auto _ : state) benchmark::DoNotOptimize(CConversions::dateToString(value));
}

void BM_integerFromString(benchmark::State& state) {
  const std::string text = "42";
  for (auto _ : state) benchmark::DoNotOptimize(CConversions::integerFromString(text, kCollapse));
}

void BM_decimalToString(benchmark::State& state) {
  const auto value = CConversions::decimalFromString("320.20", kCollapse);
  for (auto _ : state) benchmark::DoNotOptimize(CConversions::decimalToString(value));
}

// A value's trip through a property: parsed into a variant, then handed to
// the member, which is what reading does for every element. The string is
// longer than std::string keeps inline, so copies cost allocations.
const std::string kDescription = "Stainless steel kettle, 1.7 litres, cordless";

void BM_VariantStringGetCopy(benchmark::State& state) {
  std::string member;
  for (auto _ : state) {
    KoXmlLib10::KoVariant value;
    value.FromString(kDescription, KoXmlLib10::ItemType_string, KoXmlLib10::CWhitespaceUtils::WhitespaceRule_Preserve);
    member = value.GetString();
    benchmark::DoNotOptimize(member);
  }
}

void BM_VariantStringTake(benchmark::State& state) {
  std::string member;
  for (auto _ : state) {
    KoXmlLib10::KoVariant value;
    value.FromString(kDescription, KoXmlLib10::ItemType_string, KoXmlLib10::CWhitespaceUtils::WhitespaceRule_Preserve);
    member = value.TakeString();
    benchmark::DoNotOptimize(member);
  }
}

void BM_VariantDecimalRoundTrip(benchmark::State& state) {
  KoXmlLib10::CDecimal member;
  for (auto _ : state) {
    KoXmlLib10::KoVariant value;
    value.FromString("320.20", KoXmlLib10::ItemType_decimal, kCollapse);
    member = value.GetDecimal();
    KoXmlLib10::KoVariant out;
    out.SetDecimal(member);
    benchmark::DoNotOptimize(out.ToString(nullptr));
  }
}

const std::string kPattern = "[A-Z]{3}-[0-9]{4}";
const std::string kValue = "ABC-1234";

void BM_PatternCached(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(TestRegEx(kPattern, kValue));
}

// The same expression under many spellings (a PCRE comment carries a
// number), visited in turn: more of them than a thread keeps compiled, so
// every check compiles its pattern anew.
void BM_PatternUncached_Baseline(benchmark::State& state) {
  std::vector<std::string> patterns;
  for (int i = 0; i < 1024; ++i) patterns.push_back(kPattern + "(?#" + std::to_string(i) + ")");
  size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(TestRegEx(patterns[next], kValue));
    next = (next + 1) % patterns.size();
  }
}

}  // namespace

BENCHMARK(BM_i4FromString);
BENCHMARK(BM_strtol_Baseline);
BENCHMARK(BM_decimalFromString);
BENCHMARK(BM_datetimeFromString);
BENCHMARK(BM_booleanFromString);
BENCHMARK(BM_dateFromString);
BENCHMARK(BM_dateToString);
BENCHMARK(BM_integerFromString);
BENCHMARK(BM_decimalToString);
BENCHMARK(BM_VariantStringGetCopy);
BENCHMARK(BM_VariantStringTake);
BENCHMARK(BM_VariantDecimalRoundTrip);
BENCHMARK(BM_r8ToString);
BENCHMARK(BM_snprintf_Baseline);
BENCHMARK(BM_PatternCached);
BENCHMARK(BM_PatternUncached_Baseline);
BENCHMARK_MAIN();
