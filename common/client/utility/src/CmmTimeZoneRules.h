#pragma once

// The decisions about time zones that need nothing but their arguments, and the search in the registry.

#include <cstdint>
#include <string>
#include <string_view>

struct HKEY__;

namespace Cmm::internal {

// Minutes east of UTC, from what GetTimeZoneInformation answered and the minutes that it gave.
int ZoneOffsetMinutes(uint32_t answer, int32_t bias, int32_t standardBias, int32_t daylightBias);

// The Windows key that a zone unknown to the registry stands for; empty if there is none.
std::wstring_view RewriteZoneKey(std::wstring_view key);

// The Windows key to give for `key`, which is known to the registry as `registered` or, if that is empty, not
// at all. `flag` is that of GetCurrentTimeZone_DisplayName.
std::wstring_view ChooseZoneKey(std::wstring_view registered, std::wstring_view key, int flag);

// Searches the zones, which are the keys in `path` under `root`: `key` itself if there is one of that name,
// or the first whose value "Std" is `key`. Keys with names of more than 63 units and values of more than 63
// units are passed over. Empty when there is none, and when `path` does not open.
std::wstring FindZoneKey(HKEY__* root, const wchar_t* path, const std::wstring& key);

}  // namespace Cmm::internal
