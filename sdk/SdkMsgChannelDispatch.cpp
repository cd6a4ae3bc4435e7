// Notifications of the client, from either route to the host application's callbacks.

#include <cerrno>
#include <cstring>

#include "common/client/utility/src/CmmConvert.h"
#include "sdk/ConsoleLog.h"
#include "sdk/SdkMsgChannel.h"
#include "sdk/SdkNotification.h"

namespace Velm3rdSDK {
namespace {

// The records that callbacks receive, one per family, reused for every notification. Deliveries on two
// threads at once share them without a lock.
struct Records {
  SdkNotifyInfo notify;
  SdkPresenceInfo presence;
  SdkAudioInfo audio;
  SdkStatusInfo screenShare;
  SdkStatusInfo confChat;
  SdkStatusInfo camera;
  SdkConfAudioInfo confAudio;
  SdkConfEventInfo confEvent;
  SdkPTEventInfo ptEvent;
  SdkConfDeviceInfo confDevice;
  SdkUIControlInfo uiControl;
};
Records g_records;

static_assert(kDeviceTextChars == SDK_DEVICE_CHARS && kTextChars == SDK_TEXT_CHARS &&
              kCommandChars == SDK_COMMAND_CHARS);
static_assert(kAudioCmdHotSwitch == SDK_AUDIO_CMD_HOT_SWITCH);
static_assert(static_cast<int>(VelmAudio_SelectDevice) == SDK_AUDIO_CMD_SELECT_DEVICE);

template <size_t kChars>
void CopyText(wchar_t (&target)[kChars], const wchar_t (&source)[kChars]) {
  std::memcpy(target, source, sizeof(target));
}

template <typename Record>
void FillHead(Record& record, const SdkNotifyInfo& info) {
  record.success = info.success;
  record.code = info.code;
}

template <typename Record>
void CallWith(void (*callback)(const Record*), const Record& record) {
  if (callback) callback(&record);
}

void FillNotify(const Notification& from, SdkNotifyInfo& info) {
  info.code = from.code;
  info.success = from.code == SDK_OK;
  info.from = from.from;
  info.value = from.value;
  info.commandId = from.commandId;
  CopyText(info.deviceName, from.deviceName);
  CopyText(info.deviceGUID, from.deviceGUID);
  CopyText(info.resultInfo, from.resultInfo);
  CopyText(info.meetingId, from.meetingId);
  info.isInComputerAudio = from.isInComputerAudio;
  info.activeMeetingsCount = from.activeMeetingsCount;
  info.subType = from.subType;
}

void DeliverStatus(const SdkNotifyInfo& info, SdkStatusInfo& record, SdkStatusCallback callback) {
  FillHead(record, info);
  record.status = info.value;
  CopyText(record.resultInfo, info.resultInfo);
  CallWith(callback, record);
}

void DeliverPresence(const SdkNotifyInfo& info, const Notification& from, SdkPresenceCallback callback) {
  SdkPresenceInfo& record = g_records.presence;
  FillHead(record, info);
  record.status = info.value;
  record.statusV2 = from.statusV2;
  CopyText(record.resultInfo, info.resultInfo);
  record.extraReason = from.extraReason;
  CallWith(callback, record);
}

void FillAudio(const SdkNotifyInfo& info, SdkAudioInfo& record) {
  FillHead(record, info);
  record.audioCmd = info.value;
  CopyText(record.deviceName, info.deviceName);
  CopyText(record.deviceGUID, info.deviceGUID);
  CopyText(record.resultInfo, info.resultInfo);
}

void DeliverConfAudio(const SdkNotifyInfo& info, SdkConfAudioCallback callback) {
  SdkConfAudioInfo& record = g_records.confAudio;
  FillHead(record, info);
  record.status = info.value;
  record.isInComputerAudio = info.isInComputerAudio;
  CopyText(record.resultInfo, info.resultInfo);
  CallWith(callback, record);
}

void DeliverConfEvent(const SdkNotifyInfo& info, const Notification& from, SdkConfEventCallback callback) {
  SdkConfEventInfo& record = g_records.confEvent;
  FillHead(record, info);
  record.event = info.value;
  CopyText(record.resultInfo, info.resultInfo);
  CopyText(record.meetingId, info.meetingId);
  record.activeMeetingsCount = info.activeMeetingsCount;
  record.meetingType = from.meetingType;
  CallWith(callback, record);
}

void DeliverPTEvent(const SdkNotifyInfo& info, SdkPTEventCallback callback) {
  SdkPTEventInfo& record = g_records.ptEvent;
  record.success = info.success;
  record.code = info.success ? 1 : 0;  // the success flag, in this record alone: host applications rely on it
  record.event = info.value;
  CopyText(record.resultInfo, info.resultInfo);
  CallWith(callback, record);
}

void DeliverConfDevice(const SdkNotifyInfo& info, SdkConfDeviceCallback callback) {
  SdkConfDeviceInfo& record = g_records.confDevice;
  FillHead(record, info);
  record.status = info.value;
  record.deviceType = info.subType;
  CopyText(record.meetingId, info.meetingId);
  CallWith(callback, record);
}

void DeliverUIControl(const SdkNotifyInfo& info, SdkUIControlCallback callback) {
  SdkUIControlInfo& record = g_records.uiControl;
  FillHead(record, info);
  record.controlType = info.subType;
  record.status = info.value;
  CallWith(callback, record);
}

}  // namespace

int CSdkMsgChannel::HandleVelmClientMsgNotify(const char* pMsgA) {
  constexpr int kDropped = 0;
  constexpr int kDelivered = 1;

  if (!pMsgA) return kDropped;
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::HandleVelmClientMsgNotify] pMsgA:" << pMsgA;
  NotificationReader reader;
  const int32_t commandId = reader.ParseCommandId(pMsgA);
  if (commandId == 0) return kDropped;
  if ((m_nFeatures & (int64_t{1} << (commandId - 1))) == 0) return kDropped;

