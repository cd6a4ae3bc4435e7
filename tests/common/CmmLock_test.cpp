#include "common/client/utility/src/CmmLock.h"

#include <deque>
#include <new>
#include <thread>

#include "common/client/utility/src/CmmEvent.h"
#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"

namespace Cmm {
namespace {

using namespace cmm_thread_testing;

// The answer of TryLock on another thread, which gives the lock back.
template <typename L>
ESyncRet TryLockElsewhere(L& lock) {
  ESyncRet answer{};
  std::jthread([&] {
    answer = lock.TryLock();
    if (answer == SYNC_OK) lock.Unlock();
  }).join();
  return answer;
}

TEST(ESyncRet, CarriesTheWaitValuesOfTheSystem) {
  EXPECT_EQ(SYNC_OK, 0);
  EXPECT_EQ(SYNC_TIMEOUT, 258);
  EXPECT_EQ(SYNC_NO_OBJECT, -1);
}

TEST(CCritical, IsUnlockedAtFirst) {
  CCritical lock;
  EXPECT_EQ(TryLockElsewhere(lock), SYNC_OK);
}

TEST(CCritical, KeepsOtherThreadsOutUntilUnlocked) {
  CCritical lock;
  lock.Lock();
  EXPECT_EQ(TryLockElsewhere(lock), SYNC_TIMEOUT);
  lock.Unlock();
  EXPECT_EQ(TryLockElsewhere(lock), SYNC_OK);
}

TEST(CCritical, IsRecursiveForItsThreadAndOpensWithTheLastUnlock) {
  CCritical lock;
  lock.Lock();
  lock.Lock();
  EXPECT_EQ(lock.TryLock(), SYNC_OK);
  lock.Unlock();
  lock.Unlock();
  EXPECT_EQ(TryLockElsewhere(lock), SYNC_TIMEOUT);
  lock.Unlock();
  EXPECT_EQ(TryLockElsewhere(lock), SYNC_OK);
}

TEST(CCritical, LockWaitsForTheOwner) {
  CCritical lock;
  CState entered;
  lock.Lock();
  std::jthread other([&] {
    lock.Lock();
    entered.Signal();
    lock.Unlock();
  });
  EXPECT_EQ(entered.Lock(kStaysBlockedMs), SYNC_TIMEOUT);
  lock.Unlock();
  entered.Lock();
}

TEST(CCritical, ANullPointerDoesNothing) {
  CCritical* const lock = NullOf<CCritical>();
  ::new (static_cast<void*>(lock)) CCritical;
  lock->Lock();
  EXPECT_EQ(lock->TryLock(), SYNC_NO_OBJECT);
  lock->Unlock();
  lock->~CCritical();
}

TEST(CMutex, IsUnlockedAtFirstAndAnotherThreadMayUnlockIt) {
  CMutex lock;
  EXPECT_EQ(lock.TryLock(), SYNC_OK);
  EXPECT_EQ(lock.TryLock(), SYNC_TIMEOUT);
  std::jthread([&] { lock.Unlock(); }).join();
  EXPECT_EQ(lock.TryLock(), SYNC_OK);
}

TEST(CMutex, LockTakesIt) {
  CMutex lock;
  lock.Lock();
  EXPECT_EQ(lock.TryLock(), SYNC_TIMEOUT);
  EXPECT_EQ(TryLockElsewhere(lock), SYNC_TIMEOUT);
}

TEST(CMutex, ASecondLockByTheHolderBlocksUntilAnotherThreadUnlocks) {
  CMutex lock;
  CState lockedTwice;
  std::jthread holder([&] {
    lock.Lock();
    lock.Lock();
    lockedTwice.Signal();
  });
  EXPECT_EQ(lockedTwice.Lock(kStaysBlockedMs), SYNC_TIMEOUT);
  do {
    lock.Unlock();  // more than once, should the first come before the holder has begun
  } while (lockedTwice.Lock(kStaysBlockedMs) != SYNC_OK);
}

TEST(CMutex, UnlockingItTwiceAdmitsOne) {
  CMutex lock;
  lock.Unlock();
  lock.Unlock();
  EXPECT_EQ(lock.TryLock(), SYNC_OK);
  EXPECT_EQ(lock.TryLock(), SYNC_TIMEOUT);
}

TEST(CMutex, OneUnlockAdmitsOneOfManyWaiters) {
  CMutex lock;
  CState admitted;
  CAtomicInt inside;
  lock.Lock();
  std::vector<std::jthread> waiters;
  for (int i = 0; i < 3; ++i) {
    waiters.emplace_back([&] {
      lock.Lock();
      inside.Inc();
      admitted.Signal();
    });
  }
  for (int expected = 1; expected <= 3; ++expected) {
    admitted.Unsignal();
    lock.Unlock();
    admitted.Lock();
    EXPECT_EQ(inside.Get(), expected);
    EXPECT_EQ(lock.TryLock(), SYNC_TIMEOUT);
  }
}

TEST(CMutex, ClosesItsHandle) {
  HANDLE event;
  {
    CMutex lock;
    event = HandleIn(lock);
    EXPECT_TRUE(IsOpen(event));
  }
  EXPECT_FALSE(IsOpen(event));
}

TEST(CMutex, ANullPointerDoesNothing) {
  CMutex* const lock = NullOf<CMutex>();
  lock->Lock();
  EXPECT_EQ(lock->TryLock(), SYNC_NO_OBJECT);
  lock->Unlock();
  lock->~CMutex();
}

TEST(CMutex, WithoutAnEventLocksAndUnlocksNothingAndTriesInVain) {
  WithoutEvent<CMutex> lock;
  lock->Lock();
  lock->Lock();
  lock->Unlock();
  EXPECT_EQ(static_cast<DWORD>(lock->TryLock()), WAIT_FAILED);
}

template <typename L>
class AutoLock : public testing::Test {};
using Locks = testing::Types<CCritical, CMutex>;
TYPED_TEST_SUITE(AutoLock, Locks);

TYPED_TEST(AutoLock, HoldsALockForAScope) {
  TypeParam lock;
  {
    CAutoLock hold(lock);
    EXPECT_EQ(TryLockElsewhere(lock), SYNC_TIMEOUT);
  }
  {
    CAutoLock hold(&lock);
    EXPECT_EQ(TryLockElsewhere(lock), SYNC_TIMEOUT);
  }
  EXPECT_EQ(TryLockElsewhere(lock), SYNC_OK);
}

TYPED_TEST(AutoLock, AcceptsANullPointer) {
  TypeParam* const none = NullOf<TypeParam>();
  CAutoLock hold(none);
  EXPECT_EQ(none->TryLock(), SYNC_NO_OBJECT);
}

constexpr int kThreads = 4;
constexpr int kRounds = 2000;

template <typename L>
class LockUnderContention : public testing::Test {};
TYPED_TEST_SUITE(LockUnderContention, Locks);

TYPED_TEST(LockUnderContention, OneThreadAtATimeIsInside) {
  TypeParam lock;
  long counter = 0;  // plain: only the lock keeps its increments apart
  CAtomicInt inside;
  CAtomicInt crowded;
  RunTogether(kThreads, [&](int thread) {
    for (int i = 0; i < kRounds; ++i) {
      if (thread % 2 == 0)
        lock.Lock();
      else
        while (lock.TryLock() != SYNC_OK)
          CThread::Yield();
      if (inside.Inc() != 1) crowded.Inc();
      const long before = counter;
      if (i % 64 == 0) CThread::Yield();
      counter = before + 1;
      inside.Dec();
      lock.Unlock();
    }
  });
  EXPECT_EQ(counter, kThreads * kRounds);
  EXPECT_EQ(crowded.Get(), 0);
}

TEST(CCriticalUnderContention, RecursionKeepsOthersOut) {
  CCritical lock;
  long counter = 0;
  RunTogether(kThreads, [&](int) {
    for (int i = 0; i < kRounds; ++i) {
      CAutoLock outer(lock);
      const long before = counter;
      {
        CAutoLock inner(lock);
        counter = before + 1;
      }
      if (i % 64 == 0) CThread::Yield();
      counter = before + 2;
    }
  });
  EXPECT_EQ(counter, 2 * kThreads * kRounds);
}

TEST(CCriticalUnderContention, AQueueHandsOnEveryElementOnceAndInItsProducersOrder) {
  constexpr int kProducers = 3;
  CCritical lock;
  std::deque<std::pair<int, int>> queue;
  std::vector<int> next(kProducers);
  bool inOrder = true;
  RunTogether(kProducers + 1, [&](int thread) {
    if (thread < kProducers) {
      for (int i = 0; i < kRounds; ++i) {
        CAutoLock hold(lock);
        queue.emplace_back(thread, i);
      }
      return;
    }
    for (int taken = 0; taken < kProducers * kRounds;) {
      CAutoLock hold(lock);
      for (; !queue.empty(); queue.pop_front(), ++taken) {
        const auto& [producer, number] = queue.front();
        inOrder = inOrder && number == next[producer];
        next[producer] = number + 1;
      }
    }
  });
  EXPECT_TRUE(inOrder);
  EXPECT_EQ(next, std::vector<int>(kProducers, kRounds));
}

TEST(CMutexUnderContention, TwoOfThemPassATurnBetweenThreads) {
  CMutex ping;
  CMutex pong;
  pong.Lock();
  long turns = 0;
  RunTogether(2, [&](int thread) {
    CMutex& mine = thread == 0 ? ping : pong;
    CMutex& other = thread == 0 ? pong : ping;
    for (int i = 0; i < 1000; ++i) {
      mine.Lock();
      EXPECT_EQ(turns % 2, thread);
      ++turns;
      other.Unlock();  // locked by the other thread
    }
  });
  EXPECT_EQ(turns, 2000);
}

}  // namespace
}  // namespace Cmm
