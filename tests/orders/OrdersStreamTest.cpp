// The orders document streamed order by order through the element filter:
// memory stays flat, and the totals are those the generator itself counted.
#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "OrdersGenerator.h"
#include "StreamTotals.h"

using namespace KoXmlLib10;
using namespace orders;

namespace {

// The peak resident set since the last ResetPeak, in MB; 0 when the kernel
// does not say.
double PeakMegabytes() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind("VmHWM:", 0) == 0) return std::strtod(line.c_str() + 6, nullptr) / 1024.0;
  return 0;
}

void ResetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Sanitizers keep freed memory aside and run several times slower: a
// smaller document, and no figure on memory.
constexpr std::size_t kStreamedBytes = std::size_t{8} << 20;
constexpr bool kMeasurePeak = false;
#else
constexpr std::size_t kStreamedBytes = std::size_t{100} << 20;
constexpr bool kMeasurePeak = true;
#endif
constexpr double kPeakLimitMegabytes = 64;

}  // namespace

TEST(OrdersStream, HundredMegabytesInFlatMemoryWithTheGeneratorsTotals) {
  const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext;
  // The peak from here on (the test program itself is small before).
  ResetPeak();
  const double before = PeakMegabytes();

  COrderStream stream(ctx);
  COrderEventTotals expected;
  CXmlDocument document(COrderStream::OnElement, &stream, ctx);
  document.BeginXmlChunks();
  std::size_t bytes = 0;
  OrdersGen::Generate(
      kStreamedBytes, OrdersGen::Options{},
      [&](std::string_view chunk) {
        document.LoadXmlChunk(chunk.data(), chunk.size());
        bytes += chunk.size();
      },
      &expected);
  document.EndXmlChunks();

  EXPECT_GE(bytes, kStreamedBytes);
  EXPECT_GT(stream.totals.orders, kStreamedBytes / 1200);
  EXPECT_TRUE(stream.totals == expected.Totals())
      << "streamed:  " << stream.totals.ToString() << "\ngenerator: " << expected.Totals().ToString();
  // Every order was dropped once bound: only the root is left.
  ASSERT_NE(document.GetDocumentElement(), nullptr);
  EXPECT_EQ(document.GetDocumentElement()->GetFirstElement(), nullptr);
  if (kMeasurePeak) {
    ASSERT_GT(before, 0) << "the kernel reports no peak memory";
    EXPECT_LT(PeakMegabytes(), kPeakLimitMegabytes) << "started at " << before << " MB";
  }
}

TEST(OrdersStream, StreamedTotalsEqualThoseOfAWholeRead) {
  const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext;
  const std::string xml = OrdersGen::GenerateXml(std::size_t{1} << 20);
  CSmartPtr<COrders> whole(new COrders);
  whole->FromXml(xml.c_str(), ctx);
  COrderTotals fromWhole;
  for (const COrder* order : *whole->GetOrders()) fromWhole.Add(*order);

  COrderStream stream(ctx);
  CXmlDocument document(COrderStream::OnElement, &stream, ctx);
  document.LoadXmlStream(reinterpret_cast<unsigned char*>(const_cast<char*>(xml.data())), xml.size());
  EXPECT_TRUE(stream.totals == fromWhole) << stream.totals.ToString() << "\n" << fromWhole.ToString();

  // An order that does not bind stops the stream with the binding's message.
  std::string broken = xml;
  const std::size_t total = broken.find("<total>", broken.find("<order id=\"3\""));
  ASSERT_NE(total, std::string::npos);
  broken.replace(total, 7, "<total>x");
  COrderStream failing(ctx);
  CXmlDocument brokenDocument(COrderStream::OnElement, &failing, ctx);
  EXPECT_THROW(brokenDocument.LoadXml(broken.c_str()), CKoException);
  EXPECT_EQ(failing.totals.orders, 2u);
}
