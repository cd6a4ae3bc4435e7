#include "tools/host_console/Callbacks.h"

#include <mutex>

namespace velm_host {
namespace {

std::mutex g_handlerLock;
std::function<void(const Record&)> g_handler;  // guarded by g_handlerLock

void Take(const Record& record) {
  const std::lock_guard lock(g_handlerLock);
  if (g_handler) g_handler(record);
}

struct Sink final : ISdkRawSink {
  void OnRawMessage(const wchar_t* rawJson) override { Take(DescribeRaw(rawJson)); }
};

}  // namespace

void SetRecordHandler(std::function<void(const Record&)> handler) {
  const std::lock_guard lock(g_handlerLock);
  g_handler = std::move(handler);
}

ISdkRawSink* RawSink() {
  static Sink sink;
  return &sink;
}

void OnNotify(const SdkNotifyInfo* info, const wchar_t* rawJson) {
  Take(Describe(info, rawJson));
}

void OnPresence(const SdkPresenceInfo* info) {
  Take(Describe(*info));
}

void OnAudio(const SdkAudioInfo* info) {
  Take(Describe(*info));
}

void OnScreenShare(const SdkStatusInfo* info) {
  Take(Describe(*info, "SetScreenShareCallBack"));
}

void OnConfChat(const SdkStatusInfo* info) {
  Take(Describe(*info, "SetConfChatCallBack"));
}

void OnCamera(const SdkStatusInfo* info) {
  Take(Describe(*info, "SetCameraCallBack"));
}

void OnConfAudio(const SdkConfAudioInfo* info) {
  Take(Describe(*info));
}

void OnConfEvent(const SdkConfEventInfo* info) {
  Take(Describe(*info));
}

void OnPTEvent(const SdkPTEventInfo* info) {
  Take(Describe(*info));
}

void OnConfDevice(const SdkConfDeviceInfo* info) {
  Take(Describe(*info));
}

void OnUIControl(const SdkUIControlInfo* info) {
  Take(Describe(*info));
}

}  // namespace velm_host
