// The commands of CSdkMsgChannel and the choice of their route.

#include "sdk/ConsoleLog.h"
#include "sdk/SdkImplHelper.h"
#include "sdk/SdkMsgChannel.h"
#include "sdk/WindowRoute.h"

namespace Velm3rdSDK {

uint32_t CSdkMsgChannel::GetIMPresenceStatus() {
  const CommandText text = FormatPresenceQuery(m_device);
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::GetIMPresenceStatus] strTmp:" << text.data();
  return SdkSendMsgToVelmClientV(text.data(), kMsgToOrdinary);
}

uint32_t CSdkMsgChannel::SetAudioFunc(int32_t command) {
  const CommandText text = FormatAudioCommand(command, m_device);
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SetAudioFunc] strTmp:" << text.data();
  return SdkSendMsgToVelmClientV(text.data(), kMsgToAudio);
}

uint32_t CSdkMsgChannel::SetAudioHotSwitch(uint32_t hotSwitch) {
  const CommandText text = FormatHotSwitchCommand(hotSwitch, m_device);
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SetAudioFunc] strTmp:" << text.data();
  return SdkSendMsgToVelmClientV(text.data(), kMsgToAudio);
}

uint32_t CSdkMsgChannel::SendValueCommand(CommandId id, int32_t value) {
  return SdkSendMsgToVelmClientV(FormatValueCommand(id, value, m_device).data(), kMsgToOrdinary);
}

uint32_t CSdkMsgChannel::SendDeviceSelected() {
  return SdkSendMsgToVelmClientV(FormatDeviceSelected(m_device).data(), kMsgToOrdinary);
}

uint32_t CSdkMsgChannel::SdkSendMsgToVelmClient(const wchar_t* pData) {
  if (!pData) return SDK_ERR_BAD_DATA;
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClient] pData:" << pData;
  if (!g_sdkImplHelper.HasVelmClient()) return SDK_ERR_NO_CLIENT;
  if (!GetVelmClientIPCWindow()) return SDK_ERR_NO_CLIENT_WINDOW;
  const auto utf8 = ToUtf8(pData);
  if (!utf8) return SDK_ERR_BAD_DATA;
  if (!m_bAudioIPC)
    BroadcastToClientWindows(utf8.get());
  else if (m_pIPCClient)
    m_pIPCClient->SendAudioCmdRequest(pData);  // every text goes this way then, whatever its commandId
  return SDK_OK;
}

uint32_t CSdkMsgChannel::SdkSendMsgToVelmClientV(const wchar_t* pData, uint32_t enumMsgTo) {
  const uint32_t errCode = [&]() -> uint32_t {
    if (!pData) {
      SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] pData is NULL!";
      return SDK_ERR_BAD_DATA;
    }
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] pData:" << pData;
    if (!g_sdkImplHelper.HasVelmClient()) {
      SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] HasVelmClient failed!";
      return SDK_ERR_NO_CLIENT;
    }
    if (!m_b3rdSDKIPC && !GetVelmClientIPCWindow()) {
      SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] GetVelmClientIPCWindow failed!";
      return SDK_ERR_NO_CLIENT_WINDOW;
    }
    switch (enumMsgTo) {
      case kMsgToOrdinary:
        if (m_b3rdSDKIPC) {
          if (m_p3rdSDKIPCClient) {
            m_p3rdSDKIPCClient->SendClient3rdSDKCmdRequest(pData);
            return SDK_OK;  // sent, queued or lost: the caller is not told
          }
          SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] m_p3rdSDKIPCClient is NULL!";
        }
        return SdkSendMsgToVelmClientByWindow(pData, enumMsgTo);
      case kMsgToAudio:
        if (m_bAudioIPC) {
          if (m_pIPCClient) {
            m_pIPCClient->SendAudioCmdRequest(pData);
            return SDK_OK;
          }
          SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] m_pIPCClient is NULL!";
        }
        return SdkSendMsgToVelmClientByWindow(pData, enumMsgTo);
      default:
        return SDK_OK;
    }
  }();
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientV] errCode:" << errCode << L", enumMsgTo:"
                    << enumMsgTo;
  return errCode;
}

uint32_t CSdkMsgChannel::SdkSendMsgToVelmClientByWindow(const wchar_t* pData, uint32_t enumMsgTo) {
  uint32_t errCode = SDK_OK;
  if (!pData) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] pData is NULL!";
    errCode = SDK_ERR_BAD_DATA;
  } else if (!GetVelmClientIPCWindow()) {
    SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] GetVelmClientIPCWindow failed!";
    errCode = SDK_ERR_NO_CLIENT_WINDOW;
  } else {
    const auto utf8 = ToUtf8(pData);
    if (!utf8) {
      SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] Unicode2UTF8 failed!";
      errCode = SDK_ERR_BAD_DATA;
    }
    BroadcastToClientWindows(utf8.get());  // also without a text: the client then gets an empty message
  }
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::SdkSendMsgToVelmClientByWindow] errCode:" << errCode
                    << L", enumMsgTo:" << enumMsgTo;
  return errCode;
}

}  // namespace Velm3rdSDK
