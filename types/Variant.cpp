#include "KoXmlLib10/Variant.h"

#include <array>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "KoXmlLib10/Exceptions.h"
#include "KoXmlLib10/XmlCollectionBase.h"
#include "KoXmlLib10/XmlObjectBase.h"

namespace KoXmlLib10 {

namespace {

// Where a type's value lives in the variant.
enum class Storage { None, InPlace, Binary, Duration, Date, String, Decimal, Integer, Reference };

Storage StorageOf(std::int32_t type) {
  switch (type) {
    case ItemType_hexBinary:
    case ItemType_base64Binary:
      return Storage::Binary;
    case ItemType_duration:
      return Storage::Duration;
    case ItemType_yearMonth:
    case ItemType_monthDay:
    case ItemType_date:
    case ItemType_datetime:
    case ItemType_time:
      return Storage::Date;
    case ItemType_string:
      return Storage::String;
    case ItemType_decimal:
      return Storage::Decimal;
    case ItemType_integer:
      return Storage::Integer;
    case KoVariant::TypeXmlObject:
    case KoVariant::TypeXmlCollection:
      return Storage::Reference;
    default:
      return type >= ItemType_i1 && type <= ItemType_boolean ? Storage::InPlace : Storage::None;
  }
}

template <class T>
constexpr Storage StorageFor() {
  if constexpr (std::is_same_v<T, CBinaryData>) return Storage::Binary;
  if constexpr (std::is_same_v<T, CDateTimeSpan>) return Storage::Duration;
  if constexpr (std::is_same_v<T, CDateTime>) return Storage::Date;
  if constexpr (std::is_same_v<T, std::string>) return Storage::String;
  if constexpr (std::is_same_v<T, CDecimal>) return Storage::Decimal;
  if constexpr (std::is_same_v<T, CBigInteger>) return Storage::Integer;
  return Storage::None;
}

// ---- per-thread reuse of heap values ------------------------------------------
//
// Reading or writing a document sets and clears a short-lived variant for
// every value, and each heap kind costs an allocation per value (strings a
// second one for their characters). Released values are kept on a small
// per-thread shelf and handed to the next setter of the same kind, which
// assigns into them (a string keeps its buffer). Shelves hold a few values
// each, never a long string, and are freed when the thread ends; variants
// destroyed after that (thread-local or static variants of the caller)
// simply delete their values.

constexpr size_t kShelfSize = 8;
// A string with more room than this is freed, not kept.
constexpr size_t kKeptStringCapacity = 256;

template <class T>
constexpr int ShelfOf() {
  if constexpr (std::is_same_v<T, std::string>) return 0;
  if constexpr (std::is_same_v<T, CDecimal>) return 1;
  if constexpr (std::is_same_v<T, CBigInteger>) return 2;
  if constexpr (std::is_same_v<T, CDateTime>) return 3;
  return -1;
}
constexpr int kShelfCount = 4;

template <class T>
constexpr bool kShelved = ShelfOf<T>() >= 0;

// The shelves themselves are plain data, so that reaching them costs one
// thread-local lookup and no initialisation check. Each slot owns the
// object it points to; the reaper below frees what is left at thread exit.
struct ShelfState {
  void* items[kShelfCount][kShelfSize];
  unsigned char counts[kShelfCount];
  bool reaperArmed;
  bool closed;  // the thread is ending: nothing more is kept
};
thread_local ShelfState t_shelves{};

template <class T>
void FreeShelf(ShelfState& state) {
  constexpr int shelf = ShelfOf<T>();
  while (state.counts[shelf] > 0) {
    const std::unique_ptr<T> value(static_cast<T*>(state.items[shelf][--state.counts[shelf]]));
  }
}

struct ShelfReaper {
  ShelfReaper() = default;
  ShelfReaper(const ShelfReaper&) = delete;
  ShelfReaper& operator=(const ShelfReaper&) = delete;
  ~ShelfReaper() {
    ShelfState& state = t_shelves;
    state.closed = true;
    FreeShelf<std::string>(state);
    FreeShelf<CDecimal>(state);
    FreeShelf<CBigInteger>(state);
    FreeShelf<CDateTime>(state);
  }
};

// Keeps a released value; false when there is no room (or the thread is
// ending), and the caller frees it.
template <class T>
bool Shelve(std::unique_ptr<T>& value) {
  constexpr int shelf = ShelfOf<T>();
  ShelfState& state = t_shelves;
  // Only a thread whose reaper is armed keeps values: code that runs once
  // thread-local objects are gone (static destructors) frees them instead.
  if (!state.reaperArmed || state.closed || state.counts[shelf] == kShelfSize) return false;
  state.items[shelf][state.counts[shelf]++] = value.release();
  return true;
}

template <class T>
std::unique_ptr<T> Unshelve() {
  constexpr int shelf = ShelfOf<T>();
  ShelfState& state = t_shelves;
  if (state.counts[shelf] == 0) {
    if (!state.reaperArmed && !state.closed) {
      // Built on the thread's first setter, so its destructor runs when the thread ends.
      thread_local ShelfReaper reaper;
      state.reaperArmed = true;
    }
    return nullptr;
  }
  return std::unique_ptr<T>(static_cast<T*>(state.items[shelf][--state.counts[shelf]]));
}

// A value of kind T to assign into: a shelved one if there is one.
template <class T>
std::unique_ptr<T> Fresh() {
  if constexpr (kShelved<T>) {
    if (std::unique_ptr<T> value = Unshelve<T>()) return value;
  }
  return std::make_unique<T>();
}

// Empties a released value for reuse; false when it is not worth keeping.
bool Reset(std::string& value) {
  if (value.capacity() > kKeptStringCapacity) return false;
  value.clear();
  return true;
}
// Moving a fresh number in frees limbs that were kept on the heap.
bool Reset(CDecimal& value) {
  value = CDecimal();
  return true;
}
bool Reset(CBigInteger& value) {
  value = CBigInteger();
  return true;
}
bool Reset(CDateTime&) { return true; }

template <class T>
void DeleteAs(void* p) {
  std::unique_ptr<T> value(static_cast<T*>(p));
  if constexpr (kShelved<T>) {
    if (value && Reset(*value)) Shelve(value);
  }
}

template <class T>
void* CopyAs(const void* p) {
  if (!p) return nullptr;
  if constexpr (kShelved<T>) {
    std::unique_ptr<T> copy = Fresh<T>();
    *copy = *static_cast<const T*>(p);
    return copy.release();
  } else {
    return std::make_unique<T>(*static_cast<const T*>(p)).release();
  }
}

const char* const kTypeTokens[] = {
    nullptr,    "hexBinary", "base64Binary", "i1",     "i2",     "i4",      "i8",
    "ui1",      "ui2",       "ui4",          "ui8",    "r4",     "r8",      "duration",
    "yearMonth", "monthDay", "year",         "month",  "day",    "date",    "datetime",
    "time",     "char",      "string",       "boolean", "decimal", "integer"};

bool IsPrimitive(std::int32_t type) { return type >= ItemType_hexBinary && type <= ItemType_integer; }

[[noreturn]] void FailConversionType(std::int32_t type) {
  throw CKoException(FormatString("Invalid Type %d to convert to string", static_cast<int>(type)));
}

}  // namespace

KoVariant::KoVariant() : m_nil(false), m_type(0), m_bits(0) {}

KoVariant::KoVariant(const KoVariant& other) : KoVariant() { *this = other; }

KoVariant::~KoVariant() { Clear(); }

KoVariant& KoVariant::operator=(const KoVariant& other) {
  if (this == &other) return *this;
  const Storage storage = StorageOf(other.m_type);
  if (storage == Storage::None && other.m_type != 0) {
    Clear();
    throw CKoException("Unknown Type");
  }
  // The copy is made before this value goes, so a failed copy changes nothing.
  std::uint64_t bits = 0;
  void* pointer = nullptr;
  if (!other.m_nil) {
    switch (storage) {
      case Storage::Binary: pointer = CopyAs<CBinaryData>(other.m_pointer); break;
      case Storage::Duration: pointer = CopyAs<CDateTimeSpan>(other.m_pointer); break;
      case Storage::Date: pointer = CopyAs<CDateTime>(other.m_pointer); break;
      case Storage::String: pointer = CopyAs<std::string>(other.m_pointer); break;
      case Storage::Decimal: pointer = CopyAs<CDecimal>(other.m_pointer); break;
      case Storage::Integer: pointer = CopyAs<CBigInteger>(other.m_pointer); break;
      case Storage::Reference:
        pointer = other.m_pointer;
        if (pointer) static_cast<CXmlObjectBase*>(pointer)->AddRef();
        break;
      case Storage::InPlace: bits = other.m_bits; break;
      case Storage::None: break;
    }
  }
  Clear();
  m_type = other.m_type;
  m_nil = other.m_nil;
  if (storage == Storage::InPlace)
    m_bits = bits;
  else
    m_pointer = pointer;
  return *this;
}

void KoVariant::Clear() {
  if (m_type == 0) return;
  m_nil = false;
  switch (StorageOf(m_type)) {
    case Storage::Binary: DeleteAs<CBinaryData>(m_pointer); break;
    case Storage::Duration: DeleteAs<CDateTimeSpan>(m_pointer); break;
    case Storage::Date: DeleteAs<CDateTime>(m_pointer); break;
    case Storage::String: DeleteAs<std::string>(m_pointer); break;
    case Storage::Decimal: DeleteAs<CDecimal>(m_pointer); break;
    case Storage::Integer: DeleteAs<CBigInteger>(m_pointer); break;
    case Storage::Reference:
      if (m_pointer) static_cast<CXmlObjectBase*>(m_pointer)->Release();
      break;
    case Storage::InPlace:
    case Storage::None:
      break;
  }
  m_bits = 0;
  m_type = 0;
}

// ---- storage -----------------------------------------------------------------

template <class T>
void KoVariant::StoreInPlace(std::int32_t type, T value) {
  static_assert(sizeof(T) <= sizeof(m_bits), "in-place kinds fit the cell");
  Clear();
  m_nil = false;
  m_type = type;
  m_bits = 0;
  std::memcpy(&m_bits, &value, sizeof value);
}

template <class T>
T KoVariant::LoadInPlace() const {
  T value;
  std::memcpy(&value, &m_bits, sizeof value);
  return value;
}

void KoVariant::StoreOwned(std::int32_t type, void* value) {
  Clear();
  m_nil = false;
  m_type = type;
  m_pointer = value;
}

template <class T>
const T* KoVariant::Owned() const {
  if (StorageOf(m_type) != StorageFor<T>()) return nullptr;
  return static_cast<const T*>(m_pointer);
}

namespace {

// The owned copy is built before the old value goes, and adopted by the
// variant only once nothing can throw any more.
template <class T>
void* NewOwned(const T& value) {
  if constexpr (kShelved<T>) {
    std::unique_ptr<T> owned = Fresh<T>();
    if constexpr (std::is_same_v<T, std::string>)
      owned->assign(value);  // keeps the reused buffer
    else
      *owned = value;
    return owned.release();
  } else {
    return std::make_unique<T>(value).release();
  }
}

// A value made for the variant alone moves into its storage.
template <class T>
void* NewOwnedFrom(T&& value) {
  static_assert(!std::is_reference_v<T>, "only values made for the variant move in");
  if constexpr (kShelved<T>) {
    std::unique_ptr<T> owned = Fresh<T>();
    if constexpr (std::is_same_v<T, std::string>) {
      // A short string copies into the reused buffer; a longer one brings its own.
      if (value.size() <= owned->capacity())
        owned->assign(value);
      else
        *owned = std::move(value);
    } else {
      *owned = std::move(value);
    }
    return owned.release();
  } else {
    return std::make_unique<T>(std::move(value)).release();
  }
}

template <class T>
T OwnedOrDefault(const T* p) {
  return p ? *p : T();
}

}  // namespace

void KoVariant::SetI1(char value) { StoreInPlace(ItemType_i1, value); }
void KoVariant::SetI2(short value) { StoreInPlace(ItemType_i2, value); }
void KoVariant::SetI4(long value) { StoreInPlace(ItemType_i4, value); }
void KoVariant::SetI8(long long value) { StoreInPlace(ItemType_i8, value); }
void KoVariant::SetUI1(unsigned char value) { StoreInPlace(ItemType_ui1, value); }
void KoVariant::SetUI2(unsigned short value) { StoreInPlace(ItemType_ui2, value); }
void KoVariant::SetUI4(unsigned long value) { StoreInPlace(ItemType_ui4, value); }
void KoVariant::SetUI8(unsigned long long value) { StoreInPlace(ItemType_ui8, value); }
void KoVariant::SetR4(float value) { StoreInPlace(ItemType_r4, value); }
void KoVariant::SetR8(double value) { StoreInPlace(ItemType_r8, value); }
// Stored as a byte so that reading it back never meets a bool of another value.
void KoVariant::SetBoolean(bool value) { StoreInPlace<unsigned char>(ItemType_boolean, value ? 1 : 0); }
void KoVariant::SetChar(char value) { StoreInPlace(ItemType_char, value); }
void KoVariant::SetYear(unsigned short value) { StoreInPlace(ItemType_year, value); }
void KoVariant::SetMonth(unsigned char value) { StoreInPlace(ItemType_month, value); }
void KoVariant::SetDay(unsigned char value) { StoreInPlace(ItemType_day, value); }

void KoVariant::SetString(const std::string& value) { StoreOwned(ItemType_string, NewOwned(value)); }
void KoVariant::SetString(std::string&& value) { StoreOwned(ItemType_string, NewOwnedFrom(std::move(value))); }
void KoVariant::SetDecimal(const CDecimal& value) { StoreOwned(ItemType_decimal, NewOwned(value)); }
void KoVariant::SetDecimal(CDecimal&& value) { StoreOwned(ItemType_decimal, NewOwnedFrom(std::move(value))); }
void KoVariant::SetInteger(const CBigInteger& value) { StoreOwned(ItemType_integer, NewOwned(value)); }
void KoVariant::SetInteger(CBigInteger&& value) {
  StoreOwned(ItemType_integer, NewOwnedFrom(std::move(value)));
}
void KoVariant::SetDuration(const CDateTimeSpan& value) { StoreOwned(ItemType_duration, NewOwned(value)); }
void KoVariant::SetDate(const CDateTime& value) { StoreOwned(ItemType_date, NewOwned(value)); }
void KoVariant::SetDateTime(const CDateTime& value) { StoreOwned(ItemType_datetime, NewOwned(value)); }
void KoVariant::SetTime(const CDateTime& value) { StoreOwned(ItemType_time, NewOwned(value)); }
void KoVariant::SetYearMonth(const CDateTime& value) { StoreOwned(ItemType_yearMonth, NewOwned(value)); }
void KoVariant::SetMonthDay(const CDateTime& value) { StoreOwned(ItemType_monthDay, NewOwned(value)); }
void KoVariant::SetBase64Binary(const CBinaryData& value) {
  StoreOwned(ItemType_base64Binary, NewOwned(value));
}
void KoVariant::SetHexBinary(const CBinaryData& value) { StoreOwned(ItemType_hexBinary, NewOwned(value)); }

void KoVariant::SetXmlObject(CXmlObjectBase* value) {
  // The new reference is taken before the old one goes: both may be the same object.
  if (value) value->AddRef();
  StoreOwned(TypeXmlObject, value);
}

void KoVariant::SetXmlCollection(CXmlCollectionBase* value) {
  CXmlObjectBase* object = value;
  if (object) object->AddRef();
  StoreOwned(TypeXmlCollection, object);
}

void KoVariant::SetNil() {
  const std::int32_t type = m_type;
  Clear();
  m_type = type;
  m_nil = true;
}

void KoVariant::SetInvalid() {
  Clear();
  m_nil = false;
}

char KoVariant::GetI1() const { return LoadInPlace<char>(); }
short KoVariant::GetI2() const { return LoadInPlace<short>(); }
long KoVariant::GetI4() const { return LoadInPlace<long>(); }
long long KoVariant::GetI8() const { return LoadInPlace<long long>(); }
unsigned char KoVariant::GetUI1() const { return LoadInPlace<unsigned char>(); }
unsigned short KoVariant::GetUI2() const { return LoadInPlace<unsigned short>(); }
unsigned long KoVariant::GetUI4() const { return LoadInPlace<unsigned long>(); }
unsigned long long KoVariant::GetUI8() const { return LoadInPlace<unsigned long long>(); }
float KoVariant::GetR4() const { return LoadInPlace<float>(); }
double KoVariant::GetR8() const { return LoadInPlace<double>(); }
bool KoVariant::GetBoolean() const { return LoadInPlace<unsigned char>() != 0; }
char KoVariant::GetChar() const { return LoadInPlace<char>(); }
unsigned short KoVariant::GetYear() const { return LoadInPlace<unsigned short>(); }
unsigned char KoVariant::GetMonth() const { return LoadInPlace<unsigned char>(); }
unsigned char KoVariant::GetDay() const { return LoadInPlace<unsigned char>(); }

std::string KoVariant::GetString() const { return OwnedOrDefault(Owned<std::string>()); }
CDecimal KoVariant::GetDecimal() const { return OwnedOrDefault(Owned<CDecimal>()); }
CBigInteger KoVariant::GetInteger() const { return OwnedOrDefault(Owned<CBigInteger>()); }
CDateTimeSpan KoVariant::GetDuration() const { return OwnedOrDefault(Owned<CDateTimeSpan>()); }
CDateTime KoVariant::GetDate() const { return OwnedOrDefault(Owned<CDateTime>()); }
CDateTime KoVariant::GetDateTime() const { return OwnedOrDefault(Owned<CDateTime>()); }
CDateTime KoVariant::GetTime() const { return OwnedOrDefault(Owned<CDateTime>()); }
CDateTime KoVariant::GetYearMonth() const { return OwnedOrDefault(Owned<CDateTime>()); }
CDateTime KoVariant::GetMonthDay() const { return OwnedOrDefault(Owned<CDateTime>()); }
CBinaryData KoVariant::GetBase64Binary() const { return OwnedOrDefault(Owned<CBinaryData>()); }
CBinaryData KoVariant::GetHexBinary() const { return OwnedOrDefault(Owned<CBinaryData>()); }

template <class T>
T KoVariant::TakeOwned() {
  T* held = m_nil ? nullptr : const_cast<T*>(Owned<T>());
  if (!held) return T();
  T value(std::move(*held));
  *held = T();  // moved-from objects are valid but unspecified; make it the empty value
  return value;
}

std::string KoVariant::TakeString() { return TakeOwned<std::string>(); }
CDecimal KoVariant::TakeDecimal() { return TakeOwned<CDecimal>(); }
CBigInteger KoVariant::TakeInteger() { return TakeOwned<CBigInteger>(); }

CXmlObjectBase* KoVariant::GetXmlObject() const {
  if (StorageOf(m_type) != Storage::Reference || !m_pointer) return nullptr;
  auto* object = static_cast<CXmlObjectBase*>(m_pointer);
  object->AddRef();
  return object;
}

CXmlCollectionBase* KoVariant::GetXmlCollection() const {
  if (StorageOf(m_type) != Storage::Reference) return nullptr;
  auto* collection = dynamic_cast<CXmlCollectionBase*>(static_cast<CXmlObjectBase*>(m_pointer));
  if (collection) collection->AddRef();
  return collection;
}

bool KoVariant::IsNil() const { return m_nil; }

bool KoVariant::IsValid() const { return m_type != 0 || m_nil; }

std::string KoVariant::GetType() const {
  if (!IsPrimitive(m_type)) throw CKoException(FormatString("Invalid Type %d", static_cast<int>(m_type)));
  return kTypeTokens[m_type];
}

// ---- text --------------------------------------------------------------------

std::string KoVariant::ToString(const char* format) const {
  const std::string f = format ? format : "";
  using C = CConversions;
  switch (m_type) {
    case ItemType_hexBinary: return C::hexBinaryToString(GetHexBinary());
    case ItemType_base64Binary: return C::base64BinaryToString(GetBase64Binary());
    case ItemType_i1: return C::i1ToString(GetI1());
    case ItemType_i2: return C::i2ToString(GetI2());
    case ItemType_i4: return C::i4ToString(GetI4());
    case ItemType_i8: return C::i8ToString(GetI8());
    case ItemType_ui1: return C::ui1ToString(GetUI1());
    case ItemType_ui2: return C::ui2ToString(GetUI2());
    case ItemType_ui4: return C::ui4ToString(GetUI4());
    case ItemType_ui8: return C::ui8ToString(GetUI8());
    case ItemType_r4: return C::r4ToString(GetR4(), f);
    case ItemType_r8: return C::r8ToString(GetR8(), f);
    case ItemType_duration: return C::durationToString(GetDuration());
    case ItemType_yearMonth: return C::yearMonthToString(GetYearMonth());
    case ItemType_monthDay: return C::monthDayToString(GetMonthDay());
    case ItemType_year: return C::yearToString(GetYear());
    case ItemType_month: return C::monthToString(GetMonth());
    case ItemType_day: return C::dayToString(GetDay());
    case ItemType_date: return C::dateToString(GetDate());
    case ItemType_datetime: return C::datetimeToString(GetDateTime());
    case ItemType_time: return C::timeToString(GetTime());
    case ItemType_char: return C::charToString(GetChar());
    case ItemType_string: return C::stringToString(GetString());
    case ItemType_boolean: return C::booleanToString(GetBoolean());
    case ItemType_decimal: return C::decimalToString(GetDecimal(), f);
    case ItemType_integer: return C::integerToString(GetInteger());
    default: FailConversionType(m_type);
  }
}

void KoVariant::FromString(const std::string& text, ItemType type,
                           CWhitespaceUtils::WhitespaceRule rule) {
  using C = CConversions;
  const std::string& t = text;
  switch (type) {
    case ItemType_hexBinary: return StoreOwned(ItemType_hexBinary, NewOwnedFrom(C::hexBinaryFromString(t, rule)));
    case ItemType_base64Binary: return StoreOwned(ItemType_base64Binary, NewOwnedFrom(C::base64BinaryFromString(t, rule)));
    case ItemType_i1: return SetI1(C::i1FromString(t, rule));
    case ItemType_i2: return SetI2(C::i2FromString(t, rule));
    case ItemType_i4: return SetI4(C::i4FromString(t, rule));
    case ItemType_i8: return SetI8(C::i8FromString(t, rule));
    case ItemType_ui1: return SetUI1(C::ui1FromString(t, rule));
    case ItemType_ui2: return SetUI2(C::ui2FromString(t, rule));
    case ItemType_ui4: return SetUI4(C::ui4FromString(t, rule));
    case ItemType_ui8: return SetUI8(C::ui8FromString(t, rule));
    case ItemType_r4: return SetR4(C::r4FromString(t, rule));
    case ItemType_r8: return SetR8(C::r8FromString(t, rule));
    case ItemType_duration: return SetDuration(C::durationFromString(t, rule));
    case ItemType_yearMonth: return SetYearMonth(C::yearMonthFromString(t, rule));
    case ItemType_monthDay: return SetMonthDay(C::monthDayFromString(t, rule));
    case ItemType_year: return SetYear(C::yearFromString(t, rule));
    case ItemType_month: return SetMonth(C::monthFromString(t, rule));
    case ItemType_day: return SetDay(C::dayFromString(t, rule));
    case ItemType_date: return SetDate(C::dateFromString(t, rule));
    case ItemType_datetime: return SetDateTime(C::datetimeFromString(t, rule));
    case ItemType_time: return SetTime(C::timeFromString(t, rule));
    case ItemType_char: return SetChar(C::charFromString(t, rule));
    case ItemType_string: return SetString(C::stringFromString(t, rule));
    case ItemType_boolean: return SetBoolean(C::booleanFromString(t, rule));
    case ItemType_decimal: return SetDecimal(C::decimalFromString(t, rule));
    case ItemType_integer: return SetInteger(C::integerFromString(t, rule));
    default: FailConversionType(type);
  }
}

}  // namespace KoXmlLib10
