#pragma once

// 64-bit arithmetic of times, defined for every argument: a result out of range wraps around.

#include <cstdint>
#include <limits>

namespace Cmm::internal {

constexpr int64_t WrappingAdd(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) + static_cast<uint64_t>(b));
}

constexpr int64_t WrappingSubtract(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) - static_cast<uint64_t>(b));
}

constexpr int64_t WrappingMultiply(int64_t a, int64_t b) {
  return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b));
}

// Truncates towards zero; `b` must not be 0. The one quotient that has no place wraps, too, where the
// processor would trap.
constexpr int64_t WrappingDivide(int64_t a, int64_t b) {
  return b == -1 ? WrappingSubtract(0, a) : a / b;
}

// Truncates towards zero. What has no place in 64 bits, and what is no number, gives the smallest integer, as
// the processor's own conversion does.
constexpr int64_t TruncateToInt64(double value) {
  constexpr double kLimit = 9223372036854775808.0;  // 2 to the 63
  return value >= -kLimit && value < kLimit ? static_cast<int64_t>(value)
                                            : std::numeric_limits<int64_t>::min();
}

}  // namespace Cmm::internal
