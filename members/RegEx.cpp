#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/Facets.h"
#include "KoXmlLib10/StringUtils.h"
#include "members/RegEx.h"
#include "members/Utf8Text.h"

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

struct CompiledPattern {
  std::unique_ptr<pcre2_code, CodeFree> code;
  std::unique_ptr<pcre2_match_data, MatchDataFree> matchData;
  bool jit = false;
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
  return compiled;
}

// The writer checks the pattern of every value it writes, so each thread keeps
// its recently compiled patterns (keyed by the pattern's text, oldest evicted
// first). Patterns that do not compile are not kept and fail on every call.
class PatternCache {
 public:
  static constexpr size_t kCapacity = 64;

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
      m_entries.erase(m_order.front());
      m_order.pop_front();
    }
    m_order.push_back(pattern);
    return m_entries.emplace(pattern, std::move(compiled)).first->second;
  }

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
  std::string patternScratch;
  std::string valueScratch;
  CompiledPattern& compiled = ThreadPatterns().Get(LocalTextAsUtf8(pattern, patternScratch));
  return MatchesWhole(compiled, LocalTextAsUtf8(value, valueScratch));
}

}  // namespace KoXmlLib10
