#pragma once

// CSdkMsgChannel: the one object behind the exported functions. It owns the host application's callbacks,
// the hidden window's thread, the clients of the pipe route, and the flags that decide how commands
// travel. No lock guards its fields: the host application calls from one thread and registers before
// traffic starts, while the message thread and the timer threads of the IPC clients deliver.

#include <cstdint>
#include <memory>
#include <vector>

#include "common/client/utility/src/CmmString.h"
#include "sdk/AudioDeviceTable.h"
#include "sdk/IpcClient.h"
#include "sdk/SdkCommand.h"
#include "sdk/VelmSdk.h"

struct HWND__;

namespace Velm3rdSDK {

struct SdkCallbacks {
  SdkNotifyCallback general = nullptr;
  SdkAudioCallback audio = nullptr;
  SdkPresenceCallback presence = nullptr;
  SdkStatusCallback screenShare = nullptr;
  SdkStatusCallback confChat = nullptr;
  SdkStatusCallback camera = nullptr;
  SdkConfAudioCallback confAudio = nullptr;
  SdkConfEventCallback confEvent = nullptr;
  SdkPTEventCallback ptEvent = nullptr;
  SdkConfDeviceCallback confDevice = nullptr;
  SdkUIControlCallback uiControl = nullptr;
};

// Which channel a command goes by when the pipe route is open for it.
enum MsgTo : uint32_t {
  kMsgToOrdinary = 0,  // the service-mode IPC client
  kMsgToAudio = 1,     // the audio IPC client
};

class CSdkMsgChannel : public IAudioSDKIPCClientSink, public IClient3rdSDKIPCClientSink {
 public:
  CSdkMsgChannel();
  ~CSdkMsgChannel() override;
  CSdkMsgChannel(const CSdkMsgChannel&) = delete;
  CSdkMsgChannel& operator=(const CSdkMsgChannel&) = delete;

  // The instance of the process, built at the first call; it is never destroyed before unload.
  static CSdkMsgChannel& Instance();

  // ---- Lifecycle and admission (SdkMsgChannel.cpp)

  // Starts the channel. Returns 1 after a first run, 0 if it ran before.
  uint32_t Init();
  void Exit();
  uint32_t GetAvailableFeatures();
  uint32_t RegisterFeature(int64_t features);
  uint32_t Client3rdSDKRequestRunUnderServiceMode();
  uint32_t GetVelmClientVersion(uint16_t* out);
  void SetRawSink(ISdkRawSink* sink) { m_pRawSink = sink; }
  SdkCallbacks& Callbacks() { return m_callbacks; }

  // ---- Commands (SdkMsgChannelSend.cpp); each returns a result code

  uint32_t GetIMPresenceStatus();
  uint32_t SetAudioFunc(int32_t command);
  uint32_t SetAudioHotSwitch(uint32_t hotSwitch);
  uint32_t SendValueCommand(CommandId id, int32_t value);
  uint32_t SendDeviceSelected();

  // The host application's own text.
  uint32_t SdkSendMsgToVelmClient(const wchar_t* pData);
  // A built command; `enumMsgTo` is a MsgTo, any other value sends nothing and gives 0.
  uint32_t SdkSendMsgToVelmClientV(const wchar_t* pData, uint32_t enumMsgTo);
  // The window route alone; `enumMsgTo` is only logged.
  uint32_t SdkSendMsgToVelmClientByWindow(const wchar_t* pData, uint32_t enumMsgTo);

  // ---- Devices (SdkMsgChannelDevice.cpp)

  // Stores the identity and publishes it; null clears that part. Returns 1.
  uint32_t SetAudioDevice(const wchar_t* deviceName, const wchar_t* usbVid, const wchar_t* usbPid,
                          const wchar_t* deviceGUID);
  // Non-zero to hold a notification back that is about another application's device.
  int IsNeedFilterDevice(const wchar_t* deviceName, const wchar_t* deviceGUID, int value);

  // ---- Inbound (SdkMsgChannelDispatch.cpp)

  // One notification, UTF-8. Returns 1 when it ran to its end, 0 when it was dropped.
  int HandleVelmClientMsgNotify(const char* pMsgA);
  // What an empty message of the client means: one empty call of the raw sink and the general callback.
  void HandleEmptyNotification();

  void OnServerConnected(uint32_t channelId) override;
  void OnServerDisconnected(uint32_t channelId) override;
  void OnClientExitConfirmed(uint32_t channelId, int timedOut) override;
  void OnAudioCmdNotify(uint32_t channelId, const Cmm::CStringT<wchar_t>& text) override;
  void OnClient3rdSDKServerConnected(uint32_t channelId) override;
  void OnClient3rdSDKServerDisconnected(uint32_t channelId) override;
  void OnClient3rdSDKClientExitConfirmed(uint32_t channelId, int timedOut) override;
  void OnClient3rdSDKServerCmdNotify(uint32_t channelId, const Cmm::CStringT<wchar_t>& text) override;

 private:
  friend struct SdkMsgChannelTestAccess;

  void RemoveDevicesFromTable();
  void DisconnectIpcClients();

  SdkCallbacks m_callbacks;
  uint32_t m_bInited = 0;
  int64_t m_nFeatures = 0;
  HWND__* m_hWnd = nullptr;  // the message thread keeps its window to itself, so this stays null
  ISdkRawSink* m_pRawSink = nullptr;
  DeviceIdentity m_device;
  CAudioDeviceTable m_deviceTable;
  Cmm::CStringT<wchar_t> m_strDeviceName;  // the device selected last
  Cmm::CStringT<wchar_t> m_strDeviceGUID;
  std::vector<Cmm::CStringT<wchar_t>> m_deviceNames;  // all devices selected so far
  std::vector<Cmm::CStringT<wchar_t>> m_deviceGUIDs;
  uint32_t m_bAudioIPC = 0;
  std::shared_ptr<IAudioSDKIPCClient> m_pIPCClient;
  uint32_t m_b3rdSDKIPC = 0;
  std::shared_ptr<IClient3rdSDKIPCClient> m_p3rdSDKIPCClient;
  uint32_t m_bRequestServiceMode = 0;
};

// The singleton pointer: null at load and after DestroySdkChannel. The instance itself lives on.
extern CSdkMsgChannel* g_pSdkMsgChannel;

}  // namespace Velm3rdSDK
