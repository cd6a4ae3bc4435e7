#include "sdk/TimerQueueTimer.h"

#include <windows.h>

#include <atomic>
#include <memory>

#include "gtest/gtest.h"
#include "tests/support/WaitUntil.h"

namespace Velm3rdSDK {
namespace {

TEST(TimerQueueTimer, TicksEveryPeriodUntilItIsStopped) {
  std::atomic<int> ticks = 0;
  TimerQueueTimer timer;
  EXPECT_FALSE(timer.IsRunning());
  const ULONGLONG start = GetTickCount64();
  ASSERT_TRUE(timer.Start(50, [&] { ++ticks; }));
  EXPECT_TRUE(timer.IsRunning());
  EXPECT_TRUE(WaitUntil([&] { return ticks == 4; }));
  EXPECT_GE(GetTickCount64() - start, 180u);
  timer.Stop();
  timer.AwaitLastTick();
  EXPECT_FALSE(timer.IsRunning());
  const int last = ticks;
  Sleep(150);
  EXPECT_EQ(ticks, last);
}

TEST(TimerQueueTimer, StopDoesNotWaitForATickThatRunsAndAwaitLastTickDoes) {
  std::atomic<bool> entered = false;
  std::atomic<bool> left = false;
  TimerQueueTimer timer;
  timer.Start(10, [&] {
    entered = true;
    Sleep(500);
    left = true;
  });
  ASSERT_TRUE(WaitUntil([&] { return entered.load(); }));
  timer.Stop();
  EXPECT_FALSE(left);
  timer.AwaitLastTick();
  EXPECT_TRUE(left);
}

TEST(TimerQueueTimer, ATickMayStopItsOwnTimer) {
  std::atomic<int> ticks = 0;
  TimerQueueTimer timer;
  timer.Start(10, [&] {
    ++ticks;
    timer.Stop();
    timer.AwaitLastTick();
  });
  EXPECT_TRUE(WaitUntil([&] { return ticks == 1; }));
  Sleep(60);
  EXPECT_EQ(ticks, 1);
}

TEST(TimerQueueTimer, ATickThatReplacedItsOwnTimerIsWaitedForAsWell) {
  std::atomic<bool> replaced = false;
  std::atomic<bool> left = false;
  TimerQueueTimer timer;
  timer.Start(10, [&] {
    timer.Stop();
    replaced = true;
    Sleep(60);
    left = true;
  });
  ASSERT_TRUE(WaitUntil([&] { return replaced.load(); }));
  TimerQueueTimer other;
  other.Start(10, [] {});
  other.Stop();
  TimerQueueTimer::AwaitLastTick();
  EXPECT_TRUE(left);
}

TEST(TimerQueueTimer, ATickMayReplaceItsOwnTimer) {
  std::atomic<int> second = 0;
  TimerQueueTimer timer;
  timer.Start(10, [&] { timer.Start(10, [&] { ++second; }); });
  EXPECT_TRUE(WaitUntil([&] { return second >= 3; }));
}

TEST(TimerQueueTimer, TheTickOutlivesItsTimer) {
  const auto shared = std::make_shared<std::atomic<int>>(0);
  auto timer = std::make_unique<TimerQueueTimer>();
  std::atomic<bool> done = false;
  timer->Start(10, [&timer, shared, &done] {
    if (shared->exchange(1)) return;
    timer.reset();
    shared->store(2);  // what the tick holds is still there
    done = true;
  });
  EXPECT_TRUE(WaitUntil([&] { return done.load(); }));
  EXPECT_EQ(shared->load(), 2);
}

TEST(TimerQueueTimer, ManyTimersLeaveNoHandleBehind) {
  const auto handles = [] {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
  };
  const auto live = [] {
    std::atomic<int> ticks = 0;
    TimerQueueTimer timer;
    timer.Start(1, [&] { ++ticks; });
    WaitUntil([&] { return ticks > 0; });
  };
  live();
  const DWORD before = handles();
  for (int i = 0; i < 50; ++i)
    live();
  EXPECT_EQ(handles(), before);
}

}  // namespace
}  // namespace Velm3rdSDK
