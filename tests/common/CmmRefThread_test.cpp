#include <type_traits>

#include "common/client/utility/src/CmmEvent.h"
#include "common/client/utility/src/CmmThread.h"
#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"
#include "tests/support/CountedHeap.h"

namespace Cmm {
namespace {

using namespace cmm_thread_testing;

static_assert(std::is_base_of_v<CThread, CRefThread> && std::is_base_of_v<IThread, CRefThread>);
static_assert(std::is_abstract_v<CRefThread> && std::has_virtual_destructor_v<CRefThread>);

// What a test sees of an object that deletes itself.
struct Fate {
  CState destroyed;
  CAtomicInt destructions;
  unsigned long destroyedOn = 0;
};

class Recorded : public CRefThread {
 public:
  explicit Recorded(Fate& fate) : m_fate(fate) {}
  ~Recorded() override {
    m_fate.destroyedOn = GetCurrentThreadId();
    m_fate.destructions.Inc();
    m_fate.destroyed.Signal();
  }
  unsigned int ThreadProc() override { return 0; }

 private:
  Fate& m_fate;
};

// Runs until told to end.
class Held : public Recorded {
 public:
  Held(Fate& fate, CState& release, CState* begun = nullptr)
      : Recorded(fate), m_release(release), m_begun(begun) {}
  unsigned int ThreadProc() override {
    m_begun->Signal();
    m_release.Lock();
    return 0x89ABCDEF;
  }

 private:
  CState& m_release;
  CState* const m_begun;
};

TEST(CRefThread, CountsFromOneAndAnswersTheNewCount) {
  Fate fate;
  CRefThread* const thread = new Recorded(fate);
  EXPECT_EQ(thread->AddRef(), 2);
  EXPECT_EQ(thread->AddRef(), 3);
  EXPECT_EQ(thread->Release(), 2);
  EXPECT_EQ(thread->Release(), 1);
  EXPECT_EQ(fate.destructions.Get(), 0);
  EXPECT_EQ(thread->Release(), 0);
  EXPECT_EQ(fate.destructions.Get(), 1);
}

// Its memory outlives it, and its destructor releases once more: the count is 0 by then.
class ReleasedInItsDestructor : public CRefThread {
 public:
  static void operator delete(void*) { ++s_deletions; }
  ~ReleasedInItsDestructor() override {
    if (s_deletions == 0 && !s_again) {
      s_again = true;
      EXPECT_EQ(Release(), -1);
    }
  }
  unsigned int ThreadProc() override { return 0; }

  static inline int s_deletions = 0;

