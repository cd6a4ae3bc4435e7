#include "tools/client_simulator/Notification.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include "tools/common/JsonLine.h"
#include "tools/common/UsageError.h"
#include "tools/common/Words.h"

namespace velm_sim {
namespace {

using velm_tools::JsonLine;
using velm_tools::UsageError;

enum class Place { kTop, kData };
enum class Type { kInteger, kText };

// How a key of the short form stands in the JSON.
struct Key {
  std::string_view shortForm;
  std::string_view name;
  Type type = Type::kInteger;
  Place place = Place::kTop;
};

struct Family {
  std::string_view name;
  std::string_view valueKey;
  std::vector<Key> keys;
};

// Command id n at index n - 1.
const std::vector<Family>& Families() {
  static const std::vector<Family> families = {
      {"presence",
       "PresenceStatus",
       {{"v2", "PresenceStatusV2", Type::kInteger, Place::kData},
        {"reason", "extraReason", Type::kInteger, Place::kData}}},
      {"audio", "AudioCmd", {}},
      {"share", "ScreenShareStatus", {}},
      {"chat", "ConfChatStatus", {}},
      {"camera", "CameraStatus", {}},
      {"confaudio", "ConfAudioStatus", {{"computer", "IsInComputerAudio", Type::kInteger, Place::kData}}},
      {"event", "ConfEvent", {{"type", "meetingType"}}},
      {"pt", "PTEvent", {}},
      {"device", "ConfDeviceStatus", {{"type", "ConfDeviceType", Type::kInteger, Place::kData}}},
      {"ui", "UIControlStatus", {{"type", "UIControlType", Type::kInteger, Place::kData}}},
  };
  return families;
}

const Key kCommonKeys[] = {
    {"from", "from"},
    {"device", "deviceName", Type::kText},
    {"guid", "deviceGUID", Type::kText},
    {"meeting", "meetingId", Type::kText},
    {"count", "activeMeetingsCount"},
    {"result", "result", Type::kText},
};

const Key* FindKey(const Family& family, std::string_view shortForm) {
  const auto matches = [&](const Key& key) { return key.shortForm == shortForm; };
  if (const auto own = std::ranges::find_if(family.keys, matches); own != family.keys.end()) return &*own;
  const auto common = std::ranges::find_if(kCommonKeys, matches);
  return common == std::end(kCommonKeys) ? nullptr : common;
}

std::string KeysOf(const Family& family) {
  std::string list;
  for (const Key& key : family.keys)
    list += std::string(key.shortForm) + "= ";
  for (const Key& key : kCommonKeys)
    list += std::string(key.shortForm) + "= ";
  list.pop_back();
  return list;
}

Json::Value ReadValue(const Key& key, const std::string& text) {
  if (key.type == Type::kText) return text;
  return velm_tools::ParseNumber<int32_t>(text, key.shortForm);
}

}  // namespace

std::vector<std::string_view> NotificationNames() {
  std::vector<std::string_view> names;
  for (const Family& family : Families())
    names.push_back(family.name);
  return names;
}

std::string NotificationText(const std::vector<std::string>& words) {
  const auto family = std::ranges::find(Families(), words.front(), &Family::name);
  if (family == Families().end()) throw UsageError("'" + words.front() + "' is no notification");
  const std::string name(family->name);
  if (words.size() < 2)
    throw UsageError("'" + name + "' needs a number: the value of " + std::string(family->valueKey));

  JsonLine data;
  data.Add(family->valueKey, velm_tools::ParseNumber<int32_t>(words[1], family->valueKey));
  std::vector<std::pair<const Key*, Json::Value>> others;
  std::vector<const Key*> given;
  for (size_t i = 2; i < words.size(); ++i) {
    const size_t equals = words[i].find('=');
    const Key* key = equals == std::string::npos ? nullptr : FindKey(*family, words[i].substr(0, equals));
    if (!key)
      throw UsageError("'" + name + "' does not take '" + words[i] + "'; it takes " + KeysOf(*family));
    if (std::ranges::find(given, key) != given.end())
      throw UsageError("'" + std::string(key->shortForm) + "=' is given twice");
    given.push_back(key);
    const Json::Value value = ReadValue(*key, words[i].substr(equals + 1));
    if (key->place == Place::kData)
      data.Add(key->name, value);
    else
      others.emplace_back(key, value);
  }

  JsonLine notification;
  notification.Add("commandId", static_cast<int>(family - Families().begin()) + 1);
  notification.AddArray("data", {data});
  for (const auto& [key, value] : others)
    notification.Add(key->name, value);
  return notification.Text();
}

}  // namespace velm_sim
