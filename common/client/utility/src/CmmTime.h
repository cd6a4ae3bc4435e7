#pragma once

// Times in seconds and milliseconds, the older kind: a moment (CTime), a span (CSeconds) and a stopwatch
// (CClock). The newer kind, in microseconds, is in CmmTimeValue.h.

#include <cstddef>
#include <cstdint>
#include <ctime>

#include "common/client/utility/src/CmmDefine.h"

struct _FILETIME;
typedef struct _FILETIME FILETIME;
struct _SYSTEMTIME;
typedef struct _SYSTEMTIME SYSTEMTIME;

namespace Cmm {

// A span in whole seconds, negative ones included.
class CMM_EXPORT CSeconds {
 public:
  CSeconds(int64_t seconds);
  CSeconds(int days, int hours, int minutes, int seconds);
  CSeconds(const CSeconds& other);
  CSeconds& operator=(const CSeconds& other);
  CSeconds& operator=(int64_t seconds);

  // The whole span in one unit, truncated towards zero.
  int64_t GetDays() const;
  int64_t GetHours() const;
  int64_t GetMinutes() const;
  int64_t GetSeconds() const;

  // What is left of the span in one unit above whole units of the next; not positive in a negative span.
  int GetHourOfDay() const;
  int GetMinuteOfHour() const;
  int GetSecondOfMinute() const;

  // Results out of range wrap around.
  CSeconds operator+(const CSeconds& other) const;
  CSeconds operator-(const CSeconds& other) const;
  CSeconds& operator+=(const CSeconds& other);
  CSeconds& operator-=(const CSeconds& other);

  // 1 or 0.
  int operator==(const CSeconds& other) const;
  int operator!=(const CSeconds& other) const;
  int operator<(const CSeconds& other) const;
  int operator<=(const CSeconds& other) const;
  int operator>(const CSeconds& other) const;
  int operator>=(const CSeconds& other) const;

 private:
  int64_t m_seconds;
};

// A moment in whole seconds since 1970-01-01 UTC; -1 is the invalid value, which what names no moment gives.
// Local time is that of the C runtime, by the rules that ResetTimeZone reads.
class CMM_EXPORT CTime {
 public:
  // Now, in seconds since 1970. Both are the same: the first is no count of ticks, whatever its name says.
  static int64_t GetTickCount();
  static int64_t GetCurrentGmtTime();

  // Makes the C runtime read its time zone again, under the runtime's own lock.
  static void ResetTimeZone();

  CTime(int64_t seconds);
  CTime(const CTime& other);
  CTime& operator=(const CTime& other);
  CTime& operator=(int64_t seconds);

  // A non-zero `local` takes the fields as local time, 0 as UTC. The runtime puts `fields` into their ranges.
  CTime(struct tm& fields, int local);
  // The same with `month` and `day` from 1, and `dst` as tm_isdst: positive in summer time, 0 not, negative
  // unknown. Invalid before 1970 and when there is no such month, or no day of that number in any month;
  // other fields may be out of their ranges.
  CTime(int year, int month, int day, int hour, int minute, int second, int dst, int local);
  // As the constructor above for a non-zero `local`. Else the fields are in UTC, `dst` is not read, and
  // fields that are no moment are invalid.
  CTime(const SYSTEMTIME& fields, int local, int dst);
  // Truncated to seconds, and then to the low 32 bits, unsigned: right from 1970 to 2106.
  CTime(const FILETIME& fileTime);
  // Always invalid: dates in this old form are not read any more.
  CTime(unsigned short dosDate, unsigned short dosTime, int dst);

  bool IsValid() const;
  int64_t GetTime() const;
  operator int64_t() const;

  // These leave the argument alone when the moment has no such form.
  void GetGmtTm(struct tm& fields) const;
  void GetLocalTm(struct tm& fields) const;
  void GetAsSystemTime(SYSTEMTIME& fields) const;  // UTC; whole seconds
  void GetAsLocalTime(SYSTEMTIME& fields) const;

  // Local time by the zone that is active in the system now, also where the C runtime knows another. It is
  // not known whether that is summer time: tm_isdst is -1. False and nothing written when the system fails.
  bool GetlocalTm2(struct tm& fields) const;

  // Of the low 32 bits of the value, signed: right from 1901 to 2038.
  void GetAsFileTime(FILETIME& fileTime) const;

  // Local time; 0 when the moment has none.
  int GetYear() const;
  int GetMonth() const;  // 1 to 12
  int GetDay() const;
  int GetHour() const;
  int GetMinute() const;
  int GetSecond() const;
  int GetDayOfWeek() const;  // 1 is Sunday, 7 Saturday

  // strftime or wcsftime with `format` into `buffer` of `size` units. The units written, not counting the
  // NUL; 0 when they do not fit, and when the moment has no such form.
  size_t Format(char* buffer, size_t size, const char* format) const;
  size_t Format(wchar_t* buffer, size_t size, const wchar_t* format) const;
  size_t FormatGmt(char* buffer, size_t size, const char* format) const;
  size_t FormatGmt(wchar_t* buffer, size_t size, const wchar_t* format) const;

 private:
  int64_t m_seconds;
};

// A stopwatch in milliseconds, by the C runtime's clock() since the start of the process. It wraps around
// every 49.7 days, spans do not suffer by it.
class CMM_EXPORT CClock {
 public:
  CClock();  // begins now

  void Reset();           // begins anew
  operator long() const;  // the reading at which it began
  long Elapse() const;    // since it began
  long StepUp();          // the same, and begins anew

 private:
  long m_start;
};

static_assert(sizeof(CSeconds) == 8 && sizeof(CTime) == 8 && sizeof(CClock) == 4);

}  // namespace Cmm
