#pragma once

#include <atomic>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// A signed 32-bit integer that any number of threads change at once; it wraps around. Changes are
// sequentially consistent. Mind the results: a step up or down answers the new value, as the assignment
// does, but Set, Add, += and -= answer the old one. Callers rely on it.
class CMM_EXPORT CAtomicInt {
 public:
  constexpr CAtomicInt(long value = 0)
      : m_value(value) {}  // one of static lifetime is ready before any code runs
  CAtomicInt(const CAtomicInt&) = delete;
  CAtomicInt& operator=(const CAtomicInt&) = delete;

  operator long() const;
  long Get() const;

  // These answer the new value.
  long operator=(long value);
  long operator++();
  long Inc();
  long operator--();
  long Dec();

  // These answer the old value.
  long Set(long value);
  long operator+=(long n);
  long Add(long n);
  long operator-=(long n);

 private:
  std::atomic<long> m_value;
};

static_assert(sizeof(CAtomicInt) == 4 && std::atomic<long>::is_always_lock_free);

}  // namespace Cmm
