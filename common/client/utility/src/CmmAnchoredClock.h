#pragma once

#include <atomic>
#include <cstdint>
#include <limits>

#include "common/client/utility/src/CmmClockRules.h"

namespace Cmm::internal {

// A wall clock that runs on ticks: it is told what time it was at one tick reading, the anchor, and knows the
// time at any other. All values are in microseconds. Any number of threads, without a lock: the anchor is
// kept as the distance from ticks to time, one variable, so that no reader mixes two anchors.
class AnchoredClock {
 public:
  constexpr AnchoredClock() = default;

  // A `time` of 0, the null time, leaves the clock not set.
  void Set(int64_t ticks, int64_t time) {
    m_ticks.store(ticks, std::memory_order_relaxed);
    m_distance.store(time == 0 ? kNotSet : WrappingSubtract(time, ticks), std::memory_order_release);
  }

  bool IsSet() const { return m_distance.load(std::memory_order_acquire) != kNotSet; }

  // Whether the anchor is so old at `ticks` that what it was read from should be read again.
  bool IsStaleAt(int64_t ticks) const {
    return IsAnchorStale(m_ticks.load(std::memory_order_relaxed), ticks);
  }

  // The clock must be set.
  int64_t TimeAt(int64_t ticks) const {
    return WrappingAdd(ticks, m_distance.load(std::memory_order_relaxed));
  }

 private:
  static constexpr int64_t kNotSet = std::numeric_limits<int64_t>::min();

  std::atomic<int64_t> m_ticks{0};
  std::atomic<int64_t> m_distance{kNotSet};
};

static_assert(std::atomic<int64_t>::is_always_lock_free);

}  // namespace Cmm::internal
