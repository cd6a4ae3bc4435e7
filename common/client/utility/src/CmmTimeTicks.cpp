// The clocks of TimeTicks.

#include <windows.h>
// behind windows.h
#include <mmsystem.h>

#include <atomic>

#include "common/client/utility/src/CmmClockRules.h"
#include "common/client/utility/src/CmmCpu.h"
#include "common/client/utility/src/CmmHighResClock.h"
#include "common/client/utility/src/CmmLock.h"
#include "common/client/utility/src/CmmTimeValue.h"

namespace Cmm {

namespace {

uint32_t SystemTicks() {
  return timeGetTime();
}

constinit std::atomic<uint32_t (*)()> g_tickFunction{SystemTicks};
constinit internal::TickRollover g_rollover;  // guarded by RolloverLock

// Never destroyed: what ends last in a process still asks for the time.
CCritical& RolloverLock() {
  static CCritical* const lock = new CCritical;
  return *lock;
}

const internal::HighResClock& TheHighResClock() {
  static const internal::HighResClock clock([] {
    const CPU cpu;
    return internal::IsCounterTrusted(cpu.vendor_name(), cpu.family());
  }());
  return clock;
}

}  // namespace

TimeTicks TimeTicks::Now() {
  CAutoLock<CCritical> scope(RolloverLock());
  return TimeTicks(g_rollover.Extend(g_tickFunction.load()()));
}

TimeTicks TimeTicks::HighResNow() {
  return TimeTicks(TheHighResClock().Now());
}

bool TimeTicks::IsHighResClockWorking() {
  return TheHighResClock().IsWorking();
}

int64_t TimeTicks::GetQPCDriftMicroseconds() {
  return TheHighResClock().Drift();
}

TimeTicks::TickFunctionType TimeTicks::SetMockTickFunction(TickFunctionType fn) {
  return g_tickFunction.exchange(fn);
}

}  // namespace Cmm
