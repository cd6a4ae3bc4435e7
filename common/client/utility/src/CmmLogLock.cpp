#include "common/client/utility/src/CmmLogLock.h"

#include "common/client/utility/src/CmmLogPath.h"

namespace logging::internal {

void LogLock::Init(LogLockingState mode, const wchar_t* path) {
  if (m_form != kNone) return;
  const Cmm::CAutoLock lock(m_initLock);
  if (m_form != kNone) return;
  m_mode = mode;
  if (mode != LOCK_BY_NAMED_MUTEX) {
    m_form = kCriticalSection;
    return;
  }
  const std::wstring name = LogMutexName(path ? path : DefaultLogPath());
  m_mutex.reset(CreateMutexW(nullptr, FALSE, name.c_str()));
  if (m_mutex) m_form = kMutex;
}

LogLock::Form LogLock::Acquire() {
  const Form form = m_form;
  if (form == kCriticalSection) m_section.Lock();
  if (form == kMutex) {
    // A mutex abandoned by a process that ended within a line is ours as well.
    const DWORD result = WaitForSingleObject(m_mutex.get(), INFINITE);
    if (result != WAIT_OBJECT_0 && result != WAIT_ABANDONED) return kNone;
  }
  return form;
}

void LogLock::Release(Form held) {
  if (held == kCriticalSection) m_section.Unlock();
  if (held == kMutex) ReleaseMutex(m_mutex.get());
}

}  // namespace logging::internal
