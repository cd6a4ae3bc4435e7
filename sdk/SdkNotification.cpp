#include "sdk/SdkNotification.h"

#include <json/reader.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <string_view>

#include "common/client/utility/src/CmmConvert.h"

namespace Velm3rdSDK {
namespace {

constexpr int kUtf8 = 65001;

// The keys of one family inside the first element of "data".
struct FamilyKeys {
  const char* value;
  const char* subType;
};

constexpr FamilyKeys kFamilyKeys[] = {
    {nullptr, nullptr},
    {"PresenceStatus", nullptr},
    {"AudioCmd", nullptr},
    {"ScreenShareStatus", nullptr},
    {"ConfChatStatus", nullptr},
    {"CameraStatus", nullptr},
    {"ConfAudioStatus", nullptr},
    {"ConfEvent", nullptr},
    {"PTEvent", nullptr},
    {"ConfDeviceStatus", "ConfDeviceType"},
    {"UIControlStatus", "UIControlType"},
};
constexpr int32_t kLastFamily = kCommandUIControl;

// An integer is what jsoncpp's isInt accepts: 32 bits, or a real number without fraction in that range.
bool ReadInt(const Json::Value& value, int32_t& out) {
  if (!value.isInt()) return false;
  out = value.asInt();
  return true;
}

// Fills an array from a text of fewer bytes than it has characters: UTF-8 never has fewer bytes than
// UTF-16 has units, so it fits with its terminator.
template <size_t kChars>
void ReadWideText(const Json::Value& value, wchar_t (&out)[kChars]) {
  if (!value.isString()) return;
  const char* text = value.asCString();
  const size_t length = std::strlen(text);
  if (length == 0 || length >= kChars) return;
  out[cmm_str_convert(kUtf8, out, kChars - 1, text, length)] = L'\0';
}

void ReadResult(const Json::Value& value, Notification& out) {
  if (!value.isString()) return;
  const char* text = value.asCString();
  if (std::strlen(text) > kMaxResultBytes) {
    out.resultTooLong = true;
    return;
  }
  const char* colon = std::strchr(text, ':');
  if (!colon) return;
  out.code = static_cast<int32_t>(std::strtol(text, nullptr, 10));
  wchar_t info[kMaxResultBytes + 1];
  const size_t length = cmm_str_convert(kUtf8, info, kMaxResultBytes, colon + 1, std::strlen(colon + 1));
  size_t kept = length < kTextChars ? length : kTextChars - 1;
  if (kept < length && kept > 0 && (info[kept - 1] & 0xFC00) == 0xD800) --kept;
  std::memcpy(out.resultInfo, info, kept * sizeof(wchar_t));
  out.resultInfo[kept] = L'\0';
}

void ReadFamily(const Json::Value& data, Notification& out) {
  if (!data.isArray() || data.empty() || !data[0U].isObject()) return;
  const Json::Value& family = data[0U];
  const FamilyKeys& keys = kFamilyKeys[out.commandId];
  ReadInt(family[keys.value], out.value);
  if (keys.subType) ReadInt(family[keys.subType], out.subType);
  if (out.commandId == kCommandIMPresence) {
    ReadInt(family["PresenceStatusV2"], out.statusV2);
    ReadInt(family["extraReason"], out.extraReason);
  } else if (out.commandId == kCommandConfAudio) {
    int32_t inComputerAudio = 0;
    ReadInt(family["IsInComputerAudio"], inComputerAudio);
    out.isInComputerAudio = inComputerAudio >= 1;
  }
}

}  // namespace

// Json::Reader is deprecated in favour of a parser that accepts another set of extensions. What clients
// send is what this one accepts.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
int32_t NotificationReader::ParseCommandId(const char* utf8) {
  m_commandId = 0;
  try {
    const bool collectComments = false;
    if (!Json::Reader().parse(utf8, utf8 + std::strlen(utf8), m_root, collectComments)) return 0;
  } catch (const std::exception&) {
    return 0;  // nested deeper than jsoncpp's limit of 1000
  }
  int32_t commandId = 0;
  if (!m_root.isObject() || !ReadInt(m_root["commandId"], commandId)) return 0;
  if (commandId >= 1 && commandId <= kLastFamily) m_commandId = commandId;
  return m_commandId;
}
#pragma GCC diagnostic pop

// One walk over the members, which costs less than looking each key up.
void NotificationReader::Read(Notification& out) const {
  out.commandId = m_commandId;
  for (auto member = m_root.begin(); member != m_root.end(); ++member) {
    const char* end = nullptr;
    const char* begin = member.memberName(&end);
    const std::string_view key(begin, static_cast<size_t>(end - begin));
    if (key == "from")
      ReadInt(*member, out.from);
    else if (key == "data")
      ReadFamily(*member, out);
    else if (key == "deviceName")
      ReadWideText(*member, out.deviceName);
    else if (key == "deviceGUID")
      ReadWideText(*member, out.deviceGUID);
    else if (key == "meetingId")
      ReadWideText(*member, out.meetingId);
    else if (key == "activeMeetingsCount")
      ReadInt(*member, out.activeMeetingsCount);
    else if (key == "meetingType")
      ReadInt(*member, out.meetingType);
    else if (key == "result")
      ReadResult(*member, out);
  }
}

}  // namespace Velm3rdSDK
