#pragma once

#include <string_view>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// The part of cmm_safe_path that needs no file: not empty, no `*`, and no component that is "..", components
// being parted by backslashes and slashes.
bool IsSafePathText(std::wstring_view path);

}  // namespace Cmm

// Whether `path` may be handed to an operation that deletes: non-zero when it names one existing file that
// is no directory, without wildcards and without a way up the tree. Null is not safe.
extern "C" CMM_EXPORT int cmm_safe_path(const wchar_t* path);
