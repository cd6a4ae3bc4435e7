// The exported functions: each writes its entry line, looks at the singleton pointer and forwards.

#include "sdk/VelmSdk.h"

#include "sdk/ConsoleLog.h"
#include "sdk/SdkMsgChannel.h"

using Velm3rdSDK::CommandId;
using Velm3rdSDK::CSdkMsgChannel;
using Velm3rdSDK::g_pSdkMsgChannel;
using Velm3rdSDK::SdkCallbacks;

namespace {

CSdkMsgChannel& EstablishChannel() {
  g_pSdkMsgChannel = &CSdkMsgChannel::Instance();
  return *g_pSdkMsgChannel;
}

template <typename Callback>
uint32_t SetCallback(const wchar_t* entryLine, Callback SdkCallbacks::*slot, Callback callback) {
  SDK_LOG(Velm3rdSDK::kLogInfo) << entryLine;
  CSdkMsgChannel& channel = EstablishChannel();
  channel.Init();
  channel.Callbacks().*slot = callback;
  return SDK_OK;
}

// Runs `send` on the channel, or says `nullLine` and returns SDK_ERR_NO_CHANNEL.
template <typename Send>
uint32_t WithChannel(const wchar_t* nullLine, Send send) {
  if (g_pSdkMsgChannel) return send(*g_pSdkMsgChannel);
  SDK_LOG(Velm3rdSDK::kLogInfo) << nullLine;
  return SDK_ERR_NO_CHANNEL;
}

uint32_t SendValue(const wchar_t* entryLine, const wchar_t* nullLine, CommandId id, int32_t cmd) {
  SDK_LOG(Velm3rdSDK::kLogInfo) << entryLine << cmd;
  return WithChannel(nullLine, [&](CSdkMsgChannel& channel) { return channel.SendValueCommand(id, cmd); });
}

uint32_t SelectDevice(const wchar_t* nullLine, const wchar_t* deviceName, const wchar_t* deviceGUID,
                      const wchar_t* usbVid, const wchar_t* usbPid, uint32_t hotSwitch) {
  if (!g_pSdkMsgChannel) {
    SDK_LOG(Velm3rdSDK::kLogInfo) << nullLine;
    return 0;
  }
  g_pSdkMsgChannel->SetAudioDevice(deviceName, usbVid, usbPid, deviceGUID);
  const bool told = g_pSdkMsgChannel->SetAudioHotSwitch(hotSwitch) == SDK_OK;
  g_pSdkMsgChannel->SendDeviceSelected();
  return told ? 1 : 0;
}

}  // namespace

