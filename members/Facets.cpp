#include "KoXmlLib10/Facets.h"

#include <string_view>
#include <type_traits>

#include "KoXmlLib10/Conversions.h"
#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/XmlObjectHelper.h"
#include "members/RegEx.h"
#include "types/VariantAccess.h"

namespace KoXmlLib10 {

CPrimitiveRestrictions::CPrimitiveRestrictions() = default;

CPrimitiveRestrictions::CPrimitiveRestrictions(const char* pattern, int minLength, int maxLength,
                                               const char* minInclusive, const char* maxInclusive,
                                               const char* minExclusive, const char* maxExclusive,
                                               int length)
    : pattern(pattern ? pattern : ""),
      minLength(minLength),
      maxLength(maxLength),
      minInclusive(minInclusive ? minInclusive : ""),
      maxInclusive(maxInclusive ? maxInclusive : ""),
      minExclusive(minExclusive ? minExclusive : ""),
      maxExclusive(maxExclusive ? maxExclusive : ""),
      length(length) {}

CPrimitiveRestrictions::~CPrimitiveRestrictions() = default;

namespace {

using C = CConversions;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

const char* NameText(const char* name) { return name ? name : ""; }

[[noreturn]] void FailText(const char* name, const std::string& shown) {
  throw CKoException(FormatString("Invalid Value for %s [%s]", NameText(name), shown.c_str()));
}

// Wide enough for every kind reported as a whole number (ui4 included), and
// the same text as a plain int wherever an int holds the value.
[[noreturn]] void FailWhole(const char* name, long long value) {
  throw CKoException(FormatString("Invalid Value for %s [%lld]", NameText(name), value));
}

[[noreturn]] void FailReal(const char* name, double value) {
  throw CKoException(FormatString("Invalid Value for %s [%f]", NameText(name), value));
}

// Which bound is tested.
enum class Bound { MinInclusive, MaxInclusive, MinExclusive, MaxExclusive };

// Whether `value` satisfies `bound` against `limit`, with one comparison of
// the two: every value written is checked, and comparing big numbers is not
// free. For a total order the tests only ever need "less than".
template <class T>
bool Passes(Bound bound, const T& value, const T& limit) {
  switch (bound) {
    case Bound::MinInclusive: return !(value < limit);
    case Bound::MaxInclusive: return !(limit < value);
    case Bound::MinExclusive: return limit < value;
    case Bound::MaxExclusive: return value < limit;
  }
  return false;
}

// Each test requires its relation to hold, so NaN fails every bound.
template <class T>
bool PassesReal(Bound bound, T value, T limit) {
  switch (bound) {
    case Bound::MinInclusive: return value >= limit;
    case Bound::MaxInclusive: return value <= limit;
    case Bound::MinExclusive: return value > limit;
    case Bound::MaxExclusive: return value < limit;
  }
  return false;
}
bool Passes(Bound bound, const float& value, const float& limit) { return PassesReal(bound, value, limit); }
bool Passes(Bound bound, const double& value, const double& limit) { return PassesReal(bound, value, limit); }

// Dates and durations are partially ordered: CompareTo gives 0 equal, 1 less,
// 2 greater, 3 indeterminate, and an indeterminate comparison passes.
enum Order { Equal = 0, Less = 1, Greater = 2, Indeterminate = 3 };

bool PassesPartial(Bound bound, int order) {
  switch (bound) {
    case Bound::MinInclusive: return order == Equal || order == Greater || order == Indeterminate;
    case Bound::MaxInclusive: return order == Equal || order == Less || order == Indeterminate;
    case Bound::MinExclusive: return order == Greater || order == Indeterminate;
    case Bound::MaxExclusive: return order == Less || order == Indeterminate;
  }
  return false;
}
bool Passes(Bound bound, const CDateTime& value, const CDateTime& limit) {
  return PassesPartial(bound, value.CompareTo(limit));
}
bool Passes(Bound bound, const CDateTimeSpan& value, const CDateTimeSpan& limit) {
  return PassesPartial(bound, value.CompareTo(limit));
}

// A bound's value, converted from its text once per thread and kept: every
// value written is checked against the bounds of its member. Entries are
// keyed by the text and the conversion (the same text reads differently as a
// date and as a dateTime); decimals also by the precision limit they were
// read under. A text that does not convert is not kept and throws each time.
template <class T, class Parse>
const T& ConvertedBound(const std::string& text, Parse parse) {
  struct Entry {
    std::string text;
    Parse parse = nullptr;
    int precision = 0;
    T value{};
  };
  constexpr size_t kEntries = 8;
  thread_local Entry entries[kEntries];
  thread_local size_t next = 0;
  int precision = 0;
  if constexpr (std::is_same_v<T, CDecimal>) precision = CDecimal::m_maxDivider;
  for (Entry& entry : entries)
    if (entry.parse == parse && entry.precision == precision && entry.text == text) return entry.value;
  T value = parse(text, kCollapse);
  Entry& entry = entries[next];
  next = (next + 1) % kEntries;
  entry.parse = nullptr;  // not a valid entry until it is complete
  entry.text = text;
  entry.value = std::move(value);
  entry.precision = precision;
  entry.parse = parse;
  return entry.value;
}

// Tests the set bounds in facet order; `parse` converts a bound's text with
// the member type's own conversion, `fail` reports the value.
template <class T, class Parse, class Fail>
void CheckBounds(const T& value, const CPrimitiveRestrictions& r, Parse parse, Fail fail) {
  const struct {
    const std::string& text;
    Bound bound;
  } bounds[] = {{r.minInclusive, Bound::MinInclusive},
                {r.maxInclusive, Bound::MaxInclusive},
                {r.minExclusive, Bound::MinExclusive},
                {r.maxExclusive, Bound::MaxExclusive}};
  for (const auto& bound : bounds) {
    if (bound.text.empty()) continue;
    const T& limit = ConvertedBound<T>(bound.text, parse);
    if (!Passes(bound.bound, value, limit)) fail();
  }
}

template <class T, class Parse>
void CheckWhole(const char* name, T value, const CPrimitiveRestrictions& r, Parse parse) {
  CheckBounds<T>(value, r, parse, [&] { FailWhole(name, static_cast<long long>(value)); });
}

template <class T, class Parse>
void CheckShownAsText(const char* name, const T& value, const CPrimitiveRestrictions& r, Parse parse) {
  CheckBounds<T>(value, r, parse, [&] { FailText(name, value.ToString()); });
}

bool BreaksLength(unsigned long long length, const CPrimitiveRestrictions& r) {
  const auto set = [](int facet) { return facet >= 0; };
  const auto facet = [](int value) { return static_cast<unsigned long long>(value); };
  return (set(r.minLength) && length < facet(r.minLength)) ||
         (set(r.maxLength) && length > facet(r.maxLength)) ||
         (set(r.length) && length != facet(r.length));
}

void CheckBinary(const char* name, const CBinaryData& value, const CPrimitiveRestrictions& r) {
  if (BreaksLength(value.GetLength(), r)) FailText(name, value.GetAsHexString());
}

void CheckString(const char* name, const std::string& value, const CPrimitiveRestrictions& r) {
  if (BreaksLength(value.size(), r)) FailText(name, value);
  if (!r.pattern.empty() && !MatchesPattern(r.pattern, value)) FailText(name, value);
}

// The value a heap kind holds, or the default value its getter would give.
template <class T>
const T& HeldOrDefault(const T* held) {
  static const T kDefault{};
  return held ? *held : kDefault;
}

// Most members have no facets: nothing to convert or compare for them.
bool NoFacetSet(const CPrimitiveRestrictions& r) {
  return r.pattern.empty() && r.minLength < 0 && r.maxLength < 0 && r.length < 0 && r.minInclusive.empty() &&
         r.maxInclusive.empty() && r.minExclusive.empty() && r.maxExclusive.empty();
}

// The kinds that have a check (the others are refused, facets or not).
bool HasCheck(ItemType type) {
  return (type >= ItemType_hexBinary && type <= ItemType_time) ||
         (type >= ItemType_string && type <= ItemType_integer);
}

}  // namespace

// The heap kinds are checked in place: the getters would copy every value.
void CXmlObjectHelper::CheckRestriction(const char* name, const KoVariant& value, ItemType type,
                                        const CPrimitiveRestrictions& r) {
  using A = KoVariantAccess;
  if (HasCheck(type) && NoFacetSet(r)) return;
  switch (type) {
    case ItemType_hexBinary: return CheckRestrictionForhexBinary(name, value.GetHexBinary(), r);
    case ItemType_base64Binary: return CheckRestrictionForbase64Binary(name, value.GetBase64Binary(), r);
    case ItemType_i1: return CheckRestrictionFori1(name, value.GetI1(), r);
    case ItemType_i2: return CheckRestrictionFori2(name, value.GetI2(), r);
    case ItemType_i4: return CheckRestrictionFori4(name, value.GetI4(), r);
    case ItemType_i8: return CheckRestrictionFori8(name, value.GetI8(), r);
    case ItemType_ui1: return CheckRestrictionForui1(name, value.GetUI1(), r);
    case ItemType_ui2: return CheckRestrictionForui2(name, value.GetUI2(), r);
    case ItemType_ui4: return CheckRestrictionForui4(name, value.GetUI4(), r);
    case ItemType_ui8: return CheckRestrictionForui8(name, value.GetUI8(), r);
    case ItemType_r4: return CheckRestrictionForr4(name, value.GetR4(), r);
    case ItemType_r8: return CheckRestrictionForr8(name, value.GetR8(), r);
    case ItemType_duration: return CheckRestrictionForduration(name, value.GetDuration(), r);
    case ItemType_yearMonth:
      return CheckRestrictionForyearMonth(name, HeldOrDefault(A::DateTime(value)), r);
    case ItemType_monthDay: return CheckRestrictionFormonthDay(name, HeldOrDefault(A::DateTime(value)), r);
    case ItemType_year: return CheckRestrictionForyear(name, value.GetYear(), r);
    case ItemType_month: return CheckRestrictionFormonth(name, value.GetMonth(), r);
    case ItemType_day: return CheckRestrictionForday(name, value.GetDay(), r);
    case ItemType_date: return CheckRestrictionFordate(name, HeldOrDefault(A::DateTime(value)), r);
    case ItemType_datetime: return CheckRestrictionFordatetime(name, HeldOrDefault(A::DateTime(value)), r);
    case ItemType_time: return CheckRestrictionFortime(name, HeldOrDefault(A::DateTime(value)), r);
    case ItemType_string: return CheckString(name, HeldOrDefault(A::String(value)), r);
    case ItemType_boolean: return CheckRestrictionForboolean(name, value.GetBoolean(), r);
    case ItemType_decimal: return CheckRestrictionFordecimal(name, HeldOrDefault(A::Decimal(value)), r);
    case ItemType_integer: return CheckRestrictionForinteger(name, HeldOrDefault(A::Integer(value)), r);
    default: throw CKoInvalidValueException("unknown type [" + value.GetType() + "]");
  }
}

void CXmlObjectHelper::CheckRestrictionFori1(const char* name, char value, const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::i1FromString);
}
void CXmlObjectHelper::CheckRestrictionFori2(const char* name, short value, const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::i2FromString);
}
void CXmlObjectHelper::CheckRestrictionFori4(const char* name, long value, const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::i4FromString);
}
void CXmlObjectHelper::CheckRestrictionForui1(const char* name, unsigned char value,
                                              const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::ui1FromString);
}
void CXmlObjectHelper::CheckRestrictionForui2(const char* name, unsigned short value,
                                              const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::ui2FromString);
}
void CXmlObjectHelper::CheckRestrictionForui4(const char* name, unsigned long value,
                                              const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::ui4FromString);
}
void CXmlObjectHelper::CheckRestrictionForday(const char* name, unsigned char value,
                                              const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::dayFromString);
}
void CXmlObjectHelper::CheckRestrictionFormonth(const char* name, unsigned char value,
                                                const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::monthFromString);
}
void CXmlObjectHelper::CheckRestrictionForyear(const char* name, unsigned short value,
                                               const CPrimitiveRestrictions& r) {
  CheckWhole(name, value, r, C::yearFromString);
}

