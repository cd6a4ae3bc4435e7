#include "sdk/TimerQueueTimer.h"

#include <map>
#include <memory>
#include <utility>

#include "common/client/utility/src/CmmLock.h"

namespace Velm3rdSDK {
namespace {

constexpr DWORD kLastTickMs = 100;

// The running timers' ticks by number. The system is given the number and not an address, so that a tick
// that begins when its timer is stopped finds nothing.
struct Ticks {
  Cmm::CCritical lock;
  std::map<uintptr_t, std::shared_ptr<const std::function<void()>>> byId;
  uintptr_t lastId = 0;
};

Ticks& AllTicks() {
  static Ticks& ticks = *new Ticks;  // outlives every static object that has a timer
  return ticks;
}

thread_local bool t_isInTick = false;

std::shared_ptr<const std::function<void()>> Find(uintptr_t id) {
  Ticks& ticks = AllTicks();
  const Cmm::CAutoLock lock(ticks.lock);
  const auto found = ticks.byId.find(id);
  return found == ticks.byId.end() ? nullptr : found->second;
}

void CALLBACK OnTimer(void* id, BOOLEAN) {
  const auto tick = Find(reinterpret_cast<uintptr_t>(id));
  if (!tick) return;
  t_isInTick = true;
  (*tick)();
  t_isInTick = false;
}

}  // namespace

TimerQueueTimer::~TimerQueueTimer() {
  Stop();
  AwaitLastTick();
}

bool TimerQueueTimer::Start(uint32_t periodMs, std::function<void()> tick) {
  Stop();
  Ticks& ticks = AllTicks();
  const Cmm::CAutoLock lock(ticks.lock);
  m_id = ++ticks.lastId;
  if (!CreateTimerQueueTimer(&m_timer, nullptr, OnTimer, reinterpret_cast<void*>(m_id), periodMs, periodMs,
                             WT_EXECUTEINTIMERTHREAD)) {
    m_timer = nullptr;
    return false;
  }
  ticks.byId[m_id] = std::make_shared<const std::function<void()>>(std::move(tick));
  return true;
}

void TimerQueueTimer::Stop() {
  if (!m_timer) return;
  {
    Ticks& ticks = AllTicks();
    const Cmm::CAutoLock lock(ticks.lock);
    ticks.byId.erase(m_id);
  }
  AwaitLastTick();  // of the timer before, whose event would be lost
  m_ended.reset(t_isInTick ? nullptr : CreateEventW(nullptr, TRUE, FALSE, nullptr));
  DeleteTimerQueueTimer(nullptr, std::exchange(m_timer, nullptr), m_ended.get());
}

void TimerQueueTimer::AwaitLastTick() {
  if (t_isInTick || !m_ended) return;
  const bool ended = WaitForSingleObject(m_ended.get(), kLastTickMs) == WAIT_OBJECT_0;
  Cmm::UniqueHandle event = std::move(m_ended);
  if (!ended) static_cast<void>(event.release());  // the system will still signal it: it must not be reused
}

}  // namespace Velm3rdSDK
