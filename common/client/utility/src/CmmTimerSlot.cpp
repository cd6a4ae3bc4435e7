#include "common/client/utility/src/CmmTimerSlot.h"

#include <memory>

#include "common/client/utility/src/CmmThreadLocal.h"

namespace Cmm::internal {

TimerSlot::TimerSlot() {
  ThreadLocalPlatform::AllocateSlot(m_slot);
}

TimerSlot::~TimerSlot() {
  ThreadLocalPlatform::FreeSlot(m_slot);
}

TimerProcMap* TimerSlot::Find() {
  return static_cast<TimerProcMap*>(ThreadLocalPlatform::GetValueFromSlot(m_slot));
}

TimerProcMap& TimerSlot::FindOrMake() {
  if (TimerProcMap* timers = Find()) return *timers;
  auto timers = std::make_unique<TimerProcMap>();
  ThreadLocalPlatform::SetValueInSlot(m_slot, timers.get());
  return *timers.release();
}

}  // namespace Cmm::internal
