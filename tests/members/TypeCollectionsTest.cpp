#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include "support/CollectionEvents.h"
#include "support/Throws.h"
#include "support/Trees.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

// A collection of items named v, with the facets the test needs.
template <class C>
CSmartPtr<C> New(const char* maxInclusive = nullptr, int minOccurs = 0, int maxOccurs = -1,
                 const char* numberFormat = nullptr, const char* pattern = nullptr) {
  return new C("v", "", minOccurs, maxOccurs, pattern, -1, -1, nullptr, maxInclusive, nullptr, nullptr, -1,
               CWhitespaceUtils::WhitespaceRule_Collapse, numberFormat);
}

// The collection written inside an element r.
std::string Written(const CXmlObjectBase& collection,
                    const CXmlSerializationContext& ctx = CXmlSerializationContext::m_defaultContext) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.Open();
  writer.SetFormat(false);
  writer.WriteStartElement("r", "");
  CXmlObjectBase::ToXml_Int(&collection, &writer, false, "", ctx, false);
  writer.WriteEndElement();
  writer.Close();
  return std::string(stream.GetText(), stream.GetLength());
}

// Reads the children of the document element into the collection; returns
// the name of the element it stopped at ("" at the end).
std::string ReadChildren(CXmlObjectBase& collection, const std::string& xml) {
  CXmlDocument doc;
  EXPECT_TRUE(LoadText(doc, xml));
  CXmlElement* root = doc.GetDocumentElement();
  CXmlElement* rest = CXmlObjectBase::FromXml_Int(&collection, root, root->GetFirstElement(),
                                                  CXmlSerializationContext::m_defaultContext);
  return rest ? rest->GetLocalName() : "";
}

static_assert(std::is_same_v<decltype(std::declval<Ci1Col>().Item(0)), char>);
static_assert(std::is_same_v<decltype(std::declval<Ci4Col>().Item(0)), long>);
static_assert(std::is_same_v<decltype(std::declval<Cui8Col>().Item(0)), unsigned long long>);
static_assert(std::is_same_v<decltype(std::declval<CstringCol>().Item(0)), std::string>);
static_assert(std::is_same_v<decltype(std::declval<CdecimalCol>().Item(0)), CDecimal>);
static_assert(std::is_same_v<decltype(std::declval<ChexBinaryCol>().Item(0)), CBinaryData>);
static_assert(std::is_same_v<decltype(std::declval<CdateCol>().Item(0)), CDateTime>);

TEST(TypeCollection, AddTellsTheValueAndAFacetFailureStopsAfterTheAddEvent) {
  CSmartPtr<Ci4Col> col = New<Ci4Col>("100");
  CEventRecorder events;
  events.peek = [](void* data) { return std::to_string(*static_cast<long*>(data)); };
  col->AddEventListener(&events);
  col->Add(7);
  col->AddAt(0, 100);
  EXPECT_TRUE(Throws<CKoException>([&] { col->Add(101); }, "Invalid Value for v [101]"));
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->AddAt(-1, 5); }, "Index out of range"));
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->AddAt(3, 5); }, "Index out of range"));
  EXPECT_EQ(events.Types(), "1 2 0 1 2 0 1 1 1");
  std::vector<std::string> seen;
  for (const RecordedEvent& e : events.events) seen.push_back(e.seen);
  EXPECT_EQ(seen, (std::vector<std::string>{"7", "7", "", "100", "100", "", "101", "5", "5"}));
  EXPECT_EQ(events.events[0].sender, col.get());
  EXPECT_EQ(col->GetCount(), 2);
  std::vector<long> values(col->begin(), col->end());
  EXPECT_EQ(values, (std::vector<long>{100, 7}));
  col->RemoveEventListener(&events);
}

TEST(TypeCollection, ItemRemoveAndClear) {
  CSmartPtr<CstringCol> col = New<CstringCol>();
  for (const char* s : {"a", "b", "c"}) col->Add(s);
  EXPECT_EQ(col->Item(2), "c");
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->Item(3); }, "Index 3 is out of range, use 0 - 3"));
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->Item(-1); }, "Index -1 is out of range, use 0 - 3"));
  CEventRecorder events;
  col->AddEventListener(&events);
  col->Remove(2);
  EXPECT_EQ(events.Types(), "3 4 0");
  EXPECT_EQ(events.events[0].seen, "2");
  EXPECT_EQ(events.events[1].seen, "2");
  events.events.clear();
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->Remove(2); }, "Index 2 is out of range, use 0 - 2"));
  EXPECT_EQ(events.Types(), "3");  // told before the index failed
  events.events.clear();
  col->Clear();
  EXPECT_EQ(col->GetCount(), 0);
  EXPECT_EQ(events.Types(), "3 4 0 3 4 0");
  EXPECT_EQ(events.events[3].seen, "0");
  col->RemoveEventListener(&events);
}

