#include "sdk/TimerQueueTimer.h"

#include <windows.h>

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "common/client/utility/src/CmmLock.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace Velm3rdSDK {
namespace {

constexpr DWORD kLastTickMs = 1000;

// The running timers' ticks by number. The system is given the number and not an address, so that a tick
// that begins when its timer is stopped finds nothing.
struct Ticks {
  Cmm::CCritical lock;
  std::map<uintptr_t, std::shared_ptr<const std::function<void()>>> byId;
  uintptr_t lastId = 0;
  // Of stopped timers: each is signalled by the system when the last tick of its timer has returned.
  std::vector<Cmm::UniqueHandle> endings;
};

Ticks& AllTicks() {
  static Ticks& ticks = *new Ticks;  // outlives every static object that has a timer
  return ticks;
}

thread_local bool t_isInTick = false;

bool HasEnded(const Cmm::UniqueHandle& ending) {
  return WaitForSingleObject(ending.get(), 0) == WAIT_OBJECT_0;
}

// Then the timer queue's thread is gone, and no tick will return any more.
bool IsProcessEnding() {
  const auto isEnding = reinterpret_cast<BOOLEAN(NTAPI*)()>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
  return isEnding && isEnding();
}

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
  Cmm::UniqueHandle ended(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  Ticks& ticks = AllTicks();
  const Cmm::CAutoLock lock(ticks.lock);
  ticks.byId.erase(m_id);
  DeleteTimerQueueTimer(nullptr, std::exchange(m_timer, nullptr), ended.get());
  std::erase_if(ticks.endings, HasEnded);
  if (ended) ticks.endings.push_back(std::move(ended));
}

void TimerQueueTimer::AwaitLastTick() {
  if (t_isInTick || IsProcessEnding()) return;
  Ticks& ticks = AllTicks();
  const auto takeEnding = [&ticks] {
    const Cmm::CAutoLock lock(ticks.lock);
    if (ticks.endings.empty()) return Cmm::UniqueHandle();
    Cmm::UniqueHandle ending = std::move(ticks.endings.back());
    ticks.endings.pop_back();
    return ending;
  };
  const ULONGLONG start = GetTickCount64();
  while (Cmm::UniqueHandle ending = takeEnding()) {
    const ULONGLONG waited = GetTickCount64() - start;
    const DWORD left = waited < kLastTickMs ? static_cast<DWORD>(kLastTickMs - waited) : 0;
    if (WaitForSingleObject(ending.get(), left) == WAIT_OBJECT_0) continue;
    const Cmm::CAutoLock lock(ticks.lock);
    ticks.endings.push_back(std::move(ending));  // the system will still signal it
    return;
  }
}

}  // namespace Velm3rdSDK
