// Throughput of the Fast Infoset writer on the large document of the text
// writer's benchmark, against the text writer and a plain copy of the Fast
// Infoset output, all measured in the same run.
//
// Rates are given in bytes of the XML text of the document, so that both
// writers are measured against the same amount of content; the counters give
// the size of each output and the Fast Infoset size relative to the text.

#include <benchmark/benchmark.h>

#include <KoXmlLib10.h>

#include "WriterDocument.h"

#include <clocale>
#include <cstring>
#include <string>
#include <vector>

using namespace KoXmlLib10;
using namespace WriterDocument;

namespace {

std::string WriteText() {
  CTextStream stream(XmlEncoding_UTF8);
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.WriteStartDocument();
  Replay(writer, Document());
  writer.Close();
  return stream.GetText();
}

CBinaryData WriteFastInfoset(const CFastInfosetContext& context) {
  CBinaryStream stream;
  CFastInfosetWriter writer(context, stream);
  writer.WriteStartDocument(FInfoDeclNone);
  Replay(writer, Document());
  writer.WriteEndDocument();
  return stream.GetBinaryStream();
}

const CFastInfosetContext& SuggestedContext() {
  static const CFastInfosetContext context = [] {
    CFastInfosetContext c;
    c.SetSuggestedValues();
    return c;
  }();
  return context;
}

size_t TextSize() {
  static const size_t size = WriteText().size();
  return size;
}

size_t FastInfosetSize() {
  static const size_t size = WriteFastInfoset(CFastInfosetContext()).GetLength();
  return size;
}

void SetBytes(benchmark::State& state, size_t outputSize) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(TextSize()));
  state.counters["output_MB"] = static_cast<double>(outputSize) / 1e6;
  state.counters["of_text"] = static_cast<double>(outputSize) / static_cast<double>(TextSize());
}

void BM_TextWriter(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(WriteText());
  SetBytes(state, TextSize());
}

void BM_FastInfosetWriter(benchmark::State& state) {
  const CFastInfosetContext context;
  for (auto _ : state) benchmark::DoNotOptimize(WriteFastInfoset(context));
  SetBytes(state, FastInfosetSize());
}

// The suggested encodings change only the nil attributes here: the values are strings.
void BM_FastInfosetWriterSuggested(benchmark::State& state) {
  size_t size = 0;
  for (auto _ : state) size = WriteFastInfoset(SuggestedContext()).GetLength();
  SetBytes(state, size);
}

void BM_MemcpyFastInfoset(benchmark::State& state) {
  const std::vector<char> output(FastInfosetSize(), 'x');
  for (auto _ : state) {
    std::vector<char> target(output.size());
    std::memcpy(target.data(), output.data(), output.size());
    benchmark::DoNotOptimize(target.data());
  }
  SetBytes(state, FastInfosetSize());
}

BENCHMARK(BM_MemcpyFastInfoset)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TextWriter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FastInfosetWriter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FastInfosetWriterSuggested)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  TextSize();  // generate outside the timed runs
  FastInfosetSize();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
