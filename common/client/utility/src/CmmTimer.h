#pragma once

#include "common/client/utility/src/CmmDefine.h"

struct HWND__;

namespace Cmm {

// Timers for threads that run a message loop: a tick is a WM_TIMER without a window, which the loop of the
// thread that started the timer dispatches. A thread that dispatches no messages gets no ticks.

// What a timer does. It is not deleted through this class.
class CMM_EXPORT CTimerProc {
 public:
  // One tick, with the arguments of the system: no window, WM_TIMER, the timer's id, and the milliseconds
  // since the system began. It may start, kill and destroy timers, its own among them. When it dispatches
  // messages, the next tick may come in the midst of it.
  virtual void OnTimer(HWND__* hwnd, unsigned int message, unsigned long long timer_id,
                       unsigned long tick) = 0;

  CTimerProc();
  CTimerProc(const CTimerProc&);
  CTimerProc(CTimerProc&&) noexcept;
  CTimerProc& operator=(const CTimerProc&);
  CTimerProc& operator=(CTimerProc&&) noexcept;

 protected:
  ~CTimerProc();

  // Calls OnTimer and keeps its faults, hardware faults and exceptions of any kind, from the message loop:
  // the debugger is told, and the timer runs on. Where "vCrashReport64.dll" is loaded, its crExceptionFilter
  // sees the fault first and may let it pass on.
  void _OnTimer(HWND__* hwnd, unsigned int message, unsigned long long timer_id, unsigned long tick);

 private:
  void OnTimerException();
};

// One running timer, or none. All operations belong to the thread that started the timer; from another
// thread the timer is not killed, and its procedure goes on being called.
class CMM_EXPORT CTimerID {
 public:
  CTimerID();
  CTimerID(CTimerID&& other) noexcept;  // takes the timer over; it runs on
  CTimerID(const CTimerID&) = delete;
  CTimerID& operator=(const CTimerID&) = delete;
  ~CTimerID();  // kills the timer

  // Both kill the timer that runs, if any. The second form takes over a timer of the system's by its id:
  // its ticks do nothing unless the id was started by SetTimer.
  CTimerID& operator=(CTimerID&& other) noexcept;
  CTimerID& operator=(unsigned long long timer_id);

  // Kills the timer that runs, if any, and starts one that ticks every `elapse_ms` milliseconds until it is
  // killed. `proc` is borrowed; with null the ticks do nothing. Returns the timer's id, 0 when the system has
  // none left.
  unsigned long long SetTimer(unsigned int elapse_ms, CTimerProc* proc);

  // No tick comes any more, not even one that waits for its dispatch.
  void KillTimer();

  operator unsigned long long() const;  // the timer's id; 0 when none runs

 private:
  friend struct TimerTestAccess;

  static void AddTimerToList(unsigned long long id, CTimerProc* proc);
  static void RemoveTimerFromList(unsigned long long id);
  static void MyTimerProcCallback(HWND__* hwnd, unsigned int message, unsigned long long id,
                                  unsigned long tick);

  void MoveTimer(CTimerID& other);
  int TimerStrictCheck();  // 1

  unsigned long long timer_id_ = 0;
  unsigned int owner_thread_ = 0;  // the thread that started the timer
  int destroyed_ = 0;              // 1 at the end of the destructor
};

}  // namespace Cmm
