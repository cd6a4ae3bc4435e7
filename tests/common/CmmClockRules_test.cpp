#include "common/client/utility/src/CmmClockRules.h"

#include <limits>

#include "gtest/gtest.h"

namespace Cmm::internal {
namespace {

TEST(TickRollover, CountsMillisecondsInMicroseconds) {
  TickRollover rollover;
  EXPECT_EQ(rollover.Extend(0), 0);
  EXPECT_EQ(rollover.Extend(7), 7000);
  EXPECT_EQ(rollover.Extend(0xFFFFFFFF), 4294967295000);
}

TEST(TickRollover, AnEqualReadingIsNoWrap) {
  TickRollover rollover;
  rollover.Extend(7);
  EXPECT_EQ(rollover.Extend(7), 7000);
}

TEST(TickRollover, ASmallerReadingIsAWrapEvenByOne) {
  TickRollover rollover;
  rollover.Extend(7);
  EXPECT_EQ(rollover.Extend(6), (0x100000000 + 6) * 1000);
  EXPECT_EQ(rollover.Extend(5), (2 * 0x100000000 + 5) * 1000);
}

TEST(IsAnchorStale, FromAMinuteAndAMillisecondOn) {
  EXPECT_FALSE(IsAnchorStale(500, 500));
  EXPECT_FALSE(IsAnchorStale(500, 500 + 60000000));
  EXPECT_FALSE(IsAnchorStale(500, 500 + 60000999));
  EXPECT_TRUE(IsAnchorStale(500, 500 + 60001000));
}

TEST(IsAnchorStale, NotWhenTheTicksAreOlderThanTheAnchor) {
  EXPECT_FALSE(IsAnchorStale(60001000, 0));
}

TEST(CounterFactor, IsTheFrequencyInCountsPerMicrosecond) {
  EXPECT_EQ(CounterFactor(10000000), 10.0f);
  EXPECT_EQ(CounterFactor(3579545), 3.579545f);
  EXPECT_EQ(CounterFactor(0), 0.0f);
}

TEST(CounterFactor, HasTheFrequencyRoundedToSinglePrecision) {
  EXPECT_EQ(CounterFactor(2147483649), 2147483648.0f / 1000000.0f);
}

TEST(CounterMicroseconds, DividesAndTruncates) {
  EXPECT_EQ(CounterMicroseconds(12345, 10.0f), 1234);
  EXPECT_EQ(CounterMicroseconds(0, 10.0f), 0);
}

TEST(CounterMicroseconds, RoundsTheCountToSinglePrecisionFirst) {
  EXPECT_EQ(CounterMicroseconds(16777217, 1.0f), 16777216);              // 2^24 + 1
  EXPECT_EQ(CounterMicroseconds(16777219, 1.0f), 16777220);              // a tie goes to the even one
  EXPECT_EQ(CounterMicroseconds(864000000001, 10.0f), 86400000000);      // a day at 10 MHz
  EXPECT_EQ(CounterMicroseconds(864000032768, 10.0f), 86399999999 + 1);  // half a step of 65536 counts
}

TEST(CounterMicroseconds, ACountThatHasNoPlaceGivesTheSmallestInteger) {
  EXPECT_EQ(CounterMicroseconds(std::numeric_limits<int64_t>::max(), 0.5f),
            std::numeric_limits<int64_t>::min());
}

TEST(IsCounterTrusted, OnAllProcessorsButOneFamily) {
  EXPECT_FALSE(IsCounterTrusted("AuthenticAMD", 15));
  EXPECT_TRUE(IsCounterTrusted("AuthenticAMD", 6));
  EXPECT_TRUE(IsCounterTrusted("GenuineIntel", 15));
  EXPECT_TRUE(IsCounterTrusted("AuthenticAMD ", 15));
  EXPECT_TRUE(IsCounterTrusted("", 0));
}

TEST(CounterDrift, IsAnAbsoluteValue) {
  EXPECT_EQ(CounterDrift(1000, 300, 600), 100);
  EXPECT_EQ(CounterDrift(1000, 300, 900), 200);
  EXPECT_EQ(CounterDrift(1000, -300, 1300), 0);
}

TEST(CounterDrift, KnowsTheLow32BitsOnly) {
  EXPECT_EQ(CounterDrift(0x100000005, 0, 0), 5);
  EXPECT_EQ(CounterDrift(0x90000000, 0, 0), 0x70000000);
  EXPECT_EQ(CounterDrift(0x80000000, 0, 0), std::numeric_limits<int32_t>::min());
}

}  // namespace
}  // namespace Cmm::internal
