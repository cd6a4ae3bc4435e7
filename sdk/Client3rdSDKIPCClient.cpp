#include "sdk/Client3rdSDKIPCClient.h"

#include "archive/catalogue/SdkChannelMessages.h"
#include "sdk/ConsoleLog.h"

namespace Velm3rdSDK {
namespace {

constexpr int kSDKCmdNotify = 40526;

}  // namespace

CClient3rdSDKIPCClient::CClient3rdSDKIPCClient()
    : PipeIpcClient(L"CClient3rdSDKIPCClient", kServiceModeChannelPrefix) {}

CClient3rdSDKIPCClient::~CClient3rdSDKIPCClient() {
  Disconnect();
}

void CClient3rdSDKIPCClient::Connect(uint32_t channelId) {
  ConnectTo(channelId);
}

void CClient3rdSDKIPCClient::Disconnect() {
  DisconnectFrom();
}

void CClient3rdSDKIPCClient::HandleConnected() {
  if (m_pSink) m_pSink->OnClient3rdSDKServerConnected(ChannelID());
}

void CClient3rdSDKIPCClient::HandleDisconnected() {
  if (m_pSink) m_pSink->OnClient3rdSDKServerDisconnected(ChannelID());
}

int CClient3rdSDKIPCClient::SendClient3rdSDKCmdRequest(const Cmm::CStringT<wchar_t>& text) {
  CQXMBMessage_Client3rdSDK_SDKCmdRequest message;
  message.Set_ChannelId(ChannelID());
  message.Set_SDKCmdRequest(text);
  SDK_LOG(kLogInfo) << L"[CClient3rdSDKIPCClient::SendClient3rdSDKCmdRequest] m_uChannelID=" << ChannelID()
                    << L", strClientSDKCmd:" << text;
  return Send(message.BuildMsg(-1));
}

void CClient3rdSDKIPCClient::HandleMessage(const Cmm::CmmMQ_Msg& msg, int type) {
  if (type == kSDKCmdNotify)
    HandleClient3rdSDKCmdNotify(msg);
  else
    SDK_LOG(kLogInfo) << L"[CClient3rdSDKIPCClient::ProcessMessage] Received Unknown message:" << type;
}

// A message that does not parse is delivered all the same, with what its fields hold then.
void CClient3rdSDKIPCClient::HandleClient3rdSDKCmdNotify(const Cmm::CmmMQ_Msg& msg) {
  CQXMBMessage_Client3rdSDK_SDKCmdNotify message;
  message.ParseMsg(&msg);
  if (m_pSink) m_pSink->OnClient3rdSDKServerCmdNotify(message.Get_ChannelId(), message.Get_SDKCmdNotify());
  SDK_LOG(kLogInfo) << L"[CClient3rdSDKIPCClient::HandleClient3rdSDKCmdNotify] uChannelID=" << ChannelID()
                    << L", strClientSDKCmdNotify:" << message.Get_SDKCmdNotify();
}

}  // namespace Velm3rdSDK
