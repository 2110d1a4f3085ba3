#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Facets.h"
#include "KoXmlLib10/StringUtils.h"
#include "members/RegEx.h"
#include "members/Utf8Text.h"
#include "foundation/ShortText.h"

namespace KoXmlLib10 {

namespace {

// The XSD escapes PCRE lacks, in the order they are replaced. The escaped
// backslash is parked on byte 0x01 first so that "\\i" stays a backslash
// followed by 'i'.
const std::pair<const char*, const char*> kTranslations[] = {
    {"\\\\", "\x01"},
    {"\\i", "([^\\W\\d]|:)"},
    {"\\I", "([\\W\\d])"},
    {"\\c", "(\\w|\\.|-|:)"},
    {"\\C", "([^\\w\\.\\-\\:])"},
    {"\\p{IsBasicLatin}", "[\\x{0}-\\x{7F}]"},
    {"\\p{IsLatin-1Supplement}", "[\\x{80}-\\x{FF}]"},
    {"\\p{IsLatinExtended-A}", "[\\x{100}-\\x{17F}]"},
    {"\\p{IsLatinExtended-B}", "[\\x{180}-\\x{24F}]"},
    {"\x01", "\\\\"},
};

std::string TranslateToPcre(std::string pattern) {
  for (const auto& [xsd, pcre] : kTranslations) FindReplace(pattern, xsd, pcre);
  return "^" + pattern + "$";
}

struct CodeFree {
  void operator()(pcre2_code* code) const { pcre2_code_free(code); }
};
struct MatchDataFree {
  void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};

// ---- plain patterns -------------------------------------------------------------
//
// Most schema patterns are a sequence of characters and character classes,
// each repeated a number of times ("[A-Z]{3}-[0-9]{4}", ".+Z"). For those, and
// for values of printable ASCII, the match is computed here in one pass per
// item over the value, with exactly the answer PCRE gives: starting and
// calling the matcher costs more than the whole match for values this short.
// Every other pattern or value goes to PCRE.

// A set of ASCII characters. Values given to the plain matcher are printable
// ASCII, so complements within ASCII give PCRE's answer for them.
struct CharSet {
  uint64_t bits[2] = {0, 0};
  void Add(unsigned c) { bits[c >> 6] |= uint64_t(1) << (c & 63); }
  void AddRange(unsigned from, unsigned to) {
    for (unsigned c = from; c <= to; ++c) Add(c);
  }
  void Add(const CharSet& other) {
    bits[0] |= other.bits[0];
    bits[1] |= other.bits[1];
  }
  CharSet Complement() const {
    CharSet result;
    result.bits[0] = ~bits[0];
    result.bits[1] = ~bits[1];
    return result;
  }
  bool Has(unsigned char c) const { return c < 128 && ((bits[c >> 6] >> (c & 63)) & 1) != 0; }
};

constexpr unsigned kUnbounded = ~0u;
// Repetition counts above this are left to PCRE.
constexpr unsigned kMaxCount = 1000;
// Longer values are left to PCRE (the pass per item keeps a table per character).
constexpr size_t kMaxPlainValue = 256;

struct PlainItem {
  CharSet set;
  unsigned min = 1;
  unsigned max = 1;
};

using PlainPattern = std::vector<PlainItem>;

bool IsAsciiAlnum(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// The sets of \d, \s, \w and their complements (PCRE without Unicode properties).
bool ClassEscape(char c, CharSet& set) {
  CharSet base;
  switch (c) {
    case 'd': case 'D': base.AddRange('0', '9'); break;
    case 's': case 'S':
      for (unsigned space : {' ', '\t', '\n', '\v', '\f', '\r'}) base.Add(space);
      break;
    case 'w': case 'W':
      base.AddRange('0', '9');
      base.AddRange('A', 'Z');
      base.AddRange('a', 'z');
      base.Add('_');
      break;
    default: return false;
  }
  set = (c == 'D' || c == 'S' || c == 'W') ? base.Complement() : base;
  return true;
}

bool IsPrintable(char c) { return c >= 0x20 && c <= 0x7E; }

// Parses what follows a '[' up to and including its ']'.
bool ParseClass(std::string_view& p, CharSet& result) {
  bool negated = false;
  if (!p.empty() && p[0] == '^') {
    negated = true;
    p.remove_prefix(1);
  }
  // A ']' first, '[' (POSIX classes, subtractions) and empty classes are left to PCRE.
  if (p.empty() || p[0] == ']') return false;
  CharSet set;
  for (;;) {
    if (p.empty()) return false;
    char c = p[0];
    if (c == ']') {
      p.remove_prefix(1);
      break;
    }
    if (c == '[' || !IsPrintable(c)) return false;
    p.remove_prefix(1);
    if (c == '\\') {
      if (p.empty()) return false;
      const char e = p[0];
      p.remove_prefix(1);
      CharSet escaped;
      if (ClassEscape(e, escaped)) {
        if (!p.empty() && p[0] == '-' && p.size() > 1 && p[1] != ']') return false;  // \d-x
        set.Add(escaped);
        continue;
      }
      if (IsAsciiAlnum(e) || !IsPrintable(e)) return false;
      c = e;
    }
    // A range: '-' between two characters; before ']' it is a '-' of its own.
    if (p.size() >= 2 && p[0] == '-' && p[1] != ']') {
      char last = p[1];
      p.remove_prefix(2);
      if (last == '\\') {
        if (p.empty()) return false;
        last = p[0];
        p.remove_prefix(1);
        if (IsAsciiAlnum(last)) return false;
      }
      if (last == '[' || last == '-' || c == '-' || !IsPrintable(last) || last < c) return false;
      set.AddRange(static_cast<unsigned char>(c), static_cast<unsigned char>(last));
      continue;
    }
    set.Add(static_cast<unsigned char>(c));
  }
  result = negated ? set.Complement() : set;
  return true;
}

bool ParseCount(std::string_view& p, unsigned& count) {
  if (p.empty() || p[0] < '0' || p[0] > '9') return false;
  count = 0;
  while (!p.empty() && p[0] >= '0' && p[0] <= '9') {
    count = count * 10 + static_cast<unsigned>(p[0] - '0');
    if (count > kMaxCount) return false;
    p.remove_prefix(1);
  }
  return true;
}

// Parses a quantifier if one follows; false for a form left to PCRE.
bool ParseQuantifier(std::string_view& p, PlainItem& item) {
  if (p.empty()) return true;
  switch (p[0]) {
    case '?': item.min = 0; item.max = 1; p.remove_prefix(1); break;
    case '*': item.min = 0; item.max = kUnbounded; p.remove_prefix(1); break;
    case '+': item.min = 1; item.max = kUnbounded; p.remove_prefix(1); break;
    case '{': {
      p.remove_prefix(1);
      if (!ParseCount(p, item.min)) return false;
      if (p.empty()) return false;
      if (p[0] == '}') {
        item.max = item.min;
      } else if (p[0] == ',') {
        p.remove_prefix(1);
        if (!p.empty() && p[0] == '}') {
          item.max = kUnbounded;
        } else if (!ParseCount(p, item.max) || item.max < item.min) {
          return false;
        }
        if (p.empty() || p[0] != '}') return false;
      } else {
        return false;
      }
      p.remove_prefix(1);
      break;
    }
    default: return true;
  }
  // Lazy and possessive forms, and a quantifier on a quantifier, are PCRE's.
  return p.empty() || (p[0] != '?' && p[0] != '+' && p[0] != '*' && p[0] != '{');
}

// The plain form of an XSD pattern, if it has one. Such a pattern reads the
// same before and after the translation to PCRE.
bool ParsePlain(std::string_view p, PlainPattern& items) {
  items.clear();
  while (!p.empty()) {
    PlainItem item;
    const char c = p[0];
    p.remove_prefix(1);
    switch (c) {
      case '.':
        item.set = CharSet().Complement();
        break;
      case '[':
        if (!ParseClass(p, item.set)) return false;
        break;
      case '\\': {
        if (p.empty()) return false;
        const char e = p[0];
        p.remove_prefix(1);
        if (!ClassEscape(e, item.set)) {
          if (IsAsciiAlnum(e) || !IsPrintable(e)) return false;  // \i, \c, \p{..}, \n ...
          item.set.Add(static_cast<unsigned char>(e));
        }
        break;
      }
      case '(': case ')': case '|': case '^': case '$': case ']': case '{': case '}':
      case '?': case '*': case '+':
        return false;
      default:
        if (!IsPrintable(c)) return false;
        item.set.Add(static_cast<unsigned char>(c));
    }
    if (!ParseQuantifier(p, item)) return false;
    items.push_back(item);
  }
  return true;
}

bool IsPlainValue(const std::string& value) {
  if (value.size() > kMaxPlainValue) return false;
  for (const char c : value)
    if (!IsPrintable(c)) return false;
  return true;
}

// Positions 0 to kMaxPlainValue of a value, one bit each.
constexpr size_t kPositionWords = kMaxPlainValue / 64 + 1;
using Positions = uint64_t[kPositionWords];

// Whether the whole of `value` matches, by sets of positions: `reach` holds
// where the next item can start, and each item moves it to where it can end
// (bit-parallel: a step is a shift, a run of any length a carrying addition).
bool MatchesPlain(const PlainPattern& items, const std::string& value) {
  const size_t n = value.size();
  const size_t words = n / 64 + 1;
  Positions reach = {1};
  Positions in;  // positions whose character is in the item's set
  Positions next;
  for (const PlainItem& item : items) {
    std::memset(in, 0, words * sizeof in[0]);
    for (size_t i = 0; i < n; ++i)
      in[i >> 6] |= uint64_t(item.set.Has(static_cast<unsigned char>(value[i]))) << (i & 63);
    // One more character of the set: from p to p + 1 where p is in the set.
    const auto step = [&](const uint64_t* from, uint64_t* to) {
      uint64_t carry = 0;
      bool any = false;
      for (size_t w = 0; w < words; ++w) {
        const uint64_t moved = from[w] & in[w];
        to[w] = (moved << 1) | carry;
        carry = moved >> 63;
        any |= to[w] != 0;
      }
      return any;
    };
    for (unsigned k = 0; k < item.min; ++k)
      if (!step(reach, reach)) return false;
    if (item.max == kUnbounded) {
      // From each reached position, through the rest of its run of set
      // characters: adding the reached positions to the runs carries a bit
      // from each through to the end of its run.
      uint64_t carry = 0;
      for (size_t w = 0; w < words; ++w) {
        const uint64_t started = reach[w] & in[w];
        const uint64_t sum = in[w] + started + carry;
        carry = (sum < in[w] || (carry && sum == in[w])) ? 1 : 0;
        reach[w] |= sum ^ in[w];
      }
    } else {
      std::memcpy(next, reach, words * sizeof next[0]);
      for (unsigned k = item.min; k < item.max; ++k) {
        if (!step(next, next)) break;
        for (size_t w = 0; w < words; ++w) reach[w] |= next[w];
      }
    }
  }
  return (reach[n >> 6] >> (n & 63)) & 1;
}

// A pattern of fixed counts only matches values of one length, character by character.
bool MatchesFixed(const PlainPattern& items, size_t length, const std::string& value) {
  if (value.size() != length) return false;
  const char* p = value.data();
  for (const PlainItem& item : items)
    for (unsigned k = 0; k < item.min; ++k)
      if (!item.set.Has(static_cast<unsigned char>(*p++))) return false;
  return true;
}

// ---- PCRE ----------------------------------------------------------------------

struct CompiledPattern {
  std::unique_ptr<pcre2_code, CodeFree> code;
  std::unique_ptr<pcre2_match_data, MatchDataFree> matchData;
  bool jit = false;
  bool plain = false;  // `items` hold the pattern
  PlainPattern items;
  size_t fixedLength = 0;  // of the values a plain pattern of fixed counts matches
  bool fixed = false;
};

CompiledPattern Compile(const std::string& pattern) {
  const std::string translated = TranslateToPcre(pattern);
  int error = 0;
  PCRE2_SIZE offset = 0;
  CompiledPattern compiled;
  // Anchored at both ends when compiled, not when matched: only then can the
  // pattern run on the JIT, which matches several times faster.
  compiled.code.reset(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(translated.c_str()), PCRE2_ZERO_TERMINATED,
                                    PCRE2_UTF | PCRE2_ANCHORED | PCRE2_ENDANCHORED, &error, &offset, nullptr));
  if (!compiled.code) {
    PCRE2_UCHAR message[256];
    if (pcre2_get_error_message(error, message, sizeof message) < 0) message[0] = 0;
    throw CKoException(FormatString("Invalid Regular Expression: %s Error: '%s'", pattern.c_str(),
                                    reinterpret_cast<const char*>(message)));
  }
  // Without JIT support (or memory for it) the interpreter matches alone.
  compiled.jit = pcre2_jit_compile(compiled.code.get(), PCRE2_JIT_COMPLETE) == 0;
  uint32_t captures = 0;
  pcre2_pattern_info(compiled.code.get(), PCRE2_INFO_CAPTURECOUNT, &captures);
  compiled.matchData.reset(pcre2_match_data_create(captures + 1, nullptr));
  if (!compiled.matchData) throw std::bad_alloc();
  compiled.plain = ParsePlain(pattern, compiled.items);
  compiled.fixed = compiled.plain;
  for (const PlainItem& item : compiled.items) {
    compiled.fixed = compiled.fixed && item.min == item.max;
    compiled.fixedLength += item.min;
  }
  return compiled;
}

// The writer checks the pattern of every value it writes, so each thread keeps
// its recently compiled patterns (keyed by the pattern's text, oldest evicted
// first). Patterns that do not compile are not kept and fail on every call.
class PatternCache {
 public:
  static constexpr size_t kCapacity = 64;

