// orders-gen: writes a deterministic orders document of a requested size.
#include "OrdersGenerator.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* kUsage =
    "usage: orders-gen [--seed N] [--compact] [--events] SIZE_BYTES [OUT|-]\n"
    "  SIZE_BYTES  minimum document size; suffixes K, M, G multiply by 1024, 1024^2, 1024^3\n"
    "  OUT         output file, '-' or absent for standard output\n"
    "  --seed N    generator seed (default 20240917); same seed and size, same bytes\n"
    "  --compact   no indentation between elements\n"
    "  --events    print the document's normalised event listing instead of its text\n";

// The one-event-per-line listing that tests/interop's FiInterop prints for a parsed document,
// so generated events and parsed text can be compared by diffing.
class ListingSink final : public OrdersGen::IEventSink {
public:
  explicit ListingSink(std::string& out) : out_(out) {}

  void StartElement(std::string_view ns, std::string_view name) override {
    FlushAttributes();
    Line("start", ns, name);
    pendingAttributes_ = true;
  }
  void Attribute(std::string_view name, std::string_view value) override {
    attributes_.emplace_back(std::string(name), std::string(value));
  }
  void Text(std::string_view text) override {
    FlushAttributes();
    out_ += "text ";
    AppendEscaped(text);
    out_ += '\n';
  }
  void EndElement(std::string_view ns, std::string_view name) override {
    FlushAttributes();
    Line("end", ns, name);
  }

private:
  void Line(std::string_view event, std::string_view ns, std::string_view name) {
    out_ += event;
    out_ += " {";
    out_ += ns;
    out_ += '}';
    out_ += name;
    out_ += '\n';
  }
  void FlushAttributes() {
    if (!pendingAttributes_) return;
    std::sort(attributes_.begin(), attributes_.end());
    for (const auto& [name, value] : attributes_) {
      out_ += "attr {}" + name + '=';
      AppendEscaped(value);
      out_ += '\n';
    }
    attributes_.clear();
    pendingAttributes_ = false;
  }
  void AppendEscaped(std::string_view text) {
    for (char c : text) {
      switch (c) {
        case '\\': out_ += "\\\\"; break;
        case '\n': out_ += "\\n"; break;
        case '\r': out_ += "\\r"; break;
        case '\t': out_ += "\\t"; break;
        default: out_ += c;
      }
    }
  }

  std::string& out_;
  std::vector<std::pair<std::string, std::string>> attributes_;
  bool pendingAttributes_ = false;
};

bool ParseSize(const char* text, std::size_t& size) {
  errno = 0;
  char* end = nullptr;
  const unsigned long long value = std::strtoull(text, &end, 10);
  if (end == text || errno != 0 || text[0] == '-') return false;
  unsigned long long scale = 1;
  if (*end == 'K' || *end == 'k') scale = 1ull << 10;
  else if (*end == 'M' || *end == 'm') scale = 1ull << 20;
  else if (*end == 'G' || *end == 'g') scale = 1ull << 30;
  if (scale != 1) ++end;
  if (*end != '\0' || value > (1ull << 40) / scale) return false;
  size = static_cast<std::size_t>(value * scale);
  return true;
}

int Fail(const std::string& message) {
  std::fprintf(stderr, "orders-gen: %s\n", message.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  OrdersGen::Options options;
  bool listing = false;
  std::vector<const char*> positional;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      std::fputs(kUsage, stdout);
      return 0;
    } else if (arg == "--compact") {
      options.indent = false;
    } else if (arg == "--events") {
      listing = true;
    } else if (arg == "--seed" && i + 1 < argc) {
      char* end = nullptr;
      errno = 0;
      options.seed = std::strtoull(argv[++i], &end, 0);
      if (*end != '\0' || errno != 0) return Fail(std::string("bad seed: ") + argv[i]);
    } else if (arg.size() > 1 && arg[0] == '-') {
      std::fputs(kUsage, stderr);
      return 2;
    } else {
      positional.push_back(argv[i]);
    }
  }
  std::size_t size = 0;
  if (positional.empty() || positional.size() > 2 || !ParseSize(positional[0], size)) {
    std::fputs(kUsage, stderr);
    return 2;
  }

  const bool toStdout = positional.size() < 2 || std::strcmp(positional[1], "-") == 0;
  FILE* out = toStdout ? stdout : std::fopen(positional[1], "wb");
  if (!out) return Fail(std::string("cannot open ") + positional[1] + ": " + std::strerror(errno));
  auto write = [out](std::string_view chunk) { std::fwrite(chunk.data(), 1, chunk.size(), out); };

  if (listing) {
    // Through a recording, so the replay path benchmarks use is the one the tests compare.
    OrdersGen::RecordedEvents recording;
    OrdersGen::GenerateEvents(size, recording, options);
    std::string text;
    ListingSink sink(text);
    recording.ReplayTo(sink);
    write(text);
  } else {
    OrdersGen::Generate(size, options, write);
  }
  const bool failed = std::ferror(out) != 0;
  if ((toStdout ? std::fflush(out) : std::fclose(out)) != 0 || failed) {
    // Leave no truncated document behind, but never unlink a device such as /dev/full.
    std::error_code ignored;
    if (!toStdout && std::filesystem::is_regular_file(positional[1], ignored))
      std::filesystem::remove(positional[1], ignored);
    return Fail("write failed");
  }
  return 0;
}
