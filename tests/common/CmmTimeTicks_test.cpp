// The clocks: TimeTicks, and those of Time that run by it.

#include <windows.h>

#include <atomic>
#include <thread>
#include <vector>

#include "common/client/utility/src/CmmCpu.h"
#include "common/client/utility/src/CmmTimeValue.h"
#include "gtest/gtest.h"

namespace Cmm {
namespace {

TimeDelta Ms(int64_t ms) {
  return TimeDelta::FromMilliseconds(ms);
}

// While it lives, TimeTicks::Now reads a counter that stands still unless it is set.
class FakeTicks : public TimeTicks {
 public:
  explicit FakeTicks(uint32_t reading) : m_replaced(SetMockTickFunction(Read)) { s_reading = reading; }
  FakeTicks(const FakeTicks&) = delete;
  FakeTicks& operator=(const FakeTicks&) = delete;
  ~FakeTicks() { SetMockTickFunction(m_replaced); }

  void Set(uint32_t reading) { s_reading = reading; }
  void Advance(uint32_t ms) { s_reading += ms; }

  static uint32_t Read() { return s_reading; }
  static uint32_t ReadAndStep() { return s_reading++; }
  static TickFunctionType Replace(TickFunctionType fn) { return SetMockTickFunction(fn); }

 private:
  static inline std::atomic<uint32_t> s_reading{0};

