#pragma once

// This program's callbacks and raw sink: all of them give what arrives to one handler.

#include <functional>

#include "sdk/VelmSdk.h"
#include "tools/host_console/Records.h"

namespace velm_host {

// Takes each record on the thread on which it arrives, one at a time. Once null is set, the handler set
// before runs no more.
void SetRecordHandler(std::function<void(const Record&)> handler);

ISdkRawSink* RawSink();

void OnNotify(const SdkNotifyInfo* info, const wchar_t* rawJson);
void OnPresence(const SdkPresenceInfo* info);
void OnAudio(const SdkAudioInfo* info);
void OnScreenShare(const SdkStatusInfo* info);
void OnConfChat(const SdkStatusInfo* info);
void OnCamera(const SdkStatusInfo* info);
void OnConfAudio(const SdkConfAudioInfo* info);
void OnConfEvent(const SdkConfEventInfo* info);
void OnPTEvent(const SdkPTEventInfo* info);
void OnConfDevice(const SdkConfDeviceInfo* info);
void OnUIControl(const SdkUIControlInfo* info);

}  // namespace velm_host
