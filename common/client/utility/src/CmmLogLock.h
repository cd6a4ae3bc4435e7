#pragma once

#include <atomic>

#include "common/client/utility/src/CmmLock.h"
#include "common/client/utility/src/CmmLogging.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace logging::internal {

// The outer lock of the log: the files and all that the settings say of them. It is a named mutex or a
// critical section, both of which their owner may take again.
class LogLock {
 public:
  // Decides the form of the lock, once: later calls change nothing. In the mutex form `path` names the log
  // file, null the default one; when the system gives no mutex, the next call tries again.
  void Init(LogLockingState mode, const wchar_t* path);

  // The form asked for by the last Init that decided or tried.
  LogLockingState Mode() const { return m_mode; }

  enum Form : int { kNone, kMutex, kCriticalSection };

  // Holds the lock for a scope; holds nothing while there is none.
  class Scope {
   public:
    explicit Scope(LogLock& lock) : m_lock(lock), m_held(lock.Acquire()) {}
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope() { m_lock.Release(m_held); }

   private:
    LogLock& m_lock;
    // What was taken: the lock may come into being meanwhile.
    const Form m_held;
  };

 private:
  Form Acquire();
  void Release(Form held);

  Cmm::CCritical m_initLock;
  std::atomic<LogLockingState> m_mode = LOCK_BY_NAMED_MUTEX;
  std::atomic<Form> m_form = kNone;
  Cmm::UniqueHandle m_mutex;
  Cmm::CCritical m_section;
};

}  // namespace logging::internal
