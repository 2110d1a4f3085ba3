// The library's main job on the ~10 MB orders document: XML text and Fast
// Infoset into the generated orders classes and back, each beside a bare
// namespace-aware expat parse of the same text with empty callbacks,
// measured in the same run.
//
// Throughput is counted in bytes of the unindented XML text for every case,
// so the MB/s compare directly with the baseline.
//
// The reading cases count the heap of one extra, untimed read: peak_heap_x
// is the peak of heap in use during the read (document tree, expat's
// buffers, the objects) relative to the size of the text, objects_heap_x what
// the finished objects keep, and allocs the number of blocks allocated. The
// caller's own copy of the input is not counted.

#include <benchmark/benchmark.h>
#include <expat.h>
#include <malloc.h>

#include <algorithm>
#include <string>

#include "../tools/orders-gen/OrdersGenerator.h"
#include "OrdersBinding.h"
#include "OrdersNamespace.h"

using namespace KoXmlLib10;

#include "HeapCounter.h"

namespace {

constexpr size_t kDocumentBytes = 10u << 20;
// Values up to this length go into the Fast Infoset value tables in the
// compact settings (the default is 6).
constexpr unsigned long kCompactMaxAddLength = 64;

const std::string& Text() {
  static const std::string text =
      OrdersGen::GenerateXml(kDocumentBytes, OrdersGen::Options{OrdersGen::kDefaultSeed, false});
  return text;
}

const CXmlSerializationContext& Context() { return CXmlSerializationContext::m_defaultContext; }

// What an application writing orders documents would choose: the orders
// namespace as the default one, so that elements need no prefix.
const CXmlSerializationContext& WriteContext() {
  static const CXmlSerializationContext context = [] {
    CXmlSerializationContext c;
    c.SetDefaultNamespaceURI(orders::kTargetNamespace);
    return c;
  }();
  return context;
}

// The most compact Fast Infoset the library writes for these classes: the
// suggested encodings per item type (binary algorithms for numbers and
// booleans, restricted alphabets for dates and decimals) and longer values
// added to the value tables, so that repeated texts become indexes.
const CXmlSerializationContext& CompactFastInfosetContext() {
  static const CXmlSerializationContext context = [] {
    CXmlSerializationContext c = WriteContext();
    CFastInfosetContext& fi = c.GetFIContext();
    fi.SetSuggestedValues();
    fi.SetAttributeMaxAddLength(kCompactMaxAddLength);
    fi.SetElementMaxAddLength(kCompactMaxAddLength);
    return c;
  }();
  return context;
}

CSmartPtr<orders::COrders> ReadOrders() {
  CSmartPtr<orders::COrders> result(new orders::COrders);
  result->FromXml(Text().c_str(), Context());
  return result;
}

const CBinaryData& FastInfoset() {
  static const CBinaryData data = ReadOrders()->ToFastInfosetStream(FInfoDeclNone, Context(), CompressionTypeNone);
  return data;
}

void Report(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(Text().size()));
}

// Heap of one read: its peak, and what the objects still hold afterwards.
// Blocks allocated before counting started are not subtracted when freed.
template <class Read>
void CountHeap(benchmark::State& state, Read read) {
  g_inUse = g_peak = g_allocations = 0;
  g_counting = true;
  {
    auto objects = read();
    const size_t kept = g_inUse;
    benchmark::DoNotOptimize(objects);
    state.counters["objects_heap_x"] = static_cast<double>(kept) / Text().size();
  }
  g_counting = false;
  state.counters["peak_heap_x"] = static_cast<double>(g_peak) / Text().size();
  state.counters["allocs"] = static_cast<double>(g_allocations);
}

void XMLCALL OnStart(void*, const XML_Char*, const XML_Char**) {}
void XMLCALL OnEnd(void*, const XML_Char*) {}
void XMLCALL OnText(void*, const XML_Char*, int) {}

void BM_BareExpatParse(benchmark::State& state) {
  const std::string& text = Text();
  for (auto _ : state) {
    XML_Parser parser = XML_ParserCreateNS(nullptr, '\x01');
    XML_SetElementHandler(parser, OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser, OnText);
    if (XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1) != XML_STATUS_OK)
      state.SkipWithError("expat failed");
    XML_ParserFree(parser);
  }
  Report(state);
}
BENCHMARK(BM_BareExpatParse)->Unit(benchmark::kMillisecond);

