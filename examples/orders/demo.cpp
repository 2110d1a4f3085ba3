// The orders example end to end: a generated document is read into the
// classes of orders.xsd, worked on, written as XML text, Fast Infoset and
// gzip'd Fast Infoset, and read back from each; the object graphs must match.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>

#include "OrdersBinding.h"
#include "OrdersGenerator.h"

using namespace KoXmlLib10;
using namespace orders;

namespace {

double SecondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The process's peak resident set since the last reset, in MB.
double PeakMegabytes() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind("VmHWM:", 0) == 0) return std::strtod(line.c_str() + 6, nullptr) / 1024.0;
  return 0;
}

// Starts a new peak: the kernel forgets the old one.
void ResetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

bool SameItem(const CLineItem& a, const CLineItem& b) {
  return a.GetDescription() == b.GetDescription() && a.GetPrice() == b.GetPrice() &&
         a.IsSetWeight() == b.IsSetWeight() && a.GetWeight() == b.GetWeight() &&
         a.IsSetShipBy() == b.IsSetShipBy() && (!a.IsSetShipBy() || a.GetShipBy() == b.GetShipBy()) &&
         a.GetSku() == b.GetSku() && a.GetQty() == b.GetQty();
}

bool SameCustomer(const CCustomer& a, const CCustomer& b) {
  const CAddress& x = *a.GetAddress();
  const CAddress& y = *b.GetAddress();
  return a.GetName() == b.GetName() && a.GetEmail() == b.GetEmail() && a.IsSetPhone() == b.IsSetPhone() &&
         a.GetPhone() == b.GetPhone() && a.IsSetVip() == b.IsSetVip() && a.GetVip() == b.GetVip() &&
         x.GetStreet() == y.GetStreet() && x.GetCity() == y.GetCity() && x.GetZip() == y.GetZip() &&
         x.GetCountry() == y.GetCountry();
}

bool SameOrder(const COrder& a, const COrder& b) {
  if (!(a.GetPlaced() == b.GetPlaced()) || !SameCustomer(*a.GetCustomer(), *b.GetCustomer()) ||
      a.IsSetNote() != b.IsSetNote() || a.GetNote() != b.GetNote() || !(a.GetTotal() == b.GetTotal()) ||
      a.GetPaid() != b.GetPaid() || a.GetId() != b.GetId() || a.IsSetStatus() != b.IsSetStatus() ||
      a.GetStatus() != b.GetStatus() || a.IsSetCurrency() != b.IsSetCurrency() ||
      a.GetCurrency() != b.GetCurrency())
    return false;
  if (a.GetItems()->GetCount() != b.GetItems()->GetCount() || a.GetTags()->GetCount() != b.GetTags()->GetCount())
    return false;
  for (int i = 0; i < a.GetItems()->GetCount(); ++i)
    if (!SameItem(*a.GetItems()->Item(i), *b.GetItems()->Item(i))) return false;
  for (int i = 0; i < a.GetTags()->GetCount(); ++i)
    if (a.GetTags()->Item(i) != b.GetTags()->Item(i)) return false;
  return true;
}

bool SameOrders(const COrders& a, const COrders& b) {
  if (a.GetOrders()->GetCount() != b.GetOrders()->GetCount()) return false;
  auto x = a.GetOrders()->begin();
  for (COrder* order : *b.GetOrders()) {
    if (!SameOrder(**x, *order)) return false;
    ++x;
  }
  return true;
}

struct Row {
  const char* format;
  unsigned long bytes;
  double writeSeconds;
  double readSeconds;
  double peakMegabytes;
};

