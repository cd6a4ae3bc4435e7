#include "common/client/utility/src/CmmTimeZoneRules.h"

#include <iterator>

#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm::internal {

namespace {

constexpr DWORD kNameUnits = 64;    // of a key's name, with its NUL
constexpr DWORD kValueBytes = 128;  // of a value, with its NUL
constexpr wchar_t kStandardName[] = L"Std";

struct Rewriting {
  std::wstring_view key;
  std::wstring_view result;
};

constexpr Rewriting kRewritings[] = {
    {L"Russia TZ 1 Standard Time", L"Kaliningrad Standard Time"},
    {L"Russia TZ 2 Standard Time", L"Russian Standard Time"},
    {L"Russia TZ 4 Standard Time", L"Ekaterinburg Standard Time"},
    {L"Russia TZ 6 Standard Time", L"North Asia Standard Time"},
    {L"Russia TZ 7 Standard Time", L"North Asia East Standard Time"},
    {L"Russia TZ 8 Standard Time", L"Yakutsk Standard Time"},
    {L"Russia TZ 9 Standard Time", L"Vladivostok Standard Time"},
    {L"Coordinated Universal Time", L"UTC"},
    {L"Cabo Verde Standard Time", L"Cape Verde Standard Time"},
    {L"Jerusalem Standard Time", L"Israel Standard Time"},
    {L"Novosibirsk Standard Time", L"N. Central Asia Standard Time"},
    {L"Malay Peninsula Standard Time", L"Singapore Standard Time"},
};

UniqueRegistryKey OpenKey(HKEY parent, const wchar_t* name) {
  UniqueRegistryKey opened;
  RegOpenKeyExW(parent, name, 0, KEY_READ, opened.put());
  return opened;
}

bool HasStandardName(HKEY zones, const wchar_t* zone, const std::wstring& standardName) {
  const UniqueRegistryKey opened = OpenKey(zones, zone);
  if (!opened) return false;
  wchar_t value[kValueBytes / sizeof(wchar_t)];
  DWORD bytes = kValueBytes;
  const LSTATUS status =
      RegGetValueW(opened.get(), nullptr, kStandardName, RRF_RT_REG_SZ, nullptr, value, &bytes);
  return status == ERROR_SUCCESS && standardName == value;
}

std::wstring FindByStandardName(HKEY zones, const std::wstring& standardName) {
  for (DWORD index = 0;; ++index) {
    wchar_t zone[kNameUnits];
    DWORD units = kNameUnits;
    const LSTATUS status = RegEnumKeyExW(zones, index, zone, &units, nullptr, nullptr, nullptr, nullptr);
    if (status == ERROR_MORE_DATA) continue;
    if (status != ERROR_SUCCESS) return {};
    if (HasStandardName(zones, zone, standardName)) return zone;
  }
}

}  // namespace

int ZoneOffsetMinutes(uint32_t answer, int32_t bias, int32_t standardBias, int32_t daylightBias) {
  switch (answer) {
    case TIME_ZONE_ID_UNKNOWN:
      return -bias;
    case TIME_ZONE_ID_STANDARD:
      return -(bias + standardBias);
    case TIME_ZONE_ID_DAYLIGHT:
      return -(bias + daylightBias);
    default:
      return 0;
  }
}

std::wstring_view RewriteZoneKey(std::wstring_view key) {
  for (const Rewriting& rewriting : kRewritings)
    if (rewriting.key == key) return rewriting.result;
  return {};
}

std::wstring_view ChooseZoneKey(std::wstring_view registered, std::wstring_view key, int flag) {
  if (!registered.empty()) return registered;
  return flag != 0 ? L"UTC" : RewriteZoneKey(key);
}

std::wstring FindZoneKey(HKEY root, const wchar_t* path, const std::wstring& key) {
  const UniqueRegistryKey zones = OpenKey(root, path);
  if (!zones) return {};
  if (OpenKey(zones.get(), key.c_str())) return key;
  return FindByStandardName(zones.get(), key);
}

}  // namespace Cmm::internal
