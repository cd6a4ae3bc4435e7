#include "common/client/utility/src/CmmThread.h"

#include <memory>

#include "common/client/utility/src/CmmEvent.h"
#include "common/client/utility/src/CmmLock.h"
#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"
#include "tests/support/WaitUntil.h"

namespace Cmm {
namespace {

using namespace cmm_thread_testing;

// A body that waits for its release and then ends with an exit code.
class HeldThread {
 public:
  explicit HeldThread(unsigned int exitCode = 0)
      : m_body([this, exitCode] {
          m_begun.Signal();
          m_release.Lock();
          m_passed.Signal();
          return exitCode;
        }) {}

  IThread* Get() { return &m_body; }
  void AwaitBegin() { m_begun.Lock(); }
  void Release() { m_release.Signal(); }
  bool PassesWithin(unsigned long ms) { return m_passed.Lock(ms) == SYNC_OK; }

 private:
  CState m_begun;
  CState m_release;
  CState m_passed;
  Body m_body;
};

unsigned long ReportThread(void* arg) {
  *static_cast<unsigned long*>(arg) = GetCurrentThreadId();
  return 0xFFFFFFFE;
}

TEST(CThread, HoldsAHandleAndAnIdThatAreZeroAtFirst) {
  const CThread thread;
  EXPECT_EQ(sizeof(thread), 16u);
  EXPECT_EQ(HandleIn(thread), nullptr);
  EXPECT_EQ(thread.IsValid(), 0);
  EXPECT_EQ(static_cast<int>(thread), 0);
  EXPECT_FALSE(thread.IsRunning());
}

TEST(CThread, IsValidAnswersZeroForANullPointer) {
  const CThread* const thread = NullOf<CThread>();
  EXPECT_EQ(thread->IsValid(), 0);
  EXPECT_EQ(static_cast<int>(*thread), 0);
}

TEST(CThread, OperationsOnAnObjectNeverCreatedReturnAtOnce) {
  CThread thread;
  thread.Join();
  thread.Join();
  thread.Detach();
  thread.Kill();
  EXPECT_EQ(thread.Suspend(), ~0ul);
  EXPECT_EQ(thread.Resume(), ~0ul);
  EXPECT_EQ(thread.IsValid(), 0);
}

TEST(CThread, RunsTheBodyOnAThreadOfItsOwn) {
  unsigned long id = 0;
  Body body([&] {
    id = GetCurrentThreadId();
    return 0;
  });
  CThread thread;
  thread.Create(&body);
  const int valid = thread.IsValid();
  EXPECT_EQ(valid, static_cast<int>(thread));
  thread.Join();
  EXPECT_EQ(static_cast<unsigned long>(valid), id);
  EXPECT_NE(id, GetCurrentThreadId());
}

TEST(CThread, TheResultOfTheBodyIsTheExitCode) {
  HeldThread held(0x89ABCDEF);
  CThread thread;
  thread.Create(held.Get());
  const UniqueHandle second = DuplicateOf(HandleIn(thread));
  held.Release();
  thread.Join();
  EXPECT_EQ(ExitCodeOf(second), 0x89ABCDEFul);
}

TEST(CThread, CreateByRunsAPlainFunctionWithItsArgument) {
  unsigned long id = 0;
  CThread thread;
  thread.CreateBy(ReportThread, &id);
  const auto valid = static_cast<unsigned long>(thread.IsValid());
  thread.Join();
  EXPECT_EQ(id, valid);
}

TEST(CThread, TheResultOfAPlainFunctionIsTheExitCode) {
  unsigned long id = 0;
  CThread thread;
  thread.CreateBy(ReportThread, &id);
  const UniqueHandle second = DuplicateOf(HandleIn(thread));
  thread.Join();
  EXPECT_EQ(ExitCodeOf(second), 0xFFFFFFFEul);
}

TEST(CThread, AFailedCreationLeavesTheHandleZeroAndTheIdAsItWas) {
  CThread fresh;
  fresh.CreateBy(nullptr, nullptr);  // the runtime refuses to start a thread without a function
  EXPECT_EQ(HandleIn(fresh), nullptr);
  EXPECT_EQ(fresh.IsValid(), 0);

  HeldThread held;
  CThread detached;
  detached.Create(held.Get());
  const int id = detached.IsValid();
  const UniqueHandle second = DuplicateOf(HandleIn(detached));
  detached.CreateBy(nullptr, nullptr);
  EXPECT_EQ(HandleIn(detached), nullptr);
  EXPECT_EQ(detached.IsValid(), id);
  EXPECT_FALSE(detached.IsRunning());
  detached.Join();
  held.Release();
  ExitCodeOf(second);
}

TEST(CThread, IsRunningUntilTheBodyEnds) {
  HeldThread held;
  CThread thread;
  thread.Create(held.Get());
  EXPECT_TRUE(thread.IsRunning());
  held.AwaitBegin();
  EXPECT_TRUE(thread.IsRunning());
  held.Release();
  EXPECT_TRUE(WaitUntil([&] { return !thread.IsRunning(); }));
  EXPECT_NE(thread.IsValid(), 0);
}

TEST(CThread, JoinWaitsForTheEndAndForgetsTheThread) {
  HeldThread held;
  CThread thread;
  thread.Create(held.Get());
  const HANDLE handle = HandleIn(thread);
  const DWORD id = GetThreadId(handle);
  CState joined;
  std::jthread joiner([&] {
    thread.Join();
    joined.Signal();
  });
  EXPECT_EQ(joined.Lock(kStaysBlockedMs), SYNC_TIMEOUT);
  held.Release();
  joiner.join();
  EXPECT_FALSE(IsHandleOfThread(handle, id));
  EXPECT_EQ(HandleIn(thread), nullptr);
  EXPECT_EQ(thread.IsValid(), 0);
  EXPECT_FALSE(thread.IsRunning());
}

TEST(CThread, ASecondJoinDoesNothing) {
  Body body([] { return 0; });
  CThread thread;
  thread.Create(&body);
  thread.Join();
  thread.Join();
  EXPECT_EQ(thread.IsValid(), 0);
}

TEST(CThread, CanBeCreatedAgainAfterJoin) {
  CAtomicInt runs;
  Body body([&] { return runs.Inc(); });
  CThread thread;
  for (int i = 0; i < 3; ++i) {
    thread.Create(&body);
    thread.Join();
  }
  EXPECT_EQ(runs.Get(), 3);
}

TEST(CThread, ASecondCreateLetsTheFirstThreadGo) {
  HeldThread first;
  HeldThread second;
  CThread thread;
  thread.Create(first.Get());
  const HANDLE firstHandle = HandleIn(thread);
  const UniqueHandle firstThread = DuplicateOf(HandleIn(thread));
  thread.Create(second.Get());
  EXPECT_TRUE(!IsOpen(firstHandle) || HandleIn(thread) == firstHandle);
  first.AwaitBegin();
  second.AwaitBegin();
  second.Release();
  thread.Join();
  first.Release();
  ExitCodeOf(firstThread);
}

TEST(CThread, AfterDetachTheOldIdIsStillReportedAndItDoesNotCountAsRunning) {
  HeldThread held(7);
  CThread thread;
  thread.Create(held.Get());
  const int id = thread.IsValid();
  const HANDLE handle = HandleIn(thread);
  const UniqueHandle second = DuplicateOf(handle);
  thread.Detach();
  EXPECT_FALSE(IsHandleOfThread(handle, id));
  EXPECT_EQ(HandleIn(thread), nullptr);
  EXPECT_EQ(thread.IsValid(), id);
  EXPECT_FALSE(thread.IsRunning());
  thread.Join();  // returns at once, and clears nothing
  EXPECT_EQ(thread.IsValid(), id);
  thread.Detach();
  held.Release();
  EXPECT_EQ(ExitCodeOf(second), 7ul);
}

TEST(CThread, KillEndsTheThreadWithExitCodeZeroAndForgetsIt) {
  HeldThread held(7);
  CThread thread;
  thread.Create(held.Get());
  held.AwaitBegin();
  const HANDLE handle = HandleIn(thread);
  const DWORD id = GetThreadId(handle);
  const UniqueHandle second = DuplicateOf(HandleIn(thread));
  thread.Kill();
  EXPECT_EQ(ExitCodeOf(second), 0ul);
  EXPECT_FALSE(held.PassesWithin(0));
  EXPECT_FALSE(IsHandleOfThread(handle, id));
  EXPECT_EQ(HandleIn(thread), nullptr);
  EXPECT_EQ(thread.IsValid(), 0);
  thread.Kill();
}

TEST(CThread, KillAfterDetachReachesNothingAndClearsTheId) {
  HeldThread held(7);
  CThread thread;
  thread.Create(held.Get());
  const UniqueHandle second = DuplicateOf(HandleIn(thread));
  thread.Detach();
  thread.Kill();
  EXPECT_EQ(thread.IsValid(), 0);
  held.Release();
  EXPECT_EQ(ExitCodeOf(second), 7ul);
}

TEST(CThread, SuspendHoldsTheThreadUntilAsManyResumes) {
  HeldThread held;
  CThread thread;
  thread.Create(held.Get());
  held.AwaitBegin();
  EXPECT_EQ(thread.Suspend(), 0ul);
  EXPECT_EQ(thread.Suspend(), 1ul);
  held.Release();
  EXPECT_FALSE(held.PassesWithin(kStaysBlockedMs));
  EXPECT_EQ(thread.Resume(), 2ul);
  EXPECT_FALSE(held.PassesWithin(kStaysBlockedMs));
  EXPECT_EQ(thread.Resume(), 1ul);
  thread.Join();
  EXPECT_TRUE(held.PassesWithin(0));
}

TEST(CThread, ItsEndNeitherWaitsForTheThreadNorKillsIt) {
  HeldThread held(7);
  auto thread = std::make_unique<CThread>();
  thread->Create(held.Get());
  held.AwaitBegin();
  const HANDLE handle = HandleIn(*thread);
  const DWORD id = GetThreadId(handle);
  const UniqueHandle second = DuplicateOf(HandleIn(*thread));
  thread.reset();
  EXPECT_FALSE(IsHandleOfThread(handle, id));
  EXPECT_EQ(WaitForSingleObject(second.get(), 0), WAIT_TIMEOUT);
  held.Release();
  EXPECT_EQ(ExitCodeOf(second), 7ul);
}

TEST(CThread, SleepsForMilliseconds) {
  const ULONGLONG start = GetTickCount64();
  CThread::Sleep(50);
  EXPECT_GE(GetTickCount64() - start, 34u);  // a tick of 16 ms less
}

TEST(CThread, YieldReturnsToTheSameThread) {
  const DWORD before = GetCurrentThreadId();
  CThread::Yield();
  EXPECT_EQ(GetCurrentThreadId(), before);
}

TEST(IThread, HasThreadProcAsItsFirstVirtualOperation) {
  Body body([] { return 5u; });
  IThread* const thread = &body;
  using Proc = unsigned int (*)(IThread*);
  Proc* table;
  std::memcpy(&table, static_cast<const void*>(thread), sizeof(table));
  EXPECT_EQ(table[0](thread), 5u);
}

TEST(CThreadUnderContention, ManyThreadsAreStartedAndJoinedFromManyThreads) {
  constexpr int kStarters = 4;
  constexpr int kThreadsEach = 25;
  CCritical lock;
  long total = 0;
  Body body([&] {
    CAutoLock hold(lock);
    ++total;
    return 0;
  });
  RunTogether(kStarters, [&](int) {
    for (int i = 0; i < kThreadsEach; ++i) {
      CThread thread;
      thread.Create(&body);
      EXPECT_NE(thread.IsValid(), 0);
      thread.Join();
    }
  });
  EXPECT_EQ(total, kStarters * kThreadsEach);
}

}  // namespace
}  // namespace Cmm