  // The pattern last remembered for the string object `source` if it still
  // holds the same text; null otherwise. Records keep their patterns for
  // their whole life, so the object's address finds its pattern at once.
  CompiledPattern* Recent(const std::string& source) {
    const Recently& entry = m_recent[Slot(source)];
    if (entry.source == &source && SameText(entry.text, source)) return entry.compiled;
    return nullptr;
  }
  // `source` is its own UTF-8 text and was compiled as `compiled`.
  void Remember(const std::string& source, CompiledPattern* compiled) {
    Recently& entry = m_recent[Slot(source)];
    entry.source = &source;
    entry.text = source;
    entry.compiled = compiled;
  }

  CompiledPattern& Get(const std::string& pattern) {
    // A member's values come in runs: the last pattern is checked first.
    if (m_last && m_lastPattern == pattern) return *m_last;
    CompiledPattern& compiled = Find(pattern);
    m_last = &compiled;
    m_lastPattern = pattern;
    return compiled;
  }

 private:
  CompiledPattern& Find(const std::string& pattern) {
    const auto found = m_entries.find(pattern);
    if (found != m_entries.end()) return found->second;
    CompiledPattern compiled = Compile(pattern);
    if (m_entries.size() == kCapacity) {
      m_last = nullptr;  // it may be the one evicted
      for (Recently& entry : m_recent) entry = Recently();
      m_entries.erase(m_order.front());
      m_order.pop_front();
    }
    m_order.push_back(pattern);
    return m_entries.emplace(pattern, std::move(compiled)).first->second;
  }

