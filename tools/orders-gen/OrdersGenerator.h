// Deterministic "orders" documents for benchmarks, demos and interoperability tests.
//
// The same seed and size give the same bytes on every machine: the generator uses its own
// splitmix64 stream and integer arithmetic only (no <random> distributions, no floating point,
// no locale). Orders are drawn one after another from that stream, so a larger document starts
// with the orders of a smaller one.
//
// Header-only so benchmarks and tools can include it without linking anything.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace OrdersGen {

inline constexpr std::string_view kNamespace = "urn:example:orders";
inline constexpr std::uint64_t kDefaultSeed = 20240917;

struct Options {
  std::uint64_t seed = kDefaultSeed;
  bool indent = true;  // line feeds and two-space indentation between elements
};

// The document as a stream of events. Every element is in kNamespace; attributes are
// unqualified and arrive right after their element's start. Text is never whitespace-only:
// the indentation of the text form is not replayed.
class IEventSink {
public:
  virtual ~IEventSink() = default;
  virtual void StartElement(std::string_view namespaceUri, std::string_view localName) = 0;
  virtual void Attribute(std::string_view localName, std::string_view value) = 0;
  virtual void Text(std::string_view text) = 0;
  virtual void EndElement(std::string_view namespaceUri, std::string_view localName) = 0;
};

using ChunkWriter = std::function<void(std::string_view)>;

namespace detail {

class SplitMix64 {
public:
  explicit SplitMix64(std::uint64_t seed) : state_(seed) {}

  std::uint64_t Next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  // Modulo bias is irrelevant here; what matters is that every platform gets the same numbers.
  std::uint32_t Below(std::uint32_t n) { return static_cast<std::uint32_t>(Next() % n); }
  std::uint32_t Between(std::uint32_t lo, std::uint32_t hi) { return lo + Below(hi - lo + 1); }
  bool Percent(std::uint32_t p) { return Below(100) < p; }
  bool PerMille(std::uint32_t p) { return Below(1000) < p; }
  template <std::size_t N>
  std::string_view Pick(const std::string_view (&pool)[N]) {
    return pool[Below(static_cast<std::uint32_t>(N))];
  }

private:
  std::uint64_t state_;
};

inline void AppendEscaped(std::string& out, std::string_view text, bool inAttribute) {
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"':
        if (inAttribute) {
          out += "&quot;";
          break;
        }
        [[fallthrough]];
      default: out += c;
    }
  }
}

// Turns events into XML text. Chunks are handed out at order boundaries so huge documents never
// sit in memory; Length() counts everything produced so far.
class XmlTextSink final : public IEventSink {
public:
  XmlTextSink(bool indent, ChunkWriter write) : indent_(indent), write_(std::move(write)) {
    out_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
  }

  void StartElement(std::string_view namespaceUri, std::string_view localName) override {
    CloseStartTag();
    if (!hasChildElements_.empty()) hasChildElements_.back() = true;
    NewLine(hasChildElements_.size());
    out_ += '<';
    out_ += localName;
    if (hasChildElements_.empty()) {
      out_ += " xmlns=\"";
      AppendEscaped(out_, namespaceUri, true);
      out_ += '"';
    }
    hasChildElements_.push_back(false);
    startTagOpen_ = true;
  }

  void Attribute(std::string_view localName, std::string_view value) override {
    out_ += ' ';
    out_ += localName;
    out_ += "=\"";
    AppendEscaped(out_, value, true);
    out_ += '"';
  }

  void Text(std::string_view text) override {
    CloseStartTag();
    AppendEscaped(out_, text, false);
  }

  void EndElement(std::string_view, std::string_view localName) override {
    if (startTagOpen_) {
      out_ += "/>";
      startTagOpen_ = false;
    } else {
      if (hasChildElements_.back()) NewLine(hasChildElements_.size() - 1);
      out_ += "</";
      out_ += localName;
      out_ += '>';
    }
    hasChildElements_.pop_back();
    if (hasChildElements_.empty() && indent_) out_ += '\n';
  }