  TickFunctionType m_replaced;
};

TEST(TimeTicks, AreNullAtFirst) {
  EXPECT_TRUE(TimeTicks().is_null());
  EXPECT_EQ(TimeTicks().ToInternalValue(), 0);
  EXPECT_FALSE((TimeTicks() + Ms(1)).is_null());
}

TEST(TimeTicks, AddSpansAndSubtractEachOther) {
  TimeTicks ticks = TimeTicks() + Ms(10);
  EXPECT_EQ((ticks + Ms(5)).ToInternalValue(), 15000);
  EXPECT_EQ((ticks - Ms(5)).ToInternalValue(), 5000);
  EXPECT_EQ(ticks - (TimeTicks() + Ms(4)), Ms(6));
  EXPECT_EQ((ticks += Ms(1)).ToInternalValue(), 11000);
  EXPECT_EQ((ticks -= Ms(2)).ToInternalValue(), 9000);
  EXPECT_EQ(ticks.ToInternalValue(), 9000);
}

TEST(TimeTicks, Compare) {
  const TimeTicks a = TimeTicks() + Ms(1);
  const TimeTicks b = TimeTicks() + Ms(2);
  EXPECT_TRUE(a == a && a != b && a < b && b > a && a <= a && a >= a && a <= b && b >= a);
  EXPECT_FALSE(a == b || a != a || b < a || a < a || a > a || b <= a || a >= b);
}

TEST(TimeTicks, AReadingInMillisecondsIsAMultipleOfAThousand) {
  FakeTicks fake(100);
  const TimeTicks before = TimeTicks::Now();
  fake.Set(123);
  EXPECT_EQ(TimeTicks::Now() - before, Ms(23));
  EXPECT_EQ(TimeTicks::Now().ToInternalValue() % 0x100000000 % 1000, 0);
}

TEST(TimeTicks, TwoReadingsAcrossTheWrapDifferByTheTrueInterval) {
  FakeTicks fake(0xFFFFFFF0);
  const TimeTicks before = TimeTicks::Now();
  fake.Set(0x10);
  const TimeTicks after = TimeTicks::Now();
  EXPECT_GT(after, before);
  EXPECT_EQ(after - before, Ms(0x20));
}

TEST(TimeTicks, EveryWrapCounts) {
  FakeTicks fake(5);
  const TimeTicks before = TimeTicks::Now();
  for (int turn = 0; turn < 3; ++turn) {
    fake.Set(0xFFFFFFFF);
    TimeTicks::Now();
    fake.Set(5);
    TimeTicks::Now();
  }
  EXPECT_EQ(TimeTicks::Now() - before, Ms(3 * 0x100000000));
}

TEST(TimeTicks, TheMockFunctionIsSwappedForTheOneBefore) {
  const auto replaced = FakeTicks::Replace(FakeTicks::Read);
  EXPECT_NE(replaced, FakeTicks::Read);
  EXPECT_EQ(FakeTicks::Replace(replaced), FakeTicks::Read);
}

TEST(TimeTicks, FollowTheSystemsCounter) {
  const TimeTicks before = TimeTicks::Now();
  Sleep(20);
  const TimeTicks after = TimeTicks::Now();
  EXPECT_GE(after - before, Ms(15));  // the system's timers may be a little early
}

// The counter is read under the lock: two readings that changed places would count as a wrap, 49 days.
TEST(TimeTicks, SeeNoWrapWhereManyThreadsReadACounterThatRuns) {
  constexpr int kThreads = 4;
  constexpr int kReadings = 20000;
  FakeTicks fake(1000);
  FakeTicks::Replace(FakeTicks::ReadAndStep);
  const TimeTicks before = TimeTicks::Now();
  std::vector<std::jthread> readers;
  std::atomic<int> backward{0};
  for (int i = 0; i < kThreads; ++i) {
    readers.emplace_back([&backward] {
      TimeTicks last = TimeTicks::Now();
      for (int n = 1; n < kReadings; ++n) {
        const TimeTicks now = TimeTicks::Now();
        if (now <= last) ++backward;
        last = now;
      }
    });
  }
  readers.clear();
  EXPECT_EQ(backward, 0);
  EXPECT_EQ(TimeTicks::Now() - before, Ms(kThreads * kReadings + 1));
}

void ExpectHighResTicksOfTheCounter() {
  LARGE_INTEGER before, after, frequency;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&before);
  const TimeTicks ticks = TimeTicks::HighResNow();
  QueryPerformanceCounter(&after);
  const float factor = static_cast<float>(frequency.QuadPart) / 1000000.0f;
  EXPECT_GE(ticks.ToInternalValue(), static_cast<int64_t>(static_cast<float>(before.QuadPart) / factor));
  EXPECT_LE(ticks.ToInternalValue(), static_cast<int64_t>(static_cast<float>(after.QuadPart) / factor));
}

void ExpectHighResTicksOfTheTickClock() {
  FakeTicks fake(77);
  EXPECT_EQ(TimeTicks::HighResNow(), TimeTicks::Now());
  EXPECT_EQ(TimeTicks::GetQPCDriftMicroseconds(), 0);
}

// A process has one of the two for good. CmmHighResClock_test.cpp has both on every machine.
TEST(HighResTicks, RunOnThePerformanceCounterUnlessThisProcessorsIsNotTrusted) {
  const CPU cpu;
  const bool trusted = !(cpu.vendor_name() == "AuthenticAMD" && cpu.family() == 15);
  ASSERT_EQ(TimeTicks::IsHighResClockWorking(), trusted);
  if (trusted)
    ExpectHighResTicksOfTheCounter();
  else
    ExpectHighResTicksOfTheTickClock();
}

// ---- The wall clocks -----------------------------------------------------------------------------------

Time SystemTime() {
  FILETIME fileTime;
  GetSystemTimeAsFileTime(&fileTime);
  return Time::FromFileTime(fileTime);
}

TEST(TimeClock, NowIsTheSystemsTime) {
  EXPECT_LT(Time::Now() - SystemTime(), TimeDelta::FromMinutes(1));
  EXPECT_GT(Time::Now() - SystemTime(), TimeDelta::FromMinutes(-1));
}

TEST(TimeClock, NowFromSystemTimeIsTheSystemsTime) {
  const Time before = SystemTime();
  const Time now = Time::NowFromSystemTime();
  EXPECT_GE(now, before);
  EXPECT_LE(now, SystemTime());
}

TEST(TimeClock, NowRunsByTheTicksForAMinuteBehindTheSystemsTime) {
  FakeTicks fake(1000);
  const Time anchor = Time::NowFromSystemTime();
  EXPECT_EQ(Time::Now(), anchor);
  fake.Advance(250);
  EXPECT_EQ(Time::Now(), anchor + Ms(250));
  fake.Advance(59750);
  EXPECT_EQ(Time::Now(), anchor + Ms(60000));
}

TEST(TimeClock, NowReadsTheSystemsTimeAgainAMinuteAndAMillisecondLater) {
  FakeTicks fake(1000);
  const Time anchor = Time::NowFromSystemTime();
  fake.Advance(60001);
  const Time now = Time::Now();
  EXPECT_LT(now, anchor + Ms(30000));  // the ticks were pretended, the system's time is not
  fake.Advance(60000);
  EXPECT_EQ(Time::Now(), now + Ms(60000));
}

// Has the server set no time before and behind it.
class ServerClock : public testing::Test {
 protected:
  ServerClock() { Time::MM_InitWithServerTime(Time()); }
  ~ServerClock() override { Time::MM_InitWithServerTime(Time()); }
};

TEST_F(ServerClock, WithoutAServerTimeNowIsTheSystemsAndTheServersIsNull) {
  FakeTicks fake(1000);
  Time::NowFromSystemTime();
  fake.Advance(10);
  EXPECT_EQ(Time::MM_Now(), Time::Now());
  EXPECT_TRUE(Time::MM_Svr_Now().is_null());
}

TEST_F(ServerClock, RunsByTheTicksFromTheTimeThatTheServerGave) {
  FakeTicks fake(1000);
  const Time serverTime = Time::FromTimeT(1000000000);
  Time::MM_InitWithServerTime(serverTime);
  EXPECT_EQ(Time::MM_Now(), serverTime);
  EXPECT_EQ(Time::MM_Svr_Now(), serverTime);
  fake.Advance(250);
  EXPECT_EQ(Time::MM_Now(), serverTime + Ms(250));
  EXPECT_EQ(Time::MM_Svr_Now(), serverTime + Ms(250));
}

TEST_F(ServerClock, LosesNothingAcrossTheMinuteNorAcrossAWrapOfTheTicks) {
  FakeTicks fake(1000);
  const Time serverTime = Time::FromTimeT(1000000000);
  Time::MM_InitWithServerTime(serverTime);
  int64_t elapsed = 0;
  for (uint32_t step : {60000u, 1u, 60001u, 86400000u, 0xFFFFFFFFu, 0xFFFFFFF0u}) {
    fake.Advance(step);
    elapsed += step;
    EXPECT_EQ(Time::MM_Svr_Now(), serverTime + Ms(elapsed)) << step;
    EXPECT_EQ(Time::MM_Now(), serverTime + Ms(elapsed)) << step;
  }
}

TEST_F(ServerClock, DoesNotTouchTheSystemsClock) {
  FakeTicks fake(1000);
  const Time anchor = Time::NowFromSystemTime();
  Time::MM_InitWithServerTime(Time::FromTimeT(1000000000));
  EXPECT_EQ(Time::Now(), anchor);
}

TEST_F(ServerClock, ALaterServerTimeReplacesTheEarlier) {
  FakeTicks fake(1000);
  Time::MM_InitWithServerTime(Time::FromTimeT(1000000000));
  fake.Advance(500);
  Time::MM_InitWithServerTime(Time::FromTimeT(2000000000));
  fake.Advance(1);
  EXPECT_EQ(Time::MM_Now(), Time::FromTimeT(2000000000) + Ms(1));
}

// The server sets the time that its clock shows already, again and again, at other ticks. A reader that took
// the time of one anchor with the ticks of another would be seconds off.
TEST_F(ServerClock, IsReadWholeWhileItIsSet) {
  FakeTicks fake(1000);
  const Time origin = Time::FromTimeT(1000000000);
  const TimeTicks start = TimeTicks::Now();
  Time::MM_InitWithServerTime(origin);
  std::atomic<int> wrong{0};
  std::atomic<int> read{0};
  std::jthread reader([&](std::stop_token stop) {
    while (!stop.stop_requested()) {
      const TimeDelta before = TimeTicks::Now() - start;
      const TimeDelta shown = Time::MM_Svr_Now() - origin;
      const TimeDelta after = TimeTicks::Now() - start;
      if (shown < before || shown > after) ++wrong;
      ++read;
    }
  });
  for (int n = 0; n < 20000 || read < 20000; ++n) {
    fake.Advance(1);
    Time::MM_InitWithServerTime(origin + (TimeTicks::Now() - start));
  }
  reader.request_stop();
  reader.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace Cmm
