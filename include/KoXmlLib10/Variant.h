#ifndef KOXMLLIB10_VARIANT_H
#define KOXMLLIB10_VARIANT_H

#include <cstdint>
#include <string>

#include "KoXmlLib10/BigInteger.h"
#include "KoXmlLib10/BinaryData.h"
#include "KoXmlLib10/Conversions.h"
#include "KoXmlLib10/DateTime.h"
#include "KoXmlLib10/DateTimeSpan.h"
#include "KoXmlLib10/Decimal.h"
#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/ItemType.h"

namespace KoXmlLib10 {

class CXmlObjectBase;
class CXmlCollectionBase;

// One value of any XSD primitive kind, a bindable object or a collection (by
// reference), or nothing; plus the xsi:nil flag. Copies are deep, except that
// objects and collections are shared by taking another reference.
class KOXML_API KoVariant {
 public:
  // Type tags beyond the primitive kinds.
  static constexpr std::int32_t TypeXmlObject = 27;
  static constexpr std::int32_t TypeXmlCollection = 28;

  KoVariant();
  KoVariant(const KoVariant& other);
  KoVariant& operator=(const KoVariant& other);
  virtual ~KoVariant();

  // Every setter replaces the value and leaves the variant not nil.
  void SetI1(char value);
  void SetI2(short value);
  void SetI4(long value);
  void SetI8(long long value);
  void SetUI1(unsigned char value);
  void SetUI2(unsigned short value);
  void SetUI4(unsigned long value);
  void SetUI8(unsigned long long value);
  void SetR4(float value);
  void SetR8(double value);
  void SetBoolean(bool value);
  void SetChar(char value);
  void SetYear(unsigned short value);
  void SetMonth(unsigned char value);
  void SetDay(unsigned char value);
  // The string, decimal, integer and date kinds live on the heap; values
  // released by this thread's variants are kept (a few of each kind) and
  // reused by the next setter, so a short-lived variant seldom allocates.
  // SetString takes a reference rather than a copy, so that a string copied
  // in lands in a reused buffer; every call of the by-value form still fits.
  void SetString(const std::string& value);
  // Beyond the plain setters: a temporary moves in instead of being copied.
  void SetString(std::string&& value);
  void SetDecimal(const CDecimal& value);
  void SetDecimal(CDecimal&& value);
  void SetInteger(const CBigInteger& value);
  void SetInteger(CBigInteger&& value);
  void SetDuration(const CDateTimeSpan& value);
  void SetDate(const CDateTime& value);
  void SetDateTime(const CDateTime& value);
  void SetTime(const CDateTime& value);
  void SetYearMonth(const CDateTime& value);
  void SetMonthDay(const CDateTime& value);
  void SetBase64Binary(const CBinaryData& value);
  void SetHexBinary(const CBinaryData& value);
  // Both take a reference to the object (a null pointer is held as null).
  void SetXmlObject(CXmlObjectBase* value);
  void SetXmlCollection(CXmlCollectionBase* value);
  // Drops the value but keeps its type, and marks the variant nil.
  void SetNil();
  // Drops the value, the type and the nil flag.
  void SetInvalid();

  // The getters do not check the type tag. In-place kinds reinterpret the
  // stored bits; a kind held on the heap that is not there (another kind, or
  // a nil variant) gives a default value instead.
  char GetI1() const;
  short GetI2() const;
  long GetI4() const;
  long long GetI8() const;
  unsigned char GetUI1() const;
  unsigned short GetUI2() const;
  unsigned long GetUI4() const;
  unsigned long long GetUI8() const;
  float GetR4() const;
  double GetR8() const;
  bool GetBoolean() const;
  char GetChar() const;
  unsigned short GetYear() const;
  unsigned char GetMonth() const;
  unsigned char GetDay() const;
  std::string GetString() const;
  CDecimal GetDecimal() const;
  CBigInteger GetInteger() const;
  CDateTimeSpan GetDuration() const;
  CDateTime GetDate() const;
  CDateTime GetDateTime() const;
  CDateTime GetTime() const;
  CDateTime GetYearMonth() const;
  CDateTime GetMonthDay() const;
  CBinaryData GetBase64Binary() const;
  CBinaryData GetHexBinary() const;
  // Both hand out a new reference that the caller releases; null when the
  // variant holds no such object.
  CXmlObjectBase* GetXmlObject() const;
  CXmlCollectionBase* GetXmlCollection() const;

  // Beyond the plain getters: move the value out instead of copying it, for
  // code that is done with the variant (a property setter). The variant
  // keeps its type and nil flag and holds an empty value of the kind: the
  // empty string, or zero. For another kind, or a nil variant, they give
  // the default value like the getters and leave the variant alone.
  //   m_description = value.TakeString();
  std::string TakeString();
  CDecimal TakeDecimal();
  CBigInteger TakeInteger();

  bool IsNil() const;
  // True with a value, or when nil.
  bool IsValid() const;
  // The kind's token ("i4", "datetime", ...); throws for no value, objects
  // and collections.
  std::string GetType() const;

  // A null format counts as empty; it is used by r4, r8 and decimal.
  std::string ToString(const char* format) const;
  void FromString(const std::string& text, ItemType type, CWhitespaceUtils::WhitespaceRule rule);

  void Clear();

 private:
  // The library's own writers read the held value in place (types/VariantAccess.h).
  friend struct KoVariantAccess;

  template <class T>
  void StoreInPlace(std::int32_t type, T value);
  template <class T>
  T LoadInPlace() const;
  void StoreOwned(std::int32_t type, void* value);
  template <class T>
  const T* Owned() const;
  template <class T>
  T TakeOwned();

  bool m_nil;
  std::int32_t m_type;
  union {
    std::uint64_t m_bits;  // kinds of at most 8 bytes, stored in place
    void* m_pointer;       // heap kinds (owned), objects and collections (referenced)
  };
};

}  // namespace KoXmlLib10

#endif
