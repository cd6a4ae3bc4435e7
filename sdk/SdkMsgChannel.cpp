#include "sdk/SdkMsgChannel.h"

#include <windows.h>

#include <wtsapi32.h>

#include "sdk/ChannelRules.h"
#include "sdk/ConsoleLog.h"
#include "sdk/MessageThread.h"
#include "sdk/SdkImplHelper.h"

namespace Velm3rdSDK {
namespace {

constexpr uint32_t kOwnProcess = 0;  // channel id that the audio client replaces by the process id

ClientVersion ReadClientVersion() {
  ClientVersion version;
  g_sdkImplHelper.GetVelmExeVersion(&version.major, &version.minor, &version.third, &version.fourth);
  return version;
}

void LogTooOld(const wchar_t* text, const ClientVersion& version) {
  SDK_LOG(kLogInfo) << text << version.major << L"." << version.minor << L"." << version.third << L"."
                    << version.fourth;
}

uint32_t ServiceModeChannelId() {
  WTS_SESSION_INFOW* list = nullptr;
  DWORD count = 0;
  std::vector<Session> sessions;
  if (WTSEnumerateSessionsW(WTS_CURRENT_SERVER_HANDLE, 0, 1, &list, &count))
    for (DWORD i = 0; i < count; ++i)
      sessions.push_back({list[i].SessionId, list[i].State});
  if (list) WTSFreeMemory(list);
  return ChooseChannelId(sessions);
}

}  // namespace

CSdkMsgChannel* g_pSdkMsgChannel = nullptr;

CSdkMsgChannel::CSdkMsgChannel() {
  g_pSdkMsgChannel = this;
}

CSdkMsgChannel::~CSdkMsgChannel() {
  RemoveDevicesFromTable();
  m_pRawSink = nullptr;
  g_pSdkMsgChannel = nullptr;
  DisconnectIpcClients();
}

CSdkMsgChannel& CSdkMsgChannel::Instance() {
  static CSdkMsgChannel instance;
  return instance;
}

uint32_t CSdkMsgChannel::Init() {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::Init]";
  if (m_bInited) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::Init] already inited!";
    return 0;
  }
  StartMessageThread();
  if (!m_b3rdSDKIPC) m_deviceTable.OpenTable();  // in service mode there is no table
  if (m_bAudioIPC) {
    m_pIPCClient = GetIpcClientFactory().MakeAudioClient();
    m_pIPCClient->SetSink(this);
    m_pIPCClient->Connect(kOwnProcess);
  }
  if (m_b3rdSDKIPC) {
    m_p3rdSDKIPCClient = GetIpcClientFactory().MakeServiceModeClient();
    m_p3rdSDKIPCClient->SetSink(this);
    m_p3rdSDKIPCClient->Connect(ServiceModeChannelId());
  }
  m_bInited = 1;
  return 1;
}

void CSdkMsgChannel::Exit() {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::Exit]";
  RemoveDevicesFromTable();
  if (IsWindow(m_hWnd)) {
    DestroyWindow(m_hWnd);
    m_hWnd = nullptr;
  }
  StopMessageThread();
  m_pRawSink = nullptr;
  DisconnectIpcClients();
  g_sdkImplHelper.ReleasePathHelper();
  m_bInited = 0;
}

void CSdkMsgChannel::DisconnectIpcClients() {
  if (m_pIPCClient) {
    m_pIPCClient->Disconnect();
    m_pIPCClient.reset();
  }
  if (m_p3rdSDKIPCClient) {
    m_p3rdSDKIPCClient->Disconnect();
    m_p3rdSDKIPCClient.reset();
  }
}

uint32_t CSdkMsgChannel::GetAvailableFeatures() {
  const uint32_t features = m_bRequestServiceMode ? SDK_FEATURES_SERVICE_MODE : SDK_FEATURES_ALL;
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::GetAvailableFeatures] m_bRequestServiceMode:"
                    << m_bRequestServiceMode << L", features:" << features;
  return features;
}

uint32_t CSdkMsgChannel::RegisterFeature(int64_t features) {
  const uint32_t bRet = [&]() -> uint32_t {
    if ((features & GetAvailableFeatures()) == 0) {
      SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::RegisterFeature] features not available! features:" << features;
      return 0;
    }
    if (features & SDK_FEATURE_AUDIO) {
      if (m_bRequestServiceMode) {
        SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::RegisterFeature] service mode does not support audio sdk. "
                          << features;
        return 0;
      }
      if (!g_sdkImplHelper.HasVelmClient()) {
        SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::RegisterFeature] HasVelmClient failed";
        return 0;
      }
      const ClientVersion version = ReadClientVersion();
      if (!SupportsAudioIpc(version)) {
        LogTooOld(
            L"[CSdkMsgChannel::RegisterFeature] Need update Velm client above 5.6.0 to support Audio IPC "
            L"Channel",
            version);
        return 0;
      }
      m_bAudioIPC = 1;
      SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::RegisterFeature] audio features, will go new ipc!";
    }
    m_nFeatures = features;  // whole, also bits that are not on offer
    return 1;
  }();
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::RegisterFeature] bRet:" << bRet << L", features:" << features
                    << L", m_bRequestServiceMode:" << m_bRequestServiceMode;
  return bRet;
}

uint32_t CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode() {
  m_bRequestServiceMode = 1;
  g_sdkImplHelper.m_bServiceMode = 1;
  uint32_t errCode = SDK_OK;
  if (!g_sdkImplHelper.HasVelmClient()) {
    errCode = SDK_ERR_NO_CLIENT;
    SDK_LOG(kLogInfo)
        << L"[CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode] HasVelmClient failed, errCode:"
        << errCode;
  } else if (const ClientVersion version = ReadClientVersion(); !SupportsServiceMode(version)) {
    errCode = SDK_ERR_CLIENT_TOO_OLD;
    LogTooOld(
        L"[CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode] Need update Velm client to 5.7.6 or "
        L"later to support service mode! Current Velm Client Version:",
        version);
  } else {
    m_b3rdSDKIPC = 1;
  }
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::Client3rdSDKRequestRunUnderServiceMode] errCode:" << errCode;
  return errCode;
}

uint32_t CSdkMsgChannel::GetVelmClientVersion(uint16_t* out) {
  uint32_t errCode = SDK_ERR_NO_CHANNEL;
  if (out) {
    g_sdkImplHelper.GetVelmExeVersion(&out[0], &out[1], &out[2], &out[3]);
    errCode = SDK_OK;  // also when no client was found: `out` is then as it was
  }
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::GetVelmClientVersion] errCode:" << errCode;
  return errCode;
}

}  // namespace Velm3rdSDK
