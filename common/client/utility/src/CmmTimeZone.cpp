#include "common/client/utility/src/CmmTimeZone.h"

#include <windows.h>

#include <cwchar>
#include <string>

#include "common/client/utility/src/CmmConvert.h"
#include "common/client/utility/src/CmmTimeZoneRules.h"
#include "common/client/utility/src/CmmTimeZoneTables.h"

namespace Cmm {

namespace {

constexpr wchar_t kZonesPath[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones";

// The current zone's key as the system gives it; on some systems that is the standard name in the user's
// language. Empty when the system has none.
std::wstring SystemZoneKey() {
  DYNAMIC_TIME_ZONE_INFORMATION zone = {};
  GetDynamicTimeZoneInformation(&zone);
  return {zone.TimeZoneKeyName, wcsnlen(zone.TimeZoneKeyName, std::size(zone.TimeZoneKeyName))};
}

CStringT<wchar_t> ZoneNameOf(const CStringT<wchar_t>& key, const internal::ZoneNames& names) {
  const A2BT<65001, wchar_t, char> utf8Key(key.c_str(), key.GetLength());
  const std::string_view name = internal::FindZoneName(names, utf8Key.c_str());
  return A2BT<65001, char, wchar_t>(name.data(), name.size());
}

}  // namespace

int GetTimeZoneOffsetMinutes() {
  TIME_ZONE_INFORMATION zone = {};
  const DWORD answer = GetTimeZoneInformation(&zone);
  return internal::ZoneOffsetMinutes(answer, zone.Bias, zone.StandardBias, zone.DaylightBias);
}

CStringT<wchar_t> GetCurrentTimeZone_DisplayName() {
  return GetCurrentTimeZone_DisplayName(1);
}

CStringT<wchar_t> GetCurrentTimeZone_DisplayName(int flag) {
  const std::wstring key = SystemZoneKey();
  const std::wstring registered = internal::FindZoneKey(HKEY_LOCAL_MACHINE, kZonesPath, key);
  return std::wstring(internal::ChooseZoneKey(registered, key, flag));
}

CStringT<wchar_t> GetCurrentTimeZone() {
  static const internal::ZoneNames names = internal::WindowsZoneNames();
  return ZoneNameOf(GetCurrentTimeZone_DisplayName(1), names);
}

CStringT<wchar_t> GetCurrentTimeZoneOfVELM() {
  return ZoneNameOf(GetCurrentTimeZone_DisplayName(0), internal::ClientZoneNames());
}

}  // namespace Cmm
