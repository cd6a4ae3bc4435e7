#include "sdk/SdkCommand.h"

#include <cstdarg>
#include <cstdio>

namespace Velm3rdSDK {
namespace {

constexpr const wchar_t* kVersion = L"1.0.0";

CommandText Format(const wchar_t* format, ...) {
  CommandText text{};
  va_list arguments;
  va_start(arguments, format);
  // The underscore form of the C runtime: in the standard one of this toolchain %s means narrow text.
  _vsnwprintf_s(text.data(), text.size(), _TRUNCATE, format, arguments);
  va_end(arguments);
  return text;
}

// The name under which a command's value stands in its "data".
const wchar_t* ValueKey(CommandId id) {
  switch (id) {
    case kCommandScreenShare:
      return L"ScreenShareCmd";
    case kCommandConfChat:
      return L"ChatCmd";
    case kCommandCamera:
      return L"CameraCmd";
    case kCommandConfAudio:
      return L"ConfAudioCmd";
    case kCommandConfEvent:
      return L"ConfEventCmd";
    case kCommandConfDevice:
      return L"ConfDeviceCmd";
    case kCommandUIControl:
      return L"UIControlStatusCmd";
    default:
      return L"";  // the other commands have a form of their own
  }
}

}  // namespace

CommandText FormatPresenceQuery(const DeviceIdentity& device) {
  return Format(LR"({"commandId":1,"from":1,"version":"%s","data":{},"deviceName":"%s"})", kVersion,
                device.name);
}

CommandText FormatAudioCommand(int32_t command, const DeviceIdentity& device) {
  return Format(
      LR"({"commandId":2,"from":1,"version":"%s","data":[{"AudioCmd":%d}],"deviceName":"%s",)"
      LR"("usbVid":"%s","usbPid":"%s","deviceGUID":"%s"})",
      kVersion, command, device.name, device.usbVid, device.usbPid, device.guid);
}

CommandText FormatHotSwitchCommand(uint32_t hotSwitch, const DeviceIdentity& device) {
  return Format(
      LR"({"commandId":2,"from":1,"version":"%s","data":[{"AudioCmd":%d}],"deviceName":"%s",)"
      LR"("usbVid":"%s","usbPid":"%s","deviceGUID":"%s","HotSwitch":%d})",
      kVersion, kAudioCmdHotSwitch, device.name, device.usbVid, device.usbPid, device.guid, hotSwitch);
}

CommandText FormatValueCommand(CommandId id, int32_t value, const DeviceIdentity& device) {
  return Format(LR"({"commandId":%d,"from":1,"version":"%s","data":[{"%s":%d}],"deviceName":"%s"})",
                static_cast<int>(id), kVersion, ValueKey(id), value, device.name);
}

CommandText FormatDeviceSelected(const DeviceIdentity& device) {
  return Format(LR"({"commandId":11,"from":1,"version":"%s","data":[{"DeviceName":"%s"}]})", kVersion,
                device.name);
}

}  // namespace Velm3rdSDK