TEST(TypeCollection, ReadingARunStopsAtTheFirstOtherElement) {
  CSmartPtr<Ci4Col> col = New<Ci4Col>();
  EXPECT_EQ(ReadChildren(*col, "<r><v>1</v><v> 2 </v><w/><v>3</v></r>"), "w");
  EXPECT_EQ(std::vector<long>(col->begin(), col->end()), (std::vector<long>{1, 2}));
  // Counts are the reader's business: a run longer than the maximum is read.
  CSmartPtr<Ci4Col> bounded = New<Ci4Col>(nullptr, 0, 1);
  EXPECT_EQ(ReadChildren(*bounded, "<r><v>1</v><v>2</v></r>"), "");
  EXPECT_EQ(bounded->GetCount(), 2);
  EXPECT_EQ(ReadChildren(*bounded, "<r><w/></r>"), "w");
}

TEST(TypeCollection, AFacetFailureWhileReadingKeepsWhatWasReadBefore) {
  CSmartPtr<Ci4Col> col = New<Ci4Col>("100");
  EXPECT_TRUE(Throws<CKoException>([&] { ReadChildren(*col, "<r><v>1</v><v>200</v><v>3</v></r>"); },
            "Invalid Value for v [200]"));
  EXPECT_EQ(std::vector<long>(col->begin(), col->end()), (std::vector<long>{1}));
  CSmartPtr<CstringCol> patterned = New<CstringCol>(nullptr, 0, -1, nullptr, "[a-z]+");
  EXPECT_TRUE(Throws<CKoException>([&] { ReadChildren(*patterned, "<r><v>ab</v><v>a1</v></r>"); },
            "Invalid Value for v [a1]"));
  EXPECT_EQ(patterned->GetCount(), 1);
  // Text that does not convert fails the same way.
  EXPECT_THROW(ReadChildren(*col, "<r><v>x</v></r>"), CKoInvalidValueException);
  EXPECT_EQ(col->GetCount(), 1);
}

TEST(TypeCollection, WritingChecksTheCountFirst) {
  CSmartPtr<CstringCol> col = New<CstringCol>(nullptr, 2, 3);
  col->Add("a");
  EXPECT_TRUE(Throws<CKoValidationException>([&] { Written(*col); },
            "The Minimum number of [v] elements allowed in this collection is 2"));
  CXmlSerializationContext tolerant;
  tolerant.SetIgnoreInvalidCollectionCounts(true);
  EXPECT_EQ(Written(*col, tolerant), "<r><v>a</v></r>");
  for (const char* s : {"b<", "c", "d"}) col->Add(s);
  EXPECT_TRUE(Throws<CKoValidationException>([&] { Written(*col); },
            "The Maximum number of [v] elements allowed in this collection is 3"));
  col->Remove(3);
  EXPECT_EQ(Written(*col), "<r><v>a</v><v>b&lt;</v><v>c</v></r>");
  EXPECT_EQ(Written(*New<CstringCol>()), "<r/>");
}

TEST(TypeCollection, NumberFormatForFloatsAndDecimalsOnly) {
  CSmartPtr<Cr8Col> r8 = New<Cr8Col>(nullptr, 0, -1, "%.2f");
  r8->Add(1.5);
  EXPECT_EQ(Written(*r8), "<r><v>1.50</v></r>");
  CSmartPtr<Cr4Col> r4 = New<Cr4Col>(nullptr, 0, -1, "%.3f");
  r4->Add(0.25f);
  EXPECT_EQ(Written(*r4), "<r><v>0.250</v></r>");
  CSmartPtr<CdecimalCol> dec = New<CdecimalCol>(nullptr, 0, -1, "2");
  dec->AddFromString("3.14159");
  EXPECT_EQ(Written(*dec), "<r><v>3.14</v></r>");
  CSmartPtr<Ci4Col> i4 = New<Ci4Col>(nullptr, 0, -1, "%.2f");
  i4->Add(3);
  EXPECT_EQ(Written(*i4), "<r><v>3</v></r>");
}

