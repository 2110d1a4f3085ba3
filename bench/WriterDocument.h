// The large data-oriented document of the writer benchmarks, as a list of
// writer calls generated once, deterministically, and replayed into any writer.
#ifndef BENCH_WRITERDOCUMENT_H
#define BENCH_WRITERDOCUMENT_H

#include <KoXmlLib10.h>

#include <string>
#include <vector>

namespace WriterDocument {

using namespace KoXmlLib10;

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

inline void Replay(CXmlWriter& writer, const std::vector<Call>& calls, size_t from = 0);

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

inline const std::vector<Call>& Document() {
  static const std::vector<Call> calls = DocumentBuilder().Build();
  return calls;
}

inline void Replay(CXmlWriter& writer, const std::vector<Call>& calls, size_t from) {
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

}  // namespace WriterDocument

#endif
