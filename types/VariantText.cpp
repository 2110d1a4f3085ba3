#include "types/VariantText.h"

#include <cfloat>
#include <charconv>
#include <cmath>

#include "types/VariantAccess.h"

namespace KoXmlLib10 {

namespace {

// Decimal text of a whole number: the same digits printf's %d family gives.
template <class T>
const std::string& WholeText(T value, std::string& scratch) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  scratch.assign(buffer, result.ptr);
  return scratch;
}

const std::string& Assign(std::string& scratch, const char* text) {
  scratch.assign(text);
  return scratch;
}

// A real number as printf's %.<precision>g prints it, and the names of the
// values beyond the kind's range.
const std::string& RealText(double value, double max, int precision, std::string& scratch) {
  if (std::isnan(value)) return Assign(scratch, "NaN");
  if (value < -max) return Assign(scratch, "-INF");
  if (value > max) return Assign(scratch, "INF");
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, precision);
  scratch.assign(buffer, result.ptr);
  return scratch;
}

}  // namespace

const std::string& VariantText(const KoVariant& value, const char* format, std::string& scratch) {
  using A = KoVariantAccess;
  const bool plainFormat = !format || !*format;
  switch (A::Type(value)) {
    case ItemType_string:
      if (const std::string* held = A::String(value)) return *held;
      break;
    case ItemType_i1: return WholeText(static_cast<int>(value.GetI1()), scratch);
    case ItemType_i2: return WholeText(static_cast<int>(value.GetI2()), scratch);
    case ItemType_i4: return WholeText(value.GetI4(), scratch);
    case ItemType_i8: return WholeText(value.GetI8(), scratch);
    case ItemType_ui1: return WholeText(static_cast<unsigned>(value.GetUI1()), scratch);
    case ItemType_ui2: return WholeText(static_cast<unsigned>(value.GetUI2()), scratch);
    case ItemType_ui4: return WholeText(value.GetUI4(), scratch);
    case ItemType_ui8: return WholeText(value.GetUI8(), scratch);
    // The texts of CConversions::r4ToString and r8ToString without a format.
    case ItemType_r4:
      if (plainFormat) return RealText(value.GetR4(), FLT_MAX, 7, scratch);
      break;
    case ItemType_r8:
      if (plainFormat) return RealText(value.GetR8(), DBL_MAX, 16, scratch);
      break;
    case ItemType_boolean: return Assign(scratch, value.GetBoolean() ? "true" : "false");
    case ItemType_decimal:
      if (const CDecimal* held = A::Decimal(value); held && plainFormat) return scratch = held->ToString();
      break;
    case ItemType_integer:
      if (const CBigInteger* held = A::Integer(value)) return scratch = held->ToString();
      break;
    case ItemType_yearMonth:
    case ItemType_monthDay:
    case ItemType_date:
    case ItemType_datetime:
    case ItemType_time:
      if (const CDateTime* held = A::DateTime(value)) return scratch = held->ToString("s");
      break;
    default: break;
  }
  return scratch = value.ToString(format);
}

}  // namespace KoXmlLib10
