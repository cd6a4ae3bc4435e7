// What Time asks of the system: the wall clock, the calendar and the resolution of timers.

#include <windows.h>
// behind windows.h
#include <mmsystem.h>

#include <atomic>
#include <bit>

#include "common/client/utility/src/CmmAnchoredClock.h"
#include "common/client/utility/src/CmmCheck.h"
#include "common/client/utility/src/CmmPlatformThread.h"
#include "common/client/utility/src/CmmTimeValue.h"

namespace Cmm {

namespace {

constexpr int64_t kFileTimeUnitsPerMicrosecond = 10;

constinit internal::AnchoredClock g_systemClock;
constinit internal::AnchoredClock g_serverClock;
constinit std::atomic<bool> g_isHighResolutionEnabled{false};

FILETIME FileTimeOf(int64_t us) {
  return std::bit_cast<FILETIME>(internal::WrappingMultiply(us, kFileTimeUnitsPerMicrosecond));
}

int64_t MicrosecondsOf(const FILETIME& fileTime) {
  return std::bit_cast<int64_t>(fileTime) / kFileTimeUnitsPerMicrosecond;
}

int64_t NowTicks() {
  return TimeTicks::Now().ToInternalValue();
}

// Sets the system clock by the system's wall clock, and returns its time.
int64_t ReadSystemClock() {
  const int64_t ticks = NowTicks();
  FILETIME fileTime;
  GetSystemTimeAsFileTime(&fileTime);
  const int64_t time = MicrosecondsOf(fileTime);
  g_systemClock.Set(ticks, time);
  return time;
}

bool ToSystemTime(const FILETIME& fileTime, bool isLocal, SYSTEMTIME* fields) {
  FILETIME shown = fileTime;
  if (isLocal && !FileTimeToLocalFileTime(&fileTime, &shown)) return false;
  return FileTimeToSystemTime(&shown, fields) != 0;
}

SYSTEMTIME SystemTimeOf(const Time::Exploded& exploded) {
  SYSTEMTIME fields;
  fields.wYear = static_cast<WORD>(exploded.year);
  fields.wMonth = static_cast<WORD>(exploded.month);
  fields.wDayOfWeek = static_cast<WORD>(exploded.day_of_week);
  fields.wDay = static_cast<WORD>(exploded.day_of_month);
  fields.wHour = static_cast<WORD>(exploded.hour);
  fields.wMinute = static_cast<WORD>(exploded.minute);
  fields.wSecond = static_cast<WORD>(exploded.second);
  fields.wMilliseconds = static_cast<WORD>(exploded.millisecond);
  return fields;
}

}  // namespace

Time Time::Now() {
  if (!g_systemClock.IsSet()) ReadSystemClock();
  int64_t ticks = NowTicks();
  while (g_systemClock.IsStaleAt(ticks)) {
    ReadSystemClock();
    ticks = NowTicks();
  }
  return Time(g_systemClock.TimeAt(ticks));
}

Time Time::NowFromSystemTime() {
  return Time(ReadSystemClock());
}

void Time::MM_InitWithServerTime(const Time& serverTime) {
  g_serverClock.Set(NowTicks(), serverTime.m_us);
}

Time Time::MM_Now() {
  return g_serverClock.IsSet() ? MM_Svr_Now() : Now();
}

// An anchor moved along this clock gives the same times, and 64-bit ticks have no end that it would have to
// be moved away from: it stays where the server has set it.
Time Time::MM_Svr_Now() {
  return g_serverClock.IsSet() ? Time(g_serverClock.TimeAt(NowTicks())) : Time();
}

Time Time::FromFileTime(FILETIME fileTime) {
  return Time(MicrosecondsOf(fileTime));
}

FILETIME Time::ToFileTime() const {
  return FileTimeOf(m_us);
}

Time Time::LocalMidnight() const {
  Exploded exploded;
  LocalExplode(&exploded);
  exploded.hour = 0;
  exploded.minute = 0;
  exploded.second = 0;
  exploded.millisecond = 0;
  return FromLocalExploded(exploded);
}

Time Time::FromUTCExploded(const Exploded& exploded) {
  return FromExploded(false, exploded);
}

Time Time::FromLocalExploded(const Exploded& exploded) {
  return FromExploded(true, exploded);
}

void Time::UTCExplode(Exploded* exploded) const {
  Explode(false, exploded);
}

void Time::LocalExplode(Exploded* exploded) const {
  Explode(true, exploded);
}

Time Time::FromExploded(bool isLocal, const Exploded& exploded) {
  const SYSTEMTIME fields = SystemTimeOf(exploded);
  FILETIME shown;
  if (!SystemTimeToFileTime(&fields, &shown)) return Time();
  FILETIME fileTime = shown;
  if (isLocal) LocalFileTimeToFileTime(&shown, &fileTime);  // a failure is let pass
  return Time(MicrosecondsOf(fileTime));
}

void Time::Explode(bool isLocal, Exploded* exploded) const {
  if (exploded == nullptr) return;
  SYSTEMTIME fields;
  if (!ToSystemTime(FileTimeOf(m_us), isLocal, &fields)) {
    *exploded = {};
    return;
  }
  exploded->year = fields.wYear;
  exploded->month = fields.wMonth;
  exploded->day_of_week = fields.wDayOfWeek;
  exploded->day_of_month = fields.wDay;
  exploded->hour = fields.wHour;
  exploded->minute = fields.wMinute;
  exploded->second = fields.wSecond;
  exploded->millisecond = fields.wMilliseconds;
}

void Time::EnableHighResolutionTimer(bool enable) {
  static const unsigned long firstThread = PlatformThread::CurrentId();
  CMM_CHECK(PlatformThread::CurrentId() == firstThread);
  g_isHighResolutionEnabled = enable;
}

bool Time::ActivateHighResolutionTimer(bool activate) {
  if (!g_isHighResolutionEnabled) return false;
  constexpr UINT kPeriodMs = 1;
  const MMRESULT result = activate ? timeBeginPeriod(kPeriodMs) : timeEndPeriod(kPeriodMs);
  return result == TIMERR_NOERROR;
}

}  // namespace Cmm
