#pragma once

// Directories made with those above them, and removed with all below them.

#include "common/client/utility/src/CmmDefine.h"

extern "C" {

// Creates the directory `path` and every missing one above it. Failures are not told, nor is an existing
// directory one. A null or empty path does nothing.
CMM_EXPORT void cmm_fs_mkdirs(const wchar_t* path);

// Removes the directory `path` with all it holds. Non-zero when it is gone, or was not there. A link to a
// directory is removed, never entered. A file that cannot be deleted is moved into the temporary directory
// where that is possible, and marked for deletion at the next start of the system; one that stays makes
// the removal fail. 0 as well for a null or empty path, with ERROR_INVALID_PARAMETER as last error.
CMM_EXPORT int cmm_fs_rmdirs(const wchar_t* path);

}  // extern "C"
