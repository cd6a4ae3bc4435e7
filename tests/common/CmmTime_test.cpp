#include "common/client/utility/src/CmmTime.h"

#include <windows.h>

#include <bit>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>

#include "gtest/gtest.h"

namespace Cmm {
namespace {

constexpr int64_t kNoon = 1625400000;  // Sunday 2021-07-04T12:00:00Z
constexpr int64_t kNoDate = -43201;    // has no fields, in no zone
constexpr int kUtc = 0;
constexpr int kLocal = 1;

// ---- CSeconds ------------------------------------------------------------------------------------------

TEST(CSeconds, AddUpFromDaysHoursMinutesAndSeconds) {
  EXPECT_EQ(CSeconds(1, 2, 3, 4).GetSeconds(), 93784);
  EXPECT_EQ(CSeconds(0, 25, -1, 0).GetSeconds(), 89940);
  EXPECT_EQ(CSeconds(2147483647, 0, 0, 0).GetSeconds(), 185542587100800);
}

TEST(CSeconds, TellTheWholeSpanInEachUnitTruncatedTowardsZero) {
  const CSeconds span(2, 23, 59, 59);
  EXPECT_EQ(span.GetDays(), 2);
  EXPECT_EQ(span.GetHours(), 71);
  EXPECT_EQ(span.GetMinutes(), 4319);
  EXPECT_EQ(span.GetSeconds(), 259199);
  const CSeconds negative(-259199);
  EXPECT_EQ(negative.GetDays(), -2);
  EXPECT_EQ(negative.GetHours(), -71);
  EXPECT_EQ(negative.GetMinutes(), -4319);
}

TEST(CSeconds, TellThePartInEachUnit) {
  const CSeconds span(2, 23, 58, 57);
  EXPECT_EQ(span.GetHourOfDay(), 23);
  EXPECT_EQ(span.GetMinuteOfHour(), 58);
  EXPECT_EQ(span.GetSecondOfMinute(), 57);
  const CSeconds negative(-2, -23, -58, -57);
  EXPECT_EQ(negative.GetHourOfDay(), -23);
  EXPECT_EQ(negative.GetMinuteOfHour(), -58);
  EXPECT_EQ(negative.GetSecondOfMinute(), -57);
}

TEST(CSeconds, AreAssignedACount) {
  CSeconds span(1);
  span = int64_t{0x100000000};
  EXPECT_EQ(span.GetSeconds(), 0x100000000);
}

TEST(CSeconds, AddAndSubtract) {
  CSeconds span(10);
  EXPECT_EQ((span + CSeconds(3)).GetSeconds(), 13);
  EXPECT_EQ((span - CSeconds(13)).GetSeconds(), -3);
  EXPECT_EQ((span += CSeconds(1)).GetSeconds(), 11);
  EXPECT_EQ((span -= CSeconds(2)).GetSeconds(), 9);
  EXPECT_EQ(span.GetSeconds(), 9);
  EXPECT_EQ((CSeconds(std::numeric_limits<int64_t>::max()) + CSeconds(1)).GetSeconds(),
            std::numeric_limits<int64_t>::min());
}

TEST(CSeconds, CompareWithIntegersForResults) {
  const CSeconds a(1), b(2);
  static_assert(std::is_same_v<decltype(a == b), int> && std::is_same_v<decltype(a >= b), int>);
  EXPECT_TRUE((a == a) == 1 && (a != b) == 1 && (a < b) == 1 && (b > a) == 1 && (a <= a) == 1 &&
              (a >= a) == 1 && (a <= b) == 1 && (b >= a) == 1);
  EXPECT_TRUE((a == b) == 0 && (a != a) == 0 && (b < a) == 0 && (a < a) == 0 && (a > a) == 0 &&
              (b <= a) == 0 && (a >= b) == 0);
}

// ---- CTime: values -------------------------------------------------------------------------------------

TEST(CTime, IsItsCountOfSeconds) {
  const CTime time(kNoon);
  EXPECT_EQ(time.GetTime(), kNoon);
  EXPECT_EQ(static_cast<int64_t>(time), kNoon);
  CTime other(time);
  other = int64_t{5};
  EXPECT_EQ(other.GetTime(), 5);
  other = time;
  EXPECT_EQ(other.GetTime(), kNoon);
}

TEST(CTime, Minus1AloneIsInvalid) {
  EXPECT_FALSE(CTime(-1).IsValid());
  EXPECT_TRUE(CTime(0).IsValid());
  EXPECT_TRUE(CTime(-2).IsValid());
}

TEST(CTime, GetTickCountIsNoTickCountButTheCurrentTime) {
  const int64_t before = time(nullptr);
  const int64_t ticks = CTime::GetTickCount();
  const int64_t now = CTime::GetCurrentGmtTime();
  EXPECT_GE(ticks, before);
  EXPECT_GE(now, ticks);
  EXPECT_LE(now, time(nullptr));
}

TEST(CTime, TheTwo16BitArgumentsAreAlwaysInvalid) {
  EXPECT_FALSE(CTime(0, 0, 1).IsValid());
  EXPECT_FALSE(CTime(static_cast<unsigned short>(0x52E4), static_cast<unsigned short>(0x6000), 0).IsValid());
}

// ---- CTime: from the calendar --------------------------------------------------------------------------

struct tm Fields(int year, int month, int day, int hour, int minute, int second) {
  struct tm fields = {};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = -1;
  return fields;
}

TEST(CTime, TakesFieldsInUtc) {
  struct tm fields = Fields(2021, 7, 4, 12, 0, 0);
  EXPECT_EQ(CTime(fields, kUtc).GetTime(), kNoon);
  EXPECT_EQ(CTime(2021, 7, 4, 12, 0, 0, -1, kUtc).GetTime(), kNoon);
}

TEST(CTime, TakesDaysOfUpTo31InEveryMonthAndMonthsOfUpTo12) {
  EXPECT_EQ(CTime(2021, 2, 31, 0, 0, 0, -1, kUtc).GetTime(), CTime(2021, 3, 3, 0, 0, 0, -1, kUtc).GetTime());
  EXPECT_EQ(CTime(1970, 1, 1, 0, 0, 0, -1, kUtc).GetTime(), 0);
  EXPECT_EQ(CTime(2021, 12, 31, 23, 59, 59, -1, kUtc).GetTime(), 1640995199);
}

TEST(CTime, FieldsOutOfTheirRangesAreInvalid) {
  for (int local : {kUtc, kLocal}) {
    EXPECT_FALSE(CTime(2021, 7, 0, 12, 0, 0, -1, local).IsValid());
    EXPECT_FALSE(CTime(2021, 7, 32, 12, 0, 0, -1, local).IsValid());
    EXPECT_FALSE(CTime(2021, 0, 4, 12, 0, 0, -1, local).IsValid());
    EXPECT_FALSE(CTime(2021, 13, 4, 12, 0, 0, -1, local).IsValid());
    EXPECT_FALSE(CTime(1969, 12, 31, 23, 59, 59, -1, local).IsValid());
    EXPECT_FALSE(CTime(std::numeric_limits<int>::max(), 1, 1, 0, 0, 0, -1, local).IsValid());
  }
}

TEST(CTime, TheTimeOfDayMayBeOutOfItsRanges) {
  EXPECT_EQ(CTime(2021, 7, 3, 35, 59, 60, -1, kUtc).GetTime(), kNoon);
}

TEST(CTime, TakesASystemtimeInUtcWithoutItsMilliseconds) {
  const SYSTEMTIME fields = {2021, 7, 0, 4, 12, 0, 0, 999};
  EXPECT_EQ(CTime(fields, kUtc, 0).GetTime(), kNoon);
}

TEST(CTime, ASystemtimeThatIsNoMomentIsInvalid) {
  EXPECT_FALSE(CTime(SYSTEMTIME{2021, 2, 0, 31, 12, 0, 0, 0}, kUtc, 0).IsValid());
  EXPECT_FALSE(CTime(SYSTEMTIME{2021, 13, 0, 1, 12, 0, 0, 0}, kLocal, 0).IsValid());
  EXPECT_FALSE(CTime(SYSTEMTIME{1969, 1, 0, 1, 12, 0, 0, 0}, kLocal, 0).IsValid());
}

// In UTC the fields pass through a file time, which has 32 bits here: they wrap where local fields end.
TEST(CTime, ASystemtimeInUtcBefore1970IsValidAndFarAhead) {
  EXPECT_EQ(CTime(SYSTEMTIME{1969, 12, 0, 31, 23, 59, 58, 0}, kUtc, 0).GetTime(), 0xFFFFFFFE);
}

FILETIME FileTime(int64_t value) {
  return std::bit_cast<FILETIME>(value);
}

TEST(CTime, TakesAFileTimeTruncatedToSeconds) {
  EXPECT_EQ(CTime(FileTime(132698736009999999)).GetTime(), kNoon);
  EXPECT_EQ(CTime(FileTime(116444736000000000)).GetTime(), 0);
}

TEST(CTime, OfAFileTimeTheLow32BitsRemainUnsigned) {
  EXPECT_EQ(CTime(FileTime(116444736000000000 + int64_t{0xFFFFFFFF} * 10000000)).GetTime(), 0xFFFFFFFF);
  EXPECT_EQ(CTime(FileTime(116444736000000000 + int64_t{0x100000005} * 10000000)).GetTime(), 5);
  EXPECT_EQ(CTime(FileTime(116444736000000000 - 10000000)).GetTime(), 0xFFFFFFFF);
  EXPECT_EQ(CTime(FileTime(116444736000000000 - 9999999)).GetTime(), 0);  // towards zero
  EXPECT_EQ(CTime(FileTime(0)).GetTime(), 1240428288);                    // -11644473600 in 32 bits
}

TEST(CTime, GivesAFileTimeOfItsLow32BitsSigned) {
  FILETIME fileTime;
  CTime(kNoon).GetAsFileTime(fileTime);
  EXPECT_EQ(std::bit_cast<int64_t>(fileTime), 132698736000000000);
  CTime(int64_t{0x80000000}).GetAsFileTime(fileTime);
  EXPECT_EQ(std::bit_cast<int64_t>(fileTime), (11644473600 - int64_t{0x80000000}) * 10000000);
  CTime(int64_t{0x100000005}).GetAsFileTime(fileTime);
  EXPECT_EQ(std::bit_cast<int64_t>(fileTime), (11644473600 + 5) * 10000000);
}

// ---- CTime: to the calendar ----------------------------------------------------------------------------

constexpr int kUntouched = 77;

TEST(CTime, GivesItsFieldsInUtc) {
  struct tm fields = {};
  CTime(kNoon).GetGmtTm(fields);
  EXPECT_EQ(fields.tm_year, 121);
  EXPECT_EQ(fields.tm_mon, 6);
  EXPECT_EQ(fields.tm_mday, 4);
  EXPECT_EQ(fields.tm_hour, 12);
  EXPECT_EQ(fields.tm_min, 0);
  EXPECT_EQ(fields.tm_sec, 0);
  EXPECT_EQ(fields.tm_wday, 0);
}

TEST(CTime, GivesASystemtimeOfWholeSecondsInUtc) {
  SYSTEMTIME fields;
  CTime(kNoon + 3661).GetAsSystemTime(fields);
  EXPECT_EQ(fields.wYear, 2021);
  EXPECT_EQ(fields.wMonth, 7);
  EXPECT_EQ(fields.wDayOfWeek, 0);
  EXPECT_EQ(fields.wDay, 4);
  EXPECT_EQ(fields.wHour, 13);
  EXPECT_EQ(fields.wMinute, 1);
  EXPECT_EQ(fields.wSecond, 1);
  EXPECT_EQ(fields.wMilliseconds, 0);
}

TEST(CTime, AMomentWithoutFieldsLeavesTheArgumentAlone) {
  for (int64_t seconds : {kNoDate, std::numeric_limits<int64_t>::max()}) {
    struct tm fields = {};
    fields.tm_year = kUntouched;
    CTime(seconds).GetGmtTm(fields);
    CTime(seconds).GetLocalTm(fields);
    EXPECT_FALSE(CTime(seconds).GetlocalTm2(fields));
    EXPECT_EQ(fields.tm_year, kUntouched);
    SYSTEMTIME systemTime = {};
    systemTime.wYear = kUntouched;
    CTime(seconds).GetAsSystemTime(systemTime);
    CTime(seconds).GetAsLocalTime(systemTime);
    EXPECT_EQ(systemTime.wYear, kUntouched);
  }
}

TEST(CTime, AMomentWithoutFieldsHas0InEach) {
  const CTime time(kNoDate);
  EXPECT_EQ(time.GetYear(), 0);
  EXPECT_EQ(time.GetMonth(), 0);
  EXPECT_EQ(time.GetDay(), 0);
  EXPECT_EQ(time.GetHour(), 0);
  EXPECT_EQ(time.GetMinute(), 0);
  EXPECT_EQ(time.GetSecond(), 0);
  EXPECT_EQ(time.GetDayOfWeek(), 0);
}

TEST(CTime, FormatsInUtc) {
  char text[40];
  EXPECT_EQ(CTime(kNoon).FormatGmt(text, sizeof text, "%Y-%m-%d %H:%M:%S"), 19u);
  EXPECT_STREQ(text, "2021-07-04 12:00:00");
  wchar_t wide[40];
  EXPECT_EQ(CTime(kNoon).FormatGmt(wide, std::size(wide), L"%Y-%m-%d %H:%M:%S"), 19u);
  EXPECT_STREQ(wide, L"2021-07-04 12:00:00");
}

TEST(CTime, FormatsNothingThatDoesNotFit) {
  char text[3];
  EXPECT_EQ(CTime(kNoon).FormatGmt(text, sizeof text, "%Y"), 0u);
}

TEST(CTime, FormatsNothingWithoutFields) {
  char text[40] = "before";
  wchar_t wide[40] = L"before";
  EXPECT_EQ(CTime(kNoDate).Format(text, sizeof text, "%Y"), 0u);
  EXPECT_EQ(CTime(kNoDate).FormatGmt(text, sizeof text, "%Y"), 0u);
  EXPECT_EQ(CTime(kNoDate).Format(wide, std::size(wide), L"%Y"), 0u);
  EXPECT_EQ(CTime(kNoDate).FormatGmt(wide, std::size(wide), L"%Y"), 0u);
  EXPECT_STREQ(text, "before");
  EXPECT_STREQ(wide, L"before");
}

// ---- CTime: local time ---------------------------------------------------------------------------------

// The C runtime's zone is New York's while a test runs, told to it by the environment.
class CTimeInNewYork : public testing::Test {
 protected:
  CTimeInNewYork() {
    if (const char* before = std::getenv("TZ")) m_before = before;
    _putenv("TZ=EST5EDT");
    CTime::ResetTimeZone();
  }
  ~CTimeInNewYork() override {
    _putenv(("TZ=" + m_before.value_or("")).c_str());
    CTime::ResetTimeZone();
  }

