#include "sdk/PipeIpcClient.h"

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmThread.h"
#include "sdk/ConsoleLog.h"

namespace Velm3rdSDK {
namespace {

constexpr int kUseSecurity = 1;

}  // namespace

PipeIpcClient::PipeIpcClient(const wchar_t* className, const wchar_t* namePrefix)
    : m_className(className), m_namePrefix(namePrefix) {}

PipeIpcClient::~PipeIpcClient() = default;

void PipeIpcClient::ConnectTo(uint32_t channelId) {
  const Cmm::CAutoLock lock(m_connectionLock);
  if (m_bConnected) return;
  SDK_LOG(kLogInfo) << L"[" << m_className << L"::Connect] uChannelID=" << channelId;
  m_uChannelID = channelId;
  const auto tick = [weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->OnTimer();
  };
  if (!m_timer.Start(kPollMs, tick))
    SDK_LOG(kLogInfo) << L"[" << m_className << L"::Connect] CreateTimerQueueTimer failed! uChannelID="
                      << channelId;
  InitConnection();
}

void PipeIpcClient::InitConnection() {
  const Cmm::CAutoLock lock(m_connectionLock);
  if (m_bConnected) return;
  SDK_LOG(kLogInfo) << L"[" << m_className << L"::InitConnection]";
  BeforeOpening();
  m_pChannel.reset();
  qxb_ipc::CIPCChannelThread::GenChannelName(m_namePrefix, m_uChannelID, m_strChannelName);
  const Cmm::A2BT<65001, wchar_t, char> name(m_strChannelName.c_str());
  auto channel =
      std::make_unique<qxb_ipc::CIPCChannelThread>(name.c_str(), qxb_ipc::MODE_CLIENT, this, kUseSecurity);
  if (!channel->IsServerGood()) return;  // the next tick tries again
  m_pChannel = std::move(channel);
  m_pChannel->Start();
  m_bConnected = 1;
  SDK_LOG(kLogInfo) << L"[" << m_className << L"::InitConnection] connected. m_uChannelID=" << m_uChannelID
                    << L", m_strChannelName=" << m_strChannelName;
  HandleConnected();
  SendWaiting();
}

void PipeIpcClient::SendWaiting() {
  std::deque<std::unique_ptr<Cmm::CmmMQ_Msg>> waiting;
  {
    const Cmm::CAutoLock lock(m_outboundLock);
    waiting.swap(m_outbound);
  }
  for (auto& msg : waiting)
    if (m_pChannel) m_pChannel->SendMessageW(msg.release());
}

void PipeIpcClient::OnTimer() {
  const Cmm::CAutoLock lock(m_connectionLock);
  if (!m_timer.IsRunning()) return;  // stopped while this tick waited for the lock
  ProcessMessage();
  if (m_bChannelError.exchange(0)) {
    HandleDisconnected();
    if (!m_timer.IsRunning()) return;
    Disconnect();
    Connect(m_uChannelID);
  } else if (m_timer.IsRunning() && !m_bConnected) {
    InitConnection();
  }
}

void PipeIpcClient::OnMessageReceived(Cmm::CmmMQ_Msg* msg, int type) {
  if (!msg) return;
  std::unique_ptr<Cmm::CmmMQ_Msg> owned(msg);
  SDK_LOG(kLogInfo) << L"[" << m_className << L"::OnMessageReceived] m_uChannelID=" << m_uChannelID
                    << L", type:" << type << L" len:" << msg->GetLen();
  const Cmm::CAutoLock lock(m_inboundLock);
  m_inbound.emplace_back(type, std::move(owned));
}

// Whoever stops the channel holds the connection lock and waits for this thread: then there is no waiting for
// the lock, and nothing to tell either.
void PipeIpcClient::OnChannelError() {
  while (m_connectionLock.TryLock() != Cmm::SYNC_OK) {
    if (m_bStopping) return;
    Cmm::CThread::Sleep(1);
  }
  SDK_LOG(kLogInfo) << L"[" << m_className << L"::OnChannelError] m_uChannelID=" << m_uChannelID;
  m_bConnected = 0;
  m_bChannelError = 1;
  m_connectionLock.Unlock();
}

bool PipeIpcClient::TakeInbound(Inbound& message) {
  const Cmm::CAutoLock lock(m_inboundLock);
  if (m_inbound.empty()) return false;
  message = std::move(m_inbound.front());
  m_inbound.pop_front();
  return true;
}

void PipeIpcClient::ProcessMessage() {
  for (Inbound message; TakeInbound(message);) {
    SDK_LOG(kLogInfo) << L"[" << m_className << L"::ProcessMessage]message._type: " << message.first;
    HandleMessage(*message.second, message.first);
  }
}

int PipeIpcClient::Send(Cmm::CmmMQ_Msg* msg) {
  if (!msg) return 0;
  std::unique_ptr<Cmm::CmmMQ_Msg> owned(msg);
  const Cmm::CAutoLock lock(m_connectionLock);
  if (m_bConnected && m_pChannel) return m_pChannel->SendMessageW(owned.release());
  const Cmm::CAutoLock outboundLock(m_outboundLock);
  if (m_outbound.size() >= kMaxWaitingMessages) m_outbound.pop_front();
  m_outbound.push_back(std::move(owned));
  return 1;
}

void PipeIpcClient::DisconnectFrom() {
  {
    const Cmm::CAutoLock lock(m_connectionLock);
    m_timer.Stop();
    StopTimers();
    if (m_bConnected || m_pChannel) {
      SDK_LOG(kLogInfo) << L"[" << m_className << L"::Disconnect] m_uChannelID=" << m_uChannelID;
      Cmm::CThread::Sleep(kLastMessageMs);
      m_bStopping = true;
      if (m_pChannel) m_pChannel->Stop();
      {
        const Cmm::CAutoLock inboundLock(m_inboundLock);
        m_inbound.clear();
      }
      {
        const Cmm::CAutoLock outboundLock(m_outboundLock);
        m_outbound.clear();
      }
      m_pChannel.reset();
      m_bStopping = false;
      m_bConnected = 0;
    }
  }
  TimerQueueTimer::AwaitLastTick();
}

}  // namespace Velm3rdSDK
