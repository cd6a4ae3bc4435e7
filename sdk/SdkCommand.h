#pragma once

// The texts of the commands to the client: one line of JSON each. Nothing is escaped, so a quotation mark
// in a device text breaks the JSON; the client's side is built for that, and so it stays.

#include <array>
#include <cstdint>

namespace Velm3rdSDK {

inline constexpr size_t kDeviceTextChars = 100;  // terminator included
inline constexpr size_t kCommandChars = 512;     // terminator included; a longer text is cut

enum CommandId : int32_t {
  kCommandIMPresence = 1,
  kCommandAudio = 2,
  kCommandScreenShare = 3,
  kCommandConfChat = 4,
  kCommandCamera = 5,
  kCommandConfAudio = 6,
  kCommandConfEvent = 7,
  kCommandPTEvent = 8,  // comes in only
  kCommandConfDevice = 9,
  kCommandUIControl = 10,
  kCommandDeviceSelected = 11,  // goes out only
};

inline constexpr int32_t kAudioCmdHotSwitch = 99;
inline constexpr int32_t VelmAudio_SelectDevice = 102;

// The audio device that the host application stands for; empty texts until one is selected.
struct DeviceIdentity {
  wchar_t name[kDeviceTextChars] = {};
  wchar_t guid[kDeviceTextChars] = {};
  wchar_t usbVid[kDeviceTextChars] = {};
  wchar_t usbPid[kDeviceTextChars] = {};
};

// A command's text, NUL-terminated and zero behind that.
using CommandText = std::array<wchar_t, kCommandChars>;

CommandText FormatPresenceQuery(const DeviceIdentity& device);
CommandText FormatAudioCommand(int32_t command, const DeviceIdentity& device);
CommandText FormatHotSwitchCommand(uint32_t hotSwitch, const DeviceIdentity& device);
// One of the commands that carry a single value: 3 to 7, 9 and 10.
CommandText FormatValueCommand(CommandId id, int32_t value, const DeviceIdentity& device);
CommandText FormatDeviceSelected(const DeviceIdentity& device);

}  // namespace Velm3rdSDK
