#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include "support/CollectionEvents.h"
#include "support/Throws.h"

using testsupport::Throws;

using namespace KoXmlLib10;

namespace {

// An item that tells when it is destroyed.
class CProbe : public CAttribute {
 public:
  CProbe(const char* name, bool* destroyed) : CAttribute(name, "", ""), m_destroyed(destroyed) {}
  ~CProbe() override {
    if (m_destroyed) *m_destroyed = true;
  }

 private:
  bool* m_destroyed;
};

// The object collection itself, with nothing to write or read.
class CTestCollection : public CXmlCollection {
 public:
  using CXmlCollection::CXmlCollection;

 protected:
  void ToXml_Int(CXmlWriter*, bool, const char*, const CXmlSerializationContext&, bool) const override {}
  CXmlElement* FromXml_Int(CXmlElement*, CXmlElement* c, const CXmlSerializationContext&, bool) override {
    return c;
  }
};

// The items' names, head to tail, also checking the backward links.
std::string Names(const CXmlCollection& c) {
  std::string forward, backward;
  for (CNode* n = c.GetHead(); n; n = n->next) forward += n->item ? n->item->GetElementName() : "-";
  for (CNode* n = c.GetTail(); n; n = n->previous) backward = (n->item ? n->item->GetElementName() : "-") + backward;
  return forward == backward ? forward : forward + "!=" + backward;
}

struct Fixture : ::testing::Test {
  Fixture() {
    col = new CTestCollection("item", "urn:i", 0, -1);
    col->AddEventListener(&events);
  }
  CEventRecorder events;  // outlives the collection, which tells it about its clearing
  CSmartPtr<CTestCollection> col;
  CSmartPtr<CAttribute> a{new CAttribute("a", "", "")}, b{new CAttribute("b", "", "")},
      c{new CAttribute("c", "", "")}, x{new CAttribute("x", "", "")};
};

using ObjectCollection = Fixture;

TEST_F(ObjectCollection, EveryInsertionTellsAddAddCompleteChangeWithTheItem) {
  col->AppendItem(b.get());
  col->PrependItem(a.get());
  col->AddItemAt(2, c.get());                // at the count: appends
  col->AddItemAt(1, x.get());                // in the middle
  col->AddBeforeItem(a.get(), x.get());      // in front of the head
  col->AddAfterItem(c.get(), x.get());       // behind the tail
  EXPECT_EQ(Names(*col), "xaxbcx");
  EXPECT_EQ(col->GetCount(), 6);
  ASSERT_EQ(events.events.size(), 18u);
  const CAttribute* expected[] = {b.get(), a.get(), c.get(), x.get(), x.get(), x.get()};
  for (size_t i = 0; i < 6; ++i) {
    for (size_t k = 0; k < 3; ++k) {
      const RecordedEvent& e = events.events[3 * i + k];
      EXPECT_EQ(e.sender, col.get());
      EXPECT_EQ(e.type, k == 0 ? IEventSink::MsgTypeCollectionAdd
                               : k == 1 ? IEventSink::MsgTypeCollectionAddComplete
                                        : IEventSink::MsgTypeCollectionChange);
      EXPECT_EQ(e.data, k == 2 ? nullptr : expected[i]) << i << "/" << k;
    }
  }
  // A null existing item appends (before) or prepends (after).
  col->AddBeforeItem(nullptr, a.get());
  col->AddAfterItem(nullptr, b.get());
  EXPECT_EQ(Names(*col), "bxaxbcxa");
}

TEST_F(ObjectCollection, FailedInsertionsChangeNothing) {
  col->AppendItem(a.get());
  events.events.clear();
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->AddItemAt(2, x.get()); }, "Index out of range"));
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->AddItemAt(-1, x.get()); }, "Index out of range"));
  EXPECT_EQ(events.Types(), "");  // the index is checked before anything is told
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->AddBeforeItem(b.get(), x.get()); },
            "The object was not found in the collection"));
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->AddAfterItem(b.get(), x.get()); },
            "The object was not found in the collection"));
  EXPECT_EQ(events.Types(), "1 1");  // the add was told before the search failed
  EXPECT_EQ(events.events[0].data, x.get());
  EXPECT_EQ(Names(*col), "a");
  EXPECT_EQ(x->AddRef(), 2);  // no reference was left behind
  x->Release();
}

TEST_F(ObjectCollection, LookupAndItsMessages) {
  for (auto* item : {a.get(), b.get(), c.get()}) col->AppendItem(item);
  EXPECT_EQ(col->GetNodeAtIndex(2)->item, c.get());
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->Remove(5); }, "Index 5 is out of range, use 0 - 3"));
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->GetNodeAtIndex(-1); },
            "Index -1 is out of range, use 0 - 3"));
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->GetNodeForItem(x.get()); },
            "The object was not found in the collection"));
  CTestCollection other;
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->RemoveNode(other.GetHead()); },
            "No node was given to remove."));
  other.AppendItem(a.get());
  EXPECT_TRUE(Throws<CKoInvalidParamException>([&] { col->RemoveNode(other.GetHead()); },
            "The object was not found in the collection"));
  EXPECT_EQ(Names(*col), "abc");
  EXPECT_EQ(Names(other), "a");
}