// Writes the orders with `write`, reads the bytes back into a new object
// graph and checks it against the original.
Row RoundTrip(const char* format, const COrders& orders, double documentMegabytes,
              const std::function<CBinaryData()>& write) {
  ResetPeak();
  CBinaryData bytes;
  const double writeSeconds = SecondsOf([&] { bytes = write(); });
  CSmartPtr<COrders> back(new COrders);
  const double readSeconds =
      SecondsOf([&] { back->FromXmlStream(bytes, CXmlSerializationContext::m_defaultContext); });
  const double peak = PeakMegabytes();
  if (!SameOrders(orders, *back)) {
    std::fprintf(stderr, "%s: the object graph read back differs from the one written\n", format);
    std::exit(1);
  }
  (void)documentMegabytes;
  return {format, bytes.GetLength(), writeSeconds, readSeconds, peak};
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t size = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : std::size_t{10} << 20;
  try {
    const std::string xml = OrdersGen::GenerateXml(size, OrdersGen::Options{OrdersGen::kDefaultSeed, false});
    const double megabytes = xml.size() / 1e6;
    const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext;
    // Written with the schema's namespace as the default one, as the source
    // document is, so elements need no prefix.
    CXmlSerializationContext output;
    output.SetDefaultNamespaceURI(kTargetNamespace);

    CSmartPtr<COrders> orders(new COrders);
    const double readText = SecondsOf([&] { orders->FromXml(xml.c_str(), ctx); });
    std::printf("read %zu orders (%.1f MB of XML text) in %.0f ms\n",
                static_cast<size_t>(orders->GetOrders()->GetCount()), megabytes, readText * 1e3);

    // A little real work: totals recomputed from the items, unpaid orders listed.
    int mismatched = 0, unpaid = 0;
    CDecimal outstanding;
    for (COrder* order : *orders->GetOrders()) {
      CDecimal total;
      for (CLineItem* item : *order->GetItems()) total += item->GetPrice() * CDecimal(item->GetQty());
      if (!(total == order->GetTotal())) ++mismatched;
      if (!order->GetPaid()) {
        if (unpaid++ < 3)
          std::printf("  unpaid: order %ld of %s, %s %s\n", order->GetId(), order->GetCustomer()->GetName().c_str(),
                      order->GetTotal().ToString(2).c_str(),
                      order->IsSetCurrency() ? order->GetCurrency().c_str() : "(no currency given)");
        outstanding += order->GetTotal();
      }
    }
    std::printf("  ... %d unpaid orders, %s outstanding (amounts of all currencies added up); %d totals differ "
                "from their items\n",
                unpaid, outstanding.ToString(2).c_str(), mismatched);

    const Row rows[] = {
        RoundTrip("XML text", *orders, megabytes,
                  [&] { return orders->ToXmlStream(false, false, XmlEncoding_UTF8, EOLTypeLF, output, CompressionTypeNone); }),
        RoundTrip("Fast Infoset", *orders, megabytes,
                  [&] { return orders->ToFastInfosetStream(FInfoDeclNone, output, CompressionTypeNone); }),
        RoundTrip("Fast Infoset + gzip", *orders, megabytes,
                  [&] { return orders->ToFastInfosetStream(FInfoDeclNone, output, CompressionTypeGzip); }),
    };
    std::printf("\n%-20s %12s %14s %14s %12s\n", "format", "size", "write MB/s", "read MB/s", "peak MB");
    for (const Row& row : rows)
      std::printf("%-20s %12lu %14.1f %14.1f %12.1f\n", row.format, row.bytes, megabytes / row.writeSeconds,
                  megabytes / row.readSeconds, row.peakMegabytes);
    std::printf("(MB/s: MB of XML text per second; every format read back to the same object graph)\n\n");

    // A facet failure names the path to the member that breaks it.
    COrder* broken = orders->GetOrders()->Item(0);
    broken->SetCurrency("euro");
    try {
      orders->ToXml(false, false, EOLTypeLF, ctx);
      std::fprintf(stderr, "the broken currency was written\n");
      return 1;
    } catch (const CKoException& e) {
      std::printf("writing an order whose currency is \"euro\" fails:\n%s\n", e.GetFullMessage().c_str());
    }
    return 0;
  } catch (const CKoException& e) {
    std::fprintf(stderr, "%s\n", e.GetFullMessage().c_str());
    return 1;
  }
}
