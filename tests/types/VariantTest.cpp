#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <cmath>
#include <string>
#include <thread>
#include <utility>
#include <vector>

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

// The number of references an object holds, read without changing it.
int References(CXmlObjectBase* object) {
  const int count = object->AddRef();
  object->Release();
  return count - 1;
}

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
    EXPECT_EQ(References(object), 2);
    v.Clear();
    EXPECT_EQ(References(object), 1);
    v.SetXmlObject(object);
    v.SetXmlObject(object);  // replacing an object with itself keeps it alive
    EXPECT_EQ(CCounted::live, 1);
    v.SetNil();
    EXPECT_EQ(References(object), 1);
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

TEST(Variant, TakeMovesTheValueOutAndLeavesAnEmptyOne) {
  const std::string longText(200, 'x');
  KoVariant value;
  value.SetString(longText);
  EXPECT_EQ(value.TakeString(), longText);
  EXPECT_EQ(value.GetType(), "string");
  EXPECT_FALSE(value.IsNil());
  EXPECT_EQ(value.GetString(), "");
  EXPECT_EQ(value.TakeString(), "");

  value.SetDecimal(CDecimal("-12345678901234567890123456789012345678901.5"));
  EXPECT_EQ(value.TakeDecimal().ToString(), "-12345678901234567890123456789012345678901.5");
  EXPECT_EQ(value.GetType(), "decimal");
  EXPECT_TRUE(value.GetDecimal() == CDecimal(0));

  value.SetInteger(CBigInteger("-42"));
  EXPECT_EQ(value.TakeInteger().ToString(), "-42");
  EXPECT_EQ(value.ToString(nullptr), "0");

  // Another kind, or a nil variant: the default value, and the variant stays as it was.
  value.SetI4(9);
  EXPECT_EQ(value.TakeString(), "");
  EXPECT_EQ(value.TakeDecimal().ToString(), "0");
  EXPECT_EQ(value.GetI4(), 9);
  value.SetString("kept");
  EXPECT_TRUE(value.TakeInteger() == CBigInteger(0));
  EXPECT_EQ(value.GetString(), "kept");
  value.SetNil();
  EXPECT_EQ(value.TakeString(), "");
  EXPECT_TRUE(value.IsNil());
  EXPECT_EQ(value.GetType(), "string");
}

TEST(Variant, SettersCopyOrMoveAndReusedStorageHoldsNoOldValue) {
  KoVariant value;
  std::string source(100, 'a');
  value.SetString(source);
  EXPECT_EQ(source, std::string(100, 'a'));  // copied, not taken
  value.SetString(std::move(source));
  EXPECT_EQ(value.GetString(), std::string(100, 'a'));
  CDecimal wide("123456789012345678901234567890123456789012345.25");
  value.SetDecimal(std::move(wide));
  EXPECT_EQ(value.ToString(nullptr), "123456789012345678901234567890123456789012345.25");
  value.SetInteger(CBigInteger("98765432109876543210987654321098765432109876543210"));
  EXPECT_EQ(value.ToString(nullptr), "98765432109876543210987654321098765432109876543210");

  // Values released by one variant serve the next setter of the same kind:
  // each must show only its own value, whatever the previous one was.
  for (int round = 0; round < 3; ++round) {
    std::vector<KoVariant> many(20);
    for (size_t i = 0; i < many.size(); ++i) {
      const std::string text(i * 13 % 300, static_cast<char>('a' + i % 26));
      many[i].SetString(text);
      ASSERT_EQ(many[i].GetString(), text);
    }
    for (size_t i = 0; i < many.size(); ++i) {
      const std::string text = (i % 2 ? "-" : "") + std::string(1 + i * 7 % 60, '7') + ".5";
      many[i].FromString(text, ItemType_decimal, kCollapse);
      ASSERT_EQ(many[i].ToString(nullptr), text);
      many[i].FromString(std::to_string(i), ItemType_integer, kCollapse);
      ASSERT_EQ(many[i].ToString(nullptr), std::to_string(i));
      many[i].FromString("2001-10-0" + std::to_string(1 + i % 9), ItemType_date, kCollapse);
      ASSERT_EQ(many[i].ToString(nullptr), "2001-10-0" + std::to_string(1 + i % 9));
    }
    KoVariant copy = many[3];
    EXPECT_EQ(copy.ToString(nullptr), "2001-10-04");
  }
}

// Each thread keeps its own released values; variants may still be handed
// between threads, and a thread-local variant outliving the thread's shelves
// frees its value directly (the sanitizer builds check for leaks and races).
TEST(Variant, ReusedStorageIsPerThread) {
  auto work = [](int seed) {
    thread_local KoVariant outlivesShelves;
    outlivesShelves.SetString(std::string(40, 'q'));
    KoVariant carried;
    for (int i = 0; i < 2000; ++i) {
      KoVariant value;
      const std::string text = std::to_string(seed * 100000 + i) + std::string(i % 50, 'z');
      value.SetString(text);
      if (value.GetString() != text) return false;
      value.FromString(std::to_string(seed) + "." + std::to_string(i), ItemType_decimal, kCollapse);
      if (value.TakeDecimal().ToString() != CDecimal((std::to_string(seed) + "." + std::to_string(i)).c_str()).ToString())
        return false;
      if (i % 100 == 0) carried = value;
    }
    return outlivesShelves.GetString() == std::string(40, 'q');
  };
  std::vector<std::thread> threads;
  std::vector<int> results(4, 0);
  KoVariant handedOver;
  handedOver.SetString(std::string(64, 'h'));
  for (int t = 0; t < 4; ++t) threads.emplace_back([&, t] { results[t] = work(t + 1) ? 1 : 0; });
  threads.emplace_back([moved = KoVariant(handedOver)]() mutable { moved.SetInvalid(); });
  for (std::thread& thread : threads) thread.join();
  for (int ok : results) EXPECT_EQ(ok, 1);
  EXPECT_EQ(handedOver.GetString(), std::string(64, 'h'));
}
