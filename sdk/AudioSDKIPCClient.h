#pragma once

#include "sdk/IpcClient.h"
#include "sdk/PipeIpcClient.h"

namespace Velm3rdSDK {

// The window class of the helper process that makes pipes on demand, and the message that asks it to: wParam
// is the channel id.
inline constexpr const wchar_t* kHelperWindowClass = L"VelmPTApp_VVHOST_HostWindow";
inline constexpr uint32_t kRequestChannelMessage = 0xA40;

inline constexpr const wchar_t* kAudioChannelPrefix = L"com.velm.ipc.audiosdk_";

// The channel for audio commands, with a goodbye that the server confirms.
class CAudioSDKIPCClient final : public IAudioSDKIPCClient, public PipeIpcClient {
 public:
  CAudioSDKIPCClient();
  ~CAudioSDKIPCClient() override;

  void SetSink(IAudioSDKIPCClientSink* sink) override { m_pSink = sink; }
  void Connect(uint32_t channelId) override;
  void Disconnect() override;
  uint32_t GetChannelID() override { return ChannelID(); }
  uint32_t IsConnected() override { return Connected(); }
  int RequestToStartNewChannel(uint32_t channelId) override;
  int RequestToStopChannel(uint32_t channelId) override;
  int SendAudioCmdRequest(const Cmm::CStringT<wchar_t>& text) override;
  int NotifyClientExit() override;

 private:
  void BeforeOpening() override;
  void HandleConnected() override;
  void HandleDisconnected() override;
  void HandleMessage(const Cmm::CmmMQ_Msg& msg, int type) override;
  void StopTimers() override;

  void HandleClientExitConfirmed();
  void HandleSubChannelAdd(const Cmm::CmmMQ_Msg& msg);
  void HandleSubChannelRemove(const Cmm::CmmMQ_Msg& msg);
  void HandleAudioCmdNotify(const Cmm::CmmMQ_Msg& msg);
  void OnNotifyTimer();

  IAudioSDKIPCClientSink* m_pSink = nullptr;
  TimerQueueTimer m_exitTimer;  // runs from NotifyClientExit until the answer or the time-out
};

}  // namespace Velm3rdSDK