  std::size_t Length() const { return written_ + out_.size(); }

  void Flush() {
    written_ += out_.size();
    write_(out_);
    out_.clear();
  }

private:
  void CloseStartTag() {
    if (startTagOpen_) out_ += '>';
    startTagOpen_ = false;
  }
  void NewLine(std::size_t depth) {
    if (!indent_) return;
    out_ += '\n';
    out_.append(2 * depth, ' ');
  }

  bool indent_;
  ChunkWriter write_;
  std::string out_;
  std::size_t written_ = 0;
  std::vector<bool> hasChildElements_;
  bool startTagOpen_ = false;
};

class TeeSink final : public IEventSink {
public:
  TeeSink(IEventSink& first, IEventSink& second) : first_(first), second_(second) {}
  void StartElement(std::string_view ns, std::string_view name) override {
    first_.StartElement(ns, name);
    second_.StartElement(ns, name);
  }
  void Attribute(std::string_view name, std::string_view value) override {
    first_.Attribute(name, value);
    second_.Attribute(name, value);
  }
  void Text(std::string_view text) override {
    first_.Text(text);
    second_.Text(text);
  }
  void EndElement(std::string_view ns, std::string_view name) override {
    first_.EndElement(ns, name);
    second_.EndElement(ns, name);
  }

private:
  IEventSink& first_;
  IEventSink& second_;
};

inline std::string Digits(std::uint64_t value, int width = 1) {
  std::string s;
  do {
    s.insert(s.begin(), static_cast<char>('0' + value % 10));
    value /= 10;
  } while (value != 0);
  if (static_cast<int>(s.size()) < width) s.insert(0, width - s.size(), '0');
  return s;
}

inline std::string FixedPoint(std::uint64_t scaled, std::uint64_t scale, int fractionDigits) {
  return Digits(scaled / scale) + '.' + Digits(scaled % scale, fractionDigits);
}

struct CivilDate {
  int year;
  unsigned month;
  unsigned day;
};

// Proleptic Gregorian date of a count of days since 1970-01-01.
inline CivilDate DateOfDays(std::int64_t days) {
  days += 719468;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const auto dayOfEra = static_cast<unsigned>(days - era * 146097);
  const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const unsigned shiftedMonth = (5 * dayOfYear + 2) / 153;
  const unsigned day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
  const unsigned month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
  return {static_cast<int>(era * 400 + yearOfEra + (month <= 2)), month, day};
}

inline std::string DateText(std::int64_t days) {
  const CivilDate d = DateOfDays(days);
  return Digits(static_cast<std::uint64_t>(d.year), 4) + '-' + Digits(d.month, 2) + '-' +
         Digits(d.day, 2);
}

inline std::string DateTimeText(std::int64_t days, std::uint32_t secondOfDay) {
  return DateText(days) + 'T' + Digits(secondOfDay / 3600, 2) + ':' +
         Digits(secondOfDay / 60 % 60, 2) + ':' + Digits(secondOfDay % 60, 2) + 'Z';
}

inline std::string ToLowerAscii(std::string_view s) {
  std::string r(s);
  for (char& c : r)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return r;
}

// Word pools. The "special" pools hold the ~2% of names and descriptions that need escaping
// or carry non-ASCII letters.
inline constexpr std::string_view kFirstNames[] = {
    "Anna", "Ben", "Carla", "David", "Emma", "Felix", "Grace", "Hugo", "Ines", "Jonas",
    "Karin", "Leo", "Maria", "Nils", "Olivia", "Paul", "Rosa", "Simon", "Tara", "Victor"};
inline constexpr std::string_view kLastNames[] = {
    "Adams", "Becker", "Clarke", "Dubois", "Evans", "Fischer", "Garcia", "Hansen", "Ivanov",
    "Jensen", "Keller", "Lambert", "Moreau", "Novak", "Olsen", "Peters", "Rossi", "Schmidt",
    "Turner", "Weber"};
