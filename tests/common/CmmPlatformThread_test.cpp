#include "common/client/utility/src/CmmPlatformThread.h"

#include "common/client/utility/src/CmmEvent.h"
#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"
#include "tests/support/CountedHeap.h"

namespace Cmm {
namespace {

using namespace cmm_thread_testing;

constexpr size_t kMoreThanThereIs = size_t{1} << 62;

class Delegate : public PlatformThread::Delegate {
 public:
  explicit Delegate(std::function<void()> run = [] {}) : m_run(std::move(run)) {}
  ~Delegate() override { ++s_destructions; }
  void Run() override {
    m_run();
    ran.Signal();
  }

  CState ran;
  static inline int s_destructions = 0;

 private:
  std::function<void()> m_run;
};

size_t StackOfThisThread() {
  ULONG_PTR low;
  ULONG_PTR high;
  GetCurrentThreadStackLimits(&low, &high);
  return high - low;
}

// What the program's own header asks for.
size_t DefaultStack() {
  const auto* const base = reinterpret_cast<const char*>(GetModuleHandleW(nullptr));
  const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  return reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew)->OptionalHeader.SizeOfStackReserve;
}

size_t StackOfThreadCreatedWith(size_t stackSize) {
  size_t stack = 0;
  Delegate delegate([&] { stack = StackOfThisThread(); });
  void* handle = nullptr;
  EXPECT_TRUE(PlatformThread::Create(stackSize, &delegate, &handle));
  PlatformThread::Join(handle);
  return stack;
}

TEST(PlatformThread, CurrentIdIsTheSystemsOne) {
  EXPECT_EQ(PlatformThread::CurrentId(), GetCurrentThreadId());
}

TEST(PlatformThread, RunsTheDelegateOnAThreadOfItsOwnAndEndsWithZero) {
  unsigned long id = 0;
  Delegate delegate([&] { id = PlatformThread::CurrentId(); });
  void* handle = nullptr;
  ASSERT_TRUE(PlatformThread::Create(0, &delegate, &handle));
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_OBJECT_0);
  DWORD code = STILL_ACTIVE;
  EXPECT_TRUE(GetExitCodeThread(handle, &code));
  EXPECT_EQ(code, 0ul);
  PlatformThread::Join(handle);
  EXPECT_NE(id, 0ul);
  EXPECT_NE(id, PlatformThread::CurrentId());
}

TEST(PlatformThread, JoinWaitsForTheEndAndClosesTheHandle) {
  CState release;
  Delegate delegate([&] { release.Lock(); });
  void* handle = nullptr;
  ASSERT_TRUE(PlatformThread::Create(0, &delegate, &handle));
  const DWORD id = GetThreadId(handle);
  CState joined;
  std::jthread joiner([&] {
    PlatformThread::Join(handle);
    joined.Signal();
  });
  EXPECT_EQ(joined.Lock(kStaysBlockedMs), SYNC_TIMEOUT);
  release.Signal();
  joiner.join();
  EXPECT_NE(delegate.ran.IsSignaled(), 0);
  EXPECT_FALSE(IsHandleOfThread(handle, id));
}

TEST(PlatformThread, DoesNotOwnTheDelegate) {
  const int before = Delegate::s_destructions;
  {
    Delegate delegate;
    void* handle = nullptr;
    ASSERT_TRUE(PlatformThread::Create(0, &delegate, &handle));
    PlatformThread::Join(handle);
    EXPECT_EQ(Delegate::s_destructions, before);
  }
  EXPECT_EQ(Delegate::s_destructions, before + 1);
}

TEST(PlatformThread, AStackSizeOfZeroIsTheDefaultStack) {
  EXPECT_EQ(StackOfThreadCreatedWith(0), DefaultStack());
}

// Taken as a number of bytes to commit, a size below the default would leave the reservation at the default.
TEST(PlatformThread, AnotherStackSizeIsAReservation) {
  constexpr size_t kMebibyte = 1 << 20;
  ASSERT_GT(DefaultStack(), kMebibyte);
  EXPECT_EQ(StackOfThreadCreatedWith(kMebibyte), kMebibyte);
  EXPECT_EQ(StackOfThreadCreatedWith(4 * kMebibyte), 4 * kMebibyte);
}

