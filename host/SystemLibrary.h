#pragma once

// Loads a library of the system's own, and never one of that name from anywhere else.

#include <string>
#include <string_view>

#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

// Empty when the library cannot be loaded. `name` is a bare file name.
UniqueModule LoadSystemLibrary(const wchar_t* name);

// The two ways of LoadSystemLibrary: by the loader's own search of the system directory alone, or by the
// full path, on systems whose loader has no such search.
UniqueModule LoadSystemLibraryBySearch(const wchar_t* name);
UniqueModule LoadSystemLibraryByPath(const wchar_t* name);

// Joins with a backslash unless the directory ends in a backslash or a slash.
std::wstring JoinSystemPath(std::wstring_view directory, std::wstring_view name);

}  // namespace Cmm
