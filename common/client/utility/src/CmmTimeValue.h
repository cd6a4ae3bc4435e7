#pragma once

// Times in microseconds: a moment (Time), a span (TimeDelta) and a reading of a clock that never goes back
// (TimeTicks). Each is one 64-bit signed count; arithmetic that leaves its range wraps around.
// The older types in seconds are in CmmTime.h.

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

struct _FILETIME;
typedef struct _FILETIME FILETIME;

namespace Cmm {

class Time;
class TimeTicks;

// A span, negative ones included.
class CMM_EXPORT TimeDelta {
 public:
  CMM_EXPORT_INLINE constexpr TimeDelta() {}  // no time at all

  static TimeDelta FromDays(int64_t days);
  static TimeDelta FromHours(int64_t hours);
  static TimeDelta FromMinutes(int64_t minutes);
  static TimeDelta FromSeconds(int64_t seconds);
  static TimeDelta FromMilliseconds(int64_t ms);
  static TimeDelta FromMicroseconds(int64_t us);

  int64_t ToInternalValue() const;  // microseconds

  // The whole span in one unit, truncated towards zero. The first three have the low 32 bits of the result.
  int InDays() const;
  int InHours() const;
  int InMinutes() const;
  double InSecondsF() const;  // not truncated
  int64_t InSeconds() const;
  double InMillisecondsF() const;  // not truncated
  int64_t InMilliseconds() const;
  int64_t InMillisecondsRoundedUp() const;  // 1 for a microsecond
  int64_t InMicroseconds() const;

  TimeDelta operator+(TimeDelta other) const;
  TimeDelta operator-(TimeDelta other) const;
  TimeDelta operator-() const;
  TimeDelta& operator+=(TimeDelta other);
  TimeDelta& operator-=(TimeDelta other);

  // A divisor must not be 0. Quotients are truncated towards zero.
  TimeDelta operator*(int64_t factor) const;
  TimeDelta operator/(int64_t divisor) const;
  TimeDelta& operator*=(int64_t factor);
  TimeDelta& operator/=(int64_t divisor);
  int64_t operator/(TimeDelta divisor) const;

  Time operator+(Time moment) const;
  TimeTicks operator+(TimeTicks moment) const;

  bool operator==(TimeDelta other) const;
  bool operator!=(TimeDelta other) const;
  bool operator<(TimeDelta other) const;
  bool operator<=(TimeDelta other) const;
  bool operator>(TimeDelta other) const;
  bool operator>=(TimeDelta other) const;

 private:
  explicit constexpr TimeDelta(int64_t us) : m_us(us) {}

  int64_t m_us = 0;
};

// A moment, counted from 1601-01-01 UTC, where Windows file times begin. The count 0 is the null time, which
// stands for "no moment".
class CMM_EXPORT Time {
 public:
  static const int64_t kMillisecondsPerSecond = 1000;
  static const int64_t kMicrosecondsPerMillisecond = 1000;
  static const int64_t kMicrosecondsPerSecond = 1000000;
  static const int64_t kMicrosecondsPerMinute = 60000000;
  static const int64_t kMicrosecondsPerHour = 3600000000;
  static const int64_t kMicrosecondsPerDay = 86400000000;
  static const int64_t kMicrosecondsPerWeek = 604800000000;
  static const int64_t kNanosecondsPerMicrosecond = 1000;
  static const int64_t kNanosecondsPerSecond = 1000000000;
  static const int32_t kMinLowResolutionThresholdMs = 16;

  // A moment of the calendar, in the order of SYSTEMTIME.
  struct Exploded {
    int32_t year;
    int32_t month;        // 1 to 12
    int32_t day_of_week;  // 0 is Sunday
    int32_t day_of_month;
    int32_t hour;
    int32_t minute;
    int32_t second;
    int32_t millisecond;
  };

  CMM_EXPORT_INLINE constexpr Time() {}  // the null time

  static Time FromInternalValue(int64_t us);
  int64_t ToInternalValue() const;
  bool is_null() const;

  // ---- Clocks: any thread, without a lock of their own -----------------------------------------------

  // The system's wall clock. It is read once a minute at most; in between time runs by TimeTicks::Now, so
  // that a change of the system clock shows within a minute.
  static Time Now();
  static Time NowFromSystemTime();  // reads the system's wall clock afresh, for Now as well

  // A clock that the server has set, which runs by TimeTicks::Now and which no change of the system clock
  // touches. `serverTime` is the time now; the null time leaves the clock without one.
  static void MM_InitWithServerTime(const Time& serverTime);
  static Time MM_Now();      // the server's clock; Now() as long as the server has set none
  static Time MM_Svr_Now();  // the same, but the null time as long as the server has set none

  // ---- Other counts of a moment ----------------------------------------------------------------------

  // The null time and the count 0 stand for each other, so the Unix epoch itself is not what comes of 0.
  static Time FromTimeT(int64_t seconds);  // since 1970-01-01 UTC
  int64_t ToTimeT() const;                 // truncated towards 1970
  static Time FromTimeTInMS(int64_t ms);
  int64_t ToTimeTInMS() const;
  static Time FromDoubleT(double seconds);  // counts beyond 64 bits give the smallest count
  double ToDoubleT() const;

