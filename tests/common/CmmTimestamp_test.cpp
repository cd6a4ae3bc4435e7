#include "common/client/utility/src/CmmTimestamp.h"

#include <string>

#include "gtest/gtest.h"

namespace Cmm::internal {
namespace {

constexpr int64_t kNoon = 1625400000;  // 2021-07-04T12:00:00Z
constexpr int64_t kHour = 3600;
constexpr int64_t kMinute = 60;

struct Case {
  const char* text;
  int64_t seconds;
};

class Timestamp : public testing::TestWithParam<Case> {};

TEST_P(Timestamp, NamesAMoment) {
  EXPECT_EQ(ParseTimestamp(GetParam().text), GetParam().seconds) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(WithoutOffset, Timestamp,
                         testing::Values(Case{"2021-07-04T12:00:00", kNoon},
                                         Case{"2021-07-04T12:00:00Z", kNoon},
                                         Case{"2021-07-04T12:00:00z", kNoon},
                                         Case{"2021-07-04T12:34:56Z", kNoon + 34 * kMinute + 56},
                                         Case{"1970-01-01T00:00:00Z", 0},
                                         Case{"2020-02-29T00:00:00Z", 1582934400}));

INSTANTIATE_TEST_SUITE_P(WithOffset, Timestamp,
                         testing::Values(Case{"2021-07-04T12:00:00+02:00", kNoon - 2 * kHour},
                                         Case{"2021-07-04T12:00:00+0200", kNoon - 2 * kHour},
                                         Case{"2021-07-04T12:00:00-03:30", kNoon + 3 * kHour + 30 * kMinute},
                                         Case{"2021-07-04T12:00:00-0330", kNoon + 3 * kHour + 30 * kMinute},
                                         Case{"2021-07-04T12:00:00+02", kNoon - 2 * kHour},
                                         Case{"2021-07-04T12:00:00+2", kNoon - 2 * kHour},
                                         Case{"2021-07-04T12:00:00+00:45", kNoon - 45 * kMinute},
                                         Case{"2021-07-04T12:00:00+99:99", kNoon - 99 * kHour - 99 * kMinute},
                                         Case{"2021-07-04T12:00:00+02.30",
                                              kNoon - 2 * kHour - 30 * kMinute}));

// Three digits are hours and the first minute digit, five drop the last.
INSTANTIATE_TEST_SUITE_P(WithOffsetDigitsOfOtherNumber, Timestamp,
                         testing::Values(Case{"2021-07-04T12:00:00+023", kNoon - 2 * kHour - 3 * kMinute},
                                         Case{"2021-07-04T12:00:00+02305",
                                              kNoon - 2 * kHour - 30 * kMinute}));

// A point is no sign: neither the fraction nor what stands behind it counts.
INSTANTIATE_TEST_SUITE_P(WithFraction, Timestamp,
                         testing::Values(Case{"2021-07-04T12:00:00.999Z", kNoon},
                                         Case{"2021-07-04T12:00:00.5+02:00", kNoon},
                                         Case{"2021-07-04T12:00:00,123456-0700", kNoon}));

// There is no 31st of February, but a 31st day of months: the calendar goes on.
INSTANTIATE_TEST_SUITE_P(WithFieldsOutOfTheirRanges, Timestamp,
                         testing::Values(Case{"2021-02-31T00:00:00Z", 1614729600},  // the 3rd of March
                                         Case{"2021-07-04T36:00:00Z", kNoon + 24 * kHour},
                                         Case{"2021-07-04T11:59:60Z", kNoon},
                                         Case{"2021-07-04T12:99:99Z", kNoon + 99 * kMinute + 99}));

INSTANTIATE_TEST_SUITE_P(WithoutSuchADate, Timestamp,
                         testing::Values(Case{"2021-00-04T12:00:00Z", -1}, Case{"2021-13-04T12:00:00Z", -1},
                                         Case{"2021-07-00T12:00:00Z", -1}, Case{"2021-07-32T12:00:00Z", -1},
                                         Case{"1969-12-31T23:59:59Z", -1}, Case{"0000-00-00T00:00:00Z", -1},
                                         Case{"not a timestamp at all", -1}, Case{"2021/07/04 12:00:00", -1},
                                         Case{"3001-06-01T00:00:00Z", -1},  // the runtime's calendar ends
                                         Case{"", -1}));

// The offset is applied to the -1 of a date that does not exist.
INSTANTIATE_TEST_SUITE_P(WithOffsetButWithoutSuchADate, Timestamp,
                         testing::Values(Case{"2021-13-04T12:00:00+01:00", -1 - kHour},
                                         Case{"2021-13-04T12:00:00-01:00", -1 + kHour}));

// What the scan does not reach is 0.
INSTANTIATE_TEST_SUITE_P(ThatEndsEarly, Timestamp,
                         testing::Values(Case{"2021-07-04", kNoon - 12 * kHour},
                                         Case{"2021-07-04 12:00:00+02:00", kNoon - 12 * kHour},
                                         Case{"2021-07-04T12", kNoon}, Case{"2021-07-04T12:00:00+", kNoon},
                                         Case{"2021-07-04T12:00:00+x", kNoon},
                                         Case{"2021-07-04T12:00:00+02:", kNoon - 2 * kHour}));

// Numbers may be shorter than their fields, and have spaces and a sign before them.
INSTANTIATE_TEST_SUITE_P(WithFieldsOfOtherLengths, Timestamp,
                         testing::Values(Case{"2021-7-4T12:0:0Z", kNoon}, Case{"2021- 7- 4T12: 0: 0Z", kNoon},
                                         Case{"2021-07-04T12:-1:00Z", kNoon - kMinute}));

TEST(TimestampLength, IsThatOfADateAndATimeWithoutOffset) {
  EXPECT_EQ(kTimestampLength, std::string("2021-07-04T12:00:00").size());
}

}  // namespace
}  // namespace Cmm::internal
