#pragma once

// A channel with the thread that it needs: any thread may hand it messages, and all work on the pipe is done
// on one worker thread.
//
//   CStringT<wchar_t> name;
//   CIPCChannelThread::GenChannelName(L"com.velm.ipc.audiosdk_", GetCurrentProcessId(), name);
//   CIPCChannelThread channel(narrowName, MODE_CLIENT, &listener, 1);
//   if (channel.IsServerGood()) channel.Start();

#include <atomic>
#include <deque>
#include <memory>
#include <string>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmLock.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/CmmThread.h"
#include "common/client/utility/src/ipc/CmmIPCChannel.h"

namespace qxb_ipc {

// One thread creates, starts, stops and destroys it. It runs once: after Stop, or when the pipe was not
// there, a new Start gets a thread that ends at once.
class CMM_EXPORT CIPCChannelThread : public Cmm::IThread {
 public:
  // Create or open the pipe at once, on the calling thread; see Channel. `listener` is borrowed and called on
  // the worker thread only.
  CIPCChannelThread(const std::string& channel_id, ChannelMode mode, Channel::Listener* listener,
                    int use_security);
  CIPCChannelThread(ChannelMode mode, Channel::Listener* listener, int ignored, void* pipe);
  CIPCChannelThread(const CIPCChannelThread&) = delete;
  CIPCChannelThread& operator=(const CIPCChannelThread&) = delete;

  unsigned int ThreadProc() override;  // the worker's body

  virtual ~CIPCChannelThread();  // stops the worker, and drops what was not sent

  int Start();  // 1; 0 when it runs already. A thread that cannot be had is not reported
  // Ends the worker and waits for its end without limit, looking every 50 ms; so not to be called by the
  // worker, that is by a listener. What was not sent is dropped. 1; 0 when it does not run.
  int Stop();
  int IsServerGood() const;  // non-zero while the pipe is there; for use before Start

  // Any thread: takes `msg`, a CmmInternelMsg, and passes it to the worker. The messages of one thread keep
  // their order. Those handed over before Start wait for it; those after the end are dropped with the object.
  // Always 1.
  int SendMessageW(Cmm::CmmMQ_Msg* msg);

  // Sets `out` to `base` and `id` in decimal. An id of 0x80000000 or more comes out negative: the peer forms
  // the name in the same way.
  static void GenChannelName(const Cmm::CStringT<wchar_t>& base, unsigned int id,
                             Cmm::CStringT<wchar_t>& out);

 private:
  friend struct ChannelThreadTestAccess;

  void SendPending();
  std::unique_ptr<Cmm::CmmMQ_Msg> TakePending();

  Cmm::CThread thread_;
  Channel channel_;
  std::atomic<bool> stop_requested_ = false;
  std::atomic<bool> running_ = false;
  Cmm::CCritical pending_lock_;
  std::deque<std::unique_ptr<Cmm::CmmMQ_Msg>> pending_;  // guarded by pending_lock_
  // Set while the worker is about to wait with nothing to do. Only who finds it set wakes the worker: one
  // packet is enough, and a worker that is busy looks at pending_ anyway before it waits.
  std::atomic<bool> idle_ = false;
};

}  // namespace qxb_ipc
