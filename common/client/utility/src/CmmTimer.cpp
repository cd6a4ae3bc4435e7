#include "common/client/utility/src/CmmTimer.h"

#include <windows.h>

#include <utility>

#include "common/client/utility/src/CmmFaultGuard.h"
#include "common/client/utility/src/CmmTimerSlot.h"

namespace Cmm {
namespace {

using internal::TimerProcMap;
using internal::TimerSlot;

// The verdict of the crash reporter, if it is there; else the fault is caught.
int AskCrashReporter(unsigned int code, EXCEPTION_POINTERS* exception) {
  const HMODULE reporter = GetModuleHandleW(L"vCrashReport64.dll");
  if (!reporter) return internal::FAULT_CATCH;
  const auto filter = reinterpret_cast<internal::FaultFilter>(
      reinterpret_cast<void*>(GetProcAddress(reporter, "crExceptionFilter")));
  return filter ? filter(code, exception) : internal::FAULT_CATCH;
}

struct Tick {
  CTimerProc* proc;
  HWND hwnd;
  unsigned int message;
  unsigned long long timerId;
  unsigned long time;
};

void Deliver(void* argument) {
  const Tick& tick = *static_cast<Tick*>(argument);
  tick.proc->OnTimer(tick.hwnd, tick.message, tick.timerId, tick.time);
}

// The way to the protected member for the callback of the timers.
struct GuardedTick final : CTimerProc {
  using CTimerProc::_OnTimer;
};

}  // namespace

CTimerProc::CTimerProc() = default;
CTimerProc::CTimerProc(const CTimerProc&) = default;
CTimerProc::CTimerProc(CTimerProc&&) noexcept = default;
CTimerProc& CTimerProc::operator=(const CTimerProc&) = default;
CTimerProc& CTimerProc::operator=(CTimerProc&&) noexcept = default;
CTimerProc::~CTimerProc() = default;

void CTimerProc::_OnTimer(HWND hwnd, unsigned int message, unsigned long long timer_id, unsigned long tick) {
  Tick delivered{this, hwnd, message, timer_id, tick};
  if (!internal::RunGuarded(Deliver, &delivered, AskCrashReporter)) OnTimerException();
}

void CTimerProc::OnTimerException() {
  OutputDebugStringW(L"VELM:Exception happened in CTimerProc::_OnTimer.\n");
}

CTimerID::CTimerID() = default;

CTimerID::CTimerID(CTimerID&& other) noexcept {
  MoveTimer(other);
}

CTimerID::~CTimerID() {
  KillTimer();
  // Seen by whoever looks at a timer that is no more; the compiler must not leave it out.
  *static_cast<volatile int*>(&destroyed_) = 1;
}

CTimerID& CTimerID::operator=(CTimerID&& other) noexcept {
  if (this == &other) return *this;
  KillTimer();
  MoveTimer(other);
  return *this;
}

CTimerID& CTimerID::operator=(unsigned long long timer_id) {
  KillTimer();
  timer_id_ = timer_id;
  owner_thread_ = GetCurrentThreadId();
  return *this;
}

unsigned long long CTimerID::SetTimer(unsigned int elapse_ms, CTimerProc* proc) {
  KillTimer();
  timer_id_ = ::SetTimer(nullptr, 0, elapse_ms, MyTimerProcCallback);
  AddTimerToList(timer_id_, proc);
  owner_thread_ = GetCurrentThreadId();
  return timer_id_;
}

void CTimerID::KillTimer() {
  if (timer_id_ == 0) return;
  RemoveTimerFromList(timer_id_);
  ::KillTimer(nullptr, timer_id_);
  timer_id_ = 0;
  owner_thread_ = 0;
}

CTimerID::operator unsigned long long() const {
  return timer_id_;
}

void CTimerID::AddTimerToList(unsigned long long id, CTimerProc* proc) {
  if (id == 0 || !proc) return;
  TimerSlot::OfThisProcess().FindOrMake().emplace(id, proc);  // an id that is listed keeps its procedure
}

void CTimerID::RemoveTimerFromList(unsigned long long id) {
  if (TimerProcMap* timers = TimerSlot::OfThisProcess().Find()) timers->erase(id);
}

void CTimerID::MyTimerProcCallback(HWND hwnd, unsigned int message, unsigned long long id,
                                   unsigned long tick) {
  TimerProcMap* timers = TimerSlot::OfThisProcess().Find();
  if (!timers) return;
  const auto timer = timers->find(id);
  if (timer == timers->end() || !timer->second) return;
  (timer->second->*&GuardedTick::_OnTimer)(hwnd, message, id, tick);
}

void CTimerID::MoveTimer(CTimerID& other) {
  timer_id_ = std::exchange(other.timer_id_, 0);
  owner_thread_ = std::exchange(other.owner_thread_, 0);
}

int CTimerID::TimerStrictCheck() {
  return 1;
}

}  // namespace Cmm
