#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <cmath>
#include <string>

#include "support/Throws.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// Counts its live instances so that tests see when the last reference deletes it.
class CCounted : public CXmlObjectBase {
 public:
  static int live;
  CCounted() { ++live; }
  ~CCounted() override { --live; }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return ""; }
  std::string GetNamespace() const override { return ""; }

 protected:
  void ToXml_Int(CXmlWriter*, bool, const char*, const CXmlSerializationContext&, bool) const override {}
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* firstChild, const CXmlSerializationContext&,
                           bool) override {
    return firstChild;
  }
};
int CCounted::live = 0;

class CCountedCollection : public CXmlCollectionBase {
 public:
  int GetCount() const override { return 0; }
  void Clear() override {}
  void Remove(int) override {}

 protected:
  void ToXml_Int(CXmlWriter*, bool, const char*, const CXmlSerializationContext&, bool) const override {}
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* firstChild, const CXmlSerializationContext&,
                           bool) override {
    return firstChild;
  }
};

}  // namespace

TEST(Variant, NilValidityAndTypeNames) {
  KoVariant v;
  EXPECT_FALSE(v.IsValid());
  EXPECT_TRUE(Throws<CKoException>([&] { v.ToString(nullptr); },
            "Invalid Type 0 to convert to string"));
  EXPECT_TRUE(Throws<CKoException>([&] { v.GetType(); }, "Invalid Type 0"));
  v.SetNil();
  EXPECT_TRUE(v.IsValid());
  EXPECT_TRUE(v.IsNil());
  EXPECT_TRUE(Throws<CKoException>([&] { v.ToString(nullptr); },
            "Invalid Type 0 to convert to string"));

  v.SetI4(5);
  EXPECT_FALSE(v.IsNil());
  EXPECT_EQ(v.ToString(nullptr), "5");
  EXPECT_EQ(v.GetType(), "i4");
  v.SetNil();  // keeps the kind, drops the value
  EXPECT_TRUE(v.IsNil());
  EXPECT_EQ(v.GetType(), "i4");
  v.SetString("text");
  v.SetNil();
  EXPECT_EQ(v.GetString(), "");
  KoVariant copy(v);
  EXPECT_TRUE(copy.IsNil());
  EXPECT_EQ(copy.GetType(), "string");
  v.SetInvalid();
  EXPECT_FALSE(v.IsValid());

  v.SetXmlObject(nullptr);
  EXPECT_TRUE(Throws<CKoException>([&] { v.GetType(); }, "Invalid Type 27"));
  EXPECT_TRUE(Throws<CKoException>([&] { v.ToString("x"); },
            "Invalid Type 27 to convert to string"));
  EXPECT_TRUE(Throws<CKoException>([&] { v.FromString("1", static_cast<ItemType>(27), kCollapse); },
            "Invalid Type 27 to convert to string"));
  EXPECT_EQ(v.GetXmlObject(), nullptr);
}

TEST(Variant, EveryItemTypeRoundTripsThroughText) {
  const struct {
    ItemType type;
    const char* token;
    const char* text;
  } cases[] = {
      {ItemType_hexBinary, "hexBinary", "0AFF"},
      {ItemType_base64Binary, "base64Binary", "aGVsbG8="},
      {ItemType_i1, "i1", "-128"},
      {ItemType_i2, "i2", "-32768"},
      {ItemType_i4, "i4", "-2147483648"},
      {ItemType_i8, "i8", "-9223372036854775808"},
      {ItemType_ui1, "ui1", "255"},
      {ItemType_ui2, "ui2", "65535"},
      {ItemType_ui4, "ui4", "4294967295"},
      {ItemType_ui8, "ui8", "18446744073709551615"},
      {ItemType_r4, "r4", "0.3333333"},
      {ItemType_r8, "r8", "-INF"},
      {ItemType_duration, "duration", "-P1DT2H"},
      {ItemType_yearMonth, "yearMonth", "2001-10"},
      {ItemType_monthDay, "monthDay", "--10-26"},
      {ItemType_year, "year", "2024"},
      {ItemType_month, "month", "--07"},
      {ItemType_day, "day", "---07"},
      {ItemType_date, "date", "2001-10-26"},
      {ItemType_datetime, "datetime", "2001-10-26T21:32:52.125+02:00"},
      {ItemType_time, "time", "21:32:52Z"},
      {ItemType_char, "char", "x"},
      {ItemType_string, "string", "a b"},
      {ItemType_boolean, "boolean", "false"},
      {ItemType_decimal, "decimal", "-12.5"},
      {ItemType_integer, "integer", "123456789012345678901234567890"},
  };
  for (const auto& c : cases) {
    KoVariant v;
    v.FromString(std::string(" ") + c.text + " ", c.type, kCollapse);
    EXPECT_EQ(v.GetType(), c.token);
    EXPECT_EQ(v.ToString(nullptr), c.text) << c.token;
    KoVariant copy;
    copy = v;
    v.SetInvalid();
    EXPECT_EQ(copy.ToString(""), c.text) << c.token;
  }

  KoVariant v;
  v.SetR8(2.5);
  EXPECT_EQ(v.ToString("%.2f"), "2.50");
  v.SetDecimal(CDecimal("2.345"));
  EXPECT_EQ(v.ToString("1"), "2.3");
  EXPECT_TRUE(Throws<CKoException>([&] { v.FromString("1", ItemType_none, kCollapse); },
            "Invalid Type 0 to convert to string"));
  EXPECT_EQ(v.ToString(nullptr), "2.345");  // a failed FromString leaves the value
  EXPECT_THROW(v.FromString("x", ItemType_i4, kCollapse), CKoInvalidValueException);
  EXPECT_EQ(v.GetType(), "decimal");
  v.FromString("NaN", ItemType_r8, kCollapse);
  EXPECT_TRUE(std::isnan(v.GetR8()));
}