inline constexpr std::string_view kSpecialNames[] = {
    "José Martínez", "Zoë Brontë", "Łukasz Żółkiewski", "Søren Kierkegård",
    "François Lefèvre", "Dvořák & Sons", "Smith & Wesson Ltd", "Ærø Ferries <Nordic>",
    "山田 太郎", "Иван Петров", "Ελένη Παπαδοπούλου", "R&D <Labs> GmbH"};
inline constexpr std::string_view kMailDomains[] = {"example.com", "example.org", "example.net",
                                                    "mail.example", "shop.example"};
inline constexpr std::string_view kStreets[] = {
    "Main Street", "High Street", "Station Road", "Church Lane", "Park Avenue", "Mill Road",
    "Harbour View", "Market Square", "Elm Grove", "Kings Way", "Bridge Street", "Oak Drive"};
inline constexpr std::string_view kCities[] = {
    "Springfield", "Riverton", "Lakeside", "Brookfield", "Fairview", "Greenville",
    "Kingsport", "Milltown", "Oakridge", "Westbury", "Northam", "Eastwick"};
inline constexpr std::string_view kCountries[] = {"DE", "FR", "GB", "US", "NL", "IT",
                                                  "ES", "SE", "PL", "JP", "CA", "AT"};
inline constexpr std::string_view kStatuses[] = {"open", "shipped", "cancelled"};
inline constexpr std::string_view kCurrencies[] = {"EUR", "USD", "GBP", "CHF", "SEK", "JPY"};
inline constexpr std::string_view kAdjectives[] = {
    "Compact", "Deluxe", "Classic", "Portable", "Heavy-duty", "Lightweight", "Organic",
    "Wireless", "Foldable", "Stainless", "Vintage", "Ergonomic"};
inline constexpr std::string_view kProducts[] = {
    "water bottle", "desk lamp", "backpack", "coffee grinder", "notebook", "headphones",
    "garden hose", "tea kettle", "yoga mat", "toolbox", "picture frame", "umbrella",
    "cutting board", "travel mug", "phone stand", "bike light"};
inline constexpr std::string_view kVariants[] = {
    "black", "white", "red, large", "blue, small", "pack of 3", "recycled material",
    "with carrying case", "gift edition", "matte finish", "2023 model"};
inline constexpr std::string_view kSpecialDescriptions[] = {
    "Salt & pepper mill set, walnut", "USB cable <2 m>, braided",
    "Crème brûlée torch with refill", "Kaffeemühle für Espresso, Edelstahl",
    "Bolts M8 < 20 mm & washers, box of 100", "Smörgåsbord serving tray, birch",
    "Piñata, star-shaped, multicolour", "抹茶 green tea powder, 100 g",
    "Ящик для инструментов, metal", "Ψηφιακό θερμόμετρο & probe"};
inline constexpr std::string_view kNotes[] = {
    "Leave the parcel with the neighbour if nobody is home.", "Gift wrap, please.",
    "Deliver after 5 pm on weekdays.", "Call before delivery.",
    "Customer asked for a printed invoice.", "Fragile - handle with care.",
    "Combine with the previous order if possible."};
inline constexpr std::string_view kTags[] = {"gift",  "express", "fragile", "b2b",
                                             "promo", "repeat",  "bulk",    "eco"};

// Items come from a catalogue so the same SKUs, descriptions and prices recur, as they do in
// real order data. A product's fields depend only on the seed and its number.
struct Product {
  std::string sku;
  std::string description;
  std::uint32_t priceCents;
  std::uint32_t weightGrams;
};

inline Product MakeProduct(std::uint64_t seed, std::uint32_t number) {
  SplitMix64 rng(seed ^ (0xC0FFEEull * (number + 1)));
  Product p;
  for (int i = 0; i < 3; ++i) p.sku += static_cast<char>('A' + rng.Below(26));
  p.sku += '-' + Digits(rng.Below(10000), 4);
  if (rng.Percent(2)) {
    p.description = std::string(rng.Pick(kSpecialDescriptions));
  } else {
    const std::string_view adjective = rng.Pick(kAdjectives);
    const std::string_view product = rng.Pick(kProducts);
    const std::string_view variant = rng.Pick(kVariants);
    p.description = std::string(adjective) + ' ' + std::string(product) + ", " + std::string(variant);
  }
  p.priceCents = rng.Between(99, 49999);
  p.weightGrams = rng.Between(20, 25000);
  return p;
}

