#include "common/client/utility/src/CmmHighResClock.h"

#include <windows.h>

#include "common/client/utility/src/CmmClockRules.h"
#include "common/client/utility/src/CmmTimeValue.h"
#include "gtest/gtest.h"

namespace Cmm::internal {
namespace {

int64_t CounterNow() {
  LARGE_INTEGER count, frequency;
  QueryPerformanceCounter(&count);
  QueryPerformanceFrequency(&frequency);
  return CounterMicroseconds(count.QuadPart, CounterFactor(frequency.QuadPart));
}

TEST(HighResClock, RunsOnTheCounterThatIsTrusted) {
  const HighResClock clock(true);
  ASSERT_TRUE(clock.IsWorking());
  const int64_t before = CounterNow();
  const int64_t now = clock.Now();
  EXPECT_GE(now, before);
  EXPECT_LE(now, CounterNow());
}

// Both clocks are read at different moments, and the ticks have steps of a millisecond or more: what is told
// is small, never negative, and has no share of the difference between the origins of the two clocks.
TEST(HighResClock, TellsADriftWithoutTheDifferenceAtTheStart) {
  const HighResClock clock(true);
  EXPECT_GE(clock.Drift(), 0);
  EXPECT_LT(clock.Drift(), 10'000'000);
  Sleep(50);
  EXPECT_GE(clock.Drift(), 0);
  EXPECT_LT(clock.Drift(), 10'000'000);
}

TEST(HighResClock, IsTheTicksWhereTheCounterIsNotTrusted) {
  const HighResClock clock(false);
  EXPECT_FALSE(clock.IsWorking());
  EXPECT_EQ(clock.Drift(), 0);
  const int64_t before = TimeTicks::Now().ToInternalValue();
  const int64_t now = clock.Now();
  EXPECT_GE(now, before);
  EXPECT_LE(now, TimeTicks::Now().ToInternalValue());
}

}  // namespace
}  // namespace Cmm::internal