TEST(Variant, CopiesAreDeep) {
  KoVariant source;
  source.SetDecimal(CDecimal("1.25"));
  KoVariant copy;
  copy = source;
  source.SetDecimal(CDecimal("7"));
  EXPECT_EQ(copy.GetDecimal().ToString(), "1.25");

  source.SetString("abc");
  KoVariant stringCopy(source);
  source.SetString("xyz");
  EXPECT_EQ(stringCopy.GetString(), "abc");

  CBinaryData bytes("ab");
  source.SetHexBinary(bytes);
  KoVariant binaryCopy = source;
  bytes[0] = 'z';
  EXPECT_EQ(source.GetHexBinary().GetAsHexString(), "6162");
  EXPECT_EQ(binaryCopy.GetHexBinary().GetAsHexString(), "6162");

  source.SetDateTime(CConversions::datetimeFromString("2001-10-26T21:32:52", kCollapse));
  KoVariant dateCopy = source;
  source.SetInvalid();
  EXPECT_EQ(dateCopy.GetDateTime().GetHour(), 21);

  // Getters of heap kinds give a default value when the variant holds another kind.
  source.SetI4(7);
  EXPECT_EQ(source.GetString(), "");
  EXPECT_EQ(source.GetDecimal().ToString(), CDecimal().ToString());
  EXPECT_EQ(source.GetI8(), 7);
}

TEST(Variant, ObjectsAreReferenceCounted) {
  {
    CCounted* object = new CCounted;
    CSmartPtr<CCounted> keep(object);
    KoVariant v;
    v.SetXmlObject(object);
    {
      KoVariant copy(v);
      KoVariant assigned;
      assigned = v;
      CXmlObjectBase* got = copy.GetXmlObject();
      EXPECT_EQ(got, object);
      EXPECT_EQ(got->Release(), 4);  // keep, v, copy, assigned
    }
    EXPECT_EQ(object->AddRef(), 3);
    object->Release();
    v.Clear();
    EXPECT_EQ(object->AddRef(), 2);
    object->Release();
    v.SetXmlObject(object);
    v.SetXmlObject(object);  // replacing an object with itself keeps it alive
    EXPECT_EQ(CCounted::live, 1);
    v.SetNil();
    EXPECT_EQ(object->AddRef(), 2);
    object->Release();
  }
  EXPECT_EQ(CCounted::live, 0);

  // The variant's reference alone keeps an object alive.
  KoVariant v;
  v.SetXmlObject(new CCounted);
  EXPECT_EQ(CCounted::live, 1);
  v.SetI4(1);
  EXPECT_EQ(CCounted::live, 0);

  CSmartPtr<CCountedCollection> collection(new CCountedCollection);
  v.SetXmlCollection(collection.get());
  CXmlCollectionBase* got = v.GetXmlCollection();
  EXPECT_EQ(got, collection.get());
  EXPECT_EQ(got->Release(), 2);
  CXmlObjectBase* asObject = v.GetXmlObject();
  EXPECT_EQ(asObject, static_cast<CXmlObjectBase*>(collection.get()));
  asObject->Release();
  v.SetXmlObject(new CCounted);
  EXPECT_EQ(v.GetXmlCollection(), nullptr);
  v.SetInvalid();
  EXPECT_EQ(CCounted::live, 0);
}

TEST(SmartPtr, HoldsOneReference) {
  {
    CSmartPtr<CCounted> empty;
    EXPECT_FALSE(empty);
    CSmartPtr<CCounted> a(new CCounted);
    CSmartPtr<CCounted> b = a;
    CSmartPtr<CXmlObjectBase> base(a);
    EXPECT_TRUE(b);
    EXPECT_EQ(base.get(), a.get());
    EXPECT_EQ(a->AddRef(), 4);
    (*a).Release();
    b = b;
    a = nullptr;
    base = nullptr;
    EXPECT_EQ(CCounted::live, 1);
    b = new CCounted;  // the first object loses its last reference
    EXPECT_EQ(CCounted::live, 1);
  }
  EXPECT_EQ(CCounted::live, 0);

  // A fresh object (count 0) is deleted by AddRef then Release.
  CCounted* fresh = new CCounted;
  fresh->AddRef();
  EXPECT_EQ(fresh->Release(), 0);
  EXPECT_EQ(CCounted::live, 0);
}
