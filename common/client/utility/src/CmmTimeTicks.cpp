// The clocks of TimeTicks.

#include <windows.h>
// behind windows.h
#include <mmsystem.h>

#include <atomic>

#include "common/client/utility/src/CmmClockRules.h"
#include "common/client/utility/src/CmmCpu.h"
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

struct HighResClock {
  float factor = 0.0f;       // 0: there is no counter, or none that is trusted
  int64_t driftAtStart = 0;  // the counter less the ticks, microseconds
};

int64_t ReadMicroseconds(float factor) {
  if (factor == 0.0f) return TimeTicks::Now().ToInternalValue();
  LARGE_INTEGER count;
  QueryPerformanceCounter(&count);
  return internal::CounterMicroseconds(count.QuadPart, factor);
}

HighResClock StartHighResClock() {
  HighResClock clock;
  LARGE_INTEGER frequency;
  if (QueryPerformanceFrequency(&frequency)) clock.factor = internal::CounterFactor(frequency.QuadPart);
  const int64_t counter = ReadMicroseconds(clock.factor);
  clock.driftAtStart = counter - TimeTicks::Now().ToInternalValue();
  const CPU cpu;
  if (!internal::IsCounterTrusted(cpu.vendor_name(), cpu.family())) clock.factor = 0.0f;
  return clock;
}

const HighResClock& TheHighResClock() {
  static const HighResClock clock = StartHighResClock();
  return clock;
}

}  // namespace

TimeTicks TimeTicks::Now() {
  CAutoLock<CCritical> scope(RolloverLock());
  return TimeTicks(g_rollover.Extend(g_tickFunction.load()()));
}

TimeTicks TimeTicks::HighResNow() {
  return TimeTicks(ReadMicroseconds(TheHighResClock().factor));
}

bool TimeTicks::IsHighResClockWorking() {
  return TheHighResClock().factor != 0.0f;
}

int64_t TimeTicks::GetQPCDriftMicroseconds() {
  if (!IsHighResClockWorking()) return 0;
  const HighResClock& clock = TheHighResClock();
  const int64_t counter = ReadMicroseconds(clock.factor);
  return internal::CounterDrift(counter, clock.driftAtStart, Now().ToInternalValue());
}

TimeTicks::TickFunctionType TimeTicks::SetMockTickFunction(TickFunctionType fn) {
  return g_tickFunction.exchange(fn);
}

}  // namespace Cmm
