#include "sdk/AudioSDKIPCClient.h"

#include <windows.h>

#include "archive/catalogue/SdkChannelMessages.h"
#include "sdk/ConsoleLog.h"

namespace Velm3rdSDK {
namespace {

constexpr uint32_t kOwnProcess = 0;
constexpr uint32_t kGoodbyeMs = 50;

enum InboundType : int {
  kClientExit = 40353,
  kSubChannelAdd = 40354,
  kSubChannelRemove = 40355,
  kAudioCmdNotify = 40521,
};

}  // namespace

CAudioSDKIPCClient::CAudioSDKIPCClient() : PipeIpcClient(L"CAudioSDKIPCClient", kAudioChannelPrefix) {}

CAudioSDKIPCClient::~CAudioSDKIPCClient() {
  Disconnect();
}

void CAudioSDKIPCClient::Connect(uint32_t channelId) {
  ConnectTo(channelId == kOwnProcess ? GetCurrentProcessId() : channelId);
}

void CAudioSDKIPCClient::Disconnect() {
  DisconnectFrom();
}

void CAudioSDKIPCClient::BeforeOpening() {
  const HWND helper = FindWindowW(kHelperWindowClass, nullptr);
  if (!helper) return;
  PostMessageW(helper, kRequestChannelMessage, ChannelID(), 0);
  SDK_LOG(kLogInfo)
      << L"[CAudioSDKIPCClient::InitConnection] post window message to vvhost process to create "
         L"new channel";
}

void CAudioSDKIPCClient::HandleConnected() {
  if (m_pSink) m_pSink->OnServerConnected(ChannelID());
}

void CAudioSDKIPCClient::HandleDisconnected() {
  if (m_pSink) m_pSink->OnServerDisconnected(ChannelID());
}

void CAudioSDKIPCClient::StopTimers() {
  m_exitTimer.Stop();
}

int CAudioSDKIPCClient::RequestToStartNewChannel(uint32_t channelId) {
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::RequestToStartNewChannel] uChannelID=" << channelId
                    << L" m_bConnected=" << Connected();
  CQXMBMessage_LogService_StartChannel message;
  message.Set_ChannelId(channelId);
  const int bRet = Send(message.BuildMsg(-1));
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::RequestToStartNewChannel] uChannelID=" << channelId << L" bRet="
                    << bRet;
  return bRet;
}

int CAudioSDKIPCClient::RequestToStopChannel(uint32_t channelId) {
  CQXMBMessage_LogService_StopChannel message;
  message.Set_ChannelId(channelId);
  const int bRet = Send(message.BuildMsg(-1));
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::RequestToStopChannel] bRet=" << bRet << L", uChannelID="
                    << channelId;
  return bRet;
}

int CAudioSDKIPCClient::SendAudioCmdRequest(const Cmm::CStringT<wchar_t>& text) {
  CQXMBMessage_Audio3rdSDK_AudioCmdRequest message;
  message.Set_ChannelId(ChannelID());
  message.Set_AudioCmdRequest(text);
  return Send(message.BuildMsg(-1));
}

int CAudioSDKIPCClient::NotifyClientExit() {
  {
    const Cmm::CAutoLock lock(ConnectionLock());
    const auto tick = [weak = weak_from_this(), this] {
      if (const auto self = weak.lock()) OnNotifyTimer();
    };
    if (!m_exitTimer.Start(kGoodbyeMs, tick))
      SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::HandleClientExitConfirmed] CreateTimerQueueTimer failed!";
  }
  return Send(CQXMBMessage_LogService_ClientExit().BuildMsg(-1)) != 0;
}

void CAudioSDKIPCClient::OnNotifyTimer() {
  const Cmm::CAutoLock lock(ConnectionLock());
  if (!m_exitTimer.IsRunning()) return;  // the answer came while this tick waited for the lock
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::OnTimer] notify client exit time out";
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::OnNotifyTimerProcess] notify client exit time out";
  m_exitTimer.Stop();
  constexpr int kTimedOut = 1;
  if (m_pSink) m_pSink->OnClientExitConfirmed(ChannelID(), kTimedOut);
}

void CAudioSDKIPCClient::HandleMessage(const Cmm::CmmMQ_Msg& msg, int type) {
  switch (type) {
    case kClientExit:
      return HandleClientExitConfirmed();
    case kSubChannelAdd:
      return HandleSubChannelAdd(msg);
    case kSubChannelRemove:
      return HandleSubChannelRemove(msg);
    case kAudioCmdNotify:
      return HandleAudioCmdNotify(msg);
    default:
      SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::ProcessMessage] Received Unknown message:" << type;
  }
}

void CAudioSDKIPCClient::HandleClientExitConfirmed() {
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::HandleClientExitConfirmed]";
  m_exitTimer.Stop();
  constexpr int kInTime = 0;
  if (m_pSink) m_pSink->OnClientExitConfirmed(ChannelID(), kInTime);
}

void CAudioSDKIPCClient::HandleSubChannelAdd(const Cmm::CmmMQ_Msg& msg) {
  CQXMBMessage_LogService_SubChannelAdd message;
  message.ParseMsg(&msg);
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::HandleSubChannelAdd] uChannelID=" << message.Get_ChannelId();
}

void CAudioSDKIPCClient::HandleSubChannelRemove(const Cmm::CmmMQ_Msg& msg) {
  CQXMBMessage_LogService_SubChannelRemove message;
  message.ParseMsg(&msg);
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::HandleSubChannelRemove] uChannelID=" << message.Get_ChannelId();
}

// A message that does not parse is delivered all the same, with what its fields hold then.
void CAudioSDKIPCClient::HandleAudioCmdNotify(const Cmm::CmmMQ_Msg& msg) {
  CQXMBMessage_Audio3rdSDK_AudioCmdNotify message;
  message.ParseMsg(&msg);
  if (m_pSink) m_pSink->OnAudioCmdNotify(message.Get_ChannelId(), message.Get_AudioCmdNotify());
  SDK_LOG(kLogInfo) << L"[CAudioSDKIPCClient::HandleAudioCmdNotify] uChannelID=" << ChannelID()
                    << L", strAudioCmdNotify:" << message.Get_AudioCmdNotify();
}

}  // namespace Velm3rdSDK
