// Throughput of the XML text writer on a large data-oriented document, against
// plain copies of the same output bytes measured in the same run.
//
// The writer calls of the document are generated once, deterministically, and
// replayed in every iteration: into a memory text stream, and into a file text
// stream. Baselines: one memcpy of the finished output, a memcpy of it in the
// pieces the writer produces (one per call), and fwrite of it to a file. The
// replay into a writer that writes nothing shows what reading the recorded
// calls and dispatching them costs on its own.

#include <benchmark/benchmark.h>

#include <KoXmlLib10.h>

#include "WriterDocument.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace KoXmlLib10;
using namespace WriterDocument;

namespace {

void WriteDocument(CTextStream& stream) {
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(true);
  writer.SetEOLType(EOLTypeLF);
  writer.WriteStartDocument();
  Replay(writer, Document());
  writer.Close();
}

// The finished document and the size of what each writer call added to it.
struct Output {
  std::string text;
  std::vector<size_t> pieces;
};

const Output& ExpectedOutput() {
  static const Output output = [] {
    Output result;
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.WriteStartDocument();
    size_t before = 0;
    const std::vector<Call>& calls = Document();
    for (size_t i = 0; i < calls.size(); ++i) {
      Replay(writer, {calls[i]});
      result.pieces.push_back(stream.GetLength() - before);
      before = stream.GetLength();
    }
    writer.Close();
    result.text = stream.GetText();
    return result;
  }();
  return output;
}

std::string TempFile(const char* name) {
  const char* dir = std::getenv("TMPDIR");
  return std::string(dir && *dir ? dir : "/tmp") + "/koxml_bench_" + name;
}

void SetBytes(benchmark::State& state) {
  const size_t size = ExpectedOutput().text.size();
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
  state.counters["output_MB"] = static_cast<double>(size) / 1e6;
}

void BM_WriterToMemory(benchmark::State& state) {
  for (auto _ : state) {
    CTextStream stream(XmlEncoding_UTF8);
    WriteDocument(stream);
    benchmark::DoNotOptimize(stream.GetText());
  }
  SetBytes(state);
}

void BM_WriterToFile(benchmark::State& state) {
  const std::string path = TempFile("writer.xml");
  for (auto _ : state) {
    CFileTextStream stream(path.c_str(), XmlEncoding_UTF8);
    WriteDocument(stream);
  }
  SetBytes(state);
  std::remove(path.c_str());
}

void BM_MemcpyWhole(benchmark::State& state) {
  const std::string& text = ExpectedOutput().text;
  for (auto _ : state) {
    std::vector<char> target(text.size());
    std::memcpy(target.data(), text.data(), text.size());
    benchmark::DoNotOptimize(target.data());
  }
  SetBytes(state);
}

void BM_MemcpyPieces(benchmark::State& state) {
  const Output& output = ExpectedOutput();
  for (auto _ : state) {
    std::vector<char> target(output.text.size());
    size_t at = 0;
    for (size_t piece : output.pieces) {
      std::memcpy(target.data() + at, output.text.data() + at, piece);
      at += piece;
    }
    benchmark::DoNotOptimize(target.data());
  }
  SetBytes(state);
}

void BM_FwriteWhole(benchmark::State& state) {
  const std::string& text = ExpectedOutput().text;
  const std::string path = TempFile("fwrite.xml");
  for (auto _ : state) {
    FILE* file = std::fopen(path.c_str(), "wb");
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
  }
  SetBytes(state);
  std::remove(path.c_str());
}

// Takes every call and writes nothing.
class CNullWriter : public CXmlWriter {
 public:
  void WriteComment(const std::string&) override {}
  void WritePI(const std::string&) override {}
  void WriteInlineSchema(const std::string&) override {}
  void WriteStartElement(const std::string&, const std::string&) override {}
  void WriteString(const std::string&, ItemType) override {}
  void WriteEndElement() override {}
  void WriteAttributeString(const std::string&, const std::string&, const std::string&,
                            ItemType) override {}
  void WriteAttributeType(const std::string&, const std::string&, ItemType) override {}
  void WriteAttributeNil() override {}
};

void BM_ReplayIntoNullWriter(benchmark::State& state) {
  for (auto _ : state) {
    CNullWriter writer;
    Replay(writer, Document());
  }
  SetBytes(state);
}

BENCHMARK(BM_MemcpyWhole)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemcpyPieces)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReplayIntoNullWriter)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriterToMemory)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FwriteWhole)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriterToFile)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  // Applications that write UTF-8 run in a UTF-8 locale; the file stream
  // converts through it.
  std::setlocale(LC_CTYPE, "C.UTF-8");
  ExpectedOutput();  // generate outside the timed runs
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
