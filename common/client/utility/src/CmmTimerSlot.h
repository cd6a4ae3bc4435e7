#pragma once

#include <map>

namespace Cmm {

class CTimerProc;

namespace internal {

// The procedures of a thread's running timers, by timer id.
using TimerProcMap = std::map<unsigned long long, CTimerProc*>;

// The thread-local slot that leads to them. The process has one, from the load of the library to its unload.
class TimerSlot {
 public:
  TimerSlot();
  TimerSlot(const TimerSlot&) = delete;
  TimerSlot& operator=(const TimerSlot&) = delete;
  ~TimerSlot();

  static TimerSlot& OfThisProcess();

  // The calling thread's timers; null until it made its first.
  TimerProcMap* Find();
  // The same, made if need be. It stays when the thread ends.
  TimerProcMap& FindOrMake();

 private:
  unsigned long m_slot = 0;
};

}  // namespace internal
}  // namespace Cmm
