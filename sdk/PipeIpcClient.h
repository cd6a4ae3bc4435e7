#pragma once

// What the clients of the pipe route have in common: a pipe channel under a poll timer, which pumps what
// comes in, opens the pipe until it is there and opens it again after it broke, and a queue for what cannot
// be sent yet.

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <utility>

#include "common/client/utility/src/CmmLock.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/ipc/CmmIPCChannelThread.h"
#include "sdk/TimerQueueTimer.h"

namespace Velm3rdSDK {

// Lives in a std::shared_ptr, of which a tick that runs holds one more: the owner may let its client go
// within a callback of that very tick.
//
// Threads: the owner's, for the public operations; the channel's worker, which only queues; the timer's, on
// which the heir's handlers run. Lock order: the connection lock, then the inbound or the outbound lock.
class PipeIpcClient : public qxb_ipc::Channel::Listener, public std::enable_shared_from_this<PipeIpcClient> {
 public:
  static constexpr uint32_t kPollMs = 50;
  static constexpr uint32_t kLastMessageMs = 50;       // for a message on its way when the pipe is closed
  static constexpr size_t kMaxWaitingMessages = 1000;  // the newest win

  PipeIpcClient(const PipeIpcClient&) = delete;
  PipeIpcClient& operator=(const PipeIpcClient&) = delete;
  ~PipeIpcClient() override;

  void OnMessageReceived(Cmm::CmmMQ_Msg* msg, int type) override;
  void OnChannelError() override;

 protected:
  // The class name stands in the log lines; both texts are literals.
  PipeIpcClient(const wchar_t* className, const wchar_t* namePrefix);

  // Starts the poll timer and the first attempt to open the pipe; nothing when connected.
  void ConnectTo(uint32_t channelId);
  // Ends timer and channel; what waits is dropped, in both directions.
  void DisconnectFrom();
  // Sends a message or lets it wait. 0 for null, otherwise non-zero.
  int Send(Cmm::CmmMQ_Msg* msg);

  uint32_t ChannelID() const { return m_uChannelID; }
  uint32_t Connected() const { return m_bConnected; }
  const wchar_t* ClassName() const { return m_className; }
  Cmm::CCritical& ConnectionLock() { return m_connectionLock; }

  // Called under the connection lock, on the timer's thread or within ConnectTo.
  virtual void BeforeOpening() {}         // about to look for the pipe
  virtual void HandleConnected() = 0;     // the pipe is open and its thread runs
  virtual void HandleDisconnected() = 0;  // the pipe has broken
  virtual void HandleMessage(const Cmm::CmmMQ_Msg& msg, int type) = 0;
  virtual void StopTimers() {}  // the heir's own timers end as well
  // The public operations, through which a broken connection is made anew.
  virtual void Connect(uint32_t channelId) = 0;
  virtual void Disconnect() = 0;

 private:
  friend struct PipeIpcClientTestAccess;
  using Inbound = std::pair<int, std::unique_ptr<Cmm::CmmMQ_Msg>>;

  void InitConnection();
  void OnTimer();
  void ProcessMessage();
  bool TakeInbound(Inbound& message);
  void SendWaiting();

  const wchar_t* const m_className;
  const wchar_t* const m_namePrefix;
  std::unique_ptr<qxb_ipc::CIPCChannelThread> m_pChannel;  // null when no pipe is open
  Cmm::CStringT<wchar_t> m_strChannelName;
  uint32_t m_uChannelID = 0;
  Cmm::CCritical m_inboundLock;
  std::deque<Inbound> m_inbound;  // guarded by m_inboundLock
  TimerQueueTimer m_timer;        // runs from Connect to Disconnect
  std::atomic<uint32_t> m_bConnected = 0;
  std::atomic<uint32_t> m_bChannelError = 0;
  std::atomic<bool> m_bStopping = false;  // the channel is being stopped and its errors are of no account
  Cmm::CCritical m_outboundLock;
  std::deque<std::unique_ptr<Cmm::CmmMQ_Msg>> m_outbound;  // guarded by m_outboundLock
  Cmm::CCritical m_connectionLock;  // guards the connection's state and each use of m_pChannel
};

}  // namespace Velm3rdSDK