class Generator {
public:
  Generator(const Options& options, IEventSink& sink) : rng_(options.seed), sink_(sink) {
    constexpr std::uint32_t kCatalogueSize = 400;
    catalogue_.reserve(kCatalogueSize);
    for (std::uint32_t i = 0; i < kCatalogueSize; ++i)
      catalogue_.push_back(MakeProduct(options.seed, i));
  }

  void Order(std::uint32_t id) {
    Start("order");
    sink_.Attribute("id", Digits(id));
    if (rng_.Percent(85)) sink_.Attribute("status", rng_.Pick(kStatuses));
    if (rng_.Percent(75)) sink_.Attribute("currency", rng_.Pick(kCurrencies));

    constexpr std::int64_t kFirstDay = 19358;  // 2023-01-01
    const std::int64_t placedDay = kFirstDay + rng_.Below(731);
    Leaf("placed", DateTimeText(placedDay, rng_.Below(86400)));
    Customer(id);

    // Mostly small orders, now and then a big one: the minimum of two draws.
    const std::uint32_t firstDraw = rng_.Below(8);
    const std::uint32_t items = 1 + std::min(firstDraw, rng_.Below(8));
    std::uint64_t totalCents = 0;
    for (std::uint32_t i = 0; i < items; ++i) totalCents += Item(placedDay);

    if (rng_.Percent(20)) Leaf("note", rng_.Pick(kNotes));
    Leaf("total", FixedPoint(totalCents, 100, 2));
    Leaf("paid", rng_.Percent(70) ? "true" : "false");
    for (std::uint32_t tags = rng_.Below(4); tags > 0; --tags) Leaf("tag", rng_.Pick(kTags));
    End("order");
  }

private:
  void Start(std::string_view name) { sink_.StartElement(kNamespace, name); }
  void End(std::string_view name) { sink_.EndElement(kNamespace, name); }
  void Leaf(std::string_view name, std::string_view text) {
    Start(name);
    sink_.Text(text);
    End(name);
  }

  void Customer(std::uint32_t id) {
    Start("customer");
    if (rng_.Percent(25)) sink_.Attribute("vip", rng_.Percent(60) ? "true" : "false");
    if (rng_.PerMille(20)) {
      Leaf("name", rng_.Pick(kSpecialNames));
      Leaf("email", "customer" + Digits(id) + '@' + std::string(rng_.Pick(kMailDomains)));
    } else {
      const std::string_view first = rng_.Pick(kFirstNames);
      const std::string_view last = rng_.Pick(kLastNames);
      Leaf("name", std::string(first) + ' ' + std::string(last));
      const std::uint32_t number = rng_.Below(100);
      const std::string_view domain = rng_.Pick(kMailDomains);
      Leaf("email", ToLowerAscii(first) + '.' + ToLowerAscii(last) + Digits(number) + '@' +
                        std::string(domain));
    }
    if (rng_.Percent(60)) {
      const std::uint32_t country = rng_.Between(1, 99);
      const std::uint32_t area = rng_.Between(10, 999);
      const std::uint32_t line = rng_.Between(100000, 9999999);
      Leaf("phone", '+' + Digits(country) + ' ' + Digits(area) + ' ' + Digits(line));
    }
    Start("address");
    const std::uint32_t houseNumber = rng_.Between(1, 250);
    Leaf("street", Digits(houseNumber) + ' ' + std::string(rng_.Pick(kStreets)));
    Leaf("city", rng_.Pick(kCities));
    Leaf("zip", Digits(rng_.Below(100000), 5));
    Leaf("country", rng_.Pick(kCountries));
    End("address");
    End("customer");
  }

