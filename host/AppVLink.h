#pragma once

// Finds the client of a virtualised application package by the shell link that the package puts on a
// desktop.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Cmm {

inline constexpr size_t kAppVLinkPathLimit = 260;  // wide units of a link's path, with its terminator
inline constexpr size_t kAppVTargetLimit = 520;    // the same of a link's expanded target

// Looks through the "*.lnk" files of `directory` for the first that ResolveAppVLink accepts. Returns 1 and
// fills `linkPath` (kAppVLinkPathLimit units) and `target` (kAppVTargetLimit units), each cut to fit; or 0,
// also for a null pointer, and leaves both alone. The process's current directory is `directory` during
// the search and what it was afterwards.
uint32_t FindAppVLink(const wchar_t* directory, wchar_t* linkPath, wchar_t* target);

// Answers whether the link leads to the client's program in a virtualised package, and fills `target`
// (kAppVTargetLimit units) with where it leads; false leaves `target` alone. COM must be initialised on
// the calling thread.
bool ResolveAppVLink(const wchar_t* linkPath, wchar_t* target);

// Whether a link's target is the client's program in a virtualised package. Exact in case.
bool IsAppVClientTarget(std::wstring_view target);

// `target` with each "%LOCALAPPDATA%" replaced by `localAppData`.
std::wstring ExpandLocalAppData(std::wstring_view target, std::wstring_view localAppData);

// What stands in front of the first "VelmVDI" that follows a backslash, backslash included; the whole
// text when there is none.
std::string_view CutBehindVdiParent(std::string_view target);

}  // namespace Cmm
