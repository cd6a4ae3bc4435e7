#include "common/client/utility/src/CmmHighResClock.h"

#include <windows.h>

#include "common/client/utility/src/CmmClockRules.h"
#include "common/client/utility/src/CmmTimeValue.h"

namespace Cmm::internal {

HighResClock::HighResClock(bool isCounterTrusted) {
  LARGE_INTEGER frequency;
  if (QueryPerformanceFrequency(&frequency)) m_factor = CounterFactor(frequency.QuadPart);
  const int64_t counter = Now();
  m_driftAtStart = counter - TimeTicks::Now().ToInternalValue();
  if (!isCounterTrusted) m_factor = 0.0f;
}

int64_t HighResClock::Now() const {
  if (!IsWorking()) return TimeTicks::Now().ToInternalValue();
  LARGE_INTEGER count;
  QueryPerformanceCounter(&count);
  return CounterMicroseconds(count.QuadPart, m_factor);
}

int32_t HighResClock::Drift() const {
  if (!IsWorking()) return 0;
  const int64_t counter = Now();
  return CounterDrift(counter, m_driftAtStart, TimeTicks::Now().ToInternalValue());
}

}  // namespace Cmm::internal
