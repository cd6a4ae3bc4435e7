#pragma once

#include <map>
#include <string_view>

namespace Cmm::internal {

// From the Windows key of a zone to its name in the zone database, both UTF-8; case counts.
using ZoneNames = std::map<std::string_view, std::string_view>;

// Two tables that disagree in places, and shall: each answers for a function of its own.
ZoneNames WindowsZoneNames();  // GetCurrentTimeZone
ZoneNames ClientZoneNames();   // GetCurrentTimeZoneOfVELM

// Empty if `key` has no row.
std::string_view FindZoneName(const ZoneNames& names, std::string_view key);

}  // namespace Cmm::internal
