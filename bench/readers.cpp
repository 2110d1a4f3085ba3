// Loading a ~10 MB data-oriented document into the tree: from XML text, from
// gzip-compressed text and from Fast Infoset, each against a bare expat parse
// of the same text with no-op callbacks, measured in the same run.
//
// Throughput is counted in bytes of the XML text for every format, so MB/s
// compare directly. The Fast Infoset form is written from the generator's
// events, which carry the same content without the indentation.
//
// The counter peak_heap_x is the peak of heap in use during one load (input
// copy, inflated data, expat's buffers, tree), relative to the size of the
// text; the caller's own copy of the input is not counted.
//
// The element filter cases load a document of many children once keeping
// them all and once dropping every other one: dropping must not cost more
// than keeping.

#include <benchmark/benchmark.h>
#include <expat.h>

#include <KoXmlLib10.h>

#include <algorithm>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <string>
#include <string_view>

#include "../tools/orders-gen/OrdersGenerator.h"

using namespace KoXmlLib10;

#include "HeapCounter.h"

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

// The same parser set-up as the text reader's, minus the tree. `piece` 0
// hands expat the whole text at once (the baseline); otherwise the text goes
// in pieces of that size, as the reader feeds it to keep expat's buffer
// small: this expat then recounts lines and columns over every byte after
// each piece, which shows here as the price of bounded memory.
void BareExpat(benchmark::State& state, size_t piece) {
  const std::string& text = Text();
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
    XML_SetElementHandler(parser, NoStart, NoEnd);
    XML_SetNamespaceDeclHandler(parser, NoNamespace, NoNamespaceEnd);
    XML_SetCharacterDataHandler(parser, NoText);
    const size_t step = piece ? piece : text.size();
    bool ok = true;
    for (size_t at = 0; ok && at < text.size(); at += step) {
      const size_t n = std::min(step, text.size() - at);
      ok = XML_Parse(parser, text.data() + at, static_cast<int>(n), at + n == text.size()) == XML_STATUS_OK;
    }
    if (!ok) state.SkipWithError("expat rejected the document");
    XML_ParserFree(parser);
  }
  Report(state, text.size(), 0);
}

void BM_BareExpat_Baseline(benchmark::State& state) { BareExpat(state, 0); }
void BM_BareExpat_64KPieces(benchmark::State& state) { BareExpat(state, 64 * 1024); }

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

// ---- element filter ------------------------------------------------------------

constexpr int kFilterChildren = 50000;

const std::string& ManyChildren() {
  static const std::string text = [] {
    std::string xml = "<r>";
    for (int i = 0; i < kFilterChildren; ++i) xml += "<c i=\"" + std::to_string(i) + "\">t</c>";
    return xml + "</r>";
  }();
  return text;
}

int g_seen = 0;
bool KeepAll(CXmlElement*) { return false; }
bool DropEveryOther(CXmlElement* element) { return element->GetLocalName() == "c" && (g_seen++ & 1); }

void LoadFiltered(benchmark::State& state, CXmlDocument::ElementFilter filter) {
  const std::string& text = ManyChildren();
  size_t kept = 0;
  for (auto _ : state) {
    g_seen = 0;
    CXmlDocument document(filter);
    document.LoadXml(text.c_str());
    kept = 0;
    for (const CXmlElement* e = document.GetDocumentElement()->GetFirstElement(); e; e = e->GetNextSiblingElement())
      ++kept;
  }
  state.counters["children_kept"] = static_cast<double>(kept);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

void BM_Filter_KeepAll_Baseline(benchmark::State& state) { LoadFiltered(state, KeepAll); }
void BM_Filter_DropEveryOther(benchmark::State& state) { LoadFiltered(state, DropEveryOther); }

}  // namespace

BENCHMARK(BM_Filter_KeepAll_Baseline)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Filter_DropEveryOther)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BareExpat_Baseline)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BareExpat_64KPieces)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadText)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadText_DestroyUntimed)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadGzip)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFastInfoset)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
