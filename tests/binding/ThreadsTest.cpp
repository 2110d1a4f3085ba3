#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/TestModel.h"

using namespace testmodel;

namespace {

constexpr int kThreads = 4;

// Runs work(t) on kThreads threads that all start at once, so that they
// really overlap.
template <class Work>
void RunTogether(Work work) {
  std::atomic<int> waiting{0};
  std::atomic<bool> go{false};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      waiting.fetch_add(1);
      while (!go.load()) std::this_thread::yield();
      work(t);
    });
  while (waiting.load() < kThreads) std::this_thread::yield();
  go.store(true);
  for (std::thread& thread : threads) thread.join();
}

class CCountedShape : public CShape {
 public:
  explicit CCountedShape(std::atomic<int>& deleted) : m_deleted(deleted) {}
  ~CCountedShape() override { m_deleted.fetch_add(1); }

 private:
  std::atomic<int>& m_deleted;
};

TEST(Threads, SharedObjectsAreCountedFromEveryThread) {
  std::atomic<int> deleted{0};
  std::vector<CSmartPtr<CShape>> shared;
  for (int i = 0; i < 8; ++i) shared.emplace_back(new CCountedShape(deleted));

  RunTogether([&](int) {
    for (int round = 0; round < 5000; ++round)
      for (const CSmartPtr<CShape>& object : shared) {
        CSmartPtr<CShape> copy = object;  // AddRef
        object->AddRef();
        object->Release();
      }  // Release
  });

  EXPECT_EQ(deleted.load(), 0);
  for (const CSmartPtr<CShape>& object : shared) {
    EXPECT_EQ(object->AddRef(), 2);  // only the vector's reference is left
    EXPECT_EQ(object->Release(), 1);
  }
  shared.clear();
  EXPECT_EQ(deleted.load(), 8);
}

TEST(Threads, TheLastOfManyConcurrentReleasesDeletesOnce) {
  std::atomic<int> deleted{0};
  for (int round = 0; round < 200; ++round) {
    auto* object = new CCountedShape(deleted);
    for (int t = 0; t < kThreads; ++t) object->AddRef();
    RunTogether([&](int) { object->Release(); });
  }
  EXPECT_EQ(deleted.load(), 200);
}

// A class's records are created exactly once, however many threads ask for
// them first.
std::atomic<int> g_creations{0};
void CreateCounted(CParentElementInfo*& info, CElementInfo**& elements, CAttributeInfo**& attributes) {
  g_creations.fetch_add(1);
  std::this_thread::yield();  // widen the window for a second creation
  info = new CParentElementInfo(XmlElementGroupTypeSequence, XmlElementTypeElement, "t", kNs, true, false, -1,
                                ItemType_none, nullptr, false);
  elements = Elements({});
  attributes = Attributes({});
}

TEST(Threads, RecordsAreCreatedOnceOnConcurrentFirstUse) {
  CGeneratedMetaData meta(CreateCounted);
  std::atomic<int> failures{0};
  RunTogether([&](int) {
    if (!meta.Info() || !meta.Elements() || meta.Elements()[0] || !meta.Attributes()) failures.fetch_add(1);
  });
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(g_creations.load(), 1);
}

// Distinct objects of one class are written and read at the same time, in a
// fresh process while the class's records are created for the first time.
TEST(Threads, ObjectsOfOneClassAreSerialisedConcurrently) {
  std::atomic<int> failures{0};
  RunTogether([&](int t) {
    CXmlSerializationContext ctx;  // contexts are not shared between threads
    CSmartPtr<CPerson> person(new CPerson());
    person->id = t;
    person->name = "worker " + std::to_string(t);
    person->tags->Add("a"), person->tags->Add("b");
    for (int round = 0; round < 50; ++round) {
      CSmartPtr<CPerson> back(new CPerson());
      back->FromXml(person->ToXml(false, false, EOLTypeLF, ctx).c_str(), ctx);
      CSmartPtr<CPerson> fromFi(new CPerson());
      fromFi->FromXmlStream(person->ToFastInfosetStream(FInfoDeclNone, ctx, CompressionTypeNone), ctx);
      if (back->name != person->name || back->id != t || fromFi->Tags() != "a,b") failures.fetch_add(1);
    }
  });
  EXPECT_EQ(failures.load(), 0);
}

// Writing only reads the context: threads may share one that never had
// root attributes requested (as m_defaultContext is shared by everybody).
TEST(Threads, ASharedContextIsOnlyRead) {
  const CXmlSerializationContext shared;
  std::atomic<int> failures{0};
  RunTogether([&](int t) {
    CSmartPtr<CPerson> person(new CPerson());
    person->id = t;
    for (int round = 0; round < 20; ++round)
      if (person->ToXml(false, false, EOLTypeLF, shared).find("id=\"" + std::to_string(t) + "\"") ==
          std::string::npos)
        failures.fetch_add(1);
  });
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(shared.PeekAdditionalRootAttributes(), nullptr);
}

}  // namespace
