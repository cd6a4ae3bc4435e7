#include "common/client/utility/src/CmmTimeValue.h"

#include <windows.h>

#include <bit>
#include <limits>
#include <thread>
#include <type_traits>

#include "gtest/gtest.h"

namespace Cmm {

void PrintTo(TimeDelta delta, std::ostream* out) {
  *out << delta.ToInternalValue() << " us";
}

void PrintTo(Time time, std::ostream* out) {
  *out << time.ToInternalValue() << " us since 1601";
}

namespace {

constexpr int64_t kMax = std::numeric_limits<int64_t>::max();
constexpr int64_t kMin = std::numeric_limits<int64_t>::min();
constexpr int64_t kUnixEpoch = 11644473600000000;  // in microseconds since 1601

TimeDelta Us(int64_t us) {
  return TimeDelta::FromMicroseconds(us);
}

Time At(int64_t us) {
  return Time::FromInternalValue(us);
}

// ---- TimeDelta ---------------------------------------------------------------------------------------

TEST(TimeDelta, IsNoTimeAtAllAtFirst) {
  EXPECT_EQ(TimeDelta().ToInternalValue(), 0);
}

TEST(TimeDelta, CountsInMicrosecondsWhateverUnitItIsMadeFrom) {
  EXPECT_EQ(TimeDelta::FromDays(2).ToInternalValue(), 172800000000);
  EXPECT_EQ(TimeDelta::FromHours(-3).ToInternalValue(), -10800000000);
  EXPECT_EQ(TimeDelta::FromMinutes(4).ToInternalValue(), 240000000);
  EXPECT_EQ(TimeDelta::FromSeconds(5).ToInternalValue(), 5000000);
  EXPECT_EQ(TimeDelta::FromMilliseconds(6).ToInternalValue(), 6000);
  EXPECT_EQ(TimeDelta::FromMicroseconds(kMin).ToInternalValue(), kMin);
}

TEST(TimeDelta, TellsTheWholeSpanInEachUnitTruncatedTowardsZero) {
  const TimeDelta delta = TimeDelta::FromDays(3) - Us(1);
  EXPECT_EQ(delta.InDays(), 2);
  EXPECT_EQ(delta.InHours(), 71);
  EXPECT_EQ(delta.InMinutes(), 4319);
  EXPECT_EQ(delta.InSeconds(), 259199);
  EXPECT_EQ(delta.InMilliseconds(), 259199999);
  EXPECT_EQ(delta.InMicroseconds(), 259199999999);
}

TEST(TimeDelta, ANegativeSpanIsTruncatedTowardsZeroToo) {
  const TimeDelta delta = -(TimeDelta::FromDays(3) - Us(1));
  EXPECT_EQ(delta.InDays(), -2);
  EXPECT_EQ(delta.InHours(), -71);
  EXPECT_EQ(delta.InMinutes(), -4319);
  EXPECT_EQ(delta.InSeconds(), -259199);
  EXPECT_EQ(delta.InMilliseconds(), -259199999);
}

TEST(TimeDelta, DaysHoursAndMinutesAreIntegersOf32Bits) {
  static_assert(std::is_same_v<decltype(TimeDelta().InDays()), int>);
  static_assert(std::is_same_v<decltype(TimeDelta().InHours()), int>);
  static_assert(std::is_same_v<decltype(TimeDelta().InMinutes()), int>);
  EXPECT_EQ(TimeDelta::FromMinutes(0x100000007).InMinutes(), 7);
}

TEST(TimeDelta, TellsSecondsAndMillisecondsWithTheirFraction) {
  EXPECT_EQ(Us(1500000).InSecondsF(), 1.5);
  EXPECT_EQ(Us(-250).InMillisecondsF(), -0.25);
}

TEST(TimeDelta, MillisecondsRoundedUpOf1MicrosecondIs1AndOf0Is0) {
  EXPECT_EQ(Us(1).InMillisecondsRoundedUp(), 1);
  EXPECT_EQ(Us(0).InMillisecondsRoundedUp(), 0);
  EXPECT_EQ(Us(1000).InMillisecondsRoundedUp(), 1);
  EXPECT_EQ(Us(1001).InMillisecondsRoundedUp(), 2);
}

TEST(TimeDelta, MillisecondsRoundedUpOfANegativeSpanGoTowardsZero) {
  EXPECT_EQ(Us(-1).InMillisecondsRoundedUp(), 0);
  EXPECT_EQ(Us(-1000).InMillisecondsRoundedUp(), 0);  // (-1000 + 999) / 1000
  EXPECT_EQ(Us(-1999).InMillisecondsRoundedUp(), -1);
}

TEST(TimeDelta, AddsAndSubtracts) {
  TimeDelta delta = Us(7);
  EXPECT_EQ(delta + Us(3), Us(10));
  EXPECT_EQ(delta - Us(9), Us(-2));
  EXPECT_EQ(-delta, Us(-7));
  EXPECT_EQ(delta += Us(1), Us(8));
  EXPECT_EQ(delta -= Us(10), Us(-2));
  EXPECT_EQ(delta, Us(-2));
}

TEST(TimeDelta, MultipliesAndDividesByANumber) {
  TimeDelta delta = Us(7);
  EXPECT_EQ(delta * 3, Us(21));
  EXPECT_EQ(delta / 2, Us(3));
  EXPECT_EQ(delta / -2, Us(-3));
  EXPECT_EQ(delta *= 5, Us(35));
  EXPECT_EQ(delta /= 4, Us(8));
  EXPECT_EQ(delta, Us(8));
}

TEST(TimeDelta, DividedByASpanGivesANumber) {
  static_assert(std::is_same_v<decltype(TimeDelta() / TimeDelta()), int64_t>);
  EXPECT_EQ(TimeDelta::FromSeconds(10) / TimeDelta::FromMilliseconds(300), 33);
}

TEST(TimeDelta, AddsItselfToAMomentAndToTicks) {
  EXPECT_EQ(Us(5) + At(100), At(105));
  EXPECT_EQ((Us(5) + TimeTicks()).ToInternalValue(), 5);
}

TEST(TimeDelta, Compares) {
  EXPECT_TRUE(Us(1) == Us(1) && Us(1) != Us(2) && Us(1) < Us(2) && Us(2) > Us(1));
  EXPECT_TRUE(Us(1) <= Us(1) && Us(1) >= Us(1) && Us(-1) <= Us(1) && Us(1) >= Us(-1));
  EXPECT_FALSE(Us(1) == Us(2) || Us(1) != Us(1) || Us(2) < Us(1) || Us(1) < Us(1) || Us(1) > Us(1));
  EXPECT_FALSE(Us(2) <= Us(1) || Us(1) >= Us(2));
}

TEST(TimeDelta, WrapsAroundAtTheEndOfItsRange) {
  EXPECT_EQ(Us(kMax) + Us(1), Us(kMin));
  EXPECT_EQ(Us(kMin) - Us(1), Us(kMax));
  EXPECT_EQ(-Us(kMin), Us(kMin));
  EXPECT_EQ(Us(kMin) / -1, Us(kMin));
  EXPECT_EQ(Us(kMin) / Us(-1), kMin);
  EXPECT_EQ(Us(kMin) * -1, Us(kMin));
  EXPECT_EQ(TimeDelta::FromDays(kMax).ToInternalValue(), -86400000000);
  EXPECT_EQ(Us(kMax).InMillisecondsRoundedUp(), -9223372036854774);
}

// ---- Time: counts --------------------------------------------------------------------------------------

TEST(Time, ItsConstantsAreThoseOfTheCalendar) {
  EXPECT_EQ(Time::kMillisecondsPerSecond, 1000);
  EXPECT_EQ(Time::kMicrosecondsPerMillisecond, 1000);
  EXPECT_EQ(Time::kMicrosecondsPerSecond, 1000000);
  EXPECT_EQ(Time::kMicrosecondsPerMinute, 60000000);
  EXPECT_EQ(Time::kMicrosecondsPerHour, 3600000000);
  EXPECT_EQ(Time::kMicrosecondsPerDay, 86400000000);
  EXPECT_EQ(Time::kMicrosecondsPerWeek, 604800000000);
  EXPECT_EQ(Time::kNanosecondsPerMicrosecond, 1000);
  EXPECT_EQ(Time::kNanosecondsPerSecond, 1000000000);
  EXPECT_EQ(Time::kMinLowResolutionThresholdMs, 16);
  static_assert(std::is_same_v<decltype(Time::kMinLowResolutionThresholdMs), const int32_t>);
  static_assert(std::is_same_v<decltype(Time::kMicrosecondsPerWeek), const int64_t>);
}

TEST(Time, IsNullAtFirst) {
  EXPECT_TRUE(Time().is_null());
  EXPECT_EQ(Time().ToInternalValue(), 0);
  EXPECT_FALSE(At(1).is_null());
  EXPECT_EQ(At(-5).ToInternalValue(), -5);
}

TEST(Time, UnixEpochIsNotNullWhileFromTimeTOf0Is) {
  EXPECT_FALSE(Time::UnixEpoch().is_null());
  EXPECT_EQ(Time::UnixEpoch().ToInternalValue(), kUnixEpoch);
  EXPECT_TRUE(Time::FromTimeT(0).is_null());
  EXPECT_TRUE(Time::FromTimeTInMS(0).is_null());
  EXPECT_TRUE(Time::FromDoubleT(0.0).is_null());
}

TEST(Time, TheNullTimeIs0InEveryCount) {
  EXPECT_EQ(Time().ToTimeT(), 0);
  EXPECT_EQ(Time().ToTimeTInMS(), 0);
  EXPECT_EQ(Time().ToDoubleT(), 0.0);
  EXPECT_EQ(Time::UnixEpoch().ToTimeT(), 0);
}

TEST(Time, ConvertsSecondsSince1970) {
  EXPECT_EQ(Time::FromTimeT(1).ToInternalValue(), kUnixEpoch + 1000000);
  EXPECT_EQ(Time::FromTimeT(-1).ToInternalValue(), kUnixEpoch - 1000000);
  EXPECT_EQ(Time::FromTimeT(1625400000).ToInternalValue(), 13269873600000000);
  EXPECT_EQ(At(kUnixEpoch + 1999999).ToTimeT(), 1);
  EXPECT_EQ(At(kUnixEpoch - 1999999).ToTimeT(), -1);  // towards 1970, not down
  EXPECT_TRUE(Time::FromTimeT(-11644473600).is_null());
}

TEST(Time, ConvertsMillisecondsSince1970) {
  EXPECT_EQ(Time::FromTimeTInMS(1).ToInternalValue(), kUnixEpoch + 1000);
  EXPECT_EQ(At(kUnixEpoch + 1999).ToTimeTInMS(), 1);
  EXPECT_EQ(At(kUnixEpoch - 1999).ToTimeTInMS(), -1);
}

TEST(Time, ConvertsSecondsInDoublePrecision) {
  EXPECT_EQ(Time::FromDoubleT(1.5).ToInternalValue(), kUnixEpoch + 1500000);
  EXPECT_EQ(Time::FromDoubleT(-11644473599.5).ToInternalValue(), 500000);
  EXPECT_EQ(Time::FromDoubleT(0.0000039).ToInternalValue(), kUnixEpoch + 4);  // a double has steps of 2 here
  EXPECT_EQ(At(kUnixEpoch + 1500000).ToDoubleT(), 1.5);
  EXPECT_EQ(At(kUnixEpoch - 250000).ToDoubleT(), -0.25);
}

TEST(Time, SecondsThatNoCountHoldsGiveTheSmallestCount) {
  EXPECT_EQ(Time::FromDoubleT(1e300).ToInternalValue(), kMin);
  EXPECT_EQ(Time::FromDoubleT(-1e300).ToInternalValue(), kMin);
  EXPECT_EQ(Time::FromDoubleT(std::numeric_limits<double>::quiet_NaN()).ToInternalValue(), kMin);
}

TEST(Time, CountsBeyond64BitsWrapAround) {
  EXPECT_EQ(Time::FromTimeT(kMax).ToInternalValue(), kUnixEpoch - 1000000);
  EXPECT_EQ(At(kMin).ToTimeT(), 9211727563254);  // what lies before the range counts from its other end
}

TEST(Time, ConvertsFileTimes) {
  const FILETIME fileTime = std::bit_cast<FILETIME>(int64_t{132698736000000019});
  EXPECT_EQ(Time::FromFileTime(fileTime).ToInternalValue(), 13269873600000001);
  EXPECT_EQ(std::bit_cast<int64_t>(At(13269873600000001).ToFileTime()), 132698736000000010);
}

TEST(Time, AddsSpansAndSubtractsMoments) {
  Time time = At(100);
  EXPECT_EQ(time + Us(5), At(105));
  EXPECT_EQ(time - Us(5), At(95));
  EXPECT_EQ(time - At(30), Us(70));
  EXPECT_EQ(time += Us(1), At(101));
  EXPECT_EQ(time -= Us(2), At(99));
  EXPECT_EQ(time, At(99));
}

TEST(Time, Compares) {
  EXPECT_TRUE(At(1) == At(1) && At(1) != At(2) && At(1) < At(2) && At(2) > At(1));
  EXPECT_TRUE(At(1) <= At(1) && At(1) >= At(1) && At(-1) <= At(1) && At(1) >= At(-1));
  EXPECT_FALSE(At(1) == At(2) || At(1) != At(1) || At(2) < At(1) || At(1) < At(1) || At(1) > At(1));
  EXPECT_FALSE(At(2) <= At(1) || At(1) >= At(2));
}

// ---- Time: the calendar --------------------------------------------------------------------------------

constexpr Time::Exploded kFields = {2021, 7, 0, 4, 12, 34, 56, 789};  // a Sunday
constexpr int64_t kFieldsInUtc = 13269875696789000;

void ExpectFields(const Time::Exploded& fields, const Time::Exploded& expected) {
  EXPECT_EQ(fields.year, expected.year);
  EXPECT_EQ(fields.month, expected.month);
  EXPECT_EQ(fields.day_of_week, expected.day_of_week);
  EXPECT_EQ(fields.day_of_month, expected.day_of_month);
  EXPECT_EQ(fields.hour, expected.hour);
  EXPECT_EQ(fields.minute, expected.minute);
  EXPECT_EQ(fields.second, expected.second);
  EXPECT_EQ(fields.millisecond, expected.millisecond);
}

// What FileTimeToLocalFileTime adds, which is the same at every time of the year.
TimeDelta LocalOffset() {
  const FILETIME utc = At(kFieldsInUtc).ToFileTime();
  FILETIME local;
  FileTimeToLocalFileTime(&utc, &local);
  return Time::FromFileTime(local) - At(kFieldsInUtc);
}

TEST(TimeCalendar, TheFieldsHaveTheOrderOfSystemtimeIn32BitsEach) {
  static_assert(sizeof(Time::Exploded) == 32);
  EXPECT_EQ(offsetof(Time::Exploded, year), 2 * offsetof(SYSTEMTIME, wYear));
  EXPECT_EQ(offsetof(Time::Exploded, month), 2 * offsetof(SYSTEMTIME, wMonth));
  EXPECT_EQ(offsetof(Time::Exploded, day_of_week), 2 * offsetof(SYSTEMTIME, wDayOfWeek));
  EXPECT_EQ(offsetof(Time::Exploded, day_of_month), 2 * offsetof(SYSTEMTIME, wDay));
  EXPECT_EQ(offsetof(Time::Exploded, hour), 2 * offsetof(SYSTEMTIME, wHour));
  EXPECT_EQ(offsetof(Time::Exploded, minute), 2 * offsetof(SYSTEMTIME, wMinute));
  EXPECT_EQ(offsetof(Time::Exploded, second), 2 * offsetof(SYSTEMTIME, wSecond));
  EXPECT_EQ(offsetof(Time::Exploded, millisecond), 2 * offsetof(SYSTEMTIME, wMilliseconds));
}

TEST(TimeCalendar, ExplodesInUtcAndDropsWhatIsLessThanAMillisecond) {
  Time::Exploded fields;
  At(kFieldsInUtc + 999).UTCExplode(&fields);
  ExpectFields(fields, kFields);
}

TEST(TimeCalendar, ExplodesInLocalTime) {
  Time::Exploded fields;
  (At(kFieldsInUtc) - LocalOffset()).LocalExplode(&fields);
  ExpectFields(fields, kFields);
}

TEST(TimeCalendar, TheNullTimeIsTheBeginningOf1601) {
  Time::Exploded fields;
  Time().UTCExplode(&fields);
  ExpectFields(fields, {1601, 1, 1, 1, 0, 0, 0, 0});
}

TEST(TimeCalendar, AMomentWithoutADateExplodesIntoZeros) {
  for (int64_t us : {int64_t{-1}, kMin / 20}) {
    Time::Exploded fields = kFields;
    At(us).UTCExplode(&fields);
    ExpectFields(fields, {});
    fields = kFields;
    (At(us) - TimeDelta::FromDays(2)).LocalExplode(&fields);
    ExpectFields(fields, {});
  }
}

TEST(TimeCalendar, ExplodingIntoANullPointerDoesNothing) {
  const Time time = At(kFieldsInUtc);
  SetLastError(4711);
  time.UTCExplode(nullptr);
  time.LocalExplode(nullptr);
  EXPECT_EQ(time, At(kFieldsInUtc));
  EXPECT_EQ(GetLastError(), 4711u);
}

TEST(TimeCalendar, TakesFieldsInUtcAndInLocalTime) {
  EXPECT_EQ(Time::FromUTCExploded(kFields), At(kFieldsInUtc));
  EXPECT_EQ(Time::FromLocalExploded(kFields), At(kFieldsInUtc) - LocalOffset());
}

TEST(TimeCalendar, TheDayOfTheWeekIsNotRead) {
  Time::Exploded fields = kFields;
  fields.day_of_week = 3;
  EXPECT_EQ(Time::FromUTCExploded(fields), At(kFieldsInUtc));
}

TEST(TimeCalendar, FieldsThatAreNoMomentGiveTheNullTime) {
  const Time::Exploded wrong[] = {
      {2021, 13, 0, 4, 12, 0, 0, 0}, {2021, 0, 0, 4, 12, 0, 0, 0},  {2021, 2, 0, 30, 12, 0, 0, 0},
      {2021, 7, 0, 4, 24, 0, 0, 0},  {2021, 7, 0, 4, 12, 60, 0, 0}, {2021, 7, 0, 4, 12, 0, 60, 0},
      {1600, 7, 0, 4, 12, 0, 0, 0},  {2021, 7, 0, -1, 12, 0, 0, 0}, {},
  };
  for (const Time::Exploded& fields : wrong) {
    EXPECT_TRUE(Time::FromUTCExploded(fields).is_null());
    EXPECT_TRUE(Time::FromLocalExploded(fields).is_null());
  }
}

TEST(TimeCalendar, LocalMidnightIsTheBeginningOfTheLocalDay) {
  const Time midnight = Time::FromLocalExploded({2021, 7, 0, 4, 0, 0, 0, 0});
  EXPECT_EQ(Time::FromLocalExploded(kFields).LocalMidnight(), midnight);
  EXPECT_EQ(midnight.LocalMidnight(), midnight);
  EXPECT_EQ((midnight - Us(1)).LocalMidnight(), midnight - TimeDelta::FromDays(1));
}

TEST(TimeCalendar, AMomentWithoutADateHasTheNullTimeForItsMidnight) {
  EXPECT_TRUE(At(kMin / 20).LocalMidnight().is_null());
}

// ---- Time: text ----------------------------------------------------------------------------------------

TEST(TimeText, FromStringAnswersTrueAndTouchesNothing) {
  Time time = At(5);
  EXPECT_TRUE(Time::FromString(L"2021-07-04T12:00:00Z", &time));
  EXPECT_EQ(time, At(5));
  EXPECT_TRUE(Time::FromString(nullptr, nullptr));
}

TEST(TimeText, FromStringTReadsATimestamp) {
  EXPECT_EQ(Time::FromStringT(L"2021-07-04T12:34:56Z"), At(kFieldsInUtc - 789000));
}

TEST(TimeText, FewerThan19UnitsAreTheNullTime) {
  EXPECT_TRUE(Time::FromStringT(L"").is_null());
  EXPECT_TRUE(Time::FromStringT(L"2021-07-04T12:00:0").is_null());
}

TEST(TimeText, TheSecondsOf1970AreTheNullTime) {
  EXPECT_TRUE(Time::FromStringT(L"1970-01-01T00:00:00Z").is_null());
  EXPECT_TRUE(Time::FromStringT(L"1970-01-01T02:00:00+02:00").is_null());
  EXPECT_EQ(Time::FromStringT(L"1970-01-01T00:00:01Z"), At(kUnixEpoch + 1000000));
}

TEST(TimeText, AnInvalidDateIsTheSecondBefore1970AndNotTheNullTime) {
  EXPECT_EQ(Time::FromStringT(L"2021-13-04T12:00:00Z"), At(kUnixEpoch - 1000000));
  EXPECT_EQ(Time::FromStringT(L"nineteen units here"), At(kUnixEpoch - 1000000));
}

TEST(TimeText, TextBehindANulIsNotRead) {
  const wchar_t text[] = L"2021-07-04T12:00:00\0+02:00";
  EXPECT_EQ(Time::FromStringT({text, std::size(text) - 1}), Time::FromStringT(L"2021-07-04T12:00:00"));
}

// ---- Time: timers --------------------------------------------------------------------------------------

TEST(TimeTimers, AreNotActivatedWithoutPermission) {
  Time::EnableHighResolutionTimer(false);
  EXPECT_FALSE(Time::ActivateHighResolutionTimer(true));
  EXPECT_FALSE(Time::ActivateHighResolutionTimer(false));
}

TEST(TimeTimers, AreActivatedAndEndedWithPermission) {
  Time::EnableHighResolutionTimer(true);
  EXPECT_TRUE(Time::ActivateHighResolutionTimer(true));
  EXPECT_TRUE(Time::ActivateHighResolutionTimer(false));
  Time::EnableHighResolutionTimer(false);
}

}  // namespace
}  // namespace Cmm