  Notification notification;
  reader.Read(notification);
  if (notification.resultTooLong)
    SDK_LOG(kLogInfo)
        << L"[CSdkMsgChannel::HandleVelmClientMsgNotify] strcpy_s resultRawInfo failed, nErrRet:" << ERANGE;
  const Cmm::A2BT<65001, char, wchar_t> rawText(pMsgA);
  SdkNotifyInfo& info = g_records.notify;
  FillNotify(notification, info);

  // The raw sink comes before any device filter: it sees all that passed the feature gate.
  if (m_pRawSink) m_pRawSink->OnRawMessage(rawText.c_str());
  if (m_callbacks.general) {
    if (IsNeedFilterDevice(info.deviceName, info.deviceGUID, info.value)) return kDropped;
    m_callbacks.general(&info, rawText.c_str());
  }

  switch (commandId) {
    case kCommandIMPresence:
      DeliverPresence(info, notification, m_callbacks.presence);
      break;
    case kCommandAudio:
      FillAudio(info, g_records.audio);
      // Once more, since without a general callback nothing has filtered yet.
      if (IsNeedFilterDevice(info.deviceName, info.deviceGUID, info.value)) return kDropped;
      CallWith(m_callbacks.audio, g_records.audio);
      break;
    case kCommandScreenShare:
      DeliverStatus(info, g_records.screenShare, m_callbacks.screenShare);
      break;
    case kCommandConfChat:
      DeliverStatus(info, g_records.confChat, m_callbacks.confChat);
      break;
    case kCommandCamera:
      DeliverStatus(info, g_records.camera, m_callbacks.camera);
      break;
    case kCommandConfAudio:
      DeliverConfAudio(info, m_callbacks.confAudio);
      break;
    case kCommandConfEvent:
      DeliverConfEvent(info, notification, m_callbacks.confEvent);
      break;
    case kCommandPTEvent:
      DeliverPTEvent(info, m_callbacks.ptEvent);
      break;
    case kCommandConfDevice:
      DeliverConfDevice(info, m_callbacks.confDevice);
      break;
    case kCommandUIControl:
      DeliverUIControl(info, m_callbacks.uiControl);
      break;
    default:
      break;  // ParseCommandId gives no other
  }
  return kDelivered;
}

void CSdkMsgChannel::HandleEmptyNotification() {
  if (m_pRawSink) m_pRawSink->OnRawMessage(nullptr);
  if (m_callbacks.general) m_callbacks.general(nullptr, nullptr);
}

void CSdkMsgChannel::OnServerConnected(uint32_t channelId) {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::OnServerConnected] uChannelID:" << channelId;
}

void CSdkMsgChannel::OnServerDisconnected(uint32_t channelId) {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::OnServerDisconnected] uChannelID:" << channelId;
}

void CSdkMsgChannel::OnClientExitConfirmed(uint32_t channelId, int) {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::OnClientExitConfirmed] uChannelID:" << channelId;
}

void CSdkMsgChannel::OnAudioCmdNotify(uint32_t, const Cmm::CStringT<wchar_t>& text) {
  if (text.IsEmpty()) return;
  HandleVelmClientMsgNotify(Cmm::A2BT<65001, wchar_t, char>(text.c_str()).c_str());
}

void CSdkMsgChannel::OnClient3rdSDKServerConnected(uint32_t channelId) {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::OnClient3rdSDKServerConnected] uChannelID:" << channelId;
}

void CSdkMsgChannel::OnClient3rdSDKServerDisconnected(uint32_t channelId) {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::OnClient3rdSDKServerDisconnected] uChannelID:" << channelId;
}

void CSdkMsgChannel::OnClient3rdSDKClientExitConfirmed(uint32_t channelId, int) {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::OnClient3rdSDKClientExitConfirmed] uChannelID:" << channelId;
}

void CSdkMsgChannel::OnClient3rdSDKServerCmdNotify(uint32_t channelId, const Cmm::CStringT<wchar_t>& text) {
  SDK_LOG(kLogInfo) << L"[CSdkMsgChannel::OnClient3rdSDKServerCmdNotify] uChannelID:" << channelId
                    << L", strAudioCmdNotify:" << text;
  if (text.IsEmpty()) return;
  HandleVelmClientMsgNotify(Cmm::A2BT<65001, wchar_t, char>(text.c_str()).c_str());
}

}  // namespace Velm3rdSDK
