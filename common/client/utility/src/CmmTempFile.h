#pragma once

// Names for temporary files. Safe to call from any thread.

#include "common/client/utility/src/CmmDefine.h"

extern "C" {

// The directory for temporary files, with a backslash at its end, as the system named it at the first call;
// empty when it named none. The text belongs to the library and stays as it is.
CMM_EXPORT const wchar_t* cmm_fs_tmppath();

// Makes a name from `dir` (null: cmm_fs_tmppath), `prefix` (null: none), the process id and a counter, and
// writes it to `out`, which holds 260 units; a longer name is cut. Returns the length of what stands in
// `out`.
// With `create` 0 the name differs from the last one, and no file is touched. Otherwise the file is created
// empty, under the first of up to 32 names that none has yet; 0 when there was no such name.
// A null `out` gives 0.
CMM_EXPORT int cmm_fs_tmpfile(wchar_t* out, const wchar_t* dir, const wchar_t* prefix, int create);

}  // extern "C"
