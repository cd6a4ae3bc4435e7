#include "common/client/utility/src/CmmAtomic.h"

#include <algorithm>
#include <climits>
#include <numeric>
#include <vector>

#include "gtest/gtest.h"
#include "tests/common/CmmThreadTesting.h"

namespace Cmm {
namespace {

using namespace cmm_thread_testing;

TEST(CAtomicInt, IsZeroWithoutAnArgument) {
  const CAtomicInt value;
  EXPECT_EQ(value.Get(), 0);
}

TEST(CAtomicInt, StartsAtItsArgument) {
  const CAtomicInt value(-5);
  EXPECT_EQ(value.Get(), -5);
  EXPECT_EQ(static_cast<long>(value), -5);
}

TEST(CAtomicInt, IsReadyBeforeAnyCodeRuns) {
  static constinit CAtomicInt value = 5;
  EXPECT_EQ(value.Get(), 5);
}

TEST(CAtomicInt, OneStepAnswersTheNewValue) {
  CAtomicInt value(5);
  EXPECT_EQ(value.Inc(), 6);
  EXPECT_EQ(++value, 7);
  EXPECT_EQ(value.Dec(), 6);
  EXPECT_EQ(--value, 5);
  EXPECT_EQ(value.Get(), 5);
}

TEST(CAtomicInt, AddAndTheCompoundAssignmentsAnswerTheOldValue) {
  CAtomicInt value(6);
  EXPECT_EQ(value.Add(1), 6);
  EXPECT_EQ(value.Get(), 7);
  EXPECT_EQ(value += 3, 7);
  EXPECT_EQ(value.Get(), 10);
  EXPECT_EQ(value -= 4, 10);
  EXPECT_EQ(value.Get(), 6);
}

TEST(CAtomicInt, AssignmentAnswersTheNewValueAndSetTheOldOne) {
  CAtomicInt value(7);
  EXPECT_EQ(value = 9, 9);
  EXPECT_EQ(value.Set(0), 9);
  EXPECT_EQ(value.Get(), 0);
}

TEST(CAtomicInt, IncThenAddThenSetFromFive) {
  CAtomicInt value(5);
  EXPECT_EQ(value.Inc(), 6);
  EXPECT_EQ(value.Add(1), 6);
  EXPECT_EQ(value.Set(0), 7);
}

TEST(CAtomicInt, WrapsAround) {
  CAtomicInt value(LONG_MAX);
  EXPECT_EQ(value.Inc(), LONG_MIN);
  EXPECT_EQ(value.Dec(), LONG_MAX);
  EXPECT_EQ(value.Add(1), LONG_MAX);
  EXPECT_EQ(value.Get(), LONG_MIN);
  EXPECT_EQ(value -= 1, LONG_MIN);
  EXPECT_EQ(value.Get(), LONG_MAX);
}

constexpr int kThreads = 4;
constexpr int kRounds = 20000;

TEST(CAtomicIntUnderContention, NoTwoThreadsGetTheSameNewValue) {
  CAtomicInt value;
  std::vector<long> seen(kThreads * kRounds);
  RunTogether(kThreads, [&](int thread) {
    for (int i = 0; i < kRounds; ++i)
      seen[thread * kRounds + i] = i % 2 == 0 ? value.Inc() : ++value;
  });
  std::vector<long> expected(seen.size());
  std::iota(expected.begin(), expected.end(), 1);
  std::sort(seen.begin(), seen.end());
  EXPECT_EQ(seen, expected);
}

TEST(CAtomicIntUnderContention, NoTwoThreadsGetTheSameOldValue) {
  CAtomicInt value;
  std::vector<long> seen(kThreads * kRounds);
  RunTogether(kThreads, [&](int thread) {
    for (int i = 0; i < kRounds; ++i)
      seen[thread * kRounds + i] = i % 2 == 0 ? value.Add(3) : value += 3;
  });
  std::sort(seen.begin(), seen.end());
  for (size_t i = 0; i < seen.size(); ++i)
    ASSERT_EQ(seen[i], static_cast<long>(3 * i));
}

TEST(CAtomicIntUnderContention, StepsUpAndDownCancelOut) {
  CAtomicInt value(42);
  RunTogether(kThreads, [&](int thread) {
    for (int i = 0; i < kRounds; ++i) {
      if (thread % 2 == 0) {
        value.Inc();
        value += 7;
      } else {
        value.Dec();
        value -= 7;
      }
    }
  });
  EXPECT_EQ(value.Get(), 42);
}

TEST(CAtomicIntUnderContention, SetHandsEveryAdditionToExactlyOneCaller) {
  CAtomicInt value;
  CAtomicInt harvested;
  RunTogether(kThreads, [&](int thread) {
    for (int i = 0; i < kRounds; ++i) {
      if (thread == 0)
        harvested.Add(value.Set(0));
      else
        value.Add(1);
    }
  });
  EXPECT_EQ(harvested.Get() + value.Get(), (kThreads - 1) * kRounds);
}

}  // namespace
}  // namespace Cmm