extern "C" {

// ---- Setup and teardown

uint32_t TryRunningUnderServiceMode() {
  SDK_LOG(Velm3rdSDK::kLogInfo) << L"[TryRunningUnderServiceMode]";
  return EstablishChannel().Client3rdSDKRequestRunUnderServiceMode();
}

uint32_t GetVelmClientVersion(uint16_t* out) {
  SDK_LOG(Velm3rdSDK::kLogInfo) << L"[GetVelmClientVersion]";
  return EstablishChannel().GetVelmClientVersion(out);
}

uint32_t GetSDKAvailableFeatures() {
  return EstablishChannel().GetAvailableFeatures();
}

uint32_t RegisterMsg(int64_t features) {
  SDK_LOG(Velm3rdSDK::kLogInfo) << L"[RegisterMsg] features:" << features;
  return g_pSdkMsgChannel ? g_pSdkMsgChannel->RegisterFeature(features) : 0;
}

uint32_t InitVelm3rdSdkChannel(ISdkRawSink* sink) {
  SDK_LOG(Velm3rdSDK::kLogInfo) << L"[InitVelm3rdSdkChannel]";
  if (g_pSdkMsgChannel) {
    g_pSdkMsgChannel->SetRawSink(sink);  // and nothing else: the next callback setter starts the channel
    return SDK_OK;
  }
  CSdkMsgChannel& channel = EstablishChannel();
  channel.SetRawSink(sink);
  channel.Init();
  return SDK_OK;
}

uint32_t DestroySdkChannel() {
  SDK_LOG(Velm3rdSDK::kLogInfo) << L"[DestroySdkChannel]";
  if (!g_pSdkMsgChannel) return SDK_ERR_NO_CHANNEL;
  g_pSdkMsgChannel->Exit();
  g_pSdkMsgChannel = nullptr;
  return SDK_OK;
}

// ---- Callback registration

uint32_t SetCallBackFunc(SdkNotifyCallback callback) {
  return SetCallback(L"[SetCallBackFunc]", &SdkCallbacks::general, callback);
}

uint32_t SetIMPresenceCallBack(SdkPresenceCallback callback) {
  return SetCallback(L"[SetIMPresenceCallBack]", &SdkCallbacks::presence, callback);
}

uint32_t SetAudioCallBack(SdkAudioCallback callback) {
  return SetCallback(L"[SetAudioCallBack]", &SdkCallbacks::audio, callback);
}

uint32_t SetScreenShareCallBack(SdkStatusCallback callback) {
  return SetCallback(L"[SetScreenShareCallBack]", &SdkCallbacks::screenShare, callback);
}

// The next two log the line of the screen share setter: readers of the log know them by it.
uint32_t SetConfChatCallBack(SdkStatusCallback callback) {
  return SetCallback(L"[SetScreenShareCallBack]", &SdkCallbacks::confChat, callback);
}

uint32_t SetCameraCallBack(SdkStatusCallback callback) {
  return SetCallback(L"[SetScreenShareCallBack]", &SdkCallbacks::camera, callback);
}

uint32_t SetConfAudioCallBack(SdkConfAudioCallback callback) {
  return SetCallback(L"[SetConfAudioCallBack]", &SdkCallbacks::confAudio, callback);
}

uint32_t SetConfEventCallBack(SdkConfEventCallback callback) {
  return SetCallback(L"[SetConfEventCallBack]", &SdkCallbacks::confEvent, callback);
}

uint32_t SetPTEventCallBack(SdkPTEventCallback callback) {
  return SetCallback(L"[SetPTEventCallBack]", &SdkCallbacks::ptEvent, callback);
}

uint32_t SetConfDeviceCallBack(SdkConfDeviceCallback callback) {
  return SetCallback(L"[SetConfDeviceCallBack]", &SdkCallbacks::confDevice, callback);
}

uint32_t SetUIControlStatusCallBack(SdkUIControlCallback callback) {
  return SetCallback(L"[SetUIControlStatusCallBack]", &SdkCallbacks::uiControl, callback);
}

// ---- Commands

uint32_t GetIMPresenceStatus() {
  return g_pSdkMsgChannel ? g_pSdkMsgChannel->GetIMPresenceStatus()
                          : static_cast<uint32_t>(SDK_ERR_NO_CHANNEL);
}

uint32_t SetAudioCmd(int32_t cmd) {
  SDK_LOG(Velm3rdSDK::kLogInfo) << L"[SetAudioCmd] cmd:" << cmd;
  return WithChannel(L"[SetAudioCmd] SDK Msg Channel is NULL!",
                     [&](CSdkMsgChannel& channel) { return channel.SetAudioFunc(cmd); });
}

uint32_t SetScreenShareCmd(int32_t cmd) {
  return SendValue(L"[SetScreenShareCmd] cmd:", L"[SetScreenShareCmd] SDK Msg Channel is NULL!",
                   Velm3rdSDK::kCommandScreenShare, cmd);
}

uint32_t SetConfChatCmd(int32_t cmd) {
  return SendValue(L"[SetConfChatCmd] cmd:", L"[SetChatCmd] SDK Msg Channel is NULL!",
                   Velm3rdSDK::kCommandConfChat, cmd);
}

uint32_t SetCameraCmd(int32_t cmd) {
  return SendValue(L"[SetCameraCmd] cmd:", L"[SetCameraCmd] SDK Msg Channel is NULL!",
                   Velm3rdSDK::kCommandCamera, cmd);
}

uint32_t SetConfAudioCmd(int32_t cmd) {
  return SendValue(L"[SetConfAudioCmd] cmd:", L"[SetConfAudioCmd] SDK Msg Channel is NULL!",
                   Velm3rdSDK::kCommandConfAudio, cmd);
}

uint32_t SetConfEventCmd(int32_t cmd) {
  return SendValue(L"[SetConfEventCmd] cmd:", L"[SetConfEventCmd] SDK Msg Channel is NULL!",
                   Velm3rdSDK::kCommandConfEvent, cmd);
}

uint32_t SetConfDeviceCmd(int32_t cmd) {
  return SendValue(L"[SetConfDeviceCmd] cmd:", L"[SetConfDeviceCmd] SDK Msg Channel is NULL!",
                   Velm3rdSDK::kCommandConfDevice, cmd);
}

uint32_t GetUIControlStatusCmd(int32_t cmd) {
  return SendValue(L"[GetUIControlStatusCmd] cmd:", L"[GetUIControlStatusCmd] SDK Msg Channel is NULL!",
                   Velm3rdSDK::kCommandUIControl, cmd);
}

uint32_t SendMsgToVelmClient(const wchar_t* json) {
  SDK_LOG(Velm3rdSDK::kLogInfo) << L"[SendMsgToVelmClient]";
  return g_pSdkMsgChannel ? g_pSdkMsgChannel->SdkSendMsgToVelmClient(json)
                          : static_cast<uint32_t>(SDK_ERR_NO_CHANNEL);
}

// ---- Audio device

uint32_t SetAudioDevice(const wchar_t* deviceName, const wchar_t* usbVid, const wchar_t* usbPid,
                        uint32_t hotSwitch) {
  return SelectDevice(L"[SetAudioDevice] SDK Msg Channel is NULL!", deviceName, nullptr, usbVid, usbPid,
                      hotSwitch);
}

uint32_t SetAudioDeviceV2(const wchar_t* deviceName, const wchar_t* deviceGUID, const wchar_t* usbVid,
                          const wchar_t* usbPid, uint32_t hotSwitch) {
  return SelectDevice(L"[SetAudioDeviceV2] SDK Msg Channel is NULL!", deviceName, deviceGUID, usbVid, usbPid,
                      hotSwitch);
}

uint32_t SetAudioDeviceWCHAR(const wchar_t* deviceName, const wchar_t* deviceGUID, const wchar_t* usbVid,
                             const wchar_t* usbPid, uint32_t hotSwitch) {
  return SelectDevice(L"[SetAudioDeviceWCHAR] SDK Msg Channel is NULL!", deviceName, deviceGUID, usbVid,
                      usbPid, hotSwitch);
}

}  // extern "C"
