#pragma once

// Bytes as text and back: URL form encoding, and the shape of UTF-8.

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"

extern "C" {

// The length in bytes of the UTF-8 sequence at `p`, of which `avail` bytes are left; 0 when the first
// byte begins none, when fewer bytes are left than it asks for, or when a zero byte is met. The test for
// zero reads offset 1 of every longer sequence and offset 3 of those of three and four bytes: the caller
// must own one byte behind a sequence of three, even beyond `avail`. Nothing else is validated.
CMM_EXPORT size_t cmm_str_u8extent(const char* p, size_t avail);

// Encodes `srcLen` bytes for a URL's form data: letters, digits and "-._" stay, a space becomes '+', all
// else '%' and two lower-case hexadecimal digits. `dst` must hold 3 * srcLen + 1 bytes; it is terminated.
CMM_EXPORT void cmm_urlenc(const char* src, char* dst, size_t srcLen);

// Decodes such text up to its NUL. `dst` must hold the source's length + 1 bytes, and may be `src`; it is
// terminated. Text that ends within an escape ends the decoding before it; an escape with a letter
// beyond f is dropped; any unit below '0' counts as a digit. Returns the number of units and escapes
// consumed, dropped ones included: not a length of `dst`, which may hold decoded NULs as well.
CMM_EXPORT int cmm_urldec(const char* src, char* dst);

}  // extern "C"
