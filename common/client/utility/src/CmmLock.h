#pragma once

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmSyncRet.h"

namespace Cmm {

// All operations of both locks, construction of a CCritical and destruction among them, do nothing on a null
// pointer: a caller may hold a pointer to a lock that is optional.

// A critical section: a lock within the process that its owning thread may take again. It must be unlocked
// as often, by that thread. The lock of choice of this library.
class CMM_EXPORT CCritical {
 public:
  CCritical();
  CCritical(const CCritical&) = delete;
  CCritical& operator=(const CCritical&) = delete;
  ~CCritical();  // the lock must be free

  void Lock();
  void Unlock();
  ESyncRet TryLock();  // SYNC_OK when entered, SYNC_TIMEOUT when another thread is inside

 private:
  alignas(void*) unsigned char m_section[40];  // the CRITICAL_SECTION itself
};

// A binary semaphore, unlocked at first. In spite of its name no thread owns it: any thread may unlock it,
// and a second Lock by the thread that holds it blocks until another thread unlocks it. Unlocking it when
// it is unlocked changes nothing.
class CMM_EXPORT CMutex {
 public:
  CMutex();
  CMutex(const CMutex&) = delete;
  CMutex& operator=(const CMutex&) = delete;
  ~CMutex();

  void Lock();  // waits without limit
  void Unlock();
  ESyncRet TryLock();  // SYNC_OK when taken, SYNC_TIMEOUT when it is locked

 private:
  void* m_event;  // null when the system gave none; then Lock and Unlock do nothing
};

// Holds a lock for a scope. `L` is CCritical, CMutex or a class with the same Lock and Unlock; where they
// accept a null pointer, so does the scope.
template <typename L>
class CAutoLock {
 public:
  explicit CAutoLock(L& lock) : CAutoLock(&lock) {}
  explicit CAutoLock(L* lock) : m_lock(lock) { m_lock->Lock(); }
  CAutoLock(const CAutoLock&) = delete;
  CAutoLock& operator=(const CAutoLock&) = delete;
  ~CAutoLock() { m_lock->Unlock(); }

 private:
  L* const m_lock;
};

}  // namespace Cmm
