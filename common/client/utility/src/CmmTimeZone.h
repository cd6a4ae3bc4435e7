#pragma once

// The time zone of this machine. Every call asks the system afresh, on any thread.
//
// A Windows key is what the system calls a zone ("China Standard Time"), a zone name what the zone database
// calls it ("Asia/Shanghai"). The two functions that give zone names have a table each, and the tables
// disagree in places; each has its readers, and neither may be put right by the other.

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm {

// Minutes east of UTC now, summer time included; 0 when the system does not tell.
CMM_EXPORT int GetTimeZoneOffsetMinutes();

// The Windows key of the current zone, if the registry has a zone of this key or of this standard name. What
// it does not know is "UTC" for a non-zero `flag`; for 0 it is the known key that a zone of another name
// stands for, or empty.
CMM_EXPORT CStringT<wchar_t> GetCurrentTimeZone_DisplayName(int flag);
CMM_EXPORT CStringT<wchar_t> GetCurrentTimeZone_DisplayName();  // with `flag` 1

// The zone name for the key with `flag` 1, as tables of Windows keys have it: some zones of fixed offset are
// POSIX names, whose sign is inverted ("Etc/GMT-3" is east). Empty for a key that has none.
CMM_EXPORT CStringT<wchar_t> GetCurrentTimeZone();

// The zone name for the key with `flag` 0, as the client knows it; empty for a key that has none.
CMM_EXPORT CStringT<wchar_t> GetCurrentTimeZoneOfVELM();

}  // namespace Cmm