// Reading ends with the objects ready; what becomes of them afterwards is
// the application's. Each graph is therefore released outside the timing,
// and the *_WithRelease cases time both, for the whole round.
template <class Read>
void TimeReads(benchmark::State& state, Read read, bool releaseTimed) {
  for (auto _ : state) {
    auto objects = read();
    benchmark::DoNotOptimize(objects);
    if (releaseTimed) {
      objects = nullptr;
    } else {
      state.PauseTiming();
      objects = nullptr;
      state.ResumeTiming();
    }
  }
}

void ReadText(benchmark::State& state, bool releaseTimed) {
  TimeReads(state, ReadOrders, releaseTimed);
  CountHeap(state, ReadOrders);
  Report(state);
}
void BM_ReadTextIntoObjects(benchmark::State& state) { ReadText(state, false); }
void BM_ReadTextIntoObjects_WithRelease(benchmark::State& state) { ReadText(state, true); }
BENCHMARK(BM_ReadTextIntoObjects)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadTextIntoObjects_WithRelease)->Unit(benchmark::kMillisecond);

void ReadFastInfoset(benchmark::State& state, bool releaseTimed) {
  const CBinaryData& data = FastInfoset();
  auto read = [&data] {
    CSmartPtr<orders::COrders> orders(new orders::COrders);
    orders->FromXmlStream(data, Context());
    return orders;
  };
  TimeReads(state, read, releaseTimed);
  CountHeap(state, read);
  state.counters["fi_bytes"] = static_cast<double>(data.GetLength());
  state.counters["fi_vs_text"] = static_cast<double>(data.GetLength()) / Text().size();
  Report(state);
}
void BM_ReadFastInfosetIntoObjects(benchmark::State& state) { ReadFastInfoset(state, false); }
void BM_ReadFastInfosetIntoObjects_WithRelease(benchmark::State& state) { ReadFastInfoset(state, true); }
BENCHMARK(BM_ReadFastInfosetIntoObjects)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadFastInfosetIntoObjects_WithRelease)->Unit(benchmark::kMillisecond);

void BM_WriteObjectsToText(benchmark::State& state) {
  CSmartPtr<orders::COrders> orders = ReadOrders();
  size_t written = 0;
  for (auto _ : state) {
    CBinaryData text =
        orders->ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, WriteContext(), CompressionTypeNone);
    written = text.GetLength();
    benchmark::DoNotOptimize(text);
  }
  state.counters["text_bytes"] = static_cast<double>(written);
  state.counters["text_vs_source"] = static_cast<double>(written) / Text().size();
  Report(state);
}
BENCHMARK(BM_WriteObjectsToText)->Unit(benchmark::kMillisecond);

// Sizes are given against the unindented XML text the same objects write.
void WriteFastInfoset(benchmark::State& state, const CXmlSerializationContext& ctx) {
  CSmartPtr<orders::COrders> orders = ReadOrders();
  const double text =
      orders->ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, WriteContext(), CompressionTypeNone).GetLength();
  size_t written = 0;
  for (auto _ : state) {
    CBinaryData data = orders->ToFastInfosetStream(FInfoDeclNone, ctx, CompressionTypeNone);
    written = data.GetLength();
    benchmark::DoNotOptimize(data);
  }
  state.counters["fi_bytes"] = static_cast<double>(written);
  state.counters["fi_vs_text"] = static_cast<double>(written) / text;
  Report(state);
}

void BM_WriteObjectsToFastInfoset(benchmark::State& state) { WriteFastInfoset(state, WriteContext()); }
BENCHMARK(BM_WriteObjectsToFastInfoset)->Unit(benchmark::kMillisecond);

void BM_WriteObjectsToCompactFastInfoset(benchmark::State& state) {
  WriteFastInfoset(state, CompactFastInfosetContext());
}
BENCHMARK(BM_WriteObjectsToCompactFastInfoset)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