  struct Recently {
    const std::string* source = nullptr;
    std::string text;
    CompiledPattern* compiled = nullptr;
  };
  static size_t Slot(const std::string& source) {
    return (reinterpret_cast<uintptr_t>(&source) >> 5) % kRecent;
  }
  static constexpr size_t kRecent = 16;

  Recently m_recent[kRecent];
  CompiledPattern* m_last = nullptr;
  std::string m_lastPattern;
  std::unordered_map<std::string, CompiledPattern> m_entries;
  std::deque<std::string> m_order;
};

// A schema pattern describes the whole value. Anchoring the text alone is not
// enough: "^a|ab$" would stop at the first alternative's "a" on the value
// "ab". Requiring the match to end at the subject's end makes the matcher
// backtrack into the later alternatives.
bool MatchesWhole(CompiledPattern& compiled, const std::string& subject) {
  if (compiled.plain && IsPlainValue(subject))
    return compiled.fixed ? MatchesFixed(compiled.items, compiled.fixedLength, subject)
                          : MatchesPlain(compiled.items, subject);
  const auto match = [&](uint32_t options) {
    return pcre2_match(compiled.code.get(), reinterpret_cast<PCRE2_SPTR>(subject.data()), subject.size(), 0,
                       options, compiled.matchData.get(), nullptr);
  };
  int rc = match(0);
  // The JIT's stack is smaller than the interpreter's heap limit: a subject
  // too hard for it gets the interpreter's answer.
  if (compiled.jit && rc == PCRE2_ERROR_JIT_STACKLIMIT) rc = match(PCRE2_NO_JIT);
  if (rc <= 0) return false;
  const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer(compiled.matchData.get());
  return ovector[0] == 0 && ovector[1] == subject.size();
}

}  // namespace

namespace {

PatternCache& ThreadPatterns() {
  thread_local PatternCache cache;
  return cache;
}

}  // namespace

bool TestRegEx(std::string pattern, std::string value) {
  return MatchesWhole(ThreadPatterns().Get(pattern), LocalTextAsUtf8(value));
}

bool MatchesPattern(const std::string& pattern, const std::string& value) {
  PatternCache& cache = ThreadPatterns();
  CompiledPattern* compiled = cache.Recent(pattern);
  if (!compiled) {
    std::string patternScratch;
    const std::string& utf8 = LocalTextAsUtf8(pattern, patternScratch);
    compiled = &cache.Get(utf8);
    if (&utf8 == &pattern) cache.Remember(pattern, compiled);  // plain ASCII: its own UTF-8
  }
  // Printable ASCII is its own UTF-8.
  if (compiled->plain && IsPlainValue(value))
    return compiled->fixed ? MatchesFixed(compiled->items, compiled->fixedLength, value)
                           : MatchesPlain(compiled->items, value);
  std::string valueScratch;
  return MatchesWhole(*compiled, LocalTextAsUtf8(value, valueScratch));
}

}  // namespace KoXmlLib10
