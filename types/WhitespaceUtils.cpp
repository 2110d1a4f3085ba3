#include <string_view>

#include "KoXmlLib10/Conversions.h"
#include "KoXmlLib10/Exceptions.h"
#include "types/RuledText.h"

namespace KoXmlLib10 {

namespace {

bool IsLineOrTab(char c) { return c == '\r' || c == '\n' || c == '\t'; }

// The text as a C string would see it: up to its first NUL.
std::string_view UpToNul(const std::string& text) {
  const size_t nul = text.find('\0');
  return std::string_view(text).substr(0, nul);
}

// True when collapsing would change nothing: no NUL, no TAB, CR or LF, and
// single spaces only between other characters. Most values are like that.
bool IsCollapsed(std::string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\0' || IsLineOrTab(c)) return false;
    if (c == ' ' && (i == 0 || i + 1 == text.size() || text[i - 1] == ' ')) return false;
  }
  return true;
}

}  // namespace

bool RuleKeepsText(CWhitespaceUtils::WhitespaceRule rule, const std::string& text) {
  switch (rule) {
    case CWhitespaceUtils::WhitespaceRule_None: return true;
    case CWhitespaceUtils::WhitespaceRule_Preserve: return text.find('\r') == std::string::npos;
    case CWhitespaceUtils::WhitespaceRule_Replace: return text.find_first_of("\r\n\t") == std::string::npos;
    case CWhitespaceUtils::WhitespaceRule_Collapse: return IsCollapsed(text);
  }
  return false;
}

bool CWhitespaceUtils::IsWhiteSpace(char c) { return c == ' ' || IsLineOrTab(c); }

std::string CWhitespaceUtils::ApplyRule(WhitespaceRule rule, const std::string& text) {
  switch (rule) {
    case WhitespaceRule_None:
      return text;
    case WhitespaceRule_Preserve:
      return Preserve(text);
    case WhitespaceRule_Replace:
      return Replace(text);
    case WhitespaceRule_Collapse:
      return Collapse(text);
  }
  throw CKoException("Unknown WhitespaceRule");
}

std::string CWhitespaceUtils::Preserve(const std::string& text) {
  if (text.find('\r') == std::string::npos) return text;
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      out += text[i];
      continue;
    }
    out += '\n';
    if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
  }
  return out;
}

std::string CWhitespaceUtils::Preserve(const char* text, int length) {
  if (!text) return std::string();
  return length < 0 ? Preserve(std::string(text))
                    : Preserve(std::string(text, static_cast<size_t>(length)));
}

std::string CWhitespaceUtils::Replace(const std::string& text) {
  if (text.find_first_of("\r\n\t") == std::string::npos) return text;
  const std::string_view in = UpToNul(text);
  std::string out;
  out.reserve(in.size());
  for (size_t i = 0; i < in.size(); ++i) {
    if (!IsLineOrTab(in[i])) {
      out += in[i];
      continue;
    }
    out += ' ';
    if (in[i] == '\r' && i + 1 < in.size() && in[i + 1] == '\n') ++i;
  }
  return out;
}

std::string CWhitespaceUtils::Collapse(const std::string& text) {
  if (IsCollapsed(text)) return text;
  const std::string_view in = UpToNul(text);
  std::string out;
  out.reserve(in.size());
  bool pendingSpace = false;
  for (char c : in) {
    if (IsWhiteSpace(c)) {
      pendingSpace = !out.empty();
      continue;
    }
    if (pendingSpace) out += ' ';
    pendingSpace = false;
    out += c;
  }
  return out;
}

}  // namespace KoXmlLib10
