// Streaming an orders document of any size: the document's element filter
// binds each completed order into a COrder, adds it to running totals and
// drops it, so memory stays flat. The document comes from a file (plain or
// gzip'd XML text, read from disk in pieces) or is generated while it is
// read, without ever being held whole.
//
//   orders_stream FILE
//   orders_stream --generate SIZE [--check]
//   options: --max-peak-mb N   fail when the peak resident memory passes N MB
//            --compare SIZE    also read a SIZE document whole into COrders,
//                              for its throughput beside the stream's
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>

#include "OrdersBinding.h"
#include "OrdersGenerator.h"
#include "StreamTotals.h"

using namespace KoXmlLib10;
using namespace orders;

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration d) { return std::chrono::duration<double>(d).count(); }

// The process's peak resident set, in MB.
double PeakMegabytes() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind("VmHWM:", 0) == 0) return std::strtod(line.c_str() + 6, nullptr) / 1024.0;
  return 0;
}

// "200M", "1G", "4096": suffixes K, M, G multiply by 1024, 1024^2, 1024^3.
std::size_t ParseSize(const char* text) {
  char* end = nullptr;
  std::size_t size = std::strtoull(text, &end, 10);
  switch (end && *end ? *end : ' ') {
    case 'K': case 'k': size <<= 10; break;
    case 'M': case 'm': size <<= 20; break;
    case 'G': case 'g': size <<= 30; break;
    default: break;
  }
  return size;
}

int Usage() {
  std::fprintf(stderr,
               "usage: orders_stream [--max-peak-mb N] [--compare SIZE] (FILE | --generate SIZE [--check])\n");
  return 2;
}

// Whole-document read of a generated document into COrders, in MB/s.
double WholeReadMegabytesPerSecond(std::size_t size) {
  const std::string xml = OrdersGen::GenerateXml(size, OrdersGen::Options{OrdersGen::kDefaultSeed, true});
  CSmartPtr<COrders> orders(new COrders);
  const Clock::time_point start = Clock::now();
  orders->FromXml(xml.c_str(), CXmlSerializationContext::m_defaultContext);
  return xml.size() / 1e6 / Seconds(Clock::now() - start);
}

}  // namespace

int main(int argc, char** argv) {
  const char* path = nullptr;
  std::size_t generate = 0, compare = 0;
  bool check = false;
  double maxPeak = 0;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--generate" && i + 1 < argc) generate = ParseSize(argv[++i]);
    else if (arg == "--compare" && i + 1 < argc) compare = ParseSize(argv[++i]);
    else if (arg == "--max-peak-mb" && i + 1 < argc) maxPeak = std::strtod(argv[++i], nullptr);
    else if (arg == "--check") check = true;
    else if (arg.rfind("--", 0) != 0 && !path) path = argv[i];
    else return Usage();
  }
  if (!path == !generate || (check && !generate)) return Usage();

  try {
    // The limit on the inflated size guards the memory of loads that keep
    // the whole document; this one keeps one order at a time, so a gzip'd
    // file may inflate to any size (the limit on the ratio stays).
    CXmlSerializationContext ctx;
    CInflateLimits limits;
    limits.maxInflatedSize = 0;
    ctx.SetInflateLimits(limits);
    COrderStream stream(ctx);
    CXmlDocument document(COrderStream::OnElement, &stream, ctx);
    COrderEventTotals expected;
    unsigned long long bytes = 0;
    Clock::duration reading{};  // parsing and binding, without the generator
    const Clock::time_point start = Clock::now();
    if (path) {
      std::ifstream file(path, std::ios::binary | std::ios::ate);
      bytes = file ? static_cast<unsigned long long>(file.tellg()) : 0;
      document.Load(path);
      reading = Clock::now() - start;
    } else {
      // The generator pushes its text piece by piece straight into the
      // parser; the document never exists as a whole.
      document.BeginXmlChunks();
      OrdersGen::Generate(
          generate, OrdersGen::Options{OrdersGen::kDefaultSeed, true},
          [&](std::string_view chunk) {
            const Clock::time_point before = Clock::now();
            document.LoadXmlChunk(chunk.data(), chunk.size());
            reading += Clock::now() - before;
            bytes += chunk.size();
          },
          check ? &expected : nullptr);
      document.EndXmlChunks();
    }
    const double total = Seconds(Clock::now() - start);
    const double megabytes = bytes / 1e6;
    const double peak = PeakMegabytes();

    std::printf("streamed %.1f MB of %s: %s\n", megabytes, path ? path : "XML text generated on the fly",
                stream.totals.ToString().c_str());
    std::printf("  read and bound at %.1f MB/s of input", megabytes / Seconds(reading));
    if (!path) std::printf(" (%.1f MB/s with the generator's time)", megabytes / total);
    std::printf("; peak memory %.1f MB\n", peak);
    if (compare) std::printf("  whole-document read into COrders: %.1f MB/s\n", WholeReadMegabytesPerSecond(compare));

    int status = 0;
    if (check) {
      if (stream.totals == expected.Totals()) {
        std::printf("  the totals match the generator's own\n");
      } else {
        std::fprintf(stderr, "the totals differ from the generator's own: %s\n", expected.Totals().ToString().c_str());
        status = 1;
      }
    }
    if (maxPeak > 0 && peak > maxPeak) {
      std::fprintf(stderr, "the peak memory %.1f MB is above the limit of %.1f MB\n", peak, maxPeak);
      status = 1;
    }
    return status;
  } catch (const CKoException& e) {
    std::fprintf(stderr, "%s\n", e.GetFullMessage().c_str());
    return 1;
  }
}
