// Loading a ~10 MB data-oriented document into the tree: from XML text, from
// gzip-compressed text and from Fast Infoset, each against a bare expat parse
// of the same text with no-op callbacks, measured in the same run.
//
// Throughput is counted in bytes of the XML text for every format, so MB/s
// compare directly. The Fast Infoset form is written from the generator's
// events, which carry the same content without the indentation.
//
// The counter peak_heap_x is the peak of C++ heap in use during one load
// (input copy, inflated data, tree), relative to the size of the text.
// Memory that expat allocates itself is not included: it keeps its own copy
// of the text while it parses, about 1x more for the text loads.

#include <benchmark/benchmark.h>
#include <expat.h>

#include <KoXmlLib10.h>

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "../tools/orders-gen/OrdersGenerator.h"

using namespace KoXmlLib10;

// ---- heap accounting ---------------------------------------------------------

namespace {

// Counting is switched on only for an untimed extra load, so it does not
// weigh on the timings (the benchmarks run on one thread). Blocks are plain
// malloc blocks, as with the default operator new, so the timed loads see
// the allocator they would see without this accounting.
bool g_counting = false;
size_t g_inUse = 0;
size_t g_peak = 0;
size_t g_allocations = 0;

void* Allocate(size_t size) {
  void* block = std::malloc(size ? size : 1);
  if (!block) throw std::bad_alloc();
  if (g_counting) {
    g_inUse += malloc_usable_size(block);
    g_peak = std::max(g_peak, g_inUse);
    ++g_allocations;
  }
  return block;
}

void Free(void* p) {
  if (!p) return;
  if (g_counting) g_inUse -= std::min(g_inUse, malloc_usable_size(p));
  std::free(p);
}

}  // namespace

void* operator new(size_t size) { return Allocate(size); }
void* operator new[](size_t size) { return Allocate(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  try {
    return Allocate(size);
  } catch (...) {
    return nullptr;
  }
}
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* p) noexcept { Free(p); }
void operator delete[](void* p) noexcept { Free(p); }
void operator delete(void* p, size_t) noexcept { Free(p); }
void operator delete[](void* p, size_t) noexcept { Free(p); }

namespace {

constexpr size_t kDocumentBytes = 10u << 20;

const std::string& Text() {
  static const std::string text = OrdersGen::GenerateXml(kDocumentBytes);
  return text;
}

CBinaryData Bytes(const std::string& s) {
  return CBinaryData(reinterpret_cast<unsigned char*>(const_cast<char*>(s.data())), s.size(), false);
}

const CBinaryData& Gzip() {
  static const CBinaryData packed = [] {
    CBinaryData data = Bytes(Text());
    CKoZip::CompressData(data, CompressionTypeGzip);
    return data;
  }();
  return packed;
}

// Writer calls for the generator's events.
class FastInfosetSink : public OrdersGen::IEventSink {
 public:
  explicit FastInfosetSink(CFastInfosetWriter& writer) : m_writer(writer) {}
  void StartElement(std::string_view namespaceUri, std::string_view localName) override {
    m_writer.WriteStartElement(std::string(localName), std::string(namespaceUri));
  }
  void Attribute(std::string_view localName, std::string_view value) override {
    m_writer.WriteAttributeString(std::string(localName), "", std::string(value), ItemType_string);
  }
  void Text(std::string_view text) override { m_writer.WriteString(std::string(text), ItemType_string); }
  void EndElement(std::string_view, std::string_view) override { m_writer.WriteEndElement(); }

 private:
  CFastInfosetWriter& m_writer;
};

const CBinaryData& FastInfoset() {
  static const CBinaryData bytes = [] {
    CFastInfosetContext context;
    CBinaryStream stream;
    CFastInfosetWriter writer(context, stream);
    FastInfosetSink sink(writer);
    writer.WriteStartDocument(FInfoDeclNone);
    OrdersGen::GenerateEvents(kDocumentBytes, sink);
    writer.WriteEndDocument();
    return stream.GetBinaryStream();
  }();
  return bytes;
}

void Report(benchmark::State& state, size_t inputBytes, size_t peakHeap) {
  const double text = static_cast<double>(Text().size());
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(Text().size()));
  state.counters["input_MB"] = static_cast<double>(inputBytes) / 1e6;
  state.counters["peak_heap_x"] = static_cast<double>(peakHeap) / text;
  state.counters["allocs"] = static_cast<double>(g_allocations);
}

// One load per iteration, the document destroyed inside the timing as the
// binding entry points do.
void LoadOnce(const CBinaryData& input) {
  CXmlDocument document;
  document.LoadXmlStream(input.GetData(), input.GetLength());
  benchmark::DoNotOptimize(document.GetDocumentElement());
}

// Peak heap of one load above what was in use before it. Blocks allocated
// before counting started are not subtracted when freed (the min above).
size_t PeakHeap(const CBinaryData& input) {
  g_inUse = g_peak = g_allocations = 0;
  g_counting = true;
  LoadOnce(input);
  g_counting = false;
  return g_peak;
}

void Load(benchmark::State& state, const CBinaryData& input) {
  for (auto _ : state) LoadOnce(input);
  Report(state, input.GetLength(), PeakHeap(input));
}

void XMLCALL NoStart(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL NoEnd(void*, const XML_Char*) {}
void XMLCALL NoText(void*, const XML_Char*, int) {}
void XMLCALL NoNamespace(void*, const XML_Char*, const XML_Char*) {}
void XMLCALL NoNamespaceEnd(void*, const XML_Char*) {}

// The same parser set-up as the text reader's, minus the tree.
void BM_BareExpat_Baseline(benchmark::State& state) {
  const std::string& text = Text();
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
    XML_SetElementHandler(parser, NoStart, NoEnd);
    XML_SetNamespaceDeclHandler(parser, NoNamespace, NoNamespaceEnd);
    XML_SetCharacterDataHandler(parser, NoText);
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK)
      state.SkipWithError("expat rejected the document");
    XML_ParserFree(parser);
  }
  Report(state, text.size(), 0);
}

void BM_LoadText(benchmark::State& state) { Load(state, Bytes(Text())); }

// The same load with the tree's destruction left out of the timing: how the
// time splits between building the tree and freeing it.
void BM_LoadText_DestroyUntimed(benchmark::State& state) {
  const CBinaryData input = Bytes(Text());
  for (auto _ : state) {
    auto document = std::make_unique<CXmlDocument>();
    document->LoadXmlStream(input.GetData(), input.GetLength());
    benchmark::DoNotOptimize(document->GetDocumentElement());
    state.PauseTiming();
    document.reset();
    state.ResumeTiming();
  }
  Report(state, input.GetLength(), PeakHeap(input));
}

void BM_LoadGzip(benchmark::State& state) { Load(state, Gzip()); }

void BM_LoadFastInfoset(benchmark::State& state) { Load(state, FastInfoset()); }

}  // namespace

BENCHMARK(BM_BareExpat_Baseline)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadText_DestroyUntimed)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadGzip)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFastInfoset)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