 private:
  static inline bool s_again = false;
};

TEST(CRefThread, ReleaseDeletesAlsoWhenTheCountIsZeroAlready) {
  void* const block = CRefThread::operator new(sizeof(ReleasedInItsDestructor));
  CRefThread* const thread = ::new (block) ReleasedInItsDestructor;
  EXPECT_EQ(thread->Release(), 0);
  EXPECT_EQ(ReleasedInItsDestructor::s_deletions, 2);
  CRefThread::operator delete(block);
}

TEST(CRefThread, LivesOnTheLibrarysHeapAndNotOnItsUsersOne) {
  Fate fate;
  const velm_test::HeapCalls before = velm_test::CountHeapCalls();
  CRefThread* const thread = new Recorded(fate);
  thread->Release();
  const velm_test::HeapCalls after = velm_test::CountHeapCalls();
  EXPECT_EQ(fate.destructions.Get(), 1);
  EXPECT_EQ(after.news, before.news);
  EXPECT_EQ(after.deletes, before.deletes);
}

TEST(CRefThread, HasThreadProcAndThenTheDestructorAsItsVirtualOperations) {
  Fate fate;
  CState release(1);
  CRefThread* const thread = new Held(fate, release);
  IThread* const face = thread;
  void** table;
  std::memcpy(&table, static_cast<const void*>(face), sizeof(table));
  EXPECT_EQ(reinterpret_cast<unsigned int (*)(IThread*)>(table[0])(face), 0x89ABCDEFu);
  // This compiler's destructor has two entries: one that destroys and one that deletes as well.
  reinterpret_cast<void (*)(IThread*)>(table[2])(face);
  EXPECT_EQ(fate.destructions.Get(), 1);
}

TEST(CRefThread, ReleasedByItsCreatorWhileItRunsIsDeletedByItsOwnThreadAtTheEnd) {
  Fate fate;
  CState release;
  auto* const thread = new Held(fate, release);
  thread->Create();
  const auto id = static_cast<unsigned long>(thread->IsValid());
  const HANDLE handle = HandleIn(static_cast<CThread&>(*thread));
  const UniqueHandle second = DuplicateOf(handle);
  EXPECT_EQ(thread->Release(), 1);
  EXPECT_EQ(fate.destroyed.Lock(kStaysBlockedMs), SYNC_TIMEOUT);
  release.Signal();
  EXPECT_EQ(ExitCodeOf(second), 0x89ABCDEFul);
  EXPECT_EQ(fate.destructions.Get(), 1);
  EXPECT_EQ(fate.destroyedOn, id);
  EXPECT_FALSE(IsHandleOfThread(handle, id));
}

TEST(CRefThread, OutlivesItsThreadUntilTheLastUserReleasesIt) {
  Fate fate;
  CState release(1);
  auto* const thread = new Held(fate, release);
  thread->Create();
  const UniqueHandle second = DuplicateOf(HandleIn(static_cast<CThread&>(*thread)));
  thread->Join();
  EXPECT_EQ(fate.destructions.Get(), 0);
  EXPECT_EQ(thread->AddRef(), 2);  // the thread's own reference is gone
  EXPECT_EQ(thread->Release(), 1);
  EXPECT_EQ(thread->Release(), 0);
  EXPECT_EQ(fate.destructions.Get(), 1);
  EXPECT_EQ(fate.destroyedOn, GetCurrentThreadId());
}

TEST(CRefThread, TheThreadHoldsAReferenceOfItsOwnWhileItRuns) {
  Fate fate;
  CState release;
  auto* const thread = new Held(fate, release);
  thread->Create();
  EXPECT_EQ(thread->AddRef(), 3);
  release.Signal();
  thread->Join();
  EXPECT_EQ(thread->Release(), 1);
  EXPECT_EQ(thread->Release(), 0);
}

TEST(CRefThread, ItsDestructorClosesTheHandleAndDoesNotWaitForTheThread) {
  Fate fate;
  CState release;
  CState begun;
  auto* const thread = new Held(fate, release, &begun);
  thread->Create();
  begun.Lock();
  const HANDLE handle = HandleIn(static_cast<CThread&>(*thread));
  const UniqueHandle second = DuplicateOf(HandleIn(static_cast<CThread&>(*thread)));
  const DWORD id = GetThreadId(handle);
  thread->AddRef();  // the thread's own release must not delete what is destroyed here
  thread->~Held();
  EXPECT_FALSE(IsHandleOfThread(handle, id));
  EXPECT_EQ(WaitForSingleObject(second.get(), 0), WAIT_TIMEOUT);
  release.Signal();
  ExitCodeOf(second);
  CRefThread::operator delete(thread);
}

TEST(CRefThreadUnderContention, IsDeletedOnceByWhoeverReleasesItLast) {
  constexpr int kUsers = 4;
  for (int round = 0; round < 50; ++round) {
    Fate fate;
    CState release(1);
    auto* const thread = new Held(fate, release);
    for (int i = 1; i < kUsers; ++i)
      thread->AddRef();
    thread->Create();
    RunTogether(kUsers, [&](int) {
      for (int i = 0; i < 100; ++i) {
        thread->AddRef();
        thread->Release();
      }
      thread->Release();
    });
    ASSERT_EQ(fate.destroyed.Lock(10000), SYNC_OK);
    ASSERT_EQ(fate.destructions.Get(), 1);
  }
}

}  // namespace
}  // namespace Cmm
