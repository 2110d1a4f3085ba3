// Utf8ToLocalCodePage on the text shapes readers feed it: short element names
// and text chunks. The pure-ASCII cases skip the per-character locale calls;
// the baseline is the same text with one accented letter, which takes the
// full wide-character route.
#include <benchmark/benchmark.h>

#include <KoXmlLib10.h>

#include <string>

namespace {

using KoXmlLib10::CEncoder;

void Convert(benchmark::State& state, std::string text) {
  wchar_t wide[128];
  char narrow[512];
  auto* data = reinterpret_cast<unsigned char*>(text.data());
  const int length = static_cast<int>(text.size());
  for (auto _ : state)
    benchmark::DoNotOptimize(CEncoder::Utf8ToLocalCodePage(data, length, wide, 128, narrow, 512));
  state.SetBytesProcessed(state.iterations() * length);
}

const std::string kName = "PurchaseOrder";
const std::string kChunk(100, 'x');

void BM_AsciiName(benchmark::State& state) { Convert(state, kName); }
void BM_AccentedName_Baseline(benchmark::State& state) { Convert(state, "Purchas\xC3\xA9Order"); }
void BM_AsciiChunk(benchmark::State& state) { Convert(state, kChunk); }
void BM_AccentedChunk_Baseline(benchmark::State& state) { Convert(state, kChunk.substr(2) + "\xC3\xA9"); }

}  // namespace

BENCHMARK(BM_AsciiName);
BENCHMARK(BM_AccentedName_Baseline);
BENCHMARK(BM_AsciiChunk);
BENCHMARK(BM_AccentedChunk_Baseline);
BENCHMARK_MAIN();
