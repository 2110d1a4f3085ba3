#ifndef KOXMLLIB10_CONVERSIONS_H
#define KOXMLLIB10_CONVERSIONS_H

#include <cstdint>
#include <string>

#include "KoXmlLib10/BigInteger.h"
#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/DateTime.h"
#include "KoXmlLib10/DateTimeSpan.h"
#include "KoXmlLib10/Decimal.h"
#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// The XSD whiteSpace facet applied to lexical text before it is converted.
class KOXML_API CWhitespaceUtils {
 public:
  enum WhitespaceRule : std::int32_t {
    WhitespaceRule_None = 0,  // text left unchanged
    WhitespaceRule_Preserve = 1,
    WhitespaceRule_Replace = 2,
    WhitespaceRule_Collapse = 3
  };

  // Throws CKoException for a rule outside 0..3.
  static std::string ApplyRule(WhitespaceRule rule, const std::string& text);

  // Line-end normalisation only: CR LF and lone CR become LF.
  static std::string Preserve(const std::string& text);
  // A negative length reads text up to its NUL; a null text is empty.
  static std::string Preserve(const char* text, int length);
  // CR LF becomes one space; any other CR, TAB or LF becomes a space.
  // A result that had to be rebuilt ends at the first NUL of the input.
  static std::string Replace(const std::string& text);
  // Whitespace runs become one space, none at either end. Ends at the first NUL.
  static std::string Collapse(const std::string& text);

  static bool IsWhiteSpace(char c);
};

// The lexical forms of the XSD primitive kinds, in both directions. Every
// from-text operation applies the whitespace rule first and throws
// CKoInvalidValueException for text that does not convert.
class KOXML_API CConversions {
 public:
  using WhitespaceRule = CWhitespaceUtils::WhitespaceRule;

  static std::string hexBinaryToString(const CBinaryData& value);
  static std::string base64BinaryToString(const CBinaryData& value);
  static std::string i1ToString(char value);
  static std::string i2ToString(short value);
  static std::string i4ToString(long value);
  static std::string i8ToString(long long value);
  static std::string ui1ToString(unsigned char value);
  static std::string ui2ToString(unsigned short value);
  static std::string ui4ToString(unsigned long value);
  static std::string ui8ToString(unsigned long long value);
  static std::string r4ToString(float value);
  static std::string r8ToString(double value);
  // A custom format is a printf format with exactly one conversion for a
  // double (e, f, g or a with flags, width and precision); output beyond the
  // fixed buffer is cut. Any other format throws CKoInvalidParamException.
  static std::string r4ToString(float value, const std::string& format);
  static std::string r8ToString(double value, const std::string& format);
  static std::string durationToString(const CDateTimeSpan& value);
  static std::string yearMonthToString(const CDateTime& value);
  static std::string monthDayToString(const CDateTime& value);
  static std::string yearToString(unsigned short value);
  static std::string monthToString(unsigned char value);
  static std::string dayToString(unsigned char value);
  static std::string dateToString(const CDateTime& value);
  static std::string datetimeToString(const CDateTime& value);
  static std::string timeToString(const CDateTime& value);
  static std::string charToString(char value);
  static std::string stringToString(const std::string& value);
  static std::string booleanToString(bool value);
  static std::string decimalToString(const CDecimal& value);
  // A non-empty format is read as the number of fraction digits (atoi).
  static std::string decimalToString(const CDecimal& value, const std::string& format);
  static std::string integerToString(const CBigInteger& value);

  static CBinaryData hexBinaryFromString(const std::string& text, WhitespaceRule rule);
  static CBinaryData base64BinaryFromString(const std::string& text, WhitespaceRule rule);
  static char i1FromString(const std::string& text, WhitespaceRule rule);
  static short i2FromString(const std::string& text, WhitespaceRule rule);
  // i4 and ui4 keep the 32-bit XSD ranges although long is wider here.
  static long i4FromString(const std::string& text, WhitespaceRule rule);
  static long long i8FromString(const std::string& text, WhitespaceRule rule);
  static unsigned char ui1FromString(const std::string& text, WhitespaceRule rule);
  static unsigned short ui2FromString(const std::string& text, WhitespaceRule rule);
  static unsigned long ui4FromString(const std::string& text, WhitespaceRule rule);
  static unsigned long long ui8FromString(const std::string& text, WhitespaceRule rule);
  static float r4FromString(const std::string& text, WhitespaceRule rule);
  static double r8FromString(const std::string& text, WhitespaceRule rule);
  static CDateTimeSpan durationFromString(const std::string& text, WhitespaceRule rule);
  static CDateTime yearMonthFromString(const std::string& text, WhitespaceRule rule);
  static CDateTime monthDayFromString(const std::string& text, WhitespaceRule rule);
  static unsigned short yearFromString(const std::string& text, WhitespaceRule rule);
  static unsigned char monthFromString(const std::string& text, WhitespaceRule rule);
  static unsigned char dayFromString(const std::string& text, WhitespaceRule rule);
  static CDateTime dateFromString(const std::string& text, WhitespaceRule rule);
  static CDateTime datetimeFromString(const std::string& text, WhitespaceRule rule);
  static CDateTime timeFromString(const std::string& text, WhitespaceRule rule);
  static char charFromString(const std::string& text, WhitespaceRule rule);
  static std::string stringFromString(const std::string& text, WhitespaceRule rule);
  static bool booleanFromString(const std::string& text, WhitespaceRule rule);
  static CDecimal decimalFromString(const std::string& text, WhitespaceRule rule);
  static CBigInteger integerFromString(const std::string& text, WhitespaceRule rule);
};

}  // namespace KoXmlLib10

#endif
