#pragma once

#include "sdk/IpcClient.h"
#include "sdk/PipeIpcClient.h"

namespace Velm3rdSDK {

inline constexpr const wchar_t* kServiceModeChannelPrefix = L"com.velm.ipc.client3rdsdk_";

// The channel for ordinary commands in service mode: no window request before the pipe and no goodbye.
class CClient3rdSDKIPCClient final : public IClient3rdSDKIPCClient, public PipeIpcClient {
 public:
  CClient3rdSDKIPCClient();
  ~CClient3rdSDKIPCClient() override;

  void SetSink(IClient3rdSDKIPCClientSink* sink) override { m_pSink = sink; }
  void Connect(uint32_t channelId) override;  // the id as it is, 0 too
  void Disconnect() override;
  uint32_t GetChannelID() override { return ChannelID(); }
  uint32_t IsConnected() override { return Connected(); }
  int SendClient3rdSDKCmdRequest(const Cmm::CStringT<wchar_t>& text) override;

 private:
  void HandleConnected() override;
  void HandleDisconnected() override;
  void HandleMessage(const Cmm::CmmMQ_Msg& msg, int type) override;
  void HandleClient3rdSDKCmdNotify(const Cmm::CmmMQ_Msg& msg);

  IClient3rdSDKIPCClientSink* m_pSink = nullptr;
};

}  // namespace Velm3rdSDK
