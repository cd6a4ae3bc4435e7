#pragma once

#include <cstdint>

namespace Cmm::internal {

// The clock on the performance counter, in microseconds; any thread. Where there is no counter, or none that
// is trusted, TimeTicks::Now stands in.
class HighResClock {
 public:
  explicit HighResClock(bool isCounterTrusted);

  int64_t Now() const;
  bool IsWorking() const { return m_factor != 0.0f; }  // is on the performance counter
  // How far the counter has run away from TimeTicks::Now since construction; 0 where it is not used.
  int32_t Drift() const;

 private:
  float m_factor = 0.0f;       // counts in a microsecond, 0: there are none
  int64_t m_driftAtStart = 0;  // the counter less the ticks
};

}  // namespace Cmm::internal
