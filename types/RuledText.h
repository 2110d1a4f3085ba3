#ifndef KOXMLLIB10_TYPES_RULEDTEXT_H
#define KOXMLLIB10_TYPES_RULEDTEXT_H

// Internal: not installed.

#include <string>

#include "KoXmlLib10/Conversions.h"

namespace KoXmlLib10 {

// True when applying `rule` to `text` gives `text` back unchanged (a rule
// the library does not know never does).
bool RuleKeepsText(CWhitespaceUtils::WhitespaceRule rule, const std::string& text);

// A value's text after its whitespace rule. Most values come out unchanged
// and are then read where they stand; only the others are copied. The text
// given must outlive this object.
class CRuledText {
 public:
  CRuledText(CWhitespaceUtils::WhitespaceRule rule, const std::string& text) : m_text(&text) {
    if (!RuleKeepsText(rule, text)) {
      m_copy = CWhitespaceUtils::ApplyRule(rule, text);
      m_text = &m_copy;
    }
  }
  CRuledText(const CRuledText&) = delete;
  CRuledText& operator=(const CRuledText&) = delete;

  const std::string& Get() const { return *m_text; }
  operator const std::string&() const { return *m_text; }
  const char* c_str() const { return m_text->c_str(); }

 private:
  const std::string* m_text;
  std::string m_copy;
};

}  // namespace KoXmlLib10

#endif
