#pragma once

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmSyncRet.h"

namespace Cmm {

// Two ways for a thread to wait for another. Where an operation is said to accept a null pointer it then
// does nothing; the waits do not accept one. When the system gave no event, every wait fails at once.

// A signal for a thread that is known to be waiting: each Signal releases one of the present waiters, and
// with none present it is lost. For a condition that must stay visible take CState.
class CMM_EXPORT CEvent {
 public:
  CEvent();
  CEvent(const CEvent&) = delete;
  CEvent& operator=(const CEvent&) = delete;
  ~CEvent();  // accepts null

  void Lock();                      // waits for a signal without limit
  ESyncRet Lock(unsigned long ms);  // SYNC_OK, or SYNC_TIMEOUT after `ms` milliseconds
  void Unlock();                    // there is nothing to give back
  void Signal();                    // accepts null

 private:
  void* m_event;
};

// A condition that stays signalled, and releases every waiter, until Unsignal.
class CMM_EXPORT CState {
 public:
  explicit CState(int signaled = 0);
  CState(const CState&) = delete;
  CState& operator=(const CState&) = delete;
  ~CState();  // accepts null

  void Lock();                      // waits without limit until it is signalled
  ESyncRet Lock(unsigned long ms);  // SYNC_OK, or SYNC_TIMEOUT after `ms` milliseconds
  void Unlock();                    // there is nothing to give back

  // These accept null.
  void Signal();
  void Pulse();  // releases all present waiters, and leaves the state not signalled whatever it was
  void Unsignal();
  int IsSignaled() const;  // non-zero when signalled; 1 for null

 private:
  void* m_event;
};

}  // namespace Cmm
