#include "sdk/SdkNotification.h"

#include <json/reader.h>
#include <json/value.h>

#include <cstdlib>
#include <cstring>
#include <exception>

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
bool ReadInt(const Json::Value& object, const char* key, int32_t& out) {
  const Json::Value& value = object[key];
  if (!value.isInt()) return false;
  out = value.asInt();
  return true;
}

const char* ReadText(const Json::Value& object, const char* key) {
  const Json::Value& value = object[key];
  return value.isString() ? value.asCString() : nullptr;
}

// Fills an array from a text of fewer bytes than it has characters: UTF-8 never has fewer bytes than
// UTF-16 has units, so it fits with its terminator.
template <size_t kChars>
void ReadWideText(const Json::Value& object, const char* key, wchar_t (&out)[kChars]) {
  const char* text = ReadText(object, key);
  if (!text) return;
  const size_t length = std::strlen(text);
  if (length >= kChars) return;
  out[cmm_str_convert(kUtf8, out, kChars - 1, text, length)] = L'\0';
}

void ReadResult(const Json::Value& root, Notification& out) {
  const char* text = ReadText(root, "result");
  if (!text) return;
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
  const FamilyKeys& keys = kFamilyKeys[out.commandId];
  ReadInt(data, keys.value, out.value);
  if (keys.subType) ReadInt(data, keys.subType, out.subType);
  if (out.commandId == kCommandIMPresence) {
    ReadInt(data, "PresenceStatusV2", out.statusV2);
    ReadInt(data, "extraReason", out.extraReason);
  } else if (out.commandId == kCommandConfAudio) {
    int32_t inComputerAudio = 0;
    ReadInt(data, "IsInComputerAudio", inComputerAudio);
    out.isInComputerAudio = inComputerAudio >= 1;
  }
}

}  // namespace

NotificationReader::NotificationReader() : m_root(std::make_unique<Json::Value>()) {}

NotificationReader::~NotificationReader() = default;

// Json::Reader is deprecated in favour of a parser that accepts another set of extensions. What clients
// send is what this one accepts.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
int32_t NotificationReader::ParseCommandId(const char* utf8) {
  m_commandId = 0;
  try {
    const bool collectComments = false;
    if (!Json::Reader().parse(utf8, utf8 + std::strlen(utf8), *m_root, collectComments)) return 0;
  } catch (const std::exception&) {
    return 0;  // nested deeper than jsoncpp's limit of 1000
  }
  int32_t commandId = 0;
  if (!m_root->isObject() || !ReadInt(*m_root, "commandId", commandId)) return 0;
  if (commandId >= 1 && commandId <= kLastFamily) m_commandId = commandId;
  return m_commandId;
}
#pragma GCC diagnostic pop

void NotificationReader::Read(Notification& out) const {
  const Json::Value& root = *m_root;
  out.commandId = m_commandId;
  ReadInt(root, "from", out.from);
  const Json::Value& data = root["data"];
  if (data.isArray() && !data.empty() && data[0U].isObject()) ReadFamily(data[0U], out);
  ReadWideText(root, "deviceName", out.deviceName);
  ReadWideText(root, "deviceGUID", out.deviceGUID);
  ReadWideText(root, "meetingId", out.meetingId);
  ReadInt(root, "activeMeetingsCount", out.activeMeetingsCount);
  ReadInt(root, "meetingType", out.meetingType);
  ReadResult(root, out);
}

}  // namespace Velm3rdSDK