TEST(TypeCollection, NamespacedItems) {
  CSmartPtr<CbooleanCol> col =
      new CbooleanCol("v", "urn:v", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr, nullptr, -1,
                      CWhitespaceUtils::WhitespaceRule_Collapse, nullptr);
  col->Add(true);
  col->AddFromString(" false ");
  const std::string xml = Written(*col);
  EXPECT_EQ(xml, "<r><AA:v xmlns:AA=\"urn:v\">true</AA:v><AA:v xmlns:AA=\"urn:v\">false</AA:v></r>");
  CSmartPtr<CbooleanCol> back = new CbooleanCol("v", "urn:v", 0, -1, nullptr, -1, -1, nullptr, nullptr, nullptr,
                                                nullptr, -1, CWhitespaceUtils::WhitespaceRule_Collapse, nullptr);
  EXPECT_EQ(ReadChildren(*back, xml), "");
  EXPECT_EQ(std::vector<bool>(back->begin(), back->end()), (std::vector<bool>{true, false}));
  // An item of the same name in another namespace ends the run.
  CSmartPtr<CbooleanCol> other = New<CbooleanCol>();
  EXPECT_EQ(ReadChildren(*other, xml), "v");
  EXPECT_EQ(other->GetCount(), 0);
}

// ---- every typed collection, one row each ---------------------------------------

struct TypedRow {
  const char* name;
  std::function<CSmartPtr<CXmlTypeCollection>()> make;
  ItemType type;
  std::vector<std::string> texts;  // in their canonical form, as written back
};

template <class C>
std::function<CSmartPtr<CXmlTypeCollection>()> Maker() {
  return [] { return CSmartPtr<CXmlTypeCollection>(New<C>()); };
}

std::vector<TypedRow> TypedRows() {
  return {
      {"i1", Maker<Ci1Col>(), ItemType_i1, {"-128", "127"}},
      {"i2", Maker<Ci2Col>(), ItemType_i2, {"-300", "32767"}},
      {"i4", Maker<Ci4Col>(), ItemType_i4, {"-70000", "2147483647"}},
      {"i8", Maker<Ci8Col>(), ItemType_i8, {"-9000000000", "9223372036854775807"}},
      {"ui1", Maker<Cui1Col>(), ItemType_ui1, {"0", "255"}},
      {"ui2", Maker<Cui2Col>(), ItemType_ui2, {"60000"}},
      {"ui4", Maker<Cui4Col>(), ItemType_ui4, {"4000000000"}},
      {"ui8", Maker<Cui8Col>(), ItemType_ui8, {"18000000000000000000"}},
      {"r4", Maker<Cr4Col>(), ItemType_r4, {"1.5", "-0.25"}},
      {"r8", Maker<Cr8Col>(), ItemType_r8, {"1.5", "1e+300"}},
      {"decimal", Maker<CdecimalCol>(), ItemType_decimal, {"-12.5", "100"}},
      {"integer", Maker<CintegerCol>(), ItemType_integer, {"-123456789012345678901234567890"}},
      {"boolean", Maker<CbooleanCol>(), ItemType_boolean, {"true", "false"}},
      {"string", Maker<CstringCol>(), ItemType_string, {"a b", "&amp;"}},
      {"base64Binary", Maker<Cbase64BinaryCol>(), ItemType_base64Binary, {"AAEC/w=="}},
      {"hexBinary", Maker<ChexBinaryCol>(), ItemType_hexBinary, {"0001FF"}},
      {"duration", Maker<CdurationCol>(), ItemType_duration, {"P1Y2M3DT4H5M6S"}},
      {"day", Maker<CdayCol>(), ItemType_day, {"---07"}},
      {"month", Maker<CmonthCol>(), ItemType_month, {"--11"}},
      {"year", Maker<CyearCol>(), ItemType_year, {"1999"}},
      {"date", Maker<CdateCol>(), ItemType_date, {"2024-02-29"}},
      {"datetime", Maker<CdatetimeCol>(), ItemType_datetime, {"2024-02-29T12:30:00"}},
      {"time", Maker<CtimeCol>(), ItemType_time, {"23:59:59"}},
      {"monthDay", Maker<CmonthDayCol>(), ItemType_monthDay, {"--02-29"}},
      {"yearMonth", Maker<CyearMonthCol>(), ItemType_yearMonth, {"2024-02"}},
  };
}

class TypedCollections : public ::testing::TestWithParam<TypedRow> {};