 private:
  std::optional<std::string> m_before;
};

constexpr int64_t kWinter = 1609502400 + 5 * 3600 + 62;  // 2021-01-01T12:01:02 in New York, a Friday

TEST_F(CTimeInNewYork, TellsLocalFields) {
  const CTime time(kWinter);
  EXPECT_EQ(time.GetYear(), 2021);
  EXPECT_EQ(time.GetMonth(), 1);
  EXPECT_EQ(time.GetDay(), 1);
  EXPECT_EQ(time.GetHour(), 12);
  EXPECT_EQ(time.GetMinute(), 1);
  EXPECT_EQ(time.GetSecond(), 2);
  EXPECT_EQ(time.GetDayOfWeek(), 6);
}

TEST_F(CTimeInNewYork, DaysOfTheWeekCountFrom1WhichIsSunday) {
  EXPECT_EQ(CTime(kNoon).GetDayOfWeek(), 1);
  EXPECT_EQ(CTime(kNoon + 6 * 86400).GetDayOfWeek(), 7);
}

TEST_F(CTimeInNewYork, ObservesSummerTime) {
  struct tm fields = {};
  CTime(kNoon).GetLocalTm(fields);
  EXPECT_EQ(fields.tm_hour, 8);
  EXPECT_EQ(fields.tm_isdst, 1);
  SYSTEMTIME systemTime;
  CTime(kNoon).GetAsLocalTime(systemTime);
  EXPECT_EQ(systemTime.wHour, 8);
  EXPECT_EQ(systemTime.wDayOfWeek, 0);
  EXPECT_EQ(systemTime.wMilliseconds, 0);
}

TEST_F(CTimeInNewYork, TakesLocalFieldsAndTheWordOnSummerTime) {
  struct tm fields = Fields(2021, 7, 4, 8, 0, 0);
  EXPECT_EQ(CTime(fields, kLocal).GetTime(), kNoon);
  EXPECT_EQ(CTime(2021, 7, 4, 8, 0, 0, -1, kLocal).GetTime(), kNoon);
  EXPECT_EQ(CTime(2021, 7, 4, 8, 0, 0, 1, kLocal).GetTime(), kNoon);
  EXPECT_EQ(CTime(2021, 7, 4, 8, 0, 0, 0, kLocal).GetTime(), kNoon + 3600);
  const SYSTEMTIME systemTime = {2021, 7, 0, 4, 8, 0, 0, 999};
  EXPECT_EQ(CTime(systemTime, kLocal, -1).GetTime(), kNoon);
  EXPECT_EQ(CTime(systemTime, kLocal, 0).GetTime(), kNoon + 3600);
}

// Where it is 1970 in UTC already.
TEST_F(CTimeInNewYork, TheLastHoursOf1969AreInvalidAllTheSame) {
  EXPECT_EQ(CTime(1970, 1, 1, 0, 0, 0, -1, kLocal).GetTime(), 5 * 3600);
  EXPECT_FALSE(CTime(1969, 12, 31, 20, 0, 0, -1, kLocal).IsValid());
}

TEST_F(CTimeInNewYork, TakesEveryNonZeroWordForLocal) {
  EXPECT_EQ(CTime(2021, 7, 4, 8, 0, 0, -1, 256).GetTime(), kNoon);
}

TEST_F(CTimeInNewYork, FieldsInUtcDoNotMindTheZone) {
  EXPECT_EQ(CTime(2021, 7, 4, 12, 0, 0, 1, kUtc).GetTime(), kNoon);
  EXPECT_EQ(CTime(SYSTEMTIME{2021, 7, 0, 4, 12, 0, 0, 0}, kUtc, 1).GetTime(), kNoon);
}

TEST_F(CTimeInNewYork, FormatsLocalTime) {
  char text[40];
  EXPECT_EQ(CTime(kNoon).Format(text, sizeof text, "%H:%M"), 5u);
  EXPECT_STREQ(text, "08:00");
  wchar_t wide[40];
  EXPECT_EQ(CTime(kNoon).Format(wide, std::size(wide), L"%H:%M"), 5u);
  EXPECT_STREQ(wide, L"08:00");
  EXPECT_EQ(CTime(kNoon).FormatGmt(text, sizeof text, "%H:%M"), 5u);
  EXPECT_STREQ(text, "12:00");
}

// The system's zone, and not the one in the environment of the C runtime, which this process alone has.
TEST_F(CTimeInNewYork, GetlocalTm2GoesByTheSystemsZone) {
  for (int64_t seconds : {kWinter, kNoon}) {
    const SYSTEMTIME utc = [seconds] {
      SYSTEMTIME fields;
      CTime(seconds).GetAsSystemTime(fields);
      return fields;
    }();
    SYSTEMTIME expected;
    ASSERT_TRUE(SystemTimeToTzSpecificLocalTime(nullptr, &utc, &expected));
    struct tm fields = {};
    ASSERT_TRUE(CTime(seconds).GetlocalTm2(fields));
    EXPECT_EQ(fields.tm_year + 1900, expected.wYear);
    EXPECT_EQ(fields.tm_mon + 1, expected.wMonth);
    EXPECT_EQ(fields.tm_mday, expected.wDay);
    EXPECT_EQ(fields.tm_hour, expected.wHour);
    EXPECT_EQ(fields.tm_min, expected.wMinute);
    EXPECT_EQ(fields.tm_sec, expected.wSecond);
    EXPECT_EQ(fields.tm_wday, expected.wDayOfWeek);
    EXPECT_EQ(fields.tm_isdst, -1);
  }
}

TEST(CTime, GetlocalTm2CountsTheDaysOfTheYear) {
  const CTime days[] = {CTime(2020, 1, 1, 12, 0, 0, -1, kUtc),   CTime(2020, 3, 5, 12, 0, 0, -1, kUtc),
                        CTime(2020, 12, 31, 12, 0, 0, -1, kUtc), CTime(2021, 3, 5, 12, 0, 0, -1, kUtc),
                        CTime(2100, 3, 5, 12, 0, 0, -1, kUtc),   CTime(2000, 3, 5, 12, 0, 0, -1, kUtc)};
  for (const CTime& day : days) {
    struct tm fields = {};
    ASSERT_TRUE(day.GetlocalTm2(fields));
    // The same fields in UTC: the runtime's own count of days is what is expected.
    struct tm counted = fields;
    ASSERT_NE(_mkgmtime(&counted), -1);
    EXPECT_EQ(fields.tm_yday, counted.tm_yday) << day.GetTime();
  }
}

// ---- CClock --------------------------------------------------------------------------------------------

TEST(CClock, ReadsTheClockOfTheProcess) {
  const long before = clock();
  const CClock watch;
  EXPECT_GE(static_cast<long>(watch), before);
  EXPECT_LE(static_cast<long>(watch), clock());
}

TEST(CClock, TellsTheMillisecondsSinceItBegan) {
  CClock watch;
  const long start = watch;
  EXPECT_LE(watch.Elapse(), clock() - start);
  Sleep(30);
  EXPECT_GE(watch.Elapse(), 25);
  EXPECT_EQ(static_cast<long>(watch), start);  // goes on
}

TEST(CClock, StepUpBeginsAnewWhereItEnded) {
  CClock watch;
  const long start = watch;
  Sleep(30);
  const long step = watch.StepUp();
  EXPECT_GE(step, 25);
  EXPECT_EQ(static_cast<long>(watch), start + step);
}

TEST(CClock, ResetBeginsAnew) {
  CClock watch;
  Sleep(30);
  const long before = clock();
  watch.Reset();
  EXPECT_GE(static_cast<long>(watch), before);
}

}  // namespace
}  // namespace Cmm