TEST(PlatformThread, ANonJoinableThreadRunsAndItsHandleIsClosedAtOnce) {
  CState release;
  UniqueHandle own;
  Delegate delegate([&] { release.Lock(); });
  UniqueHandle probe(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  const HANDLE next = probe.get();
  probe.reset();  // the next handle of the process takes this place
  ASSERT_TRUE(PlatformThread::CreateNonJoinable(0, &delegate));
  EXPECT_FALSE(IsOpen(next));
  release.Signal();
  delegate.ran.Lock();
}

TEST(PlatformThread, AFailedCreationAnswersFalseAndRunsNothing) {
  Delegate delegate;
  void* const mark = &delegate;
  void* handle = mark;
  EXPECT_FALSE(PlatformThread::Create(kMoreThanThereIs, &delegate, &handle));
  EXPECT_EQ(handle, mark);
  EXPECT_FALSE(PlatformThread::CreateNonJoinable(kMoreThanThereIs, &delegate));
  EXPECT_EQ(delegate.ran.Lock(kStaysBlockedMs), SYNC_TIMEOUT);
}

TEST(PlatformThread, FreesItsRecordBeforeTheDelegateRunsAndWhenItFails) {
  velm_test::HeapCalls inside{};
  Delegate delegate([&] { inside = velm_test::CountHeapCalls(); });
  void* handle = nullptr;
  const long before = velm_test::CountHeapCalls().Live();
  ASSERT_TRUE(PlatformThread::Create(0, &delegate, &handle));
  PlatformThread::Join(handle);
  EXPECT_EQ(inside.Live(), before);
  ASSERT_FALSE(PlatformThread::Create(kMoreThanThereIs, &delegate, &handle));
  ASSERT_FALSE(PlatformThread::CreateNonJoinable(kMoreThanThereIs, &delegate));
  EXPECT_EQ(velm_test::CountHeapCalls().Live(), before);
}

TEST(PlatformThread, JoinOfANullHandleReturnsAtOnceAndOnlyAnInvariantBuildReportsIt) {
  testing::internal::CaptureStderr();
  PlatformThread::Join(nullptr);
  const std::string written = testing::internal::GetCapturedStderr();
#ifdef VELM_INVARIANT_CHECKS
  EXPECT_NE(written.find("Check failed: thread_handle. "), std::string::npos) << written;
#else
  EXPECT_EQ(written, "");
#endif
}

TEST(PlatformThread, SetNameDoesNothing) {
  using GetDescription = HRESULT(WINAPI*)(HANDLE, PWSTR*);
  const auto getDescription = reinterpret_cast<GetDescription>(reinterpret_cast<void (*)()>(
      GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "GetThreadDescription")));
  ASSERT_NE(getDescription, nullptr);
  PlatformThread::SetName("worker");
  PlatformThread::SetName(nullptr);
  PWSTR name = nullptr;
  ASSERT_GE(getDescription(GetCurrentThread(), &name), 0);
  EXPECT_STREQ(name, L"");
  LocalFree(name);
}

TEST(PlatformThread, SleepsForMilliseconds) {
  const ULONGLONG start = GetTickCount64();
  PlatformThread::Sleep(50);
  EXPECT_GE(GetTickCount64() - start, 34u);  // a tick of 16 ms less
}

TEST(PlatformThread, YieldCurrentThreadReturnsToTheSameThread) {
  const auto before = PlatformThread::CurrentId();
  PlatformThread::YieldCurrentThread();
  EXPECT_EQ(PlatformThread::CurrentId(), before);
}

TEST(PlatformThreadDelegate, HasItsDestructorAheadOfItsBody) {
  bool ran = false;
  Delegate delegate([&] { ran = true; });
  PlatformThread::Delegate* const face = &delegate;
  void** table;
  std::memcpy(&table, static_cast<const void*>(face), sizeof(table));
  // This compiler's destructor has two entries.
  reinterpret_cast<void (*)(PlatformThread::Delegate*)>(table[2])(face);
  EXPECT_TRUE(ran);
}

TEST(PlatformThreadUnderContention, ManyThreadsAreStartedFromManyThreads) {
  CAtomicInt runs;
  Delegate delegate([&] { runs.Inc(); });
  RunTogether(4, [&](int) {
    for (int i = 0; i < 25; ++i) {
      void* handle = nullptr;
      EXPECT_TRUE(PlatformThread::Create(0, &delegate, &handle));
      PlatformThread::Join(handle);
    }
  });
  EXPECT_EQ(runs.Get(), 100);
}

}  // namespace
}  // namespace Cmm