TEST_P(TypedCollections, TextInTextOutAndBackThroughADocument) {
  const TypedRow& row = GetParam();
  CSmartPtr<CXmlTypeCollection> col = row.make();
  EXPECT_EQ(col->GetItemType(), row.type);
  std::string expected = "<r>";
  for (const std::string& text : row.texts) {
    std::string unescaped = text == "&amp;" ? "&" : text;
    col->AddFromString(unescaped);
    expected += "<v>" + text + "</v>";
  }
  expected += "</r>";
  const std::string xml = Written(*col);
  EXPECT_EQ(xml, expected);
  CSmartPtr<CXmlTypeCollection> back = row.make();
  EXPECT_EQ(ReadChildren(*back, xml), "");
  EXPECT_EQ(back->GetCount(), static_cast<int>(row.texts.size()));
  EXPECT_EQ(Written(*back), xml);
}

INSTANTIATE_TEST_SUITE_P(EveryType, TypedCollections, ::testing::ValuesIn(TypedRows()),
                         [](const auto& info) { return std::string(info.param.name); });

// ---- the date kinds --------------------------------------------------------------

struct DateRow {
  const char* name;
  std::function<CSmartPtr<CdatetimeBaseCol>()> make;
  const char* valid;            // text of a value of the right kind
  CDateTime::DTType wrongKind;  // a kind the collection refuses
  const char* message;
};

template <class C>
std::function<CSmartPtr<CdatetimeBaseCol>()> DateMaker() {
  return [] { return CSmartPtr<CdatetimeBaseCol>(New<C>()); };
}

class DateCollections : public ::testing::TestWithParam<DateRow> {};

TEST_P(DateCollections, OnlyTheirOwnKindBeforeAnyEvent) {
  const DateRow& row = GetParam();
  CSmartPtr<CdatetimeBaseCol> col = row.make();
  CEventRecorder events;
  col->AddEventListener(&events);
  col->AddFromString(row.valid);
  EXPECT_EQ(events.Types(), "1 2 0");
  const CDateTime good = col->Item(0);
  events.events.clear();
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->Add(CDateTime(row.wrongKind)); }, row.message));
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->AddAt(0, CDateTime(row.wrongKind)); },
            row.message));
  EXPECT_EQ(events.Types(), "");
  // Through the base, the collection's own check still applies; BaseAddAt
  // is the raw insertion.
  col->Add(good);
  col->BaseAddAt(0, good);
  EXPECT_EQ(col->GetCount(), 3);
  EXPECT_EQ(col->ItemToString(col->Item(2)), row.valid);
  EXPECT_EQ(Written(*col), "<r><v>" + std::string(row.valid) + "</v><v>" + row.valid + "</v><v>" + row.valid +
                               "</v></r>");
  col->RemoveEventListener(&events);
}

INSTANTIATE_TEST_SUITE_P(
    EveryKind, DateCollections,
    ::testing::Values(
        DateRow{"date", DateMaker<CdateCol>(), "2024-02-29", CDateTime::dt_dateTime,
                "Dates added to this collection must be of type dt_date"},
        DateRow{"dateTime", DateMaker<CdatetimeCol>(), "2024-02-29T01:02:03Z", CDateTime::dt_date,
                "Dates added to this collection must be of type dt_dateTime"},
        DateRow{"time", DateMaker<CtimeCol>(), "01:02:03", CDateTime::dt_dateTime,
                "Dates added to this collection must be of type dt_time"},
        DateRow{"monthDay", DateMaker<CmonthDayCol>(), "--12-31", CDateTime::dt_gYearMonth,
                "Dates added to this collection must be of type dt_gMonthDay"},
        DateRow{"yearMonth", DateMaker<CyearMonthCol>(), "1999-12", CDateTime::dt_gMonthDay,
                "Dates added to this collection must be of type dt_gYearMonth"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(TypeCollection, DateFacetsComeAfterTheKindAndBeforeTheEvents) {
  CSmartPtr<CdateCol> col = New<CdateCol>("2000-01-01");
  CEventRecorder events;
  col->AddEventListener(&events);
  EXPECT_TRUE(Throws<CKoException>([&] { col->AddFromString("2000-01-02"); },
            "Invalid Value for v [2000-01-02]"));
  EXPECT_EQ(events.Types(), "");
  EXPECT_EQ(col->GetCount(), 0);
  col->RemoveEventListener(&events);
}

}  // namespace
