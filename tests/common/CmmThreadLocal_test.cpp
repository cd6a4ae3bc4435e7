#include "common/client/utility/src/CmmThreadLocal.h"

#include <numeric>

#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"

namespace Cmm::internal {
namespace {

using namespace cmm_thread_testing;

class ThreadLocal : public testing::Test {
 protected:
  ThreadLocal() { ThreadLocalPlatform::AllocateSlot(m_slot); }
  ~ThreadLocal() override { ThreadLocalPlatform::FreeSlot(m_slot); }

  void* Get() { return ThreadLocalPlatform::GetValueFromSlot(m_slot); }
  void Set(void* value) { ThreadLocalPlatform::SetValueInSlot(m_slot, value); }

  unsigned long m_slot = TLS_OUT_OF_INDEXES;
};

TEST_F(ThreadLocal, AllocatesASlotOfTheSystem) {
  ASSERT_NE(m_slot, TLS_OUT_OF_INDEXES);
  int value;
  Set(&value);
  EXPECT_EQ(TlsGetValue(m_slot), &value);
}

TEST_F(ThreadLocal, IsNullUntilSetAndThenKeepsItsValue) {
  EXPECT_EQ(Get(), nullptr);
  int a;
  int b;
  Set(&a);
  EXPECT_EQ(Get(), &a);
  Set(&b);
  EXPECT_EQ(Get(), &b);
  Set(nullptr);
  EXPECT_EQ(Get(), nullptr);
}

TEST_F(ThreadLocal, SlotsAreApart) {
  unsigned long other = TLS_OUT_OF_INDEXES;
  ThreadLocalPlatform::AllocateSlot(other);
  EXPECT_NE(other, m_slot);
  int value;
  Set(&value);
  EXPECT_EQ(ThreadLocalPlatform::GetValueFromSlot(other), nullptr);
  ThreadLocalPlatform::FreeSlot(other);
}

TEST_F(ThreadLocal, EveryThreadHasItsOwnValue) {
  int mine;
  Set(&mine);
  CAtomicInt mixedUp;
  RunTogether(4, [&](int) {
    if (Get() != nullptr) mixedUp.Inc();
    int values[100];
    for (int& value : values) {
      Set(&value);
      CThread::Yield();
      if (Get() != &value) mixedUp.Inc();
    }
  });
  EXPECT_EQ(mixedUp.Get(), 0);
  EXPECT_EQ(Get(), &mine);
}

TEST(ThreadLocalSlots, FreeSlotGivesTheSlotBackAndKeepsTheNumber) {
  unsigned long slot = TLS_OUT_OF_INDEXES;
  ThreadLocalPlatform::AllocateSlot(slot);
  const unsigned long number = slot;
  ThreadLocalPlatform::FreeSlot(slot);
  EXPECT_EQ(slot, number);
  EXPECT_FALSE(TlsFree(slot));  // it is free already
}

TEST(ThreadLocalSlots, RunningOutOfThemReportsAFailedCheckAndReturns) {
  std::vector<DWORD> all;
  all.reserve(4096);
  testing::internal::CaptureStderr();
  for (DWORD slot; (slot = TlsAlloc()) != TLS_OUT_OF_INDEXES;)
    all.push_back(slot);
  SetLastError(4711);
  unsigned long slot = 0;
  ThreadLocalPlatform::AllocateSlot(slot);
  for (const DWORD taken : all)
    TlsFree(taken);
  const std::string written = testing::internal::GetCapturedStderr();
  EXPECT_EQ(slot, 0xFFFFFFFFul);
  EXPECT_NE(written.find("Check failed: slot != ((DWORD)0xFFFFFFFF) (4294967295 vs. 4294967295)"),
            std::string::npos)
      << written;
}

}  // namespace
}  // namespace Cmm::internal
