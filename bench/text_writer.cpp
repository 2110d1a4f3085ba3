// Throughput of the XML text writer on a large data-oriented document, against
// plain copies of the same output bytes measured in the same run.
//
// The writer calls of the document are generated once, deterministically, and
// replayed in every iteration: into a memory text stream, and into a file text
// stream. Baselines: one memcpy of the finished output, a memcpy of it in the
// pieces the writer produces (one per call), and fwrite of it to a file.

#include <benchmark/benchmark.h>

#include <KoXmlLib10.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace KoXmlLib10;

namespace {

constexpr char kShop[] = "urn:example:shop";
constexpr char kExt[] = "urn:example:ext";
constexpr char kAudit[] = "urn:example:audit";
constexpr char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";
constexpr size_t kTargetBytes = 10u << 20;

enum class Kind { Alias, Default, Start, Text, End, Attribute, Type, Nil };

struct Call {
  Kind kind;
  std::string a, b, c;
};

// A tiny deterministic generator, so every run writes the same document.
class Lcg {
 public:
  unsigned Next(unsigned bound) {
    m_state = m_state * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<unsigned>(m_state >> 33) % bound;
  }

 private:
  unsigned long long m_state = 42;
};

void Replay(CXmlTextWriter& writer, const std::vector<Call>& calls, size_t from = 0);

class DocumentBuilder {
 public:
  // Adds orders until the written document reaches the target size.
  std::vector<Call> Build() {
    CTextStream measure(XmlEncoding_UTF8);
    CXmlTextWriter writer(measure);
    Add(Kind::Alias, "ext", kExt);
    Add(Kind::Alias, "xsi", kXsi);
    Add(Kind::Default, kShop);
    Add(Kind::Start, "orders", kShop);
    Add(Kind::Attribute, "generated", "", "2024-05-01T08:00:00Z");
    for (unsigned id = 100000; measure.GetLength() < kTargetBytes; ++id) {
      const size_t replayed = m_calls.size();
      Order(id);
      Replay(writer, m_calls, id == 100000 ? 0 : replayed);
    }
    Add(Kind::End);
    return std::move(m_calls);
  }

 private:
  void Add(Kind kind, std::string a = {}, std::string b = {}, std::string c = {}) {
    m_calls.push_back({kind, std::move(a), std::move(b), std::move(c)});
  }

  void Leaf(const char* name, std::string text, const char* ns = kShop) {
    Add(Kind::Start, name, ns);
    Add(Kind::Text, std::move(text));
    Add(Kind::End);
  }

  void Order(unsigned id) {
    static const char* const kNames[] = {"Smith & Sons", "M\xC3\xBCller GmbH", "Acme <Intl>",
                                         "Nordic Supply", "Blue Harbor Ltd", "Dupont et Fils"};
    static const char* const kStatus[] = {"open", "shipped", "invoiced", "closed"};
    const std::string key = std::to_string(id);
    Add(Kind::Start, "order", kShop);
    Add(Kind::Attribute, "id", "", key);
    Add(Kind::Attribute, "status", "", kStatus[m_random.Next(4)]);
    Leaf("customer", std::string(kNames[m_random.Next(6)]) + " " + std::to_string(m_random.Next(900)));
    Leaf("placed", "2024-0" + std::to_string(1 + m_random.Next(9)) + "-1" +
                       std::to_string(m_random.Next(10)) + "T10:22:0" +
                       std::to_string(m_random.Next(10)) + "Z");
    Add(Kind::Start, "total", kShop);
    Add(Kind::Attribute, "currency", "", m_random.Next(3) ? "EUR" : "USD");
    Add(Kind::Text, std::to_string(m_random.Next(100000)) + ".50");
    Add(Kind::End);
    Add(Kind::Start, "lines", kShop);
    for (unsigned line = 0, count = 2 + m_random.Next(4); line < count; ++line) {
      Add(Kind::Start, "line", kShop);
      Add(Kind::Attribute, "sku", "", "SKU-" + key + "-" + std::to_string(line));
      Add(Kind::Attribute, "qty", "", std::to_string(1 + m_random.Next(20)));
      Add(Kind::Text, "Widget model " + std::to_string(m_random.Next(5000)));
      Add(Kind::End);
    }
    Add(Kind::End);
    if (m_random.Next(4) == 0) Leaf("note", "Deliver to gate \"B\"\nbefore noon", kExt);
    if (m_random.Next(8) == 0) {  // a namespace declared where it is first used
      Add(Kind::Start, "audit", kAudit);
      Add(Kind::Attribute, "by", kAudit, "clerk" + std::to_string(m_random.Next(50)));
      Leaf("checked", "true", kAudit);
      Add(Kind::End);
    }
    Add(Kind::Start, "discount", kShop);
    if (m_random.Next(3) == 0) {
      Add(Kind::Nil);
    } else {
      Add(Kind::Type, kShop, "PercentDiscount");
      Add(Kind::Text, std::to_string(m_random.Next(30)));
    }
    Add(Kind::End);
    Add(Kind::End);
  }

  std::vector<Call> m_calls;
  Lcg m_random;
};

const std::vector<Call>& Document() {
  static const std::vector<Call> calls = DocumentBuilder().Build();
  return calls;
}

void Replay(CXmlTextWriter& writer, const std::vector<Call>& calls, size_t from) {
  for (size_t i = from; i < calls.size(); ++i) {
    const Call& call = calls[i];
    switch (call.kind) {
      case Kind::Alias: writer.AddNamespace(call.a, call.b); break;
      case Kind::Default: writer.SetDefaultNamespace(call.a); break;
      case Kind::Start: writer.WriteStartElement(call.a, call.b); break;
      case Kind::Text: writer.WriteString(call.a, ItemType_string); break;
      case Kind::End: writer.WriteEndElement(); break;
      case Kind::Attribute: writer.WriteAttributeString(call.a, call.b, call.c, ItemType_string); break;
      case Kind::Type: writer.WriteAttributeType(call.a, call.b, ItemType_none); break;
      case Kind::Nil: writer.WriteAttributeNil(); break;
    }
  }
}

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

BENCHMARK(BM_MemcpyWhole)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemcpyPieces)->Unit(benchmark::kMillisecond);
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
