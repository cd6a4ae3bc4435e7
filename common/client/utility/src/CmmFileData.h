#pragma once

// Whole files in one call. The thread's last error stays as the system left it.

#include <cstddef>
#include <string>

#include "common/client/utility/src/CmmDefine.h"

extern "C" {

// Reads the file into `out`: 1, also for an empty file. 0 when it does not open, which it does not either
// while somebody else has it open for writing; then `out` stays. The string has the size that the file had
// when it was opened, whether or not as much could be read; one call reads at most 4 GiB less a byte.
CMM_EXPORT int cmm_fs_read(const wchar_t* path, std::string& out);

// The same, with a second attempt that lets others write meanwhile. 1 when the file had content, else 0:
// also for an empty file, which leaves `out` empty. A file that neither attempt opens leaves `out` alone.
CMM_EXPORT int cmm_fs_read_v2(const wchar_t* path, std::string& out);

// Writes `len` bytes to the start of the file, which is created when it is missing. With `truncate` they are
// its whole content afterwards; without it what lies behind them stays. A `len` of 0 writes nothing.
// Returns the bytes written, 0 when the file does not open; at most 4 GiB less a byte in one call.
CMM_EXPORT size_t cmm_fs_write(const wchar_t* path, const void* data, size_t len, bool truncate);

}  // extern "C"
