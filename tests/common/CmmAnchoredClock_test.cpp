#include "common/client/utility/src/CmmAnchoredClock.h"

#include "gtest/gtest.h"

namespace Cmm::internal {
namespace {

TEST(AnchoredClock, IsNotSetAtFirst) {
  EXPECT_FALSE(AnchoredClock().IsSet());
}

TEST(AnchoredClock, KnowsTheTimeAtAnyTicksFromOneAnchor) {
  AnchoredClock clock;
  clock.Set(500, 1000000);
  EXPECT_TRUE(clock.IsSet());
  EXPECT_EQ(clock.TimeAt(500), 1000000);
  EXPECT_EQ(clock.TimeAt(507), 1000007);
  EXPECT_EQ(clock.TimeAt(493), 999993);
}

TEST(AnchoredClock, MayBeSetToTheTimeOfItsTicksThemselves) {
  AnchoredClock clock;
  clock.Set(500, 500);
  EXPECT_TRUE(clock.IsSet());
  EXPECT_EQ(clock.TimeAt(7), 7);
}

TEST(AnchoredClock, TheNullTimeLeavesItNotSet) {
  AnchoredClock clock;
  clock.Set(500, 0);
  EXPECT_FALSE(clock.IsSet());
  clock.Set(500, 1);
  clock.Set(600, 0);
  EXPECT_FALSE(clock.IsSet());
}

TEST(AnchoredClock, IsStaleAMinuteAndAMillisecondAfterItsAnchor) {
  AnchoredClock clock;
  clock.Set(500, 1000000);
  EXPECT_FALSE(clock.IsStaleAt(500 + kAnchorLifetime - 1));
  EXPECT_TRUE(clock.IsStaleAt(500 + kAnchorLifetime));
  clock.Set(500 + kAnchorLifetime, 1);
  EXPECT_FALSE(clock.IsStaleAt(500 + kAnchorLifetime));
}

// So the clock that the server sets keeps the one anchor that it was given.
TEST(AnchoredClock, MovingTheAnchorAlongChangesNoTime) {
  AnchoredClock moved, still;
  moved.Set(500, 1000000);
  still.Set(500, 1000000);
  for (int64_t ticks = 500; ticks < 500 + 10 * kAnchorLifetime; ticks += kAnchorLifetime) {
    EXPECT_EQ(moved.TimeAt(ticks), still.TimeAt(ticks));
    moved.Set(ticks, moved.TimeAt(ticks));
  }
}

}  // namespace
}  // namespace Cmm::internal
