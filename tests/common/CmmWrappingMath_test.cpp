#include "common/client/utility/src/CmmWrappingMath.h"

#include <cmath>

#include "gtest/gtest.h"

namespace Cmm::internal {
namespace {

constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
constexpr int64_t kMin = std::numeric_limits<int64_t>::min();

TEST(WrappingMath, IsPlainArithmeticWithinTheRange) {
  EXPECT_EQ(WrappingAdd(5, -7), -2);
  EXPECT_EQ(WrappingSubtract(5, -7), 12);
  EXPECT_EQ(WrappingMultiply(5, -7), -35);
  EXPECT_EQ(WrappingDivide(-36, 7), -5);
}

TEST(WrappingMath, WrapsAroundOutsideTheRange) {
  EXPECT_EQ(WrappingAdd(kMax, 2), kMin + 1);
  EXPECT_EQ(WrappingSubtract(kMin, 2), kMax - 1);
  EXPECT_EQ(WrappingMultiply(kMax, 2), -2);
  EXPECT_EQ(WrappingDivide(kMin, -1), kMin);
}

TEST(TruncateToInt64, GoesTowardsZero) {
  EXPECT_EQ(TruncateToInt64(2.9), 2);
  EXPECT_EQ(TruncateToInt64(-2.9), -2);
}

TEST(TruncateToInt64, GivesTheSmallestIntegerForWhatHasNoPlace) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  EXPECT_EQ(TruncateToInt64(std::nextafter(kTwoTo63, 0.0)), kMax - 1023);
  EXPECT_EQ(TruncateToInt64(kTwoTo63), kMin);
  EXPECT_EQ(TruncateToInt64(-kTwoTo63), kMin);
  EXPECT_EQ(TruncateToInt64(std::nextafter(-kTwoTo63, -1e300)), kMin);
  EXPECT_EQ(TruncateToInt64(HUGE_VAL), kMin);
  EXPECT_EQ(TruncateToInt64(std::nan("")), kMin);
}

}  // namespace
}  // namespace Cmm::internal
