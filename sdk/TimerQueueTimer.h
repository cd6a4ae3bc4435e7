#pragma once

// A periodic timer of the system's default timer queue, whose ticks may go on while their receiver ends.

#include <cstdint>
#include <functional>

namespace Velm3rdSDK {

// One thread at a time may use it.
class TimerQueueTimer {
 public:
  TimerQueueTimer() = default;
  TimerQueueTimer(const TimerQueueTimer&) = delete;
  TimerQueueTimer& operator=(const TimerQueueTimer&) = delete;
  ~TimerQueueTimer();  // as Stop and AwaitLastTick

  // Calls `tick` on the timer queue's thread after `periodMs` milliseconds and every `periodMs` milliseconds
  // from then on; a timer that runs is stopped first. False when no timer can be had.
  bool Start(uint32_t periodMs, std::function<void()> tick);
  // No tick begins after this. One that runs is not waited for: `tick` lives until it has returned.
  void Stop();
  // Waits for the ticks that run on after Stop, of all timers, to leave the library's code, a second at most:
  // whoever stops a timer may unload the library next. Returns at once within a tick, of whichever timer,
  // because ticks run one after the other.
  static void AwaitLastTick();

  bool IsRunning() const { return m_timer != nullptr; }

 private:
  void* m_timer = nullptr;
  uintptr_t m_id = 0;
};

}  // namespace Velm3rdSDK
