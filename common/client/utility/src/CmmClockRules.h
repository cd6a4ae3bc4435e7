#pragma once

// The rules of the clocks that need nothing but their arguments. Times and ticks are in microseconds.

#include <cstdint>
#include <string_view>

#include "common/client/utility/src/CmmWrappingMath.h"

namespace Cmm::internal {

// Turns readings of a 32-bit millisecond counter into ticks that never go back, as long as no more than one
// turn of the counter (49.7 days) lies between two readings. The caller keeps threads apart.
class TickRollover {
 public:
  constexpr int64_t Extend(uint32_t reading) {
    if (reading < m_last) m_turns += kTurn;
    m_last = reading;
    return (reading + m_turns) * 1000;
  }

 private:
  static constexpr int64_t kTurn = 0x100000000;

  uint32_t m_last = 0;
  int64_t m_turns = 0;  // milliseconds
};

// How long the wall clock is interpolated before it is read again: a minute and a millisecond.
inline constexpr int64_t kAnchorLifetime = 60001000;

constexpr bool IsAnchorStale(int64_t anchorTicks, int64_t ticks) {
  return WrappingSubtract(ticks, anchorTicks) >= kAnchorLifetime;
}

// What the performance counter advances in a microsecond. Single precision is meant, here and below: peers
// compare readings that were rounded like this.
constexpr float CounterFactor(int64_t frequency) {
  return static_cast<float>(frequency) / 1000000.0f;
}

// A count of the performance counter in microseconds; `factor` is not 0.
constexpr int64_t CounterMicroseconds(int64_t count, float factor) {
  return TruncateToInt64(static_cast<float>(count) / factor);
}

// The processors on whose performance counter no clock is built.
constexpr bool IsCounterTrusted(std::string_view vendor, int family) {
  return !(vendor == "AuthenticAMD" && family == 15);
}

// How far the performance counter has run away from the ticks since `driftAtStart` was taken. Only the low 32
// bits count; the one value that has no absolute value in them is itself.
constexpr int32_t CounterDrift(int64_t counter, int64_t driftAtStart, int64_t ticks) {
  const uint32_t drift =
      static_cast<uint32_t>(counter) - static_cast<uint32_t>(driftAtStart) - static_cast<uint32_t>(ticks);
  return static_cast<int32_t>(static_cast<int32_t>(drift) < 0 ? 0u - drift : drift);
}

}  // namespace Cmm::internal