void CXmlObjectHelper::CheckRestrictionFori8(const char* name, long long value, const CPrimitiveRestrictions& r) {
  CheckBounds(value, r, C::i8FromString, [&] { FailText(name, C::i8ToString(value)); });
}
void CXmlObjectHelper::CheckRestrictionForui8(const char* name, unsigned long long value,
                                              const CPrimitiveRestrictions& r) {
  CheckBounds(value, r, C::ui8FromString, [&] { FailText(name, C::ui8ToString(value)); });
}

void CXmlObjectHelper::CheckRestrictionForr4(const char* name, float value, const CPrimitiveRestrictions& r) {
  CheckBounds(value, r, C::r4FromString, [&] { FailReal(name, value); });
}
void CXmlObjectHelper::CheckRestrictionForr8(const char* name, double value, const CPrimitiveRestrictions& r) {
  CheckBounds(value, r, C::r8FromString, [&] { FailReal(name, value); });
}

void CXmlObjectHelper::CheckRestrictionFordecimal(const char* name, const CDecimal& value,
                                                  const CPrimitiveRestrictions& r) {
  CheckShownAsText(name, value, r, C::decimalFromString);
}
void CXmlObjectHelper::CheckRestrictionForinteger(const char* name, const CBigInteger& value,
                                                  const CPrimitiveRestrictions& r) {
  CheckShownAsText(name, value, r, C::integerFromString);
}
void CXmlObjectHelper::CheckRestrictionForduration(const char* name, const CDateTimeSpan& value,
                                                   const CPrimitiveRestrictions& r) {
  CheckShownAsText(name, value, r, C::durationFromString);
}
void CXmlObjectHelper::CheckRestrictionFordate(const char* name, const CDateTime& value,
                                               const CPrimitiveRestrictions& r) {
  CheckShownAsText(name, value, r, C::dateFromString);
}
void CXmlObjectHelper::CheckRestrictionFordatetime(const char* name, const CDateTime& value,
                                                   const CPrimitiveRestrictions& r) {
  CheckShownAsText(name, value, r, C::datetimeFromString);
}
void CXmlObjectHelper::CheckRestrictionFortime(const char* name, const CDateTime& value,
                                               const CPrimitiveRestrictions& r) {
  CheckShownAsText(name, value, r, C::timeFromString);
}
void CXmlObjectHelper::CheckRestrictionForyearMonth(const char* name, const CDateTime& value,
                                                    const CPrimitiveRestrictions& r) {
  CheckShownAsText(name, value, r, C::yearMonthFromString);
}
void CXmlObjectHelper::CheckRestrictionFormonthYear(const char* name, const CDateTime& value,
                                                    const CPrimitiveRestrictions& r) {
  CheckRestrictionForyearMonth(name, value, r);
}
void CXmlObjectHelper::CheckRestrictionFormonthDay(const char* name, const CDateTime& value,
                                                   const CPrimitiveRestrictions& r) {
  CheckShownAsText(name, value, r, C::monthDayFromString);
}

void CXmlObjectHelper::CheckRestrictionForboolean(const char*, bool, const CPrimitiveRestrictions&) {}

void CXmlObjectHelper::CheckRestrictionForstring(const char* name, std::string value,
                                                 const CPrimitiveRestrictions& r) {
  CheckString(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForbase64Binary(const char* name, const CBinaryData& value,
                                                       const CPrimitiveRestrictions& r) {
  CheckBinary(name, value, r);
}
void CXmlObjectHelper::CheckRestrictionForhexBinary(const char* name, const CBinaryData& value,
                                                    const CPrimitiveRestrictions& r) {
  CheckBinary(name, value, r);
}

}  // namespace KoXmlLib10