TEST_F(ObjectCollection, TheSameObjectTwiceHoldsTwoReferences) {
  bool destroyed = false;
  CProbe* probe = new CProbe("p", &destroyed);
  col->AppendItem(a.get());
  col->AppendItem(probe);
  col->AppendItem(probe);
  EXPECT_EQ(col->GetNodeForItem(probe), col->GetNodeAtIndex(1));  // the first of the two
  col->Remove(1);
  EXPECT_FALSE(destroyed);
  EXPECT_EQ(col->GetNodeForItem(probe), col->GetNodeAtIndex(1));
  col->Remove(1);
  EXPECT_TRUE(destroyed);  // the collection held the only references
  col->AppendItem(nullptr);  // a null item is kept as such
  EXPECT_EQ(Names(*col), "a-");
  EXPECT_EQ(col->GetNodeForItem(nullptr), col->GetTail());
}

TEST_F(ObjectCollection, RemovalTellsRemoveWithoutIndexThenCompleteThenChange) {
  for (auto* item : {a.get(), b.get(), c.get()}) col->AppendItem(item);
  events.events.clear();
  col->Remove(1);
  col->RemoveNode(col->GetTail());
  EXPECT_EQ(Names(*col), "a");
  col->AppendItem(b.get());
  col->AppendItem(c.get());
  events.events.clear();
  col->Clear();
  EXPECT_EQ(col->GetCount(), 0);
  EXPECT_EQ(col->GetHead(), nullptr);
  EXPECT_EQ(col->GetTail(), nullptr);
  EXPECT_EQ(events.Types(), "3 4 0 3 4 0 3 4 0");
  for (const RecordedEvent& e : events.events) EXPECT_EQ(e.data, nullptr);
}

TEST_F(ObjectCollection, DestroyingTheCollectionClearsItWithItsEvents) {
  bool destroyed = false;
  col->AppendItem(new CProbe("p", &destroyed));
  events.events.clear();
  col = nullptr;
  EXPECT_TRUE(destroyed);
  EXPECT_EQ(events.Types(), "3 4 0");
}

TEST_F(ObjectCollection, ListenersInOrderAndRemovedEverywhere) {
  CEventRecorder second;
  col->AddEventListener(&second);
  col->AddEventListener(&events);
  col->AppendItem(a.get());
  EXPECT_EQ(events.Types(), "1 1 2 2 0 0");
  EXPECT_EQ(second.Types(), "1 2 0");
  col->RemoveEventListener(&events);
  col->AppendItem(b.get());
  EXPECT_EQ(events.events.size(), 6u);
  EXPECT_EQ(second.events.size(), 6u);
  col->RemoveEventListener(&second);  // it goes before the collection
}

TEST_F(ObjectCollection, NoTargetNamespaceForACollection) {
  EXPECT_EQ(col->GetBase(), col.get());
  EXPECT_TRUE(Throws<CKoException>([&] { col->GetTargetNamespace(); },
            "CXmlCollectionBase::GetTargetNamespace Should not be used from within a Collection (program logic "
            "error)"));
}

// ---- count checks ---------------------------------------------------------------------

struct Counted {
  int min, max, count;
  const char* failure;  // null: valid
};

class CollectionCounts : public ::testing::TestWithParam<Counted> {};

TEST_P(CollectionCounts, BothBoundsAndTheTolerance) {
  const Counted& p = GetParam();
  CTestCollection col("v", "", p.min, p.max);
  CSmartPtr<CAttribute> item(new CAttribute("v", "", ""));
  for (int i = 0; i < p.count; ++i) col.AppendItem(item.get());
  CXmlSerializationContext strict, tolerant;
  tolerant.SetIgnoreInvalidCollectionCounts(true);
  EXPECT_EQ(col.IsValidCount(strict), p.failure == nullptr);
  if (p.failure)
    EXPECT_TRUE(Throws<CKoValidationException>([&] { col.ValidateCount(strict); }, p.failure));
  else
    EXPECT_NO_THROW(col.ValidateCount(strict));
  EXPECT_TRUE(col.IsValidCount(tolerant));
  EXPECT_NO_THROW(col.ValidateCount(tolerant));
}

INSTANTIATE_TEST_SUITE_P(
    Bounds, CollectionCounts,
    ::testing::Values(Counted{0, -1, 0, nullptr}, Counted{0, -1, 50, nullptr},
                      Counted{0, 0, 1, "The Maximum number of [v] elements allowed in this collection is 0"},
                      Counted{2, 3, 1, "The Minimum number of [v] elements allowed in this collection is 2"},
                      Counted{2, 3, 2, nullptr}, Counted{2, 3, 3, nullptr},
                      Counted{2, 3, 4, "The Maximum number of [v] elements allowed in this collection is 3"},
                      // The maximum is tested first.
                      Counted{5, 1, 3, "The Maximum number of [v] elements allowed in this collection is 1"}));

}  // namespace