  // Returns the line's amount in cents.
  std::uint64_t Item(std::int64_t placedDay) {
    const Product& product = catalogue_[rng_.Below(static_cast<std::uint32_t>(catalogue_.size()))];
    const std::uint32_t quantity = rng_.Percent(90) ? rng_.Between(1, 5) : rng_.Between(6, 50);
    Start("item");
    sink_.Attribute("sku", product.sku);
    sink_.Attribute("qty", Digits(quantity));
    Leaf("description", product.description);
    Leaf("price", FixedPoint(product.priceCents, 100, 2));
    if (rng_.Percent(60)) Leaf("weight", FixedPoint(product.weightGrams, 1000, 3));
    if (rng_.Percent(40)) Leaf("shipBy", DateText(placedDay + rng_.Between(1, 14)));
    End("item");
    return std::uint64_t{product.priceCents} * quantity;
  }

  SplitMix64 rng_;
  IEventSink& sink_;
  std::vector<Product> catalogue_;
};

}  // namespace detail

// Produces an orders document of at least `sizeBytes` bytes (it stops after the first order that
// reaches the size, so it overshoots by less than one order, about 1 KB; it always holds at
// least one order). The text goes to `write` in chunks; when `events` is given it receives the
// same document as events. Returns the number of orders.
inline std::size_t Generate(std::size_t sizeBytes, const Options& options, const ChunkWriter& write,
                            IEventSink* events = nullptr) {
  detail::XmlTextSink text(options.indent, write);
  detail::TeeSink tee(text, events ? *events : text);
  IEventSink& sink = events ? static_cast<IEventSink&>(tee) : text;
  detail::Generator generator(options, sink);

  const std::size_t closingTagLength = std::string_view("</orders>").size() + (options.indent ? 2 : 0);
  sink.StartElement(kNamespace, "orders");
  std::size_t orders = 0;
  do {
    generator.Order(static_cast<std::uint32_t>(++orders));
    if (text.Length() >= (std::size_t{1} << 16)) text.Flush();
  } while (text.Length() + closingTagLength < sizeBytes);
  sink.EndElement(kNamespace, "orders");
  text.Flush();
  return orders;
}

inline std::string GenerateXml(std::size_t sizeBytes, const Options& options = {}) {
  std::string xml;
  xml.reserve(sizeBytes + 4096);
  Generate(sizeBytes, options, [&xml](std::string_view chunk) { xml += chunk; });
  return xml;
}

// Replays the document GenerateXml would produce, without building its text.
inline std::size_t GenerateEvents(std::size_t sizeBytes, IEventSink& sink, const Options& options = {}) {
  return Generate(sizeBytes, options, [](std::string_view) {}, &sink);
}

// Keeps a document's events so a benchmark can replay them into a writer without timing the
// generator. The views a replay hands to the sink point into the recording.
class RecordedEvents final : public IEventSink {
public:
  void StartElement(std::string_view, std::string_view localName) override {
    Add(Kind::Start, localName, {});
  }
  void Attribute(std::string_view localName, std::string_view value) override {
    Add(Kind::Attribute, localName, value);
  }
  void Text(std::string_view text) override { Add(Kind::Text, {}, text); }
  void EndElement(std::string_view, std::string_view localName) override {
    Add(Kind::End, localName, {});
  }

  void ReplayTo(IEventSink& sink) const {
    for (const Event& e : events_) {
      switch (e.kind) {
        case Kind::Start: sink.StartElement(kNamespace, e.name); break;
        case Kind::Attribute: sink.Attribute(e.name, e.value); break;
        case Kind::Text: sink.Text(e.value); break;
        case Kind::End: sink.EndElement(kNamespace, e.name); break;
      }
    }
  }
  std::size_t Size() const { return events_.size(); }

private:
  enum class Kind { Start, Attribute, Text, End };
  struct Event {
    Kind kind;
    std::string name;
    std::string value;
  };
  void Add(Kind kind, std::string_view name, std::string_view value) {
    events_.push_back({kind, std::string(name), std::string(value)});
  }

  std::vector<Event> events_;
};

}  // namespace OrdersGen