  static Time FromFileTime(FILETIME fileTime);  // units of 100 ns, truncated to microseconds
  FILETIME ToFileTime() const;

  static Time UnixEpoch();
  Time LocalMidnight() const;  // the beginning of the local day that this moment falls into

  // ---- The calendar ----------------------------------------------------------------------------------

  // The null time when the fields name no moment. The day of the week is not read.
  static Time FromUTCExploded(const Exploded& exploded);
  static Time FromLocalExploded(const Exploded& exploded);

  // All fields are 0 when the moment has no date (before 1601, after 30827). A null pointer does nothing.
  void UTCExplode(Exploded* exploded) const;
  void LocalExplode(Exploded* exploded) const;

  // ---- Text ------------------------------------------------------------------------------------------

  // Reads "2021-07-04T12:00:00" and what may follow at once: "+02:00", "+0200", "-03:30" or "Z"; without an
  // offset the text is in UTC. Fractions of a second are not read, and an offset behind one is not applied.
  // The null time for a text of fewer than 19 units. A longer text whose date does not exist (the month is
  // not 1 to 12, the day not 1 to 31, the year before 1970) gives the second before 1970 with the offset
  // applied.
  static Time FromStringT(const CStringT<wchar_t>& text);

  // Does nothing and answers true; it is kept for callers of old. Use FromStringT.
  static bool FromString(const wchar_t* text, Time* time);

  // ---- The resolution of the system's timers ---------------------------------------------------------

  // Permits ActivateHighResolutionTimer, or forbids it, and changes nothing else. It is for one thread: that
  // of the first call is noted, and a build with invariant checks reports a call from any other.
  static void EnableHighResolutionTimer(bool enable);
  // Begins or ends a period with timers of one millisecond, for the whole system. False when that is not
  // permitted or did not work. Each beginning that worked needs its end.
  static bool ActivateHighResolutionTimer(bool activate);

  // ---- Arithmetic ------------------------------------------------------------------------------------

  TimeDelta operator-(Time other) const;
  Time operator+(TimeDelta delta) const;
  Time operator-(TimeDelta delta) const;
  Time& operator+=(TimeDelta delta);
  Time& operator-=(TimeDelta delta);

  bool operator==(Time other) const;
  bool operator!=(Time other) const;
  bool operator<(Time other) const;
  bool operator<=(Time other) const;
  bool operator>(Time other) const;
  bool operator>=(Time other) const;

 private:
  // From 1601 to 1970.
  static constexpr int64_t kTimeTToMicrosecondsOffset = 11644473600000000;

  explicit constexpr Time(int64_t us) : m_us(us) {}

  static Time FromExploded(bool isLocal, const Exploded& exploded);
  void Explode(bool isLocal, Exploded* exploded) const;

  int64_t m_us = 0;
};

// A reading of a clock that never goes back and that nobody sets; its origin is arbitrary. The count 0 is
// null. All clocks may be read on any thread.
class CMM_EXPORT TimeTicks {
 public:
  CMM_EXPORT_INLINE constexpr TimeTicks() {}  // null

  // Milliseconds, under a lock of its own. It must be read once in 49.7 days to notice that the system's
  // 32-bit counter has begun anew.
  static TimeTicks Now();

  // The performance counter, through single precision: a count of N bits above 24 is rounded to steps of
  // 2^(N-24) counts. On machines without a counter that can be trusted this is Now().
  static TimeTicks HighResNow();
  static bool IsHighResClockWorking();
  // How far HighResNow has run away from Now since its first use, in microseconds: an absolute value in
  // 32-bit arithmetic. 0 where IsHighResClockWorking is false.
  static int64_t GetQPCDriftMicroseconds();

  int64_t ToInternalValue() const;  // microseconds
  bool is_null() const;

  TimeDelta operator-(TimeTicks other) const;
  TimeTicks operator+(TimeDelta delta) const;
  TimeTicks operator-(TimeDelta delta) const;
  TimeTicks& operator+=(TimeDelta delta);
  TimeTicks& operator-=(TimeDelta delta);

  bool operator==(TimeTicks other) const;
  bool operator!=(TimeTicks other) const;
  bool operator<(TimeTicks other) const;
  bool operator<=(TimeTicks other) const;
  bool operator>(TimeTicks other) const;
  bool operator>=(TimeTicks other) const;

 protected:
  using TickFunctionType = uint32_t (*)();  // milliseconds; called under the lock of Now

  // Puts `fn` in the place of the system's counter, and returns the function that was there. What Now has
  // counted stays: where the new function is behind the last reading, Now sees a counter begin anew.
  static TickFunctionType SetMockTickFunction(TickFunctionType fn);

 private:
  explicit constexpr TimeTicks(int64_t us) : m_us(us) {}

  int64_t m_us = 0;
};

}  // namespace Cmm
