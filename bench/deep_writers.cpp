// The cost per element of both writers on deeply nested documents, against
// the same elements written side by side under one root, in the same run.
//
// Every element is `d:node` in a namespace declared on the root with an
// attribute, so that each start tag resolves its namespace in the scope it
// inherits; the innermost holds a text. The flat document makes exactly the
// same calls at depth 1. Writing costs O(elements) when the two take the
// same time per element (items_per_second), whatever the depth.
// The text writer runs without formatting: indented, the tabs alone grow
// with the square of the depth.

#include <benchmark/benchmark.h>

#include <KoXmlLib10.h>

#include <clocale>
#include <string>

using namespace KoXmlLib10;

namespace {

constexpr char kDeep[] = "urn:example:deep";
const std::string kNamespace = kDeep;
const std::string kNode = "node";
const std::string kAttribute = "n";
const std::string kValue = "1";
const std::string kEmpty;

void Element(CXmlWriter& writer) {
  writer.WriteStartElement(kNode, kNamespace);
  writer.WriteAttributeString(kAttribute, kEmpty, kValue, ItemType_string);
}

// `count` elements below the root: nested in each other, or side by side.
void WriteElements(CXmlWriter& writer, int count, bool nested) {
  writer.AddNamespace("d", kDeep);
  writer.WriteStartElement("root", kDeep);
  for (int i = 0; i < count; ++i) {
    Element(writer);
    if (!nested) writer.WriteEndElement();
  }
  if (nested) {
    writer.WriteString("leaf", ItemType_string);
    for (int i = 0; i < count; ++i) writer.WriteEndElement();
  }
  writer.WriteEndElement();
}

size_t WriteText(int count, bool nested) {
  CTextStream stream(XmlEncoding_UTF8);
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(false);
  writer.WriteStartDocument();
  WriteElements(writer, count, nested);
  writer.Close();
  return stream.GetLength();
}

size_t WriteFastInfoset(int count, bool nested) {
  CFastInfosetContext context;
  CBinaryStream stream;
  CFastInfosetWriter writer(context, stream);
  writer.WriteStartDocument(FInfoDeclNone);
  WriteElements(writer, count, nested);
  writer.WriteEndDocument();
  return stream.GetBinaryStream().GetLength();
}

template <size_t (*Write)(int, bool), bool Nested>
void BM_Write(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  size_t size = 0;
  for (auto _ : state) benchmark::DoNotOptimize(size = Write(count, Nested));
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * count);
  state.counters["output_KB"] = static_cast<double>(size) / 1e3;
}

void Depths(benchmark::internal::Benchmark* b) {
  b->Arg(10000)->Arg(40000)->Arg(200000)->Unit(benchmark::kMillisecond);
}

// Baselines first: the same elements side by side.
BENCHMARK_TEMPLATE(BM_Write, WriteText, false)->Name("TextWriter_Flat_Baseline")->Apply(Depths);
BENCHMARK_TEMPLATE(BM_Write, WriteText, true)->Name("TextWriter_Nested")->Apply(Depths);
BENCHMARK_TEMPLATE(BM_Write, WriteFastInfoset, false)->Name("FastInfosetWriter_Flat_Baseline")->Apply(Depths);
BENCHMARK_TEMPLATE(BM_Write, WriteFastInfoset, true)->Name("FastInfosetWriter_Nested")->Apply(Depths);

}  // namespace

int main(int argc, char** argv) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
