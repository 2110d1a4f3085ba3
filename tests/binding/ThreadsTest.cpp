#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/TestModel.h"

using namespace testmodel;

namespace {

constexpr int kThreads = 4;

// Starts every thread's work at once, so that they really overlap.
class CStartLine {
 public:
  void Wait() {
    m_waiting.fetch_add(1);
    while (!m_go.load()) std::this_thread::yield();
  }
  void Go(int threads) {
    while (m_waiting.load() < threads) std::this_thread::yield();
    m_go.store(true);
  }

 private:
  std::atomic<int> m_waiting{0};
  std::atomic<bool> m_go{false};
};

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

  CStartLine start;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&] {
      start.Wait();
      for (int round = 0; round < 5000; ++round)
        for (const CSmartPtr<CShape>& object : shared) {
          CSmartPtr<CShape> copy = object;  // AddRef
          object->AddRef();
          object->Release();
        }  // Release
    });
  start.Go(kThreads);
  for (std::thread& thread : threads) thread.join();

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
    CStartLine start;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
      threads.emplace_back([&] {
        start.Wait();
        object->Release();
      });
    start.Go(kThreads);
    for (std::thread& thread : threads) thread.join();
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
  CStartLine start;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&] {
      start.Wait();
      if (!meta.Info() || !meta.Elements() || meta.Elements()[0] || !meta.Attributes()) failures.fetch_add(1);
    });
  start.Go(kThreads);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(g_creations.load(), 1);
}

// Distinct objects of one class are written and read at the same time, in a
// fresh process while the class's records are created for the first time.
TEST(Threads, ObjectsOfOneClassAreSerialisedConcurrently) {
  CStartLine start;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      CXmlSerializationContext ctx;  // contexts are not shared between threads
      CSmartPtr<CPerson> person(new CPerson());
      person->id = t;
      person->name = "worker " + std::to_string(t);
      person->tags->Add("a"), person->tags->Add("b");
      start.Wait();
      for (int round = 0; round < 50; ++round) {
        CSmartPtr<CPerson> back(new CPerson());
        back->FromXml(person->ToXml(false, false, EOLTypeLF, ctx).c_str(), ctx);
        CSmartPtr<CPerson> fromFi(new CPerson());
        fromFi->FromXmlStream(person->ToFastInfosetStream(FInfoDeclNone, ctx, CompressionTypeNone), ctx);
        if (back->name != person->name || back->id != t || fromFi->Tags() != "a,b") failures.fetch_add(1);
      }
    });
  start.Go(kThreads);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);
}

// Writing only reads the context: threads may share one that never had
// root attributes requested (as m_defaultContext is shared by everybody).
TEST(Threads, ASharedContextIsOnlyRead) {
  const CXmlSerializationContext shared;
  CStartLine start;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      CSmartPtr<CPerson> person(new CPerson());
      person->id = t;
      start.Wait();
      for (int round = 0; round < 20; ++round)
        if (person->ToXml(false, false, EOLTypeLF, shared).find("id=\"" + std::to_string(t) + "\"") ==
            std::string::npos)
          failures.fetch_add(1);
    });
  start.Go(kThreads);
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);
  EXPECT_EQ(shared.PeekAdditionalRootAttributes(), nullptr);
}

}  // namespace
