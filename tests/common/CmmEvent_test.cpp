#include "common/client/utility/src/CmmEvent.h"

#include <thread>

#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"
#include "tests/support/WaitUntil.h"

namespace Cmm {
namespace {

using namespace cmm_thread_testing;

// Nobody can see from outside that a thread has begun to wait, and a pulse reaches only one that has. So
// these tests pulse until it was felt, with this pause between, and count the pulses.
constexpr std::chrono::milliseconds kPause(20);

template <typename Pulse, typename Felt>
int PulseUntil(Felt felt, Pulse pulse) {
  int pulses = 0;
  do {
    pulse();
    ++pulses;
  } while (!WaitUntil(felt, kPause));
  return pulses;
}

TEST(CEvent, IsNotSignalledAtFirst) {
  CEvent event;
  EXPECT_EQ(event.Lock(0), SYNC_TIMEOUT);
}

TEST(CEvent, ASignalWithNobodyWaitingIsLost) {
  CEvent event;
  event.Signal();
  EXPECT_EQ(event.Lock(0), SYNC_TIMEOUT);
}

TEST(CEvent, UnlockDoesNothing) {
  CEvent event;
  event.Unlock();
  EXPECT_EQ(event.Lock(0), SYNC_TIMEOUT);
}

TEST(CEvent, ATimedWaitTakesItsTime) {
  CEvent event;
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(event.Lock(50), SYNC_TIMEOUT);
  EXPECT_GE(GetTickCount64() - start, 34u);  // a tick of 16 ms less
}

TEST(CEvent, ASignalReleasesAPresentWaiterAndIsUsedUp) {
  CEvent event;
  CState released;
  std::jthread waiter([&] {
    event.Lock();
    released.Signal();
  });
  PulseUntil([&] { return released.IsSignaled() != 0; }, [&] { event.Signal(); });
  EXPECT_EQ(event.Lock(0), SYNC_TIMEOUT);
}

TEST(CEvent, ASignalEndsATimedWaitWithZero) {
  CEvent event;
  CState released;
  ESyncRet answer = SYNC_NO_OBJECT;
  std::jthread waiter([&] {
    answer = event.Lock(INFINITE);
    released.Signal();
  });
  PulseUntil([&] { return released.IsSignaled() != 0; }, [&] { event.Signal(); });
  waiter.join();
  EXPECT_EQ(answer, SYNC_OK);
}

TEST(CEvent, ASignalReleasesOneOfManyWaiters) {
  constexpr int kWaiters = 3;
  CEvent event;
  CAtomicInt released;
  std::vector<std::jthread> waiters;
  for (int i = 0; i < kWaiters; ++i) {
    waiters.emplace_back([&] {
      event.Lock();
      released.Inc();
    });
  }
  CThread::Sleep(kStaysBlockedMs);  // all of them wait now; were it not so, the test would see less
  const int pulses = PulseUntil([&] { return released.Get() > 0; }, [&] { event.Signal(); });
  CThread::Sleep(kStaysBlockedMs);
  EXPECT_LE(released.Get(), pulses);
  PulseUntil([&] { return released.Get() == kWaiters; }, [&] { event.Signal(); });
}

TEST(CEvent, NeverReleasesMoreWaitersThanItWasSignalled) {
  CEvent event;
  CAtomicInt released;
  CAtomicInt stop;
  CAtomicInt left;
  int pulses = 0;
  std::vector<std::jthread> waiters;
  for (int i = 0; i < 4; ++i) {
    waiters.emplace_back([&] {
      while (stop.Get() == 0) {
        if (event.Lock(5) == SYNC_OK) released.Inc();
      }
      left.Inc();
    });
  }
  for (; pulses < 200 || released.Get() == 0; ++pulses) {
    event.Signal();
    if (pulses % 8 == 0) CThread::Sleep(1);
  }
  stop = 1;
  EXPECT_TRUE(WaitUntil([&] { return left.Get() == 4; }));
  EXPECT_LE(released.Get(), pulses);
  EXPECT_GT(released.Get(), 0);
}

TEST(CEvent, ClosesItsHandle) {
  HANDLE handle;
  {
    CEvent event;
    handle = HandleIn(event);
    EXPECT_TRUE(IsOpen(handle));
  }
  EXPECT_FALSE(IsOpen(handle));
}

TEST(CEvent, SignalAndDestructionAcceptANullPointer) {
  CEvent* const event = NullOf<CEvent>();
  event->Signal();
  event->Unlock();
  event->~CEvent();
  SUCCEED() << "no null pointer was followed";
}

TEST(CEvent, WithoutAnEventEveryWaitFailsAtOnce) {
  WithoutEvent<CEvent> event;
  event->Signal();
  event->Lock();
  EXPECT_EQ(static_cast<DWORD>(event->Lock(INFINITE)), WAIT_FAILED);
}

TEST(CState, IsNotSignalledUnlessAsked) {
  const CState none;
  const CState zero(0);
  const CState one(1);
  const CState other(-7);
  EXPECT_EQ(none.IsSignaled(), 0);
  EXPECT_EQ(zero.IsSignaled(), 0);
  EXPECT_NE(one.IsSignaled(), 0);
  EXPECT_NE(other.IsSignaled(), 0);
}

TEST(CState, StaysSignalledUntilUnsignal) {
  CState state(1);
  for (int i = 0; i < 3; ++i) {
    EXPECT_NE(state.IsSignaled(), 0);
    EXPECT_EQ(state.Lock(0), SYNC_OK);
    state.Lock();
    state.Unlock();
  }
  state.Unsignal();
  EXPECT_EQ(state.IsSignaled(), 0);
  EXPECT_EQ(state.Lock(0), SYNC_TIMEOUT);
  state.Unlock();
  EXPECT_EQ(state.IsSignaled(), 0);
}

TEST(CState, ASignalBeforeAnyoneWaitsStays) {
  CState state;
  state.Signal();
  EXPECT_EQ(state.Lock(0), SYNC_OK);
  EXPECT_NE(state.IsSignaled(), 0);
}

TEST(CState, ATimedWaitTakesItsTime) {
  CState state;
  const ULONGLONG start = GetTickCount64();
  EXPECT_EQ(state.Lock(50), SYNC_TIMEOUT);
  EXPECT_GE(GetTickCount64() - start, 34u);  // a tick of 16 ms less
}

TEST(CState, ASignalReleasesEveryWaiter) {
  CState state;
  CAtomicInt released;
  RunTogether(4, [&](int thread) {
    if (thread == 0) {
      state.Signal();
      return;
    }
    if (thread == 1)
      state.Lock();
    else
      EXPECT_EQ(state.Lock(INFINITE), SYNC_OK);
    released.Inc();
  });
  EXPECT_EQ(released.Get(), 3);
  EXPECT_NE(state.IsSignaled(), 0);
}

TEST(CState, APulseWithNobodyWaitingIsLost) {
  CState state;
  state.Pulse();
  EXPECT_EQ(state.IsSignaled(), 0);
}

TEST(CState, APulseReleasesThePresentWaitersAndLeavesNothingBehind) {
  constexpr int kWaiters = 3;
  CState state;
  CAtomicInt released;
  std::vector<std::jthread> waiters;
  for (int i = 0; i < kWaiters; ++i) {
    waiters.emplace_back([&] {
      state.Lock();
      released.Inc();
    });
  }
  PulseUntil([&] { return released.Get() == kWaiters; },
             [&] {
               state.Pulse();
               EXPECT_EQ(state.IsSignaled(), 0);
             });
}

TEST(CState, APulseOfASignalledStateClearsIt) {
  CState state(1);
  state.Pulse();
  EXPECT_EQ(state.IsSignaled(), 0);
}

TEST(CState, ClosesItsHandle) {
  HANDLE handle;
  {
    CState state;
    handle = HandleIn(state);
    EXPECT_TRUE(IsOpen(handle));
  }
  EXPECT_FALSE(IsOpen(handle));
}

TEST(CState, ANullPointerDoesNothingAndCountsAsSignalled) {
  CState* const state = NullOf<CState>();
  state->Signal();
  state->Pulse();
  state->Unsignal();
  state->Unlock();
  EXPECT_EQ(state->IsSignaled(), 1);
  state->~CState();
}

TEST(CState, WithoutAnEventEveryWaitFailsAtOnceAndItIsNotSignalled) {
  WithoutEvent<CState> state;
  state->Signal();
  state->Pulse();
  state->Unsignal();
  state->Lock();
  EXPECT_EQ(static_cast<DWORD>(state->Lock(INFINITE)), WAIT_FAILED);
  EXPECT_EQ(state->IsSignaled(), 0);
}

TEST(CStateUnderContention, ARelayOfStatesLosesNoTurn) {
  constexpr int kRunners = 4;
  constexpr int kLaps = 250;
  CState turn[kRunners];
  long handovers = 0;  // plain: the relay alone keeps the runners apart
  turn[0].Signal();
  RunTogether(kRunners, [&](int runner) {
    for (int lap = 0; lap < kLaps; ++lap) {
      turn[runner].Lock();
      turn[runner].Unsignal();
      ++handovers;
      turn[(runner + 1) % kRunners].Signal();
    }
  });
  EXPECT_EQ(handovers, kRunners * kLaps);
}

}  // namespace
}  // namespace Cmm
